#include "base/xml_events.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/memory.h"
#include "xml_fixture.h"

using testing::StartsWith;

namespace {

std::string readable(const XmlText &value) {
  return value.state == XmlTextState::readable ? std::string(value.text) : "(unreadable)";
}

// "<name>" for an element, "?name?" for any other node, the value of each attribute of interest,
// and the text. The name is left out if it is not among `names`.
std::string described(const XmlElement &element, const std::vector<std::string> &names) {
  std::string text;
  for (const std::string &name : names) {
    if (element.has_name(name)) {
      text += element.is_element() ? "<" + name + ">" : "?" + name + "?";
    }
  }
  for (const char *name : {"x", "p:x", "lang"}) {
    if (const XmlText value = element.get_attribute(name); value.state != XmlTextState::absent) {
      text += std::string(name) + "=" + readable(value) + ";";
    }
  }
  return text + readable(element.get_text());
}

class XmlEvents : public XmlFixture {
protected:
  // Reads the bytes and records in `seen` what is reported: "root:<name>", then each child as
  // described() above with its children in brackets.
  bool read(const std::string &bytes) {
    write_file(path, bytes);
    seen.clear();
    XmlRootReader reader;
    reader.child_names = {"b", "c", "p:b"};
    reader.grandchild_names = {"d", "e"};
    reader.begin = [&](const char *root_name) { seen.push_back(std::string("root:") + root_name); };
    reader.read_child = [&](const XmlElement &child) {
      std::string text = described(child, reader.child_names);
      child.visit_children([&](const XmlElement &grandchild) {
        const std::string one = described(grandchild, reader.grandchild_names);
        text += one.starts_with("<") || one.starts_with("?") ? "[" + one + "]" : "";
        return true;
      });
      seen.push_back(text);
    };
    return v_xml_read_root_children(path.c_str(), reader);
  }

  // Expects that read() succeeds or fails as the tree parser does, with the same message. Returns
  // whether both succeed.
  bool read_like_tree_parser(const std::string &bytes) {
    const bool is_read_by_tree = parse(bytes) != nullptr;
    const std::string message = is_read_by_tree ? "" : v_error_get();
    v_error_clear();
    EXPECT_EQ(read(bytes), is_read_by_tree);
    EXPECT_EQ(v_error_get(), message);
    return is_read_by_tree;
  }

