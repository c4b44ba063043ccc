#pragma once
// A codeset as a SKOS vocabulary in Turtle: one concept scheme, and one concept for each remark.

#include <string>

#include "base/text_buffer.h"
#include "codeset/codeset.h"

// The addresses in a vocabulary, absolute IRIs (UTF-8).
struct VSkosAddresses {
  std::string scheme;
  std::string concept_prefix; // a concept's address is this and the percent-encoded code
};

// Sets addresses below the base (UTF-8), which the user controls. The scheme is the base itself;
// the concept prefix is the base with a "/" appended, unless it ends in "/" or "#". False with "Not
// an absolute address: <base>" when the base is not an absolute IRI.
bool v_skos_set_base(VSkosAddresses &addresses, const char *base);
// Makes URNs, for which no domain is needed, from a name such as that of the codeset's file:
// "urn:x-codeset:<name>" and "urn:x-codeset:<name>:<code>". name: UTF-8; "" is treated as
// "codeset".
VSkosAddresses v_skos_name_addresses(const char *name);

// Returns the vocabulary in Turtle (UTF-8). Language tags are converted to BCP 47; when several
// translations of a name or description get the same tag ("en-uk" and "en-gb"), the first is the
// preferred label and the others are alternative labels.
OwnedUtf8String v_skos_write_codeset(const VCodeset *codeset, const VSkosAddresses &addresses);
