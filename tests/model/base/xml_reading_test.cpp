#include "base/xml_reading.h"

#include <algorithm>
#include <cstring>
#include <ctime>
#include <functional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <libxml/xmlerror.h>
#include <poll.h>
#include <sys/inotify.h>
#include <sys/socket.h>
#include <unistd.h>

#include "base/error.h"
#include "support/files.h"

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

constexpr const char *could_not_parse = "Could not parse XML data.\n\n";
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

class XmlReading : public testing::Test {
protected:
  void SetUp() override { v_error_clear(); }

  // Writes the bytes to a file and parses it; what comes back is kept until the next one.
  xmlDoc *parse(const std::string &bytes) {
    write_file(path, bytes);
    v_error_clear();
    document = v_xml_parse_file(path.c_str());
    return document.get();
  }
  // The same, to the root element. Ends the test when there is none.
  xmlNode *root_of(const std::string &bytes) {
    xmlNode *root = parse(bytes) == nullptr ? nullptr : v_xml_get_root_element(document.get());
    if (root == nullptr) {
      throw std::runtime_error(v_error_get());
    }
    v_error_clear();
    return root;
  }

  TemporaryFolder folder;
  const std::string path = folder / "file.xml";
  OwnedXmlDoc document;
};

// Of the processor, not of the clock on the wall: other tests run at the same time.
double seconds_of(const std::function<void()> &action) {
  const std::clock_t start = std::clock();
  action();
  return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

// A second or so on any machine; what goes wrong here takes minutes to hours.
constexpr double soon = 6;

std::string repeated(const std::string &text, int count) {
  std::string all;
  for (int i = 0; i < count; i++) {
    all += text;
  }
  return all;
}

// The children of the root as they are handed out, each with its name and direct text; those with
// the given name are kept.
using Children = std::vector<std::string>;

Children children_of(OwnedXmlDoc &document, const std::string &path, const char *kept) {
  Children children;
  document = v_xml_parse_file_by_children(path.c_str(), [&](xmlDoc *unfinished, xmlNode *child) {
    const OwnedText text = v_xml_get_text_content_as_utf8(unfinished, child);
    children.push_back(std::string(v_xml_get_node_name(child)) + ":" + text.get());
    return v_xml_node_has_name(child, kept) ? XmlChild::kept : XmlChild::done_with;
  });
  return children;
}

// ------------------------------------------------------------------------------- parsing

TEST_F(XmlReading, DocumentsParse) {
  xmlNode *root =
      root_of("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<a x=\"\xE5\">\xE4</a>\n");
  EXPECT_TRUE(v_xml_node_has_name(root, "a"));
  EXPECT_STREQ(v_xml_get_text_content_as_utf8(document.get(), root).get(), "\xC3\xA4");
  EXPECT_STREQ(v_xml_get_text_content_as_latin1(document.get(), root).get(), "\xE4");
  EXPECT_STREQ(v_error_get(), "");
}

TEST_F(XmlReading, TheDeclarationDecidesOnTheEncoding) {
  const struct {
    std::string bytes;
    const char *latin1_text;
  } rows[] = {
      {"<a>\xC3\xA5</a>", "\xE5"},
      {"<?xml version='1.0' encoding='UTF-8'?><a>\xC3\xA5</a>", "\xE5"},
      {"\xEF\xBB\xBF<a>\xC3\xA5</a>", "\xE5"},
      {"<?xml version='1.0' encoding='ISO-8859-1'?><a>\xC3\xA5</a>", "\xC3\xA5"},
      {std::string("\xFF\xFE<\0a\0>\0\xE5\0<\0/\0a\0>\0", 18), "\xE5"},
  };
  for (const auto &row : rows) {
    xmlNode *root = root_of(row.bytes);
    EXPECT_STREQ(v_xml_get_text_content_as_latin1(document.get(), root).get(), row.latin1_text);
  }
}

TEST_F(XmlReading, MemoryParsesAsFilesDo) {
  const std::string good = "<a>text</a>behind";
  document = v_xml_parse_memory(good.data(), good.size() - 6);
  ASSERT_NE(document, nullptr);
  EXPECT_STREQ(
      v_xml_get_text_content_as_utf8(document.get(), xmlDocGetRootElement(document.get())).get(),
      "text");
  for (const std::string bad : {"", " ", "<a>", "<a>%s</b>"}) {
    EXPECT_EQ(parse(bad), nullptr);
    const std::string message = v_error_get();
    v_error_clear();
    EXPECT_EQ(v_xml_parse_memory(bad.data(), bad.size()), nullptr);
    EXPECT_EQ(v_error_get(), message);
  }
}

TEST_F(XmlReading, WhatIsNotWellFormedIsReportedInTheParsersWords) {
  EXPECT_EQ(parse("<a>\n<b></c>\n</a>"), nullptr);
  EXPECT_THAT(v_error_get(), StartsWith("Could not parse XML data.\n\n"
                                        "Entity: line 2: parser error : "
                                        "Opening and ending tag mismatch: b line 2 and c\n"
                                        "<b></c>\n"
                                        "       ^"));
  for (const char *bytes :
       {"", " ", "text", "<a>", "<a/><b/>", "<a x=1/>", "<a>&undeclared;</a>", "<a>\x01</a>",
        "<a x='1' x='2'/>", "<!DOCTYPE a>", "<?xml version='1.0' encoding='NO-SUCH'?><a/>"}) {
    EXPECT_EQ(parse(bytes), nullptr) << bytes;
    EXPECT_THAT(v_error_get(),
                StartsWith(std::string(could_not_parse) + "Entity: line 1: parser error : "))
        << bytes;
    EXPECT_FALSE(g_ascii_isspace(v_error_get()[std::strlen(v_error_get()) - 1]));
  }
}

TEST_F(XmlReading, ReportsAreCutAfterFifteenLines) {
  EXPECT_EQ(parse("<a>\n" + repeated("<b c=d>\n", 1000)), nullptr);
  const std::string message = v_error_get();
  EXPECT_THAT(message,
              StartsWith(std::string(could_not_parse) + "Entity: line 2: parser error : "));
  const std::string note = "\n\n(Error message truncated.)";
  ASSERT_THAT(message, EndsWith(note));
  const std::string report = message.substr(
      std::strlen(could_not_parse), message.size() - std::strlen(could_not_parse) - note.size());
  EXPECT_EQ(std::count(report.begin(), report.end(), '\n'), 14);
}

TEST_F(XmlReading, AMillionFaultsAreNotCollected) {
  EXPECT_LT(seconds_of([&] { parse("<a>" + repeated("<b c=d d=e>&x;", 200'000)); }), soon);
  EXPECT_EQ(document, nullptr);
  EXPECT_LT(std::strlen(v_error_get()), 10'000u);
}

TEST_F(XmlReading, QuotedLinesAreNoFormats) {
  EXPECT_EQ(parse("<a>%s%n%d %s</b>"), nullptr);
  EXPECT_THAT(v_error_get(), HasSubstr("<a>%s%n%d %s</b>"));
}

TEST_F(XmlReading, ReportsAreValidUtf8WhateverTheFileHolds) {
  const std::string umlauts = repeated("\xC3\xA4", 200);
  for (const std::string &bytes : {
           std::string("<a>\xE5\xE4\xF6</a>"),
           std::string("<?xml version='1.0' encoding='ISO-8859-1'?><a>\xE5</b>"),
           std::string("<a x='\xFF'></b>"),
           "<a>" + umlauts + "</b>", // the parser cuts the line inside of a character
           "<a>x" + umlauts + "</b>",
           "<" + umlauts + "></b>",
       }) {
    EXPECT_EQ(parse(bytes), nullptr);
    EXPECT_TRUE(g_utf8_validate(v_error_get(), -1, nullptr)) << v_error_get();
    EXPECT_THAT(v_error_get(), StartsWith(could_not_parse));
  }
}

TEST_F(XmlReading, SilentFailureIsAnUnknownError) {
  // A structured handler takes every report away from the generic one.
  xmlSetStructuredErrorFunc(nullptr, [](void *, xmlError *) {});
  EXPECT_EQ(parse("<a>"), nullptr);
  xmlSetStructuredErrorFunc(nullptr, nullptr);
  EXPECT_STREQ(v_error_get(), "Could not parse XML data.\n\nUnknown XML error.");
}

TEST_F(XmlReading, ReportsOfOneParseDoNotReachTheNext) {
  EXPECT_EQ(parse("<first>"), nullptr);
  EXPECT_THAT(v_error_get(), HasSubstr("first"));
  EXPECT_EQ(parse("<second>"), nullptr);
  EXPECT_THAT(v_error_get(), Not(HasSubstr("first")));
  // Warnings of a parse that succeeded are forgotten.
  EXPECT_NE(parse("<third xmlns='relative'/>"), nullptr);
  EXPECT_STREQ(v_error_get(), "");
  EXPECT_EQ(parse("<fourth>"), nullptr);
  EXPECT_THAT(v_error_get(), Not(HasSubstr("third")));
}

TEST_F(XmlReading, NothingIsPrinted) {
  testing::internal::CaptureStderr();
  testing::internal::CaptureStdout();
  parse("<a>");
  parse("<third xmlns='relative'/>");
  parse("<!DOCTYPE a SYSTEM 'none.dtd'><a>&u;</a>");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST_F(XmlReading, TheParsersSettingsAreRestored) {
  const auto loader = [](const char *, const char *, xmlParserCtxt *) -> xmlParserInput * {
    return nullptr;
  };
  const xmlExternalEntityLoader original_loader = xmlGetExternalEntityLoader();
  const xmlGenericErrorFunc original_handler = xmlGenericError;
  for (const int setting : {0, 1}) {
    for (const char *bytes : {"<a/>", "<a>"}) {
      xmlSubstituteEntitiesDefault(setting);
      xmlLoadExtDtdDefaultValue = setting;
      xmlSetExternalEntityLoader(loader);
      parse(bytes);
      EXPECT_EQ(xmlGetExternalEntityLoader(), static_cast<xmlExternalEntityLoader>(loader));
      EXPECT_EQ(xmlGenericError, original_handler);
      EXPECT_EQ(xmlLoadExtDtdDefaultValue, setting);
      EXPECT_EQ(xmlSubstituteEntitiesDefault(0), setting);
    }
  }
  xmlLoadExtDtdDefaultValue = 0;
  xmlSetExternalEntityLoader(original_loader);
}

TEST_F(XmlReading, MissingFile) {
  EXPECT_EQ(v_xml_parse_file((folder / "none.xml").c_str()), nullptr);
  EXPECT_STREQ(v_error_get(), "Cannot open file.\n\nError 2: No such file or directory");
}

TEST_F(XmlReading, FolderInsteadOfAFile) {
  EXPECT_EQ(v_xml_parse_file(folder.path()), nullptr);
  EXPECT_THAT(v_error_get(), StartsWith(could_not_parse));
}

TEST_F(XmlReading, PathsAreUtf8AndLiteral) {
  for (const char *name : {"\xC3\xA5.xml", "100 %s.xml", "<&>.xml"}) {
    write_file(folder / name, "<a/>");
    EXPECT_NE(v_xml_parse_file((folder / name).c_str()), nullptr) << name;
  }
}

TEST_F(XmlReading, ParsingIfThereIsAFile) {
  EXPECT_TRUE(v_xml_parse_file_if_exists(document, path.c_str()));
  EXPECT_EQ(document, nullptr);
  EXPECT_TRUE(v_xml_parse_file_if_exists(document, ""));
  EXPECT_EQ(document, nullptr);
  EXPECT_STREQ(v_error_get(), "");

  write_file(path, "<a/>");
  EXPECT_TRUE(v_xml_parse_file_if_exists(document, path.c_str()));
  EXPECT_NE(document, nullptr);
  // A document that was held before is dropped, whatever comes back.
  EXPECT_TRUE(v_xml_parse_file_if_exists(document, (folder / "none").c_str()));
  EXPECT_EQ(document, nullptr);

  write_file(path, "<a>");
  document = v_xml_parse_memory("<a/>", 4);
  EXPECT_FALSE(v_xml_parse_file_if_exists(document, path.c_str()));
  EXPECT_EQ(document, nullptr);
  EXPECT_THAT(v_error_get(), StartsWith(could_not_parse));

  EXPECT_FALSE(v_xml_parse_file_if_exists(document, (path + "/under").c_str()));
  EXPECT_STREQ(v_error_get(), "Cannot get file status.\n\nError 20: Not a directory");
  EXPECT_FALSE(v_xml_parse_file_if_exists(document, folder.path()));
  EXPECT_THAT(v_error_get(), StartsWith(could_not_parse));
}

TEST_F(XmlReading, NoDescriptorStaysOpen) {
  parse("<a/>");
  const int before = count_open_descriptors();
  for (int i = 0; i < 10; i++) {
    parse("<a/>");
    parse("<a>");
    v_xml_parse_file((folder / "none").c_str());
    v_xml_parse_file(folder.path());
    v_xml_parse_file_if_exists(document, path.c_str());
  }
  EXPECT_EQ(count_open_descriptors(), before);
}

// ------------------------------------------------------------------- what a file may not open

// Tells whether anything of a folder was opened since it began to watch.
class OpenWatch {
public:
  explicit OpenWatch(const char *folder) : descriptor(inotify_init1(IN_NONBLOCK)) {
    inotify_add_watch(descriptor, folder, IN_OPEN | IN_ACCESS);
  }
  ~OpenWatch() { close(descriptor); }
  OpenWatch(const OpenWatch &) = delete;
  OpenWatch &operator=(const OpenWatch &) = delete;

  bool has_seen_opening() const {
    char events[4096];
    return read(descriptor, events, sizeof events) > 0;
  }

private:
  int descriptor;
};

// Documents that name another resource in every way that XML has.
std::vector<std::string> documents_naming(const std::string &address) {
  const std::string quoted = "\"" + address + "\"";
  return {
      "<!DOCTYPE a [<!ENTITY e SYSTEM " + quoted + ">]><a>&e;</a>",
      "<!DOCTYPE a [<!ENTITY e PUBLIC \"-//P\" " + quoted + ">]><a>1&e;2</a>",
      "<!DOCTYPE a [<!ENTITY e SYSTEM " + quoted + ">]><a x='&e;'>t</a>",
      "<!DOCTYPE a [<!ENTITY e SYSTEM " + quoted + "><!ENTITY f '&e;'>]><a>&f;</a>",
      "<!DOCTYPE a [<!ENTITY % e SYSTEM " + quoted + "> %e;]><a>t</a>",
      "<!DOCTYPE a SYSTEM " + quoted + "><a>t</a>",
      "<!DOCTYPE a PUBLIC \"-//P\" " + quoted + "><a>&e;</a>",
      "<!DOCTYPE a SYSTEM " + quoted + " [<!ENTITY % e SYSTEM " + quoted + "> %e;]><a>&f;</a>",
      "<?oasis-xml-catalog catalog=" + quoted + "?><!DOCTYPE a PUBLIC \"-//P\" \"s\"><a>t</a>",
      "<?xml-stylesheet href=" + quoted + "?><a>t</a>",
      "<a xmlns:i='http://www.w3.org/2001/XInclude'><i:include href=" + quoted + "/></a>",
      "<a xmlns:i='http://www.w3.org/2001/XMLSchema-instance' "
      "i:noNamespaceSchemaLocation=" +
          quoted + ">t</a>",
  };
}

TEST_F(XmlReading, OtherFilesAreNeverOpened) {
  const TemporaryFolder elsewhere;
  const std::string secret = elsewhere / "secret.txt";
  write_file(secret, "<!ENTITY f 'TREASURE'>TREASURE");
  const OpenWatch watch(elsewhere.path());
  for (const std::string &address : {secret, "file://" + secret, "file:" + secret}) {
    for (const std::string &bytes : documents_naming(address)) {
      SCOPED_TRACE(bytes);
      OwnedText text, attribute;
      if (parse(bytes) != nullptr) {
        xmlNode *root = xmlDocGetRootElement(document.get());
        text = v_xml_get_text_content_as_utf8(document.get(), root);
        v_xml_get_attribute_value_as_utf8(attribute, root, "x");
      }
      for (const char *seen : {v_error_get(), static_cast<const char *>(text.get()),
                               static_cast<const char *>(attribute.get())}) {
        EXPECT_THAT(std::string(seen == nullptr ? "" : seen), Not(HasSubstr("TREASURE")));
      }
      EXPECT_FALSE(watch.has_seen_opening());
    }
  }
  // The watch does see an opening.
  read_file(secret);
  EXPECT_TRUE(watch.has_seen_opening());
}

TEST_F(XmlReading, NetworkAddressesAreNeverOpened) {
  const int server = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  ASSERT_EQ(bind(server, reinterpret_cast<sockaddr *>(&address), size), 0);
  ASSERT_EQ(listen(server, 5), 0);
  ASSERT_EQ(getsockname(server, reinterpret_cast<sockaddr *>(&address), &size), 0);
  const std::string host = "://127.0.0.1:" + std::to_string(ntohs(address.sin_port)) + "/x";
  for (const std::string scheme : {"http", "ftp"}) {
    for (const std::string &bytes : documents_naming(scheme + host)) {
      parse(bytes);
      pollfd connection = {server, POLLIN, 0};
      EXPECT_EQ(poll(&connection, 1, 0), 0) << bytes;
    }
  }
  close(server);
}

TEST_F(XmlReading, FilesWithADocumentTypeElsewhereAreReadWithoutIt) {
  xmlNode *root = root_of("<!DOCTYPE a SYSTEM \"x.dtd\"><a x='1'>t</a>");
  EXPECT_STREQ(v_xml_get_text_content_as_utf8(document.get(), root).get(), "t");
}

// ------------------------------------------------------------------------------ entity bombs

// Entities e0 ... e<levels>, each the one before it so many times.
std::string nested_entities(const std::string &innermost, int levels, int times) {
  std::string declarations = "<!ENTITY e0 \"" + innermost + "\">";
  for (int level = 1; level <= levels; level++) {
    declarations += "<!ENTITY e" + std::to_string(level) + " \"" +
                    repeated("&e" + std::to_string(level - 1) + ";", times) + "\">";
  }
  return declarations;
}

// Parses, and reads the text and the attribute x of the root and of each of its children.
void read_everything(const std::string &path) {
  const OwnedXmlDoc document = v_xml_parse_file(path.c_str());
  if (!document) {
    return;
  }
  xmlNode *root = xmlDocGetRootElement(document.get());
  std::vector<OwnedText> texts;
  const auto read = [&](xmlNode *node) {
    texts.push_back(v_xml_get_text_content_as_latin1(document.get(), node));
    OwnedText attribute;
    v_xml_get_attribute_value_as_latin1(attribute, node, "x");
    texts.push_back(std::move(attribute));
  };
  read(root);
  for (xmlNode *child = root->children; child != nullptr; child = child->next) {
    read(child);
  }
  std::size_t total = 0;
  for (const OwnedText &text : texts) {
    total += text ? std::strlen(text.get()) : 0;
  }
  EXPECT_LE(total, 25'000'000u);
}

TEST_F(XmlReading, EntityBombsEndQuickly) {
  const std::string large(100'000, 'x');
  std::vector<std::pair<const char *, std::string>> bombs = {
      {"flat text",
       "<!DOCTYPE a [<!ENTITY e '" + large + "'>]><a>" + repeated("&e;", 30'000) + "</a>"},
      {"flat attribute",
       "<!DOCTYPE a [<!ENTITY e '" + large + "'>]><a x='" + repeated("&e;", 30'000) + "'/>"},
      {"many nodes",
       "<!DOCTYPE a [<!ENTITY e '" + large + "'>]><a>" + repeated("<b>&e;</b>", 30'000) + "</a>"},
      {"many attributes",
       "<!DOCTYPE a [<!ENTITY e '" + large + "'>]><a>" + repeated("<b x='&e;'/>", 30'000) + "</a>"},
      {"many defaults", "<!DOCTYPE a [<!ATTLIST b x CDATA '" + large + "'>]><a>" +
                            repeated("<b/>", 30'000) + "</a>"},
      {"many entities of elements", "<!DOCTYPE a [<!ENTITY e '" + repeated("<b/>", 20'000) +
                                        "'>]><a>" + repeated("&e;", 20'000) + "</a>"},
      {"many entities of nothing", "<!DOCTYPE a [<!ENTITY f ''><!ENTITY e '" +
                                       repeated("&f;", 20'000) + "'>]><a>" +
                                       repeated("&e;", 20'000) + "</a>"},
  };
  for (const char *innermost : {"lol", "", "<b/>", "<!--c-->"}) {
    for (const auto &[levels, times] : {std::pair{9, 10}, {4, 10}, {30, 2}, {3, 100}, {3, 2000}}) {
      const std::string type = "<!DOCTYPE a [" + nested_entities(innermost, levels, times) + "]>";
      const std::string use = "&e" + std::to_string(levels) + ";";
      bombs.emplace_back("nested text", type + "<a>" + use + "</a>");
      bombs.emplace_back("nested attribute", type + "<a x='" + use + "'/>");
      bombs.emplace_back("nested default", type.substr(0, type.size() - 2) +
                                               "<!ATTLIST a x CDATA '" + use + "'>]><a/>");
    }
  }
  for (const auto &[levels, times] : {std::pair{9, 10}, {25, 2}, {3, 100}, {3, 800}}) {
    std::string type = "<!DOCTYPE a [<!ENTITY % p0 ''>";
    for (int level = 1; level <= levels; level++) {
      type += "<!ENTITY % p" + std::to_string(level) + " '" +
              repeated("&#37;p" + std::to_string(level - 1) + ";", times) + "'>";
    }
    bombs.emplace_back("nested parameter entities",
                       type + "%p" + std::to_string(levels) + ";]><a/>");
  }
  bombs.emplace_back("large parameter entity", "<!DOCTYPE a [<!ENTITY % p '<!--" + large + "-->'>" +
                                                   repeated("%p;", 30'000) + "]><a/>");
  for (const auto &[name, bytes] : bombs) {
    write_file(path, bytes);
    EXPECT_LT(seconds_of([&] { read_everything(path); }), soon) << name << bytes.substr(0, 200);
  }
}

TEST_F(XmlReading, TooManyReferencesDoNotParse) {
  EXPECT_EQ(parse("<!DOCTYPE a [" + nested_entities("", 3, 800) + "]><a x='&e3;'/>"), nullptr);
  EXPECT_THAT(v_error_get(), StartsWith(could_not_parse));
  EXPECT_NE(parse("<!DOCTYPE a [<!ENTITY % p ''>" + repeated("%p;", 999) + "]><a/>"), nullptr);
  EXPECT_EQ(parse("<!DOCTYPE a [<!ENTITY % p ''>" + repeated("%p;", 1'000) + "]><a/>"), nullptr);
  EXPECT_STREQ(v_error_get(), "Could not parse XML data.\n\nToo many entity references.");
}

TEST_F(XmlReading, OrdinaryUseOfEntitiesIsNotLimited) {
  xmlNode *root = root_of("<!DOCTYPE a [<!ENTITY auml '&#xE4;'><!ENTITY % n ''>" +
                          repeated("%n;", 100) + "<!ENTITY % p '<!ENTITY e \"x\">'>%p;]><a>" +
                          repeated("<b>&auml;&e;</b>", 100'000) + "</a>");
  for (xmlNode *child = root->children; child != nullptr; child = child->next) {
    ASSERT_STREQ(v_xml_get_text_content_as_latin1(document.get(), child).get(), "\xE4x");
  }
}

TEST_F(XmlReading, EntityLoopsEnd) {
  const std::string loop = "<!ENTITY e '1&f;2'><!ENTITY f '3&e;4'>";
  for (const std::string type : {"", " SYSTEM 'none.dtd'"}) {
    for (const std::string &bytes : {
             "<!DOCTYPE a" + type + " [" + loop + "]><a>&e;</a>",
             "<!DOCTYPE a" + type + " [" + loop + "]><a x='&e;'/>",
             "<!DOCTYPE a" + type + " [" + loop + "<!ATTLIST a x CDATA '&e;'>]><a/>",
             "<!DOCTYPE a" + type + " [<!ENTITY e '1&e;'>]><a x='&e;'>&e;</a>",
             // Declared in an order in which the parser does not see the loop.
             "<!DOCTYPE a" + type +
                 " [<!ENTITY e '1&f;2'><!ATTLIST a x CDATA '&e;'><!ENTITY f '3&e;4'>]><a/>",
         }) {
      write_file(path, bytes);
      EXPECT_LT(seconds_of([&] { read_everything(path); }), soon) << bytes;
    }
  }
}

TEST_F(XmlReading, WhatEntitiesAddIsLimitedPerDocument) {
  const std::string large(1'000'000, 'x');
  xmlNode *root = root_of("<!DOCTYPE a [<!ENTITY e '" + large + "'>]><a x='&e;'>" +
                          repeated("<b>&e;</b>", 20) + "</a>");
  int readable = 0;
  for (xmlNode *child = root->children; child != nullptr; child = child->next) {
    if (const OwnedText text = v_xml_get_text_content_as_utf8(document.get(), child)) {
      EXPECT_EQ(text.get(), large);
      readable++;
    }
  }
  EXPECT_EQ(readable, 9);
  EXPECT_STREQ(v_error_get(), unreadable_text);
  OwnedText value;
  EXPECT_FALSE(v_xml_get_attribute_value_as_utf8(value, root, "x"));
  EXPECT_STREQ(v_error_get(), unreadable_attribute);
  EXPECT_EQ(value, nullptr);
}

// The parser does not look into a default whose entities are declared only behind it.
TEST_F(XmlReading, EntitiesMayLieFortyDeep) {
  for (const int depth : {40, 41}) {
    const std::string first = "e" + std::to_string(depth - 1);
    xmlNode *root = root_of("<!DOCTYPE a SYSTEM 'none.dtd' [<!ENTITY " + first + " '&e" +
                            std::to_string(depth - 2) + ";'><!ATTLIST a x CDATA '&" + first +
                            ";'>" + nested_entities("y", depth - 1, 1) + "]><a/>");
    OwnedText value;
    EXPECT_EQ(v_xml_get_attribute_value_as_utf8(value, root, "x"), depth == 40) << depth;
    EXPECT_STREQ(value.get(), depth == 40 ? "y" : nullptr);
  }
}

// A node counts as one byte more.
TEST_F(XmlReading, WhatEntitiesAddMayReachTheLimit) {
  const std::string tenth(999'999, 'x');
  for (const std::string last : {"&e;", "&e;&n;"}) {
    xmlNode *root = root_of("<!DOCTYPE a [<!ENTITY e '" + tenth + "'><!ENTITY n 'y'>]><a>" +
                            repeated("&e;", 9) + last + "</a>");
    const OwnedText text = v_xml_get_text_content_as_utf8(document.get(), root);
    EXPECT_EQ(text != nullptr, last == "&e;");
  }
}

TEST_F(XmlReading, TextWithoutEntitiesIsNotLimited) {
  const std::string piece = std::string(1'000'000, 'x') + "<!---->";
  xmlNode *root = root_of("<a>" + repeated(piece, 20) + "</a>");
  const OwnedText text = v_xml_get_text_content_as_utf8(document.get(), root);
  ASSERT_NE(text, nullptr);
  EXPECT_EQ(std::strlen(text.get()), 20'000'000u);
}

TEST_F(XmlReading, ManyPiecesOfTextTakeLinearTime) {
  for (const char *piece : {"<![CDATA[0123456789]]>", "<![CDATA[0123456789]]><!---->",
                            "0123456789<b/>", "01234<![CDATA[56789]]>", "0123456789&n;"}) {
    xmlNode *root = root_of("<!DOCTYPE a [<!ENTITY n ''>]><a>" + repeated(piece, 100'000) + "</a>");
    OwnedText text;
    EXPECT_LT(seconds_of([&] { text = v_xml_get_text_content_as_latin1(document.get(), root); }),
              1);
    EXPECT_EQ(text.get(), repeated("0123456789", 100'000));
  }
}

TEST_F(XmlReading, DeepNestingIsRefused) {
  EXPECT_EQ(parse(repeated("<a>", 1'000'000)), nullptr);
  EXPECT_THAT(v_error_get(), StartsWith(could_not_parse));
}

// ------------------------------------------------------------------------------ nodes, children

TEST_F(XmlReading, ChildrenOfTheRootAreHandedOut) {
  const std::string xml = "<a>\n<b>1</b>2<?b 3?><c>4<b>5</b></c><!--6--><b/><b><b>7</b></b>8</a>";
  const Children expected = {"text:", "b:1", "text:", "b:", "c:4", "comment:", "b:", "b:", "text:"};
  for (const char *head : {"", "<!DOCTYPE a []>", "<?b?><!--b-->"}) {
    write_file(path, head + xml);
    EXPECT_EQ(children_of(document, path, "c"), expected);
    ASSERT_NE(document, nullptr) << v_error_get();
    const xmlNode *root = v_xml_get_root_element(document.get());
    ASSERT_STREQ(v_xml_get_node_name(root), "a");
    ASSERT_NE(root->children, nullptr);
    EXPECT_STREQ(v_xml_get_node_name(root->children), "c");
    EXPECT_EQ(root->children, root->last);

    EXPECT_EQ(children_of(document, path, "b"), expected);
    ASSERT_NE(document, nullptr) << v_error_get();
    int kept = 0;
    for (root = v_xml_get_root_element(document.get())->children; root != nullptr;
         root = root->next) {
      EXPECT_STREQ(v_xml_get_node_name(root), "b");
      kept++;
    }
    EXPECT_EQ(kept, 4);
  }
}

TEST_F(XmlReading, TheRootItselfIsNotHandedOut) {
  for (const char *xml : {"<a/>", "<a></a>", "<?b?><a b='1'/><!--b-->"}) {
    write_file(path, xml);
    EXPECT_EQ(children_of(document, path, "b"), Children());
    EXPECT_NE(document, nullptr) << v_error_get();
  }
}

TEST_F(XmlReading, ChildrenAreHandedOutBeforeTheEndIsSeen) {
  write_file(path, "<a><b>1</b><c>2</c><b>3");
  EXPECT_EQ(children_of(document, path, "c"), (Children{"b:1", "c:2"}));
  EXPECT_EQ(document, nullptr);
  EXPECT_THAT(v_error_get(), StartsWith(could_not_parse));
}

TEST_F(XmlReading, ReferencesToEntitiesAreHandedOutAsSuch) {
  write_file(path, "<!DOCTYPE a [<!ENTITY e '4<b>1</b>'>]><a>&e;<c>3&e;</c>&e;</a>");
  EXPECT_EQ(children_of(document, path, "c"), (Children{"e:", "c:34", "e:"}));
  EXPECT_NE(document, nullptr) << v_error_get();
}

TEST_F(XmlReading, RootElement) {
  EXPECT_STREQ(v_xml_get_node_name(root_of("<!--c--><?p i?><a/>")), "a");
  const OwnedXmlDoc none(xmlNewDoc(reinterpret_cast<const xmlChar *>("1.0")));
  EXPECT_EQ(v_xml_get_root_element(none.get()), nullptr);
  EXPECT_STREQ(v_error_get(), "Missing root element in XML tree.");
}

TEST_F(XmlReading, FreeingNothingIsAllowed) {
  v_xml_free_doc(nullptr);
  v_xml_free_doc(xmlNewDoc(reinterpret_cast<const xmlChar *>("1.0")));
}

TEST_F(XmlReading, NamesAreComparedExactlyAndWithoutNamespaces) {
  xmlNode *root = root_of("<p:name xmlns:p='urn:p'/>");
  EXPECT_TRUE(v_xml_node_has_name(root, "name"));
  for (const char *name : {"", "nam", "names", "Name", "NAME", "p:name"}) {
    EXPECT_FALSE(v_xml_node_has_name(root, name)) << name;
  }
}

TEST_F(XmlReading, NodesWithoutANameHaveNone) {
  xmlNode *root = root_of("<a><![CDATA[x]]><b/></a>");
  xmlNode *cdata = root->children;
  ASSERT_EQ(cdata->type, XML_CDATA_SECTION_NODE);
  EXPECT_EQ(v_xml_get_node_name(cdata), nullptr);
  EXPECT_FALSE(v_xml_node_has_name(cdata, "x"));
  EXPECT_FALSE(v_xml_node_has_name(cdata, ""));
  EXPECT_TRUE(v_xml_node_has_child_node_with_name(root, "b"));
  EXPECT_NE(v_xml_get_required_distinct_child_node(root, "b"), nullptr);
}

TEST_F(XmlReading, DistinctChild) {
  const struct {
    const char *bytes;
    bool is_found;
    const char *message;          // of the getter whose child may be absent
    const char *required_message; // of the one whose child is required
  } rows[] = {
      {"<a><version/></a>", true, "", ""},
      {"<a>text<b/><p:version xmlns:p='urn:p'/><!--c--></a>", true, "", ""},
      {"<a/>", false, "", "Missing XML node: version"},
      {"<a>version</a>", false, "", "Missing XML node: version"},
      {"<a><b><version/></b></a>", false, "", "Missing XML node: version"},
      {"<a><Version/></a>", false, "", "Missing XML node: version"},
      {"<a><version/><version/></a>", false, duplicate, duplicate},
      {"<a><version/>x<version>y</version><version/></a>", false, duplicate, duplicate},
      // The kind of a node is not looked at.
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
    xmlNode *root = root_of("<a " + std::string(row.attribute) + "/>");
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
    xmlNode *root = root_of("<a " + std::string(row.attribute) + "/>");
    EXPECT_STREQ(row.getter(root, "x").get(), row.value);
    EXPECT_STREQ(v_error_get(), row.message);
  }
}

TEST_F(XmlReading, NodesThatAreNoElementsHaveNoAttributes) {
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
      {"<a/>", "d", "1x&y&\xE5"}, // declared by the document type alone
      {"<a d='own'/>", "d", "own"},
  };
  for (const auto &row : rows) {
    xmlNode *root = root_of(type + row.element);
    EXPECT_TRUE(v_xml_node_has_attribute(root, row.name));
    EXPECT_STREQ(v_xml_get_required_attribute_value_as_latin1(root, row.name).get(), row.value)
        << row.element;
  }
}

TEST_F(XmlReading, UnreadableAttribute) {
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
    xmlNode *root = root_of("<a " + std::string(row.attribute) + "/>");
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
    int or_fallback; // of the one with the fallback 9
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
    xmlNode *root = root_of("<a " + std::string(row.attribute) + "/>");
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
    double or_fallback; // of the one with the fallback 9
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
    xmlNode *root = root_of("<a " + std::string(row.attribute) + "/>");
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
    xmlNode *root = root_of("<a " + std::string(row.attribute) + "/>");
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

TEST_F(XmlReading, TextContentIsTheDirectText) {
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

// The four getters that differ in encoding and spacing, as far as each text tells them apart.
struct TextRow {
  const char *content;
  const char *utf8, *compact_utf8, *latin1, *compact_latin1; // null: not readable
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

    text = copy_text("held before");
    EXPECT_TRUE(getter.getter(text, document.get(), root_of("<a>text<b/></a>"), "version"));
    EXPECT_EQ(text, nullptr);
    EXPECT_STREQ(v_error_get(), "");

    text = copy_text("held before");
    xmlNode *root = root_of("<a><version/><version/></a>");
    EXPECT_FALSE(getter.getter(text, document.get(), root, "version"));
    EXPECT_EQ(text, nullptr);
    EXPECT_STREQ(v_error_get(), duplicate);

    text = copy_text("held before");
    root = root_of("<!DOCTYPE a SYSTEM 'x.dtd'><a><version>&u;</version></a>");
    EXPECT_FALSE(getter.getter(text, document.get(), root, "version"));
    EXPECT_EQ(text, nullptr);
    EXPECT_STREQ(v_error_get(), unreadable_text);
  }
}

} // namespace
