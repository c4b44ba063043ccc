#pragma once
// Loads librsvg when the first SVG image is read. Most tools read none, and loading it with the
// program would take 5 % of the start-up time and of the memory of an idle program.

#include <librsvg/rsvg.h>

// The functions of librsvg that are called, by their names.
struct VSvgLibrary {
  decltype(&::rsvg_handle_new_from_data) rsvg_handle_new_from_data = nullptr;
  decltype(&::rsvg_handle_get_dimensions) rsvg_handle_get_dimensions = nullptr;
};

// Borrowed; stays loaded until the end of the process. Null with the system's reason when the
// library cannot be loaded.
const VSvgLibrary *v_svg_library_get();
