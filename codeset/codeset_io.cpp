#include "codeset/codeset_io.h"

#include <utility>

#include "base/error.h"
#include "base/fs_utils.h"
#include "base/xml_reading.h"
#include "base/xml_writing.h"
#include "codeset/remark_xml.h"
#include "langstr/langstr_xml.h"

namespace {

bool read_name_author_version(VCodeset *codeset, xmlDoc *document, const xmlNode *root) {
  codeset->name = v_xml_parse_required_langstr(document, root, "name", LangstrSpacing::compact);
  return codeset->name &&
         v_xml_parse_langstr(codeset->author, document, root, "author", LangstrSpacing::compact) &&
         v_xml_get_nonempty_text_content_from_distinct_child_node_as_compact_latin1(
             codeset->version, document, root, "version");
}

// A codeset that is being read. The remarks are added as they come, up to one that cannot be read.
struct CodesetReading {
  OwnedCodeset codeset = v_codeset_new();
  bool all_remarks_are_read = true;
};

// Everything but remarks and the text between is kept for later.
XmlChild read_child(CodesetReading &reading, xmlDoc *document, const xmlNode *child) {
  if (!v_xml_node_has_name(child, "remark")) {
    return child->type == XML_TEXT_NODE ? XmlChild::done_with : XmlChild::kept;
  }
  if (reading.all_remarks_are_read && v_xml_node_has_name(child->parent, "codeset")) {
    OwnedRemark remark = v_xml_parse_remark(document, child);
    reading.all_remarks_are_read = remark != nullptr;
    if (remark) {
      v_remark_list_add_remark_last(reading.codeset->remarks.get(), std::move(remark));
    }
  }
  return XmlChild::done_with;
}

bool finish_remarks(VRemarkList *list, bool all_are_read) {
  v_remark_list_sort(list);
  // A code that is there twice comes before the remark that cannot be read, and is told of first.
  if (v_remark_list_has_duplicate_codes(list)) {
    v_error_set("Duplicate remark codes.");
    return false;
  }
  if (all_are_read && v_remark_list_is_empty(list)) {
    v_error_set("Missing remarks.");
    return false;
  }
  return all_are_read;
}

// What is wrong with name, author and version is told first, although the remarks are there by
// then: it replaces the message of a remark.
bool finish_codeset(CodesetReading &reading, xmlDoc *document, const xmlNode *root) {
  return read_name_author_version(reading.codeset.get(), document, root) &&
         finish_remarks(reading.codeset->remarks.get(), reading.all_remarks_are_read);
}

void append_head(std::string &xml, const VCodeset *codeset) {
  xml += "<?xml version=\"1.0\" encoding=\"iso-8859-1\"?>\n\n<codeset>\n\n";
  v_xml_append_langstr(xml, codeset->name.get(), "name", 1);
  v_xml_append_langstr(xml, codeset->author.get(), "author", 1);
  if (codeset->version) {
    xml += "\t<version>";
    v_xml_append_string(xml, codeset->version.get());
    xml += "</version>\n";
  }
}

// The code goes out unescaped. This is meant: other tools of the suite write and compare it so.
void append_remark(std::string &xml, const VRemark *remark) {
  xml.append("\n\t<remark>\n\t\t<code>").append(remark->code.get()).append("</code>\n");
  v_xml_append_langstr(xml, remark->description.get(), "description", 2);
  xml += "\t</remark>\n";
}

bool write_head(std::FILE *file, const VCodeset *codeset) {
  std::string xml;
  append_head(xml, codeset);
  return v_xml_write_xml(file, xml);
}

// One remark at a time in the same memory.
bool write_remarks(std::FILE *file, const VRemarkList *list) {
  std::string xml;
  for (const VRemark *remark = list->head.next; remark != &list->tail; remark = remark->next) {
    xml.clear();
    append_remark(xml, remark);
    if (!v_xml_write_xml(file, xml)) {
      return false;
    }
  }
  return true;
}

// The last write is the flush: a full disk may show up only here.
bool flush(std::FILE *file) {
  if (std::fflush(file) != 0) {
    v_error_set_file_io_writing();
    return false;
  }
  return true;
}

bool write_codeset(std::FILE *file, const VCodeset *codeset) {
  return write_head(file, codeset) && write_remarks(file, codeset->remarks.get()) &&
         v_util_fprintf(file, "\n</codeset>\n") && flush(file);
}

} // namespace

OwnedCodeset v_codeset_io_read_from_file(const char *path) {
  CodesetReading reading;
  const OwnedXmlDoc document =
      v_xml_parse_file_by_children(path, [&](xmlDoc *unfinished, const xmlNode *child) {
        return read_child(reading, unfinished, child);
      });
  if (!document) {
    v_error_append("Error loading codeset file.");
    return nullptr;
  }
  const xmlNode *root = v_xml_get_root_element(document.get());
  if (root == nullptr) {
    v_error_append("Invalid codeset file.");
    return nullptr;
  }
  if (!v_xml_node_has_name(root, "codeset")) {
    v_error_set("Not a codeset file.");
    return nullptr;
  }
  if (!finish_codeset(reading, document.get(), root)) {
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
  if (!v_fs_utils_delete_file_if_exists(path)) {
    v_error_append("Cannot access file.");
    return false;
  }
  OwnedFile file = v_fs_utils_open_file(path, "wb");
  if (!file) {
    v_error_append("Cannot create file.");
    v_fs_utils_discard_file(path);
    return false;
  }
  if (!write_codeset(file.get(), codeset) || !v_fs_utils_close_file(std::move(file))) {
    file.reset();
    v_fs_utils_discard_file(path);
    return false;
  }
  return true;
}
