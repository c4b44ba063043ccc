#include "workspace/settings.h"

#include <map>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/error.h"
#include "support/environment.h"
#include "support/files.h"
#include "support/values/remarks.h"
#include "support/xml_roots.h"

namespace {

using testing::StartsWith;

using Fields = std::map<std::string, std::string>;

std::string text_or_none(const OwnedText &text) { return text ? text.get() : "(none)"; }

std::string joined(const std::vector<std::string> &parts) {
  std::string text;
  for (const std::string &part : parts) {
    text += "[" + part + "]";
  }
  return text;
}

template <typename Level>
std::string number(Level level) {
  return std::to_string(static_cast<int>(level));
}

// Every field of the record.
Fields fields_of(const VSettings *s) {
  const VPrintoutSettings &p = s->default_printout;
  return {
      {"archive", text_or_none(s->archive_path)},
      {"place id", number(s->automatically_place_id)},
      {"mark id style", number(s->default_mark_id_style)},
      {"identifier", number(p.identifier)},
      {"layout", text_or_none(p.layout_file_name)},
      {"paper", number(p.paper_id)},
      {"landscape", number(p.landscape)},
      {"details text", number(p.details_on_text_page)},
      {"details view", number(p.details_on_view_pages)},
      {"legend text", number(p.legend_on_text_page)},
      {"legend view", number(p.legend_on_view_pages)},
      {"page numbers", number(p.page_numbers_shown)},
      {"report type", number(p.report_type_shown)},
      {"text codesets", number(p.text_page_codeset_filter)},
      {"text marks", number(p.text_page_mark_filter)},
      {"view codesets", number(p.view_page_codeset_filter)},
      {"view marks", number(p.view_page_mark_filter)},
      {"export", text_or_none(s->export_folder_path)},
      {"last layout", text_or_none(s->last_used_layout_file_name)},
      {"last paper", text_or_none(s->last_used_paper_id)},
      {"left-handed", number(s->left_handed)},
      {"languages", joined(s->preferred_languages)},
      {"remarks", testing::PrintToString(remarks_of(s->recent_custom_remarks))},
      {"remember tool", number(s->remember_tool_choice)},
  };
}

// For a user whose language is Swedish.
const Fields defaults = {
    {"archive", ""},        {"place id", "0"},
    {"mark id style", "0"}, {"identifier", "1"},
    {"layout", "(none)"},   {"paper", "0"},
    {"landscape", "0"},     {"details text", "1"},
    {"details view", "0"},  {"legend text", "0"},
    {"legend view", "1"},   {"page numbers", "1"},
    {"report type", "1"},   {"text codesets", "2"},
    {"text marks", "1"},    {"view codesets", "2"},
    {"view marks", "1"},    {"export", ""},
    {"last layout", ""},    {"last paper", "A4_P"},
    {"left-handed", "0"},   {"languages", "[sv][en-uk][en]"},
    {"remarks", "{}"},      {"remember tool", "0"},
};

Fields defaults_but(const Fields &changes) {
  Fields fields = changes;
  fields.insert(defaults.begin(), defaults.end());
  return fields;
}

class Settings : public testing::Test {
protected:
  Settings() { v_error_set("of an earlier failure"); }

  void write(const std::string &xml) const { write_file(folder / "settings.xml", xml); }

  // Loads a file whose root element has this content. Returns all fields.
  Fields load(const std::string &content, bool expected = true, int which = -1) const {
    write("<settings>" + content + "</settings>");
    const OwnedSettings settings = v_settings_new(folder.path());
    EXPECT_EQ(v_settings_load(settings.get(), which), expected) << content << v_error_get();
    return fields_of(settings.get());
  }