  std::vector<std::string> seen;
};

using Seen = std::vector<std::string>;

TEST_F(XmlEvents, ChildrenAreReportedWithAttributesTextAndChildren) {
  const struct {
    const char *content;
    Seen expected;
  } rows[] = {
      {"", {}},
      {"text<x/><!--c--><![CDATA[d]]>", {}},
      {"<b/>", {"<b>"}},
      {"<b>1</b>2<b>3</b>", {"<b>1", "<b>3"}},
      {"<b x='1' y='2' lang='3'/>", {"<b>x=1;lang=3;"}},
      {"<b x='a&amp;b&#38;c&lt;&#xE5;'>&amp;&#38;lt;</b>", {"<b>x=a&b&c<\xC3\xA5;&&lt;"}},
      {"<b> 1 <d> 2 </d> 3 <e>4</e>5</b>", {"<b> 1  3 5[<d> 2 ][<e>4]"}},
      {"<b>\n\t<d>1</d>\n</b>", {"<b>\n\t\n[<d>1]"}},
      {"<b>1<![CDATA[<2>]]>3<!--4-->5<?x 6?>7</b>", {"<b>1<2>357"}},
      {"<b><d>1<e>2<d>3</d></e>4</d></b>", {"<b>[<d>14]"}},
      {"<b><x><d>1</d></x>2</b>", {"<b>2"}},
      {"<x><b>1</b></x><b>2</b>", {"<b>2"}},
      {"<b><b>1</b></b>", {"<b>"}},
      {"<?b 1?><?x 2?><b><?d 3?></b>", {"?b?", "<b>[?d?]"}},
      {"<b><d/><d x='1'/></b><b><d/></b><c/>", {"<b>[<d>][<d>x=1;]", "<b>[<d>]", "<c>"}},
      // Names are reported without their namespaces.
      {"<p:b xmlns:p='u' p:x='1'/>", {"<b>x=1;"}},
      {"<b xmlns='u' xml:lang='1'/>", {"<b>lang=1;"}},
      {"<b xml:lang='1' lang='2'/><b lang='2' xml:lang='1'/>", {"<b>lang=1;", "<b>lang=2;"}},
      // A prefix that is not declared is part of the name.
      {"<p:b p:x='1' x='2'/>", {"<p:b>x=2;p:x=1;"}},
  };
  for (const auto &row : rows) {
    Seen expected = {"root:a"};
    expected.insert(expected.end(), row.expected.begin(), row.expected.end());
    const std::string xml = std::string("<a>") + row.content + "</a>";
    EXPECT_TRUE(read(xml)) << v_error_get();
    EXPECT_EQ(seen, expected) << xml;
    // With a document type the reader uses a tree.
    EXPECT_TRUE(read("<!DOCTYPE a []>" + xml)) << v_error_get();
    EXPECT_EQ(seen, expected) << xml;
  }
}

TEST_F(XmlEvents, EntitiesAndDefaultsOfADocumentTypeAreResolved) {
  EXPECT_TRUE(read("<!DOCTYPE a [<!ENTITY u '1&amp;'><!ATTLIST b x CDATA '&u;2'>]>"
                   "<a><b>&u;</b><b x='3&u;'/></a>"));
  EXPECT_EQ(seen, (Seen{"root:a", "<b>x=1&2;1&", "<b>x=31&;"}));
}

TEST_F(XmlEvents, AnUnknownEntityMakesTheWholeTextUnreadable) {
  EXPECT_TRUE(read("<!DOCTYPE a SYSTEM 'none.dtd'><a><b>1&u;2</b><b>&u;</b><b>1</b></a>"));
  EXPECT_EQ(seen, (Seen{"root:a", "<b>(unreadable)", "<b>(unreadable)", "<b>1"}));
}

TEST_F(XmlEvents, TheNameOfTheRootIsReportedFirst) {
  for (const char *root : {"a", "b", "codeset"}) {
    EXPECT_TRUE(read(std::string("<?b?><!--b--><") + root + "/><?b?>"));
    EXPECT_EQ(seen, (Seen{std::string("root:") + root}));
  }
  EXPECT_TRUE(read("<p:a xmlns:p='u'/>"));
  EXPECT_EQ(seen, (Seen{"root:a"}));
  EXPECT_TRUE(read("<p:a/>"));
  EXPECT_EQ(seen, (Seen{"root:p:a"}));
}

// The tree parser is the reference.
TEST_F(XmlEvents, MalformedXmlFailsWithTheMessageOfTheTreeParser) {
  for (const std::string bytes :
       {"",
        " ",
        "text",
        "<a>",
        "<a><b>1</b>",
        "<a><b></c></a>",
        "<a/><b/>",
        "<a x=1/>",
        "<a>&e;</a>",
        "<a x='&e;'/>",
        "<a>\x01</a>",
        "<a x='1' x='2'/>",
        "<!DOCTYPE a>",
        "<?xml version='1.0' encoding='NO-SUCH'?><a/>",
        "<a><b>\xE5</b></a>",
        "<a><b xml:id='1'/><b xml:id='i'/><b xml:id='i'/></x>",
        "<a>]]></a>",
        "<p:a></p:b>",
        "<?xml version='2.0'?><!DOCTYPE a [<!ENTITY e '<b/>'>]><a x='&e;'>&e;</a>",
        "<a><b xml:space='x&amp;</b></a>",
        "<a><b xml:lang='x&amp;</b></a>",
        "<a><b xmlns='relative'><c></b></a>",
        "<a><?xml version='1.0'?></a>",
        "<a>\n<b c=d>\n</a>"}) {
    SCOPED_TRACE(bytes);
    EXPECT_FALSE(read_like_tree_parser(bytes));
    EXPECT_THAT(v_error_get(), StartsWith("Could not parse XML data.\n\n"));
  }
}

TEST_F(XmlEvents, AFileThatCannotBeReadFailsWithTheMessageOfTheTreeParser) {
  const XmlRootReader reader = {
      .child_names = {},
      .grandchild_names = {},
      .begin = [](const char *) {},
      .read_child = [](const XmlElement &) {},
  };
  for (const std::string &unreadable : {std::string(folder.path()), folder / "none"}) {
    EXPECT_EQ(v_xml_parse_file(unreadable.c_str()), nullptr);
    const std::string message = v_error_get();
    v_error_clear();
    EXPECT_FALSE(v_xml_read_root_children(unreadable.c_str(), reader));
    EXPECT_EQ(v_error_get(), message);
  }
}

TEST_F(XmlEvents, NestingHasTheLimitOfTheTreeParser) {
  for (const int depth : {256, 257, 258, 259}) {
    std::string start;
    std::string end;
    for (int i = 0; i < depth; i++) {
      start += "<a>";
      end += "</a>";
    }
    SCOPED_TRACE(depth);
    EXPECT_EQ(read_like_tree_parser(start + end), depth < 258);
  }
}

TEST_F(XmlEvents, TextsHaveTheLimitOfTheTreeParser) {
  const std::pair<const char *, const char *> rows[] = {
      {"<a><b>", "</b></a>"}, {"<a><x>", "</x></a>"}, {"<a>", "</a>"}};
  for (const auto &[start, end] : rows) {
    for (const std::size_t length : {9'999'000U, 10'500'000U}) {
      SCOPED_TRACE(testing::Message() << start << " " << length);
      EXPECT_EQ(read_like_tree_parser(start + std::string(length, 'x') + end),
                length < 10'000'000U);
    }
  }
}

// A tree alone reports that an identifier is there twice.
TEST_F(XmlEvents, OnlyFilesUpTo16MiBAreReportedByATree) {
  constexpr std::size_t limit = 16 * 1024 * 1024;
  const XmlRootReader reader = {
      .child_names = {},
      .grandchild_names = {},
      .begin = [](const char *) {},
      .read_child = [](const XmlElement &) {},
  };
  const std::string comment = "<!--" + std::string(1024 * 1024, 'x') + "-->";
  const std::string end = "<b xml:id='i'/><b xml:id='i'/></x>";
  for (const std::size_t size : {limit, limit + 1}) {
    std::string bytes = "<a>";
    while (bytes.size() + comment.size() + end.size() < size) {
      bytes += comment;
    }
    bytes.append(size - bytes.size() - end.size(), ' ');
    write_file(path, bytes + end);
    EXPECT_FALSE(v_xml_read_root_children(path.c_str(), reader));
    const std::string report = v_error_get();
    EXPECT_EQ(report.find("already defined") != std::string::npos, size == limit) << report;
  }
}

// Each file is many times as large as the memory that may be in use.
TEST_F(XmlEvents, OneChildAtATimeIsInMemory) {
  for (const std::string piece : {"<b><d>text</d></b>", "<x/>", "<x>text</x>\n", "<b>1</b>"}) {
    std::string bytes = "<a>";
    for (int i = 0; i < 200'000; i++) {
      bytes += piece;
    }
    bytes += "</a>";
    write_file(path, bytes);
    std::size_t most = 0;
    const XmlRootReader reader = {
        .child_names = {"b"},
        .grandchild_names = {"d"},
        .begin = [](const char *) {},
        .read_child = [](const XmlElement &) {},
    };
    const std::size_t before = memory_in_use();
    XmlRootReader watching = reader;
    watching.read_child = [&](const XmlElement &) {
      most = std::max(most, memory_in_use() - before);
    };
    EXPECT_TRUE(v_xml_read_root_children(path.c_str(), watching));
    EXPECT_LT(most, 500'000u) << piece;
  }
}

// Grandchildren are not collected in a tree.
TEST_F(XmlEvents, AChildWithManyChildrenTakesLessMemoryThanItsTree) {
  constexpr std::size_t count = 200'000;
  std::string bytes = "<a><b>";
  for (std::size_t i = 0; i < count; i++) {
    bytes += "<d/>";
  }
  write_file(path, bytes + "</b></a>");
  const std::size_t before = memory_in_use();
  std::size_t used = 0;
  const XmlRootReader reader = {
      .child_names = {"b"},
      .grandchild_names = {"d"},
      .begin = [](const char *) {},
      .read_child = [&](const XmlElement &) { used = memory_in_use() - before; },
  };
  EXPECT_TRUE(v_xml_read_root_children(path.c_str(), reader));
  EXPECT_GT(used, 0u);
  EXPECT_LT(used, count * sizeof(xmlNode));
}

} // namespace
