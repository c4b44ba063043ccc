#pragma once
// librsvg, loaded when the first SVG image is read. Most tools read none, and to load it with the
// program would cost each start a twentieth of its time and of the memory of a program at rest.

#include <librsvg/rsvg.h>

// Its functions, by their names.
struct VSvgLibrary {
  decltype(&::rsvg_handle_new_from_data) rsvg_handle_new_from_data = nullptr;
  decltype(&::rsvg_handle_get_dimensions) rsvg_handle_get_dimensions = nullptr;
};

// Borrowed; stays loaded until the end of the process. Null with the system's reason when the
// library cannot be loaded.
const VSvgLibrary *v_svg_library_get();
