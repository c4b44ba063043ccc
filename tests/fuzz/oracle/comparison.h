#pragma once
// The program and the second reader on the same document.

#include <string>

#include "fuzz/oracle/documents.h"

// Reads the document with both readers, and ends the program with a report of the document and of
// both results when they differ: in verdict, message or contents, and for codesets in the bytes
// that are written and in the codeset that is read back from them.
void compare_readers(DocumentKind kind, const std::string &document);
