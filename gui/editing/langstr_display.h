#pragma once
// A read-only display of all translations of a multilingual text, each below its language in bold.

#include <gtk/gtk.h>

#include "langstr/langstr.h"

#define V_TYPE_LANGSTR_DISPLAY (v_langstr_display_get_type())
G_DECLARE_FINAL_TYPE(VLangstrDisplay, v_langstr_display, V, LANGSTR_DISPLAY, GtkScrolledWindow)

// width, height: minimum size in pixels.
GtkWidget *v_langstr_display_new(int width, int height);
// Null clears the display. Returns 0 when the display is destroyed, else 1.
int v_langstr_display_set_text(VLangstrDisplay *display, const VLangstr *langstr);
