#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/error.h"
#include "base/file_types.h"
#include "base/text_buffer.h"
#include "base/whitespace.h"
#include "codeset/codeset_io.h"
#include "codeset_texts.h"
#include "tools/codeset_files.h"
#include "tools/commands.h"
#include "tools/csv_reading.h"
#include "tools/languages.h"
#include "tools/options.h"
#include "tools/report.h"

namespace {

// The values of the options.
struct Import {
  OwnedText format;
  OwnedText output;
  std::vector<std::string> names;
  std::vector<std::string> authors;
  OwnedText version;
  bool may_replace = false;
};

// Texts given by options; they replace those of the table.
struct Header {
  OwnedLangstr name;
  OwnedLangstr author;
  OwnedText version;
};

// ---- The options --------------------------------------------------------------------------------

const char *codeset_extension() {
  return v_file_type_get_default_file_name_extension_with_period(VFileType::remark_codeset);
}

// Returns a message when an option is missing or wrong, else null.
const char *find_misuse(const Import &wanted) {
  if (g_strcmp0(wanted.format.get(), "csv") != 0) {
    return "The format must be given: --from csv.";
  }
  if (!wanted.output) {
    return "The codeset to write must be named: --output OUT.codeset.";
  }
  const bool is_found =
      v_tools_is_standard_stream(wanted.output.get()) ||
      v_utf8_has_suffix_case_insensitive_ascii(wanted.output.get(), codeset_extension());
  return is_found ? nullptr : "The name of a codeset must end in .codeset; others are not found.";
}

bool fail_at_option(const char *option) {
  const std::string reason = v_error_get();
  v_error_set_utf8_printf("%s: %s", option, reason.c_str());
  return false;
}

// Converts the value of an option. False with a message that begins with the option, also for a
// value of whitespace only.
bool read_text(OwnedText &text, const char *option, std::string_view value) {
  text = v_tools_make_text(value);
  if (text && *text == '\0') {
    v_error_set("the text is empty.");
    text.reset();
  }
  return text || fail_at_option(option);
}

// The tag before the "=" in a value like "sv=Metaller"; "" for a value without one.
std::string_view find_tag(std::string_view value) {
  const std::size_t length = value.find('=');
  const std::string_view tag = length == std::string_view::npos ? "" : value.substr(0, length);
  const bool is_tag = std::all_of(tag.begin(), tag.end(),
                                  [](char byte) { return g_ascii_isalnum(byte) || byte == '-'; });
  return is_tag ? tag : "";
}

bool read_translations(OwnedLangstr &langstr, const char *option,
                       const std::vector<std::string> &values) {
  for (const std::string &value : values) {
    const std::string tag(find_tag(value));
    const bool has_tag = !tag.empty() || value.starts_with('=');
    OwnedText text;
    if (!read_text(text, option, std::string_view(value).substr(has_tag ? tag.size() + 1 : 0))) {
      return false;
    }
    v_langstr_set_owned_translation(langstr, copy_text(tag.c_str()), std::move(text));
  }
  return true;
}

bool read_header(Header &header, const Import &wanted) {
  return read_translations(header.name, "--name", wanted.names) &&
         read_translations(header.author, "--author", wanted.authors) &&
         (!wanted.version || read_text(header.version, "--codeset-version", wanted.version.get()));
}

// ---- The codeset --------------------------------------------------------------------------------

// The file name without its extension, in ISO-8859-1; "" for standard input and output.
OwnedText name_of_file(const char *file) {
  return v_strip_surrounding_and_spacify_compactly_in_new_for_latin1(
      v_codeset_io_make_substitute_name(v_tools_get_bare_name(file).c_str()).c_str());
}

// Untagged, because the language of a file name is unknown.
OwnedLangstr make_name(const char *output, const char *file) {
  OwnedText name = name_of_file(output);
  if (*name == '\0') {
    name = name_of_file(file);
  }
  OwnedLangstr langstr;
  v_langstr_set_translation(langstr, "", *name == '\0' ? "codeset" : name.get());
  return langstr;
}

void set_header(VCodeset *codeset, Header header, const Import &wanted, const char *file) {
  if (header.name) {
    codeset->name = std::move(header.name);
  }
  if (!codeset->name) {
    codeset->name = make_name(wanted.output.get(), file);
  }
  if (header.author) {
    codeset->author = std::move(header.author);
  }
  if (header.version) {
    codeset->version = std::move(header.version);
  }
}

void warn_of_unknown_languages(const VCodeset *codeset, const char *file) {
  for (const std::string &tag : v_tools_collect_languages(codeset, true)) {
    if (const auto warning = v_tools_find_unknown_language(tag.c_str())) {
      v_report_warning(file, warning->c_str());
    }
  }
}

OwnedCodeset read_table(const char *file) {
  const VProgressReport progress(file, "reading");
  std::string document;
  return v_tools_read_text(file, document) ? v_csv_read_codeset(document) : nullptr;
}

int run_import(const Import &wanted, const char *file) {
  if (const char *misuse = find_misuse(wanted)) {
    v_report_error("import", misuse);
    return v_tools_failed;
  }
  Header header;
  if (!read_header(header, wanted)) {
    return v_tools_fail_with_last_error("import");
  }
  if (v_tools_is_source(wanted.output.get(), file)) {
    v_report_error(wanted.output.get(), "This is the table itself; it is not replaced.");
    return v_tools_failed;
  }
  const OwnedCodeset codeset = read_table(file);
  if (!codeset) {
    return v_tools_fail_with_last_error(file);
  }
  set_header(codeset.get(), std::move(header), wanted, file);
  warn_of_unknown_languages(codeset.get(), file);
  if (!v_tools_write_codeset(codeset.get(), wanted.output.get(),
                             wanted.may_replace ? Overwriting::allowed : Overwriting::refused)) {
    return v_tools_fail_with_last_error(v_tools_name_output(wanted.output.get()));
  }
  return v_tools_good;
}

} // namespace

int v_tools_import(int argc, char **argv) {
  VCommandOptions options(
      "FILE",
      "Makes a codeset of a table that a spreadsheet has saved as csv in UTF-8. The first line\n"
      "has the names of the columns: \"code\", and for each language its tag, such as sv or en-uk.",
      "Lines above that one, which begin with \"name\", \"author\" or \"version\", belong to the\n"
      "codeset. The options replace them. A codeset without a name is named like its file.");
  Import wanted;
  options.add_text("from", '\0', "Read this form: csv", "FORMAT", wanted.format);
  options.add_file("output", 'o', "Write this codeset", "OUT.codeset", wanted.output);
  options.add_switch("force", '\0', "Replace a file that exists", wanted.may_replace);
  options.add_texts("name", '\0', "Name of the codeset; one for each language", "[TAG=]TEXT",
                    wanted.names);
  options.add_texts("author", '\0', "Author of the codeset; one for each language", "[TAG=]TEXT",
                    wanted.authors);
  options.add_text("codeset-version", '\0', "Version of the codeset", "TEXT", wanted.version);
  if (const std::optional<int> status = options.parse(argc, argv, 1, 1)) {
    return *status;
  }
  return run_import(wanted, options.files[0].c_str());
}
