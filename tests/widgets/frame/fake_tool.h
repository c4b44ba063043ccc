#pragma once
// The tool as a test wants it to be, started in the frame and in a process of its own.

#include <functional>
#include <string>
#include <vector>

#include "support/gui_driver.h"
#include "system_folders.h"

struct FakeTool {
  std::function<void()> run;      // what it does; none: it ends at once
  std::vector<std::string> calls; // what the frame has asked of it
  std::string theme;              // GTK_THEME when the frame asked for its configuration
  bool has_reactivate_callback = false;
};

extern FakeTool fake_tool;

constexpr const char *fake_tool_id = "org.vantorelle.Test";

// The frame's state is the process's, and lasts as long: each test has a process of its own.
void in_own_process(const std::function<void(SystemFolders &, GuiScript &)> &test);

// Starts the tool in the frame; the process's status when it has ended.
int start_fake_tool(std::vector<std::string> arguments = {"program"});

// Start-up fails with the message, and the tool does not run.
void expect_failed_start(GuiScript &script, const std::string &message);

// Nothing is left of what start-up loads.
void expect_everything_released();
