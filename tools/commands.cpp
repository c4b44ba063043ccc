#include "tools/commands.h"

#include <cstring>
#include <string>

#include "base/owned.h"
#include "tools/codeset_files.h"
#include "tools/report.h"

namespace {

struct Command {
  const char *name;
  const char *summary;
  int (*run)(int argc, char **argv);
};

constexpr Command commands[] = {
    {"check", "Tell whether the program accepts codesets, and what looks wrong", v_tools_check},
    {"diff", "Compare two codesets", v_tools_diff},
    {"export", "Write a codeset as a table, a vocabulary or a sheet for the wall", v_tools_export},
    {"import", "Make a codeset of a table", v_tools_import},
    {"list", "Print the codes with their descriptions", v_tools_list},
};

const Command *find_command(const char *name) {
  for (const Command &command : commands) {
    if (std::strcmp(command.name, name) == 0) {
      return &command;
    }
  }
  return nullptr;
}

std::string write_help() {
  std::string help = "Usage:\n"
                     "  vantorelle-codeset COMMAND [OPTION...] FILE...\n\n"
                     "Checks, lists, converts and compares codesets.\n\n"
                     "Commands:\n";
  for (const Command &command : commands) {
    const OwnedText line(g_strdup_printf("  %-8s  %s\n", command.name, command.summary));
    help += line.get();
  }
  return help + "\nOptions:\n"
                "  -h, --help     Show this help; after a command, that of the command\n"
                "  --version      Show the version\n\n"
                "A file named \"-\" is standard input or standard output.\n"
                "Exit status: 0; 1 for what check --strict and diff notice; 2 after an error.\n";
}

int print(const std::string &text) { return v_tools_print(text) ? v_tools_good : v_tools_failed; }

bool is_one_of(const char *text, const char *a, const char *b) {
  return std::strcmp(text, a) == 0 || std::strcmp(text, b) == 0;
}

} // namespace

int v_tools_fail_with_last_error(const char *file) {
  v_report_last_error(file);
  return v_tools_failed;
}

int v_tools_run(int argc, char **argv) {
  if (argc < 2 || *argv[1] == '\0') {
    v_report_error(nullptr, "No command is given; see \"vantorelle-codeset --help\"");
    return v_tools_failed;
  }
  if (is_one_of(argv[1], "--help", "-h")) {
    return print(write_help());
  }
  if (std::strcmp(argv[1], "--version") == 0) {
    return print("vantorelle-codeset " VANTORELLE_VERSION "\n");
  }
  const Command *command = find_command(argv[1]);
  if (command == nullptr) {
    v_report_error(argv[1], *argv[1] == '-' ? "Unknown option; see \"vantorelle-codeset --help\""
                                            : "Unknown command; see \"vantorelle-codeset --help\"");
    return v_tools_failed;
  }
  return command->run(argc - 1, argv + 1);
}
