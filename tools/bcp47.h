#pragma once
// Converts the suite's language tags ("en-uk", lower case) to the BCP 47 tags that other programs
// use ("en-GB"). Does not know which languages exist.

#include <string>

// Returns the BCP 47 tag (ASCII) for a tag of the suite, in the case that the standard recommends.
// A tag that is not well-formed becomes a private-use tag: "x-" followed by its letters and digits.
// "" for the empty tag and for one without letters and digits.
std::string v_bcp47_from_tag(const char *tag);
