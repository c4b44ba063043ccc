#pragma once
// Prevents unintended key presses. The toolkit treats the repeats of a key that is held down as new
// presses, and a window that opens while the user types receives the rest of the typing.

#include <gtk/gtk.h>

// Guards all windows of the program from now on; further calls have no effect. The toolkit must be
// initialised.
//
// Repeats of a key that is held down are dropped when they would reach a different window than the
// press did. Repeats of Return, Enter and Escape, and of Space pressed on a button, are always
// dropped, so that each press acts once. Return in a multi-line text and all other keys repeat.
void v_key_guard_install();

// To be called for a message that is about to open. If Return or Enter in a text field has caused
// it, it receives no key until the user pauses: further typing was meant for the field, and must
// neither answer a message that has not been read yet nor, once it is answered, reach the window
// below. Return or Escape answers the message if nothing was typed before it.
void v_key_guard_shield(GtkWindow *window);

// True when the key that is being handled is a repeat, even of a press in another window.
bool v_key_guard_is_repeating();
