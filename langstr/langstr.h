#pragma once
// Language-tagged strings: one text in several languages at once, as an ordered list of
// translations. Tags are ASCII, texts ISO-8859-1; both compare byte for byte. The null list is the
// empty string, and every operation takes it. Knows nothing of what the text describes.

#include "base/owned.h"

struct VLangstr;
void v_langstr_free(VLangstr *langstr);
using OwnedLangstr = Owned<VLangstr, v_langstr_free>;

// One translation. The whole string is its first translation; its text is used for a
// language that is missing. No two translations of a string have the same tag.
struct VLangstr {
  OwnedText lang; // "" for a translation of unknown language
  OwnedText text;
  OwnedLangstr next;
};

// The only way to add a translation, which keeps tags unique. Returns whether the string changed.
//  - A translation with this tag gets the text.
//  - An untagged text that some translation has already is not added.
//  - A tagged text that the untagged translation has: that translation gets the tag.
//    Its place stays.
//  - Anything else is appended.
bool v_langstr_set_translation(OwnedLangstr &langstr, const char *lang, const char *text);
// The same for an owned tag and text.
bool v_langstr_set_owned_translation(OwnedLangstr &langstr, OwnedText lang, OwnedText text);

struct VLangstrIndex;
void v_langstr_index_free(VLangstrIndex *index);

// A string that is being read from a file, one translation after the other. Setting one walks
// through the whole string, and a file can have any number of them, so a long collection keeps an
// index.
struct VLangstrCollection {
  OwnedLangstr langstr; // until it is taken, only v_langstr_collect_translation changes it
  int walks = 0;        // translations that were set without an index
  Owned<VLangstrIndex, v_langstr_index_free> index;
};

// As v_langstr_set_owned_translation, in constant time.
bool v_langstr_collect_translation(VLangstrCollection &collection, OwnedText lang, OwnedText text);

// The text for exactly this tag; failing that, with allow_dialect, for the first dialect of it
// ("en" finds "en-uk", never the other way). Borrowed; null when there is none.
const char *v_langstr_get_string(const VLangstr *langstr, const char *lang, bool allow_dialect);

// A deep copy in the same order.
OwnedLangstr v_langstr_clone(const VLangstr *langstr);
// Removes the translation with exactly this tag. Returns whether there was one.
bool v_langstr_remove_lang(OwnedLangstr &langstr, const char *lang);
// Same translations in the same order.
bool v_langstr_is_identical(const VLangstr *a, const VLangstr *b);
// Every translation of a is in b: a tagged one under its tag, an untagged one under any.
bool v_langstr_is_subset(const VLangstr *a, const VLangstr *b);
// Some text is in both under compatible tags (equal, or one of them empty), and no tag has two
// different texts. An empty a is not mergeable.
bool v_langstr_is_mergeable(const VLangstr *a, const VLangstr *b);
// Sets every translation of b in a if the two are mergeable. Returns whether a changed.
bool v_langstr_merge(OwnedLangstr &a, const VLangstr *b);
