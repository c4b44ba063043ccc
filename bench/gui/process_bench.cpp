// Measures the whole program on a workspace against a minimal program with a similar window.

#include <filesystem>
#include <memory>
#include <string>

#include "gui_rows.h"
#include "started_program.h"
#include "support/codeset_generator.h"
#include "support/comparison.h"
#include "support/require.h"
#include "support/scratch_folder.h"
#include "workspace/workspace.h"

namespace {

constexpr int codeset_count = 20;
constexpr int remark_count = 50; // as in the delivered codesets
constexpr char size_text[] = "workspace with 20 codesets";
constexpr char baseline[] = "a minimal program that shows one window with a list and eight buttons";

// The workspace that the program finds when it starts.
struct PreparedWorkspace {
  PreparedWorkspace() {
    require(v_workspace_create(folder.path_of("workspace").c_str()));
    std::filesystem::create_directory(folder.path_of("workspace/codesets"));
    for (int i = 0; i < codeset_count; i++) {
      folder.put("workspace/codesets/" + std::to_string(i) + ".codeset",
                 v_bench_generate_codeset(remark_count, CodeOrder::ascending));
    }
  }
  ScratchFolder folder;
};

double measure_start(const char *program) { return StartedProgram(program).seconds_until_mapped(); }

double measure_memory(const char *program) { return StartedProgram(program).measure_idle_memory(); }

void add_row(const char *what, const char *unit, double target, int repetitions,
             double (*measure)(const char *program)) {
  const Row row{
      .what = what, .size = size_text, .baseline = baseline, .unit = unit, .target = target};
  v_bench_add_row(row, repetitions, [=] {
    const auto workspace = std::make_shared<PreparedWorkspace>();
    // Runs each program once, so that no measured start reads one from the disk.
    measure(VANTORELLE_MINIMAL_WINDOW);
    measure(VANTORELLE_PROGRAM);
    return Comparison{[=] { return measure(VANTORELLE_MINIMAL_WINDOW); },
                      [workspace, measure] { return measure(VANTORELLE_PROGRAM); }};
  });
}

} // namespace

void v_bench_add_process_rows() {
  add_row("Start until the main window is mapped", "s", 1.2, 41, measure_start);
  add_row("Memory when idle in the main window", "MiB", 1.25, 5, measure_memory);
}
