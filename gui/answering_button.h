#pragma once
// The program's button. It differs from the toolkit's in how a key and an assistive technology
// press it.
//
// A key, Return in a text field of the window included, acts at once. The toolkit waits for a
// quarter of a second, and what is typed in that time still changes the field that is being
// confirmed.
//
// A request of an assistive technology is answered before the handlers run; the toolkit answers
// after them. A window that a handler opens runs a main loop of its own, and until that loop ends
// the request would be unanswered: a screen reader could not read the window that it has opened.
//
// The buttons of the toolkit's assistant and file chooser are the toolkit's own.

#include <gtk/gtk.h>

#define V_TYPE_ANSWERING_BUTTON (v_answering_button_get_type())
G_DECLARE_FINAL_TYPE(VAnsweringButton, v_answering_button, V, ANSWERING_BUTTON, GtkButton)

// Floating, like every new widget. The label may be null.
GtkWidget *v_answering_button_new(const char *label);
// The key (UTF-8, as the user reads it, "Ctrl+N" for instance) that presses the button. Assistive
// technology announces it. The caller makes the key work.
void v_answering_button_set_key(VAnsweringButton *button, const char *key);
