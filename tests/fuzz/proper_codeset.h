#pragma once
// Checks that hold for every codeset that was read.

#include "codeset/codeset.h"

// The remarks: at least one, in order, each code once, with descriptions; and all texts normalised.
// The name may be empty.
void require_proper_texts(const VCodeset *codeset);
// The same for a codeset that was read from its own file, which has a name.
void require_proper_codeset(const VCodeset *codeset);
