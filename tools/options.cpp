#include "tools/options.h"

#include <algorithm>
#include <utility>

#include "tools/codeset_files.h"
#include "tools/commands.h"
#include "tools/report.h"

VCommandOptions::VCommandOptions(const char *arguments, const char *summary,
                                 const char *description)
    : context(g_option_context_new(nullptr)) {
  GOptionGroup *group = g_option_group_new("command", "", "", this, nullptr);
  g_option_context_set_summary(context.get(), summary);
  g_option_context_set_description(context.get(), description);
  // The parser's own help ends the program and depends on the locale.
  g_option_context_set_help_enabled(context.get(), FALSE);
  g_option_context_set_main_group(context.get(), group);
  add_switch("help", 'h', "Show this help", is_help_wanted);
  const GOptionEntry entries[] = {{G_OPTION_REMAINING, '\0', G_OPTION_FLAG_FILENAME,
                                   G_OPTION_ARG_CALLBACK, reinterpret_cast<void *>(take_file),
                                   nullptr, arguments},
                                  {}};
  g_option_group_add_entries(group, entries);
}

void VCommandOptions::add(GOptionEntry entry, bool is_text,
                          std::function<void(const char *value)> take) {
  entry.flags |= G_OPTION_FLAG_FILENAME;
  entry.arg = G_OPTION_ARG_CALLBACK;
  entry.arg_data = reinterpret_cast<void *>(take_value);
  const GOptionEntry entries[] = {entry, {}};
  g_option_group_add_entries(g_option_context_get_main_group(context.get()), entries);
  options.push_back({std::string("--") + entry.long_name, std::string("-") + entry.short_name,
                     is_text, std::move(take)});
}

void VCommandOptions::add_switch(const char *name, char letter, const char *help, bool &is_given) {
  add({name, letter, G_OPTION_FLAG_NO_ARG, {}, nullptr, help, nullptr}, false,
      [&is_given](const char *) { is_given = true; });
}

void VCommandOptions::add_text(const char *name, char letter, const char *help,
                               const char *value_name, OwnedText &value) {
  add({name, letter, 0, {}, nullptr, help, value_name}, true,
      [&value](const char *given) { value = copy_text(given); });
}

void VCommandOptions::add_texts(const char *name, char letter, const char *help,
                                const char *value_name, std::vector<std::string> &values) {
  add({name, letter, 0, {}, nullptr, help, value_name}, true,
      [&values](const char *given) { values.emplace_back(given); });
}

void VCommandOptions::add_file(const char *name, char letter, const char *help,
                               const char *value_name, OwnedText &path) {
  add({name, letter, 0, {}, nullptr, help, value_name}, false,
      [&path](const char *given) { path = copy_text(given); });
}

gboolean VCommandOptions::take_value(const char *name, const char *value, void *command_options,
                                     GError **error) {
  auto *self = static_cast<VCommandOptions *>(command_options);
  const auto option =
      std::find_if(self->options.begin(), self->options.end(),
                   [name](const Option &o) { return o.long_name == name || o.short_name == name; });
  if (option->is_text && !g_utf8_validate(value, -1, nullptr)) {
    g_set_error(error, G_OPTION_ERROR, G_OPTION_ERROR_BAD_VALUE, "The value of %s is not UTF-8",
                name);
    return FALSE;
  }
  if (value != nullptr && *value == '\0') {
    g_set_error(error, G_OPTION_ERROR, G_OPTION_ERROR_BAD_VALUE, "The value of %s is empty", name);
    return FALSE;
  }
  option->take(value);
  return TRUE;
}

gboolean VCommandOptions::take_file(const char *, const char *value, void *command_options,
                                    GError **) {
  static_cast<VCommandOptions *>(command_options)->files.emplace_back(value);
  return TRUE;
}

std::optional<int> VCommandOptions::parse(int argc, char **argv, std::size_t minimum_files,
                                          std::size_t maximum_files) {
  const std::string command = argv[0];
  g_set_prgname(("vantorelle-codeset " + command).c_str());
  const auto fail = [&command](const char *message) {
    v_report_error(command.c_str(),
                   (message + ("; see \"vantorelle-codeset " + command) + " --help\"").c_str());
    return v_tools_failed;
  };
  OwnedError error;
  if (!g_option_context_parse(context.get(), &argc, &argv, receive(error))) {
    return fail(error->message);
  }
  if (is_help_wanted) {
    const OwnedText help(g_option_context_get_help(context.get(), TRUE, nullptr));
    return v_tools_print(help.get()) ? v_tools_good : v_tools_failed;
  }
  if (std::count(files.begin(), files.end(), "") > 0) {
    return fail("The name of a file is empty");
  }
  if (files.size() < minimum_files) {
    return fail(files.empty() ? "No file is named" : "A file is missing");
  }
  if (files.size() > maximum_files) {
    return fail("Too many files are named");
  }
  if (std::count(files.begin(), files.end(), "-") > 1) {
    return fail("Standard input can be read only once");
  }
  return std::nullopt;
}
