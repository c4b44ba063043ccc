#pragma once
// Keeps keys from doing what nobody meant. The toolkit takes the repeats of a key that is held down
// for new presses, and gives a window that opens while the user types the rest of the typing.

#include <gtk/gtk.h>

// Guards all windows of the program from now on; a second call changes nothing. The toolkit must be
// initialised.
//
// Of a key that is held down the repeats are dropped when they would reach another window than the
// press did, and those of Return, Enter and Escape, and of Space pressed on a button, in any case:
// each press acts once. Return in a text of several lines and all other keys repeat.
void v_key_guard_install();

// For a message that is about to open. When it answers Return or Enter in a text field, it gets no
// key until the user pauses: what is typed on was meant for the field, and must neither answer a
// message that is not read yet nor, once it is answered, end up in the window below. Return and
// Escape that follow at once, with nothing typed between, are an answer.
void v_key_guard_shield(GtkWindow *window);

// Whether the key that is being handled is held down since it was pressed, in whichever window.
bool v_key_guard_is_repeating();
