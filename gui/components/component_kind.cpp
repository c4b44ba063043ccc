#include "gui/components/component_kind.h"

#include "base/text_buffer.h"

const char *v_component_kind_get_extension(const VComponentKind &kind) {
  return v_file_type_get_default_file_name_extension_with_period(kind.file_type);
}

bool v_component_kind_has_extension(const VComponentKind &kind, const char *name) {
  return v_utf8_has_suffix_case_insensitive_ascii(name, v_component_kind_get_extension(kind));
}
