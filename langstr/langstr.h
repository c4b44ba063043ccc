#pragma once
// Language-tagged strings: one text in several languages, as an ordered list of translations. Tags
// are ASCII, texts ISO-8859-1; both compare byte for byte. The null list is the empty string, and
// every function accepts it. Knows nothing of what the texts describe.

#include "base/owned.h"

struct VLangstr;
void v_langstr_free(VLangstr *langstr);
using OwnedLangstr = Owned<VLangstr, v_langstr_free>;

// One translation, and the list node that holds it: a string is represented by its first one, whose
// text stands in for missing languages. No two translations of a string have the same tag.
struct VLangstr {
  OwnedText lang; // "" for a translation of unknown language
  OwnedText text;
  OwnedLangstr next;
};

// The only way to add a translation, which keeps tags unique. Returns whether the string changed.
//  - If a translation has this tag, its text is replaced.
//  - An untagged text is not added if any translation has the same text.
//  - If the untagged translation has the same text as a tagged one, it gets the tag and keeps its
//    position.
//  - Anything else is appended.
bool v_langstr_set_translation(OwnedLangstr &langstr, const char *lang, const char *text);
// The same for an owned tag and text.
bool v_langstr_set_owned_translation(OwnedLangstr &langstr, OwnedText lang, OwnedText text);

struct VLangstrIndex;
void v_langstr_index_free(VLangstrIndex *index);

// A string that is being read from a file, one translation at a time. Without an index, setting a
// translation searches the whole string, and a file can have any number of them; so a long
// collection has one.
struct VLangstrCollection {
  OwnedLangstr langstr; // changed only by v_langstr_collect_translation until it is moved
  int walks = 0;        // number of translations set without an index
  Owned<VLangstrIndex, v_langstr_index_free> index;
};

// The same as v_langstr_set_owned_translation, in constant time.
bool v_langstr_collect_translation(VLangstrCollection &collection, OwnedText lang, OwnedText text);

// The text for exactly this tag, else, with allow_dialect, for its first dialect ("en" finds
// "en-uk", but not vice versa). Borrowed; null when there is none.
const char *v_langstr_get_string(const VLangstr *langstr, const char *lang, bool allow_dialect);

// A deep copy.
OwnedLangstr v_langstr_clone(const VLangstr *langstr);
// Removes the translation with exactly this tag. Returns whether there was one.
bool v_langstr_remove_lang(OwnedLangstr &langstr, const char *lang);
// True when both have the same translations in the same order.
bool v_langstr_is_identical(const VLangstr *a, const VLangstr *b);
// True when every translation of a is in b: a tagged one with its tag, an untagged one with any.
bool v_langstr_is_subset(const VLangstr *a, const VLangstr *b);
// True when some text is in both with compatible tags (equal, or one of them empty), and no tag has
// different texts in the two. An empty string is not mergeable.
bool v_langstr_is_mergeable(const VLangstr *a, const VLangstr *b);
// Sets every translation of b in a if they are mergeable. Returns whether a changed.
bool v_langstr_merge(OwnedLangstr &a, const VLangstr *b);
