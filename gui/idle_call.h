#pragma once
// Delays a call until the main loop runs again, for work that must not be done inside the handler
// that causes it.

#include <functional>

#include <gtk/gtk.h>

// Calls the function once from the main loop, unless the widget is destroyed before that. priority:
// a GLib priority. A reference to the widget is held until the function returns, even if the
// function destroys it.
void v_idle_call_add(GtkWidget *widget, int priority, std::function<void()> function);
