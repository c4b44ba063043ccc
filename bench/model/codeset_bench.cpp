// Measures reading and writing codesets, the list of summaries, and sorting codes.

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <libxml/parser.h>
#include <libxml/tree.h>
#include <malloc.h>

#include "base/owned.h"
#include "codeset/codeset_io.h"
#include "support/codeset_generator.h"
#include "support/comparison.h"
#include "support/require.h"
#include "support/scratch_folder.h"
#include "support/stopwatch.h"
#include "workspace/display_text.h"
#include "workspace/drafts.h"

namespace {

constexpr CodeOrder orders[] = {CodeOrder::ascending, CodeOrder::descending, CodeOrder::shuffled};

std::string with_separators(int number) {
  std::string digits = std::to_string(number);
  for (std::size_t i = digits.size(); i > 3; i -= 3) {
    digits.insert(i - 3, 1, ',');
  }
  return digits;
}

struct CodesetFile {
  CodesetFile(int count, CodeOrder order)
      : path(folder.put("bench.codeset", v_bench_generate_codeset(count, order))) {}
  ScratchFolder folder;
  std::string path;
};

OwnedXmlDoc parse(const std::string &path) {
  OwnedXmlDoc document(xmlReadFile(path.c_str(), nullptr, 0));
  if (!document) {
    throw std::runtime_error("The parser refuses " + path);
  }
  return document;
}

double measure_parsing(const std::string &path) {
  const Stopwatch stopwatch;
  parse(path).reset();
  return stopwatch.seconds();
}

double measure_reading(const std::string &path) {
  const Stopwatch stopwatch;
  const OwnedCodeset codeset = require(v_codeset_io_read_from_file(path.c_str()));
  return stopwatch.seconds();
}

double measure_reading_often(const std::string &path, int times) {
  double seconds = 0;
  for (int i = 0; i < times; i++) {
    malloc_trim(0); // as before every measurement
    seconds += measure_reading(path);
  }
  return seconds;
}

// The minimum for any reader: the parser's events, with handlers that do nothing.
double measure_events(const std::string &path) {
  xmlSAXHandler handlers = {};
  handlers.initialized = XML_SAX2_MAGIC;
  handlers.startElementNs = [](void *, const xmlChar *, const xmlChar *, const xmlChar *, int,
                               const xmlChar **, int, int, const xmlChar **) {};
  handlers.endElementNs = [](void *, const xmlChar *, const xmlChar *, const xmlChar *) {};
  handlers.characters = [](void *, const xmlChar *, int) {};
  handlers.ignorableWhitespace = handlers.characters;
  const Stopwatch stopwatch;
  if (xmlSAXUserParseFile(&handlers, nullptr, path.c_str()) != 0) {
    throw std::runtime_error("The parser refuses " + path);
  }
  return stopwatch.seconds();
}

void add_reading(int count, CodeOrder order, int repetitions, const char *baseline,
                 double (*measure_baseline)(const std::string &path),
                 std::optional<double> target) {
  const Row row{.what = "Read a codeset",
                .size = with_separators(count) + " remarks, " + v_bench_order_name(order),
                .baseline = baseline,
                .target = target};
  v_bench_add_row(row, repetitions, [=] {
    const auto file = std::make_shared<CodesetFile>(count, order);
    return Comparison{[=] { return measure_baseline(file->path); },
                      [=] { return measure_reading(file->path); }};
  });
}

void add_readings(CodeOrder order) {
  constexpr const char *tree = "libxml2 parses and frees the same file";
  constexpr const char *events = "libxml2 parses the same file, with handlers that do nothing";
  add_reading(1'000, order, 201, tree, measure_parsing, 0.8);
  add_reading(10'000, order, 31, tree, measure_parsing, 0.65);
  add_reading(100'000, order, 9, tree, measure_parsing, 0.5);
  // The lowest possible time. A file that is not in order must also be sorted, so its row has no
  // target.
  add_reading(100'000, order, 15, events, measure_events,
              order == CodeOrder::ascending ? std::optional(2.0) : std::nullopt);
}

void add_growth(int small, int large, CodeOrder order) {
  const Row row{.what = "Growth of reading, per remark",
                .size = with_separators(small) + " to " + with_separators(large) + " remarks, " +
                        v_bench_order_name(order),
                .baseline = "itself at " + with_separators(small),
                .target = 1.1};
  v_bench_add_row(row, 3, [=] {
    const auto small_file = std::make_shared<CodesetFile>(small, order);
    const auto large_file = std::make_shared<CodesetFile>(large, order);
    // Both sides read the same number of remarks, so that other work on the machine affects both
    // equally.
    return Comparison{
        [=] { return measure_reading_often(small_file->path, large / small) / large; },
        [=] { return measure_reading(large_file->path) / large; }};
  });
}

// Runs a process that reads the file in the given way, and returns its peak memory in MiB.
double measure_peak(const char *way, const std::string &path) {
  const std::string command = std::string(VANTORELLE_PEAK_MEMORY) + " " + way + " '" + path + "'";
  std::FILE *output = popen(command.c_str(), "r");
  double kibibytes = 0;
  const bool is_read = output != nullptr && std::fscanf(output, "%lf", &kibibytes) == 1;
  if (!is_read || pclose(output) != 0) {
    throw std::runtime_error("Failed: " + command);
  }
  return kibibytes / 1024;
}

void add_peak_memory(int count) {
  const Row row{.what = "Peak memory of reading",
                .size = with_separators(count) + " remarks, shuffled",
                .baseline = "a process in which libxml2 parses the same file",
                .unit = "MiB",
                .target = 0.19};
  v_bench_add_row(row, 3, [=] {
    const auto file = std::make_shared<CodesetFile>(count, CodeOrder::shuffled);
    return Comparison{[=] { return measure_peak("parse", file->path); },
                      [=] { return measure_peak("read", file->path); }};
  });
}

double measure_saving(const CodesetFile &file, xmlDoc *document) {
  const std::string path = file.folder.path_of("saved_by_libxml2.codeset");
  std::remove(path.c_str());
  const Stopwatch stopwatch;
  if (xmlSaveFormatFileEnc(path.c_str(), document, "ISO-8859-1", 1) < 0) {
    throw std::runtime_error("Cannot write " + path);
  }
  return stopwatch.seconds();
}

double measure_writing(const CodesetFile &file, const VCodeset *codeset) {
  const std::string path = file.folder.path_of("saved_by_us.codeset");
  std::remove(path.c_str());
  const Stopwatch stopwatch;
  require(v_codeset_io_write_to_file(codeset, path.c_str()));
  return stopwatch.seconds();
}

// All steps of saving except forcing both files onto the disk.
double measure_writing_with_draft(const CodesetFile &file, const VCodeset *codeset) {
  const std::string path = file.folder.path_of("saved_by_us.codeset");
  std::remove(path.c_str());
  const Stopwatch stopwatch;
  const OwnedDraft draft = v_draft_open(path.c_str());
  v_draft_write(draft.get(), codeset);
  require(draft->path.get());
  require(v_codeset_io_write_to_file(codeset, path.c_str()));
  v_draft_remove(draft.get());
  return stopwatch.seconds();
}

using MeasureWriting = double (*)(const CodesetFile &file, const VCodeset *codeset);

void add_writing(const char *what, MeasureWriting measure, int count) {
  const Row row{.what = what,
                .size = with_separators(count) + " remarks",
                .baseline = "libxml2 saves the equal document to the same folder",
                .target = 0.5};
  v_bench_add_row(row, 9, [=] {
    const auto file = std::make_shared<CodesetFile>(count, CodeOrder::ascending);
    const std::shared_ptr<xmlDoc> document = parse(file->path);
    const std::shared_ptr<VCodeset> codeset =
        require(v_codeset_io_read_from_file(file->path.c_str()));
    return Comparison{[=] { return measure_saving(*file, document.get()); },
                      [=] { return measure(*file, codeset.get()); }};
  });
}

struct CodesetFolder {
  CodesetFolder(int files, int count) {
    const std::string xml = v_bench_generate_codeset(count, CodeOrder::ascending);
    for (int i = 0; i < files; i++) {
      paths.push_back(folder.put(std::to_string(i) + ".codeset", xml));
    }
  }
  ScratchFolder folder;
  std::vector<std::string> paths;
};

double measure_parsing_all(const CodesetFolder &folder) {
  const Stopwatch stopwatch;
  for (const std::string &path : folder.paths) {
    parse(path).reset();
  }
  return stopwatch.seconds();
}

double measure_summaries(const CodesetFolder &folder, const VSettings *settings) {
  std::vector<OwnedText> summaries;
  const Stopwatch stopwatch;
  for (const std::string &path : folder.paths) {
    const OwnedCodeset codeset = require(v_codeset_io_read_from_file(path.c_str()));
    summaries.push_back(v_util_get_codeset_string(settings, codeset.get()));
  }
  return stopwatch.seconds();
}

void add_summaries(int files, int count) {
  const Row row{.what = "Build the list of summaries",
                .size = with_separators(files) + " files of " + with_separators(count) + " remarks",
                .baseline = "libxml2 parses and frees the same files",
                .target = 1.0};
  v_bench_add_row(row, 15, [=] {
    const auto folder = std::make_shared<CodesetFolder>(files, count);
    const std::shared_ptr<VSettings> settings = v_settings_new(folder->folder.path_of("").c_str());
    return Comparison{[=] { return measure_parsing_all(*folder); },
                      [=] { return measure_summaries(*folder, settings.get()); }};
  });
}

double measure_version_sort(const std::vector<std::string> &codes) {
  std::vector<const char *> sorted;
  for (const std::string &code : codes) {
    sorted.push_back(code.c_str());
  }
  const Stopwatch stopwatch;
  std::stable_sort(sorted.begin(), sorted.end(),
                   [](const char *a, const char *b) { return strverscmp(a, b) < 0; });
  return stopwatch.seconds();
}

double measure_list_sort(const std::vector<std::string> &codes) {
  const OwnedRemarkList list = v_remark_list_new();
  for (const std::string &code : codes) {
    OwnedRemark remark = v_remark_new();
    remark->code = copy_text(code.c_str());
    v_remark_list_add_remark_last(list.get(), std::move(remark));
  }
  const Stopwatch stopwatch;
  v_remark_list_sort(list.get());
  return stopwatch.seconds();
}

void add_sorting(int count) {
  const Row row{.what = "Sort codes in remark code order",
                .size = with_separators(count) + " codes, shuffled",
                .baseline = "std::stable_sort of the same with strverscmp",
                .target = 2.0};
  v_bench_add_row(row, 15, [=] {
    const auto codes = std::make_shared<std::vector<std::string>>(
        v_bench_generate_codes(count, CodeOrder::shuffled));
    return Comparison{[=] { return measure_version_sort(*codes); },
                      [=] { return measure_list_sort(*codes); }};
  });
}

} // namespace

int main(int argc, char **argv) {
  // A scratch folder, because drafts are written into the user's state folder.
  const ScratchFolder state;
  g_setenv("XDG_STATE_HOME", state.path_of("").c_str(), TRUE);
  xmlInitParser();
  for (const CodeOrder order : orders) {
    add_readings(order);
  }
  add_growth(10'000, 1'000'000, CodeOrder::ascending);
  add_growth(10'000, 1'000'000, CodeOrder::shuffled);
  add_peak_memory(100'000);
  add_writing("Write a codeset", measure_writing, 100'000);
  add_writing("Write a codeset, its draft included", measure_writing_with_draft, 100'000);
  add_summaries(1'000, 200);
  add_sorting(100'000);

  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
    return 1;
  }
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
