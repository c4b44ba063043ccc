#pragma once
// Remarks and remark lists as plain values, so that a test can state all of one.

#include <string>
#include <utility>
#include <vector>

#include "codeset/remark.h"
#include "support/values/translations.h"

using Codes = std::vector<std::string>;
// Code and description of each remark, in order.
using Remarks = std::vector<std::pair<std::string, Translations>>;

inline OwnedRemark remark_of(const std::string &code, const Translations &description = {}) {
  OwnedRemark remark = v_remark_new();
  remark->code = copy_text(code.c_str());
  remark->description = langstr_of(description);
  return remark;
}

// In the given order.
inline OwnedRemarkList list_of(const Remarks &remarks) {
  OwnedRemarkList list = v_remark_list_new();
  for (const auto &[code, description] : remarks) {
    v_remark_list_add_remark_last(list.get(), remark_of(code, description));
  }
  return list;
}

inline OwnedRemarkList list_of_codes(const Codes &codes) {
  OwnedRemarkList list = v_remark_list_new();
  for (const std::string &code : codes) {
    v_remark_list_add_remark_last(list.get(), remark_of(code));
  }
  return list;
}

inline Remarks remarks_of(const OwnedRemarkList &list) {
  Remarks remarks;
  for (const VRemark *r = list->head.next; r != &list->tail; r = r->next) {
    remarks.emplace_back(r->code.get(), translations_of(r->description));
  }
  return remarks;
}

inline Codes codes_of(const OwnedRemarkList &list) {
  Codes codes;
  for (const VRemark *r = list->head.next; r != &list->tail; r = r->next) {
    codes.emplace_back(r->code ? r->code.get() : "(none)");
  }
  return codes;
}
