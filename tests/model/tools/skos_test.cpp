#include "tools/skos.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/error.h"
#include "support/values/codesets.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

const VSkosAddresses addresses = {"http://museum.example/easel", "http://museum.example/easel/"};

std::string turtle_of(const OwnedCodeset &codeset) {
  return v_skos_write_codeset(codeset.get(), addresses)->str;
}

std::string turtle_of(const Remarks &remarks) {
  return turtle_of(codeset_of({{"", "Easel"}}, {}, nullptr, remarks));
}

TEST(Skos, WritesASchemeWithItsConcepts) {
  const OwnedCodeset codeset =
      codeset_of({{"en-uk", "Easel paintings"}, {"sv", "Stafflim\xE5lningar"}}, {{"", "A. Lind"}},
                 "1.1", {{"Ab1", {{"en-uk", "Abrasion"}, {"sv", "Avn\xF6tning"}}}, {"Cr14", {}}});
  EXPECT_EQ(turtle_of(codeset), "@prefix skos: <http://www.w3.org/2004/02/skos/core#> .\n"
                                "@prefix dc: <http://purl.org/dc/elements/1.1/> .\n"
                                "@prefix dcterms: <http://purl.org/dc/terms/> .\n"
                                "@prefix owl: <http://www.w3.org/2002/07/owl#> .\n"
                                "\n"
                                "<http://museum.example/easel> a skos:ConceptScheme ;\n"
                                "    skos:prefLabel \"Easel paintings\"@en-GB ;\n"
                                "    skos:prefLabel \"Stafflimålningar\"@sv ;\n"
                                "    dcterms:title \"Easel paintings\"@en-GB ;\n"
                                "    dcterms:title \"Stafflimålningar\"@sv ;\n"
                                "    dc:creator \"A. Lind\" ;\n"
                                "    owl:versionInfo \"1.1\" ;\n"
                                "    skos:hasTopConcept <http://museum.example/easel/Ab1> ;\n"
                                "    skos:hasTopConcept <http://museum.example/easel/Cr14> .\n"
                                "\n"
                                "<http://museum.example/easel/Ab1> a skos:Concept ;\n"
                                "    skos:notation \"Ab1\" ;\n"
                                "    skos:prefLabel \"Abrasion\"@en-GB ;\n"
                                "    skos:prefLabel \"Avnötning\"@sv ;\n"
                                "    skos:inScheme <http://museum.example/easel> ;\n"
                                "    skos:topConceptOf <http://museum.example/easel> .\n"
                                "\n"
                                "<http://museum.example/easel/Cr14> a skos:Concept ;\n"
                                "    skos:notation \"Cr14\" ;\n"
                                "    skos:inScheme <http://museum.example/easel> ;\n"
                                "    skos:topConceptOf <http://museum.example/easel> .\n");
}

