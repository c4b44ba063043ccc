#pragma once
// A codeset: a named, versioned list of remarks. All text is ISO-8859-1.

#include "codeset/remark.h"

struct VCodeset {
  OwnedLangstr name;       // not empty in a codeset that was read from a file
  OwnedLangstr author;     // empty when there is none
  OwnedText version;       // null when there is none, else not empty
  OwnedRemarkList remarks; // in remark code order, codes unique
  bool outdated = false;
  // The neighbours in a list of codesets, whose ends are two records of this kind; null in no list.
  VCodeset *prev = nullptr;
  VCodeset *next = nullptr;
};

// Unlinks the codeset from its list, if it is in one, and frees it. Null is allowed.
void v_codeset_destroy(VCodeset *codeset);
using OwnedCodeset = Owned<VCodeset, v_codeset_destroy>;

// Empty name, author and remark list, no version, not outdated.
OwnedCodeset v_codeset_new();
// A deep copy in no list.
OwnedCodeset v_codeset_clone(const VCodeset *codeset);
// Unlinks the codeset from the list that it must be in; it is the caller's from then on. Returns
// the former predecessor (borrowed, perhaps the record at the list's end).
VCodeset *v_codeset_remove(VCodeset *codeset);
// The codeset's place in its list, from 0.
int v_codeset_get_index(const VCodeset *codeset);
