#pragma once
// Reads a codeset from a spreadsheet saved as csv. The table has a line with the column names
// ("code", in upper or lower case, and language tags), followed by a line for each remark:
//
//   name,Easel paintings,Stafflimålningar
//   version,1.1,
//   code,en-uk,sv
//   Ab1,"Abrasion, worn area",Avnötning
//
// Lines above the column names hold the codeset's name, author and version; each has its label in
// the code column. The columns can be in any order. A column without a name holds texts of unknown
// language. The delimiter is the character that a first line like "sep=;" declares, else a comma,
// semicolon or tab, whichever yields a column "code". Empty fields and blank lines are skipped.

#include <string_view>

#include "codeset/codeset.h"

// Reads a document (UTF-8, any bytes). The translations of each description are in the order of the
// columns. The name is null when the document has none. Null with a message in plain words:
// "Line 12, column 3 (sv): " (the line of the document in which the field begins, and the number
// and name of the column) before a sentence, or a sentence alone for a document of another kind.
OwnedCodeset v_csv_read_codeset(std::string_view document);
