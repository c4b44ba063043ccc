#include "codeset/codeset_io.h"

#include <ctime>
#include <filesystem>
#include <functional>

#include <sys/stat.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/error.h"
#include "support/child_process.h"
#include "support/files.h"
#include "support/values/codesets.h"
#include "support/xml_roots.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class CodesetIo : public testing::Test {
protected:
  CodesetIo() { v_error_set("of an earlier failure"); }

  OwnedCodeset read_bytes(const std::string &bytes) const {
    write_file(path, bytes);
    return v_codeset_io_read_from_file(path.c_str());
  }

  // Expects that reading fails. Returns the message.
  std::string message_of(const std::string &bytes) const {
    EXPECT_EQ(read_bytes(bytes), nullptr) << bytes;
    return v_error_get();
  }

  // "written", or the message on failure.
  static std::string write_result(const VCodeset *codeset, const std::string &target) {
    return v_codeset_io_write_to_file(codeset, target.c_str()) ? "written" : v_error_get();
  }

  std::string written(const VCodeset *codeset) const {
    EXPECT_TRUE(v_codeset_io_write_to_file(codeset, path.c_str())) << v_error_get();
    return read_file(path);
  }

  TemporaryFolder folder;
  std::string path = folder / "a.codeset";
};

TEST_F(CodesetIo, ADocumentWithoutARootIsRefused) {
  const MissingXmlRoots missing;
  EXPECT_EQ(message_of("<!DOCTYPE codeset><codeset/>"),
            "Invalid codeset file.\n\nMissing root element in XML tree.");
}

void expect_equal(const OwnedCodeset &a, const OwnedCodeset &b) {
  ASSERT_TRUE(a && b) << v_error_get();
  EXPECT_EQ(translations_of(a->name), translations_of(b->name));
  EXPECT_EQ(translations_of(a->author), translations_of(b->author));
  EXPECT_STREQ(a->version.get(), b->version.get());
  EXPECT_EQ(remarks_of(a->remarks), remarks_of(b->remarks));
  EXPECT_FALSE(a->outdated);
  EXPECT_FALSE(b->outdated);
}

constexpr const char *a_name = "<name lang='sv'>Namn</name>";
constexpr const char *a_remark =
    "<remark><code>7</code><description lang='sv'>a</description></remark>";

std::string codeset_xml(const std::string &content) { return "<codeset>" + content + "</codeset>"; }

TEST_F(CodesetIo, WritesExactlyTheExpectedBytes) {
  const OwnedCodeset codeset = codeset_of(
      {{"en-uk", "Paintings"}, {"sv", "M\xE5lningar"}}, {{"", "A & B <c@d>"}}, "1.2 \"beta\"",
      {{"1", {{"en-uk", "It's\ta\r\nline"}, {"sv", "\xFF"}}}, {"a&<b>\"'\t\r\n\xE5", {{"", "x"}}}});
  EXPECT_EQ(written(codeset.get()),
            "<?xml version=\"1.0\" encoding=\"iso-8859-1\"?>\n"
            "\n"
            "<codeset>\n"
            "\n"
            "\t<name lang=\"en-uk\">Paintings</name>\n"
            "\t<name lang=\"sv\">M\xE5lningar</name>\n"
            "\t<author lang=\"\">A &amp; B &lt;c@d&gt;</author>\n"
            "\t<version>1.2 &quot;beta&quot;</version>\n"
            "\n"
            "\t<remark>\n"
            "\t\t<code>1</code>\n"
            "\t\t<description lang=\"en-uk\">It&apos;s&#x9;a&#xD;&#x9;&#xA;line</description>\n"
            "\t\t<description lang=\"sv\">\xFF</description>\n"
            "\t</remark>\n"
            "\n"
            "\t<remark>\n"
            "\t\t<code>a&<b>\"'\t\r\n\xE5</code>\n"
            "\t\t<description lang=\"\">x</description>\n"
            "\t</remark>\n"
            "\n"
            "</codeset>\n");
}

TEST_F(CodesetIo, WritesNoLineForMissingParts) {
  const OwnedCodeset codeset =
      codeset_of({{"sv", "100% %s"}}, {}, nullptr, {{"%s%n", {{"sv", "%d"}}}});
  EXPECT_EQ(written(codeset.get()), "<?xml version=\"1.0\" encoding=\"iso-8859-1\"?>\n"
                                    "\n"
                                    "<codeset>\n"
                                    "\n"
                                    "\t<name lang=\"sv\">100% %s</name>\n"
                                    "\n"
                                    "\t<remark>\n"
                                    "\t\t<code>%s%n</code>\n"
                                    "\t\t<description lang=\"sv\">%d</description>\n"
                                    "\t</remark>\n"
                                    "\n"
                                    "</codeset>\n");
  expect_equal(v_codeset_io_read_from_file(path.c_str()), codeset);
}

