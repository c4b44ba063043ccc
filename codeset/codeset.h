#pragma once
// A codeset: a named, versioned list of remarks. All text is ISO-8859-1.

#include "codeset/remark.h"

struct VCodeset {
  OwnedLangstr name;       // never empty in a codeset read from a file
  OwnedLangstr author;     // empty when there is none
  OwnedText version;       // null when there is none, never ""
  OwnedRemarkList remarks; // in remark code order, codes unique
  bool outdated = false;
  // The neighbours in a list of codesets, including its sentinels; null when not in a list.
  VCodeset *prev = nullptr;
  VCodeset *next = nullptr;
};

// Unlinks the codeset from its list, if it is in one, and frees it. Null is allowed.
void v_codeset_destroy(VCodeset *codeset);
using OwnedCodeset = Owned<VCodeset, v_codeset_destroy>;

// Empty name, author and remark list, no version, not outdated.
OwnedCodeset v_codeset_new();
// A deep copy that is not in a list.
OwnedCodeset v_codeset_clone(const VCodeset *codeset);
// Unlinks the codeset from the list that it must be in; ownership passes to the caller. Returns its
// former predecessor (borrowed, possibly the head sentinel).
VCodeset *v_codeset_remove(VCodeset *codeset);
// The codeset's index in its list, from 0.
int v_codeset_get_index(const VCodeset *codeset);
