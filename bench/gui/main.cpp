// Measures the times that a user waits. Needs a display with a window manager: run it through
// tests/support/headless.

#include <cstdio>

#include <benchmark/benchmark.h>
#include <gtk/gtk.h>

#include "gui_rows.h"
#include "support/scratch_folder.h"

int main(int argc, char **argv) {
  // A scratch home: neither this process nor the programs that it starts may change the user's
  // workspace. Both programs use the theme that ours sets.
  const ScratchFolder home;
  for (const char *variable :
       {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_STATE_HOME"}) {
    g_setenv(variable, home.path_of("").c_str(), TRUE);
  }
  g_setenv("GTK_THEME", "Adwaita", TRUE);
  if (!gtk_init_check(nullptr, nullptr)) {
    std::fputs("There is no display; run this through tests/support/headless.\n", stderr);
    return 1;
  }
  v_bench_add_editing_rows();
  v_bench_add_process_rows();

  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
    return 1;
  }
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
