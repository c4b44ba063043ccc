#pragma once
// Multilingual texts for display, in the first of the preferred languages that they have. Uses both
// the settings and the codesets.

#include "codeset/codeset.h"
#include "workspace/settings.h"

// The text (ISO-8859-1, borrowed) in the most preferred language or one of its dialects, else that
// of the first translation; null for an empty string.
const char *v_util_get_langstr_string(const VSettings *settings, const VLangstr *langstr);

// The codeset's one-line summary (UTF-8): name, author in parentheses, version, and "(outdated?)"
// for an outdated one. The codeset must have a name.
OwnedText v_util_get_codeset_string(const VSettings *settings, const VCodeset *codeset);
