#include "tools/skos.h"

#include <cstring>
#include <string_view>
#include <unordered_map>
#include <utility>

#include <glib.h>

#include "base/error.h"
#include "base/text_encoding.h"
#include "bcp47.h"

namespace {

constexpr std::string_view prefixes = "@prefix skos: <http://www.w3.org/2004/02/skos/core#> .\n"
                                      "@prefix dc: <http://purl.org/dc/elements/1.1/> .\n"
                                      "@prefix dcterms: <http://purl.org/dc/terms/> .\n"
                                      "@prefix owl: <http://www.w3.org/2002/07/owl#> .\n";

// --- Addresses

// Characters that an IRI in Turtle may not contain.
bool is_forbidden(char byte) {
  return static_cast<unsigned char>(byte) <= ' ' || std::strchr("<>\"{}|^`\\", byte) != nullptr;
}

void append_percent_encoded(VUtf8String *iri, const char *utf8_text) {
  // Programs that resolve IRIs remove the segments "." and "..".
  if (std::strcmp(utf8_text, ".") == 0) {
    v_utf8_string_append(iri, "%2E");
  } else if (std::strcmp(utf8_text, "..") == 0) {
    v_utf8_string_append(iri, "%2E%2E");
  } else {
    g_string_append_uri_escaped(iri, utf8_text, nullptr, FALSE);
  }
}

// --- Labels

// A language of the vocabulary.
struct Language {
  std::string ending;                  // of a literal: the quotation mark and "@en-GB", if any
  const VLangstr *labelled = nullptr;  // the last string that got a preferred label
  const VLangstr *preferred = nullptr; // that label
};

// The languages of all texts written so far. Each tag is converted only once.
class Languages {
public:
  Language &find(const char *tag) {
    const auto [entry, is_new] = by_tag.try_emplace(tag, nullptr);
    if (is_new) {
      const std::string bcp47 = v_bcp47_from_tag(tag);
      Language &language = by_bcp47[bcp47];
      language.ending = bcp47.empty() ? "\"" : "\"@" + bcp47;
      entry->second = &language;
    }
    return *entry->second;
  }

private:
  std::unordered_map<std::string_view, Language *> by_tag; // the keys borrow from the codeset
  std::unordered_map<std::string, Language> by_bcp47;
};

// --- Turtle

// The beginnings of properties with literal values, with the separator before them.
constexpr std::string_view preferred_label = " ;\n    skos:prefLabel \"";
constexpr std::string_view alternative_label = " ;\n    skos:altLabel \"";
constexpr std::string_view notation = " ;\n    skos:notation \"";
constexpr std::string_view title = " ;\n    dcterms:title \"";
constexpr std::string_view version = " ;\n    owl:versionInfo \"";
// Not dcterms:creator, whose values must be resources, not literals.
constexpr std::string_view creator = " ;\n    dc:creator \"";
constexpr std::string_view without_language = "\"";

std::string escape(char byte) {
  switch (byte) {
  case '"':
    return "\\\"";
  case '\\':
    return "\\\\";
  case '\n':
    return "\\n";
  case '\r':
    return "\\r";
  case '\t':
    return "\\t";
  default:
    return {byte};
  }
}

// Turtle is written by hand: the serialiser of the raptor library builds a tree of all triples
// before it writes the first one, which takes seven times as long as reading the codeset.
class TurtleWriter {
public:
  explicit TurtleWriter(const VSkosAddresses &vocabulary)
      : addresses(vocabulary),
        membership(" ;\n    skos:inScheme <" + vocabulary.scheme + "> ;\n    skos:topConceptOf <" +
                   vocabulary.scheme + "> .\n") {}

  OwnedUtf8String write(const VCodeset *codeset) {
    append(prefixes);
    append_scheme(codeset);
    for (const VRemark *r = codeset->remarks->head.next; r != &codeset->remarks->tail;
         r = r->next) {
      append_concept(r);
    }
    return std::move(turtle);
  }

private:
  void append(std::string_view utf8_text) {
    g_string_append_len(turtle.get(), utf8_text.data(), static_cast<gssize>(utf8_text.size()));
  }

