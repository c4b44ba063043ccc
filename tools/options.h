#pragma once
// The options and arguments of a command, a layer over GLib's option parser. Values are not
// converted from the locale's encoding.

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/owned.h"

inline void free_option_context(GOptionContext *context) { g_option_context_free(context); }
using OwnedOptionContext = Owned<GOptionContext, free_option_context>;

class VCommandOptions {
public:
  // arguments: shown by --help after the name, such as "FILE...". summary and description: shown
  // before and after the options. All texts are static.
  VCommandOptions(const char *arguments, const char *summary, const char *description);
  VCommandOptions(const VCommandOptions &) = delete;
  VCommandOptions &operator=(const VCommandOptions &) = delete;

  // Adds an option without a value; letter is '\0' for none. The texts passed to the add functions
  // are static too, and the variables must outlive the call of parse.
  void add_switch(const char *name, char letter, const char *help, bool &is_given);
  // Adds an option whose value is a text (UTF-8). If it is given several times, the last one
  // counts.
  void add_text(const char *name, char letter, const char *help, const char *value_name,
                OwnedText &value);
  // Adds an option whose values (UTF-8) are collected in the order in which they are given.
  void add_texts(const char *name, char letter, const char *help, const char *value_name,
                 std::vector<std::string> &values);
  // Adds an option whose value is a path (file system's encoding) or "-".
  void add_file(const char *name, char letter, const char *help, const char *value_name,
                OwnedText &path);

  // Parses the arguments. Returns nullopt when the command is to run, else the exit status: help
  // was printed, or a message that begins with the command's name was reported. Fewer files than
  // minimum_files, more than maximum_files, an empty file name or value, and "-" given twice are
  // errors.
  std::optional<int> parse(int argc, char **argv, std::size_t minimum_files,
                           std::size_t maximum_files);

  // The arguments: paths in the file system's encoding, or "-".
  std::vector<std::string> files;

private:
  struct Option {
    std::string long_name;
    std::string short_name;
    bool is_text;
    std::function<void(const char *value)> take;
  };

  static gboolean take_value(const char *name, const char *value, void *options, GError **error);
  static gboolean take_file(const char *name, const char *value, void *options, GError **error);
  void add(GOptionEntry entry, bool is_text, std::function<void(const char *value)> take);

  OwnedOptionContext context;
  std::vector<Option> options;
  bool is_help_wanted = false;
};
