#include "gui/widgets.h"

#include "gui/answering_button.h"
#include "gui/css.h"
#include "gui/height_capped_scroller.h"
#include "gui/labels.h"
#include "gui/list_place.h"
#include "gui/placing.h"
#include "gui/screen_area.h"

namespace {

constexpr int default_margin = 8;
constexpr int default_spacing = 8;
constexpr const char *dialog_css =
    "dialog { -GtkDialog-action-area-border: 0px; -GtkDialog-content-area-border: 0px }";

GtkBox *create_box(GtkOrientation orientation, Spacing spacing) {
  const int pixels = spacing == Spacing::standard ? default_spacing : 0;
  return GTK_BOX(shown(gtk_box_new(orientation, pixels)));
}

GtkAlignment *create_alignment(float x_align, float y_align, float x_scale, float y_scale) {
  return GTK_ALIGNMENT(shown(gtk_alignment_new(x_align, y_align, x_scale, y_scale)));
}

GtkAlignment *pack_alignment(GtkBox *box, Expand expand, float x_align, float y_align,
                             float x_scale, float y_scale) {
  return packed(box, expand, create_alignment(x_align, y_align, x_scale, y_scale));
}

void make_default_if_asked(GtkButton *button, MakeDefault make_default) {
  if (make_default == MakeDefault::yes) {
    gtk_widget_set_can_default(GTK_WIDGET(button), TRUE);
    gtk_widget_grab_default(GTK_WIDGET(button));
  }
}

// "close" of a dialog, emitted for Escape. The toolkit's own handler defers closing the window, and
// when the key repeats it would close a dialog that no longer exists.
void dialog_close_callback(GtkDialog *dialog, void *) {
  g_signal_stop_emission_by_name(dialog, "close");
  gtk_dialog_response(dialog, GTK_RESPONSE_DELETE_EVENT);
}

} // namespace

int v_gui_get_default_margin() { return default_margin; }

GtkWindow *v_gui_create_window(const char *title) {
  GtkWindow *window = GTK_WINDOW(gtk_window_new(GTK_WINDOW_TOPLEVEL));
  if (title != nullptr) {
    gtk_window_set_title(window, title);
  }
  v_gui_set_default_surrounding_margin(GTK_WIDGET(window));
  return window;
}

GtkDialog *v_gui_create_dialog(const char *title, VButtonSet button_set) {
  GtkDialog *dialog = GTK_DIALOG(gtk_dialog_new());
  gtk_window_set_destroy_with_parent(GTK_WINDOW(dialog), TRUE);
  gtk_window_set_modal(GTK_WINDOW(dialog), TRUE);
  if (title != nullptr) {
    gtk_window_set_title(GTK_WINDOW(dialog), title);
  }
  switch (button_set) {
  case VButtonSet::none:
    break;
  case VButtonSet::ok:
    v_gui_add_dialog_button(dialog, "OK", GTK_RESPONSE_OK);
    gtk_dialog_set_default_response(dialog, GTK_RESPONSE_OK);
    break;
  case VButtonSet::close:
    v_gui_add_dialog_button(dialog, "Close", GTK_RESPONSE_CLOSE);
    gtk_dialog_set_default_response(dialog, GTK_RESPONSE_CLOSE);
    break;
  case VButtonSet::yes_no:
    v_gui_add_dialog_button(dialog, "No", GTK_RESPONSE_NO);
    v_gui_add_dialog_button(dialog, "Yes", GTK_RESPONSE_YES);
    gtk_dialog_set_alternative_button_order(dialog, GTK_RESPONSE_YES, GTK_RESPONSE_NO, -1);
    break;
  }
  gtk_button_box_set_layout(GTK_BUTTON_BOX(gtk_dialog_get_action_area(dialog)),
                            GTK_BUTTONBOX_EXPAND);
  v_css_style_widget(GTK_WIDGET(dialog), dialog_css);
  g_signal_connect(dialog, "close", G_CALLBACK(dialog_close_callback), nullptr);
  return dialog;
}

GtkButton *v_gui_add_dialog_button(GtkDialog *dialog, const char *label, int response) {
  GtkButton *button = v_gui_create_button(label);
  gtk_button_set_use_underline(button, TRUE);
  gtk_button_set_use_stock(button, TRUE);
  gtk_widget_set_can_default(GTK_WIDGET(button), TRUE);
  gtk_dialog_add_action_widget(dialog, GTK_WIDGET(button), response);
  return button;
}