TEST_F(CodesetIo, WritesAnEmptyCodeset) {
  EXPECT_EQ(written(v_codeset_new().get()), "<?xml version=\"1.0\" encoding=\"iso-8859-1\"?>\n"
                                            "\n"
                                            "<codeset>\n"
                                            "\n"
                                            "\n"
                                            "</codeset>\n");
}

TEST_F(CodesetIo, ReadsBackItsOwnFiles) {
  std::string every_character;
  for (int byte = 0x21; byte < 0x100; byte++) {
    every_character += static_cast<char>(byte);
  }
  std::string every_code_character = every_character;
  std::erase(every_code_character, '&');
  std::erase(every_code_character, '<');
  const OwnedCodeset codeset = codeset_of({{"en-uk", every_character}, {"", "a b"}},
                                          {{"sv-fi", every_character}}, every_character.c_str(),
                                          {{"07", {{"sv", every_character}}},
                                           {"7", {{"", "x"}}},
                                           {every_code_character, {{"de", "y"}}}});
  v_remark_list_sort(codeset->remarks.get());
  const std::string bytes = written(codeset.get());
  const OwnedCodeset reread = v_codeset_io_read_from_file(path.c_str());
  expect_equal(reread, codeset);
  ASSERT_NE(reread, nullptr);
  EXPECT_EQ(written(reread.get()), bytes);
}

TEST_F(CodesetIo, ReadsBackUnusualLanguageTags) {
  const OwnedCodeset codeset = read_bytes(
      codeset_xml("<name lang='a&amp;b'>n</name><author lang='&lt;'>a</author>"
                  "<remark><code>7</code><description lang='&quot;'>d</description></remark>"));
  ASSERT_NE(codeset, nullptr) << v_error_get();
  written(codeset.get());
  const OwnedCodeset again = v_codeset_io_read_from_file(path.c_str());
  expect_equal(codeset, again);
  EXPECT_EQ(translations_of(again->name), (Translations{{"a&b", "n"}}));
}

TEST_F(CodesetIo, ACodeWithMarkupMakesAFileThatIsRejected) {
  for (const char *code : {"a&b", "a<b", "&", "<code>", "a]]>b"}) {
    written(codeset_of({{"sv", "n"}}, {}, nullptr, {{code, {{"sv", "x"}}}}).get());
    EXPECT_EQ(v_codeset_io_read_from_file(path.c_str()), nullptr);
    EXPECT_THAT(v_error_get(),
                StartsWith("Error loading codeset file.\n\nCould not parse XML data.\n\n"));
  }
}

