#include "tools/csv_reading.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/error.h"
#include "support/values/remarks.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;

const Remarks table = {{"Ab1", {{"en-uk", "Abrasion"}, {"sv", "Avn\xF6tning"}}},
                       {"Ab2", {{"en-uk", "Worn"}, {"sv", "Sliten"}}}};

OwnedCodeset read(const std::string &csv) {
  v_error_set("of an earlier failure");
  OwnedCodeset codeset = v_csv_read_codeset(csv);
  EXPECT_NE(codeset, nullptr) << v_error_get() << "\n" << csv;
  return codeset ? std::move(codeset) : v_codeset_new();
}

Remarks remarks_in(const std::string &csv) { return remarks_of(read(csv)->remarks); }

// The message for a document that is refused.
std::string refusal(const std::string &csv) {
  v_error_set("of an earlier failure");
  EXPECT_EQ(v_csv_read_codeset(csv), nullptr) << csv;
  return v_error_get();
}

// ---- What is read -------------------------------------------------------------------------------

struct Spelling {
  const char *name;
  std::string csv;
};

void PrintTo(const Spelling &spelling, std::ostream *stream) { *stream << spelling.name; }

class SpellingOfTheSameTable : public testing::TestWithParam<Spelling> {};

TEST_P(SpellingOfTheSameTable, IsReadAsTheSameRemarks) {
  EXPECT_EQ(remarks_in(GetParam().csv), table);
}

// "ö" is C3 B6 in UTF-8.
INSTANTIATE_TEST_SUITE_P(
    CsvReading, SpellingOfTheSameTable,
    testing::Values(
        Spelling{"Plain", "code,en-uk,sv\r\nAb1,Abrasion,Avn\xC3\xB6tning\r\nAb2,Worn,Sliten\r\n"},
        Spelling{"LineFeeds", "code,en-uk,sv\nAb1,Abrasion,Avn\xC3\xB6tning\nAb2,Worn,Sliten\n"},
        Spelling{"CarriageReturns",
                 "code,en-uk,sv\rAb1,Abrasion,Avn\xC3\xB6tning\rAb2,Worn,Sliten\r"},
        Spelling{"MixedLineEnds",
                 "code,en-uk,sv\nAb1,Abrasion,Avn\xC3\xB6tning\rAb2,Worn,Sliten\r\n"},
        Spelling{"NoLastLineEnd", "code,en-uk,sv\nAb1,Abrasion,Avn\xC3\xB6tning\nAb2,Worn,Sliten"},
        Spelling{"QuotedLastFieldWithoutLineEnd",
                 "code,en-uk,sv\nAb1,Abrasion,Avn\xC3\xB6tning\nAb2,Worn,\"Sliten\""},
        Spelling{"Semicolons", "code;en-uk;sv\nAb1;Abrasion;Avn\xC3\xB6tning\nAb2;Worn;Sliten\n"},
        Spelling{"Tabs", "code\ten-uk\tsv\nAb1\tAbrasion\tAvn\xC3\xB6tning\nAb2\tWorn\tSliten\n"},
        Spelling{"ByteOrderMark",
                 "\xEF\xBB\xBF"
                 "code;en-uk;sv\r\nAb1;Abrasion;Avn\xC3\xB6tning\r\nAb2;Worn;Sliten\r\n"},
        Spelling{"EverythingQuoted", "\"code\";\"en-uk\";\"sv\"\r\n"
                                     "\"Ab1\";\"Abrasion\";\"Avn\xC3\xB6tning\"\r\n"
                                     "\"Ab2\";\"Worn\";\"Sliten\"\r\n"},
        Spelling{"ByteOrderMarkAndQuotes",
                 "\xEF\xBB\xBF"
                 "\"code\",\"en-uk\",\"sv\"\n\"Ab1\",\"Abrasion\",\"Avn\xC3\xB6tning\"\n"
                 "\"Ab2\",\"Worn\",\"Sliten\"\n"},
        Spelling{"WhiteSpaceAroundFields",
                 " code , en-uk\t, sv\nAb1 ,  Abrasion, \"Avn\xC3\xB6tning\" \n"
                 "\tAb2,\t\"Worn\"\t,Sliten\v\n"},
        Spelling{"LineWithTheDelimiter",
                 "sep=;\r\ncode;en-uk;sv\r\nAb1;Abrasion;Avn\xC3\xB6tning\r\nAb2;Worn;Sliten\r\n"},
        Spelling{
            "LineWithARareDelimiter",
            "\xEF\xBB\xBFSEP=|\ncode|en-uk|sv\nAb1|Abrasion|Avn\xC3\xB6tning\nAb2|Worn|Sliten\n"},
        Spelling{
            "TrailingEmptyColumnsAndLines",
            "code,en-uk,sv,,\nAb1,Abrasion,Avn\xC3\xB6tning,,\nAb2,Worn,Sliten,,\n,,,,\n,,,,\n"},
        Spelling{"EmptyLinesBetween",
                 "\n \n,\ncode,en-uk,sv\n\nAb1,Abrasion,Avn\xC3\xB6tning\n\t\nAb2,Worn,Sliten\n\n"},
        Spelling{"EmptyFieldsBeyondTheColumns",
                 "code,en-uk,sv\nAb1,Abrasion,Avn\xC3\xB6tning,, \nAb2,Worn,Sliten\n"},
        Spelling{"CodesInAnotherColumnThanTheFirst",
                 "en-uk,CODE,sv\nAbrasion,Ab1,Avn\xC3\xB6tning\nWorn,Ab2,Sliten\n"},
        Spelling{"LinesInAnyOrder",
                 "code,en-uk,sv\nAb2,Worn,Sliten\nAb1,Abrasion,Avn\xC3\xB6tning\n"},
        // An o followed by a combining diaeresis.
        Spelling{"AccentsAsCharactersOfTheirOwn",
                 "code,en-uk,sv\nAb1,Abrasion,Avno\xCC\x88tning\nAb2,Worn,Sliten\n"}),
    [](const auto &tested) { return tested.param.name; });

