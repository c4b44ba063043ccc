#pragma once
// Documents that the readers of the program may be given: mostly well-formed ones with the right
// elements, and among them everything that XML allows, forbids or leaves open.

#include <cstddef>
#include <cstdint>
#include <string>

// Fuzzing engines favour slow inputs, so they need short texts.
enum class LongTexts { kilobytes, megabytes };

enum class DocumentKind { codeset, settings, pointer };

// The same bytes give the same document. When the first byte is 0, the others are the document.
std::string generate_document(DocumentKind kind, LongTexts long_texts, const std::uint8_t *bytes,
                              std::size_t length);
