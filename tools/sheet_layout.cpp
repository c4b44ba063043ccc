#include "sheet_layout.h"

#include <algorithm>
#include <cmath>

#include "base/owned.h"

namespace {

// These figures must match the style sheet.
constexpr double page_width = 180;  // mm, without margins
constexpr double page_height = 265; // mm, likewise
constexpr double column_gap = 9;    // mm
constexpr double line_height = 1.3; // em
constexpr double row_padding = 0.7; // em, including the rule between two rows
constexpr double family_gap = 0.6;  // em
constexpr double mm_of_point = 25.4 / 72;

// Estimated average widths. A character of wrapped text takes more, because each line ends before a
// word that does not fit.
constexpr double character_width = 0.46;         // em
constexpr double wrapped_character_width = 0.51; // em
constexpr double code_character_width = 0.6;     // em, bold
constexpr double tag_character_width = 0.4;      // em, small
constexpr double code_gap = 0.5;                 // em
constexpr double tag_gap = 0.6;                  // em
// Rows do not break across columns, so columns are not filled to the end.
constexpr double usable_part = 0.96;

// Characters for which space is reserved; longer codes and tags are wrapped.
constexpr std::size_t minimum_code_length = 5;
constexpr std::size_t maximum_code_length = 14;
constexpr std::size_t maximum_tag_length = 9;

struct Letters {
  int points;
  int columns;
};

// The largest first. Large fonts need the whole width.
constexpr Letters choices[] = {{18, 1}, {16, 1}, {14, 1}, {14, 2}, {13, 2},
                               {12, 2}, {11, 2}, {10, 2}, {9, 2}};

double count_lines(std::size_t length, double width) {
  const double characters = static_cast<double>(length);
  if (characters * character_width <= width) {
    return 1;
  }
  return std::ceil(characters * wrapped_character_width / std::max(width, 1.0));
}

double em_in_mm(const SheetLayout &layout) { return layout.points * mm_of_point; }

// Width of a description, in em.
double find_text_width(const SheetLayout &layout) {
  const double column = (page_width - (layout.columns - 1) * column_gap) / layout.columns;
  return column / em_in_mm(layout) - layout.code_width - layout.tag_width;
}

// Height of all rows in a single column, in em.
double find_list_height(const SheetContent &content, const SheetLayout &layout) {
  const double width = find_text_width(layout);
  double height = 0;
  for (const SheetRow &row : content.rows) {
    double lines = row.text_lengths.empty() ? 1 : 0;
    for (const std::size_t length : row.text_lengths) {
      lines += count_lines(length, width);
    }
    height += lines * line_height + row_padding + (row.begins_family ? family_gap : 0);
  }
  return height;
}

// Height of the title and the lines below it, in em.
double find_header_height(const SheetContent &content, const SheetLayout &layout) {
  constexpr double title_and_gaps = 4;
  const double width = page_width / em_in_mm(layout);
  return title_and_gaps + line_height * (1 + count_lines(content.header_length, width));
}

bool fits_on_one_page(const SheetContent &content, const SheetLayout &layout) {
  const double height =
      page_height / em_in_mm(layout) * usable_part - find_header_height(content, layout);
  return find_list_height(content, layout) <= height * layout.columns;
}

} // namespace

SheetLayout v_sheet_choose_layout(const SheetContent &content) {
  SheetLayout layout;
  const std::size_t code_length =
      std::clamp(content.longest_code, minimum_code_length, maximum_code_length);
  const std::size_t tag_length = std::min(content.longest_tag, maximum_tag_length);
  layout.code_width = code_gap + code_character_width * static_cast<double>(code_length);
  layout.tag_width =
      tag_length == 0 ? 0 : tag_gap + tag_character_width * static_cast<double>(tag_length);
  if (content.rows.size() > v_sheet_maximum_rows_to_measure) {
    return layout;
  }
  for (const Letters &letters : choices) {
    SheetLayout chosen = layout;
    chosen.points = letters.points;
    chosen.columns = letters.columns;
    if (fits_on_one_page(content, chosen)) {
      return chosen;
    }
  }
  return layout;
}

std::string v_sheet_format_layout(const SheetLayout &layout) {
  char code_width[G_ASCII_DTOSTR_BUF_SIZE];
  char tag_width[G_ASCII_DTOSTR_BUF_SIZE];
  g_ascii_formatd(code_width, sizeof code_width, "%.2f", layout.code_width);
  g_ascii_formatd(tag_width, sizeof tag_width, "%.2f", layout.tag_width);
  const OwnedText css(g_strdup_printf("article {\n"
                                      "  --letters: %dpt;\n"
                                      "  --columns: %d;\n"
                                      "  --code-width: %sem;\n"
                                      "  --tag-width: %sem;\n"
                                      "}\n",
                                      layout.points, layout.columns, code_width, tag_width));
  return css.get();
}
