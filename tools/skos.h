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

// Addresses below one that the user owns. The scheme has exactly this address; concepts have it
// with a "/" behind, unless it ends in "/" or "#". False with "Not an absolute address: <base>" for
// anything else than an absolute IRI. base: UTF-8.
bool v_skos_set_base(VSkosAddresses &addresses, const char *base);
// Addresses that nobody has to own, a URN made of a name, such as that of the codeset's file:
// "urn:x-codeset:<name>" and "urn:x-codeset:<name>:<code>". name: UTF-8; "" is treated as
// "codeset".
VSkosAddresses v_skos_name_addresses(const char *name);

// The vocabulary in Turtle (UTF-8). Texts keep their languages as BCP 47 has them; a text whose
// language cannot be told from that of an earlier one of the same string ("en-uk" and "en-gb") is
// an alternative label.
OwnedUtf8String v_skos_write_codeset(const VCodeset *codeset, const VSkosAddresses &addresses);