TEST_F(CodesetIo, ReplacesAnOlderAndLongerFile) {
  write_file(path, std::string(100'000, 'x'));
  const OwnedCodeset codeset = codeset_of({{"sv", "n"}}, {}, nullptr, {{"1", {{"sv", "x"}}}});
  EXPECT_THAT(written(codeset.get()), EndsWith("</remark>\n\n</codeset>\n"));
}

TEST_F(CodesetIo, SortsTheRemarksOfAFile) {
  std::string remarks;
  for (const char *code : {"10", "2", "1"}) {
    remarks += std::string("<remark><code>") + code +
               "</code><description lang='sv'>x</description></remark>";
  }
  const OwnedCodeset codeset = read_bytes(codeset_xml(a_name + remarks));
  ASSERT_NE(codeset, nullptr) << v_error_get();
  EXPECT_EQ(codes_of(codeset->remarks), (Codes{"1", "2", "10"}));
  const std::string bytes = written(codeset.get());
  EXPECT_LT(bytes.find("<code>1</code>"), bytes.find("<code>2</code>"));
  EXPECT_LT(bytes.find("<code>2</code>"), bytes.find("<code>10</code>"));
}

TEST_F(CodesetIo, AcceptsMoreThanItWrites) {
  const OwnedCodeset codeset = read_bytes(
      "<?xml version='1.0' encoding='UTF-8'?>\n"
      "<!-- before --><codeset kind='x'>text\n"
      "<remark><description lang=' sv '>  b\n c </description><code>\n 7\t8 </code></remark>"
      "<unknown><name lang='xx'>no</name></unknown>"
      "<version>\n 1.0 \t beta </version>"
      "<author lang=''> Anna\tB </author>"
      "<remark id='1'><code>07</code><description lang=''>\xC3\xA5</description><x/></remark>"
      "<!-- name --><name lang='sv'>\n&#xE5;&amp; <![CDATA[<a>]]></name>"
      "<author lang='de'>C</author><name lang='de'>N</name>"
      "</codeset>\n");
  ASSERT_NE(codeset, nullptr) << v_error_get();
  EXPECT_EQ(translations_of(codeset->name), (Translations{{"sv", "\xE5& <a>"}, {"de", "N"}}));
  EXPECT_EQ(translations_of(codeset->author), (Translations{{"", "Anna B"}, {"de", "C"}}));
  EXPECT_STREQ(codeset->version.get(), "1.0 beta");
  EXPECT_EQ(remarks_of(codeset->remarks),
            (Remarks{{"07", {{"", "\xE5"}}}, {"7 8", {{"sv", "b c"}}}}));
  EXPECT_FALSE(codeset->outdated);
}

// The parser library once wrote into memory that had been freed with the remark.
TEST_F(CodesetIo, IgnoresTextBesideRemarks) {
  for (const char *before : {"", "a", "<![CDATA[a]]>", "<!--a-->", "<?a?>", "&#97;"}) {
    for (const char *after : {"", "b", "<![CDATA[b]]>", "<!--b-->", "<?b?>", "&#98;"}) {
      std::string content = a_name;
      for (const char *code : {"1", "2", "3"}) {
        content += std::string(before) + "<remark><code>" + code +
                   "</code><description lang='sv'>x</description></remark>" + after;
      }
      const OwnedCodeset codeset = read_bytes(codeset_xml(content));
      ASSERT_NE(codeset, nullptr) << v_error_get();
      EXPECT_EQ(codes_of(codeset->remarks), (Codes{"1", "2", "3"}));
    }
  }
}

TEST_F(CodesetIo, ReadsEveryEncodingThatAFileDeclares) {
  const std::string utf8 = codeset_xml("<name lang='sv'>\xC3\xA5</name>" + std::string(a_remark));
  const std::string latin1 = codeset_xml("<name lang='sv'>\xE5</name>" + std::string(a_remark));
  std::string utf16 = "\xFF\xFE";
  for (const char character : latin1) {
    utf16 += character;
    utf16 += '\0';
  }
  for (const std::string &bytes :
       {utf8, "\xEF\xBB\xBF" + utf8, "<?xml version='1.0' encoding='ISO-8859-1'?>" + latin1,
        "<?xml version='1.0' encoding='windows-1252'?>" + latin1, utf16}) {
    const OwnedCodeset codeset = read_bytes(bytes);
    ASSERT_NE(codeset, nullptr) << v_error_get();
    EXPECT_EQ(translations_of(codeset->name), (Translations{{"sv", "\xE5"}}));
  }
}

TEST_F(CodesetIo, ReadsAFileInAWorkspaceFolder) {
  make_folder(folder / "codesets");
  write_file(folder / "codesets/a.codeset", codeset_xml(std::string(a_name) + a_remark));
  EXPECT_NE(v_codeset_io_read_from_file_in_workspace((folder / "codesets").c_str(), "a.codeset"),
            nullptr);
  EXPECT_EQ(v_codeset_io_read_from_file_in_workspace((folder / "codesets").c_str(), "b.codeset"),
            nullptr);
  EXPECT_STREQ(v_error_get(), "Error loading codeset file.\n\nCannot open file.\n\n"
                              "Error 2: No such file or directory");
}

struct Rejection {
  std::string content;
  const char *message; // after "Error parsing codeset file.\n\n"
};

TEST_F(CodesetIo, SaysWhyAFileIsRejected) {
  constexpr const char *outside_latin1 =
      "Invalid XML node content.\n\n"
      "Character incompatible with ISO-8859-1 found where not allowed.";
  constexpr const char *missing_content = "Missing remark content in XML data.";
  const std::string name = a_name;
  const std::string remark = a_remark;
  const auto with_version = [&](const char *version) { return name + version + remark; };
  const Rejection rejections[] = {
      {remark, "Missing XML node: name"},
      {"", "Missing XML node: name"},
      {"<author lang='sv'>a</author>" + remark, "Missing XML node: name"},
      {"<name>a</name>" + remark, "Missing XML attribute: lang"},
      {"<name lang='sv'> </name>" + remark, "Empty text content in XML where not allowed."},
      {name + "<name lang='de'/>" + remark, "Empty text content in XML where not allowed."},
      {"<name lang='sv'>&#x20AC;</name>" + remark, outside_latin1},
      {"<name lang='s&#xE5;'>a</name>" + remark,
       "Invalid XML attribute content.\n\nNon-ascii byte found where not allowed."},
      {name + "<author lang='sv'/>" + remark, "Empty text content in XML where not allowed."},
      {name + "<author>a</author>" + remark, "Missing XML attribute: lang"},
      {with_version("<version>  \n</version>"),
       "Missing text content in XML.\n\nText content is empty."},
      {with_version("<version/>"), "Missing text content in XML.\n\nText content is empty."},
      {with_version("<version>1</version><version>1</version>"),
       "Duplicate XML nodes found where not allowed."},
      {with_version("<version/><version/>"), "Duplicate XML nodes found where not allowed."},
      {with_version("<version>&#x20AC;</version>"), outside_latin1},
      {name, "Missing remarks."},
      {name + "<x>" + remark + "</x>", "Missing remarks."},
      {name + "<remark/>", missing_content},
      {name + remark + "<remark/>", missing_content},
      {name + "<remark><code>1</code><description lang='sv'>&#x20AC;</description></remark>",
       missing_content},
      {name + "<remark><code>1</code><description lang='sv'>a</description>"
              "<description lang='de'>&#x20AC;</description></remark>",
       outside_latin1},
      {name + "<remark><code>1</code><description lang='sv'>a</description><code>2</code></remark>",
       "Remark in XML has multiple codes."},
      {name + remark + remark, "Duplicate remark codes."},
      {name + remark + "<remark><code> 7\n</code><description lang='de'>b</description></remark>",
       "Duplicate remark codes."},
      // The first faulty remark is reported.
      {name + remark + remark + "<remark/>", "Duplicate remark codes."},
      {name + remark + "<remark/>" + remark, missing_content},
      {name + "<remark/>" + remark + remark, missing_content},
      {"<remark/><version/>", "Missing XML node: name"},
      // Faults in the name take precedence over those in the author, then the version, then the
      // remarks, whatever their order in the file.
      {"<name/>" + remark, "Missing XML attribute: lang"},
      {"<name> </name><name lang='sv'/>" + remark, "Missing XML attribute: lang"},
      {"<name lang='sv'/><name/>" + remark, "Empty text content in XML where not allowed."},
      {remark + "<author/>" + "<name lang='sv'/>", "Empty text content in XML where not allowed."},
      {"<version/><author/>" + name + remark, "Missing XML attribute: lang"},
      {name + "<remark/><version/><author lang='sv'/>",
       "Empty text content in XML where not allowed."},
      {name + "<version>&#x20AC;</version><version>1</version>" + remark,
       "Duplicate XML nodes found where not allowed."},
      {name + "<version/>" + remark + "<version>1</version><remark/>",
       "Duplicate XML nodes found where not allowed."},
      {name + "<version/>" + remark + remark,
       "Missing text content in XML.\n\nText content is empty."},
      // The first of several faulty remarks is reported, whatever its fault.
      {name + "<remark><code>1</code><description lang='sv'>a</description><code/></remark>"
              "<remark/>",
       "Remark in XML has multiple codes."},
      {name + "<remark/><remark><code>1</code><description lang='sv'>a</description><code/>"
              "</remark>",
       missing_content},
      // A processing instruction counts as an element of its name, but not as a name or author.
      {name + "<?version 1?>" + remark, "Missing text content in XML.\n\nText content is empty."},
      {name + "<version>1</version><?version 1?>" + remark,
       "Duplicate XML nodes found where not allowed."},
      {name + "<?remark?>", missing_content},
      {"<?name?>" + remark, "Missing XML node: name"},
      {name + "<remark/><version/>", "Missing text content in XML.\n\nText content is empty."},
  };
  for (const Rejection &rejection : rejections) {
    EXPECT_EQ(message_of(codeset_xml(rejection.content)),
              std::string("Error parsing codeset file.\n\n") + rejection.message)
        << rejection.content;
  }
}

// The reader reads the remarks before it reaches the malformed end.
TEST_F(CodesetIo, ReportsMalformedXmlBeforeFaultsInRemarks) {
  const std::string head = std::string("<codeset>") + a_name;
  for (const std::string &remarks :
       {std::string(a_remark), std::string("<remark/>"), std::string(a_remark) + a_remark}) {
    for (const char *end :
         {"", "</codesets>", "<b></codeset>", "&x;</codeset>", "</codeset><a/>"}) {
      EXPECT_THAT(message_of(head + remarks + end),
                  StartsWith("Error loading codeset file.\n\nCould not parse XML data.\n\n"))
          << remarks << end;
    }
  }
}

// A file with a document type is parsed as a whole before its remarks are read.
TEST_F(CodesetIo, ReadsTheSameWithADocumentType) {
  const std::string pi = "<?remark x?>";
  const std::string name = a_name;
  const std::string remark = a_remark;
  const std::string other = "<remark><code>3</code><description lang='sv'>b</description></remark>";
  for (const std::string &content :
       {name + remark, remark + name, other + name + remark, name + remark + pi, name + pi + remark,
        name + pi + remark + remark, name + remark + remark + pi, name + remark + pi + remark,
        name + "a" + remark + "b<!-- c -->d" + other + "e<![CDATA[f]]>g",
        remark + name + other + name,
        name + remark + "<version>1</version>" + other + "<version>2</version>",
        name + "<x/>" + remark + "<x/>" + other + "<author lang='sv'>c</author><x/>",
        name + "<remark>" + remark + "</remark>" + other, name + "<x>" + remark + "</x>" + other,
        name + remark + "<remark/>" + "<author/>", name + "<remark/>" + remark + "<name/>"}) {
    const OwnedCodeset plain = read_bytes(codeset_xml(content));
    const std::string message = plain ? "" : v_error_get();
    const OwnedCodeset typed = read_bytes("<!DOCTYPE codeset []>" + codeset_xml(content));
    if (plain) {
      expect_equal(plain, typed);
    } else {
      EXPECT_EQ(typed, nullptr) << content;
      EXPECT_EQ(v_error_get(), message) << content;
    }
  }
}

TEST_F(CodesetIo, AcceptsCodesThatDifferOnlyInZerosOrCase) {
  std::string remarks;
  for (const char *code : {"7", "07", "a", "A"}) {
    remarks += std::string("<remark><code>") + code +
               "</code><description lang='sv'>x</description></remark>";
  }
  const OwnedCodeset codeset = read_bytes(codeset_xml(a_name + remarks));
  ASSERT_NE(codeset, nullptr) << v_error_get();
  EXPECT_EQ(codes_of(codeset->remarks), (Codes{"07", "7", "A", "a"}));
}

TEST_F(CodesetIo, RejectsAnotherRootElement) {
  for (const char *root : {"codesets", "Codeset", "settings", "code"}) {
    const std::string xml = std::string("<") + root + ">" + a_name + a_remark + "</" + root + ">";
    EXPECT_EQ(message_of(xml), "Not a codeset file.");
  }
}

TEST_F(CodesetIo, RejectsMalformedXml) {
  const std::string whole = codeset_xml(std::string(a_name) + a_remark);
  for (const std::string &bytes :
       {std::string(), std::string("\n"), std::string("text"), std::string("\0\0\0\0", 4),
        whole.substr(0, whole.size() - 1), whole + whole,
        codeset_xml("<name lang='sv'>\xE5</name>"), codeset_xml("<name lang='sv'>&#1;</name>"),
        codeset_xml("<name lang='sv'>&undeclared;</name>"),
        "<?xml version='1.0' encoding='no-such-encoding'?>" + whole}) {
    EXPECT_THAT(message_of(bytes),
                StartsWith("Error loading codeset file.\n\nCould not parse XML data.\n\n"));
    EXPECT_TRUE(g_utf8_validate(v_error_get(), -1, nullptr));
  }
}

TEST_F(CodesetIo, RejectsFoldersAndMissingFiles) {
  EXPECT_EQ(v_codeset_io_read_from_file(folder.path()), nullptr);
  EXPECT_THAT(v_error_get(), StartsWith("Error loading codeset file.\n\n"));
  EXPECT_EQ(v_codeset_io_read_from_file((folder / "missing").c_str()), nullptr);
  EXPECT_STREQ(v_error_get(), "Error loading codeset file.\n\nCannot open file.\n\n"
                              "Error 2: No such file or directory");
  write_file(path, "");
  EXPECT_EQ(v_codeset_io_read_from_file((path + "/under").c_str()), nullptr);
  EXPECT_STREQ(v_error_get(), "Error loading codeset file.\n\nCannot open file.\n\n"
                              "Error 20: Not a directory");
}

// Seconds of the processor, because other programs may have it meanwhile.
double seconds_of(const std::function<void()> &work) {
  const std::clock_t start = std::clock();
  work();
  return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

// Limit in seconds: ample for n log n, even in an instrumented build, and far too short for
// anything slower.
constexpr double patience = 10;

constexpr int many = 100'000;

TEST_F(CodesetIo, ReadsAHundredThousandRemarksInDescendingOrder) {
  std::string remarks;
  for (int i = many; i > 0; i--) {
    remarks += "<remark><code>" + std::to_string(i) +
               "</code><description lang='sv'>x</description></remark>\n";
  }
  write_file(path, codeset_xml(a_name + remarks));
  OwnedCodeset codeset;
  EXPECT_LT(seconds_of([&] { codeset = v_codeset_io_read_from_file(path.c_str()); }), patience);
  ASSERT_NE(codeset, nullptr) << v_error_get();
  const Codes codes = codes_of(codeset->remarks);
  ASSERT_EQ(codes.size(), static_cast<std::size_t>(many));
  for (int i = 0; i < many; i++) {
    ASSERT_EQ(codes[static_cast<std::size_t>(i)], std::to_string(i + 1));
  }
  EXPECT_LT(seconds_of([&] { written(codeset.get()); }), patience);
}

TEST_F(CodesetIo, FindsDuplicateCodesFarApart) {
  std::string remarks;
  for (int i = 0; i <= many; i++) {
    remarks += "<remark><code>" + std::to_string(i % many) +
               "</code><description lang='sv'>x</description></remark>\n";
  }
  write_file(path, codeset_xml(a_name + remarks));
  EXPECT_LT(seconds_of([&] { EXPECT_EQ(v_codeset_io_read_from_file(path.c_str()), nullptr); }),
            patience);
  EXPECT_STREQ(v_error_get(), "Error parsing codeset file.\n\nDuplicate remark codes.");
}

TEST_F(CodesetIo, ReadsAnyNumberOfLanguages) {
  std::string names;
  std::string descriptions;
  for (int i = 0; i < many; i++) {
    const std::string attribute = " lang='t" + std::to_string(i) + "'>";
    names += "<name" + attribute + "x</name>";
    descriptions += "<description" + attribute + "x</description>";
  }
  for (int i = 0; i < many; i++) {
    names += "<name lang=''>x</name>";
  }
  write_file(path, codeset_xml(names + "<remark><code>7</code>" + descriptions + "</remark>"));
  OwnedCodeset codeset;
  EXPECT_LT(seconds_of([&] { codeset = v_codeset_io_read_from_file(path.c_str()); }), patience);
  ASSERT_NE(codeset, nullptr) << v_error_get();
  EXPECT_EQ(translations_of(codeset->name).size(), static_cast<std::size_t>(many));
  EXPECT_EQ(translations_of(codeset->remarks->head.next->description),
            translations_of(codeset->name));
}

std::string nested_entities(int depth) {
  std::string declarations = "<!ENTITY e0 'aaaaaaaaaa'>";
  for (int i = 1; i <= depth; i++) {
    const std::string inner = "&e" + std::to_string(i - 1) + ";";
    declarations += "<!ENTITY e" + std::to_string(i) + " '";
    for (int copy = 0; copy < 10; copy++) {
      declarations += inner;
    }
    declarations += "'>";
  }
  return "<!DOCTYPE codeset [" + declarations + "]>";
}

TEST_F(CodesetIo, RejectsEntityBombsQuickly) {
  const std::string head = nested_entities(12);
  const std::string remark = a_remark;
  const std::string large = "<!DOCTYPE codeset [<!ENTITY e '" + std::string(100'000, 'x') + "'>]>";
  std::string references;
  for (int i = 0; i < 10'000; i++) {
    references += "&e;";
  }
  for (const std::string &bytes :
       {head + codeset_xml("<name lang='sv'>&e12;</name>" + remark),
        head + codeset_xml("<name lang='&e12;'>x</name>" + remark),
        head + codeset_xml(a_name + ("<remark><code>&e12;</code></remark>" + remark)),
        large + codeset_xml("<name lang='sv'>" + references + "</name>" + remark),
        "<!DOCTYPE codeset [<!ENTITY a '&b;'><!ENTITY b '&a;'>]>" +
            codeset_xml("<name lang='sv'>&a;</name>" + remark)}) {
    write_file(path, bytes);
    EXPECT_LT(seconds_of([&] { EXPECT_EQ(v_codeset_io_read_from_file(path.c_str()), nullptr); }),
              patience);
    EXPECT_THAT(v_error_get(), StartsWith("Error "));
  }
}

TEST_F(CodesetIo, ResolvesEntities) {
  const OwnedCodeset codeset = read_bytes(
      "<!DOCTYPE codeset [<!ENTITY inner ' b '><!ENTITY e '&inner;c'><!ENTITY tag 'sv-fi'>]>" +
      codeset_xml("<name lang='&tag;'>a&e;</name><version>&e;</version><remark><code>&e;&e;</code>"
                  "<description lang=''>&e;<![CDATA[<d>]]></description></remark>"));
  ASSERT_NE(codeset, nullptr) << v_error_get();
  EXPECT_EQ(translations_of(codeset->name), (Translations{{"sv-fi", "a b c"}}));
  EXPECT_STREQ(codeset->version.get(), "b c");
  EXPECT_EQ(remarks_of(codeset->remarks), (Remarks{{"b c b c", {{"", "b c<d>"}}}}));
}

TEST_F(CodesetIo, RejectsEntitiesInPlaceOfElements) {
  const std::string head =
      "<!DOCTYPE codeset ["
      "<!ENTITY remark \"<remark><code>7</code><description lang='sv'>c</description></remark>\">"
      "<!ENTITY code '7'><!ENTITY description 'x'><!ENTITY name 'n'><!ENTITY version 'v'>]>";
  for (const std::string &content :
       {a_name + std::string("&remark;"), a_name + std::string("&remark;&remark;"),
        a_name + std::string("<remark>&code;&description;</remark>"),
        a_name + std::string("&version;&name;&code;"), std::string("&name;") + a_remark}) {
    EXPECT_THAT(message_of(head + codeset_xml(content)), StartsWith("Error parsing codeset file."));
  }
}

TEST_F(CodesetIo, SurvivesOtherNodesNamedLikeElements) {
  EXPECT_EQ(message_of(codeset_xml(std::string(a_name) + "<?remark x?>" + a_remark)),
            "Error parsing codeset file.\n\nMissing remark content in XML data.");
  EXPECT_NE(
      read_bytes(codeset_xml(std::string(a_name) + "<?name x?><![CDATA[<remark/>]]>" + a_remark)),
      nullptr)
      << v_error_get();
  // With an external document type the parser accepts an unknown entity; the codeset is rejected.
  EXPECT_EQ(read_bytes("<!DOCTYPE codeset SYSTEM 'x'>" +
                       codeset_xml(std::string(a_name) + "&remark;" + a_remark)),
            nullptr);
  EXPECT_EQ(read_bytes("<!DOCTYPE codeset SYSTEM 'x'>" +
                       codeset_xml("<name lang='sv'>&x;</name>" + std::string(a_remark))),
            nullptr);
}

TEST_F(CodesetIo, OpensNoFileThatADocumentNames) {
  const std::string secret = folder / "secret";
  write_file(secret, "SECRET");
  const OwnedCodeset codeset =
      read_bytes("<!DOCTYPE codeset SYSTEM '" + secret + "' [<!ENTITY e SYSTEM '" + secret +
                 "'>]>" + codeset_xml("<name lang='sv'>x&e;</name>" + std::string(a_remark)));
  EXPECT_THAT(codeset ? written(codeset.get()) : v_error_get(), Not(HasSubstr("SECRET")));
}

TEST_F(CodesetIo, SurvivesDeepNesting) {
  std::string deep;
  for (int i = 0; i < many; i++) {
    deep += "<x>";
  }
  EXPECT_THAT(message_of(codeset_xml(deep)), StartsWith("Error loading codeset file.\n\n"));
}

// Three languages, and more than one write buffer.
OwnedCodeset sizeable_codeset() {
  Remarks remarks;
  for (int i = 0; i < 1500; i++) {
    remarks.push_back({std::to_string(i), {{"en-uk", "Loss"}, {"sv", "Bortfall"}, {"de", "Fehl"}}});
  }
  return codeset_of({{"sv", "Namn"}}, {{"sv", "Anna"}}, "1.0", remarks);
}

TEST_F(CodesetIo, AFullDiskLeavesNoFile) {
  const OwnedCodeset codeset = sizeable_codeset();
  const unsigned long size = written(codeset.get()).size();
  ASSERT_GT(size, 200'000U);
  for (const unsigned long limit :
       {0UL, 1UL, 100UL, 4095UL, 4096UL, 4097UL, 65'535UL, 100'000UL, 200'000UL, size - 1}) {
    write_file(path, "old");
    EXPECT_EQ(with_file_size_limit(limit, [&] { return write_result(codeset.get(), path); }),
              "File I/O error when writing to file.")
        << limit;
    EXPECT_EQ(list_folder(folder.path()), std::vector<std::string>()) << limit;
  }
  EXPECT_EQ(with_file_size_limit(size, [&] { return write_result(codeset.get(), path); }),
            "written");
  EXPECT_EQ(read_file(path).size(), size);
}

TEST_F(CodesetIo, ReportsAFileThatCannotBeCreated) {
  const OwnedCodeset codeset = sizeable_codeset();
  EXPECT_FALSE(v_codeset_io_write_to_file(codeset.get(), (folder / "none/a.codeset").c_str()));
  EXPECT_STREQ(v_error_get(), "Cannot create file.\n\nCannot open file.\n\n"
                              "Error 2: No such file or directory");
  EXPECT_EQ(list_folder(folder.path()), std::vector<std::string>());
  const std::string long_name = folder / std::string(300, 'a');
  EXPECT_FALSE(v_codeset_io_write_to_file(codeset.get(), long_name.c_str()));
  EXPECT_THAT(v_error_get(), StartsWith("Cannot access file.\n\nCannot unlink file.\n\nError 36:"));
}

TEST_F(CodesetIo, KeepsAFileOrFolderThatCannotBeReplaced) {
  const OwnedCodeset codeset = sizeable_codeset();
  make_folder(path);
  write_file(path + "/inside", "kept");
  EXPECT_FALSE(v_codeset_io_write_to_file(codeset.get(), path.c_str()));
  EXPECT_THAT(v_error_get(), StartsWith("Cannot access file.\n\nCannot unlink file.\n\nError "));
  EXPECT_EQ(read_file(path + "/inside"), "kept");

  const std::string file = folder / "file";
  write_file(file, "kept");
  EXPECT_FALSE(v_codeset_io_write_to_file(codeset.get(), (file + "/a.codeset").c_str()));
  EXPECT_STREQ(v_error_get(), "Cannot access file.\n\nCannot unlink file.\n\n"
                              "Error 20: Not a directory");
  EXPECT_EQ(read_file(file), "kept");
}

TEST_F(CodesetIo, KeepsTheOldFileInAReadOnlyFolder) {
  const OwnedCodeset codeset = sizeable_codeset();
  write_file(path, "old");
  set_permissions(folder.path(), 0555);
  const auto save_as = [&](const std::string &target) {
    return as_ordinary_user([&] { return write_result(codeset.get(), target); });
  };
  EXPECT_EQ(save_as(path), "Cannot access file.\n\nCannot unlink file.\n\n"
                           "Error 13: Permission denied");
  EXPECT_EQ(save_as(folder / "new.codeset"), "Cannot create file.\n\nCannot open file.\n\n"
                                             "Error 13: Permission denied");
  set_permissions(folder.path(), 0700);
  EXPECT_EQ(read_file(path), "old");
  EXPECT_EQ(list_folder(folder.path()), std::vector<std::string>{"a.codeset"});
}

TEST_F(CodesetIo, ReplacesALinkAndKeepsItsTarget) {
  const std::string target = folder / "target";
  write_file(target, "kept");
  ASSERT_EQ(symlink(target.c_str(), path.c_str()), 0);
  written(sizeable_codeset().get());
  EXPECT_EQ(read_file(target), "kept");
}

TEST_F(CodesetIo, ARewrittenFileKeepsItsPermissions) {
  for (const unsigned mode : {0600U, 0640U, 0644U, 0660U, 0666U, 0400U, 0755U}) {
    std::filesystem::remove(path);
    write_file(path, "old");
    set_permissions(path, mode);
    written(sizeable_codeset().get());
    EXPECT_EQ(permissions_of(path), mode);
  }
}

TEST_F(CodesetIo, ANewFileHasTheUsualPermissions) {
  const mode_t mask = umask(0);
  for (const unsigned taken : {022U, 077U, 002U}) {
    umask(taken);
    std::filesystem::remove(path);
    written(sizeable_codeset().get());
    EXPECT_EQ(permissions_of(path), 0666U & ~taken);
  }
  umask(mask);
}

TEST_F(CodesetIo, ARewrittenFileLosesItsSetUserAndSetGroupBits) {
  write_file(path, "old");
  set_permissions(path, 06755);
  written(sizeable_codeset().get());
  EXPECT_EQ(permissions_of(path), 0755U);
}

TEST_F(CodesetIo, AFileInPlaceOfALinkHasThePermissionsOfTheTarget) {
  const std::string target = folder / "target";
  write_file(target, "kept");
  set_permissions(target, 0600);
  ASSERT_EQ(symlink(target.c_str(), path.c_str()), 0);
  written(sizeable_codeset().get());
  EXPECT_FALSE(std::filesystem::is_symlink(path));
  EXPECT_EQ(permissions_of(path), 0600U);
}

// Only the superuser can give a file to this group. Otherwise it keeps its group and permissions.
TEST_F(CodesetIo, AnotherGroupGetsOnlyThePermissionsOfOthers) {
  constexpr gid_t another_group = 54'321;
  for (const auto &[before, after] : {std::pair(0640U, 0600U), std::pair(0664U, 0644U),
                                      std::pair(0666U, 0666U), std::pair(0604U, 0604U)}) {
    write_file(path, "old");
    const bool is_given = chown(path.c_str(), static_cast<uid_t>(-1), another_group) == 0;
    set_permissions(path, before);
    written(sizeable_codeset().get());
    EXPECT_EQ(permissions_of(path), is_given ? after : before);
  }
}

TEST_F(CodesetIo, ReadableFilesKeepEveryCode) {
  const OwnedCodeset codeset = codeset_of(
      {{"sv", "N & <n>"}}, {{"", "A"}}, "1 & 2",
      {{"&amp;", {{"sv", "1"}}}, {"<b>]]>", {{"sv", "2"}}}, {"A&B \"'", {{"sv", "3"}, {"", "4"}}}});
  const auto write = [&](const char *substitute) {
    OwnedFile file(std::fopen(path.c_str(), "wb"));
    EXPECT_TRUE(v_codeset_io_write_readably(file.get(), codeset.get(), substitute));
    // Flushed, although the file is still open.
    return v_codeset_io_read_from_file(path.c_str());
  };
  const OwnedCodeset read = write("another");
  v_remark_list_sort(codeset->remarks.get());
  expect_equal(read, codeset);
  codeset->name.reset();
  const OwnedCodeset without_name = write("n\xE4me <&>");
  ASSERT_TRUE(without_name) << v_error_get();
  EXPECT_EQ(translations_of(without_name->name), (Translations{{"", "n\xE4me <&>"}}));
  EXPECT_EQ(codeset->name, nullptr);
}

TEST_F(CodesetIo, WritingReadablyToAFullDiskFails) {
  const OwnedCodeset codeset =
      codeset_of({{"sv", "N"}}, {}, nullptr, {{"1", {{"sv", std::string(10'000, 'x')}}}});
  OwnedFile file(std::fopen("/dev/full", "wb"));
  EXPECT_FALSE(v_codeset_io_write_readably(file.get(), codeset.get(), "name"));
  EXPECT_STREQ(v_error_get(), "File I/O error when writing to file.");
}

TEST_F(CodesetIo, LeavesNoDescriptorOpen) {
  const int before = count_open_descriptors();
  const OwnedCodeset codeset = sizeable_codeset();
  written(codeset.get());
  v_codeset_io_read_from_file(path.c_str());
  message_of("<codesets/>");
  message_of("<codeset/>");
  message_of("no XML");
  EXPECT_FALSE(v_codeset_io_write_to_file(codeset.get(), (folder / "none/a").c_str()));
  EXPECT_EQ(count_open_descriptors(), before);
}

} // namespace
