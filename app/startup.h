#pragma once
// The one-time work before the tool can run, one function per step, and what is released again at
// shutdown. A step that fails returns false and leaves its words in the error state.

#include <cairo.h>
#include <gtk/gtk.h>

#include "images/image.h"

// All steps in their order; the first failure ends it.
bool v_startup_run(GtkApplication *application);

// The steps that can be asked for by themselves.
// "Couldn't initialize the FreeType font library."
bool v_startup_init_font_library();
// A screen of 144 dots per inch or more is treated as one of half of them.
void v_startup_apply_resolution_rule(GdkScreen *screen);
bool v_startup_load_icons();
// "Couldn't find required fonts.", "Couldn't open required fonts.", "Couldn't load required fonts."
// or "Couldn't use required fonts.".
bool v_startup_load_view_font();

// Each may find nothing to release.
void v_startup_release_icons();
void v_startup_release_view_font();
void v_startup_release_font_library();

// For drawing code. Borrowed; null before start-up and after shutdown.
VImage *v_get_checkbox_icon_image(int on);
VImage *v_get_text_tab_menu_icon_image();
cairo_font_face_t *v_get_view_font_face();
