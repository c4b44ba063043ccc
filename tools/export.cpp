#include <optional>
#include <string>
#include <string_view>

#include "base/error.h"
#include "tools/codeset_files.h"
#include "tools/commands.h"
#include "tools/csv_writing.h"
#include "tools/languages.h"
#include "tools/options.h"
#include "tools/report.h"
#include "tools/sheet.h"
#include "tools/skos.h"

namespace {

struct Export {
  OwnedText format;
  OwnedText output; // null for standard output
  OwnedText base;
  VSkosAddresses addresses; // from the base or the file name; used for skos only
  OwnedText language;
  bool has_header = false;
  bool may_replace = false;
};

OwnedUtf8String make_csv(const Export &wanted, const VCodeset *codeset) {
  return v_csv_write_codeset(codeset, wanted.has_header);
}

OwnedUtf8String make_skos(const Export &wanted, const VCodeset *codeset) {
  return v_skos_write_codeset(codeset, wanted.addresses);
}

OwnedUtf8String make_html(const Export &wanted, const VCodeset *codeset) {
  if (!wanted.language) {
    return v_sheet_write_codeset(codeset, nullptr);
  }
  const OwnedSettings settings = v_tools_prefer_language(wanted.language.get());
  return v_sheet_write_codeset(codeset, settings.get());
}

struct Format {
  const char *name;
  OwnedUtf8String (*make)(const Export &wanted, const VCodeset *codeset);
};

constexpr Format formats[] = {
    {"csv", make_csv},
    {"skos", make_skos},
    {"html", make_html},
};

const Format *find_format(const char *name) {
  for (const Format &format : formats) {
    if (g_strcmp0(format.name, name) == 0) {
      return &format;
    }
  }
  return nullptr;
}

// Returns a message when the options do not fit together, else null.
const char *find_misuse(const Export &wanted) {
  if (find_format(wanted.format.get()) == nullptr) {
    return "The format must be given: --to csv, --to skos or --to html.";
  }
  const std::string_view format = wanted.format.get();
  if (wanted.has_header && format != "csv") {
    return "--with-header is for --to csv.";
  }
  if (wanted.base && format != "skos") {
    return "--base is for --to skos.";
  }
  return wanted.language && format != "html" ? "--language is for --to html." : nullptr;
}

// False with a message when the base is not an absolute address.
bool find_addresses(Export &wanted, const char *file) {
  if (wanted.base) {
    return v_skos_set_base(wanted.addresses, wanted.base.get());
  }
  wanted.addresses = v_skos_name_addresses(v_tools_get_bare_name(file).c_str());
  return true;
}

OwnedUtf8String convert(const Export &wanted, const char *file, const VCodeset *codeset) {
  const VProgressReport progress(file, "converting");
  return find_format(wanted.format.get())->make(wanted, codeset);
}

int run_export(Export &wanted, const char *file) {
  if (const char *misuse = find_misuse(wanted)) {
    v_report_error("export", misuse);
    return v_tools_failed;
  }
  if (!find_addresses(wanted, file)) {
    return v_tools_fail_with_last_error("export");
  }
  if (v_tools_is_source(wanted.output.get(), file)) {
    v_report_error(wanted.output.get(), "This is the codeset itself; it is not replaced.");
    return v_tools_failed;
  }
  const OwnedCodeset codeset = v_tools_read_codeset(file);
  if (!codeset) {
    return v_tools_fail_with_last_error(file);
  }
  if (wanted.language) {
    v_tools_warn_of_missing_language(file, codeset.get(), wanted.language.get());
  }
  const OwnedUtf8String text = convert(wanted, file, codeset.get());
  if (!v_tools_write_text(wanted.output.get(), {text->str, text->len},
                          wanted.may_replace ? Overwriting::allowed : Overwriting::refused)) {
    return v_tools_fail_with_last_error(v_tools_name_output(wanted.output.get()));
  }
  return v_tools_good;
}

} // namespace

int v_tools_export(int argc, char **argv) {
  VCommandOptions options(
      "FILE",
      "Writes a codeset in another form, all of it in UTF-8:\n"
      "  csv   a table for spreadsheets: a column for the codes, one for each language\n"
      "  skos  a vocabulary in SKOS, written in Turtle\n"
      "  html  a sheet for the wall, to be printed on A4 by a web browser",
      "Without --base, the addresses of a vocabulary are made of the name of the file:\n"
      "urn:x-codeset:NAME:CODE. Without --language, a sheet is in all languages.");
  Export wanted;
  options.add_text("to", '\0', "Write this form: csv, skos or html", "FORMAT", wanted.format);
  options.add_file("output", 'o', "Write this file instead of standard output", "OUT",
                   wanted.output);
  options.add_switch("force", '\0', "Replace a file that exists", wanted.may_replace);
  options.add_switch("with-header", '\0', "csv: begin with name, author and version",
                     wanted.has_header);
  options.add_text("base", '\0', "skos: the address of the vocabulary", "URI", wanted.base);
  options.add_text("language", 'l', "html: a sheet in this language", "TAG", wanted.language);
  if (const std::optional<int> status = options.parse(argc, argv, 1, 1)) {
    return *status;
  }
  return run_export(wanted, options.files[0].c_str());
}
