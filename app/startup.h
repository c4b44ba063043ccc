#pragma once
// The one-time work before the tool can run, one function per step, and the matching clean-up at
// shutdown. A step that fails returns false and sets a message.

#include <cairo.h>
#include <gtk/gtk.h>

#include "images/image.h"

// Runs all steps in order; stops at the first that fails.
bool v_startup_run(GtkApplication *application);

// The steps that can also be run separately.
// Fails with "Couldn't initialize the FreeType font library.".
bool v_startup_init_font_library();
// Halves the resolution of a screen with 144 dots per inch or more.
void v_startup_apply_resolution_rule(GdkScreen *screen);
bool v_startup_load_icons();
// Fails with "Couldn't find required fonts." before the reason, "Couldn't open required fonts.",
// "Couldn't load required fonts.", "Couldn't use required fonts." or the message of the path's
// conversion.
bool v_startup_load_view_font();

// Each does nothing when there is nothing to release.
void v_startup_release_icons();
void v_startup_release_view_font();
void v_startup_release_font_library();

// For drawing code. Borrowed; null before start-up and after shutdown.
VImage *v_get_checkbox_icon_image(int on);
VImage *v_get_text_tab_menu_icon_image();
cairo_font_face_t *v_get_view_font_face();
