#include "codeset/codeset.h"

OwnedCodeset v_codeset_new() {
  OwnedCodeset codeset(new VCodeset);
  codeset->remarks = v_remark_list_new();
  return codeset;
}

void v_codeset_destroy(VCodeset *codeset) {
  if (codeset == nullptr) {
    return;
  }
  if (codeset->prev != nullptr) {
    v_codeset_remove(codeset);
  }
  delete codeset;
}

OwnedCodeset v_codeset_clone(const VCodeset *codeset) {
  OwnedCodeset clone = v_codeset_new();
  clone->name = v_langstr_clone(codeset->name.get());
  clone->author = v_langstr_clone(codeset->author.get());
  clone->version = copy_text(codeset->version.get());
  v_remark_list_copy_remarks(clone->remarks.get(), codeset->remarks.get());
  clone->outdated = codeset->outdated;
  return clone;
}

VCodeset *v_codeset_remove(VCodeset *codeset) {
  VCodeset *predecessor = codeset->prev;
  predecessor->next = codeset->next;
  codeset->next->prev = predecessor;
  codeset->prev = nullptr;
  codeset->next = nullptr;
  return predecessor;
}

int v_codeset_get_index(const VCodeset *codeset) {
  int index = -1; // -1 for the head sentinel
  while ((codeset = codeset->prev) != nullptr) {
    index++;
  }
  return index;
}
