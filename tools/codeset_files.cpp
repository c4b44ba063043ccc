#include "tools/codeset_files.h"

#include <cstdio>
#include <cstring>

#include <sys/stat.h>

#include "base/error.h"
#include "base/fs_utils.h"
#include "codeset/codeset_io.h"
#include "placed_file.h"
#include "tools/report.h"

namespace {

// For process substitution, "<(command)", a shell passes a named pipe.
bool is_named_pipe(const char *file) {
  struct stat status;
  return stat(file, &status) == 0 && S_ISFIFO(status.st_mode);
}

bool is_stream(const char *file) { return v_tools_is_standard_stream(file) || is_named_pipe(file); }

bool read_all(std::FILE *source, std::string &text) {
  char buffer[64 * 1024];
  std::size_t count = 0;
  while ((count = std::fread(buffer, 1, sizeof buffer, source)) > 0) {
    text.append(buffer, count);
  }
  if (std::ferror(source)) {
    v_error_set_file_io_reading();
    return false;
  }
  return true;
}

OwnedFile open_to_read(const char *file) {
  if (is_named_pipe(file)) {
    OwnedFile pipe(std::fopen(file, "rb"));
    if (!pipe) {
      v_error_set_from_errno();
      v_error_append("Cannot open file.");
    }
    return pipe;
  }
  const OwnedText path = v_fs_utils_convert_osfsenc_to_utf8(file);
  return path ? v_fs_utils_open_file(path.get(), "rb") : nullptr;
}

bool write_all(std::FILE *file, std::string_view text) {
  if (std::fwrite(text.data(), 1, text.size(), file) != text.size() || std::fflush(file) != 0) {
    v_error_set_from_errno();
    v_error_append("File I/O error when writing to file.");
    return false;
  }
  return true;
}

bool write_new_file(const PlacedFile &placed, std::string_view text) {
  OwnedFile file = v_fs_utils_create_file(placed.path(), placed.permissions());
  return file && write_all(file.get(), text) && v_fs_utils_close_file(std::move(file));
}

OwnedCodeset read_codeset_of_stream(const char *file) {
  std::string bytes;
  PlacedFile copy;
  if (!v_tools_read_text(file, bytes) || !copy.prepare_temporary() ||
      !write_new_file(copy, bytes)) {
    return nullptr;
  }
  return v_codeset_io_read_from_file(copy.path());
}

bool write_and_compare(const VCodeset *codeset, const PlacedFile &placed) {
  if (!v_codeset_io_write_to_file_with_permissions(codeset, placed.path(), placed.permissions())) {
    return false;
  }
  const OwnedCodeset read_back = v_codeset_io_read_from_file(placed.path());
  if (read_back && !v_tools_codesets_are_equal(codeset, read_back.get())) {
    v_error_set("The written file does not read back as it should.");
    return false;
  }
  return read_back != nullptr;
}

bool copy_to_output(const PlacedFile &placed) {
  const OwnedText name = v_fs_utils_convert_utf8_to_osfsenc(placed.path());
  std::string bytes;
  return v_tools_read_text(name.get(), bytes) && write_all(stdout, bytes);
}

bool remarks_are_equal(const VRemarkList *a, const VRemarkList *b) {
  const VRemark *x = a->head.next;
  const VRemark *y = b->head.next;
  while (x != &a->tail && y != &b->tail && std::strcmp(x->code.get(), y->code.get()) == 0 &&
         v_langstr_is_identical(x->description.get(), y->description.get())) {
    x = x->next;
    y = y->next;
  }
  return x == &a->tail && y == &b->tail;
}

} // namespace

bool v_tools_is_standard_stream(const char *file) {
  return file == nullptr || std::strcmp(file, "-") == 0;
}

const char *v_tools_name_output(const char *file) {
  return v_tools_is_standard_stream(file) ? "standard output" : file;
}

std::string v_tools_get_bare_name(const char *file) {
  const VErrorKeeper keeper;
  const OwnedText path =
      v_tools_is_standard_stream(file) ? nullptr : v_fs_utils_convert_osfsenc_to_utf8(file);
  const std::string name = path ? v_fs_utils_find_entry_name_in_path(path.get()) : "";
  return name.substr(0, name.rfind('.'));
}

bool v_tools_is_source(const char *output, const char *source) {
  if (v_tools_is_standard_stream(output) || v_tools_is_standard_stream(source)) {
    return false;
  }
  const VErrorKeeper keeper;
  const OwnedText output_path = v_fs_utils_convert_osfsenc_to_utf8(output);
  const OwnedText source_path = v_fs_utils_convert_osfsenc_to_utf8(source);
  if (!output_path || !source_path) {
    return false;
  }
  const OwnedText resolved_output = v_fs_utils_resolve_links(output_path.get());
  const OwnedText resolved_source = v_fs_utils_resolve_links(source_path.get());
  return resolved_source && g_strcmp0(resolved_source.get(), resolved_output.get()) == 0;
}

OwnedCodeset v_tools_read_codeset(const char *file) {
  const VProgressReport progress(file, "reading");
  if (is_stream(file)) {
    return read_codeset_of_stream(file);
  }
  const OwnedText path = v_fs_utils_convert_osfsenc_to_utf8(file);
  return path ? v_codeset_io_read_from_file(path.get()) : nullptr;
}

bool v_tools_read_text(const char *file, std::string &text) {
  text.clear();
  if (v_tools_is_standard_stream(file)) {
    return read_all(stdin, text);
  }
  const OwnedFile opened = open_to_read(file);
  return opened && read_all(opened.get(), text);
}

bool v_tools_write_text(const char *file, std::string_view text, Overwriting overwriting) {
  if (v_tools_is_standard_stream(file)) {
    return write_all(stdout, text);
  }
  const VProgressReport progress(file, "writing");
  PlacedFile placed;
  return placed.prepare(file, overwriting) && write_new_file(placed, text) && placed.put();
}

bool v_tools_print(std::string_view text) {
  const bool is_written = write_all(stdout, text);
  if (!is_written) {
    v_report_last_error("standard output");
  }
  return is_written;
}

bool v_tools_write_codeset(const VCodeset *codeset, const char *file, Overwriting overwriting) {
  const VProgressReport progress(v_tools_name_output(file), "writing");
  PlacedFile placed;
  if (!v_tools_is_standard_stream(file)) {
    return placed.prepare(file, overwriting) && write_and_compare(codeset, placed) && placed.put();
  }
  return placed.prepare_temporary() && write_and_compare(codeset, placed) && copy_to_output(placed);
}

bool v_tools_codesets_are_equal(const VCodeset *a, const VCodeset *b) {
  return v_langstr_is_identical(a->name.get(), b->name.get()) &&
         v_langstr_is_identical(a->author.get(), b->author.get()) &&
         g_strcmp0(a->version.get(), b->version.get()) == 0 &&
         remarks_are_equal(a->remarks.get(), b->remarks.get());
}
