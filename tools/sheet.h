#pragma once
// A codeset as a sheet for the wall: one HTML document that prints on A4 and needs no other file.

#include "base/text_buffer.h"
#include "codeset/codeset.h"
#include "workspace/settings.h"

// The sheet (HTML in UTF-8) in the first preferred language of the settings: each text is in the
// language that the window would choose, and a tag is beside one that is in another language. Null:
// in all languages, each text with its tag if there are several.
OwnedUtf8String v_sheet_write_codeset(const VCodeset *codeset, const VSettings *settings);
