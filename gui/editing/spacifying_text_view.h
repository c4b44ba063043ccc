#pragma once
// A multi-line text field with the rules of the one-line field (spacifying_entry.h), except that
// line feeds are kept. Tab moves the focus.

#include <gtk/gtk.h>

#include "base/owned.h"

#define V_TYPE_SPACIFYING_TEXT_VIEW (v_spacifying_text_view_get_type())
G_DECLARE_FINAL_TYPE(VSpacifyingTextView, v_spacifying_text_view, V, SPACIFYING_TEXT_VIEW,
                     GtkTextView)

GtkWidget *v_spacifying_text_view_new();
void v_spacifying_text_view_set_text(VSpacifyingTextView *view, const char *latin1_text);
// The text (ISO-8859-1) with both ends stripped and tabs replaced by spaces; null with a message
// when it cannot be read.
OwnedText v_spacifying_text_view_get_text(VSpacifyingTextView *view);
