#pragma once
// A tool whose behaviour a test sets, started in the frame and in a separate process.

#include <functional>
#include <string>
#include <vector>

#include "support/gui_driver.h"
#include "system_folders.h"

struct FakeTool {
  std::function<void()> run;      // empty: the tool ends at once
  std::vector<std::string> calls; // by the frame
  std::string theme;              // GTK_THEME when the frame asked for its configuration
  bool has_reactivate_callback = false;
};

extern FakeTool fake_tool;

constexpr const char *fake_tool_id = "org.vantorelle.Test";

// Runs the test in a separate process, because the frame's state lasts as long as the process.
void in_own_process(const std::function<void(SystemFolders &, GuiScript &)> &test);

// Runs the tool in the frame; returns the exit status.
int start_fake_tool(std::vector<std::string> arguments = {"program"});

// Expects that start-up fails with the message and that the tool does not run.
void expect_failed_start(GuiScript &script, const std::string &message);

// Expects that everything that start-up loads is released.
void expect_everything_released();
