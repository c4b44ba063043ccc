#include "app/user_session.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "session_fixture.h"

using testing::ElementsAre;

namespace {

constexpr const char *settings_warning =
    "Something went wrong when reading your personal settings.";

class UserSession : public SessionFixture {
protected:
  bool start() { return v_user_session_start(window_stack.get(), workspace); }

  void expect_started(const std::string &path) {
    EXPECT_TRUE(start());
    ASSERT_NE(workspace, nullptr);
    EXPECT_EQ(workspace->folder_path.get(), path);
    EXPECT_EQ(top_window(), nullptr);
  }

  OwnedWindowStack window_stack = v_window_stack_new();
  OwnedWorkspace workspace;
};

} // namespace

TEST_F(UserSession, OpensTheWorkspaceOfThePointerFile) {
  use_workspace();
  expect_started(workspace_path());
  EXPECT_TRUE(path_exists(workspace_path() + "/codesets"));
  v_user_session_end(std::move(workspace));
  EXPECT_EQ(workspace, nullptr);
}

TEST_F(UserSession, LoadsAllSettings) {
  use_workspace();
  write_file(workspace_path() + "/settings.xml",
             "<settings><archive path='a'/><automatically-place-id active='true'/>"
             "<default-mark-id-style style='2'/><left-handed active='true'/>"
             "<default-printout-settings><report-type show='false'/></default-printout-settings>"
             "<last-used-layout filename='l'/><last-used-paper id='A3_L'/>"
             "<export><folder path='e'/></export><remember-tool-choice active='true'/>"
             "<preferred-languages><language tag='fr'/><language tag='de'/></preferred-languages>"
             "<recent-custom-remarks><remark><code>1</code><description "
             "lang='sv'>Tear</description></remark>"
             "</recent-custom-remarks></settings>");
  expect_started(workspace_path());
  const VSettings &settings = *workspace->settings;
  EXPECT_STREQ(settings.archive_path.get(), "a");
  EXPECT_TRUE(settings.automatically_place_id);
  EXPECT_EQ(settings.default_mark_id_style, 2);
  EXPECT_FALSE(settings.default_printout.report_type_shown);
  EXPECT_TRUE(settings.left_handed);
  EXPECT_STREQ(settings.last_used_layout_file_name.get(), "l");
  EXPECT_STREQ(settings.last_used_paper_id.get(), "A3_L");
  EXPECT_STREQ(settings.export_folder_path.get(), "e");
  EXPECT_TRUE(settings.remember_tool_choice);
  EXPECT_THAT(settings.preferred_languages, ElementsAre("fr", "de"));
  EXPECT_FALSE(v_remark_list_is_empty(settings.recent_custom_remarks.get()));
}

TEST_F(UserSession, WarnsOnceWhenSettingsCannotBeRead) {
  for (const char *content : {"<settings", "", "<other/>", "\xff\xfe"}) {
    use_workspace();
    write_file(workspace_path() + "/settings.xml", content);
    script.answer("Warning", settings_warning, "Close");
    expect_started(workspace_path());
  }
}

TEST_F(UserSession, KeepsTheSettingsBeforeTheFault) {
  use_workspace();
  write_file(workspace_path() + "/settings.xml",
             "<settings><left-handed active='true'/><preferred-languages><language tag='sv'/>"
             "<language tag='\xc3\xa5'/></preferred-languages></settings>");
  script.answer("Warning", settings_warning, "Close");
  expect_started(workspace_path());
  EXPECT_TRUE(workspace->settings->left_handed);
  EXPECT_THAT(workspace->settings->preferred_languages, ElementsAre("sv"));
}

TEST_F(UserSession, WarnsWhenTheSettingsAreAFolder) {
  use_workspace();
  make_folder(workspace_path() + "/settings.xml");
  script.answer("Warning", settings_warning, "Close");
  expect_started(workspace_path());
}

TEST_F(UserSession, ANewUserGetsAWorkspace) {
  create_by_assistant(folder / "new");
  expect_started(folder / "new");
  EXPECT_TRUE(path_exists(folder / "new/codesets/a.codeset"));
}

TEST_F(UserSession, ANewUserMayDeclineAWorkspace) {
  cancel_assistant();
  EXPECT_FALSE(start());
  EXPECT_EQ(workspace, nullptr);
  EXPECT_EQ(top_window(), nullptr);
}

TEST_F(UserSession, TreatsAMissingWorkspaceLikeNone) {
  v_workspace_save_folder_path((folder / "gone").c_str());
  cancel_assistant();
  EXPECT_FALSE(start());
  EXPECT_EQ(workspace, nullptr);
}

TEST_F(UserSession, TreatsAWorkspaceWithAFileInPlaceOfAFolderLikeNone) {
  use_workspace();
  write_file(workspace_path() + "/codesets", "kept");
  cancel_assistant();
  EXPECT_FALSE(start());
  EXPECT_EQ(workspace, nullptr);
  EXPECT_EQ(read_file(workspace_path() + "/codesets"), "kept");
}

// The workspace is moved away between its creation and its opening.
TEST_F(UserSession, ReportsANewWorkspaceThatCannotBeOpened) {
  create_by_assistant(folder / "new", [this] {
    ASSERT_EQ(rename((folder / "new").c_str(), (folder / "away").c_str()), 0);
  });
  script.answer("Error", "Something went wrong when opening your new workspace.", "Close");
  EXPECT_FALSE(start());
  EXPECT_EQ(workspace, nullptr);
}

TEST_F(UserSession, EndsWithoutAWorkspaceToo) { v_user_session_end(nullptr); }
