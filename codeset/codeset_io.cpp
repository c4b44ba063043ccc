#include "codeset/codeset_io.h"

#include <cstddef>
#include <cstring>
#include <optional>
#include <string>
#include <utility>

#include "base/error.h"
#include "base/fs_utils.h"
#include "base/xml_events.h"
#include "base/xml_writing.h"
#include "codeset/remark_xml.h"
#include "langstr/langstr_xml.h"

namespace {

// State while a codeset is read, one child of the root at a time. Faults are reported in the order
// name, author, version, remarks, wherever they are in the file, so the first message of each kind
// is kept until the end.
struct CodesetReading {
  bool is_codeset = false;
  OwnedCodeset codeset = v_codeset_new();
  VLangstrCollection name;
  VLangstrCollection author;
  VRemarkCollection remarks;
  int versions = 0;
  std::optional<VErrorCopy> name_error;
  std::optional<VErrorCopy> author_error;
  std::optional<VErrorCopy> version_error;
  std::optional<VErrorCopy> remark_error;
};

void read_translation(VLangstrCollection &langstr, std::optional<VErrorCopy> &error,
                      const XmlElement &element) {
  if (!error && element.is_element() &&
      !v_xml_collect_langstr_translation(langstr, element, LangTag::may_be_empty,
                                         LangstrSpacing::compact)) {
    error = v_error_copy();
  }
}

// A second version is reported even when the first one cannot be read.
void read_version(CodesetReading &reading, const XmlElement &element) {
  reading.versions++;
  if (reading.versions == 1) {
    reading.codeset->version =
        v_xml_get_text(element, XmlEncoding::latin1, XmlSpacing::compact, XmlContent::nonempty);
  } else {
    v_xml_set_duplicate_nodes_error();
  }
  if (reading.versions > 1 || !reading.codeset->version) {
    reading.version_error = v_error_copy();
  }
}

void read_remark(CodesetReading &reading, const XmlElement &element) {
  if (reading.remark_error) {
    return;
  }
  if (OwnedRemark remark = v_xml_read_remark(element)) {
    v_remark_list_collect_remark(reading.remarks, std::move(remark));
  } else {
    reading.remark_error = v_error_copy();
  }
}

void read_child(CodesetReading &reading, const XmlElement &child) {
  if (!reading.is_codeset) {
    return;
  }
  if (child.has_name("remark")) {
    read_remark(reading, child);
  } else if (child.has_name("name")) {
    read_translation(reading.name, reading.name_error, child);
  } else if (child.has_name("author")) {
    read_translation(reading.author, reading.author_error, child);
  } else {
    read_version(reading, child);
  }
}

bool finish_remarks(CodesetReading &reading) {
  // A duplicate is among the remarks before the unreadable one, so it is reported first.
  if (!v_remark_list_sort_collection(reading.remarks)) {
    v_error_set("Duplicate remark codes.");
    return false;
  }
  if (reading.remark_error) {
    v_error_restore(std::move(*reading.remark_error));
    return false;
  }
  if (v_remark_list_is_empty(reading.remarks.list.get())) {
    v_error_set("Missing remarks.");
    return false;
  }
  reading.codeset->remarks = std::move(reading.remarks.list);
  return true;
}

bool finish_codeset(CodesetReading &reading) {
  if (!reading.name.langstr && !reading.name_error) {
    v_xml_set_missing_node_error("name");
    return false;
  }
  for (std::optional<VErrorCopy> *error :
       {&reading.name_error, &reading.author_error, &reading.version_error}) {
    if (*error) {
      v_error_restore(std::move(**error));
      return false;
    }
  }
  reading.codeset->name = std::move(reading.name.langstr);
  reading.codeset->author = std::move(reading.author.langstr);
  return finish_remarks(reading);
}

void append_head(std::string &xml, const VCodeset *codeset, const VLangstr *name) {
  xml += "<?xml version=\"1.0\" encoding=\"iso-8859-1\"?>\n\n<codeset>\n\n";
  v_xml_append_langstr(xml, name, "name", 1);
  v_xml_append_langstr(xml, codeset->author.get(), "author", 1);
  if (codeset->version) {
    xml += "\t<version>";
    v_xml_append_string(xml, codeset->version.get());
    xml += "</version>\n";
  }
}

enum class Codes { as_they_are, escaped };

void append_remark(std::string &xml, const VRemark *remark, Codes codes) {
  xml += "\n\t<remark>\n\t\t<code>";
  if (codes == Codes::escaped) {
    v_xml_append_string(xml, remark->code.get());
  } else {
    xml += remark->code.get();
  }
  xml += "</code>\n";
  v_xml_append_langstr(xml, remark->description.get(), "description", 2);
  xml += "\t</remark>\n";
}

// A few large writes are much faster than one write per remark.
constexpr std::size_t write_size = 64 * 1024; // bytes

bool write_head_and_remarks(std::FILE *file, const VCodeset *codeset, const VLangstr *name,
                            Codes codes) {
  std::string xml;
  append_head(xml, codeset, name);
  const VRemarkList *list = codeset->remarks.get();
  for (const VRemark *remark = list->head.next; remark != &list->tail; remark = remark->next) {
    append_remark(xml, remark, codes);
    if (xml.size() >= write_size) {
      if (!v_xml_write_xml(file, xml)) {
        return false;
      }
      xml.clear();
    }
  }
  return v_xml_write_xml(file, xml);
}

// A full disk may be detected only when the last buffer is written.
bool flush(std::FILE *file) {
  if (std::fflush(file) != 0) {
    v_error_set_file_io_writing();
    return false;
  }
  return true;
}

bool write_codeset(std::FILE *file, const VCodeset *codeset, const VLangstr *name, Codes codes) {
  return write_head_and_remarks(file, codeset, name, codes) &&
         v_util_fprintf(file, "\n</codeset>\n") && flush(file);
}

// Codes are intentionally unescaped: the suite's other tools write and compare them this way.
bool write_codeset_as_it_is(std::FILE *file, const VCodeset *codeset) {
  return write_codeset(file, codeset, codeset->name.get(), Codes::as_they_are);
}

} // namespace