TEST(CsvReading, TakesFieldsLiterally) {
  EXPECT_EQ(remarks_in("code,sv,de\n"
                       "1,\"a, b; c\td\",\"\"\"e\"\" f\"\n"
                       "2,5\" nail,\"\"\"\"\n"
                       "3,=1+1,'x'\n"),
            (Remarks{{"1", {{"sv", "a, b; c d"}, {"de", "\"e\" f"}}},
                     {"2", {{"sv", "5\" nail"}, {"de", "\""}}},
                     {"3", {{"sv", "=1+1"}, {"de", "'x'"}}}}));
}

TEST(CsvReading, CollapsesWhitespaceLikeTheCodesetReader) {
  EXPECT_EQ(remarks_in("code,sv\n\" A\n1 \",\"  two\r\n\r\nlines\tand\ra  tab \"\n"),
            (Remarks{{"A 1", {{"sv", "two lines and a tab"}}}}));
}

TEST(CsvReading, ReadsAnEmptyFieldAsNoTranslation) {
  EXPECT_EQ(remarks_in("code,en-uk,sv\n1,,ett\n2,two\n3,\" \",tre\n"),
            (Remarks{{"1", {{"sv", "ett"}}}, {"2", {{"en-uk", "two"}}}, {"3", {{"sv", "tre"}}}}));
}

TEST(CsvReading, ReadsAColumnWithoutANameAsTextsOfUnknownLanguage) {
  EXPECT_EQ(remarks_in("code,,sv,\n1,x,ett,\n2,y,,\n"),
            (Remarks{{"1", {{"", "x"}, {"sv", "ett"}}}, {"2", {{"", "y"}}}}));
}

TEST(CsvReading, SortsTheCodesNaturally) {
  EXPECT_EQ(codes_of(read("code,sv\n10,a\na,a\n2,a\nA,a\n02,a\n")->remarks),
            (Codes{"02", "2", "10", "A", "a"}));
}

TEST(CsvReading, ReadsNameAuthorAndVersionAboveTheColumnNames) {
  const OwnedCodeset codeset = read("name,Easel,Staffli\nAuthor,,Anna\nVERSION,1.1,\n"
                                    "code,en-uk,sv\n1,one,ett\n");
  EXPECT_EQ(translations_of(codeset->name), (Translations{{"en-uk", "Easel"}, {"sv", "Staffli"}}));
  EXPECT_EQ(translations_of(codeset->author), (Translations{{"sv", "Anna"}}));
  EXPECT_STREQ(codeset->version.get(), "1.1");
}

