#pragma once
// The options and arguments of a command, over the option parser of GLib. Values are taken as
// bytes, so that they do not depend on the locale.

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/owned.h"

inline void free_option_context(GOptionContext *context) { g_option_context_free(context); }
using OwnedOptionContext = Owned<GOptionContext, free_option_context>;

class VCommandOptions {
public:
  // arguments: as in "check [OPTION...] FILE...". summary and description: shown by --help before
  // and after the options. All static texts.
  VCommandOptions(const char *arguments, const char *summary, const char *description);
  VCommandOptions(const VCommandOptions &) = delete;
  VCommandOptions &operator=(const VCommandOptions &) = delete;

  // Adds an option without value; letter is '\0' for none. The texts of these functions are static
  // too, and their variables must live until parse has returned.
  void add_switch(const char *name, char letter, const char *help, bool &is_given);
  // Adds an option whose value is a text (UTF-8). Given twice, the last one counts.
  void add_text(const char *name, char letter, const char *help, const char *value_name,
                OwnedText &value);
  // Adds an option whose values are collected in the order in which they are given.
  void add_texts(const char *name, char letter, const char *help, const char *value_name,
                 std::vector<std::string> &values);
  // Adds an option whose value is a path (file system's encoding) or "-".
  void add_file(const char *name, char letter, const char *help, const char *value_name,
                OwnedText &path);

  // Parses the arguments. Returns nothing when the command can run, else the exit status with which
  // it ends: help was shown, or a message was reported, which begins with the command's name. That
  // is also the case when there are fewer files than least_files or more than most_files, and when
  // the name of a file or a value is empty.
  std::optional<int> parse(int argc, char **argv, std::size_t least_files, std::size_t most_files);

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
