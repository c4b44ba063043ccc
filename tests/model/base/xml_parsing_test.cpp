#include "base/xml_parsing.h"

#include <algorithm>
#include <cstring>
#include <ctime>
#include <functional>
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

#include "xml_fixture.h"

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

constexpr const char *could_not_parse = "Could not parse XML data.\n\n";
constexpr const char *unreadable_text = "Error reading text content from XML node.";
constexpr const char *unreadable_attribute = "Error when reading XML attribute.";

class XmlParsing : public XmlFixture {};

// Processor time, not elapsed time, because other tests run at the same time.
double seconds_of(const std::function<void()> &action) {
  const std::clock_t start = std::clock();
  action();
  return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

// Limit in seconds. Success takes about one second on any machine, failure minutes to hours.
constexpr double soon = 6;

std::string repeated(const std::string &text, int count) {
  std::string all;
  for (int i = 0; i < count; i++) {
    all += text;
  }
  return all;
}

// ------------------------------------------------------------------------------- parsing

TEST_F(XmlParsing, DocumentsParse) {
  xmlNode *root =
      root_of("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<a x=\"\xE5\">\xE4</a>\n");
  EXPECT_TRUE(v_xml_node_has_name(root, "a"));
  EXPECT_STREQ(v_xml_get_text_content_as_utf8(document.get(), root).get(), "\xC3\xA4");
  EXPECT_STREQ(v_xml_get_text_content_as_latin1(document.get(), root).get(), "\xE4");
  EXPECT_STREQ(v_error_get(), "");
}

TEST_F(XmlParsing, TheEncodingIsReadFromTheFile) {
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

TEST_F(XmlParsing, MemoryParsesLikeAFile) {
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

TEST_F(XmlParsing, MalformedXmlIsReportedWithTheParsersMessage) {
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

TEST_F(XmlParsing, ReportsAreCutAfterFifteenLines) {
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

TEST_F(XmlParsing, AMillionFaultsAreNotCollected) {
  EXPECT_LT(seconds_of([&] { parse("<a>" + repeated("<b c=d d=e>&x;", 200'000)); }), soon);
  EXPECT_EQ(document, nullptr);
  EXPECT_LT(std::strlen(v_error_get()), 10'000u);
}

TEST_F(XmlParsing, PercentSignsInReportsAreKept) {
  EXPECT_EQ(parse("<a>%s%n%d %s</b>"), nullptr);
  EXPECT_THAT(v_error_get(), HasSubstr("<a>%s%n%d %s</b>"));
}

TEST_F(XmlParsing, ReportsAreValidUtf8WhateverTheFileHolds) {
  const std::string umlauts = repeated("\xC3\xA4", 200);
  for (const std::string &bytes : {
           std::string("<a>\xE5\xE4\xF6</a>"),
           std::string("<?xml version='1.0' encoding='ISO-8859-1'?><a>\xE5</b>"),
           std::string("<a x='\xFF'></b>"),
           "<a>" + umlauts + "</b>", // the parser cuts the line inside a character
           "<a>x" + umlauts + "</b>",
           "<" + umlauts + "></b>",
       }) {
    EXPECT_EQ(parse(bytes), nullptr);
    EXPECT_TRUE(g_utf8_validate(v_error_get(), -1, nullptr)) << v_error_get();
    EXPECT_THAT(v_error_get(), StartsWith(could_not_parse));
  }
}

TEST_F(XmlParsing, SilentFailureIsAnUnknownError) {
  // With a structured handler set, the library does not call the generic one.
  xmlSetStructuredErrorFunc(nullptr, [](void *, xmlError *) {});
  EXPECT_EQ(parse("<a>"), nullptr);
  xmlSetStructuredErrorFunc(nullptr, nullptr);
  EXPECT_STREQ(v_error_get(), "Could not parse XML data.\n\nUnknown XML error.");
}

TEST_F(XmlParsing, ReportsOfOneParseDoNotReachTheNext) {
  EXPECT_EQ(parse("<first>"), nullptr);
  EXPECT_THAT(v_error_get(), HasSubstr("first"));
  EXPECT_EQ(parse("<second>"), nullptr);
  EXPECT_THAT(v_error_get(), Not(HasSubstr("first")));
  // Warnings of a successful parse are discarded.
  EXPECT_NE(parse("<third xmlns='relative'/>"), nullptr);
  EXPECT_STREQ(v_error_get(), "");
  EXPECT_EQ(parse("<fourth>"), nullptr);
  EXPECT_THAT(v_error_get(), Not(HasSubstr("third")));
}

TEST_F(XmlParsing, NothingIsPrinted) {
  testing::internal::CaptureStderr();
  testing::internal::CaptureStdout();
  parse("<a>");
  parse("<third xmlns='relative'/>");
  parse("<!DOCTYPE a SYSTEM 'none.dtd'><a>&u;</a>");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST_F(XmlParsing, TheParsersSettingsAreRestored) {
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

TEST_F(XmlParsing, MissingFileIsReported) {
  EXPECT_EQ(v_xml_parse_file((folder / "none.xml").c_str()), nullptr);
  EXPECT_STREQ(v_error_get(), "Cannot open file.\n\nError 2: No such file or directory");
}

TEST_F(XmlParsing, FolderIsReported) {
  EXPECT_EQ(v_xml_parse_file(folder.path()), nullptr);
  EXPECT_THAT(v_error_get(), StartsWith(could_not_parse));
}

// The other end of the connection is closed before it has read everything, which is an error here
// after the text.
TEST_F(XmlParsing, ATextWithoutAReadableEndDoesNotSpoilTheNextParse) {
  int ends[2];
  ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, ends), 0);
  EXPECT_EQ(write(ends[1], "<a/>", 4), 4);
  EXPECT_EQ(write(ends[0], "x", 1), 1);
  close(ends[1]);
  EXPECT_EQ(v_xml_parse_descriptor(ends[0]), nullptr);
  close(ends[0]);
  EXPECT_NE(parse("<a/>"), nullptr) << v_error_get();
}

TEST_F(XmlParsing, PathsAreUtf8AndLiteral) {
  for (const char *name : {"\xC3\xA5.xml", "100 %s.xml", "<&>.xml"}) {
    write_file(folder / name, "<a/>");
    EXPECT_NE(v_xml_parse_file((folder / name).c_str()), nullptr) << name;
  }
}

TEST_F(XmlParsing, ParsesAFileIfItExists) {
  EXPECT_TRUE(v_xml_parse_file_if_exists(document, path.c_str()));
  EXPECT_EQ(document, nullptr);
  EXPECT_TRUE(v_xml_parse_file_if_exists(document, ""));
  EXPECT_EQ(document, nullptr);
  EXPECT_STREQ(v_error_get(), "");

  write_file(path, "<a/>");
  EXPECT_TRUE(v_xml_parse_file_if_exists(document, path.c_str()));
  EXPECT_NE(document, nullptr);
  // The previous document is freed in every case.
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

TEST_F(XmlParsing, NoDescriptorStaysOpen) {
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

// ------------------------------------------------------------------------- external resources

// Detects whether an entry of a folder has been opened since the last query.
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

// Documents that refer to another resource in every way that XML offers.
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

TEST_F(XmlParsing, OtherFilesAreNeverOpened) {
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
  // The watch does detect an opened file.
  read_file(secret);
  EXPECT_TRUE(watch.has_seen_opening());
}

int loads = 0;

// A test of the library: with these two defaults it loads external entities even if the parse
// options do not ask for it, so only a loader that refuses them keeps them out.
TEST_F(XmlParsing, LibraryLoadsExternalEntitiesUnlessTheLoaderRefuses) {
  const std::string bytes = "<!DOCTYPE a [<!ENTITY e SYSTEM 'general'><!ENTITY % p SYSTEM "
                            "'parameter'> %p;]><a>&e;</a>";
  const xmlExternalEntityLoader original_loader = xmlGetExternalEntityLoader();
  const int substituting = xmlSubstituteEntitiesDefault(1);
  const int loading = std::exchange(xmlLoadExtDtdDefaultValue, 1);
  xmlSetExternalEntityLoader([](const char *, const char *, xmlParserCtxt *) -> xmlParserInput * {
    loads++;
    return nullptr;
  });
  loads = 0;
  xmlSetStructuredErrorFunc(nullptr, [](void *, xmlError *) {});
  OwnedXmlDoc(xmlReadMemory(bytes.data(), static_cast<int>(bytes.size()), nullptr, nullptr, 0));
  xmlSetStructuredErrorFunc(nullptr, nullptr);
  xmlSetExternalEntityLoader(original_loader);
  xmlLoadExtDtdDefaultValue = loading;
  xmlSubstituteEntitiesDefault(substituting);
  EXPECT_EQ(loads, 2);
}

TEST_F(XmlParsing, NetworkAddressesAreNeverOpened) {
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

TEST_F(XmlParsing, ExternalDocumentTypesAreIgnored) {
  xmlNode *root = root_of("<!DOCTYPE a SYSTEM \"x.dtd\"><a x='1'>t</a>");
  EXPECT_STREQ(v_xml_get_text_content_as_utf8(document.get(), root).get(), "t");
}

// ------------------------------------------------------------------------------ entity bombs

// Declares the entities e0 to e<levels>. Each contains the one before it `times` times.
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

TEST_F(XmlParsing, EntityBombsAreStoppedQuickly) {
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

TEST_F(XmlParsing, TooManyReferencesDoNotParse) {
  EXPECT_EQ(parse("<!DOCTYPE a [" + nested_entities("", 3, 800) + "]><a x='&e3;'/>"), nullptr);
  EXPECT_THAT(v_error_get(), StartsWith(could_not_parse));
  EXPECT_NE(parse("<!DOCTYPE a [<!ENTITY % p ''>" + repeated("%p;", 999) + "]><a/>"), nullptr);
  EXPECT_EQ(parse("<!DOCTYPE a [<!ENTITY % p ''>" + repeated("%p;", 1'000) + "]><a/>"), nullptr);
  EXPECT_STREQ(v_error_get(), "Could not parse XML data.\n\nToo many entity references.");
}

TEST_F(XmlParsing, OrdinaryUseOfEntitiesIsNotLimited) {
  xmlNode *root = root_of("<!DOCTYPE a [<!ENTITY auml '&#xE4;'><!ENTITY % n ''>" +
                          repeated("%n;", 100) + "<!ENTITY % p '<!ENTITY e \"x\">'>%p;]><a>" +
                          repeated("<b>&auml;&e;</b>", 100'000) + "</a>");
  for (xmlNode *child = root->children; child != nullptr; child = child->next) {
    ASSERT_STREQ(v_xml_get_text_content_as_latin1(document.get(), child).get(), "\xE4x");
  }
}

TEST_F(XmlParsing, EntityLoopsAreStoppedQuickly) {
  const std::string loop = "<!ENTITY e '1&f;2'><!ENTITY f '3&e;4'>";
  for (const std::string type : {"", " SYSTEM 'none.dtd'"}) {
    for (const std::string &bytes : {
             "<!DOCTYPE a" + type + " [" + loop + "]><a>&e;</a>",
             "<!DOCTYPE a" + type + " [" + loop + "]><a x='&e;'/>",
             "<!DOCTYPE a" + type + " [" + loop + "<!ATTLIST a x CDATA '&e;'>]><a/>",
             "<!DOCTYPE a" + type + " [<!ENTITY e '1&e;'>]><a x='&e;'>&e;</a>",
             // Declared in an order in which the parser does not detect the loop.
             "<!DOCTYPE a" + type +
                 " [<!ENTITY e '1&f;2'><!ATTLIST a x CDATA '&e;'><!ENTITY f '3&e;4'>]><a/>",
         }) {
      write_file(path, bytes);
      EXPECT_LT(seconds_of([&] { read_everything(path); }), soon) << bytes;
    }
  }
}

TEST_F(XmlParsing, TextFromEntitiesIsLimitedPerDocument) {
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

// The parser does not check the depth of a default value declared before its entities.
TEST_F(XmlParsing, EntitiesMayNestFortyDeep) {
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

// Each node counts as one more byte.
TEST_F(XmlParsing, TextFromEntitiesMayReachTheLimit) {
  const std::string tenth(999'999, 'x');
  for (const std::string last : {"&e;", "&e;&n;"}) {
    xmlNode *root = root_of("<!DOCTYPE a [<!ENTITY e '" + tenth + "'><!ENTITY n 'y'>]><a>" +
                            repeated("&e;", 9) + last + "</a>");
    const OwnedText text = v_xml_get_text_content_as_utf8(document.get(), root);
    EXPECT_EQ(text != nullptr, last == "&e;");
  }
}

TEST_F(XmlParsing, TextWithoutEntitiesIsNotLimited) {
  const std::string piece = std::string(1'000'000, 'x') + "<!---->";
  xmlNode *root = root_of("<a>" + repeated(piece, 20) + "</a>");
  const OwnedText text = v_xml_get_text_content_as_utf8(document.get(), root);
  ASSERT_NE(text, nullptr);
  EXPECT_EQ(std::strlen(text.get()), 20'000'000u);
}

TEST_F(XmlParsing, ManyPiecesOfTextTakeLinearTime) {
  for (const char *piece : {"<![CDATA[0123456789]]>", "<![CDATA[0123456789]]><!---->",
                            "0123456789<b/>", "01234<![CDATA[56789]]>", "0123456789&n;"}) {
    xmlNode *root = root_of("<!DOCTYPE a [<!ENTITY n ''>]><a>" + repeated(piece, 100'000) + "</a>");
    OwnedText text;
    EXPECT_LT(seconds_of([&] { text = v_xml_get_text_content_as_latin1(document.get(), root); }),
              1);
    EXPECT_EQ(text.get(), repeated("0123456789", 100'000));
  }
}

TEST_F(XmlParsing, DeepNestingIsRefused) {
  EXPECT_EQ(parse(repeated("<a>", 1'000'000)), nullptr);
  EXPECT_THAT(v_error_get(), StartsWith(could_not_parse));
}

// ------------------------------------------------------------------------------ nodes, children

TEST_F(XmlParsing, GivesTheRootElement) {
  EXPECT_STREQ(v_xml_get_node_name(root_of("<!--c--><?p i?><a/>")), "a");
  const OwnedXmlDoc none(xmlNewDoc(reinterpret_cast<const xmlChar *>("1.0")));
  EXPECT_EQ(v_xml_get_root_element(none.get()), nullptr);
  EXPECT_STREQ(v_error_get(), "Missing root element in XML tree.");
}

TEST_F(XmlParsing, FreeingNullIsAllowed) {
  v_xml_free_doc(nullptr);
  v_xml_free_doc(xmlNewDoc(reinterpret_cast<const xmlChar *>("1.0")));
}

} // namespace
