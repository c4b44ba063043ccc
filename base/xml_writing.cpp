#include "base/xml_writing.h"

#include <cstdarg>
#include <cstddef>
#include <cstring>
#include <memory>
#include <utility>

#include <libxml/chvalid.h>
#include <libxml/xmlerror.h>
#include <libxml/xmlsave.h>

#include "base/error.h"
#include "base/fs_utils.h"
#include "base/text_buffer.h"
#include "base/text_encoding.h"

namespace {

const xmlChar *as_xml(const char *text) { return reinterpret_cast<const xmlChar *>(text); }

void ignore_report(void *, const char *, ...) {}

// Keeps the library from printing errors, which the error state reports, and clears its last error.
class SilentLibrary {
public:
  SilentLibrary() {
    xmlResetLastError();
    xmlSetGenericErrorFunc(nullptr, ignore_report);
  }
  ~SilentLibrary() { xmlSetGenericErrorFunc(nullptr, nullptr); }
  SilentLibrary(const SilentLibrary &) = delete;
  SilentLibrary &operator=(const SilentLibrary &) = delete;
};

// When memory runs out, the library may continue with an incomplete result, for instance a node
// without a name or a document without its encoding. Only its last error indicates this.
bool has_run_out_of_memory() {
  const xmlError *error = xmlGetLastError();
  return error != nullptr && error->code == XML_ERR_NO_MEMORY;
}

// Makes a part of a tree; null when the result is incomplete.
template <typename Make>
auto make_whole(Make make) {
  const SilentLibrary silent;
  auto *part = make();
  return has_run_out_of_memory() ? nullptr : part;
}

template <typename Part>
Part *or_set_error(Part *part, const char *message) {
  if (part == nullptr) {
    v_error_set(message);
  }
  return part;
}

constexpr const char *escaped_bytes = "&\"'<>\n\t\r";

const char *escape(char byte) {
  switch (byte) {
  case '&':
    return "&amp;";
  case '"':
    return "&quot;";
  case '\'':
    return "&apos;";
  case '<':
    return "&lt;";
  case '>':
    return "&gt;";
  case '\n':
    return "&#xA;";
  case '\t':
    return "&#x9;";
  default: // '\r'
    return "&#xD;&#x9;";
  }
}

using OwnedSaveContext = Owned<xmlSaveCtxt, xmlSaveClose>;

// xmlSaveDoc succeeds even on a full disk; xmlSaveClose, which flushes the buffer, fails.
bool save(xmlDoc *document, OwnedSaveContext context) {
  const bool is_saved = xmlSaveDoc(context.get(), document) != -1;
  const bool is_closed = xmlSaveClose(context.release()) != -1;
  return is_saved && is_closed && !has_run_out_of_memory();
}

// The library's own writer to a descriptor treats a partial write as complete.
int write_whole(void *stream, const char *bytes, int length) {
  const auto size = static_cast<std::size_t>(length);
  return std::fwrite(bytes, 1, size, static_cast<std::FILE *>(stream)) == size ? length : -1;
}

// True when the text has a character that XML forbids, even as a reference. The library would write
// it, and then refuse to read the file.
bool has_forbidden_character(const char *utf8_text) {
  if (utf8_text != nullptr && g_utf8_validate(utf8_text, -1, nullptr)) {
    for (const char *at = utf8_text; *at != '\0'; at = g_utf8_next_char(at)) {
      if (!xmlIsCharQ(g_utf8_get_char(at))) {
        return true;
      }
    }
  }
  return false;
}

} // namespace

OwnedXmlDoc v_xml_new_doc() {
  return OwnedXmlDoc(or_set_error(make_whole([] { return xmlNewDoc(as_xml("1.0")); }),
                                  "Error when creating new empty XML tree."));
}

// The node is added to the tree at once, so an incomplete one is freed with the tree.
xmlNode *v_xml_add_root_element(xmlDoc *document, const char *name) {
  return or_set_error(make_whole([&] {
                        xmlNode *root = xmlNewDocNode(document, nullptr, as_xml(name), nullptr);
                        if (root != nullptr) {
                          xmlFreeNode(xmlDocSetRootElement(document, root));
                        }
                        return root;
                      }),
                      "Error when creating an XML element.");
}

xmlNode *v_xml_add_child_element(xmlNode *parent, const char *name) {
  return or_set_error(
      make_whole([&] { return xmlNewChild(parent, nullptr, as_xml(name), nullptr); }),
      "Error when creating an XML child element.");
}

xmlNode *v_xml_add_child_element_with_ascii_text_content(xmlNode *parent, const char *name,
                                                         const char *ascii_text) {
  return v_ascii_assert_in_utf8(ascii_text) == nullptr
             ? nullptr
             : v_xml_add_child_element_with_utf8_text_content(parent, name, ascii_text);
}

xmlNode *v_xml_add_child_element_with_utf8_text_content(xmlNode *parent, const char *name,
                                                        const char *utf8_text) {
  const auto make = [&] {
    return xmlNewTextChild(parent, nullptr, as_xml(name), as_xml(utf8_text));
  };
  return or_set_error(has_forbidden_character(utf8_text) ? nullptr : make_whole(make),
                      "Error when creating an XML text child element.");
}

xmlNode *v_xml_add_child_element_with_latin1_text_content(xmlNode *parent, const char *name,
                                                          const char *latin1_text) {
  return v_xml_add_child_element_with_utf8_text_content(
      parent, name, v_convert_latin1_to_utf8(latin1_text).get());
}

