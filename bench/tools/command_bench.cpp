// Measures the commands of vantorelle-codeset.

#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

#include "codeset/codeset_io.h"
#include "support/codeset_generator.h"
#include "support/comparison.h"
#include "support/require.h"
#include "support/scratch_folder.h"
#include "support/stopwatch.h"
#include "tools/commands.h"
#include "tools/csv_writing.h"

namespace {

constexpr int count = 100'000;
constexpr int repetitions = 9;

// Two codesets, of which the second has other codes but mostly the same.
struct Files {
  Files() {
    std::string xml = v_bench_generate_codeset(count, CodeOrder::shuffled);
    first = folder.put("first.codeset", xml);
    for (std::size_t place = 0; (place = xml.find("<code>A", place)) != std::string::npos;) {
      xml[place + 6] = '_';
    }
    second = folder.put("second.codeset", xml);
  }

  ScratchFolder folder;
  std::string first; // paths
  std::string second;
};

// While an object of this class exists, standard output and standard error are nowhere.
class Silence {
public:
  Silence() { connect(nowhere, nowhere); }
  ~Silence() {
    connect(output, errors);
    for (const int descriptor : {nowhere, output, errors}) {
      close(descriptor);
    }
  }
  Silence(const Silence &) = delete;
  Silence &operator=(const Silence &) = delete;

private:
  static void connect(int new_output, int new_errors) {
    std::fflush(nullptr);
    dup2(new_output, STDOUT_FILENO);
    dup2(new_errors, STDERR_FILENO);
  }

  int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
  int output = dup(STDOUT_FILENO);
  int errors = dup(STDERR_FILENO);
};

double measure_reading(const std::vector<std::string> &paths) {
  const Stopwatch stopwatch;
  for (const std::string &path : paths) {
    require(v_codeset_io_read_from_file(path.c_str())).reset();
  }
  return stopwatch.seconds();
}

double measure_command(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), "vantorelle-codeset");
  std::vector<char *> argv;
  for (std::string &argument : arguments) {
    argv.push_back(argument.data());
  }
  argv.push_back(nullptr);
  const Silence silence;
  const Stopwatch stopwatch;
  if (v_tools_run(static_cast<int>(arguments.size()), argv.data()) == v_tools_failed) {
    throw std::runtime_error(arguments[1] + " failed");
  }
  return stopwatch.seconds();
}

// The file, or both files when the command takes two, are added to the arguments.
void add_command(const char *what, std::vector<std::string> arguments, int files = 1) {
  const Row row{.what = what,
                .size = "100,000 remarks, shuffled",
                .baseline = files == 1 ? "the same file is only read" : "the files are only read",
                .target = 2.0};
  v_bench_add_row(row, repetitions, [=] {
    const auto made = std::make_shared<Files>();
    std::vector<std::string> paths = {made->first, made->second};
    paths.resize(static_cast<std::size_t>(files));
    std::vector<std::string> all = arguments;
    all.insert(all.end(), paths.begin(), paths.end());
    return Comparison{[=] { return measure_reading(paths); },
                      // The files exist as long as this function.
                      [=, keeper = made] { return measure_command(all); }};
  });
}

// Import also writes the codeset and reads it back.
void add_import() {
  const Row row{.what = "vantorelle-codeset import",
                .size = "100,000 remarks, shuffled",
                .baseline = "the same codeset is only read",
                .target = 2.0};
  v_bench_add_row(row, repetitions, [] {
    const auto made = std::make_shared<Files>();
    const OwnedCodeset codeset = require(v_codeset_io_read_from_file(made->first.c_str()));
    const OwnedUtf8String csv = v_csv_write_codeset(codeset.get(), true);
    const std::string table = made->folder.put("table.csv", {csv->str, csv->len});
    const std::string output = made->folder.path_of("written.codeset");
    return Comparison{
        [=] { return measure_reading({made->first}); },
        [=] {
          return measure_command({"import", "--from=csv", table, "--force", "--output=" + output});
        }};
  });
}

} // namespace

int main(int argc, char **argv) {
  add_command("vantorelle-codeset check", {"check"});
  add_command("vantorelle-codeset list", {"list", "--language=sv"});
  add_command("vantorelle-codeset diff", {"diff"}, 2);
  add_command("vantorelle-codeset export --to csv", {"export", "--to=csv"});
  add_command("vantorelle-codeset export --to skos", {"export", "--to=skos"});
  add_command("vantorelle-codeset export --to html", {"export", "--to=html"});
  add_command("vantorelle-codeset export --to html --language sv",
              {"export", "--to=html", "--language=sv"});
  add_import();

  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
    return 1;
  }
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
