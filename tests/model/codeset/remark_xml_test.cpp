#include "codeset/remark_xml.h"

#include <string>

#include <gtest/gtest.h>

#include "base/error.h"
#include "base/xml_reading.h"
#include "support/values/remarks.h"

namespace {

struct Element {
  const char *content;
  const char *code; // null: fails
  Translations description;
  const char *message;
};

constexpr const char *missing = "Missing remark content in XML data.";
constexpr const char *multiple = "Remark in XML has multiple codes.";
constexpr const char *empty_text = "Empty text content in XML where not allowed.";

const Element elements[] = {
    {"<code>7</code><description lang='sv'>a</description>", "7", {{"sv", "a"}}, ""},
    {"<description lang='sv'>a</description><code>7</code>", "7", {{"sv", "a"}}, ""},
    // Nodes of any type count by their name.
    {"<?code x?><description lang='sv'>a</description>", nullptr, {}, missing},
    {"<code>7</code><description lang='sv'>a</description><?code x?>", nullptr, {}, multiple},
    {"<code>7</code><?x?><description lang='sv'>a</description><!--code-->",
     "7",
     {{"sv", "a"}},
     ""},
    {"<code>7</code><description lang='sv'>a</description><?description x?>",
     nullptr,
     {},
     "Missing XML attribute: lang"},
    {"\n<code>\n 7 \t b </code>\n<description lang='sv'> a\n\tb </description>\n",
     "7 b",
     {{"sv", "a b"}},
     ""},
    {"<code>&#xE5;&amp;&lt;</code><description lang=''>&#xFF;</description>",
     "\xE5&<",
     {{"", "\xFF"}},
     ""},
    {"<code>7</code><description lang='sv'>a</description><description lang='de'>b</description>"
     "<description lang='sv'>c</description>",
     "7",
     {{"sv", "c"}, {"de", "b"}},
     ""},
    {"text<!--code--><x/><note lang='sv'>n</note><Code>8</Code><code>7</code><y><code>9</code></y>"
     "<description lang='sv'>a</description><![CDATA[code]]><descriptions/>",
     "7",
     {{"sv", "a"}},
     ""},

    {"<code>7</code><description lang='sv'>a</description><code>8</code>", nullptr, {}, multiple},
    {"<code>7</code><description lang='sv'>a</description><code>7</code>", nullptr, {}, multiple},
    {"<description lang='sv'>a</description><code>7</code><code>8</code>", nullptr, {}, multiple},
    {"<description lang='sv'>a</description><code>7</code><code> </code>", nullptr, {}, multiple},
    {"<code>7</code><code>8</code><description lang='sv'>a</description>", nullptr, {}, missing},
    {"<code> \n</code><description lang='sv'>a</description>", nullptr, {}, missing},
    {"<code/><description lang='sv'>a</description>", nullptr, {}, missing},
    {"<description lang='sv'>a</description><code/>", nullptr, {}, missing},
    {"<description lang='sv'>a</description><code>&#x20AC;</code>", nullptr, {}, missing},
    {"<code>7</code>", nullptr, {}, missing},
    {"<description lang='sv'>a</description>", nullptr, {}, missing},
    {"", nullptr, {}, missing},
    {"7 a", nullptr, {}, missing},
    {"<code>7</code><description lang='sv'> </description>", nullptr, {}, missing},
    {"<code>7</code><description>a</description>", nullptr, {}, missing},
    {"<description lang='sv'>a</description><description lang='de'> </description><code>7</code>",
     nullptr,
     {},
     missing},
    {"<code>7</code><description lang='sv'>a</description><description lang='de'> </description>",
     nullptr,
     {},
     empty_text},
    {"<code>7</code><description lang='sv'>a</description><description>b</description>",
     nullptr,
     {},
     "Missing XML attribute: lang"},
    {"<code>7</code><description lang='sv'>a</description>"
     "<description lang='de'>&#x20AC;</description>",
     nullptr,
     {},
     "Invalid XML node content.\n\n"
     "Character incompatible with ISO-8859-1 found where not allowed."},
    {"<code>7</code><description lang='sv'>a</description><description "
     "lang='&#xE5;'>b</description>",
     nullptr,
     {},
     "Invalid XML attribute content.\n\nNon-ascii byte found where not allowed."},
};

TEST(RemarkXml, ReadsARemarkOrSaysWhyNot) {
  for (const Element &element : elements) {
    SCOPED_TRACE(element.content);
    const std::string xml = std::string("<remark>") + element.content + "</remark>";
    const OwnedXmlDoc document = v_xml_parse_memory(xml.data(), xml.size());
    ASSERT_NE(document, nullptr);
    v_error_set("of an earlier failure");
    const OwnedRemark remark =
        v_xml_parse_remark(document.get(), v_xml_get_root_element(document.get()));
    ASSERT_EQ(remark != nullptr, element.code != nullptr) << v_error_get();
    if (remark) {
      EXPECT_STREQ(remark->code.get(), element.code);
      EXPECT_EQ(translations_of(remark->description), element.description);
      EXPECT_EQ(remark->prev, nullptr);
      EXPECT_EQ(remark->next, nullptr);
    } else {
      EXPECT_STREQ(v_error_get(), element.message);
    }
  }
}

} // namespace