bool v_xml_set_attribute(xmlNode *node, const char *name, const char *value) {
  if (value == nullptr) {
    v_error_set("Missing value for XML attribute.");
    return false;
  }
  const auto set = [&] { return xmlSetProp(node, as_xml(name), as_xml(value)); };
  return or_set_error(has_forbidden_character(value) ? nullptr : make_whole(set),
                      "Error when setting an XML attribute.") != nullptr;
}

bool v_xml_set_attribute_with_ascii_content(xmlNode *node, const char *name,
                                            const char *ascii_text) {
  const bool is_unfit = ascii_text != nullptr && v_ascii_assert_in_utf8(ascii_text) == nullptr;
  return !is_unfit && v_xml_set_attribute(node, name, ascii_text);
}

bool v_xml_set_attribute_with_latin1_content(xmlNode *node, const char *name,
                                             const char *latin1_text) {
  const OwnedText utf8_text =
      latin1_text == nullptr ? nullptr : v_convert_latin1_to_utf8(latin1_text);
  return v_xml_set_attribute(node, name, utf8_text.get());
}

bool v_xml_set_attribute_to_boolean(xmlNode *node, const char *name, bool value) {
  return v_xml_set_attribute(node, name, value ? "true" : "false");
}

bool v_xml_set_attribute_to_int(xmlNode *node, const char *name, int value) {
  const OwnedText text(g_strdup_printf("%d", value));
  return v_xml_set_attribute(node, name, text.get());
}

bool v_xml_set_attribute_to_double(xmlNode *node, const char *name, double value) {
  char text[G_ASCII_DTOSTR_BUF_SIZE];
  return v_xml_set_attribute(node, name, g_ascii_dtostr(text, sizeof text, value));
}

bool v_xml_write_to_file(xmlDoc *document, const char *path, const char *encoding) {
  OwnedFile file = v_fs_utils_open_file(path, "wb");
  if (!file) {
    return false;
  }
  const bool is_written = v_xml_write_to_stream(document, file.get(), encoding);
  // The destructor closes the file when writing failed; the message is that of the failed write.
  if (is_written && v_fs_utils_close_file(std::move(file))) {
    return true;
  }
  v_fs_utils_discard_file(path);
  return false;
}

bool v_xml_replace_file(xmlDoc *document, const char *path, const char *encoding) {
  const OwnedText xml = v_xml_write_to_string(document, encoding);
  if (!xml) {
    return false;
  }
  if (!v_fs_utils_replace_file(path, xml.get())) {
    v_error_append("Could not write XML data.");
    return false;
  }
  return true;
}

bool v_xml_write_to_stream(xmlDoc *document, std::FILE *stream, const char *encoding) {
  const SilentLibrary silent;
  OwnedSaveContext context(xmlSaveToIO(write_whole, nullptr, stream, encoding, XML_SAVE_FORMAT));
  if (!context) {
    v_error_set("Could not create XML saving context for file.");
    return false;
  }
  const bool is_saved = save(document, std::move(context));
  if (!is_saved || std::fflush(stream) != 0) {
    v_error_set("Could not write XML data.");
    return false;
  }
  return true;
}

OwnedText v_xml_write_to_string(xmlDoc *document, const char *encoding) {
  const SilentLibrary silent;
  const Owned<xmlBuffer, xmlBufferFree> buffer(xmlBufferCreate());
  OwnedSaveContext context(xmlSaveToBuffer(buffer.get(), encoding, XML_SAVE_FORMAT));
  if (!context || !save(document, std::move(context))) {
    v_error_set("Could not write XML data to memory buffer.");
    return nullptr;
  }
  return OwnedText(g_strndup(reinterpret_cast<const char *>(xmlBufferContent(buffer.get())),
                             static_cast<gsize>(xmlBufferLength(buffer.get()))));
}

OwnedText v_xml_latin1_to_xml(const char *latin1_text) {
  if (latin1_text == nullptr) {
    return nullptr;
  }
  std::string xml;
  v_xml_append_string(xml, latin1_text);
  return copy_text(xml.c_str());
}

void v_xml_append_string(std::string &xml, const char *latin1_text) {
  for (;;) {
    const std::size_t plain = std::strcspn(latin1_text, escaped_bytes);
    xml.append(latin1_text, plain);
    latin1_text += plain;
    if (*latin1_text == '\0') {
      return;
    }
    xml += escape(*latin1_text++);
  }
}

bool v_xml_write_xml(std::FILE *stream, const std::string &xml) {
  if (std::fwrite(xml.data(), 1, xml.size(), stream) != xml.size()) {
    v_error_set_file_io_writing();
    return false;
  }
  return true;
}

bool v_xml_write_string(std::FILE *stream, const char *latin1_text) {
  const OwnedText escaped = v_xml_latin1_to_xml(latin1_text);
  return !escaped || v_xml_write_xml(stream, escaped.get());
}

bool v_xml_write_tabs(std::FILE *stream, int n) {
  return n < 1 || v_xml_write_xml(stream, std::string(static_cast<std::size_t>(n), '\t'));
}

bool v_util_fprintf(std::FILE *stream, const char *format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const int result = std::vfprintf(stream, format, arguments);
  va_end(arguments);
  if (result < 0) {
    v_error_set_file_io_writing();
    return false;
  }
  return true;
}
