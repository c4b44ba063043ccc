#pragma once
// The user's language.

// The index of the user's language in the supported languages; -1 when it is not supported. Taken
// from the environment variable VANTORELLE_USER_LANGUAGE if it names a supported language, else
// from the first of the user's locale names that does ("sv_FI.UTF-8" names "sv": the suffix hides
// the dialect).
int v_platform_get_user_language_index();
