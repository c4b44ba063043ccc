#include "base/xml_writing.h"

#include <csignal>
#include <cstring>
#include <limits>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/error.h"
#include "base/fs_utils.h"
#include "base/xml_reading.h"
#include "support/files.h"

using testing::StartsWith;

namespace {

class XmlWriting : public testing::Test {
protected:
  void SetUp() override {
    v_error_clear();
    document = v_xml_new_doc();
    root = v_xml_add_root_element(document.get(), "root");
  }

  std::string serialised() { return v_xml_write_to_string(document.get(), "ISO-8859-1").get(); }

  TemporaryFolder folder;
  const std::string path = folder / "file.xml";
  OwnedXmlDoc document;
  xmlNode *root = nullptr;
};

constexpr const char *declaration = "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n";

// -------------------------------------------------------------------------- building a document

TEST_F(XmlWriting, NewDocumentIsEmptyAndOfXmlVersionOne) {
  const OwnedXmlDoc empty = v_xml_new_doc();
  ASSERT_NE(empty, nullptr);
  EXPECT_STREQ(reinterpret_cast<const char *>(empty->version), "1.0");
  EXPECT_EQ(v_xml_get_root_element(empty.get()), nullptr);
}

TEST_F(XmlWriting, ElementsAreAdded) {
  EXPECT_EQ(v_xml_get_root_element(document.get()), root);
  xmlNode *child = v_xml_add_child_element(root, "child");
  ASSERT_NE(child, nullptr);
  EXPECT_NE(v_xml_add_child_element(child, "inner"), nullptr);
  EXPECT_NE(v_xml_add_child_element(root, "child"), nullptr);
  EXPECT_EQ(serialised(), std::string(declaration) + "<root>\n  <child>\n    <inner/>\n  </child>\n"
                                                     "  <child/>\n</root>\n");
}

TEST_F(XmlWriting, ASecondRootReplacesTheFirst) {
  v_xml_add_child_element(root, "child");
  v_xml_add_root_element(document.get(), "other");
  EXPECT_EQ(serialised(), std::string(declaration) + "<other/>\n");
}

TEST_F(XmlWriting, ReportsRefusedElements) {
  EXPECT_EQ(v_xml_add_root_element(document.get(), nullptr), nullptr);
  EXPECT_STREQ(v_error_get(), "Error when creating an XML element.");
  xmlNode *text = xmlNewText(reinterpret_cast<const xmlChar *>("text"));
  xmlAddChild(root, text);
  EXPECT_EQ(v_xml_add_child_element(text, "child"), nullptr);
  EXPECT_STREQ(v_error_get(), "Error when creating an XML child element.");
  v_error_clear();
  EXPECT_EQ(v_xml_add_child_element(root, nullptr), nullptr);
  EXPECT_STREQ(v_error_get(), "Error when creating an XML child element.");
}

TEST_F(XmlWriting, ElementsWithTextAreAdded) {
  EXPECT_NE(v_xml_add_child_element_with_ascii_text_content(root, "a", "1 < 2 & %s"), nullptr);
  EXPECT_NE(v_xml_add_child_element_with_utf8_text_content(root, "b", "\xC3\xA5\xE2\x82\xAC"),
            nullptr);
  EXPECT_NE(v_xml_add_child_element_with_latin1_text_content(root, "c", "\xE5&amp;"), nullptr);
  EXPECT_NE(v_xml_add_child_element_with_utf8_text_content(root, "d", ""), nullptr);
  EXPECT_STREQ(v_error_get(), "");
  EXPECT_EQ(serialised(), std::string(declaration) + "<root>\n"
                                                     "  <a>1 &lt; 2 &amp; %s</a>\n"
                                                     "  <b>\xE5&#8364;</b>\n"
                                                     "  <c>\xE5&amp;amp;</c>\n"
                                                     "  <d></d>\n"
                                                     "</root>\n");
}

TEST_F(XmlWriting, RefusesTextThatIsNotAscii) {
  EXPECT_EQ(v_xml_add_child_element_with_ascii_text_content(root, "a", "\xC3\xA5"), nullptr);
  EXPECT_STREQ(v_error_get(), "Non-ascii byte found where not allowed.");
  EXPECT_FALSE(v_xml_set_attribute_with_ascii_content(root, "x", "\xC3\xA5"));
  EXPECT_STREQ(v_error_get(), "Non-ascii byte found where not allowed.");
  EXPECT_EQ(serialised(), std::string(declaration) + "<root/>\n");
}

TEST_F(XmlWriting, AttributesAreSetAndReplaced) {
  EXPECT_TRUE(v_xml_set_attribute(root, "a", "old"));
  EXPECT_TRUE(v_xml_set_attribute(root, "a", "<&>\"' %s"));
  EXPECT_TRUE(v_xml_set_attribute(root, "b", ""));
  EXPECT_TRUE(v_xml_set_attribute(root, "c", "\xC3\xA5"));
  EXPECT_TRUE(v_xml_set_attribute_with_ascii_content(root, "d", "d"));
  EXPECT_TRUE(v_xml_set_attribute_with_latin1_content(root, "e", "\xE5"));
  EXPECT_TRUE(v_xml_set_attribute_to_boolean(root, "f", true));
  EXPECT_TRUE(v_xml_set_attribute_to_boolean(root, "g", false));
  EXPECT_TRUE(v_xml_set_attribute_to_int(root, "h", std::numeric_limits<int>::min()));
  EXPECT_TRUE(v_xml_set_attribute_to_double(root, "i", 1.5));
  EXPECT_STREQ(v_error_get(), "");
  EXPECT_EQ(serialised(), std::string(declaration) +
                              "<root a=\"&lt;&amp;&gt;&quot;' %s\" b=\"\" c=\"\xE5\" d=\"d\" "
                              "e=\"\xE5\" f=\"true\" g=\"false\" h=\"-2147483648\" i=\"1.5\"/>\n");
}

TEST_F(XmlWriting, RefusesAnAttributeWithoutAValue) {
  for (const auto set : {v_xml_set_attribute, v_xml_set_attribute_with_ascii_content,
                         v_xml_set_attribute_with_latin1_content}) {
    v_error_clear();
    EXPECT_FALSE(set(root, "x", nullptr));
    EXPECT_STREQ(v_error_get(), "Missing value for XML attribute.");
  }
  EXPECT_FALSE(v_xml_node_has_attribute(root, "x"));
}

TEST_F(XmlWriting, RefusesTextThatXmlCannotHold) {
  EXPECT_EQ(v_xml_add_child_element_with_utf8_text_content(root, "x", "a\x01z"), nullptr);
  EXPECT_STREQ(v_error_get(), "Error when creating an XML text child element.");
  EXPECT_EQ(root->children, nullptr);
}

TEST_F(XmlWriting, RefusesAttributesThatXmlCannotHold) {
  for (const char *value : {"a\x01z", "\x1F", "\xEF\xBF\xBE", "\xEF\xBF\xBF"}) {
    v_error_clear();
    EXPECT_FALSE(v_xml_set_attribute(root, "x", value));
    EXPECT_STREQ(v_error_get(), "Error when setting an XML attribute.");
  }
  EXPECT_FALSE(v_xml_node_has_attribute(root, "x"));
  for (const char *value : {"\t\n\r", "\x7F\xC2\x80", "\xEF\xBF\xBD", "\xF4\x8F\xBF\xBF"}) {
    EXPECT_TRUE(v_xml_set_attribute(root, "x", value));
  }
}

TEST_F(XmlWriting, RefusesAnAttributeOfATextNode) {
  xmlNode *text = xmlNewText(reinterpret_cast<const xmlChar *>("text"));
  xmlAddChild(root, text);
  EXPECT_FALSE(v_xml_set_attribute(text, "x", "1"));
  EXPECT_STREQ(v_error_get(), "Error when setting an XML attribute.");
}

TEST_F(XmlWriting, NumbersReadBackAsTheyWere) {
  for (const double number : {0.0, 0.1, -1.0 / 3.0, 1e300, 123456789.125}) {
    ASSERT_TRUE(v_xml_set_attribute_to_double(root, "x", number));
    double read = 0;
    EXPECT_TRUE(
        v_xml_get_required_attribute_value_as_double_in_range(read, root, "x", -1e308, 1e308));
    EXPECT_EQ(read, number);
  }
}

// --------------------------------------------------------------------------- writing a document

TEST_F(XmlWriting, FileHoldsTheDocumentIndentedInItsEncoding) {
  v_xml_set_attribute(v_xml_add_child_element(root, "child"), "x", "\xC3\xA5\xE2\x82\xAC");
  const int before = count_open_descriptors();
  EXPECT_TRUE(v_xml_write_to_file(document.get(), path.c_str(), "ISO-8859-1"));
  EXPECT_EQ(read_file(path),
            std::string(declaration) + "<root>\n  <child x=\"\xE5&#8364;\"/>\n</root>\n");
  EXPECT_TRUE(v_xml_write_to_file(document.get(), path.c_str(), "UTF-8"));
  EXPECT_EQ(read_file(path), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                             "<root>\n  <child x=\"\xC3\xA5\xE2\x82\xAC\"/>\n</root>\n");
  EXPECT_EQ(count_open_descriptors(), before);
  EXPECT_STREQ(v_error_get(), "");
}

TEST_F(XmlWriting, FileReplacesALongerOne) {
  write_file(path, std::string(10'000, 'x'));
  EXPECT_TRUE(v_xml_write_to_file(document.get(), path.c_str(), "ISO-8859-1"));
  EXPECT_EQ(read_file(path), std::string(declaration) + "<root/>\n");
}

TEST_F(XmlWriting, WrittenTextsReadBack) {
  const char *const text = "\xE5 <&>\"' \t\n\r %s";
  v_xml_set_attribute_with_latin1_content(root, "x", text);
  v_xml_add_child_element_with_latin1_text_content(root, "child", text);
  ASSERT_TRUE(v_xml_write_to_file(document.get(), path.c_str(), "ISO-8859-1"));
  const OwnedXmlDoc read = v_xml_parse_file(path.c_str());
  ASSERT_NE(read, nullptr);
  xmlNode *read_root = v_xml_get_root_element(read.get());
  EXPECT_STREQ(v_xml_get_required_attribute_value_as_latin1(read_root, "x").get(), text);
  OwnedText child;
  EXPECT_TRUE(v_xml_get_text_content_from_distinct_child_node_as_latin1(child, read.get(),
                                                                        read_root, "child"));
  EXPECT_STREQ(child.get(), text);
}

TEST_F(XmlWriting, ReportsAFileThatCannotBeOpened) {
  const int before = count_open_descriptors();
  EXPECT_FALSE(v_xml_write_to_file(document.get(), (folder / "none/file").c_str(), "UTF-8"));
  EXPECT_STREQ(v_error_get(), "Cannot open file.\n\nError 2: No such file or directory");
  EXPECT_FALSE(v_xml_write_to_file(document.get(), folder.path(), "UTF-8"));
  EXPECT_STREQ(v_error_get(), "Cannot open file.\n\nError 21: Is a directory");
  EXPECT_EQ(count_open_descriptors(), before);
}

// With no children the document fits into the write buffer, with 20,000 it does not.
void add_children(xmlNode *root, int count) {
  for (int i = 0; i < count; i++) {
    v_xml_add_child_element(root, "child");
  }
}

TEST_F(XmlWriting, FullDiskIsAFailureAndLeavesNoFile) {
  for (const int children : {0, 20'000}) {
    add_children(root, children);
    const std::string full = folder / "full.xml";
    ASSERT_EQ(symlink("/dev/full", full.c_str()), 0);
    const int before = count_open_descriptors();
    v_error_clear();
    EXPECT_FALSE(v_xml_write_to_file(document.get(), full.c_str(), "ISO-8859-1"));
    EXPECT_STREQ(v_error_get(), "Could not write XML data.");
    EXPECT_FALSE(path_exists(full));
    EXPECT_TRUE(path_exists("/dev/full"));
    EXPECT_EQ(count_open_descriptors(), before);
  }
}

// Limits the size of files of this process during its lifetime. A write across the limit succeeds
// in part.
class FileSizeLimit {
public:
  explicit FileSizeLimit(rlim_t bytes) : handler(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit limit = {bytes, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
  }
  FileSizeLimit(const FileSizeLimit &) = delete;
  FileSizeLimit &operator=(const FileSizeLimit &) = delete;

private:
  void (*handler)(int);
  rlimit before = {};
};

TEST_F(XmlWriting, ReplacesAFileAndLeavesNoOtherFile) {
  write_file(path, std::string(10'000, 'x'));
  EXPECT_TRUE(v_xml_replace_file(document.get(), path.c_str(), "ISO-8859-1")) << v_error_get();
  EXPECT_EQ(read_file(path), std::string(declaration) + "<root/>\n");
  EXPECT_EQ(list_folder(folder.path()).size(), 1U);
}

TEST_F(XmlWriting, KeepsAFileThatCannotBeReplaced) {
  write_file(path, "old");
  EXPECT_FALSE(v_xml_replace_file(document.get(), path.c_str(), "no such encoding"));
  EXPECT_STREQ(v_error_get(), "Could not write XML data to memory buffer.");
  {
    const FileSizeLimit limit(5);
    EXPECT_FALSE(v_xml_replace_file(document.get(), path.c_str(), "UTF-8"));
    EXPECT_TRUE(g_str_has_prefix(v_error_get(), "Could not write XML data.\n\nGError "));
  }
  EXPECT_EQ(read_file(path), "old");
  EXPECT_EQ(list_folder(folder.path()).size(), 1U);
}

TEST_F(XmlWriting, ReplacesALinkAndKeepsTheDeviceItNames) {
  ASSERT_EQ(symlink("/dev/null", path.c_str()), 0);
  EXPECT_TRUE(v_xml_replace_file(document.get(), path.c_str(), "ISO-8859-1")) << v_error_get();
  EXPECT_EQ(read_file(path), std::string(declaration) + "<root/>\n");
  EXPECT_EQ(read_file("/dev/null"), "");
}

TEST_F(XmlWriting, FailsIfTheDiskFillsUpInTheLastWrite) {
  for (const int children : {0, 20'000}) {
    add_children(root, children);
    ASSERT_TRUE(v_xml_write_to_file(document.get(), path.c_str(), "ISO-8859-1"));
    const std::size_t size = read_file(path).size();
    for (const std::size_t missing : {std::size_t{1}, std::size_t{10}, size - 1}) {
      const FileSizeLimit limit(size - missing);
      v_error_clear();
      EXPECT_FALSE(v_xml_write_to_file(document.get(), path.c_str(), "ISO-8859-1"));
      EXPECT_STREQ(v_error_get(), "Could not write XML data.");
      EXPECT_FALSE(path_exists(path));
    }
    const FileSizeLimit limit(size);
    EXPECT_TRUE(v_xml_write_to_file(document.get(), path.c_str(), "ISO-8859-1"));
  }
}

TEST_F(XmlWriting, UnknownEncodingIsAFailureAndLeavesNoFile) {
  const int before = count_open_descriptors();
  EXPECT_FALSE(v_xml_write_to_file(document.get(), path.c_str(), "NO-SUCH"));
  EXPECT_STREQ(v_error_get(), "Could not create XML saving context for file.");
  EXPECT_FALSE(path_exists(path));
  EXPECT_EQ(v_xml_write_to_string(document.get(), "NO-SUCH"), nullptr);
  EXPECT_STREQ(v_error_get(), "Could not write XML data to memory buffer.");
  EXPECT_EQ(count_open_descriptors(), before);
}

TEST_F(XmlWriting, FailuresAreNotPrinted) {
  const xmlGenericErrorFunc handler = xmlGenericError;
  const std::string full = folder / "full.xml";
  ASSERT_EQ(symlink("/dev/full", full.c_str()), 0);
  testing::internal::CaptureStderr();
  v_xml_write_to_file(document.get(), full.c_str(), "ISO-8859-1");
  v_xml_write_to_file(document.get(), path.c_str(), "NO-SUCH");
  v_xml_write_to_string(document.get(), "NO-SUCH");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(xmlGenericError, handler);
}

TEST_F(XmlWriting, StreamKeepsItsOrderAndStaysOpen) {
  OwnedFile file = v_fs_utils_open_file(path.c_str(), "wb");
  ASSERT_TRUE(v_util_fprintf(file.get(), "<!-- before -->\n"));
  EXPECT_TRUE(v_xml_write_to_stream(document.get(), file.get(), "ISO-8859-1"));
  EXPECT_EQ(read_file(path), "<!-- before -->\n" + std::string(declaration) + "<root/>\n");
  ASSERT_TRUE(v_util_fprintf(file.get(), "<!-- behind -->\n"));
  ASSERT_TRUE(v_fs_utils_close_file(std::move(file)));
  EXPECT_EQ(read_file(path),
            "<!-- before -->\n" + std::string(declaration) + "<root/>\n<!-- behind -->\n");
}

TEST_F(XmlWriting, ReportsStreamFailures) {
  OwnedFile full = v_fs_utils_open_file("/dev/full", "ab");
  EXPECT_FALSE(v_xml_write_to_stream(document.get(), full.get(), "ISO-8859-1"));
  EXPECT_STREQ(v_error_get(), "Could not write XML data.");
  EXPECT_FALSE(v_xml_write_to_stream(document.get(), full.get(), "NO-SUCH"));
  EXPECT_STREQ(v_error_get(), "Could not create XML saving context for file.");
  write_file(path, "kept");
  OwnedFile read_only = v_fs_utils_open_file(path.c_str(), "rb");
  EXPECT_FALSE(v_xml_write_to_stream(document.get(), read_only.get(), "ISO-8859-1"));
  EXPECT_STREQ(v_error_get(), "Could not write XML data.");
  EXPECT_EQ(read_file(path), "kept");
}

TEST_F(XmlWriting, StringHoldsTheDocument) {
  v_xml_set_attribute(root, "x", "\xC3\xA5");
  EXPECT_STREQ(v_xml_write_to_string(document.get(), "UTF-8").get(),
               "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<root x=\"\xC3\xA5\"/>\n");
  EXPECT_STREQ(v_xml_write_to_string(document.get(), "ISO-8859-1").get(),
               "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<root x=\"\xE5\"/>\n");
}

// ------------------------------------------------------------------------------ writing by hand

const struct {
  const char *latin1_text, *escaped;
} escapes[] = {
    {"", ""},
    {"text", "text"},
    {"&", "&amp;"},
    {"\"", "&quot;"},
    {"'", "&apos;"},
    {"<", "&lt;"},
    {">", "&gt;"},
    {"\n", "&#xA;"},
    {"\t", "&#x9;"},
    {"\r", "&#xD;&#x9;"},
    {"a\tb\nc\rd", "a&#x9;b&#xA;c&#xD;&#x9;d"},
    {"\r\n", "&#xD;&#x9;&#xA;"},
    {"\r\r\r\r", "&#xD;&#x9;&#xD;&#x9;&#xD;&#x9;&#xD;&#x9;"},
    {"&amp;&#xA;", "&amp;amp;&amp;#xA;"},
    {"<a b='c' d=\"e\">", "&lt;a b=&apos;c&apos; d=&quot;e&quot;&gt;"},
    {"100 %s %n", "100 %s %n"},
};

TEST_F(XmlWriting, EscapesSpecialCharacters) {
  for (const auto &row : escapes) {
    EXPECT_STREQ(v_xml_latin1_to_xml(row.latin1_text).get(), row.escaped);
  }
  EXPECT_EQ(v_xml_latin1_to_xml(nullptr), nullptr);
}

TEST_F(XmlWriting, EveryOtherByteIsCopied) {
  for (int byte = 1; byte < 256; byte++) {
    const std::string text(1, static_cast<char>(byte));
    if (std::strchr("&\"'<>\n\t\r", byte) == nullptr) {
      EXPECT_EQ(v_xml_latin1_to_xml(text.c_str()).get(), text) << byte;
    }
  }
}

TEST_F(XmlWriting, LongestExpansionHasRoom) {
  const std::string returns(100'000, '\r');
  const OwnedText escaped = v_xml_latin1_to_xml(returns.c_str());
  EXPECT_EQ(std::strlen(escaped.get()), 1'000'000u);
  EXPECT_THAT(escaped.get(), StartsWith("&#xD;&#x9;&#xD;&#x9;"));
}

TEST_F(XmlWriting, WritesTextsTabsAndFormatsByHand) {
  OwnedFile file = v_fs_utils_open_file(path.c_str(), "wb");
  std::string expected;
  for (const auto &row : escapes) {
    EXPECT_TRUE(v_xml_write_string(file.get(), row.latin1_text));
    expected += row.escaped;
  }
  EXPECT_TRUE(v_xml_write_string(file.get(), nullptr));
  EXPECT_TRUE(v_xml_write_string(file.get(), "\xE5"));
  for (const int n : {2, 0, -1, -2147483647 - 1, 1}) {
    EXPECT_TRUE(v_xml_write_tabs(file.get(), n));
  }
  EXPECT_TRUE(v_util_fprintf(file.get(), "<a x=\"%s\" y=\"%d\"/>%%", "\xE5%n", 5));
  EXPECT_TRUE(v_util_fprintf(file.get(), "%s", ""));
  ASSERT_TRUE(v_fs_utils_close_file(std::move(file)));
  EXPECT_EQ(read_file(path), expected + "\xE5\t\t\t<a x=\"\xE5%n\" y=\"5\"/>%");
  EXPECT_STREQ(v_error_get(), "");
}

TEST_F(XmlWriting, WritingByHandReportsAFullDisk) {
  OwnedFile full = v_fs_utils_open_file("/dev/full", "ab");
  // Without a buffer each write fails at once.
  ASSERT_EQ(std::setvbuf(full.get(), nullptr, _IONBF, 0), 0);
  EXPECT_FALSE(v_xml_write_string(full.get(), "text"));
  EXPECT_STREQ(v_error_get(), "File I/O error when writing to file.");
  v_error_set("other");
  EXPECT_FALSE(v_xml_write_tabs(full.get(), 3));
  EXPECT_STREQ(v_error_get(), "File I/O error when writing to file.");
  v_error_set("other");
  EXPECT_FALSE(v_util_fprintf(full.get(), "%s", "text"));
  EXPECT_STREQ(v_error_get(), "File I/O error when writing to file.");
  v_error_set("other");
  EXPECT_TRUE(v_xml_write_tabs(full.get(), 0));
  EXPECT_STREQ(v_error_get(), "other");
}

} // namespace
