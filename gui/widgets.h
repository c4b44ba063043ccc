#pragma once
// The widgets that all windows are built from, with the program's defaults: a margin and a spacing
// of 8 pixels and no emoji input. Labels, text fields and lists have headers of their own:
// gui/labels.h, gui/text_fields.h and gui/lists.h. For all of them:
//
//   v_gui_create_<x>  creates a widget and shows it;
//   v_gui_add_<x>     creates it and adds it to a container;
//   v_gui_pack_<x>    creates it and packs it at the start of a box. Expand: whether the widget
//                     expands and fills; functions without this argument say which they do.
//
// Results are borrowed: containers own their children, and a widget that was only created has the
// toolkit's floating reference (windows and dialogs are freed with gtk_widget_destroy). Texts are
// UTF-8. Alignments range from 0 (left, top) to 1, scales from 0 (natural size) to 1 (all the
// space); sizes are in pixels, and -1 leaves a dimension unset. Windows are not shown here.

#include <gtk/gtk.h>

#include "gui/widget_options.h"

// 8 pixels.
int v_gui_get_default_margin();

// Windows. Not shown; title: null sets none.
GtkWindow *v_gui_create_window(const char *title);
// Modal and destroyed with its parent. The buttons share the width of the dialog, and the dialog's
// own areas have no borders.
GtkDialog *v_gui_create_dialog(const char *title, VButtonSet button_set);
// Like gtk_dialog_add_button, but with a VAnsweringButton. label: a text in which an underscore
// marks the mnemonic, or the name of one of the toolkit's stock items.
GtkButton *v_gui_add_dialog_button(GtkDialog *dialog, const char *label, int response);

// Boxes, none of them homogeneous.
GtkBox *v_gui_create_vbox(Spacing spacing);
GtkBox *v_gui_add_vbox(GtkContainer *container, Spacing spacing);
GtkBox *v_gui_pack_vbox(GtkBox *box, Expand expand, Spacing spacing);
GtkBox *v_gui_pack_hbox(GtkBox *box, Expand expand, Spacing spacing);
// A vertical box that scrolls when its content is higher than the screen.
GtkBox *v_gui_pack_scrolling_vbox(GtkBox *box, Expand expand, Spacing spacing);
// The same, not expanding, for a window that also has a list: each of the two gets the space that
// the other does not need, but never shrinks below its minimum height.
GtkBox *v_gui_pack_yielding_vbox(GtkBox *box, Spacing spacing);
// Packs an alignment and returns the box inside it.
GtkBox *v_gui_pack_hbox_in_alignment(GtkBox *box, Expand expand, Spacing spacing, float x_align,
                                     float y_align, float x_scale, float y_scale);
// Packs a frame with the label of an input field and returns the box inside it, which has the
// default margin.
GtkBox *v_gui_pack_vbox_in_frame_with_input_field_label(GtkBox *box, Expand expand,
                                                        const char *label, Required required,
                                                        Spacing spacing);
// Packs an empty area as a spacer, not expanding.
void v_gui_pack_space(GtkBox *box, int width, int height);

// Buttons. label: null creates an empty button, which can have any child. To make a button the
// default, its box must already be inside the window.
GtkButton *v_gui_create_button(const char *label);
GtkButton *v_gui_pack_button(GtkBox *box, const char *label, MakeDefault make_default);
// Packs an alignment (expanding as given) and returns the button inside it.
GtkButton *v_gui_pack_button_in_alignment(GtkBox *box, Expand expand, const char *label,
                                          MakeDefault make_default, float x_align, float y_align,
                                          float x_scale, float y_scale);
// Packs "OK", the window's default button, connected to the callback, and, at the right end of the
// row, "Cancel", which destroys the window. Returns the "OK" button.
GtkButton *v_gui_pack_ok_and_cancel(GtkBox *row, GtkWindow *window, GCallback ok_callback,
                                    void *user_data);
GtkAlignment *v_gui_create_alignment_for_widget(float x_align, float y_align, float x_scale,
                                                float y_scale, GtkWidget *child);

// Tables, with the default spacing between rows and columns, and combo boxes.
GtkTable *v_gui_create_table(guint rows, guint columns, Homogeneous homogeneous);
GtkComboBoxText *v_gui_create_combo_box_text();

// Images, packed without expanding, and drawing.
GtkImage *v_gui_pack_image_from_icon_name(GtkBox *box, const char *icon_name,
                                          GtkIconSize icon_size);
GtkDrawingArea *v_gui_add_drawing_area(GtkContainer *container);

// Geometry and state of any widget.
//
// The margin is inside a container (its border width) but outside any other widget.
void v_gui_set_surrounding_margin(GtkWidget *widget, int margin);
void v_gui_set_default_surrounding_margin(GtkWidget *widget);
void v_gui_set_margins(GtkWidget *widget, int top, int right, int bottom, int left);
void v_gui_set_box_spacing(GtkBox *box, int spacing);
// State 0 is sensitive, any other is not.
void v_gui_set_sensitivity(GtkWidget *widget, int state);
// Gives the widget the focus without selecting text, moving a text cursor or selecting a row.
void v_gui_grab_focus_without_selecting(GtkWidget *widget);
// Shrinks the window to its minimum size, unless it is maximised, full screen or not yet realised.
void v_gui_resize_window_to_minimum_unless_maximized(GtkWindow *window);

// Menus.
//
// The data (borrowed) is attached to the item as "vantorelle_menu_item_data"; sensitivity_state is
// that of v_gui_set_sensitivity; the callback is connected to "activate" with the user data.
GtkMenuItem *v_gui_menu_create_item_with_activate_callback(const char *label, void *data,
                                                           int sensitivity_state,
                                                           GCallback callback, void *user_data);
GtkSeparatorMenuItem *v_gui_menu_create_separator();
