#pragma once
// Labels, packed without expanding, with the conventions of gui/widgets.h.

#include <gtk/gtk.h>

#include "base/owned.h"
#include "gui/widget_options.h"

// The markup of an input field's label: the label (plain text), a colon and, for a required field,
// a pale "(Required)" in italics.
OwnedText v_util_format_input_field_label_markup(const char *label, Required required);
GtkLabel *v_gui_create_label_for_input_field(const char *label, Required required, float x_align,
                                             float y_align);
GtkLabel *v_gui_pack_label_for_input_field(GtkBox *box, const char *label, Required required,
                                           float x_align, float y_align);
// Wraps the text of a label only if one of its lines has more than widest_line characters or would
// make the window wider than the screen; reserved_width: pixels that the rest of the window takes.
// The width of the label is then fixed, because otherwise the toolkit would keep the window as high
// as the narrowest form of the text needs.
void v_gui_wrap_overlong_label(GtkLabel *label, int widest_line, int reserved_width);
// Plain text: markup is shown literally.
GtkLabel *v_gui_pack_label(GtkBox *box, const char *text, float x_align, float y_align);
GtkLabel *v_gui_pack_label_with_markup(GtkBox *box, const char *markup, float x_align,
                                       float y_align);
// Replaces the frame's label; null removes it.
void v_gui_set_frame_label_markup(GtkFrame *frame, const char *markup);
