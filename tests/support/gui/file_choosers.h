#pragma once
// File choosers of the toolkit that a test operates.

#include <functional>

#include <gtk/gtk.h>

// The top window, if it is a file chooser, otherwise null.
GtkFileChooser *top_chooser();

// A condition for one wait: true once the top chooser has shown its list and its icons for a while.
// The toolkit logs a critical when a chooser is destroyed, or its folder changed, while it loads a
// folder or an icon, so no test may do so before. A chooser has no list while it loads, which may
// happen twice in a row, and nothing signals the end.
std::function<bool()> chooser_to_be_loaded();