  void append_concept_iri(const char *latin1_code) {
    g_string_truncate(code.get(), 0);
    v_utf8_string_append_latin1(code.get(), latin1_code);
    append("<");
    append(addresses.concept_prefix);
    append_percent_encoded(turtle.get(), code->str);
    append(">");
  }

  // Appends a property whose value is a literal.
  void append_property(std::string_view beginning, const char *latin1_text,
                       std::string_view ending) {
    constexpr const char *escaped_bytes = "\"\\\n\r\t";
    append(beginning);
    if (std::strpbrk(latin1_text, escaped_bytes) == nullptr) {
      v_utf8_string_append_latin1(turtle.get(), latin1_text);
    } else {
      append_escaped(latin1_text);
    }
    append(ending);
  }

  void append_escaped(const char *latin1_text) {
    std::string escaped;
    for (const char *byte = latin1_text; *byte != '\0'; byte++) {
      escaped += escape(*byte);
    }
    v_utf8_string_append_latin1(turtle.get(), escaped.c_str());
  }

  // Appends one property for each translation, even if several have the same language.
  void append_texts(std::string_view beginning, const VLangstr *langstr) {
    for (; langstr != nullptr; langstr = langstr->next.get()) {
      append_property(beginning, langstr->text.get(), languages.find(langstr->lang.get()).ending);
    }
  }

  // SKOS allows one preferred label per language, and no label that is both preferred and
  // alternative.
  void append_labels(const VLangstr *langstr) {
    for (const VLangstr *label = langstr; label != nullptr; label = label->next.get()) {
      Language &language = languages.find(label->lang.get());
      if (language.labelled != langstr) {
        language.labelled = langstr;
        language.preferred = label;
        append_property(preferred_label, label->text.get(), language.ending);
      } else if (std::strcmp(language.preferred->text.get(), label->text.get()) != 0) {
        append_property(alternative_label, label->text.get(), language.ending);
      }
    }
  }

  void append_scheme(const VCodeset *codeset) {
    append("\n<" + addresses.scheme + "> a skos:ConceptScheme");
    append_labels(codeset->name.get());
    append_texts(title, codeset->name.get());
    append_texts(creator, codeset->author.get());
    if (codeset->version) {
      append_property(version, codeset->version.get(), without_language);
    }
    for (const VRemark *r = codeset->remarks->head.next; r != &codeset->remarks->tail;
         r = r->next) {
      append(" ;\n    skos:hasTopConcept ");
      append_concept_iri(r->code.get());
    }
    append(" .\n");
  }

  void append_concept(const VRemark *remark) {
    append("\n");
    append_concept_iri(remark->code.get());
    append(" a skos:Concept");
    append_property(notation, remark->code.get(), without_language);
    append_labels(remark->description.get());
    append(membership);
  }

  const VSkosAddresses &addresses;
  std::string membership; // the end of each concept
  Languages languages;
  OwnedUtf8String turtle = v_utf8_string_new("");
  OwnedUtf8String code = v_utf8_string_new(""); // reused to avoid allocations
};

} // namespace

bool v_skos_set_base(VSkosAddresses &addresses, const char *base) {
  const std::string_view address = base;
  bool is_absolute = g_uri_is_valid(base, G_URI_FLAGS_NONE, nullptr) != FALSE;
  for (const char byte : address) {
    is_absolute = is_absolute && !is_forbidden(byte);
  }
  if (!is_absolute) {
    v_error_set_utf8_printf("Not an absolute address: %s", base);
    return false;
  }
  addresses.scheme = address;
  addresses.concept_prefix = address;
  if (address.back() != '/' && address.back() != '#') {
    addresses.concept_prefix += '/';
  }
  return true;
}

VSkosAddresses v_skos_name_addresses(const char *name) {
  const OwnedUtf8String scheme = v_utf8_string_new("urn:x-codeset:");
  append_percent_encoded(scheme.get(), *name == '\0' ? "codeset" : name);
  return {scheme->str, std::string(scheme->str) + ":"};
}

OwnedUtf8String v_skos_write_codeset(const VCodeset *codeset, const VSkosAddresses &addresses) {
  return TurtleWriter(addresses).write(codeset);
}
