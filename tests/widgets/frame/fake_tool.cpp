#include "fake_tool.h"

#include <cstdlib>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/application.h"
#include "app/startup.h"

using testing::IsEmpty;

FakeTool fake_tool;

namespace {

void run(int argc, char **argv) {
  std::string call = "run";
  for (int i = 0; i < argc; i++) {
    call += std::string(" ") + argv[i];
  }
  fake_tool.calls.push_back(call);
  if (fake_tool.run) {
    fake_tool.run();
  }
}

void reactivate(GtkApplication *application, ApplicationConfiguration *configuration) {
  EXPECT_EQ(G_APPLICATION(application), g_application_get_default());
  EXPECT_EQ(configuration->run, run);
  fake_tool.calls.emplace_back("reactivate");
}

} // namespace

void v_init_application_configuration(ApplicationConfiguration *configuration) {
  const char *theme = std::getenv("GTK_THEME");
  fake_tool.theme = theme == nullptr ? "" : theme;
  configuration->application_id = fake_tool_id;
  configuration->run = run;
  configuration->reactivate = fake_tool.has_reactivate_callback ? reactivate : nullptr;
}

void in_own_process(const std::function<void(SystemFolders &, GuiScript &)> &test) {
  const auto run_test = [&test] {
    SystemFolders system;
    GuiScript script;
    test(system, script);
  };
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        run_test();
        std::exit(testing::Test::HasFailure() ? 1 : 0);
      },
      testing::ExitedWithCode(0), "");
}

int start_fake_tool(std::vector<std::string> arguments) {
  std::vector<char *> argv;
  argv.reserve(arguments.size() + 1);
  for (std::string &argument : arguments) {
    argv.push_back(argument.data());
  }
  argv.push_back(nullptr);
  return v_main(static_cast<int>(arguments.size()), argv.data());
}

void expect_failed_start(GuiScript &script, const std::string &message) {
  script.when(
      "the message", [] { return top_window() != nullptr; },
      [] {
        EXPECT_EQ(shown_windows().size(), 1U);
        EXPECT_EQ(gtk_window_get_transient_for(top_window()), nullptr);
      });
  script.answer("Error", message, "Close");
  EXPECT_EQ(start_fake_tool(), 0);
  EXPECT_THAT(fake_tool.calls, IsEmpty());
  expect_everything_released();
}

void expect_everything_released() {
  EXPECT_EQ(v_get_checkbox_icon_image(0), nullptr);
  EXPECT_EQ(v_get_checkbox_icon_image(1), nullptr);
  EXPECT_EQ(v_get_text_tab_menu_icon_image(), nullptr);
  EXPECT_EQ(v_get_view_font_face(), nullptr);
}
