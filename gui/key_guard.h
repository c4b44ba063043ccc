#pragma once
// Keeps keys from doing what the user did not mean. The toolkit treats the repeats of a key that is
// held down as new presses, and a window that opens while the user types gets the rest of the
// typing.

#include <gtk/gtk.h>

// Guards all windows of the program from now on; a second call changes nothing. The toolkit must be
// initialised.
//
// Repeats of a key that is held down are dropped when they would reach another window than the
// press did. Repeats of Return, Enter and Escape, and of Space pressed on a button, are always
// dropped: each press acts once. Return in a text of several lines and all other keys repeat.
void v_key_guard_install();

// For a message that is about to open. When Return or Enter in a text field has caused it, it gets
// no key until the user pauses: further typing was meant for the field, and must neither answer a
// message that is not read yet nor, once it is answered, reach the window below. Return or Escape
// pressed with nothing typed before them is an answer.
void v_key_guard_shield(GtkWindow *window);

// True when the key that is being handled is a repeat, also of a press in another window.
bool v_key_guard_is_repeating();
