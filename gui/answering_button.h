#pragma once
// The program's button: the toolkit's, except for how a key and an assistive technology press it.
//
// A key, be it Return in a text field of the window, acts at once. The toolkit waits for a quarter
// of a second, in which all that is typed still changes the field that is being confirmed.
//
// An assistive technology's request is answered first. The toolkit runs the handlers before. What a
// handler opens runs a main loop of its own, and until that ends nothing could be asked of the
// program any more: a screen reader would be left without the window that it has opened.
//
// The assistant and the file chooser have buttons of the toolkit's besides.

#include <gtk/gtk.h>

#define V_TYPE_ANSWERING_BUTTON (v_answering_button_get_type())
G_DECLARE_FINAL_TYPE(VAnsweringButton, v_answering_button, V, ANSWERING_BUTTON, GtkButton)

// Floating, like every new widget. The label may be null.
GtkWidget *v_answering_button_new(const char *label);
// The key (UTF-8, as the user reads it, "Ctrl+N" for instance) that presses the button. Assistive
// technology announces it. The caller makes the key work.
void v_answering_button_set_key(VAnsweringButton *button, const char *key);