TEST(Skos, EscapesTexts) {
  EXPECT_THAT(turtle_of({{"1", {{"", "a \"b\" \\c\\ d\te\rf\ng <h> & 'i' \xFF"}}}}),
              HasSubstr(R"(skos:prefLabel "a \"b\" \\c\\ d\te\rf\ng <h> & 'i' ÿ" ;)"));
}

TEST(Skos, EncodesCodesInAddresses) {
  const std::string turtle = turtle_of(Remarks{
      {"a-b.c_d~e", {}}, {"\xC5 1", {}}, {"a/b?c#d:e%f", {}}, {"<>\"{}|^`\\&\n", {}}, {"..", {}}});
  for (const char *code : {"a-b.c_d~e", "%C3%85%201", "a%2Fb%3Fc%23d%3Ae%25f",
                           "%3C%3E%22%7B%7D%7C%5E%60%5C%26%0A", "%2E%2E"}) {
    EXPECT_THAT(turtle, HasSubstr("<http://museum.example/easel/" + std::string(code) +
                                  "> a skos:Concept ;\n"));
  }
}

TEST(Skos, HasOnePreferredLabelForEachLanguage) {
  const std::string turtle =
      turtle_of({{"1", {{"en-uk", "Tear"}, {"en-gb", "Rip"}, {"en", "Cut"}, {"EN-UK", "Tear"}}},
                 {"2", {{"en-gb", "Hole"}}}});
  EXPECT_THAT(turtle, HasSubstr("    skos:prefLabel \"Tear\"@en-GB ;\n"
                                "    skos:altLabel \"Rip\"@en-GB ;\n"
                                "    skos:prefLabel \"Cut\"@en ;\n"
                                "    skos:inScheme"));
  EXPECT_THAT(turtle, HasSubstr("    skos:prefLabel \"Hole\"@en-GB ;\n"));
}

TEST(Skos, HasNoLanguageForATextOfUnknownLanguage) {
  EXPECT_THAT(turtle_of({{"1", {{"", "Tear"}}}}), HasSubstr("skos:prefLabel \"Tear\" ;\n"));
  EXPECT_THAT(turtle_of({{"1", {{"in_code", "Tear"}}}}),
              HasSubstr("skos:prefLabel \"Tear\"@x-in-code ;\n"));
}

TEST(Skos, WritesASchemeWithoutConcepts) {
  EXPECT_THAT(turtle_of(Remarks{}),
              EndsWith("<http://museum.example/easel> a skos:ConceptScheme ;\n"
                       "    skos:prefLabel \"Easel\" ;\n"
                       "    dcterms:title \"Easel\" .\n"));
}

TEST(Skos, PutsConceptsBelowTheUsersAddress) {
  struct Row {
    const char *base;
    const char *concept_prefix;
  };
  constexpr Row rows[] = {
      {"http://museum.example/easel", "http://museum.example/easel/"},
      {"http://museum.example/easel/", "http://museum.example/easel/"},
      {"https://museum.example/easel#", "https://museum.example/easel#"},
      {"urn:uuid:6e8bc430-9c3a-11d9-9669-0800200c9a66",
       "urn:uuid:6e8bc430-9c3a-11d9-9669-0800200c9a66/"},
      {"http://museum.example/m%C3%A5leri", "http://museum.example/m%C3%A5leri/"},
      {"http://museum.example/måleri", "http://museum.example/måleri/"},
  };
  for (const Row &row : rows) {
    VSkosAddresses found;
    EXPECT_TRUE(v_skos_set_base(found, row.base)) << v_error_get();
    EXPECT_EQ(found.scheme, row.base);
    EXPECT_EQ(found.concept_prefix, row.concept_prefix);
  }
}

TEST(Skos, RefusesAnAddressThatIsNotAbsolute) {
  for (const char *base : {"", "easel", "/easel", "museum.example/easel", "//museum.example/easel",
                           "http://museum.example/a b", "http://museum.example/<a>",
                           "http://museum.example/{a}", "http://museum.example/%zz",
                           "http://museum.example/a\nb", ":", "http://museum.example/a\\b"}) {
    VSkosAddresses found;
    EXPECT_FALSE(v_skos_set_base(found, base));
    EXPECT_STREQ(v_error_get(), ("Not an absolute address: " + std::string(base)).c_str());
    EXPECT_EQ(found.scheme + found.concept_prefix, "");
  }
}

TEST(Skos, MakesAddressesOfAName) {
  struct Row {
    const char *name;
    const char *scheme;
  };
  constexpr Row rows[] = {
      {"easel_paintings", "urn:x-codeset:easel_paintings"},
      {"Målningar 2.1", "urn:x-codeset:M%C3%A5lningar%202.1"},
      {"a:b", "urn:x-codeset:a%3Ab"},
      {"..", "urn:x-codeset:%2E%2E"},
      {"", "urn:x-codeset:codeset"},
  };
  for (const Row &row : rows) {
    const VSkosAddresses found = v_skos_name_addresses(row.name);
    EXPECT_EQ(found.scheme, row.scheme);
    EXPECT_EQ(found.concept_prefix, row.scheme + std::string(":"));
  }
}

} // namespace