GtkBox *v_gui_create_vbox(Spacing spacing) { return create_box(GTK_ORIENTATION_VERTICAL, spacing); }

GtkBox *v_gui_add_vbox(GtkContainer *container, Spacing spacing) {
  return added(container, v_gui_create_vbox(spacing));
}

GtkBox *v_gui_pack_vbox(GtkBox *box, Expand expand, Spacing spacing) {
  return packed(box, expand, v_gui_create_vbox(spacing));
}

GtkBox *v_gui_pack_hbox(GtkBox *box, Expand expand, Spacing spacing) {
  return packed(box, expand, create_box(GTK_ORIENTATION_HORIZONTAL, spacing));
}

GtkBox *v_gui_pack_scrolling_vbox(GtkBox *box, Expand expand, Spacing spacing) {
  GtkWidget *scroller = packed(box, expand, shown(v_height_capped_scroller_new()));
  GtkBox *inner_box = v_gui_add_vbox(GTK_CONTAINER(scroller), spacing);
  // Scrolls the focused widget into view.
  gtk_container_set_focus_vadjustment(
      GTK_CONTAINER(inner_box), gtk_scrolled_window_get_vadjustment(GTK_SCROLLED_WINDOW(scroller)));
  return inner_box;
}

GtkBox *v_gui_pack_yielding_vbox(GtkBox *box, Spacing spacing) {
  GtkBox *inner_box = v_gui_pack_scrolling_vbox(box, Expand::no, spacing);
  GtkWidget *scroller =
      gtk_widget_get_ancestor(GTK_WIDGET(inner_box), V_TYPE_HEIGHT_CAPPED_SCROLLER);
  v_height_capped_scroller_set_minimum_height(V_HEIGHT_CAPPED_SCROLLER(scroller),
                                              v_screen_area_get_minimum_height(scroller));
  return inner_box;
}

GtkBox *v_gui_pack_hbox_in_alignment(GtkBox *box, Expand expand, Spacing spacing, float x_align,
                                     float y_align, float x_scale, float y_scale) {
  GtkAlignment *alignment = pack_alignment(box, expand, x_align, y_align, x_scale, y_scale);
  return added(GTK_CONTAINER(alignment), create_box(GTK_ORIENTATION_HORIZONTAL, spacing));
}

GtkBox *v_gui_pack_vbox_in_frame_with_input_field_label(GtkBox *box, Expand expand,
                                                        const char *label, Required required,
                                                        Spacing spacing) {
  GtkWidget *frame = packed(box, expand, shown(gtk_frame_new(nullptr)));
  v_gui_set_frame_label_markup(GTK_FRAME(frame),
                               v_util_format_input_field_label_markup(label, required).get());
  GtkBox *inner_box = v_gui_add_vbox(GTK_CONTAINER(frame), spacing);
  v_gui_set_default_surrounding_margin(GTK_WIDGET(inner_box));
  return inner_box;
}

void v_gui_pack_space(GtkBox *box, int width, int height) {
  GtkAlignment *space = pack_alignment(box, Expand::no, 0.0f, 0.0f, 0.0f, 0.0f);
  gtk_widget_set_size_request(GTK_WIDGET(space), width, height);
}

GtkButton *v_gui_create_button(const char *label) {
  return GTK_BUTTON(shown(v_answering_button_new(label)));
}

GtkButton *v_gui_pack_button(GtkBox *box, const char *label, MakeDefault make_default) {
  GtkButton *button = packed(box, Expand::no, v_gui_create_button(label));
  make_default_if_asked(button, make_default);
  return button;
}

GtkButton *v_gui_pack_button_in_alignment(GtkBox *box, Expand expand, const char *label,
                                          MakeDefault make_default, float x_align, float y_align,
                                          float x_scale, float y_scale) {
  GtkAlignment *alignment = pack_alignment(box, expand, x_align, y_align, x_scale, y_scale);
  GtkButton *button = added(GTK_CONTAINER(alignment), v_gui_create_button(label));
  make_default_if_asked(button, make_default);
  return button;
}

