#include "drafts_fixture.h"

#include "support/values/codesets.h"

OwnedCodeset codeset_with(const Translations &name, const Remarks &remarks) {
  return codeset_of(name, {}, nullptr, remarks);
}

OwnedCodeset paper(const char *name) { return codeset_with({{"en-uk", name}}); }

std::string left_name(const OwnedDraft &draft) {
  return draft->left_behind ? translations_of(draft->left_behind->name).at(0).second : "none";
}

std::vector<std::string> Drafts::names() const {
  return path_exists(drafts_folder) ? list_folder(drafts_folder) : std::vector<std::string>();
}

std::string Drafts::only_draft() const {
  const std::vector<std::string> all = names();
  EXPECT_THAT(all, testing::SizeIs(1));
  return all.empty() ? "" : path_of(all.front());
}

void Drafts::use_sub_folder() {
  make_folder(folder / "codesets");
  path = folder / "codesets/paper.codeset";
}

std::string Drafts::leave_behind(const VCodeset *codeset) const {
  const OwnedDraft draft = v_draft_open(path.c_str());
  draft->left_behind.reset();
  v_draft_write(draft.get(), codeset);
  return draft->path.get();
}
