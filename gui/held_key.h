#pragma once
// Tells a key that is pressed from one that is still held down. The toolkit reports a held key as
// one press after the other, to whichever window has the focus by then.

// Begins to watch the keys that go to the program's windows; later calls do nothing.
void v_held_key_watch();
// Whether the last press of a key was the repetition of an earlier one, which was perhaps made in
// another window.
bool v_held_key_is_repeating();