TEST(CsvReading, FindsTheDelimiterBelowNamesWithCommas) {
  const OwnedCodeset codeset =
      read("name;Canvas, panel, board;\"Duk; \"\"p\xC3\xA5\"\" ram\"\ncode;en-uk;sv\n1;one;ett\n");
  EXPECT_EQ(translations_of(codeset->name),
            (Translations{{"en-uk", "Canvas, panel, board"}, {"sv", "Duk; \"p\xE5\" ram"}}));
}

TEST(CsvReading, KeepsQuotationMarksInEveryLineAboveTheColumnNames) {
  const OwnedCodeset codeset =
      read("name,\"\"\"a\"\"\"\nauthor,\"\"\"b\"\"\"\nversion,\"\"\"1\"\"\"\n"
           "code,sv\n1,ett\n");
  EXPECT_EQ(translations_of(codeset->name), (Translations{{"sv", "\"a\""}}));
  EXPECT_EQ(translations_of(codeset->author), (Translations{{"sv", "\"b\""}}));
  EXPECT_STREQ(codeset->version.get(), "\"1\"");
}

TEST(CsvReading, ReadsLabelsInTheColumnOfTheCodesWhereverItIs) {
  const OwnedCodeset codeset = read("Easel,name\n,version,1.1\nen-uk,code,sv\none,1,ett\n");
  EXPECT_EQ(translations_of(codeset->name), (Translations{{"en-uk", "Easel"}}));
  EXPECT_STREQ(codeset->version.get(), "1.1");
}

TEST(CsvReading, LeavesNameAuthorAndVersionEmptyWithoutTheirLines) {
  const OwnedCodeset codeset = read("name,,\nversion\ncode,en-uk,sv\n1,one,ett\n");
  EXPECT_EQ(codeset->name, nullptr);
  EXPECT_EQ(codeset->author, nullptr);
  EXPECT_EQ(codeset->version, nullptr);
}

TEST(CsvReading, ReadsALabelledLineThatHoldsTheWordCode) {
  EXPECT_EQ(translations_of(read("name,code\ncode,en-uk\n1,one\n")->name),
            (Translations{{"en-uk", "code"}}));
}

TEST(CsvReading, ReadsLabelsAsCodesBelowTheColumnNames) {
  EXPECT_EQ(codes_of(read("code,sv\nname,a\ncode,b\nversion,c\n")->remarks),
            (Codes{"code", "name", "version"}));
}

// ---- What is refused ----------------------------------------------------------------------------

struct Refused {
  const char *name;
  std::string csv;
  const char *message; // its beginning
};

void PrintTo(const Refused &refused, std::ostream *stream) { *stream << refused.name; }

class RefusedTable : public testing::TestWithParam<Refused> {};

TEST_P(RefusedTable, IsNamedWithItsPlace) {
  EXPECT_THAT(refusal(GetParam().csv), StartsWith(GetParam().message));
}

using namespace std::string_literals;

