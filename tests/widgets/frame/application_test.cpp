#include "app/application.h"

#include <cstdlib>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/startup.h"
#include "base/error.h"
#include "fake_tool.h"
#include "support/environment.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr const char *font_message = "Startup failed.\n\nCouldn't open required fonts.";

void activate() { g_application_activate(g_application_get_default()); }

void write_temp_file(const SystemFolders &system, const std::string &name) {
  write_file(system.temp_files_folder / name, "printed");
}

} // namespace

// ---- Successful start-ups -----------------------------------------------------------------------

TEST(Application, RunsTheToolOnceWithEverythingLoaded) {
  in_own_process([](const SystemFolders &system, GuiScript &) {
    system.install_font();
    expect_everything_released();
    fake_tool.run = [] {
      EXPECT_NE(v_get_checkbox_icon_image(0), nullptr);
      EXPECT_NE(v_get_checkbox_icon_image(1), nullptr);
      EXPECT_NE(v_get_text_tab_menu_icon_image(), nullptr);
      EXPECT_NE(v_get_view_font_face(), nullptr);
      GApplication *application = g_application_get_default();
      EXPECT_STREQ(g_application_get_application_id(application), fake_tool_id);
      EXPECT_EQ(g_application_get_flags(application), 40);
      EXPECT_NE(gtk_application_get_app_menu(GTK_APPLICATION(application)), nullptr);
    };
    EXPECT_EQ(start_fake_tool(), 0);
    EXPECT_THAT(fake_tool.calls, ElementsAre("run program"));
    expect_everything_released();
  });
}

TEST(Application, WindowsGetTheProgramsIconWhenIdle) {
  in_own_process([](const SystemFolders &system, GuiScript &) {
    system.install_font();
    fake_tool.run = [] {
      EXPECT_EQ(gtk_window_get_default_icon_name(), nullptr);
      while (gtk_events_pending()) {
        gtk_main_iteration();
      }
      EXPECT_STREQ(gtk_window_get_default_icon_name(), fake_tool_id);
    };
    EXPECT_EQ(start_fake_tool(), 0);
    EXPECT_EQ(fake_tool.calls.size(), 1U);
  });
}

// The toolkit would handle some of these arguments.
TEST(Application, PassesAllArgumentsToTheTool) {
  in_own_process([](const SystemFolders &system, GuiScript &) {
    system.install_font();
    EXPECT_EQ(
        start_fake_tool({"program", "--help", "--display=:77", "--gapplication-service", "%s", ""}),
        0);
    EXPECT_THAT(fake_tool.calls,
                ElementsAre("run program --help --display=:77 --gapplication-service %s "));
  });
}

TEST(Application, TheThemeIsAlwaysTheSame) {
  in_own_process([](const SystemFolders &system, GuiScript &) {
    const EnvironmentVariable theme("GTK_THEME", "HighContrast");
    system.install_font();
    fake_tool.run = [] { EXPECT_STREQ(std::getenv("GTK_THEME"), "Adwaita"); };
    EXPECT_EQ(start_fake_tool(), 0);
    EXPECT_EQ(fake_tool.theme, "Adwaita");
    EXPECT_EQ(fake_tool.calls.size(), 1U);
  });
}

TEST(Application, AFurtherActivationDoesNotRunTheToolAgain) {
  in_own_process([](const SystemFolders &system, GuiScript &) {
    system.install_font();
    fake_tool.run = activate;
    EXPECT_EQ(start_fake_tool(), 0);
    EXPECT_THAT(fake_tool.calls, ElementsAre("run program"));
  });
}

TEST(Application, AFurtherActivationCallsTheTool) {
  in_own_process([](const SystemFolders &system, GuiScript &) {
    system.install_font();
    fake_tool.has_reactivate_callback = true;
    fake_tool.run = [] {
      activate();
      activate();
    };
    EXPECT_EQ(start_fake_tool(), 0);
    EXPECT_THAT(fake_tool.calls, ElementsAre("run program", "reactivate", "reactivate"));
  });
}

TEST(Application, HalvesTheResolutionOfADenseScreenOnce) {
  in_own_process([](const SystemFolders &system, GuiScript &) {
    system.install_font();
    gdk_screen_set_resolution(gdk_screen_get_default(), 288);
    fake_tool.run = [] {
      EXPECT_DOUBLE_EQ(gdk_screen_get_resolution(gdk_screen_get_default()), 144);
      activate();
      EXPECT_DOUBLE_EQ(gdk_screen_get_resolution(gdk_screen_get_default()), 144);
    };
    EXPECT_EQ(start_fake_tool(), 0);
    EXPECT_EQ(fake_tool.calls.size(), 1U);
  });
}

