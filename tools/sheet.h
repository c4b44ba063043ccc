#pragma once
// A codeset as a wall sheet: a self-contained HTML document to be printed on A4.

#include "base/text_buffer.h"
#include "codeset/codeset.h"
#include "workspace/settings.h"

// Returns the sheet (HTML in UTF-8) in the first preferred language of the settings: each text is
// in the language that the window would choose, with its tag when that is another language.
// settings null: in all languages, each text with its tag if there are several languages.
OwnedUtf8String v_sheet_write_codeset(const VCodeset *codeset, const VSettings *settings);