INSTANTIATE_TEST_SUITE_P(
    CsvReading, RefusedTable,
    testing::Values(
        Refused{"CharacterOutsideLatin1",
                "code,en-uk,sv\n1,one,ett\n2,two,tv\xE2\x80\x99\xC3\xA5\n",
                "Line 3, column 3 (sv): the character U+2019 (\xE2\x80\x99) is not among those"},
        Refused{"CharacterOutsideTheBasicPlane", "code,sv\n1,\xF0\x9F\x96\xBC\n",
                "Line 2, column 2 (sv): the character U+1F5BC"},
        Refused{"ControlCharacter", "code,sv\n1,a\x01z\n",
                "Line 2, column 2 (sv): the control character U+0001"},
        Refused{"ZeroByte", "code,sv\n1,a\0z\n"s,
                "Line 2, column 2 (sv): the control character U+0000"},
        Refused{"ZeroByteInACode", "code,sv\n1\0,az\n"s,
                "Line 2, column 1 (code): the control character U+0000"},
        Refused{"TextThatIsNotUtf8", "code,sv\n1,Avn\xF6tning\n",
                "Line 2, column 2 (sv): this text is not UTF-8. Save it again with the character "
                "set Unicode (UTF-8)."},
        Refused{"CutCharacter", "code,sv\n1,\xC3\n",
                "Line 2, column 2 (sv): this text is not UTF-8"},
        Refused{"OverlongCharacter", "code,sv\n1,\xC0\x80\n",
                "Line 2, column 2 (sv): this text is not UTF-8"},
        Refused{"CodeTwice", "code,sv\n7,a\n\n07,b\n 7 ,c\n",
                "Line 5, column 1 (code): the code \"7\" is in line 2 already."},
        Refused{"CodeTwiceAboveAnotherFault", "code,sv\n7,a\n7,b\n8,c\n8,d\n9\n",
                "Line 3, column 1 (code): the code \"7\" is in line 2 already."},
        Refused{"CodeWithAmpersand", "code,sv\nA&B,a\n",
                "Line 2, column 1 (code): the code \"A&B\" has \"&\""},
        Refused{"CodeWithLessThan", "code,sv\nA<B,a\n",
                "Line 2, column 1 (code): the code \"A<B\""},
        Refused{"CodeWithEndOfSection", "code,sv\nA]]>,a\n",
                "Line 2, column 1 (code): the code \"A]]>\""},
        Refused{"LineWithoutText", "code,en-uk,sv\n1,one\n2, ,\n",
                "Line 3, column 1 (code): the code \"2\" has no text in any language."},
        Refused{"TextWithoutCode", "code,en-uk,sv\n ,one\n",
                "Line 2, column 1 (code): the text in this line has no code."},
        Refused{"TextWithoutFieldForTheCode", "sv,code\nett\n",
                "Line 2, column 2 (code): the text in this line has no code."},
        Refused{"MoreFieldsThanColumns", "code,sv\n1,red, blue\n",
                "Line 2, column 3: the table has only 2 columns. Put a text with commas"},
        Refused{"TwoColumnsWithoutNameThatHaveTexts", "code,,sv,\n1,x\n2,,,y\n",
                "Line 3, column 4 (no name): column 2 has no name either."},
        Refused{"QuoteThatIsClosedTooLate", "code,sv\n1,\"a\n2,b\n3,\"\"\"c",
                "Line 2, column 2 (sv): there is text after the closing quotation mark."},
        Refused{"QuoteThatIsNotClosed", "code,sv\n1,a\n2,\"b\n3,c\n",
                "Line 3, column 2 (sv): the quotation mark at the beginning of this text has no "
                "closing one."},
        Refused{"TextAfterAQuote", "code,sv\n1,\"a\"b\n",
                "Line 2, column 2 (sv): there is text after the closing quotation mark."},
        Refused{"TagThatIsNotAscii",
                "code,en-uk,fran\xC3\xA7"
                "ais\n1,a,b\n",
                "Line 1, column 3: a language tag has ASCII characters alone"},
        Refused{"TagWithAControlCharacter", "code,s\x02\n1,a\n",
                "Line 1, column 2: the control character U+0002"},
        Refused{"TagTwice", "code,sv,en-uk, sv\n1,a,b,c\n",
                "Line 1, column 4: column 2 is named \"sv\" as well."},
        Refused{"CodesTwice", "code,sv,Code\n1,a,b\n",
                "Line 1, column 3: column 1 is named \"Code\" as well."},
        Refused{"NoColumnOfCodes", "\nkod,sv\n1,a\n",
                "Line 1, column 1: no column is named \"code\"."},
        Refused{"NoColumnOfALanguage", "code\n1\n",
                "Line 1, column 1 (code): there is no other column."},
        Refused{"NoCodes", "version,1\ncode,sv\n,\n",
                "Line 2, column 1 (code): no codes are below."},
        Refused{"ColumnOfNamesInFrontOfTheCodes", "\nName,code,sv\nx,1,a\n",
                "Line 2, column 1: a line that begins with this word is for the whole codeset"},
        Refused{"ColumnOfVersionsInFrontOfTheCodes", "version;code;sv\n1;1;a\n",
                "Line 1, column 1: a line that begins with this word is for the whole codeset"},
        Refused{"TitleAboveTheTable", "Our list of codes\ncode,sv\n1,a\n",
                "Line 1, column 1 (code): only lines with \"name\", \"author\" or \"version\" in "
                "the column \"code\" can be above"},
        Refused{"LabelInAnotherColumnThanTheCodes", "author,Vera\nsv,code\na,1\n",
                "Line 1, column 2 (code): only lines with \"name\", \"author\" or \"version\" in "
                "the column \"code\" can be above"},
        Refused{"NameTwice", "name,a\nversion,1\nname,b\ncode,sv\n1,a\n",
                "Line 3, column 1 (code): line 1 is labelled the same."},
        Refused{"TwoVersions", "version,1,2\ncode,en-uk,sv\n1,a\n",
                "Line 1, column 1 (code): a codeset has one version"},
        Refused{"NameOutsideLatin1", "name,\xCE\xB1\ncode,sv\n1,a\n",
                "Line 1, column 2 (sv): the character U+03B1 (\xCE\xB1) is not among"},
        Refused{"Quote in the column names", "code;\"sv;de\n1;a;b\n",
                "Line 1, column 2: the quotation mark at the beginning"},
        Refused{"QuotedColumnNamesWithTextBehind", "\"code\"x,sv\n1,a\n",
                "Line 1, column 1: there is text after the closing quotation mark."},
        Refused{"LineAfterTheDelimiter", "sep=,\ncode,sv\n1,\xC3\n",
                "Line 3, column 2 (sv): this text is not UTF-8"},
        Refused{"Nothing", "", "The file is empty."},
        Refused{"OnlyAByteOrderMark", "\xEF\xBB\xBF",
                "Line 1, column 1: no column is named \"code\"."},
        Refused{"Utf16WithMark",
                "\xFF\xFE"
                "c\0o\0"s,
                "The file is written in UTF-16, not in UTF-8."},
        Refused{"Utf16WithOtherMark", "\xFE\xFF\0c\0o"s,
                "The file is written in UTF-16, not in UTF-8."},
        Refused{"Utf16WithoutMark", "c\0o\0d\0e\0"s,
                "The file is written in UTF-16, not in UTF-8."},
        Refused{"Utf16WithoutMarkOtherWayRound", "\0c\0o\0d\0e"s,
                "The file is written in UTF-16, not in UTF-8."},
        Refused{"SpreadsheetInAnArchive",
                "PK\x03\x04"
                "mimetype",
                "The file is a spreadsheet, not csv."},
        Refused{"OldSpreadsheet", "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1",
                "The file is a spreadsheet, not csv."}),
    [](const auto &tested) {
      std::string name = tested.param.name;
      std::erase(name, ' ');
      return name;
    });

