#pragma once
// The spelling dictionary of each language.

// The dictionary's name ("sv_SE", static) for a tag of a supported language; null when there is no
// dictionary for it, or when it has no region and there are several.
const char *v_spellcheck_get_dict_name_for_langtag(const char *tag);