TEST(Application, DeletesStaleTemporaryFilesBeforeTheToolRuns) {
  in_own_process([](SystemFolders &system, GuiScript &) {
    system.install_font();
    const std::string executable = system.install_folder / "running";
    write_file(executable, std::string(123, 'x'));
    fake_platform.exe_paths[4711] = executable;
    for (const char *name :
         {"vantorelle-999999.123.out", "vantorelle-4711.122.odt", "vantorelle-4711.123.odt",
          "vantorelle-12.34.txt", "vantorelle-12.out", "vantorelle-a.1.out"}) {
      write_temp_file(system, name);
    }
    fake_tool.run = [&system] {
      EXPECT_THAT(list_folder(system.temp_files_folder.path()),
                  ElementsAre("vantorelle-12.34.txt", "vantorelle-12.out",
                              "vantorelle-4711.123.odt", "vantorelle-a.1.out"));
    };
    EXPECT_EQ(start_fake_tool(), 0);
    EXPECT_EQ(fake_tool.calls.size(), 1U);
  });
}

// ---- Failed start-ups ---------------------------------------------------------------------------

TEST(Application, ReportsAMissingFont) {
  in_own_process(
      [](const SystemFolders &, GuiScript &script) { expect_failed_start(script, font_message); });
}

TEST(Application, ReportsAMissingTemporaryFolderFirst) {
  in_own_process([](const SystemFolders &system, GuiScript &script) {
    fake_platform.temp_files_folder = system.temp_files_folder / "missing";
    expect_failed_start(script, "Startup failed.\n\nCouldn't clean up temp files.\n\n"
                                "Couldn't open temp files folder.\n\nCannot open folder.\n\n"
                                "Error 2: No such file or directory");
  });
}

TEST(Application, ReportsAnUnknownTemporaryFolder) {
  in_own_process([](const SystemFolders &, GuiScript &script) {
    fake_platform.temp_files_folder.reset();
    expect_failed_start(script, "Startup failed.\n\nCouldn't clean up temp files.");
  });
}

TEST(Application, ReportsAnUnknownInstallFolder) {
  in_own_process([](const SystemFolders &, GuiScript &script) {
    fake_platform.install_folder.reset();
    expect_failed_start(script, "Startup failed.\n\nCouldn't find required fonts.\n\n"
                                "Error getting exe path from system.");
  });
}

// With the dialog's Close button or that of the window manager.
TEST(Application, TheMessageOfAFailedStartCanBeDismissed) {
  in_own_process([](const SystemFolders &, GuiScript &script) {
    script.dismiss("Error", font_message);
    EXPECT_EQ(start_fake_tool(), 0);
    EXPECT_THAT(fake_tool.calls, IsEmpty());
  });
}

TEST(Application, EveryActivationReportsAFailedStart) {
  in_own_process([](const SystemFolders &system, GuiScript &script) {
    script.when(
        "the first message", [] { return top_window() != nullptr; },
        [&system] {
          // Only start-up looks for the font.
          system.install_font();
          activate();
        });
    script.when(
        "the second message", [] { return shown_windows().size() == 2; },
        [] {
          for (GtkWindow *window : shown_windows()) {
            EXPECT_THAT(message_of(window), testing::HasSubstr(font_message));
            gtk_dialog_response(GTK_DIALOG(window), GTK_RESPONSE_CLOSE);
          }
        });
    EXPECT_EQ(start_fake_tool(), 0);
    EXPECT_THAT(fake_tool.calls, IsEmpty());
  });
}

// ---- Single handlers ----------------------------------------------------------------------------

TEST(Application, ShutsDownWhenNothingWasStarted) {
  in_own_process([](const SystemFolders &, GuiScript &) {
    app_shutdown_callback(nullptr, nullptr);
    app_shutdown_callback(nullptr, nullptr);
    expect_everything_released();
  });
}

TEST(Application, AFailedStartUpIsSilentUntilTheActivation) {
  in_own_process([](const SystemFolders &, GuiScript &) {
    const EnvironmentVariable theme("GTK_THEME", nullptr);
    ApplicationConfiguration configuration;
    v_init_application_configuration(&configuration);
    GtkApplication *application = gtk_application_new(fake_tool_id, G_APPLICATION_NON_UNIQUE);
    g_application_register(G_APPLICATION(application), nullptr, nullptr);
    app_startup_callback(application, &configuration);
    EXPECT_EQ(top_window(), nullptr);
    EXPECT_STREQ(v_error_get(), "Couldn't open required fonts.");
    app_shutdown_callback(application, &configuration);
    expect_everything_released();
    g_object_unref(application);
  });
}
