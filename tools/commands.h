#pragma once
// The commands of the program vantorelle-codeset. Each parses its own arguments (argv[0] is the
// name of the command), writes its results to standard output and its messages to standard error,
// and returns the exit status of the program. Arguments are in the file system's encoding.

// Exit statuses.
inline constexpr int v_tools_good = 0;
inline constexpr int v_tools_noticed = 1; // check --strict: warnings; diff: differences
inline constexpr int v_tools_failed = 2;  // an error was reported; also wrong arguments

// Reports the last error for the file, as v_report_last_error does. Always returns v_tools_failed.
int v_tools_fail_with_last_error(const char *file);

// Runs the command named by the first argument of main, or prints the help or the version.
int v_tools_run(int argc, char **argv);

int v_tools_check(int argc, char **argv);
int v_tools_diff(int argc, char **argv);
int v_tools_export(int argc, char **argv);
int v_tools_import(int argc, char **argv);
int v_tools_list(int argc, char **argv);