GtkButton *v_gui_pack_ok_and_cancel(GtkBox *row, GtkWindow *window, GCallback ok_callback,
                                    void *user_data) {
  GtkButton *ok = v_gui_pack_button(row, "OK", MakeDefault::yes);
  g_signal_connect(ok, "clicked", ok_callback, user_data);
  GtkButton *cancel = v_gui_pack_button_in_alignment(row, Expand::yes, "Cancel", MakeDefault::no,
                                                     1.0f, 0.0f, 0.0f, 0.0f);
  g_signal_connect_swapped(cancel, "clicked", G_CALLBACK(gtk_widget_destroy), window);
  return ok;
}

GtkAlignment *v_gui_create_alignment_for_widget(float x_align, float y_align, float x_scale,
                                                float y_scale, GtkWidget *child) {
  GtkAlignment *alignment = create_alignment(x_align, y_align, x_scale, y_scale);
  added(GTK_CONTAINER(alignment), child);
  return alignment;
}

GtkTable *v_gui_create_table(guint rows, guint columns, Homogeneous homogeneous) {
  GtkTable *table = GTK_TABLE(shown(gtk_table_new(rows, columns, homogeneous == Homogeneous::yes)));
  gtk_table_set_row_spacings(table, default_spacing);
  gtk_table_set_col_spacings(table, default_spacing);
  return table;
}

GtkComboBoxText *v_gui_create_combo_box_text() {
  return GTK_COMBO_BOX_TEXT(shown(gtk_combo_box_text_new()));
}

GtkImage *v_gui_pack_image_from_icon_name(GtkBox *box, const char *icon_name,
                                          GtkIconSize icon_size) {
  return packed(box, Expand::no,
                GTK_IMAGE(shown(gtk_image_new_from_icon_name(icon_name, icon_size))));
}

GtkDrawingArea *v_gui_add_drawing_area(GtkContainer *container) {
  return added(container, GTK_DRAWING_AREA(shown(gtk_drawing_area_new())));
}

void v_gui_set_surrounding_margin(GtkWidget *widget, int margin) {
  if (GTK_IS_CONTAINER(widget)) {
    gtk_container_set_border_width(GTK_CONTAINER(widget), static_cast<guint>(margin));
  } else {
    v_gui_set_margins(widget, margin, margin, margin, margin);
  }
}

void v_gui_set_default_surrounding_margin(GtkWidget *widget) {
  v_gui_set_surrounding_margin(widget, default_margin);
}

void v_gui_set_margins(GtkWidget *widget, int top, int right, int bottom, int left) {
  g_object_set(widget, "margin-top", top, "margin-right", right, "margin-bottom", bottom,
               "margin-left", left, nullptr);
}

void v_gui_set_box_spacing(GtkBox *box, int spacing) { gtk_box_set_spacing(box, spacing); }

void v_gui_set_sensitivity(GtkWidget *widget, int state) {
  gtk_widget_set_sensitive(widget, state == 0);
}

void v_gui_grab_focus_without_selecting(GtkWidget *widget) {
  if (GTK_IS_ENTRY(widget)) {
    gtk_entry_grab_focus_without_selecting(GTK_ENTRY(widget));
  } else if (GTK_IS_TREE_VIEW(widget)) {
    v_list_place_grab_focus(GTK_TREE_VIEW(widget));
  } else {
    gtk_widget_grab_focus(widget);
  }
}

void v_gui_resize_window_to_minimum_unless_maximized(GtkWindow *window) {
  GdkWindow *gdk_window = gtk_widget_get_window(GTK_WIDGET(window));
  if (gdk_window != nullptr && (gdk_window_get_state(gdk_window) &
                                (GDK_WINDOW_STATE_MAXIMIZED | GDK_WINDOW_STATE_FULLSCREEN)) == 0) {
    gtk_window_resize(window, 1, 1);
  }
}

GtkMenuItem *v_gui_menu_create_item_with_activate_callback(const char *label, void *data,
                                                           int sensitivity_state,
                                                           GCallback callback, void *user_data) {
  GtkWidget *item = shown(gtk_menu_item_new_with_label(label));
  v_gui_set_sensitivity(item, sensitivity_state);
  g_object_set_data(G_OBJECT(item), "vantorelle_menu_item_data", data);
  g_signal_connect(item, "activate", callback, user_data);
  return GTK_MENU_ITEM(item);
}

GtkSeparatorMenuItem *v_gui_menu_create_separator() {
  return GTK_SEPARATOR_MENU_ITEM(shown(gtk_separator_menu_item_new()));
}
