#pragma once
// The program's button: the toolkit's, except for how an assistive technology presses it. The
// toolkit runs the handlers before it has answered the technology's request. What a handler opens
// runs a main loop of its own, and until that ends nothing could be asked of the program any more:
// a screen reader would be left without the window that it has opened. Here the request is answered
// first. Message dialogs and the assistant have buttons of the toolkit's besides.

#include <gtk/gtk.h>

#define V_TYPE_BUTTON (v_button_get_type())
G_DECLARE_FINAL_TYPE(VButton, v_button, V, BUTTON, GtkButton)

// Floating, like every new widget. The label may be null.
GtkWidget *v_button_new(const char *label);
