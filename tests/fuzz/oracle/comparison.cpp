#include "fuzz/oracle/comparison.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "base/error.h"
#include "codeset/codeset_io.h"
#include "fuzz/fuzzing.h"
#include "fuzz/oracle/second_reader.h"
#include "support/files.h"
#include "workspace/settings.h"
#include "workspace/workspace_location.h"

namespace {

constexpr const char *held_message = "of an earlier failure";

// ---------------------------------------------------------------- reports

// One line of printable ASCII, which a C compiler reads back.
std::string quoted(const std::string &bytes) {
  constexpr std::size_t maximum_length = 20'000;
  const OwnedText text(g_strescape(bytes.substr(0, maximum_length).c_str(), nullptr));
  const bool has_zero_bytes = bytes.find('\0') != std::string::npos;
  if (!has_zero_bytes) {
    return std::string("\"") + text.get() + "\"" +
           (bytes.size() > maximum_length
                ? " and " + std::to_string(bytes.size() - maximum_length) + " bytes more"
                : "");
  }
  std::string result = "\"";
  for (const char byte : bytes.substr(0, maximum_length)) {
    char octal[5];
    g_snprintf(octal, sizeof octal, "\\%03o", static_cast<unsigned char>(byte));
    result += byte >= ' ' && byte < 127 && byte != '"' && byte != '\\' ? std::string(1, byte)
                                                                       : std::string(octal);
  }
  return result + "\"";
}

std::string description_of(const Translations &translations) {
  std::string text;
  for (const auto &[lang, translation] : translations) {
    text += " [" + quoted(lang) + "] " + quoted(translation);
  }
  return text;
}

std::string description_of(const CodesetContents &contents) {
  std::string text = "name" + description_of(contents.name) + "\n  author" +
                     description_of(contents.author) + "\n  version " +
                     (contents.version ? quoted(*contents.version) : "none");
  for (const auto &[code, description] : contents.remarks) {
    text += "\n  remark " + quoted(code) + description_of(description);
  }
  return text;
}

std::string description_of(const CodesetReading &reading) {
  return reading.contents ? description_of(*reading.contents)
                          : "refused: " + quoted(reading.message);
}

std::string description_of(const PointerReading &reading) {
  return reading.workspace_path ? quoted(*reading.workspace_path)
                                : "refused: " + quoted(reading.message);
}

std::string description_of(const SettingsReading &reading) {
  std::string text = reading.is_read ? "loaded" : "not loaded: " + quoted(reading.message);
  for (const auto &[name, value] : reading.fields) {
    text += "\n  " + name + ": " + quoted(value);
  }
  return text;
}

// The two sides are described only when they are needed: it takes as long as reading them.
std::string description_of(const std::string &bytes) { return quoted(bytes); }

template <typename Reading>
void require_same(bool are_same, const char *what, const std::string &document,
                  const Reading &program, const Reading &second_reader) {
  if (are_same) {
    return;
  }
  std::fprintf(stderr, "Different: %s\nDocument of %zu bytes: %s\nProgram: %s\nSecond reader: %s\n",
               what, document.size(), quoted(document).c_str(), description_of(program).c_str(),
               description_of(second_reader).c_str());
  std::abort();
}

// ---------------------------------------------------------------- codesets

CodesetReading reading_of(const OwnedCodeset &codeset) {
  if (!codeset) {
    return {std::nullopt, v_error_get()};
  }
  CodesetContents contents = {translations_of(codeset->name), translations_of(codeset->author),
                              std::nullopt, remarks_of(codeset->remarks)};
  if (codeset->version) {
    contents.version = codeset->version.get();
  }
  return {contents, ""};
}

bool are_same(const CodesetReading &program, const CodesetReading &second_reader) {
  return program.contents == second_reader.contents &&
         (program.contents || program.message == second_reader.message);
}

// Reads the file both ways; null when both refuse it in the same way.
OwnedCodeset read_codeset(const std::string &path, const std::string &document, const char *what) {
  v_error_set(held_message);
  OwnedCodeset codeset = v_codeset_io_read_from_file(path.c_str());
  const CodesetReading program = reading_of(codeset);
  const CodesetReading second_reader = second_read_codeset(path, held_message);
  require_same(are_same(program, second_reader), what, document, program, second_reader);
  return codeset;
}

// Codes are written as they are, so that markup in them is markup when they are read back.
bool has_markup_in_codes(const CodesetContents &contents) {
  return std::any_of(contents.remarks.begin(), contents.remarks.end(), [](const auto &remark) {
    return contains_any_of(remark.first, "<&") || remark.first.find("]]>") != std::string::npos;
  });
}

// A string that is collected element by element may differ when it is read back: a second untagged
// text that replaces the first may equal a tagged one.
CodesetContents collected_again(CodesetContents contents) {
  contents.name = second_collect(contents.name);
  contents.author = second_collect(contents.author);
  for (auto &[code, description] : contents.remarks) {
    description = second_collect(description);
  }
  return contents;
}

void compare_codeset(const std::string &path, const std::string &document) {
  static const TemporaryFolder folder;
  static const std::string written_path = folder / "written.codeset";
  const OwnedCodeset codeset = read_codeset(path, document, "what is read");
  if (!codeset) {
    return;
  }
  require(v_codeset_io_write_to_file(codeset.get(), written_path.c_str()),
          "a codeset can be written");
  const std::string bytes = read_file(written_path);
  const CodesetReading reading = reading_of(codeset);
  const std::string expected_bytes = second_write_codeset(*reading.contents);
  require_same(bytes == expected_bytes, "what is written", document, bytes, expected_bytes);
  const CodesetReading reread =
      reading_of(read_codeset(written_path, document, "what is read back"));
  if (!has_markup_in_codes(*reading.contents)) {
    const CodesetReading expected = {collected_again(*reading.contents), ""};
    require_same(are_same(reread, expected), "what is read back, from what was read", document,
                 reread, expected);
  }
}

// ---------------------------------------------------------------- settings

std::string number(int value) { return std::to_string(value); }

template <typename Enumeration>
std::string level(Enumeration value) {
  return number(static_cast<int>(value));
}

std::string text_or_none(const OwnedText &text) { return text ? text.get() : "(none)"; }

SettingsFields fields_of_settings(const OwnedSettings &settings) {
  const VPrintoutSettings &printout = settings->default_printout;
  return {
      {"archive", text_or_none(settings->archive_path)},
      {"place id", number(settings->automatically_place_id)},
      {"mark id style", number(settings->default_mark_id_style)},
      {"identifier", level(printout.identifier)},
      {"layout", text_or_none(printout.layout_file_name)},
      {"paper", number(printout.paper_id)},
      {"landscape", number(printout.landscape)},
      {"details text", number(printout.details_on_text_page)},
      {"details view", number(printout.details_on_view_pages)},
      {"legend text", number(printout.legend_on_text_page)},
      {"legend view", number(printout.legend_on_view_pages)},
      {"page numbers", number(printout.page_numbers_shown)},
      {"report type", number(printout.report_type_shown)},
      {"text codesets", level(printout.text_page_codeset_filter)},
      {"text marks", level(printout.text_page_mark_filter)},
      {"view codesets", level(printout.view_page_codeset_filter)},
      {"view marks", level(printout.view_page_mark_filter)},
      {"export", text_or_none(settings->export_folder_path)},
      {"last layout", text_or_none(settings->last_used_layout_file_name)},
      {"last paper", text_or_none(settings->last_used_paper_id)},
      {"left-handed", number(settings->left_handed)},
      {"languages", settings_field_of(settings->preferred_languages)},
      {"remarks", settings_field_of(remarks_of(settings->recent_custom_remarks))},
      {"remember tool", number(settings->remember_tool_choice)},
  };
}

bool are_same(const SettingsReading &program, const SettingsReading &second_reader) {
  if (program.is_read != second_reader.is_read || program.fields != second_reader.fields) {
    return false;
  }
  return program.is_read ||
         (second_reader.is_partly_read ? program.message != held_message
                                       : program.message == second_reader.message);
}

void compare_settings(const std::string &path, const std::string &document) {
  const OwnedSettings settings = v_settings_new("");
  settings->file_path = copy_text(path.c_str());
  const SettingsFields defaults = fields_of_settings(settings);
  v_error_set(held_message);
  const bool is_read = v_settings_load(settings.get(), -1);
  const SettingsReading program = {is_read, fields_of_settings(settings), v_error_get(), false};
  const SettingsReading second_reader = second_read_settings(path, defaults, held_message);
  require_same(are_same(program, second_reader), "the settings", document, program, second_reader);
}

// ---------------------------------------------------------------- the pointer file

// The user's configuration folder, with the pointer file in it.
class ConfigurationFolder {
public:
  ConfigurationFolder() {
    // GLib asks for it once in the life of the process.
    g_setenv("XDG_CONFIG_HOME", folder.path(), TRUE);
    make_folder(folder / "vantorelle");
  }
  std::string pointer_file_path() const { return folder / "vantorelle/vantorelle.xml"; }

private:
  TemporaryFolder folder;
};

void compare_pointer(const std::string &document) {
  static const ConfigurationFolder folder;
  write_file(folder.pointer_file_path(), document);
  v_error_set(held_message);
  OwnedText path;
  const bool is_read = v_workspace_get_saved_folder_path(path);
  PointerReading program = {std::nullopt, v_error_get()};
  if (is_read && path) {
    program.workspace_path = path.get();
  }
  require(is_read == (path != nullptr), "a file that is there gives a path, or fails");
  const PointerReading second_reader =
      second_read_pointer(folder.pointer_file_path(), held_message);
  require_same(program.workspace_path == second_reader.workspace_path &&
                   (is_read || program.message == second_reader.message),
               "the pointer file", document, program, second_reader);
}

// ---------------------------------------------------------------- entities

// The program refuses documents whose entities expand to 10,000,000 bytes, the library only some of
// them. With so many declarations and references no text can be repeated more often than this.
bool may_expand_to_much(const std::string &document) {
  std::size_t declarations = 0;
  for (std::size_t at = 0; (at = document.find("<!ENTITY", at)) != std::string::npos; ++at) {
    ++declarations;
  }
  if (declarations == 0) {
    return false;
  }
  const auto references = std::count_if(document.begin(), document.end(),
                                        [](char byte) { return byte == '&' || byte == '%'; });
  const double levels = static_cast<double>(declarations) + 1;
  const double repetitions = std::pow(static_cast<double>(references) / levels + 1, levels);
  constexpr double harmless = 5'000'000;
  return repetitions * static_cast<double>(document.size()) > harmless;
}

} // namespace

void compare_readers(DocumentKind kind, const std::string &document) {
  if (may_expand_to_much(document)) {
    return;
  }
  if (kind == DocumentKind::pointer) {
    compare_pointer(document);
    return;
  }
  static MemoryFile file;
  file.write(reinterpret_cast<const std::uint8_t *>(document.data()), document.size());
  if (kind == DocumentKind::codeset) {
    compare_codeset(file.path(), document);
  } else {
    compare_settings(file.path(), document);
  }
}