OwnedCodeset v_codeset_io_read_from_file(const char *path) {
  CodesetReading reading;
  bool has_root = false;
  const XmlRootReader reader = {
      .child_names = {"remark", "name", "author", "version"},
      .grandchild_names = {"description", "code"},
      .begin =
          [&](const char *root_name) {
            has_root = true;
            reading = CodesetReading();
            reading.is_codeset = std::strcmp(root_name, "codeset") == 0;
          },
      .read_child = [&](const XmlElement &child) { read_child(reading, child); },
  };
  if (!v_xml_read_root_children(path, reader)) {
    v_error_append("Error loading codeset file.");
    return nullptr;
  }
  if (!has_root) {
    v_error_append("Invalid codeset file.");
    return nullptr;
  }
  if (!reading.is_codeset) {
    v_error_set("Not a codeset file.");
    return nullptr;
  }
  if (!finish_codeset(reading)) {
    v_error_append("Error parsing codeset file.");
    return nullptr;
  }
  return std::move(reading.codeset);
}

OwnedCodeset v_codeset_io_read_from_file_in_workspace(const char *workspace_folder_path,
                                                      const char *file_name) {
  return v_codeset_io_read_from_file(
      v_fs_utils_create_path_in_folder(workspace_folder_path, file_name).get());
}

bool v_codeset_io_write_to_file(const VCodeset *codeset, const char *path) {
  return v_codeset_io_write_to_file_with_permissions(codeset, path,
                                                     v_fs_utils_get_permissions(path));
}

bool v_codeset_io_write_to_file_with_permissions(const VCodeset *codeset, const char *path,
                                                 const VFilePermissions &permissions) {
  if (!v_fs_utils_delete_file_if_exists(path)) {
    v_error_append("Cannot access file.");
    return false;
  }
  OwnedFile file = v_fs_utils_create_file(path, permissions);
  if (!file) {
    v_error_append("Cannot create file.");
    v_fs_utils_discard_file(path);
    return false;
  }
  if (!write_codeset_as_it_is(file.get(), codeset) || !v_fs_utils_close_file(std::move(file))) {
    file.reset();
    v_fs_utils_discard_file(path);
    return false;
  }
  return true;
}

bool v_codeset_io_can_code_be_read_back(const char *code) {
  return std::strpbrk(code, "&<") == nullptr && std::strstr(code, "]]>") == nullptr;
}

bool v_codeset_io_can_be_read_back(const VCodeset *codeset) {
  const VRemarkList *list = codeset->remarks.get();
  for (const VRemark *remark = list->head.next; remark != &list->tail; remark = remark->next) {
    if (!v_codeset_io_can_code_be_read_back(remark->code.get())) {
      return false;
    }
  }
  return true;
}

bool v_codeset_io_write_readably(std::FILE *file, const VCodeset *codeset,
                                 const char *substitute_name) {
  OwnedLangstr substitute;
  if (!codeset->name) {
    v_langstr_set_translation(substitute, "", substitute_name);
  }
  const VLangstr *name = codeset->name ? codeset->name.get() : substitute.get();
  return write_codeset(file, codeset, name, Codes::escaped);
}

std::string v_codeset_io_make_substitute_name(const char *file_name) {
  std::string name;
  for (const char *at = file_name; *at != '\0'; at = g_utf8_next_char(at)) {
    const gunichar character = g_utf8_get_char(at);
    const bool fits = g_unichar_isprint(character) && character < 0x100;
    name += fits ? static_cast<char>(character) : '?';
  }
  return name;
}
