#include "app/codesets_manager.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "gui/editing/spell_checker_cache.h"
#include "session_fixture.h"

using testing::ElementsAre;

namespace {

constexpr const char *main_title = "Vantorelle Remark Codesets Manager 3.2.3";

constexpr const char *paper =
    "<codeset><name lang='en-uk'>100%s &lt;b&gt; &amp; &#229;</name><name lang='sv'>Papper</name>"
    "<author lang='sv'>Anna</author><version>1.2</version>"
    "<remark><code>1</code><description lang='sv'>Reva</description></remark></codeset>";

GtkTreeView *list() {
  return find_widget<GtkTreeView>(GTK_WIDGET(top_window()), GTK_TYPE_TREE_VIEW);
}

class CodesetsManager : public SessionFixture {
protected:
  std::string codeset_path(const std::string &name) const {
    return workspace_path() + "/codesets/" + name;
  }

  // A workspace with one codeset.
  void use_workspace_with_paper() {
    use_workspace();
    make_folder(workspace_path() + "/codesets");
    write_file(codeset_path("paper.codeset"), paper);
  }

  std::string summarise(const std::vector<std::string> &languages) {
    VWorkspace workspace;
    workspace.settings = v_settings_new(folder.path());
    workspace.settings->preferred_languages = languages;
    RunContext context = {nullptr, &workspace};
    const OwnedText text = text_callback(codeset_path("paper.codeset").c_str(), &context);
    return text ? text.get() : "none";
  }
};

} // namespace

TEST(CodesetsManagerId, IsTheNameOfTheDesktopEntry) {
  EXPECT_TRUE(g_application_id_is_valid(v_codesets_manager_id));
  EXPECT_TRUE(g_file_test((std::string(VANTORELLE_TEST_SOURCE_FOLDER "/../../../data/desktop/") +
                           v_codesets_manager_id + ".desktop")
                              .c_str(),
                          G_FILE_TEST_IS_REGULAR));
}

// ---- Summaries ----------------------------------------------------------------------------------

TEST_F(CodesetsManager, SummaryIsInThePreferredLanguage) {
  use_workspace_with_paper();
  EXPECT_EQ(summarise({"sv", "en-uk"}), "Papper (Anna) 1.2");
  EXPECT_EQ(summarise({"de", "en"}), "100%s <b> & \u00e5 (Anna) 1.2");
  EXPECT_EQ(summarise({}), "100%s <b> & \u00e5 (Anna) 1.2");
}

TEST_F(CodesetsManager, AFileThatIsNotACodesetHasNoSummary) {
  use_workspace_with_paper();
  for (const char *content :
       {"", "text", "<codesets/>", "<codeset/>", "<codeset><name lang='sv'>P</name></codeset>"}) {
    write_file(codeset_path("paper.codeset"), content);
    EXPECT_EQ(summarise({"sv"}), "none") << content;
  }
}

// ---- A run --------------------------------------------------------------------------------------

TEST_F(CodesetsManager, ShowsTheCodesetsOfTheWorkspace) {
  use_workspace_with_paper();
  write_file(
      workspace_path() + "/settings.xml",
      "<settings><preferred-languages><language tag='sv'/></preferred-languages></settings>");
  write_file(codeset_path("broken.codeset"), "<codeset/>");
  write_file(codeset_path("other.layout"), paper);
  script.on(main_title, [] {
    EXPECT_EQ(gtk_tree_model_iter_n_children(gtk_tree_view_get_model(list()), nullptr), 2);
    EXPECT_THAT(button_labels(GTK_WIDGET(top_window())),
                ElementsAre("Add from file", "Add bundled", "Add new", "Clone", "Edit",
                            "Save a copy", "Delete", "Refresh list"));
  });
  script.close(main_title);
  run(0, nullptr);
  EXPECT_EQ(top_window(), nullptr);
}

TEST_F(CodesetsManager, EditsTheChosenCodeset) {
  use_workspace_with_paper();
  script.on(main_title, [] {
    const Owned<GtkTreePath, gtk_tree_path_free> path(gtk_tree_path_new_first());
    gtk_tree_view_set_cursor(list(), path.get(), nullptr, FALSE);
  });
  script.click("Edit");
  script.on("Edit remark codeset - paper.codeset", [] {});
  script.click("Save codeset");
  script.on(main_title, [] {});
  script.close(main_title);
  run(0, nullptr);
  // The program has rewritten the file in its own form.
  EXPECT_EQ(read_file(codeset_path("paper.codeset")).find("<?xml version=\"1.0\" "), 0U);
}

// The libraries that a checker uses end before the program's static objects are destroyed.
TEST_F(CodesetsManager, LeavesNoSpellCheckerBehind) {
  use_workspace();
  GspellChecker *checker = v_spell_checker_cache_get(nullptr);
  g_object_add_weak_pointer(G_OBJECT(checker), reinterpret_cast<void **>(&checker));
  script.on(main_title, [&checker] { EXPECT_NE(checker, nullptr); });
  script.close(main_title);
  run(0, nullptr);
  EXPECT_EQ(checker, nullptr);
}

TEST_F(CodesetsManager, EditingReturnsWhetherTheFileWasSaved) {
  use_workspace_with_paper();
  const OwnedWindowStack window_stack = v_window_stack_new();
  VWorkspace workspace;
  workspace.settings = v_settings_new(folder.path());
  RunContext context = {window_stack.get(), &workspace};
  const std::string path = codeset_path("paper.codeset");
  script.on("Edit remark codeset - paper.codeset", [] {});
  script.click("Close").answer(
      "Really close?", "Are you sure you want to close the codeset without saving?", "gtk-close");
  EXPECT_EQ(edit_callback(path.c_str(), &context), 0);
  script.on("Edit remark codeset - paper.codeset", [] {});
  script.click("Save codeset");
  EXPECT_EQ(edit_callback(path.c_str(), &context), 1);
}

TEST_F(CodesetsManager, ANewUserGetsToTheMainWindow) {
  create_by_assistant(folder / "new");
  script.on(main_title, [] {
    EXPECT_EQ(gtk_tree_model_iter_n_children(gtk_tree_view_get_model(list()), nullptr), 1);
  });
  script.close(main_title);
  run(0, nullptr);
}

TEST_F(CodesetsManager, WithoutAWorkspaceThereIsNoMainWindow) {
  cancel_assistant();
  run(0, nullptr);
  EXPECT_EQ(top_window(), nullptr);
  EXPECT_FALSE(path_exists(folder / "new"));
}
