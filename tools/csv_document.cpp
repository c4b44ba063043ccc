#include "csv_document.h"

#include <glib.h>

namespace {

bool begins_with(std::string_view text, std::string_view beginning) {
  return text.substr(0, beginning.size()) == beginning;
}

// In UTF-16 without a byte order mark, every other byte of Western European text is zero.
bool is_utf16(std::string_view document) {
  return begins_with(document, "\xFE\xFF") || begins_with(document, "\xFF\xFE") ||
         document.substr(0, 2).find('\0') != std::string_view::npos;
}

bool is_spreadsheet(std::string_view document) {
  return begins_with(document, "PK\x03\x04") || begins_with(document, "\xD0\xCF\x11\xE0");
}

bool can_delimit(char byte) { return byte == '\t' || (g_ascii_ispunct(byte) && byte != '"'); }

} // namespace

const char *v_csv_find_wrong_kind(std::string_view document) {
  if (document.empty()) {
    return "The file is empty.";
  }
  if (is_utf16(document)) {
    return "The file is written in UTF-16, not in UTF-8. Save it from the spreadsheet as \"Text "
           "CSV\" with the character set Unicode (UTF-8).";
  }
  if (is_spreadsheet(document)) {
    return "The file is a spreadsheet, not csv. Open it in its program and save it as \"Text CSV\" "
           "with the character set Unicode (UTF-8).";
  }
  return nullptr;
}

CsvDocument v_csv_open_document(std::string_view document) {
  std::string_view text = document;
  if (begins_with(text, "\xEF\xBB\xBF")) {
    text.remove_prefix(3);
  }
  constexpr std::size_t length = 5; // of "sep=;"
  const bool has_line = text.size() > length && (text[length] == '\r' || text[length] == '\n') &&
                        g_ascii_strncasecmp(text.data(), "sep=", 4) == 0 &&
                        can_delimit(text[length - 1]);
  if (!has_line) {
    return {text};
  }
  const std::size_t line_end = begins_with(text.substr(length), "\r\n") ? 2 : 1;
  return {text.substr(length + line_end), 2, text[length - 1]};
}
