#pragma once
// Chooses the font size and the column widths of a sheet. Sheets are read from a distance, so a
// short list gets the largest font with which it fits on one page. Text widths are estimates,
// because only the browser knows its fonts.

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
  std::size_t header_length = 0; // characters of the lines below the title
};

// Lists with more codes never fit on one page.
inline constexpr std::size_t v_sheet_maximum_rows_to_measure = 150;

struct SheetLayout {
  int points = 10;       // font size; the default is for lists of several pages
  int columns = 2;       // likewise
  double code_width = 0; // of the codes, in em
  double tag_width = 0;  // of the tags, in em
};

SheetLayout v_sheet_choose_layout(const SheetContent &content);
// The layout as CSS custom properties.
std::string v_sheet_format_layout(const SheetLayout &layout);
