#pragma once
// The fixed table of languages in which texts can be written, and how a language is shown to the
// user. A language is known by its row, 0 to v_supported_languages_get_count() - 1, or by its tag:
// a lower case ASCII code, "sv", or a dialect, "sv-fi". Tags are the suite's own ("en-uk") and
// compare case sensitively.

#include "base/owned.h"

int v_supported_languages_get_count();
// Static texts for a row of the table; the name is UTF-8. The default dialect is what a user gets
// whose language is known without a region; null for most rows.
const char *v_supported_languages_get_tag(int index);
const char *v_supported_languages_get_name(int index);
const char *v_supported_languages_get_default_dialect_tag(int index);

// The row of a tag, -1 for a tag that is not in the table.
int v_supported_languages_get_index_for_tag(const char *tag);
// The name of a tag's row, "Unknown language" when it has none.
const char *v_supported_languages_get_name_for_tag(const char *tag);

// The text shown to the user for a tag (UTF-8): "Swedish [sv]", and "Undefined" for the empty tag.
OwnedText v_supported_languages_format_language_string(const char *tag);
// The tag of such a text; "" when it has no "[". Null with "Non-ascii byte found where not
// allowed.", or with the unknown error for a tag that is not in the table.
OwnedText v_supported_languages_get_tag_from_language_string(const char *language_string);
