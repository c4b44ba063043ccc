#pragma once
// Loads librsvg when the first SVG image is read. Most tools read none, and linking it would cost
// 5 % of the start-up time and of the memory of an idle program.

#include <librsvg/rsvg.h>

// The functions of librsvg that are called, named like their symbols.
struct VSvgLibrary {
  decltype(&::rsvg_handle_new_from_data) rsvg_handle_new_from_data = nullptr;
  decltype(&::rsvg_handle_get_dimensions) rsvg_handle_get_dimensions = nullptr;
};

// Borrowed; the library stays loaded until the process ends. Null with the system's reason when it
// cannot be loaded.
const VSvgLibrary *v_svg_library_get();
