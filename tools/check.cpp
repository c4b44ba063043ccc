#include <algorithm>
#include <string>

#include "findings.h"
#include "tools/codeset_files.h"
#include "tools/commands.h"
#include "tools/languages.h"
#include "tools/options.h"
#include "tools/report.h"

namespace {

// "FILE: 51 codes, en-uk, sv"
std::string summarise(const char *file, const Findings &findings) {
  return v_report_show_file(file) + ": " + std::to_string(findings.codes) +
         (findings.codes == 1 ? " code, " : " codes, ") +
         v_tools_format_languages(findings.languages) + '\n';
}

Findings collect_findings(const char *file, const VCodeset *codeset) {
  const VProgressReport progress(file, "checking");
  return v_findings_collect(codeset);
}

int check_file(const char *file) {
  const OwnedCodeset codeset = v_tools_read_codeset(file);
  if (!codeset) {
    return v_tools_fail_with_last_error(file);
  }
  const Findings findings = collect_findings(file, codeset.get());
  if (!v_tools_print(summarise(file, findings))) {
    return v_tools_failed;
  }
  for (const std::string &message : findings.messages) {
    v_report_warning(file, message.c_str());
  }
  return findings.messages.empty() ? v_tools_good : v_tools_noticed;
}

} // namespace

int v_tools_check(int argc, char **argv) {
  VCommandOptions options(
      "FILE...",
      "Reads each file as the program does and prints the number of its codes and the tags of\n"
      "its languages, in order of first appearance, or the reason why the program refuses it.",
      "Warns of codes that could not be read back after saving, of languages that the program\n"
      "does not know, of translations that most codes have and some lack, and of codes with the\n"
      "same description.\n\n"
      "Exit status: 0; 1 after warnings, with --strict; 2 when a file was refused.");
  bool is_strict = false;
  options.add_switch("strict", 's', "Let warnings count: exit status 1", is_strict);
  if (const std::optional<int> status = options.parse(argc, argv, 1, SIZE_MAX)) {
    return *status;
  }
  int status = v_tools_good;
  for (const std::string &file : options.files) {
    status = std::max(status, check_file(file.c_str()));
  }
  return status == v_tools_noticed && !is_strict ? v_tools_good : status;
}
