#include "images/svg_library.h"

#include <gmodule.h>

#include "base/error.h"

namespace {

// The library is never unloaded, because its object types cannot be registered twice.
template <typename Function>
bool find(GModule *module, const char *name, Function &function) {
  void *symbol = nullptr;
  if (!g_module_symbol(module, name, &symbol)) {
    return false;
  }
  function = reinterpret_cast<Function>(symbol);
  return true;
}

bool load(VSvgLibrary &library) {
  GModule *module = g_module_open(
      VANTORELLE_SVG_LIBRARY, static_cast<GModuleFlags>(G_MODULE_BIND_LAZY | G_MODULE_BIND_LOCAL));
  return module != nullptr &&
         find(module, "rsvg_handle_new_from_data", library.rsvg_handle_new_from_data) &&
         find(module, "rsvg_handle_get_dimensions", library.rsvg_handle_get_dimensions);
}

} // namespace

const VSvgLibrary *v_svg_library_get() {
  static VSvgLibrary library;
  static bool is_loaded = false;
  is_loaded = is_loaded || load(library);
  if (!is_loaded) {
    v_error_set(g_module_error());
    return nullptr;
  }
  return &library;
}
