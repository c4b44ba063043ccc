#pragma once
// The user's language.

// The row of the user's language among the supported languages, -1 when it is none of them. The
// environment variable VANTORELLE_USER_LANGUAGE, when it names a supported language, decides; else
// the first of the user's locale names that does ("sv_FI.UTF-8" names "sv": the ending hides the
// dialect).
int v_platform_get_user_language_index();
