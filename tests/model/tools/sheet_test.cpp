#include "tools/sheet.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/text_encoding.h"
#include "support/values/codesets.h"
#include "tools/sheet_style.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

OwnedCodeset easel() {
  return codeset_of({{"en-uk", "Easel paintings"}, {"sv", "Stafflim\xE5lningar"}},
                    {{"en-uk", "A. Lind"}}, "1.1",
                    {{"Ab1", {{"en-uk", "Abrasion"}, {"sv", "Avn\xF6tning"}}},
                     {"Ab2", {{"en-uk", "Scratch"}}},
                     {"Cr1", {{"de", "Sprung"}, {"sv-fi", "Spricka"}}}});
}

std::string sheet_in(const OwnedCodeset &codeset, const std::vector<std::string> &languages) {
  VSettings settings;
  settings.preferred_languages = languages;
  return v_sheet_write_codeset(codeset.get(), &settings)->str;
}

std::string sheet_in_all_languages(const OwnedCodeset &codeset) {
  return v_sheet_write_codeset(codeset.get(), nullptr)->str;
}

std::string sheet_of(const Remarks &remarks) {
  return sheet_in_all_languages(codeset_of({{"", "Name"}}, {}, nullptr, remarks));
}

std::string body_of(const std::string &html) { return html.substr(html.find("<body>")); }

TEST(Sheet, HasAllLanguagesWithTheirTags) {
  const std::string html = sheet_in_all_languages(easel());
  EXPECT_THAT(html, StartsWith("<!DOCTYPE html>\n"
                               "<html lang=\"en-GB\">\n"
                               "<head>\n"
                               "<meta charset=\"utf-8\">\n"));
  EXPECT_THAT(html, HasSubstr("<title>Easel paintings 1.1</title>\n"));
  EXPECT_EQ(body_of(html), "<body>\n"
                           "<article>\n"
                           "<header>\n"
                           "<h1 lang=\"en-GB\">Easel paintings</h1>\n"
                           "<p class=\"names\">\n"
                           "<span lang=\"en-GB\" data-tag=\"en-uk\">Easel paintings</span>\n"
                           "<span lang=\"sv\" data-tag=\"sv\">Stafflimålningar</span>\n"
                           "</p>\n"
                           "<p class=\"authors\">\n"
                           "<span lang=\"en-GB\" data-tag=\"en-uk\">A. Lind</span>\n"
                           "</p>\n"
                           "<p class=\"version\">1.1</p>\n"
                           "</header>\n"
                           "<dl>\n"
                           "<div class=\"first\">\n"
                           "<dt>Ab1</dt>\n"
                           "<dd lang=\"en-GB\" data-tag=\"en-uk\">Abrasion</dd>\n"
                           "<dd lang=\"sv\" data-tag=\"sv\">Avnötning</dd>\n"
                           "</div>\n"
                           "<div>\n"
                           "<dt>Ab2</dt>\n"
                           "<dd lang=\"en-GB\" data-tag=\"en-uk\">Scratch</dd>\n"
                           "</div>\n"
                           "<div class=\"first\">\n"
                           "<dt>Cr1</dt>\n"
                           "<dd lang=\"de\" data-tag=\"de\">Sprung</dd>\n"
                           "<dd lang=\"sv-FI\" data-tag=\"sv-fi\">Spricka</dd>\n"
                           "</div>\n"
                           "</dl>\n"
                           "</article>\n"
                           "</body>\n"
                           "</html>\n");
}

TEST(Sheet, HasOneLanguageWithTagsOnlyWhereItIsMissing) {
  const std::string html = sheet_in(easel(), {"sv", "en-uk"});
  EXPECT_THAT(html, HasSubstr("<html lang=\"sv\">\n"));
  EXPECT_THAT(html, HasSubstr("<title>Stafflimålningar 1.1</title>\n"));
  EXPECT_EQ(body_of(html), "<body>\n"
                           "<article>\n"
                           "<header>\n"
                           "<h1 lang=\"sv\">Stafflimålningar</h1>\n"
                           "<p class=\"authors\">\n"
                           "<span lang=\"en-GB\" data-tag=\"en-uk\">A. Lind</span>\n"
                           "</p>\n"
                           "<p class=\"version\">1.1</p>\n"
                           "</header>\n"
                           "<dl>\n"
                           "<div class=\"first\">\n"
                           "<dt>Ab1</dt>\n"
                           "<dd lang=\"sv\">Avnötning</dd>\n"
                           "</div>\n"
                           "<div>\n"
                           "<dt>Ab2</dt>\n"
                           "<dd lang=\"en-GB\" data-tag=\"en-uk\">Scratch</dd>\n"
                           "</div>\n"
                           "<div class=\"first\">\n"
                           "<dt>Cr1</dt>\n"
                           "<dd lang=\"sv-FI\">Spricka</dd>\n"
                           "</div>\n"
                           "</dl>\n"
                           "</article>\n"
                           "</body>\n"
                           "</html>\n");
}

TEST(Sheet, EscapesTexts) {
  const std::string html =
      sheet_in_all_languages(codeset_of({{"", "<b>\"A\" & \\B\\</style>"}}, {}, nullptr,
                                        {{"<i>", {{"\"><b x=\"", "<script>&amp;'\"</script>"}}}}));
  EXPECT_THAT(html, HasSubstr("<title>&lt;b&gt;&quot;A&quot; &amp; \\B\\&lt;/style&gt;</title>"));
  EXPECT_THAT(html, HasSubstr("content: \"\\3c b>\\22 A\\22  & \\5c B\\5c \\3c /style>\";"));
  EXPECT_THAT(html, HasSubstr("<dt>&lt;i&gt;</dt>\n"
                              "<dd lang=\"x-b-x\" data-tag=\"&quot;&gt;&lt;b x=&quot;\">"
                              "&lt;script&gt;&amp;amp;&apos;&quot;&lt;/script&gt;</dd>\n"));
}

