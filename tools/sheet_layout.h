#pragma once
// How large the letters of a sheet are, and how wide its columns. A short list is read from afar,
// so it gets the largest letters with which it still fits on one page. Widths of texts are
// estimated: only the browser knows its fonts.

#include <cstddef>
#include <string>
#include <vector>

// A code on the sheet, with its texts.
struct SheetRow {
  std::vector<std::size_t> text_lengths; // characters
  bool begins_family = false;            // has a gap above it
};

struct SheetContent {
  std::vector<SheetRow> rows;
  std::size_t longest_code = 0;  // characters
  std::size_t longest_tag = 0;   // characters; 0 when no text has one
  std::size_t header_length = 0; // characters below the title
};

// Lists with more codes do not fit on one page.
inline constexpr std::size_t v_sheet_most_rows_to_measure = 150;

struct SheetLayout {
  int points = 10;       // size of the letters; this one for lists of several pages
  int columns = 2;       // likewise
  double code_width = 0; // of the column of codes, in sizes of a letter
  double tag_width = 0;  // of the column of tags, in the same unit
};

SheetLayout v_sheet_choose_layout(const SheetContent &content);
// The layout as properties of a style sheet.
std::string v_sheet_format_layout(const SheetLayout &layout);
