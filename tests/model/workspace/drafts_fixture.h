#pragma once
// Drafts of a codeset file, with home and state folders of their own.

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "model/workspace/user_folders.h"
#include "support/files.h"
#include "support/values/remarks.h"
#include "workspace/drafts.h"

inline const Remarks paper_remarks = {{"1", {{"en-uk", "Tear"}}}, {"2", {{"en-uk", "Loss"}}}};

OwnedCodeset codeset_with(const Translations &name, const Remarks &remarks = paper_remarks);
OwnedCodeset paper(const char *name = "Paper");
// The name of the codeset in a draft that was left behind, or "none".
std::string left_name(const OwnedDraft &draft);

class Drafts : public testing::Test {
protected:
  std::string path_of(const std::string &name) const { return drafts_folder + "/" + name; }
  // Names of the entries of the drafts folder, none if it does not exist.
  std::vector<std::string> names() const;
  std::string only_draft() const;
  // Moves the file of the codeset into a folder of its own, which a test can delete.
  void use_sub_folder();
  OwnedDraft open() const { return v_draft_open(path.c_str()); }
  // Leaves a draft like a program that ends without saving or closing the window. Returns the path
  // of the draft.
  std::string leave_behind(const VCodeset *codeset) const;

  FreshUserFolders fresh;
  std::string drafts_folder = state_folder() + "/vantorelle/drafts";
  TemporaryFolder folder;
  std::string path = folder / "paper.codeset";
};