TEST(Sheet, HasNoTagForATextOfUnknownLanguage) {
  EXPECT_THAT(sheet_of({{"1", {{"", "Tear"}}}}), HasSubstr("<dd lang=\"\">Tear</dd>\n"));
}

TEST(Sheet, SetsCodesWithDifferentLettersApart) {
  const std::string html = sheet_of({{"1", {}},
                                     {"2", {}},
                                     {"A1", {}},
                                     {"A22", {}},
                                     {"B1", {}},
                                     {"Bb1", {}},
                                     {"Crack", {}},
                                     {"Craze", {}}});
  std::string first;
  for (std::size_t at = 0; (at = html.find("\"first\">\n<dt>", at)) != std::string::npos; at++) {
    first += html.substr(at + 13, html.find("</dt>", at) - at - 13) + " ";
  }
  EXPECT_EQ(first, "1 A1 B1 Bb1 Crack ");
}

TEST(Sheet, KeepsARowForACodeWithoutDescription) {
  const std::string row = "<div class=\"first\">\n<dt>A1</dt>\n</div>\n";
  EXPECT_THAT(sheet_of({{"A1", {}}}), HasSubstr(row));
  EXPECT_THAT(sheet_in(codeset_of({{"", "Name"}}, {}, nullptr, {{"A1", {}}}), {"sv"}),
              HasSubstr(row));
}

TEST(Sheet, HasNoLinesForMissingParts) {
  EXPECT_THAT(body_of(sheet_of({})), StartsWith("<body>\n"
                                                "<article>\n"
                                                "<header>\n"
                                                "<h1 lang=\"\">Name</h1>\n"
                                                "</header>\n"
                                                "<dl>\n"
                                                "</dl>\n"));
}

// The font size of a list, from its style sheet.
std::string letters_of(const std::string &html) {
  const std::size_t begin = html.find("--letters: ");
  return html.substr(begin + 11, html.find(';', begin) - begin - 11);
}

TEST(Sheet, UsesALargeFontForAShortList) {
  EXPECT_EQ(letters_of(sheet_of({{"A1", {{"en", "Tear"}}}})), "18pt");
}

TEST(Sheet, UsesALargerFontForOneLanguageThanForAll) {
  Remarks remarks;
  for (int i = 10; i < 26; i++) {
    remarks.push_back({std::to_string(i), {{"en", "Tear"}, {"sv", "Reva"}, {"de", "Riss"}}});
  }
  const OwnedCodeset codeset = codeset_of({{"", "Name"}}, {}, nullptr, remarks);
  EXPECT_EQ(letters_of(sheet_in(codeset, {"sv"})), "18pt");
  EXPECT_NE(letters_of(sheet_in_all_languages(codeset)), "18pt");
}

TEST(Sheet, UsesTheNormalFontForALongList) {
  Remarks remarks;
  for (int i = 1000; i < 1151; i++) {
    remarks.push_back({std::to_string(i), {}});
  }
  EXPECT_EQ(letters_of(sheet_of(remarks)), "10pt");
}

TEST(Sheet, MayBreakOnlyLongTexts) {
  const std::string html =
      sheet_of({{"A1", {{"en", std::string(600, 'a')}}},
                {"A2", {{"en", std::string(601, 'a')}}},
                {"B1", {{"en", std::string(300, 'a')}, {"sv", std::string(301, 'b')}}}});
  EXPECT_THAT(html, HasSubstr("<div class=\"first\">\n<dt>A1</dt>"));
  EXPECT_THAT(html, HasSubstr("<div class=\"long\">\n<dt>A2</dt>"));
  EXPECT_THAT(html, HasSubstr("<div class=\"first long\">\n<dt>B1</dt>"));
}

TEST(Sheet, HasNoTagsWhenThereIsOnlyOneLanguage) {
  const std::string html = sheet_in_all_languages(
      codeset_of({{"en", "Name"}}, {{"en", "Author"}}, nullptr, {{"A1", {{"en", "Tear"}}}}));
  EXPECT_THAT(html, HasSubstr("<dd lang=\"en\">Tear</dd>"));
  EXPECT_THAT(html, HasSubstr("<span lang=\"en\">Author</span>"));
}

TEST(Sheet, IncludesTheStyleSheetOfPrintedCodesets) {
  EXPECT_TRUE(v_ascii_test(v_sheet_style));
  EXPECT_THAT(sheet_of({}), HasSubstr(std::string("<style>\n") + v_sheet_style));
}

TEST(Sheet, IsCompleteForManyCodes) {
  Remarks remarks;
  for (int i = 1000; i < 9000; i++) {
    remarks.push_back({std::to_string(i), {{"sv", "\xE5"}}});
  }
  const std::string html = sheet_of(remarks);
  std::size_t at = 0;
  for (const auto &[code, description] : remarks) {
    const std::string item = "<dt>" + code + "</dt>\n<dd lang=\"sv\" data-tag=\"sv\">å</dd>\n";
    at = html.find(item, at);
    ASSERT_NE(at, std::string::npos) << code;
  }
  EXPECT_THAT(html, EndsWith("</html>\n"));
}

} // namespace
