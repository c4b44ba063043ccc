#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <gtkosxapplication.h>

#include "app/application_menu.h"
#include "gui/owned_objects.h"
#include "support/fake_platform.h"
#include "support/files.h"
#include "support/gui_driver.h"

using testing::ElementsAre;

// The menu bar is one object for the whole program.
struct GtkosxApplication {
  std::vector<std::string> calls;
  OwnedObject<GtkWidget> item;
};

namespace {

GtkosxApplication menu_bar;

std::string describe(GtkWidget *widget) {
  return GTK_IS_SEPARATOR_MENU_ITEM(widget) ? "a line"
                                            : gtk_menu_item_get_label(GTK_MENU_ITEM(widget));
}

class MacosMenu : public testing::Test {
protected:
  MacosMenu() { menu_bar = {}; }
  ~MacosMenu() override { menu_bar = {}; }

  FakePlatformReset reset_platform;
};

} // namespace

GtkosxApplication *gtkosx_application_get() {
  menu_bar.calls.emplace_back("get");
  return &menu_bar;
}

void gtkosx_application_insert_app_menu_item(GtkosxApplication *self, GtkWidget *item, gint index) {
  self->calls.push_back("insert " + describe(item) + " at " + std::to_string(index));
  EXPECT_TRUE(gtk_widget_get_visible(item));
  self->item = sink(item);
}

void gtkosx_application_ready(GtkosxApplication *self) { self->calls.emplace_back("ready"); }

TEST_F(MacosMenu, GetsASeparatorAndTheItemAfterTheFirstEntry) {
  v_application_menu_install(nullptr);
  EXPECT_THAT(menu_bar.calls,
              ElementsAre("get", "insert a line at 1", "insert Workspace Tool at 2", "ready"));
}

TEST_F(MacosMenu, TheItemStartsTheTool) {
  const TemporaryFolder programs;
  make_folder(programs / "Vantorelle Workspace Tool.app");
  fake_platform.install_folder = programs.path();
  fake_platform.programs_are_bundles = true;
  v_application_menu_install(nullptr);
  EXPECT_TRUE(gtk_widget_get_sensitive(menu_bar.item.get()));
  gtk_menu_item_activate(GTK_MENU_ITEM(menu_bar.item.get()));
  ASSERT_EQ(fake_platform.command_lines.size(), 1U);
  EXPECT_THAT(fake_platform.command_lines[0], testing::HasSubstr("Vantorelle Workspace Tool.app"));
  EXPECT_EQ(top_window(), nullptr);
}
