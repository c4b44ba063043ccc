#include "langstr/langstr_xml.h"

#include <cstdlib>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "base/error.h"
#include "base/xml_reading.h"
#include "base/xml_writing.h"
#include "support/values/translations.h"

namespace {

OwnedXmlDoc parse(const std::string &xml) {
  OwnedXmlDoc document = v_xml_parse_memory(xml.data(), xml.size());
  EXPECT_NE(document, nullptr) << v_error_get();
  return document;
}

class Document {
public:
  explicit Document(const std::string &xml) : document(parse(xml)) {
    v_error_set("nothing has failed");
  }
  xmlDoc *get() const { return document.get(); }
  xmlNode *root() const { return v_xml_get_root_element(document.get()); }

private:
  OwnedXmlDoc document;
};

struct Element {
  const char *rule;
  const char *xml;
  LangTag lang_tag;
  LangstrSpacing spacing;
  Translations translations;
  const char *message; // "": success
};

constexpr LangTag optional_tag = LangTag::may_be_empty;
constexpr LangTag required_tag = LangTag::required;
constexpr LangstrSpacing compact = LangstrSpacing::compact;
constexpr LangstrSpacing lines = LangstrSpacing::keep_lines;

constexpr const char *no_text = "Empty text content in XML where not allowed.";
constexpr const char *outside_latin1 =
    "Invalid XML node content.\n\n"
    "Character incompatible with ISO-8859-1 found where not allowed.";

const Element elements[] = {
    {"plain", "<n lang='sv'>Rost</n>", optional_tag, compact, {{"sv", "Rost"}}, ""},
    {"the tag is made compact",
     "<n lang=' s&#9; &#10;v '>x</n>",
     optional_tag,
     compact,
     {{"s v", "x"}},
     ""},
    {"an empty tag", "<n lang=''>x</n>", optional_tag, compact, {{"", "x"}}, ""},
    {"a tag of spaces", "<n lang='  &#9;'>x</n>", optional_tag, compact, {{"", "x"}}, ""},
    {"an empty tag where one is required",
     "<n lang=' '>x</n>",
     required_tag,
     compact,
     {},
     "Empty XML lang attribute where not allowed."},
    {"a tag where one is required", "<n lang='de'>x</n>", required_tag, compact, {{"de", "x"}}, ""},
    {"no tag", "<n>x</n>", optional_tag, compact, {}, "Missing XML attribute: lang"},
    {"a tag that is not ASCII",
     "<n lang='s\xC3\xA5'>x</n>",
     optional_tag,
     compact,
     {},
     "Invalid XML attribute content.\n\nNon-ascii byte found where not allowed."},
    {"the attribute in a namespace",
     "<n xml:lang='sv'>x</n>",
     optional_tag,
     compact,
     {{"sv", "x"}},
     ""},
    {"text is made compact",
     "<n lang='sv'>\n\t a \t\n b&#xD;c  </n>",
     optional_tag,
     compact,
     {{"sv", "a b c"}},
     ""},
    {"text with its lines",
     "<n lang='sv'>\n\t a \t\n b&#xD;&#x9;c  </n>",
     optional_tag,
     lines,
     {{"sv", "a  \n b  c"}},
     ""},
    {"text in ISO-8859-1",
     "<n lang='sv'>\xC3\xA5&#xFF;\xC2\x80</n>",
     optional_tag,
     compact,
     {{"sv", "\xE5\xFF\x80"}},
     ""},
    {"a no-break space is text",
     "<n lang='sv'>&#xA0;</n>",
     optional_tag,
     compact,
     {{"sv", "\xA0"}},
     ""},
    {"a character outside ISO-8859-1",
     "<n lang='sv'>&#x20AC;</n>",
     optional_tag,
     compact,
     {},
     outside_latin1},
    {"no text", "<n lang='sv'/>", optional_tag, compact, {}, no_text},
    {"only whitespace", "<n lang='sv'> \n&#9;</n>", optional_tag, compact, {}, no_text},
    {"only whitespace, with lines", "<n lang='sv'>\n\n</n>", optional_tag, lines, {}, no_text},
    {"only an element and a comment",
     "<n lang='sv'><b>x</b><!--y--></n>",
     optional_tag,
     compact,
     {},
     no_text},
    {"references, entities and CDATA",
     "<!DOCTYPE n [<!ENTITY e 'entity'>]><n lang='&e;'>&amp;&e;<![CDATA[<b>]]></n>",
     optional_tag,
     compact,
     {{"entity", "&entity<b>"}},
     ""},
};

TEST(LangstrXml, ReadsOneTranslation) {
  for (const Element &element : elements) {
    SCOPED_TRACE(element.rule);
    const Document document(element.xml);
    OwnedLangstr langstr;
    const bool is_read = v_xml_parse_langstr_translation(langstr, document.get(), document.root(),
                                                         element.lang_tag, element.spacing);
    EXPECT_EQ(is_read, *element.message == '\0');
    EXPECT_EQ(translations_of(langstr), element.translations);
    if (!is_read) {
      EXPECT_STREQ(v_error_get(), element.message);
    }
  }
}

TEST(LangstrXml, AFailedTranslationLeavesTheStringUnchanged) {
  const Document document("<n lang='sv'> </n>");
  OwnedLangstr langstr = langstr_of({{"sv", "a"}});
  EXPECT_FALSE(v_xml_parse_langstr_translation(langstr, document.get(), document.root(),
                                               optional_tag, compact));
  EXPECT_EQ(translations_of(langstr), (Translations{{"sv", "a"}}));
}

constexpr const char *mixed =
    "<r>text<!--name--><name lang='sv'>a</name><author lang='sv'>z</author><name lang='de'>b</name>"
    "<?name pi?><deep><name lang='fr'>no</name></deep><names lang='fr'>no</names>"
    "<Name lang='fr'>no</Name><name lang='sv'>c\nd</name></r>";

TEST(LangstrXml, ReadsTheElementsOfOneName) {
  const Document document(mixed);
  OwnedLangstr langstr = langstr_of({{"nl", "old"}});
  EXPECT_TRUE(v_xml_parse_langstr(langstr, document.get(), document.root(), "name", compact));
  EXPECT_EQ(translations_of(langstr), (Translations{{"sv", "c d"}, {"de", "b"}}));
  EXPECT_TRUE(v_xml_parse_langstr(langstr, document.get(), document.root(), "name", lines));
  EXPECT_EQ(translations_of(langstr), (Translations{{"sv", "c\nd"}, {"de", "b"}}));
  EXPECT_EQ(translations_of(
                v_xml_parse_required_langstr(document.get(), document.root(), "name", compact)),
            (Translations{{"sv", "c d"}, {"de", "b"}}));
}

TEST(LangstrXml, TheLastOfTwoUntaggedTranslationsWins) {
  const Document document("<r><n lang=''>a</n><n lang=' '>b</n></r>");
  OwnedLangstr langstr;
  EXPECT_TRUE(v_xml_parse_langstr(langstr, document.get(), document.root(), "n", compact));
  EXPECT_EQ(translations_of(langstr), (Translations{{"", "b"}}));
}

TEST(LangstrXml, AMissingElementIsAFailureOnlyIfRequired) {
  const Document document(mixed);
  OwnedLangstr langstr = langstr_of({{"nl", "old"}});
  EXPECT_TRUE(v_xml_parse_langstr(langstr, document.get(), document.root(), "title", compact));
  EXPECT_EQ(langstr, nullptr);
  EXPECT_EQ(v_xml_parse_required_langstr(document.get(), document.root(), "title", compact),
            nullptr);
  EXPECT_STREQ(v_error_get(), "Missing XML node: title");
}

TEST(LangstrXml, OneFailureDiscardsAllTranslations) {
  const Document document("<r><n lang='sv'>a</n><n lang='de'> </n><n>b</n></r>");
  OwnedLangstr langstr = langstr_of({{"nl", "old"}});
  EXPECT_FALSE(v_xml_parse_langstr(langstr, document.get(), document.root(), "n", compact));
  EXPECT_EQ(langstr, nullptr);
  EXPECT_STREQ(v_error_get(), no_text);
  v_error_clear();
  EXPECT_EQ(v_xml_parse_required_langstr(document.get(), document.root(), "n", compact), nullptr);
  EXPECT_STREQ(v_error_get(), no_text);
}

// No value if writing fails.
std::optional<std::string> written(const Translations &translations, int depth) {
  char *buffer = nullptr;
  std::size_t length = 0;
  std::FILE *stream = open_memstream(&buffer, &length);
  const bool is_written =
      v_xml_write_langstr(stream, langstr_of(translations).get(), "name", depth);
  std::fclose(stream);
  const std::string bytes(buffer, length);
  std::free(buffer);
  return is_written ? std::optional(bytes) : std::nullopt;
}

TEST(LangstrXml, WritesOneElementForEachTranslation) {
  EXPECT_EQ(written({}, 1), "");
  EXPECT_EQ(written({{"sv", "Rost"}}, 0), "<name lang=\"sv\">Rost</name>\n");
  EXPECT_EQ(written({{"sv", "R\xE5st"}, {"", "100%s"}}, 2),
            "\t\t<name lang=\"sv\">R\xE5st</name>\n\t\t<name lang=\"\">100%s</name>\n");
  EXPECT_EQ(written({{"sv", "a & b"}}, 1), "\t<name lang=\"sv\">a &amp; b</name>\n");
  EXPECT_EQ(written({{"sv", "<\">'\t\n\r"}}, 1),
            "\t<name lang=\"sv\">&lt;&quot;&gt;&apos;&#x9;&#xA;&#xD;&#x9;</name>\n");
}

TEST(LangstrXml, UsualTagsAreWrittenAsTheyAre) {
  for (const char *tag : {"", "sv", "en-uk", "x_1.2+3 4"}) {
    EXPECT_EQ(written({{tag, "a"}}, 0), "<name lang=\"" + std::string(tag) + "\">a</name>\n");
  }
}

TEST(LangstrXml, ATagThatIsMarkupIsEscapedLikeText) {
  EXPECT_EQ(written({{"a&b", "x"}}, 0), "<name lang=\"a&amp;b\">x</name>\n");
  EXPECT_EQ(written({{"<\">'", "x"}}, 0), "<name lang=\"&lt;&quot;&gt;&apos;\">x</name>\n");
}

TEST(LangstrXml, EveryReadableTagSurvivesARoundTrip) {
  std::string tag;
  for (int byte = 0x21; byte < 0x80; byte++) {
    tag += static_cast<char>(byte);
  }
  tag += " x";
  const Document document("<r>" + *written({{tag, "a"}}, 1) + "</r>");
  OwnedLangstr langstr;
  EXPECT_TRUE(v_xml_parse_langstr(langstr, document.get(), document.root(), "name", compact));
  EXPECT_EQ(translations_of(langstr), (Translations{{tag, "a"}}));
}

TEST(LangstrXml, AWrittenCarriageReturnReadsBackAsWhitespace) {
  const Document document("<r>" + *written({{"sv", "a\rb"}}, 1) + "</r>");
  OwnedLangstr langstr;
  EXPECT_TRUE(v_xml_parse_langstr(langstr, document.get(), document.root(), "name", lines));
  EXPECT_EQ(translations_of(langstr), (Translations{{"sv", "a  b"}}));
  EXPECT_TRUE(v_xml_parse_langstr(langstr, document.get(), document.root(), "name", compact));
  EXPECT_EQ(translations_of(langstr), (Translations{{"sv", "a b"}}));
}

TEST(LangstrXml, EveryReadableTextSurvivesARoundTrip) {
  std::string text;
  for (int byte = 0x21; byte < 0x100; byte++) {
    text += static_cast<char>(byte);
  }
  const std::string xml = "<?xml version='1.0' encoding='ISO-8859-1'?><r>" +
                          *written({{"sv", text}, {"", "b c"}}, 1) + "</r>";
  const Document document(xml);
  OwnedLangstr langstr;
  EXPECT_TRUE(v_xml_parse_langstr(langstr, document.get(), document.root(), "name", compact));
  EXPECT_EQ(translations_of(langstr), (Translations{{"sv", text}, {"", "b c"}}));
}

TEST(LangstrXml, AFullDiskIsReported) {
  const OwnedFile full(std::fopen("/dev/full", "w"));
  ASSERT_NE(full, nullptr);
  std::setvbuf(full.get(), nullptr, _IONBF, 0);
  const OwnedLangstr langstr = langstr_of({{"sv", "a"}});
  for (const int depth : {0, 1}) {
    v_error_clear();
    EXPECT_FALSE(v_xml_write_langstr(full.get(), langstr.get(), "name", depth));
    EXPECT_STREQ(v_error_get(), "File I/O error when writing to file.");
  }
}

TEST(LangstrXml, AddsTranslationsToATree) {
  const OwnedXmlDoc document = v_xml_new_doc();
  xmlNode *root = v_xml_add_root_element(document.get(), "r");
  EXPECT_TRUE(v_xml_add_langstr(root, nullptr, "name"));
  EXPECT_EQ(root->children, nullptr);
  const OwnedLangstr langstr = langstr_of({{"sv", "f\xE4rg & <b>"}, {"", "x"}});
  EXPECT_TRUE(v_xml_add_langstr(root, langstr.get(), "name"));
  const OwnedText text = v_xml_write_to_string(document.get(), "UTF-8");
  ASSERT_NE(text, nullptr);
  EXPECT_NE(std::string(text.get()).find("<name lang=\"sv\">f\xC3\xA4rg &amp; &lt;b&gt;</name>"),
            std::string::npos)
      << text.get();
  EXPECT_NE(std::string(text.get()).find("<name lang=\"\">x</name>"), std::string::npos)
      << text.get();
}

TEST(LangstrXml, ReportsTranslationsThatATreeRefuses) {
  const OwnedXmlDoc document = v_xml_new_doc();
  xmlNode *root = v_xml_add_root_element(document.get(), "a");
  const struct {
    Translations translations;
    const char *message;
  } rows[] = {
      {{{"sv", "\x01"}}, "Error when creating an XML text child element."},
      {{{"de", "a"}, {"sv", "\x02"}}, "Error when creating an XML text child element."},
      {{{"s\x01", "a"}}, "Error when setting an XML attribute."},
  };
  for (const auto &row : rows) {
    EXPECT_FALSE(v_xml_add_langstr(root, langstr_of(row.translations).get(), "name"));
    EXPECT_STREQ(v_error_get(), row.message);
  }
  OwnedLangstr untagged(new VLangstr{nullptr, copy_text("a"), nullptr});
  EXPECT_FALSE(v_xml_add_langstr(root, untagged.get(), "name"));
  EXPECT_STREQ(v_error_get(), "Missing value for XML attribute.");
}

} // namespace
