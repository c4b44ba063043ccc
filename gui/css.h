#pragma once
// Style sheets for single widgets. The texts are constants of the program; the toolkit prints a
// warning for one that does not parse.

#include <gtk/gtk.h>

#include "gui/owned_objects.h"

// A new provider loaded from a style sheet (UTF-8).
OwnedObject<GtkCssProvider> v_css_create_provider(const char *css);
// Applies a style sheet (UTF-8) to this widget only, not to its children, at the toolkit's
// application priority.
void v_css_style_widget(GtkWidget *widget, const char *css);
