#include "base/xml_reading.h"

#include <cstring>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "xml_fixture.h"

namespace {

constexpr const char *unreadable_text = "Error reading text content from XML node.";
constexpr const char *unreadable_attribute = "Error when reading XML attribute.";
constexpr const char *duplicate = "Duplicate XML nodes found where not allowed.";
constexpr const char *empty_text = "Missing text content in XML.\n\nText content is empty.";
constexpr const char *not_latin1_text =
    "Invalid XML node content.\n\n"
    "Character incompatible with ISO-8859-1 found where not allowed.";
constexpr const char *not_latin1_attribute =
    "Invalid XML attribute content.\n\n"
    "Character incompatible with ISO-8859-1 found where not allowed.";
constexpr const char *not_ascii_attribute =
    "Invalid XML attribute content.\n\nNon-ascii byte found where not allowed.";

class XmlReading : public XmlFixture {
protected:
  xmlNode *element_with(const std::string &attributes) {
    return root_of("<a " + attributes + "/>");
  }
};

TEST_F(XmlReading, NamesAreComparedExactlyAndWithoutNamespaces) {
  xmlNode *root = root_of("<p:name xmlns:p='urn:p'/>");
  EXPECT_TRUE(v_xml_node_has_name(root, "name"));
  for (const char *name : {"", "nam", "names", "Name", "NAME", "p:name"}) {
    EXPECT_FALSE(v_xml_node_has_name(root, name)) << name;
  }
}

TEST_F(XmlReading, NodesWithoutANameMatchNoName) {
  xmlNode *root = root_of("<a><![CDATA[x]]><b/></a>");
  xmlNode *cdata = root->children;
  ASSERT_EQ(cdata->type, XML_CDATA_SECTION_NODE);
  EXPECT_EQ(v_xml_get_node_name(cdata), nullptr);
  EXPECT_FALSE(v_xml_node_has_name(cdata, "x"));
  EXPECT_FALSE(v_xml_node_has_name(cdata, ""));
  EXPECT_TRUE(v_xml_node_has_child_node_with_name(root, "b"));
  EXPECT_NE(v_xml_get_required_distinct_child_node(root, "b"), nullptr);
}

TEST_F(XmlReading, FindsADistinctChildOrSaysWhyNot) {
  const struct {
    const char *bytes;
    bool is_found;
    const char *message;          // of the getter for an optional child
    const char *required_message; // of the getter for a required child
  } rows[] = {
      {"<a><version/></a>", true, "", ""},
      {"<a>text<b/><p:version xmlns:p='urn:p'/><!--c--></a>", true, "", ""},
      {"<a/>", false, "", "Missing XML node: version"},
      {"<a>version</a>", false, "", "Missing XML node: version"},
      {"<a><b><version/></b></a>", false, "", "Missing XML node: version"},
      {"<a><Version/></a>", false, "", "Missing XML node: version"},
      {"<a><version/><version/></a>", false, duplicate, duplicate},
      {"<a><version/>x<version>y</version><version/></a>", false, duplicate, duplicate},
      // Nodes of any type count, not only elements.
      {"<a><version/><?version?></a>", false, duplicate, duplicate},
  };
  for (const auto &row : rows) {
    SCOPED_TRACE(row.bytes);
    xmlNode *root = root_of(row.bytes);
    xmlNode *child = root;
    EXPECT_EQ(v_xml_get_distinct_child_node(child, root, "version"), *row.message == '\0');
    EXPECT_EQ(child != nullptr, row.is_found);
    EXPECT_STREQ(v_error_get(), row.message);
    v_error_clear();
    EXPECT_EQ(v_xml_get_required_distinct_child_node(root, "version"), child);
    EXPECT_STREQ(v_error_get(), row.required_message);
    EXPECT_EQ(v_xml_node_has_child_node_with_name(root, "version"),
              row.is_found || row.message == duplicate);
  }
}

// -------------------------------------------------------------------------------- attributes

TEST_F(XmlReading, OptionalAttributes) {
  const auto as_ascii = v_xml_get_attribute_value_as_ascii;
  const auto as_latin1 = v_xml_get_attribute_value_as_latin1;
  const auto as_utf8 = v_xml_get_attribute_value_as_utf8;
  const auto as_nonempty_utf8 = v_xml_get_nonempty_attribute_value_as_utf8;
  const struct {
    decltype(as_ascii) getter;
    const char *attribute; // of the element
    const char *value;     // null: none
    const char *message;   // "": success
  } rows[] = {
      {as_ascii, "", nullptr, ""},
      {as_ascii, "y='1'", nullptr, ""},
      {as_ascii, "X='1'", nullptr, ""},
      {as_ascii, "x=''", "", ""},
      {as_ascii, "x=' a\tb '", " a b ", ""},
      {as_ascii, "x='1 %s &lt;&amp;&gt;&quot;&apos;&#65;'", "1 %s <&>\"'A", ""},
      {as_ascii, "x='\xC3\xA5'", nullptr, not_ascii_attribute},
      {as_ascii, "x='\xE2\x82\xAC'", nullptr, not_ascii_attribute},
      {as_latin1, "", nullptr, ""},
      {as_latin1, "x=''", "", ""},
      {as_latin1, "x='\xC3\xA5&#xE4;'", "\xE5\xE4", ""},
      {as_latin1, "x='\xE2\x82\xAC'", nullptr, not_latin1_attribute},
      {as_utf8, "", nullptr, ""},
      {as_utf8, "x=''", "", ""},
      {as_utf8, "x='\xE2\x82\xAC'", "\xE2\x82\xAC", ""},
      {as_nonempty_utf8, "", nullptr, ""},
      {as_nonempty_utf8, "x=''", nullptr, "Empty XML attribute: x"},
      {as_nonempty_utf8, "x=' '", " ", ""},
      {as_nonempty_utf8, "x='\xE2\x82\xAC'", "\xE2\x82\xAC", ""},
  };
  for (const auto &row : rows) {
    SCOPED_TRACE(row.attribute);
    xmlNode *root = element_with(row.attribute);
    OwnedText value = copy_text("held before");
    EXPECT_EQ(row.getter(value, root, "x"), *row.message == '\0');
    EXPECT_STREQ(value.get(), row.value);
    EXPECT_STREQ(v_error_get(), row.message);
  }
}

TEST_F(XmlReading, RequiredAttributes) {
  const auto as_ascii = v_xml_get_required_attribute_value_as_ascii;
  const auto as_latin1 = v_xml_get_required_attribute_value_as_latin1;
  const auto as_utf8 = v_xml_get_required_attribute_value_as_utf8;
  const auto as_nonempty_utf8 = v_xml_get_nonempty_required_attribute_value_as_utf8;
  const struct {
    decltype(as_ascii) getter;
    const char *attribute;
    const char *value;
    const char *message;
  } rows[] = {
      {as_ascii, "", nullptr, "Missing XML attribute: x"},
      {as_ascii, "x=''", "", ""},
      {as_ascii, "x='v'", "v", ""},
      {as_ascii, "x='\xC3\xA5'", nullptr, not_ascii_attribute},
      {as_latin1, "", nullptr, "Missing XML attribute: x"},
      {as_latin1, "x=''", "", ""},
      {as_latin1, "x='\xC3\xA5'", "\xE5", ""},
      {as_latin1, "x='\xE2\x82\xAC'", nullptr, not_latin1_attribute},
      {as_utf8, "", nullptr, "Missing XML attribute: x"},
      {as_utf8, "xx='1' X='2'", nullptr, "Missing XML attribute: x"},
      {as_utf8, "x=''", "", ""},
      {as_utf8, "x='\xE2\x82\xAC %n'", "\xE2\x82\xAC %n", ""},
      {as_nonempty_utf8, "", nullptr, "Missing XML attribute: x"},
      {as_nonempty_utf8, "x=''", nullptr, "Empty XML attribute: x"},
      {as_nonempty_utf8, "x=' '", " ", ""},
      {as_nonempty_utf8, "x='\xC3\xA5'", "\xC3\xA5", ""},
  };
  for (const auto &row : rows) {
    SCOPED_TRACE(row.attribute);
    xmlNode *root = element_with(row.attribute);
    EXPECT_STREQ(row.getter(root, "x").get(), row.value);
    EXPECT_STREQ(v_error_get(), row.message);
  }
}

TEST_F(XmlReading, OnlyElementsHaveAttributes) {
  xmlNode *text = root_of("<a x='1'>text</a>")->children;
  EXPECT_FALSE(v_xml_node_has_attribute(text, "x"));
  EXPECT_EQ(v_xml_get_required_attribute_value_as_utf8(text, "x"), nullptr);
  EXPECT_STREQ(v_error_get(), "Missing XML attribute: x");
}

TEST_F(XmlReading, AttributesAreReadWithoutNamespaces) {
  xmlNode *root = root_of("<a xml:lang='sv' p:x='1' xmlns:p='urn:p'/>");
  EXPECT_TRUE(v_xml_node_has_attribute(root, "lang"));
  EXPECT_TRUE(v_xml_node_has_attribute(root, "x"));
  EXPECT_FALSE(v_xml_node_has_attribute(root, "xml:lang"));
  EXPECT_FALSE(v_xml_node_has_attribute(root, "p"));
  EXPECT_STREQ(v_xml_get_required_attribute_value_as_ascii(root, "lang").get(), "sv");
  EXPECT_STREQ(v_xml_get_required_attribute_value_as_ascii(root, "x").get(), "1");
}

TEST_F(XmlReading, EntitiesInAttributesAreResolved) {
  const std::string type = "<!DOCTYPE a [<!ENTITY e 'x&#38;amp;y'><!ENTITY f '[&e;]'><!ENTITY n ''>"
                           "<!ATTLIST a d CDATA '1&e;&amp;&#xE5;'>]>";
  const struct {
    const char *element, *name, *value;
  } rows[] = {
      {"<a x='&e;'/>", "x", "x&y"}, {"<a x='1&e;2&f;3'/>", "x", "1x&y2[x&y]3"},
      {"<a x='&n;'/>", "x", ""},    {"<a x='1&n;2'/>", "x", "12"},
      {"<a/>", "d", "1x&y&\xE5"}, // declared only by the document type
      {"<a d='own'/>", "d", "own"},
  };
  for (const auto &row : rows) {
    xmlNode *root = root_of(type + row.element);
    EXPECT_TRUE(v_xml_node_has_attribute(root, row.name));
    EXPECT_STREQ(v_xml_get_required_attribute_value_as_latin1(root, row.name).get(), row.value)
        << row.element;
  }
}

TEST_F(XmlReading, UnreadableAttributeIsReported) {
  xmlNode *root = root_of("<!DOCTYPE a SYSTEM 'none.dtd' [<!ENTITY e '1&f;2'>"
                          "<!ATTLIST a x CDATA '&e;'><!ENTITY f '3&e;4'>]><a/>");
  OwnedText value = copy_text("held before");
  EXPECT_FALSE(v_xml_get_attribute_value_as_ascii(value, root, "x"));
  EXPECT_EQ(value, nullptr);
  EXPECT_STREQ(v_error_get(), unreadable_attribute);
  v_error_clear();
  EXPECT_EQ(v_xml_get_required_attribute_value_as_utf8(root, "x"), nullptr);
  EXPECT_STREQ(v_error_get(), unreadable_attribute);
  v_error_clear();
  EXPECT_EQ(v_xml_get_nonempty_required_attribute_value_as_utf8(root, "x"), nullptr);
  EXPECT_STREQ(v_error_get(), unreadable_attribute);
}

TEST_F(XmlReading, IntegerAttributes) {
  const std::string in_front = "Invalid integer value in XML attribute: x\n\n";
  const struct {
    const char *attribute;
    int value;
    std::string message;
  } rows[] = {
      {"x='5'", 5, ""},
      {"x='+5'", 5, ""},
      {"x='-2147483648'", -2147483647 - 1, ""},
      {"x='2147483647'", 2147483647, ""},
      {"", 77, "Missing XML attribute: x"},
      {"x=''", 77, "Empty XML attribute: x"},
      {"x=' 5'", 77, in_front + "Integer value must not begin with whitespace."},
      {"x='5 '", 77, in_front + "Invalid characters in integer value."},
      {"x='abc'", 77, in_front + "Invalid characters in integer value."},
      {"x='2147483648'", 77, in_front + "Integer value out of valid range (too large)."},
      {"x='-2147483649'", 77, in_front + "Integer value out of valid range (too small)."},
      {"x='99999999999999999999'", 77,
       in_front + "Integer value out of range (overflow or underflow)."},
  };
  for (const auto &row : rows) {
    SCOPED_TRACE(row.attribute);
    xmlNode *root = element_with(row.attribute);
    int value = 77;
    EXPECT_EQ(v_xml_get_required_attribute_value_as_int(value, root, "x"), row.message.empty());
    EXPECT_EQ(value, row.value);
    EXPECT_EQ(v_error_get(), row.message);
  }
}

TEST_F(XmlReading, IntegerAttributesInARange) {
  const std::string in_front = "Invalid integer value in XML attribute: x\n\n";
  const struct {
    const char *attribute;
    int value;       // of the required getter; 77 on failure
    int or_fallback; // of the getter with the fallback 9
    std::string message;
  } rows[] = {
      {"x='1'", 1, 1, ""},
      {"x='3'", 3, 3, ""},
      {"x='0'", 77, 9, in_front + "Integer value out of valid range (too small)."},
      {"x='4'", 77, 9, in_front + "Integer value out of valid range (too large)."},
      {"x='2 '", 77, 9, in_front + "Invalid characters in integer value."},
      {"x=''", 77, 9, "Empty XML attribute: x"},
      {"", 77, 9, "Missing XML attribute: x"},
  };
  for (const auto &row : rows) {
    SCOPED_TRACE(row.attribute);
    xmlNode *root = element_with(row.attribute);
    int value = 77;
    EXPECT_EQ(v_xml_get_required_attribute_value_as_int_in_range(value, root, "x", 1, 3),
              row.message.empty());
    EXPECT_EQ(value, row.value);
    EXPECT_EQ(v_error_get(), row.message);
    EXPECT_EQ(v_xml_get_attribute_value_as_int_in_range_with_fallback(root, "x", 1, 3, 9),
              row.or_fallback);
  }
}

TEST_F(XmlReading, NumberAttributes) {
  const char *const invalid = "Invalid number in XML attribute: x";
  const struct {
    const char *attribute;
    double value;       // of the required getter; 77 on failure
    double or_fallback; // of the getter with the fallback 9
    const char *message;
  } rows[] = {
      {"x='1.5'", 1.5, 1.5, ""},
      {"x='-2'", -2, -2, ""},
      {"x='2'", 2, 2, ""},
      {"x='1e0'", 1, 1, ""},
      {"x='1,5'", 77, 9, invalid},
      {"x='2.0001'", 77, 9, invalid},
      {"x='-2.0001'", 77, 9, invalid},
      {"x=' 1'", 77, 9, invalid},
      {"x='1 '", 77, 9, invalid},
      {"x='abc'", 77, 9, invalid},
      {"x='nan'", 77, 9, invalid},
      {"x='inf'", 77, 9, invalid},
      {"x='1e999'", 77, 9, invalid},
      {"x=''", 77, 9, "Empty XML attribute: x"},
      {"", 77, 9, "Missing XML attribute: x"},
  };
  for (const auto &row : rows) {
    SCOPED_TRACE(row.attribute);
    xmlNode *root = element_with(row.attribute);
    double value = 77;
    EXPECT_EQ(v_xml_get_required_attribute_value_as_double_in_range(value, root, "x", -2, 2),
              *row.message == '\0');
    EXPECT_DOUBLE_EQ(value, row.value);
    EXPECT_STREQ(v_error_get(), row.message);
    EXPECT_DOUBLE_EQ(
        v_xml_get_attribute_value_as_double_in_range_with_fallback(root, "x", -2, 2, 9),
        row.or_fallback);
  }
}

TEST_F(XmlReading, BooleanAttributes) {
  const struct {
    const char *attribute;
    bool is_there, value;
  } rows[] = {{"x='true'", true, true},   {"x='false'", true, false}, {"x='TRUE'", true, false},
              {"x='true '", true, false}, {"x='1'", true, false},     {"x=''", true, false},
              {"", false, false}};
  for (const auto &row : rows) {
    SCOPED_TRACE(row.attribute);
    xmlNode *root = element_with(row.attribute);
    for (const bool other : {false, true}) {
      bool value = other;
      v_error_clear();
      EXPECT_EQ(v_xml_get_required_attribute_value_as_boolean(value, root, "x"), row.is_there);
      EXPECT_EQ(value, row.is_there ? row.value : other);
      EXPECT_STREQ(v_error_get(), row.is_there ? "" : "Missing XML attribute: x");
      EXPECT_EQ(v_xml_get_attribute_value_as_boolean_with_fallback(root, "x", other),
                row.is_there ? row.value : other);
    }
  }
}

// ------------------------------------------------------------------------------ text content

TEST_F(XmlReading, TextContentExcludesThatOfChildElements) {
  const std::string type = "<!DOCTYPE a [<!ENTITY e 'x&#38;amp;y'><!ENTITY f '[&e;]'><!ENTITY n ''>"
                           "<!ENTITY m '1<b>2</b>3<!--4-->'>]>";
  const struct {
    const char *element, *text;
  } rows[] = {
      {"<a/>", ""},
      {"<a></a>", ""},
      {"<a>text</a>", "text"},
      {"<a> \n\ttext  text </a>", " \n\ttext  text "},
      {"<a>100 %s &lt;&amp;&gt;&quot;&apos;&#65;&#xE5;</a>", "100 %s <&>\"'A\xC3\xA5"},
      {"<a>1<b>2</b>3</a>", "13"},
      {"<a><b>2</b></a>", ""},
      {"<a><!--2--></a>", ""},
      {"<a><?p i?></a>", ""},
      {"<a>1<!--2-->3<?p i?>4</a>", "134"},
      {"<a><![CDATA[<&]]></a>", "<&"},
      {"<a>1<![CDATA[2]]>3</a>", "123"},
      {"<a><![CDATA[]]></a>", ""},
      {"<a>&e;</a>", "x&y"},
      {"<a>1&e;2&f;3</a>", "1x&y2[x&y]3"},
      {"<a>&n;</a>", ""},
      {"<a>0&m;5</a>", "0135"},
      {"<a>1\r\n2\r3</a>", "1\n2\n3"},
      {"<a>1&#13;2</a>", "1\r2"},
  };
  for (const auto &row : rows) {
    xmlNode *root = root_of(type + row.element);
    EXPECT_STREQ(v_xml_get_text_content_as_utf8(document.get(), root).get(), row.text)
        << row.element;
    EXPECT_STREQ(v_error_get(), "");
  }
}

TEST_F(XmlReading, UnknownEntitiesMakeTextUnreadable) {
  for (const char *element : {"<a>&u;</a>", "<a><!--c-->&u;</a>", "<a>&u;&v;</a>"}) {
    xmlNode *root = root_of("<!DOCTYPE a SYSTEM \"x.dtd\">" + std::string(element));
    for (const auto getter :
         {v_xml_get_text_content_as_utf8, v_xml_get_text_content_as_latin1,
          v_xml_get_nonempty_text_content_as_utf8, v_xml_get_nonempty_text_content_as_compact_utf8,
          v_xml_get_nonempty_text_content_as_latin1,
          v_xml_get_nonempty_text_content_as_compact_latin1}) {
      v_error_clear();
      EXPECT_EQ(getter(document.get(), root), nullptr) << element;
      EXPECT_STREQ(v_error_get(), unreadable_text);
    }
  }
}

using TextGetter = OwnedText (*)(xmlDoc *, const xmlNode *);
using ChildTextGetter = bool (*)(OwnedText &, xmlDoc *, const xmlNode *, const char *);

// A text as each of the four getters reads it, by encoding and spacing.
struct TextRow {
  const char *content;
  const char *utf8, *compact_utf8, *latin1, *compact_latin1; // null: cannot be read
};

const TextRow text_rows[] = {
    {"text", "text", "text", "text", "text"},
    {"", "", "", "", ""},
    {" \n\t ", " \n\t ", "", " \n\t ", ""},
    {"\n a \t\n b ", "\n a \t\n b ", "a b", "\n a \t\n b ", "a b"},
    {"\xC3\xA5", "\xC3\xA5", "\xC3\xA5", "\xE5", "\xE5"},
    {"\xC2\xA0"
     "a\xC2\xA0",
     "\xC2\xA0"
     "a\xC2\xA0",
     "a",
     "\xA0"
     "a\xA0",
     "\xA0"
     "a\xA0"},
    {"\xC2\x85", "\xC2\x85", "\xC2\x85", "\x85", "\x85"},
    {" \xE2\x82\xAC ", " \xE2\x82\xAC ", "\xE2\x82\xAC", nullptr, nullptr},
    {"\xE2\x80\x83", "\xE2\x80\x83", "", nullptr, nullptr},
    {"<b/>", "", "", "", ""},
    {"100 %s", "100 %s", "100 %s", "100 %s", "100 %s"},
};

TEST_F(XmlReading, TextContentByEncodingAndSpacing) {
  const struct {
    TextGetter getter;
    const char *TextRow::*expected;
    bool is_nonempty;
  } getters[] = {
      {v_xml_get_text_content_as_utf8, &TextRow::utf8, false},
      {v_xml_get_text_content_as_latin1, &TextRow::latin1, false},
      {v_xml_get_nonempty_text_content_as_utf8, &TextRow::utf8, true},
      {v_xml_get_nonempty_text_content_as_compact_utf8, &TextRow::compact_utf8, true},
      {v_xml_get_nonempty_text_content_as_latin1, &TextRow::latin1, true},
      {v_xml_get_nonempty_text_content_as_compact_latin1, &TextRow::compact_latin1, true},
  };
  for (const TextRow &row : text_rows) {
    xmlNode *root = root_of("<a>" + std::string(row.content) + "</a>");
    for (const auto &getter : getters) {
      SCOPED_TRACE(row.content);
      v_error_clear();
      const char *const expected = row.*getter.expected;
      const bool is_empty = expected != nullptr && *expected == '\0' && getter.is_nonempty;
      const OwnedText text = getter.getter(document.get(), root);
      EXPECT_STREQ(text.get(), is_empty ? nullptr : expected);
      EXPECT_STREQ(v_error_get(), is_empty ? empty_text : expected ? "" : not_latin1_text);
    }
  }
}

TEST_F(XmlReading, TextContentOfADistinctChild) {
  const struct {
    ChildTextGetter getter;
    const char *TextRow::*expected;
    bool is_nonempty;
  } getters[] = {
      {v_xml_get_text_content_from_distinct_child_node_as_utf8, &TextRow::utf8, false},
      {v_xml_get_text_content_from_distinct_child_node_as_compact_utf8, &TextRow::compact_utf8,
       false},
      {v_xml_get_text_content_from_distinct_child_node_as_latin1, &TextRow::latin1, false},
      {v_xml_get_text_content_from_distinct_child_node_as_compact_latin1, &TextRow::compact_latin1,
       false},
      {v_xml_get_nonempty_text_content_from_distinct_child_node_as_utf8, &TextRow::utf8, true},
      {v_xml_get_nonempty_text_content_from_distinct_child_node_as_compact_utf8,
       &TextRow::compact_utf8, true},
      {v_xml_get_nonempty_text_content_from_distinct_child_node_as_latin1, &TextRow::latin1, true},
      {v_xml_get_nonempty_text_content_from_distinct_child_node_as_compact_latin1,
       &TextRow::compact_latin1, true},
  };
  const std::pair<const char *, const char *> without_text[] = {
      {"<a>text<b/></a>", ""},
      {"<a><version/><version/></a>", duplicate},
      {"<!DOCTYPE a SYSTEM 'x.dtd'><a><version>&u;</version></a>", unreadable_text},
  };
  for (const auto &getter : getters) {
    OwnedText text;
    for (const TextRow &row : text_rows) {
      SCOPED_TRACE(row.content);
      xmlNode *root = root_of("<a><b/><version>" + std::string(row.content) + "</version></a>");
      const char *const expected = row.*getter.expected;
      const bool is_empty = expected != nullptr && *expected == '\0' && getter.is_nonempty;
      text = copy_text("held before");
      EXPECT_EQ(getter.getter(text, document.get(), root, "version"),
                expected != nullptr && !is_empty);
      EXPECT_STREQ(text.get(), is_empty ? nullptr : expected);
      EXPECT_STREQ(v_error_get(), is_empty ? empty_text : expected ? "" : not_latin1_text);
    }

    for (const auto &[bytes, message] : without_text) {
      SCOPED_TRACE(bytes);
      xmlNode *root = root_of(bytes);
      text = copy_text("held before");
      EXPECT_EQ(getter.getter(text, document.get(), root, "version"), *message == '\0');
      EXPECT_EQ(text, nullptr);
      EXPECT_STREQ(v_error_get(), message);
    }
  }
}

} // namespace
