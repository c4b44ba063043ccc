#pragma once
// A user without a workspace, and delivered components for a new one.

#include <functional>
#include <string>

#include <gtest/gtest.h>

#include "support/fake_platform.h"
#include "support/files.h"
#include "support/gui_driver.h"
#include "workspace/workspace_location.h"

class SessionFixture : public testing::Test {
protected:
  SessionFixture() {
    fake_platform.install_folder = install_folder.path();
    make_folder(install_folder / "codesets");
    write_file(install_folder / "codesets/a.codeset",
               "<codeset><name lang='sv'>Papper</name><remark><code>1</code>"
               "<description lang='sv'>Reva</description></remark></codeset>");
  }
  ~SessionFixture() override { v_workspace_save_folder_path(nullptr); }

  // Creates an empty workspace and stores its path in the pointer file.
  void use_workspace() {
    workspace_number++;
    make_folder(workspace_path());
    ASSERT_TRUE(v_workspace_save_folder_path(workspace_path().c_str()));
  }
  std::string workspace_path() const {
    return folder / ("workspace-" + std::to_string(workspace_number));
  }

  static bool is_assistant_on_page(int page) {
    GtkWindow *window = top_window();
    return GTK_IS_ASSISTANT(window) &&
           gtk_assistant_get_current_page(GTK_ASSISTANT(window)) == page;
  }
  void on_page(int page, std::function<void()> act) {
    script.when(
        "page " + std::to_string(page) + " of the assistant",
        [page] { return is_assistant_on_page(page); }, std::move(act));
  }
  void cancel_assistant() {
    on_page(0, [] {});
    script.click("Cancel");
  }
  // before_close: called on the last page.
  void create_by_assistant(
      const std::string &location, std::function<void()> before_close = [] {}) {
    on_page(0, [] {});
    script.click("Next");
    on_page(1, [location] {
      auto *entry = find_widget<GtkEntry>(GTK_WIDGET(top_window()), GTK_TYPE_ENTRY);
      gtk_entry_set_text(entry, location.c_str());
    });
    script.click("Apply");
    on_page(2, std::move(before_close));
    script.click("Close");
  }

  FakePlatformReset reset_platform;
  TemporaryFolder install_folder;
  TemporaryFolder folder;
  int workspace_number = 0;
  GuiScript script;
};
