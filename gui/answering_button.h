#pragma once
// The program's button. It differs from the toolkit's in how keys and assistive technologies press
// it.
//
// A key, including Return in a text field of the window, acts at once. The toolkit's button waits
// for a quarter of a second, during which typing still changes the field that is being confirmed.
//
// A request by an assistive technology is answered before the handlers run; the toolkit answers
// afterwards. A window opened by a handler runs a nested main loop, and the request would not be
// answered until that loop ends: a screen reader could not read the window that it has opened.
//
// The toolkit's assistant and file chooser have the toolkit's buttons.

#include <gtk/gtk.h>

#define V_TYPE_ANSWERING_BUTTON (v_answering_button_get_type())
G_DECLARE_FINAL_TYPE(VAnsweringButton, v_answering_button, V, ANSWERING_BUTTON, GtkButton)

// Floating, like every new widget. The label may be null.
GtkWidget *v_answering_button_new(const char *label);
// Sets the display name (UTF-8, such as "Ctrl+N") of the key that presses the button, for assistive
// technologies to announce. Does not bind the key.
void v_answering_button_set_key(VAnsweringButton *button, const char *key);
