#include "tools/csv_writing.h"

#include <string>

#include <gtest/gtest.h>

#include "support/values/codesets.h"

namespace {

// Without a name, an author and a version.
OwnedCodeset table_of(const Remarks &remarks) { return codeset_of({}, {}, nullptr, remarks); }

std::string csv_of(const VCodeset *codeset, bool with_header) {
  const OwnedUtf8String csv = v_csv_write_codeset(codeset, with_header);
  return {csv->str, csv->len};
}

TEST(CsvWriting, WritesAColumnForEachLanguageInOrderOfFirstAppearance) {
  const OwnedCodeset codeset = table_of({{"1", {{"sv", "ett"}}},
                                         {"2", {{"en-uk", "two"}, {"sv", "tv\xE5"}}},
                                         {"3", {{"", "III"}, {"en-uk", "three"}}}});
  EXPECT_EQ(csv_of(codeset.get(), false), "code,sv,en-uk,\r\n"
                                          "1,ett,,\r\n"
                                          "2,tv\xC3\xA5,two,\r\n"
                                          "3,,three,III\r\n");
}

TEST(CsvWriting, QuotesTextsWithDelimitersAndQuotationMarks) {
  const OwnedCodeset codeset =
      table_of({{"a,b", {{"sv", "\"x\""}, {"a;b", "; \xFF"}, {"de", "tab\there"}}},
                {"c", {{"sv", "'x'"}, {"de", "line\r\nend"}}}});
  EXPECT_EQ(csv_of(codeset.get(), false), "code,sv,\"a;b\",de\r\n"
                                          "\"a,b\",\"\"\"x\"\"\",\"; \xC3\xBF\",\"tab\there\"\r\n"
                                          "c,'x',,\"line\r\nend\"\r\n");
}

TEST(CsvWriting, LeavesNameAuthorAndVersionOutUnlessTheyAreWanted) {
  const OwnedCodeset codeset =
      codeset_of({{"en-uk", "Easel"}}, {{"de", "Anna"}}, "1.1", {{"1", {{"sv", "ett"}}}});
  EXPECT_EQ(csv_of(codeset.get(), false), "code,sv\r\n1,ett\r\n");
}

TEST(CsvWriting, WritesNameAuthorAndVersionAboveTheColumnNames) {
  const OwnedCodeset codeset = codeset_of({{"en-uk", "Easel"}, {"sv", "Staffli"}},
                                          {{"de", "Anna, Bo"}}, "1.1", {{"1", {{"sv", "ett"}}}});
  EXPECT_EQ(csv_of(codeset.get(), true), "name,Easel,Staffli,\r\n"
                                         "author,,,\"Anna, Bo\"\r\n"
                                         "version,1.1,,\r\n"
                                         "code,en-uk,sv,de\r\n"
                                         "1,,ett,\r\n");
}

TEST(CsvWriting, LeavesOutLinesForMissingParts) {
  const OwnedCodeset codeset = table_of({{"1", {{"sv", "ett"}}}});
  EXPECT_EQ(csv_of(codeset.get(), true), "code,sv\r\n1,ett\r\n");
}

TEST(CsvWriting, WritesOnlyTheColumnOfTheCodesWithoutRemarks) {
  EXPECT_EQ(csv_of(table_of({}).get(), false), "code\r\n");
  EXPECT_EQ(csv_of(codeset_of({}, {}, "1", {}).get(), true), "version\r\ncode\r\n");
}

} // namespace
