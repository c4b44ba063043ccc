#include "sheet_layout.h"

#include <algorithm>

#include <gtest/gtest.h>

namespace {

SheetContent content_of(std::size_t rows, const SheetRow &row) {
  SheetContent content;
  content.rows.assign(rows, row);
  content.longest_code = 3;
  content.header_length = 40;
  return content;
}

int points_of(std::size_t rows, std::size_t length) {
  return v_sheet_choose_layout(content_of(rows, {{length}, false})).points;
}

TEST(SheetLayout, GivesShortListsALargeFontInOneColumn) {
  const SheetLayout layout = v_sheet_choose_layout(content_of(10, {{30}, false}));
  EXPECT_EQ(layout.points, 18);
  EXPECT_EQ(layout.columns, 1);
}

TEST(SheetLayout, GivesListsOfSeveralPagesTheNormalFontInTwoColumns) {
  for (const std::size_t rows : {std::size_t(120), v_sheet_maximum_rows_to_measure + 1}) {
    const SheetLayout layout = v_sheet_choose_layout(content_of(rows, {{60}, false}));
    EXPECT_EQ(layout.points, 10);
    EXPECT_EQ(layout.columns, 2);
  }
}

TEST(SheetLayout, GivesAListThatNearlyFitsOnOnePageASmallFont) {
  int smallest = 10;
  for (std::size_t rows = 40; rows < 120; rows++) {
    smallest = std::min(smallest, points_of(rows, 40));
  }
  EXPECT_EQ(smallest, 9);
}

TEST(SheetLayout, NeverGivesALongerListALargerFont) {
  int points = points_of(1, 30);
  for (std::size_t rows = 1; points > 10; rows++) {
    EXPECT_LE(points_of(rows, 30), points) << rows;
    points = points_of(rows, 30);
  }
}

// The number of such rows that fit on a page in the largest font.
std::size_t count_rows_that_fit(const SheetRow &row, std::size_t header_length = 40) {
  std::size_t rows = 0;
  SheetContent content;
  do {
    rows++;
    content = content_of(rows, row);
    content.header_length = header_length;
  } while (v_sheet_choose_layout(content).points == 18);
  return rows - 1;
}

TEST(SheetLayout, CountsEverythingThatTakesSpace) {
  const std::size_t rows = count_rows_that_fit({{30}, false});
  EXPECT_LT(count_rows_that_fit({{200}, false}), rows) << "long texts";
  EXPECT_LT(count_rows_that_fit({{30, 30}, false}), rows) << "several languages";
  EXPECT_LT(count_rows_that_fit({{30}, true}), rows) << "gaps between families";
  EXPECT_LT(count_rows_that_fit({{30}, false}, 900), rows) << "long names";
}

TEST(SheetLayout, ReservesSpaceForACodeWithoutText) {
  EXPECT_LT(v_sheet_choose_layout(content_of(60, {})).points, 18);
}

TEST(SheetLayout, WidensTheColumnOfCodesUpToALimit) {
  const auto width = [](std::size_t length) {
    SheetContent content = content_of(1, {{30}, false});
    content.longest_code = length;
    return v_sheet_choose_layout(content).code_width;
  };
  EXPECT_DOUBLE_EQ(width(1), width(5));
  EXPECT_LT(width(5), width(6));
  EXPECT_LT(width(13), width(14));
  EXPECT_DOUBLE_EQ(width(14), width(1000));
}

TEST(SheetLayout, HasAColumnForTagsOnlyWhereThereAreTags) {
  const auto width = [](std::size_t length) {
    SheetContent content = content_of(1, {{30}, false});
    content.longest_tag = length;
    return v_sheet_choose_layout(content).tag_width;
  };
  EXPECT_DOUBLE_EQ(width(0), 0);
  EXPECT_LT(width(0), width(2));
  EXPECT_LT(width(2), width(5));
  EXPECT_DOUBLE_EQ(width(9), width(1000));
}

TEST(SheetLayout, IsFormattedAsCssInEveryLocale) {
  EXPECT_EQ(
      v_sheet_format_layout({.points = 12, .columns = 2, .code_width = 3.5, .tag_width = 2.25}),
      "article {\n"
      "  --letters: 12pt;\n"
      "  --columns: 2;\n"
      "  --code-width: 3.50em;\n"
      "  --tag-width: 2.25em;\n"
      "}\n");
}

} // namespace
