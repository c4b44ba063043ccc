// Files made to bring the program down, and files in every encoding that it does not expect. Each
// of the three readers soon returns a codeset or a message.

#include <cstring>
#include <ctime>
#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/error.h"
#include "codeset/codeset_io.h"
#include "support/files.h"
#include "support/values/remarks.h"
#include "workspace/settings.h"
#include "workspace/workspace_location.h"

namespace {

using testing::StartsWith;

// Seconds of the processor. Generous, because the tests also run under sanitizers.
constexpr double soon = 10;
constexpr double soon_for_200_megabytes = 60;

constexpr std::size_t megabyte = 1'000'000;

std::string repeated(const std::string &text, std::size_t times) {
  std::string all;
  all.reserve(text.size() * times);
  for (std::size_t i = 0; i < times; i++) {
    all += text;
  }
  return all;
}

template <typename Work>
double seconds_of(Work work) {
  const std::clock_t start = std::clock();
  work();
  return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

class HostileFiles : public testing::Test {
protected:
  HostileFiles() {
    v_error_set("of an earlier failure");
    // GLib asks for the folder once, so it is the same for all tests.
    static const TemporaryFolder configuration;
    setenv("XDG_CONFIG_HOME", configuration.path(), 1);
    pointer_file = configuration / "vantorelle/vantorelle.xml";
    if (!path_exists(configuration / "vantorelle")) {
      make_folder(configuration / "vantorelle");
    }
  }

  // "" for a codeset, else the message.
  std::string read_codeset() {
    codeset = nullptr;
    EXPECT_LT(seconds_of([&] { codeset = v_codeset_io_read_from_file(path.c_str()); }), soon);
    return codeset ? "" : v_error_get();
  }
  std::string read_codeset(const std::string &bytes) {
    write_file(path, bytes);
    return read_codeset();
  }

  bool read_settings(const std::string &bytes) {
    write_file(folder / "settings.xml", bytes);
    settings = v_settings_new(folder.path());
    bool is_loaded = false;
    EXPECT_LT(seconds_of([&] { is_loaded = v_settings_load(settings.get(), -1); }), soon);
    return is_loaded;
  }

  bool read_pointer_file(const std::string &bytes) {
    write_file(pointer_file, bytes);
    bool is_read = false;
    EXPECT_LT(seconds_of([&] { is_read = v_workspace_get_saved_folder_path(workspace); }), soon);
    return is_read;
  }

  TemporaryFolder folder;
  std::string path = folder / "a.codeset";
  std::string pointer_file;
  OwnedCodeset codeset;
  OwnedSettings settings;
  OwnedText workspace;
};

constexpr const char *could_not_load =
    "Error loading codeset file.\n\nCould not parse XML data.\n\n";

std::string codeset_with(const std::string &content) {
  return "<codeset><name lang='sv'>Namn</name>" + content +
         "<remark><code>7</code><description lang='sv'>a</description></remark></codeset>";
}

// ------------------------------------------------------------------------------ entities

std::string nested_entities(int levels, std::size_t times) {
  std::string declarations = "<!ENTITY e0 'xxxxxxxxxx'>";
  for (int level = 1; level <= levels; level++) {
    declarations += "<!ENTITY e" + std::to_string(level) + " '" +
                    repeated("&e" + std::to_string(level - 1) + ";", times) + "'>";
  }
  return declarations + "<!ENTITY bomb '" + "&e" + std::to_string(levels) + ";'>";
}

std::vector<std::string> document_types_with_a_bomb() {
  return {
      // Flat: one large text, many times.
      "<!DOCTYPE a [<!ENTITY e '" + std::string(100'000, 'x') + "'><!ENTITY bomb '" +
          repeated("&e;", 2'000) + "'>]>",
      "<!DOCTYPE a [" + nested_entities(9, 10) + "]>",
      "<!DOCTYPE a [" + nested_entities(30, 2) + "]>",
      "<!DOCTYPE a [" + nested_entities(3, 500) + "]>",
  };
}

TEST_F(HostileFiles, EntityBombsMakeNoCodeset) {
  const std::string remark = "<remark><code>7</code><description lang=''>a</description></remark>";
  for (const std::string &type : document_types_with_a_bomb()) {
    for (const std::string &content : std::vector<std::string>{
             "<name lang=''>&bomb;</name>" + remark, "<name lang='&bomb;'>a</name>" + remark,
             "<name lang=''>a</name><version>&bomb;</version>" + remark,
             "<name lang=''>a</name><remark><code>&bomb;</code><description lang=''>a</description>"
             "</remark>" +
                 remark,
             "<name lang=''>a</name><remark><code>7</code><description "
             "lang='&bomb;'>a</description>"
             "</remark>"}) {
      EXPECT_THAT(read_codeset(type + "<codeset>" + content + "</codeset>"), StartsWith("Error "))
          << type.substr(0, 200) << content;
    }
  }
}

TEST_F(HostileFiles, EntityBombsInOtherFilesEndSoon) {
  for (const std::string &type : document_types_with_a_bomb()) {
    EXPECT_FALSE(read_pointer_file(type + "<v><workspace path='&bomb;'/></v>"));
    EXPECT_EQ(workspace, nullptr);
    read_settings(type + "<settings><archive path='&bomb;'/>&bomb;<preferred-languages><language "
                         "tag='&bomb;'/></preferred-languages></settings>");
    EXPECT_STREQ(settings->archive_path.get(), "");
  }
}

// ------------------------------------------------------------------------------ size

TEST_F(HostileFiles, NestingIsRefusedHoweverDeep) {
  const std::size_t depth = 100'000;
  const std::string closed = repeated("<x>", depth) + repeated("</x>", depth);
  EXPECT_THAT(read_codeset(codeset_with(closed)), StartsWith(could_not_load));
  EXPECT_THAT(read_codeset(repeated("<codeset>", depth)), StartsWith(could_not_load));
  EXPECT_THAT(read_codeset("<codeset>" + repeated("<name lang='sv'>", depth)),
              StartsWith(could_not_load));
  EXPECT_FALSE(read_settings("<settings>" + closed + "</settings>"));
  EXPECT_FALSE(read_pointer_file("<v>" + closed + "<workspace path='/a'/></v>"));
}

TEST_F(HostileFiles, TwoHundredMegabytesOfOtherElementsAreSkipped) {
  std::ofstream file(path, std::ios::binary);
  const std::string other = "<other>" + std::string(5 * megabyte, 'x') + "</other>";
  file << "<codeset><name lang='sv'>Namn</name>";
  for (int i = 0; i < 40; i++) {
    file << other;
  }
  file << "<remark><code>7</code><description lang='sv'>a</description></remark></codeset>";
  file.close();
  ASSERT_TRUE(file);
  EXPECT_LT(seconds_of([&] { codeset = v_codeset_io_read_from_file(path.c_str()); }),
            soon_for_200_megabytes);
  ASSERT_NE(codeset, nullptr) << v_error_get();
  EXPECT_EQ(codes_of(codeset->remarks), Codes{"7"});
}

TEST_F(HostileFiles, ATextOfFiftyMegabytesIsRefused) {
  const std::string text(50 * megabyte, 'x');
  for (const std::string &bytes :
       {"<codeset><name lang='sv'>" + text + "</name></codeset>",
        codeset_with("<version>" + text + "</version>"), codeset_with("<other a='" + text + "'/>"),
        codeset_with("<!--" + text + "-->"), codeset_with("<![CDATA[" + text + "]]>")}) {
    EXPECT_THAT(read_codeset(bytes), StartsWith(could_not_load)) << bytes.substr(0, 100);
  }
  EXPECT_FALSE(read_settings("<settings><archive path='" + text + "'/></settings>"));
  EXPECT_FALSE(read_pointer_file("<v><workspace path='" + text + "'/></v>"));
}

TEST_F(HostileFiles, EndlessNamesAreRefused) {
  const std::string name(50 * megabyte, 'x');
  EXPECT_THAT(read_codeset("<" + name + "/>"), StartsWith(could_not_load));
  EXPECT_THAT(read_codeset("<codeset " + name + "=''/>"), StartsWith(could_not_load));
  EXPECT_THAT(read_codeset("<!DOCTYPE " + name + "><codeset/>"), StartsWith(could_not_load));
}

// ------------------------------------------------------------------------------ encodings

// The document with its declaration, in ASCII.
std::string declared(const std::string &encoding, const std::string &name = "Namn") {
  return "<?xml version='1.0' encoding='" + encoding + "'?><codeset><name lang='sv'>" + name +
         "</name><remark><code>7</code><description lang='sv'>a</description></remark></codeset>";
}

// ISO-8859-1 text in two bytes per character.
std::string as_utf16(const std::string &text, bool big_endian) {
  std::string bytes;
  for (const char byte : text) {
    bytes += big_endian ? '\0' : byte;
    bytes += big_endian ? byte : '\0';
  }
  return bytes;
}

std::string converted(const std::string &latin1_text, const char *encoding) {
  gsize length = 0;
  const OwnedText bytes(g_convert(latin1_text.data(), static_cast<gssize>(latin1_text.size()),
                                  encoding, "ISO-8859-1", nullptr, &length, nullptr));
  return bytes ? std::string(bytes.get(), length) : "";
}

TEST_F(HostileFiles, EveryEncodingThatIsDeclaredRightIsRead) {
  const std::string document = declared("utf-16", "M\xE5l");
  const std::string bare = document.substr(document.find("?>") + 2);
  struct {
    const char *what;
    std::string bytes;
  } const cases[] = {
      {"UTF-16, least byte first", "\xFF\xFE" + as_utf16(document, false)},
      {"UTF-16, greatest byte first", "\xFE\xFF" + as_utf16(document, true)},
      {"UTF-16 without a declaration", "\xFF\xFE" + as_utf16(bare, false)},
      {"UTF-8 with a mark", "\xEF\xBB\xBF" + declared("utf-8", "M\xC3\xA5l")},
      {"UTF-8 with a mark, without a declaration",
       "\xEF\xBB\xBF" + bare.substr(0, bare.find('\xE5')) + "\xC3\xA5" +
           bare.substr(bare.find('\xE5') + 1)},
      {"EBCDIC", converted(declared("IBM037", "M\xE5l"), "IBM037")},
      {"Windows", declared("windows-1252", "M\xE5l")},
  };
  for (const auto &[what, bytes] : cases) {
    EXPECT_EQ(read_codeset(bytes), "") << what;
    ASSERT_NE(codeset, nullptr) << what;
    EXPECT_STREQ(codeset->name->text.get(), "M\xE5l") << what;
  }
}

TEST_F(HostileFiles, RefusesBytesOutsideTheDeclaredEncoding) {
  std::string cut_off = "\xFF\xFE" + as_utf16(declared("utf-16"), false);
  cut_off.pop_back();
  struct {
    const char *what;
    std::string bytes;
  } const cases[] = {
      {"ISO-8859-1 that claims UTF-8", declared("utf-8", "M\xE5l")},
      {"ISO-8859-1 that claims nothing", codeset_with("\xE5")},
      {"ASCII that claims UTF-16", declared("utf-16", "M\xE5l")},
      {"high bytes that claim ASCII", declared("us-ascii", "M\xE5l")},
      {"UTF-16 without mark or declaration", as_utf16(codeset_with(""), false).substr(1)},
      {"UTF-16 cut off inside a character", cut_off},
      {"an encoding that nobody knows", declared("x-nobody-knows")},
      {"an encoding named by a path", declared("../../../etc/passwd")},
      {"a mark of UTF-8 before UTF-16", "\xEF\xBB\xBF" + as_utf16(declared("utf-16"), false)},
  };
  for (const auto &[what, bytes] : cases) {
    EXPECT_THAT(read_codeset(bytes), StartsWith(could_not_load)) << what;
    EXPECT_TRUE(g_utf8_validate(v_error_get(), -1, nullptr)) << what;
  }
}

// Every byte is a character of ISO-8859-1, so the mistake cannot be detected.
TEST_F(HostileFiles, Utf8ThatClaimsLatin1IsTakenAtItsWord) {
  EXPECT_EQ(read_codeset(declared("iso-8859-1", "M\xC3\xA5l")), "");
  ASSERT_NE(codeset, nullptr);
  EXPECT_STREQ(codeset->name->text.get(), "M\xC3\xA5l");
}

TEST_F(HostileFiles, ZeroBytesAreRefused) {
  const std::string zero(1, '\0');
  const std::string bytes = declared("iso-8859-1");
  for (const char *place :
       {"<?xml", "encoding", "<codeset>", "lang", "sv", "Namn", "7", "</code>"}) {
    std::string broken = bytes;
    broken.insert(bytes.find(place), zero);
    EXPECT_THAT(read_codeset(broken), StartsWith(could_not_load)) << place;
  }
  EXPECT_THAT(read_codeset(zero), StartsWith(could_not_load));
  EXPECT_THAT(read_codeset(std::string(5 * megabyte, '\0')), StartsWith(could_not_load));
}

// The parser tolerates some faults, and later versions may tolerate others. Then nothing of the
// codeset may be lost.
TEST_F(HostileFiles, ReadsToleratedFaultsWithoutLoss) {
  const std::string zeros(5 * megabyte, '\0');
  for (const std::string &bytes :
       {declared("iso-8859-1") + zeros, declared("iso-8859-1") + "\xFF\xFE",
        "\xFF\xFE" + as_utf16(declared("utf-16"), false) + "x",
        converted(declared("utf-8"), "IBM037"), converted(declared("IBM1047"), "IBM037")}) {
    if (const std::string message = read_codeset(bytes); !codeset) {
      EXPECT_THAT(message, StartsWith(could_not_load));
      continue;
    }
    EXPECT_STREQ(codeset->name->text.get(), "Namn");
    EXPECT_EQ(codes_of(codeset->remarks), Codes{"7"});
  }
}

} // namespace
