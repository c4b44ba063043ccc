#pragma once
// A codeset of plain values, so that a test can state all of one.

#include "codeset/codeset.h"
#include "support/values/remarks.h"

// version: null for none. The remarks are in the given order.
inline OwnedCodeset codeset_of(const Translations &name, const Translations &author,
                               const char *version, const Remarks &remarks) {
  OwnedCodeset codeset = v_codeset_new();
  codeset->name = langstr_of(name);
  codeset->author = langstr_of(author);
  codeset->version = copy_text(version);
  codeset->remarks = list_of(remarks);
  return codeset;
}