  TemporaryFolder folder;
  UserLocale locale{"sv"};
};

TEST_F(Settings, NewSettingsHaveTheDefaults) {
  const OwnedSettings settings = v_settings_new(folder.path());
  EXPECT_EQ(settings->file_path.get(), folder / "settings.xml");
  EXPECT_EQ(fields_of(settings.get()), defaults);
  EXPECT_STREQ(v_settings_new("/a/b//")->file_path.get(), "/a/b/settings.xml");
  v_settings_destroy(nullptr);
}

TEST_F(Settings, AMissingFileKeepsTheDefaults) {
  const OwnedSettings settings = v_settings_new(folder.path());
  EXPECT_TRUE(v_settings_load(settings.get(), -1));
  EXPECT_EQ(fields_of(settings.get()), defaults);
  EXPECT_EQ(list_folder(folder.path()), std::vector<std::string>());
}

TEST_F(Settings, PreferredLanguagesFollowTheUsersLanguage) {
  const std::pair<const char *, const char *> users[] = {
      {"sv", "[sv][en-uk][en]"},
      {"sv_FI.UTF-8", "[sv][en-uk][en]"},
      {"sv_FI", "[sv-fi][sv][en-uk][en]"},
      {"en_GB", "[en-uk][en]"},
      {"en_GB.UTF-8", "[en-uk][en]"},
      {"en_US", "[en-us][en]"},
      {"de_DE", "[de-de][de][en-uk][en]"},
      {"de", "[de-de][de][en-uk][en]"},
      {"de_AT", "[de-at][de][en-uk][en]"},
      {"fr", "[fr-fr][fr][en-uk][en]"},
      {"es_MX", "[es-mx][es][en-uk][en]"},
      {"es_MX.UTF-8", "[es-es][es][en-uk][en]"},
      {"nb_NO", "[nb][en-uk][en]"},
      {"af", "[af][en-uk][en]"}, // the first of the supported languages
      {"C", "[en-uk][en]"},
      {"xx", "[en-uk][en]"},
  };
  for (const auto &[name, languages] : users) {
    const UserLocale user(name);
    const OwnedSettings settings = v_settings_new(folder.path());
    EXPECT_EQ(joined(settings->preferred_languages), languages) << name;
  }
}

constexpr const char *legend_levels = " text-page-codeset-filter-level='From all codesets'"
                                      " text-page-mark-filter-level='From no view'"
                                      " view-page-codeset-filter-level='From no codeset'"
                                      " view-page-mark-filter-level='From this view only'";

struct Element {
  std::string xml;
  Fields changes;
};

std::string printout(const std::string &content) {
  return "<default-printout-settings>" + content + "</default-printout-settings>";
}

std::string legend(const std::string &filter, const std::string &text) {
  std::string attributes = " show-on-text-page='false' show-on-view-pages='true'";
  for (const char *name : {"text-page-codeset-filter-level", "text-page-mark-filter-level",
                           "view-page-codeset-filter-level", "view-page-mark-filter-level"}) {
    attributes += std::string(" ") + name + "='" + (filter == name ? text : "x") + "'";
  }
  return printout("<legend" + attributes + "/>");
}

TEST_F(Settings, EveryElementIsRead) {
  const std::string all_flags = " show-on-text-page='true' show-on-view-pages='false'";
  const Element elements[] = {
      {"", {}},
      {"<archive path='/a &amp; \xC3\xA5'/>", {{"archive", "/a & \xC3\xA5"}}},
      {"<archive path=''/>", {}},
      {"<automatically-place-id active='true'/>", {{"place id", "1"}}},
      {"<automatically-place-id active='TRUE'/>", {}},
      {"<automatically-place-id active='true '/>", {}},
      {"<automatically-place-id active='1'/>", {}},
      {"<default-mark-id-style style='1'/>", {{"mark id style", "1"}}},
      {"<default-mark-id-style style='2'/>", {{"mark id style", "2"}}},
      {"<default-mark-id-style style='0'/>", {}},
      {"<default-mark-id-style style='3'/>", {}},
      {"<default-mark-id-style style='-1'/>", {}},
      {"<default-mark-id-style style=''/>", {}},
      {"<default-mark-id-style style='x'/>", {}},
      {"<default-mark-id-style style='1 '/>", {}},
      {"<default-mark-id-style style='4294967297'/>", {}},
      {"<default-mark-id-style style='99999999999999999999'/>", {}},
      {"<export><folder path='/e'/></export>", {{"export", "/e"}}},
      {"<export path='/e'/>", {}},
      {"<export>x<folders path='/no'/><folder/><folder path='/e'/></export>", {{"export", "/e"}}},
      {"<last-used-layout filename='a.layout'/>", {{"last layout", "a.layout"}}},
      {"<last-used-paper id='A3_L'/>", {{"last paper", "A3_L"}}},
      {"<last-used-paper id=''/>", {{"last paper", ""}}},
      {"<left-handed active='true'/>", {{"left-handed", "1"}}},
      {"<remember-tool-choice active='true'/>", {{"remember tool", "1"}}},
      {"<preferred-languages/>", {{"languages", ""}}},
      {"<preferred-languages>x<lang tag='no'/></preferred-languages>", {{"languages", ""}}},
      {"<preferred-languages><language tag='fr'/><language tag='de-at'/><language tag='fr'/>"
       "</preferred-languages>",
       {{"languages", "[fr][de-at][fr]"}}},
      {"<preferred-languages><language/><language tag=''/><language tag='xx'/>"
       "</preferred-languages>",
       {{"languages", "[][xx]"}}},
      {"<recent-custom-remarks><remark><code>10</code><description lang='sv'>a</description>"
       "</remark>x<remarks/><remark><code>9</code><description lang='sv'>b</description></remark>"
       "<remark><code>10</code><description lang='sv'>c</description></remark>"
       "</recent-custom-remarks>",
       {{"remarks", testing::PrintToString(Remarks{
                        {"10", {{"sv", "a"}}}, {"9", {{"sv", "b"}}}, {"10", {{"sv", "c"}}}})}}},
      {"<recent-custom-remarks/>", {}},

      {printout(""), {}},
      {printout("<identifier setting='None'/>"), {{"identifier", "0"}}},
      {printout("<identifier setting='Object ID'/>"), {{"identifier", "1"}}},
      {printout("<identifier setting='Inventory ID'/>"), {{"identifier", "2"}}},
      {printout("<identifier setting='Inventory ID or Object ID'/>"), {{"identifier", "3"}}},
      {printout("<identifier setting='None'/><identifier setting='none'/>"), {{"identifier", "0"}}},
      {printout("<identifier setting='None'/><identifier setting='Object ID'/>"), {}},
      {printout("<layout filename='l.layout'/>"), {{"layout", "l.layout"}}},
      {printout("<layout filename=''/>"), {{"layout", ""}}},
      {printout("<paper name='A4' orientation='Landscape'/>"), {{"landscape", "1"}}},
      {printout("<paper name='A4' orientation='landscape'/>"), {}},
      {printout("<paper name='' orientation='Landscape'/>"), {{"landscape", "1"}}},
      {printout("<paper name='A4' orientation='Landscape'/><paper name='A4' orientation=''/>"), {}},
      {printout("<details show-on-text-page='false' show-on-view-pages='true'/>"),
       {{"details text", "0"}, {"details view", "1"}}},
      {printout("<legend" + all_flags + legend_levels + "/>"),
       {{"legend text", "1"},
        {"legend view", "0"},
        {"text codesets", "1"},
        {"text marks", "3"},
        {"view codesets", "3"},
        {"view marks", "2"}}},
      {printout("<page-numbers show='false'/>"), {{"page numbers", "0"}}},
      {printout("<page-numbers show='x'/>"), {{"page numbers", "0"}}},
      {printout("<report-type show='false'/>"), {{"report type", "0"}}},
      {printout("<report-type show='false'/><report-type show='true'/>"), {}},
  };
  for (const Element &element : elements) {
    EXPECT_EQ(load(element.xml), defaults_but(element.changes)) << element.xml;
  }
}

TEST_F(Settings, FilterLevelsAreRead) {
  const std::pair<const char *, const char *> codeset_levels[] = {
      {"From all codesets", "1"}, {"From primary codeset only", "2"},
      {"From no codeset", "3"},   {"From No Codeset", "2"},
      {"From no view", "2"},      {"", "2"}};
  const std::pair<const char *, const char *> mark_levels[] = {{"From all views", "1"},
                                                               {"From this view only", "2"},
                                                               {"From no view", "3"},
                                                               {"From no codeset", "1"},
                                                               {"", "1"}};
  for (const auto &[text, level] : codeset_levels) {
    EXPECT_EQ(load(legend("text-page-codeset-filter-level", text)),
              defaults_but({{"text codesets", level}}));
    EXPECT_EQ(load(legend("view-page-codeset-filter-level", text)),
              defaults_but({{"view codesets", level}}));
  }
  for (const auto &[text, level] : mark_levels) {
    EXPECT_EQ(load(legend("text-page-mark-filter-level", text)),
              defaults_but({{"text marks", level}}));
    EXPECT_EQ(load(legend("view-page-mark-filter-level", text)),
              defaults_but({{"view marks", level}}));
  }
}

TEST_F(Settings, AnElementIsAppliedCompletelyOrNotAtAll) {
  const std::string complete[] = {
      "<paper name='A4' orientation='Landscape'/>",
      "<details show-on-text-page='false' show-on-view-pages='true'/>",
      std::string("<legend show-on-text-page='true' show-on-view-pages='false'") + legend_levels +
          "/>",
      "<identifier setting='None'/>",
      "<layout filename='x'/>",
      "<page-numbers show='false'/>",
      "<report-type show='false'/>",
  };
  for (const std::string &element : complete) {
    EXPECT_NE(load(printout(element)), defaults) << element;
    for (std::size_t at = element.find('='); at != std::string::npos;
         at = element.find('=', at + 1)) {
      std::string incomplete = element;
      incomplete.insert(at, "-under-another-name");
      EXPECT_EQ(load(printout(incomplete)), defaults) << incomplete;
    }
  }
}

TEST_F(Settings, AMissingAttributeSkipsTheElementAndIsReported) {
  const std::pair<const char *, const char *> elements[] = {
      {"<archive/>", "path"},
      {"<automatically-place-id/>", "active"},
      {"<default-mark-id-style/>", "style"},
      {"<export><folder/></export>", "path"},
      {"<last-used-layout/>", "filename"},
      {"<last-used-paper/>", "id"},
      {"<left-handed/>", "active"},
      {"<remember-tool-choice/>", "active"},
      {"<default-printout-settings><report-type/></default-printout-settings>", "show"},
  };
  for (const auto &[element, attribute] : elements) {
    v_error_clear();
    EXPECT_EQ(load(std::string(element) + "<archive path='/after'/>"),
              defaults_but({{"archive", "/after"}}))
        << element;
    EXPECT_EQ(v_error_get(), std::string("Missing XML attribute: ") + attribute);
  }
}

TEST_F(Settings, TheLastOfARepeatedElementWins) {
  const std::string remark =
      "<remark><code>7</code><description lang='sv'>a</description></remark>";
  EXPECT_EQ(load("<archive path='/1'/><left-handed active='true'/><preferred-languages>"
                 "<language tag='fr'/></preferred-languages><recent-custom-remarks>" +
                 remark + remark +
                 "</recent-custom-remarks><default-mark-id-style style='2'/>"
                 "<last-used-paper id='B'/><last-used-layout filename='1'/>"
                 "<export><folder path='/1'/></export><remember-tool-choice active='true'/>"
                 "<automatically-place-id active='true'/>" +
                 printout("<page-numbers show='false'/>") +
                 "<archive path='/2'/><left-handed active='false'/><preferred-languages>"
                 "<language tag='de'/></preferred-languages><recent-custom-remarks>" +
                 remark +
                 "</recent-custom-remarks><default-mark-id-style style='1'/>"
                 "<last-used-paper id='C'/><last-used-layout filename='2'/>"
                 "<export><folder path='/2'/></export><remember-tool-choice active='false'/>"
                 "<automatically-place-id active='false'/>" +
                 printout("<report-type show='false'/>")),
            defaults_but({{"archive", "/2"},
                          {"languages", "[de]"},
                          {"remarks", testing::PrintToString(Remarks{{"7", {{"sv", "a"}}}})},
                          {"mark id style", "1"},
                          {"last paper", "C"},
                          {"last layout", "2"},
                          {"export", "/2"},
                          {"page numbers", "0"},
                          {"report type", "0"}}));
}

TEST_F(Settings, AnInvalidRepetitionKeepsTheEarlierValue) {
  EXPECT_EQ(load("<default-mark-id-style style='2'/><default-mark-id-style style='3'/>"
                 "<archive path='/1'/><archive/>"),
            defaults_but({{"mark id style", "2"}, {"archive", "/1"}}));
}

TEST_F(Settings, UnknownNodesAreIgnored) {
  EXPECT_EQ(load("text<!--archive path='/x'--><?archive path='/x'?><Archive path='/x'/>"
                 "<settings><archive path='/x'/></settings><identifier setting='None'/>" +
                 printout("<left-handed active='true'/><unknown/>text")),
            defaults);
}

TEST_F(Settings, OtherNodesNamedLikeElementsAreIgnored) {
  const std::string remark =
      "<remark><code>7</code><description lang='sv'>a</description></remark>";
  const Fields expected = defaults_but(
      {{"languages", "[fr]"}, {"remarks", testing::PrintToString(Remarks{{"7", {{"sv", "a"}}}})}});
  const std::string elements = "<preferred-languages><?language?><language tag='fr'/>"
                               "</preferred-languages><recent-custom-remarks><?remark?>" +
                               remark + "</recent-custom-remarks>";
  EXPECT_EQ(load(elements + "<?preferred-languages?><?recent-custom-remarks?>"), expected);
  write("<!DOCTYPE settings [<!ENTITY preferred-languages ''><!ENTITY recent-custom-remarks ''>"
        "<!ENTITY remark ''>]><settings>" +
        elements + "&preferred-languages;&recent-custom-remarks;<recent-custom-remarks>&remark;" +
        remark + "</recent-custom-remarks></settings>");
  const OwnedSettings settings = v_settings_new(folder.path());
  EXPECT_TRUE(v_settings_load(settings.get(), -1));
  EXPECT_EQ(fields_of(settings.get()), expected);
}

struct MaskedElement {
  int bit;
  const char *xml;
  Fields changes;
};

TEST_F(Settings, TheMaskSelectsElements) {
  const MaskedElement elements[] = {
      {1, "<archive path='/a'/>", {{"archive", "/a"}}},
      {2, "<automatically-place-id active='true'/>", {{"place id", "1"}}},
      {4, "<default-mark-id-style style='1'/>", {{"mark id style", "1"}}},
      {8,
       "<default-printout-settings><report-type show='false'/></default-printout-settings>",
       {{"report type", "0"}}},
      {16, "<export><folder path='/e'/></export>", {{"export", "/e"}}},
      {32, "<last-used-layout filename='l'/>", {{"last layout", "l"}}},
      {64, "<last-used-paper id='p'/>", {{"last paper", "p"}}},
      {128, "<left-handed active='true'/>", {{"left-handed", "1"}}},
      {256, "<preferred-languages/>", {{"languages", ""}}},
      {512,
       "<recent-custom-remarks><remark><code>7</code><description lang='sv'>a</description>"
       "</remark></recent-custom-remarks>",
       {{"remarks", testing::PrintToString(Remarks{{"7", {{"sv", "a"}}}})}}},
      {1024, "<remember-tool-choice active='true'/>", {{"remember tool", "1"}}},
  };
  std::string all;
  Fields all_changes;
  for (const MaskedElement &element : elements) {
    all += element.xml;
    all_changes.insert(element.changes.begin(), element.changes.end());
  }
  for (const MaskedElement &element : elements) {
    EXPECT_EQ(load(all, true, element.bit), defaults_but(element.changes)) << element.xml;
    EXPECT_EQ(load(element.xml, true, ~element.bit), defaults) << element.xml;
  }
  EXPECT_EQ(load(all, true, 0), defaults);
  EXPECT_EQ(load(all, true, 2047), defaults_but(all_changes));
  EXPECT_EQ(load(all, true, -1), defaults_but(all_changes));
}

TEST_F(Settings, UnselectedElementsCannotFail) {
  const std::string bad = "<last-used-paper id='&#xE5;'/><preferred-languages>"
                          "<language tag='&#xE5;'/></preferred-languages>"
                          "<recent-custom-remarks><remark/></recent-custom-remarks>";
  EXPECT_EQ(load(bad, true, ~(64 | 256 | 512)), defaults);
  for (const int bit : {64, 256, 512}) {
    load(bad, false, bit);
  }
}

TEST_F(Settings, ValuesThatAreNotAsciiAreSkippedAndReported) {
  const std::string after = "<archive path='/after'/>";
  EXPECT_EQ(load("<last-used-paper id='A4_\xC3\xA5'/>" + after, false),
            defaults_but({{"archive", "/after"}}));
  EXPECT_STREQ(v_error_get(),
               "Invalid XML attribute content.\n\nNon-ascii byte found where not allowed.");
  EXPECT_EQ(load("<preferred-languages><language tag='fr'/><language tag='s\xC3\xA5'/>"
                 "<language/><language tag='de'/></preferred-languages>" +
                     after,
                 false),
            defaults_but({{"languages", "[fr][de]"}, {"archive", "/after"}}));
}

TEST_F(Settings, ARemarkThatCannotBeReadIsSkippedAndReported) {
  EXPECT_EQ(load("<recent-custom-remarks><remark><code>1</code></remark><remark><code>2</code>"
                 "<description lang='sv'>a</description></remark><remark/></recent-custom-remarks>"
                 "<archive path='/after'/>",
                 false),
            defaults_but({{"remarks", testing::PrintToString(Remarks{{"2", {{"sv", "a"}}}})},
                          {"archive", "/after"}}));
  EXPECT_STREQ(v_error_get(), "Missing remark content in XML data.");
}

TEST_F(Settings, AnotherRootElementIsAFailure) {
  for (const char *xml : {"<Settings><archive path='/x'/></Settings>", "<codeset/>",
                          "<x><settings><archive path='/x'/></settings></x>"}) {
    write(xml);
    const OwnedSettings settings = v_settings_new(folder.path());
    EXPECT_FALSE(v_settings_load(settings.get(), -1)) << xml;
    EXPECT_EQ(fields_of(settings.get()), defaults);
  }
}

TEST_F(Settings, ADocumentWithoutARootIsAFailure) {
  write("<settings/>");
  const OwnedSettings settings = v_settings_new(folder.path());
  const MissingXmlRoots missing;
  EXPECT_FALSE(v_settings_load(settings.get(), -1));
  EXPECT_EQ(fields_of(settings.get()), defaults);
  EXPECT_STREQ(v_error_get(), "Missing root element in XML tree.");
}

TEST_F(Settings, AFileThatCannotBeParsedIsAFailure) {
  for (const char *xml : {"", "<settings><archive path='/x'/>", "<settings>\xE5</settings>"}) {
    write(xml);
    const OwnedSettings settings = v_settings_new(folder.path());
    EXPECT_FALSE(v_settings_load(settings.get(), -1)) << xml;
    EXPECT_EQ(fields_of(settings.get()), defaults);
    EXPECT_THAT(v_error_get(), StartsWith("Could not parse XML data."));
  }
  std::remove((folder / "settings.xml").c_str());
  make_folder(folder / "settings.xml");
  EXPECT_FALSE(v_settings_load(v_settings_new(folder.path()).get(), -1));
}

TEST_F(Settings, AFileWhoseStatusCannotBeReadIsAFailure) {
  write_file(folder / "file", "");
  const OwnedSettings settings = v_settings_new((folder / "file").c_str());
  EXPECT_FALSE(v_settings_load(settings.get(), -1));
  EXPECT_STREQ(v_error_get(), "Cannot get file status.\n\nError 20: Not a directory");
}

TEST_F(Settings, ARootWithoutChildrenKeepsTheDefaults) {
  EXPECT_EQ(load(""), defaults);
  write("<settings/>");
  EXPECT_TRUE(v_settings_load(v_settings_new(folder.path()).get(), -1));
}

TEST_F(Settings, LoadingTwiceAppliesTwice) {
  const OwnedSettings settings = v_settings_new(folder.path());
  write("<settings><archive path='/1'/><left-handed active='true'/></settings>");
  EXPECT_TRUE(v_settings_load(settings.get(), -1));
  write("<settings><archive path='/2'/></settings>");
  EXPECT_TRUE(v_settings_load(settings.get(), -1));
  EXPECT_EQ(fields_of(settings.get()), defaults_but({{"archive", "/2"}, {"left-handed", "1"}}));
}

} // namespace