TEST(CsvReading, CountsLinesInsideQuotedTextsAndOfEveryLineEnd) {
  EXPECT_THAT(refusal("code,sv\r\n1,\"a\r\nb\rc\nd\"\r2,\"e\n\"\"\r\"\n3\n"),
              StartsWith("Line 9, column 1 (code): the code \"3\" has no text"));
}

TEST(CsvReading, NamesTheLineInWhichAFieldBegins) {
  EXPECT_THAT(refusal("code,en-uk,sv\n1,\"a\nb\",\xC3\n"), StartsWith("Line 3, column 3 (sv): "));
  EXPECT_THAT(refusal("code,en-uk,sv\n1,a,\"b\n\xC3\"\n"), StartsWith("Line 2, column 3 (sv): "));
}

TEST(CsvReading, SaysWhatToWriteInsteadOfATypographicCharacter) {
  EXPECT_THAT(refusal("code,sv\n1,\xE2\x80\x99\n"), HasSubstr(" Write ' instead."));
  EXPECT_THAT(refusal("code,fr\n1,\xC5\x93uvre\n"), HasSubstr(" Write oe instead."));
  EXPECT_THAT(refusal("code,el\n1,\xCE\xB1\n"), HasSubstr(" Replace it by others."));
}

TEST(CsvReading, ShortensLongCodesInMessages) {
  const std::string letters(39, 'x');
  const std::string code = letters + "\xC3\xB6tail";
  EXPECT_THAT(refusal("code,sv\n" + code + ",\n"),
              HasSubstr("the code \"" + letters + "\xC3\xB6\xE2\x80\xA6\" has no text"));
}

TEST(CsvReading, RefusesALineWithMoreColumnsThanSpreadsheetsHave) {
  const std::string commas(16'383, ',');
  EXPECT_EQ(remarks_in("code,sv" + commas.substr(1) + "\n1,a\n").size(), 1U);
  EXPECT_THAT(refusal("code,sv\n1,a\n2,a" + commas + "\n"),
              StartsWith("Line 3, column 16385: this line has more columns"));
}

// A quadratic reader would take minutes here.
TEST(CsvReading, ReadsLongTextsAndManyLinesInLinearTime) {
  std::string csv = "code,sv\n1,\"";
  for (int i = 0; i < 1'000'000; i++) {
    csv += "\"\"\n";
  }
  csv += "\"\n";
  for (int i = 2; i < 200'000; i++) {
    csv += std::to_string(i) + ",a\n";
  }
  EXPECT_EQ(remarks_in(csv).size(), 199'999U);
}

} // namespace
