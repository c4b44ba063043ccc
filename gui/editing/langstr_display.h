#pragma once
// Shows all translations of a multilingual text, each under its language's name in bold, read only.

#include <gtk/gtk.h>

#include "langstr/langstr.h"

#define V_TYPE_LANGSTR_DISPLAY (v_langstr_display_get_type())
G_DECLARE_FINAL_TYPE(VLangstrDisplay, v_langstr_display, V, LANGSTR_DISPLAY, GtkScrolledWindow)

// Width and height are the least size, in pixels.
GtkWidget *v_langstr_display_new(int width, int height);
// Null empties the display. Returns 0 when the display is destroyed and has no text buffer, else 1.
int v_langstr_display_set_text(VLangstrDisplay *display, const VLangstr *langstr);
