#pragma once
// The spelling dictionary of each language.

// The dictionary's name ("sv_SE", static) for a tag of the supported languages; null when there is
// no dictionary for it, as for languages without region that have several.
const char *v_spellcheck_get_dict_name_for_langtag(const char *tag);
