#include <gtest/gtest.h>

#include "faults/promises.h"
#include "suite/temp_files.h"

namespace {

// One process still runs, but as another program than the one that made its file.
constexpr long running_process = 4711;
constexpr const char *executable = "install/program";

std::optional<std::string> clean_up() {
  fake_platform.exe_paths[running_process] = on_ground(executable);
  return v_temp_files_clean_up_in_folder(on_ground("tmp").c_str()) ? std::optional<std::string>("")
                                                                   : std::nullopt;
}

std::string is_kept(const Trial &trial) {
  Contents expected = trial.undisturbed;
  expected["tmp/vantorelle-4711.123.out"] = "printed";
  const Contents &after = trial.after;
  return after == expected ? "" : "a file that may still be in use is not there";
}

TEST(TempFilesFaults, CleanUp) {
  const FakePlatformReset reset;
  sweep({.name = "clean up temporary files",
         .ground = {{executable, "another program"},
                    {"tmp/vantorelle-4711.123.out", "printed"},
                    {"tmp/vantorelle-99999999.1.out", "printed"},
                    {"tmp/vantorelle-99999999.2.odt", "printed"},
                    {"tmp/vantorelle-99999999.2.txt", "the user's"},
                    {"tmp/notes", "the user's"}},
         .run = clean_up,
         .promises = {
             {{Call::opendir},
              "tmp",
              0,
              Result::fails,
              "Couldn't clean up temp files.\n\nCouldn't open temp files folder.\n\n"
              "Cannot open folder.\n\n{error}",
              untouched},
             {{Call::compile},
              "",
              0,
              Result::fails,
              "Couldn't clean up temp files.\n\nRegex error.",
              untouched},
             // A listing that breaks off leaves the rest for the next start.
             {{Call::readdir}, "tmp", 0, Result::succeeds, "", partly_done},
             {{Call::stat}, executable, 0, Result::succeeds, "", is_kept},
             {{Call::unlink}, "tmp/*", 0, Result::succeeds, "", done_but_for_what_failed},
             {{Call::closedir}, "tmp", 0, Result::succeeds, "", done},
         }});
}

} // namespace
