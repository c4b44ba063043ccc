#pragma once
// Calls that wait until the main loop is reached again, for what must not happen inside the handler
// that causes it.

#include <functional>

#include <gtk/gtk.h>

// Calls the function once, from the main loop, unless the widget is destroyed before that.
// priority: the toolkit's (G_PRIORITY_...). The widget is held until the function returns, whatever
// that does to it.
void v_idle_call_add(GtkWidget *widget, int priority, std::function<void()> function);
