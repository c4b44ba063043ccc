#include "app/application_menu.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "gui/owned_objects.h"
#include "support/fake_platform.h"
#include "support/files.h"
#include "support/gui_driver.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr const char *failure = "An error occured when trying to start the workspace tool.";

std::string item_text(GMenuModel *menu, const char *attribute) {
  OwnedText text;
  EXPECT_TRUE(g_menu_model_get_item_attribute(menu, 0, attribute, "s",
                                              static_cast<char **>(receive(text))));
  return text.get();
}

class ApplicationMenu : public testing::Test {
protected:
  FakePlatformReset reset_platform;
  TemporaryFolder programs;
};

} // namespace

TEST_F(ApplicationMenu, HasOneItemThatStartsTheTool) {
  const OwnedObject<GtkApplication> application(
      gtk_application_new("org.vantorelle.Test", G_APPLICATION_NON_UNIQUE));
  ASSERT_TRUE(g_application_register(G_APPLICATION(application.get()), nullptr, nullptr));
  v_application_menu_install(application.get());
  GMenuModel *menu = gtk_application_get_app_menu(application.get());
  ASSERT_NE(menu, nullptr);
  EXPECT_EQ(g_menu_model_get_n_items(menu), 1);
  EXPECT_EQ(gtk_application_get_menubar(application.get()), nullptr);
  EXPECT_EQ(item_text(menu, G_MENU_ATTRIBUTE_LABEL), "Workspace Tool");
  const std::string action = item_text(menu, G_MENU_ATTRIBUTE_ACTION);
  ASSERT_TRUE(action.starts_with("app.")) << action;

  fake_platform.install_folder = programs.path();
  g_action_group_activate_action(G_ACTION_GROUP(application.get()), action.c_str() + 4, nullptr);
  EXPECT_THAT(fake_platform.command_lines,
              ElementsAre(testing::HasSubstr(programs / "Vantorelle Workspace Tool")));
  EXPECT_EQ(top_window(), nullptr);
}

TEST_F(ApplicationMenu, ShowsAnErrorWhenTheToolDoesNotStart) {
  fake_platform.install_folder = programs.path();
  fake_platform.commands_can_start = false;
  GuiScript script;
  script.when(
      "the message", [] { return top_window() != nullptr; },
      [] { EXPECT_EQ(gtk_window_get_transient_for(top_window()), nullptr); });
  script.answer("Error", failure, "Close");
  macos_menu_item_activate_callback(nullptr, nullptr);
  EXPECT_EQ(fake_platform.command_lines.size(), 1U);
}

TEST_F(ApplicationMenu, ShowsAnErrorWhenTheInstallFolderIsUnknown) {
  GuiScript script;
  script.answer("Error", failure, "Close");
  macos_menu_item_activate_callback(nullptr, nullptr);
  EXPECT_THAT(fake_platform.command_lines, IsEmpty());
}
