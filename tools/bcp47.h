#pragma once
// Language tags as other programs know them: the suite's own tags ("en-uk", lower case) as tags of
// BCP 47 ("en-GB"). Knows nothing of which languages exist.

#include <string>

// The tag of BCP 47 (ASCII) for a tag of the suite, with the letters' case that the standard
// recommends. A tag that the standard's syntax forbids becomes one for private use: its letters and
// digits behind "x". "" for the empty tag and for one without letters and digits.
std::string v_bcp47_from_tag(const char *tag);
