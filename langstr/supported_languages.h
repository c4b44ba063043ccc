#pragma once
// The fixed table of languages in which texts can be written, and their display texts. A language
// is identified by its index, 0 to v_supported_languages_get_count() - 1, or by its tag: a
// lower-case ASCII code ("sv") or a dialect ("sv-fi"). Tags are the suite's own ("en-uk") and are
// case-sensitive.

#include "base/owned.h"

int v_supported_languages_get_count();
// Static texts for an index of the table; the name is UTF-8. The default dialect is chosen when the
// user's language is known without a region; null for most languages.
const char *v_supported_languages_get_tag(int index);
const char *v_supported_languages_get_name(int index);
const char *v_supported_languages_get_default_dialect_tag(int index);

// The index of a tag, -1 for a tag that is not in the table.
int v_supported_languages_get_index_for_tag(const char *tag);
// The name for a tag, "Unknown language" when it is not in the table.
const char *v_supported_languages_get_name_for_tag(const char *tag);

// The display text for a tag (UTF-8): "Swedish [sv]"; "Undefined" for the empty tag.
OwnedText v_supported_languages_format_language_string(const char *tag);
// The tag in a display text; "" when it has no "[". Null with "Non-ascii byte found where not
// allowed.", or with v_error_message_unknown for a tag that is not in the table.
OwnedText v_supported_languages_get_tag_from_language_string(const char *language_string);
