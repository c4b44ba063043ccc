#pragma once
// Reads a codeset from the table of a spreadsheet, saved as csv. The table has a line with the
// names of its columns ("code", without regard to case, and language tags), and then a line for
// each remark:
//
//   name,Easel paintings,Stafflimålningar
//   version,1.1,
//   code,en-uk,sv
//   Ab1,"Abrasion, worn area",Avnötning
//
// Lines above the column names are the codeset's name, author and version; each has its label in
// the column of the codes. The columns can have any order. One without name has the texts of
// unknown language. Columns are separated by commas, semicolons or tabs, whichever gives a column
// "code", or by the character that a first line like "sep=;" names. A field without text is no
// translation, and a line without any is none.

#include <string_view>

#include "codeset/codeset.h"

// Reads a document (UTF-8, any bytes). Each description has its translations in the order of the
// columns. The name is empty when the document has none. Null with what is wrong in plain words and
// where: "Line 12, column 3 (sv): " before a sentence, with the line of the document in which the
// field begins, the number of the column and its name; with a sentence alone for a document that is
// no csv in UTF-8.
OwnedCodeset v_csv_read_codeset(std::string_view document);
