#include "gui/widgets.h"

#include <algorithm>
#include <cstring>

#include "gui/answering_button.h"
#include "gui/css.h"
#include "gui/height_capped_scroller.h"
#include "gui/list_place.h"
#include "gui/list_scroller.h"
#include "gui/owned_objects.h"
#include "gui/placing.h"
#include "gui/screen_area.h"

namespace {

constexpr int default_margin = 8;
constexpr int default_spacing = 8;
constexpr const char *dialog_css =
    "dialog { -GtkDialog-action-area-border: 0px; -GtkDialog-content-area-border: 0px }";
// Themes draw the row with the focus so faintly that it is overlooked where no row is selected.
constexpr const char *list_css =
    "treeview { outline-style: solid; outline-color: alpha(currentColor, 0.6); }";
constexpr const char *required_suffix = " <span style=\"italic\" alpha=\"50%\">(Required)</span>";

GtkBox *create_box(GtkOrientation orientation, Spacing spacing) {
  const int pixels = spacing == Spacing::standard ? default_spacing : 0;
  return GTK_BOX(shown(gtk_box_new(orientation, pixels)));
}

GtkLabel *create_label(const char *text, float x_align, float y_align) {
  GtkLabel *label = GTK_LABEL(shown(gtk_label_new(text)));
  gtk_label_set_xalign(label, x_align);
  gtk_label_set_yalign(label, y_align);
  return label;
}

GtkLabel *create_label_with_markup(const char *markup, float x_align, float y_align) {
  GtkLabel *label = create_label(nullptr, x_align, y_align);
  gtk_label_set_markup(label, markup);
  return label;
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

// "close" of a dialog, emitted for Escape. The toolkit's own handler closes the window later, and
// with a key that repeats before that it would close a dialog that no longer exists.
void dialog_close_callback(GtkDialog *dialog, void *) {
  g_signal_stop_emission_by_name(dialog, "close");
  gtk_dialog_response(dialog, GTK_RESPONSE_DELETE_EVENT);
}

glong count_characters_of_longest_line(const char *text) {
  glong longest = 0;
  for (const char *line = text; line != nullptr;) {
    const char *end = std::strchr(line, '\n');
    longest = std::max(longest, g_utf8_strlen(line, end == nullptr ? -1 : end - line));
    line = end == nullptr ? nullptr : end + 1;
  }
  return longest;
}

void set_up_scrolled_window(GtkScrolledWindow *scrolled_window, int width, int height) {
  gtk_scrolled_window_set_overlay_scrolling(scrolled_window, FALSE);
  gtk_widget_set_size_request(GTK_WIDGET(scrolled_window), width, height);
}

// A hyphen at the end of a line could be read as a part of a path.
void forbid_hyphens(GtkLabel *label) {
  const Owned<PangoAttrList, pango_attr_list_unref> attributes(pango_attr_list_new());
  pango_attr_list_insert(attributes.get(), pango_attr_insert_hyphens_new(FALSE));
  gtk_label_set_attributes(label, attributes.get());
}

GtkInputHints without_emojis(GtkInputHints hints) {
  return static_cast<GtkInputHints>((hints & ~GTK_INPUT_HINT_EMOJI) | GTK_INPUT_HINT_NO_EMOJI);
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
  // The focused widget scrolls into view.
  gtk_container_set_focus_vadjustment(
      GTK_CONTAINER(inner_box), gtk_scrolled_window_get_vadjustment(GTK_SCROLLED_WINDOW(scroller)));
  return inner_box;
}

GtkBox *v_gui_pack_yielding_vbox(GtkBox *box, Spacing spacing) {
  GtkBox *inner_box = v_gui_pack_scrolling_vbox(box, Expand::no, spacing);
  GtkWidget *scroller =
      gtk_widget_get_ancestor(GTK_WIDGET(inner_box), V_TYPE_HEIGHT_CAPPED_SCROLLER);
  v_height_capped_scroller_set_least_height(V_HEIGHT_CAPPED_SCROLLER(scroller),
                                            v_screen_area_get_least_height(scroller));
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

void v_gui_set_frame_label_markup(GtkFrame *frame, const char *markup) {
  GtkLabel *label = markup == nullptr ? nullptr : create_label_with_markup(markup, 0.5f, 0.5f);
  gtk_frame_set_label_widget(frame, label == nullptr ? nullptr : GTK_WIDGET(label));
}

void v_gui_pack_space(GtkBox *box, int width, int height) {
  GtkAlignment *space = pack_alignment(box, Expand::no, 0.0f, 0.0f, 0.0f, 0.0f);
  gtk_widget_set_size_request(GTK_WIDGET(space), width, height);
}

OwnedText v_util_format_input_field_label_markup(const char *label, Required required) {
  const OwnedText escaped_label(g_markup_escape_text(label, -1));
  return OwnedText(g_strdup_printf("%s:%s", escaped_label.get(),
                                   required == Required::yes ? required_suffix : ""));
}

GtkLabel *v_gui_create_label_for_input_field(const char *label, Required required, float x_align,
                                             float y_align) {
  return create_label_with_markup(v_util_format_input_field_label_markup(label, required).get(),
                                  x_align, y_align);
}

GtkLabel *v_gui_pack_label_for_input_field(GtkBox *box, const char *label, Required required,
                                           float x_align, float y_align) {
  return packed(box, Expand::no,
                v_gui_create_label_for_input_field(label, required, x_align, y_align));
}

void v_gui_wrap_overlong_label(GtkLabel *label, int widest_line, int reserved_width) {
  GtkWidget *widget = GTK_WIDGET(label);
  int width = 0;
  gtk_widget_get_preferred_width(widget, nullptr, &width);
  if (count_characters_of_longest_line(gtk_label_get_text(label)) <= widest_line &&
      width <= v_screen_area_get(widget).width - reserved_width) {
    return;
  }
  const int room = v_screen_area_count_characters(widget, 0, reserved_width);
  gtk_label_set_line_wrap(label, TRUE);
  gtk_label_set_line_wrap_mode(label, PANGO_WRAP_WORD_CHAR);
  gtk_label_set_width_chars(label, std::min(widest_line, room));
  gtk_label_set_max_width_chars(label, std::min(widest_line, room));
  forbid_hyphens(label);
}

GtkLabel *v_gui_pack_label(GtkBox *box, const char *text, float x_align, float y_align) {
  return packed(box, Expand::no, create_label(text, x_align, y_align));
}

GtkLabel *v_gui_pack_label_with_markup(GtkBox *box, const char *markup, float x_align,
                                       float y_align) {
  return packed(box, Expand::no, create_label_with_markup(markup, x_align, y_align));
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

GtkEntry *v_gui_create_entry(const char *text, ActivatesDefault activates_default) {
  GtkEntry *entry = GTK_ENTRY(shown(gtk_entry_new()));
  v_gui_disable_emojis_in_entry(entry);
  if (text != nullptr) {
    v_gui_set_entry_text(entry, text);
  }
  gtk_entry_set_activates_default(entry, activates_default == ActivatesDefault::yes);
  return entry;
}

GtkEntry *v_gui_pack_entry(GtkBox *box, Expand expand, const char *text,
                           ActivatesDefault activates_default) {
  return packed(box, expand, v_gui_create_entry(text, activates_default));
}

void v_gui_set_entry_text(GtkEntry *entry, const char *text) { gtk_entry_set_text(entry, text); }

const char *v_gui_get_entry_text(GtkEntry *entry) { return gtk_entry_get_text(entry); }

GtkTextView *v_gui_add_text_view(GtkContainer *container, Editable editable) {
  GtkTextView *text_view = GTK_TEXT_VIEW(shown(gtk_text_view_new()));
  gtk_text_view_set_wrap_mode(text_view, GTK_WRAP_WORD);
  gtk_text_view_set_editable(text_view, editable == Editable::yes);
  gtk_text_view_set_cursor_visible(text_view, editable == Editable::yes);
  v_gui_disable_emojis_in_text_view(text_view);
  return added(container, text_view);
}

void v_gui_disable_emojis_in_entry(GtkEntry *entry) {
  g_object_set(entry, "show-emoji-icon", FALSE, nullptr);
  gtk_entry_set_input_hints(entry, without_emojis(gtk_entry_get_input_hints(entry)));
}

void v_gui_disable_emojis_in_text_view(GtkTextView *text_view) {
  gtk_text_view_set_input_hints(text_view,
                                without_emojis(gtk_text_view_get_input_hints(text_view)));
}

GtkScrolledWindow *v_gui_create_scrolled_window(int width, int height,
                                                GtkPolicyType horizontal_policy,
                                                GtkPolicyType vertical_policy,
                                                GtkShadowType shadow) {
  GtkScrolledWindow *scrolled_window =
      GTK_SCROLLED_WINDOW(shown(gtk_scrolled_window_new(nullptr, nullptr)));
  set_up_scrolled_window(scrolled_window, width, height);
  gtk_scrolled_window_set_policy(scrolled_window, horizontal_policy, vertical_policy);
  gtk_scrolled_window_set_shadow_type(scrolled_window, shadow);
  return scrolled_window;
}

GtkScrolledWindow *v_gui_pack_list_scrolled_window(GtkBox *box, int width, int height) {
  auto *scrolled_window = GTK_SCROLLED_WINDOW(shown(v_list_scroller_new()));
  set_up_scrolled_window(scrolled_window, width, height);
  gtk_scrolled_window_set_policy(scrolled_window, GTK_POLICY_NEVER, GTK_POLICY_AUTOMATIC);
  gtk_scrolled_window_set_shadow_type(scrolled_window, GTK_SHADOW_IN);
  return packed(box, Expand::yes, scrolled_window);
}

GtkScrolledWindow *v_gui_pack_scrolled_window(GtkBox *box, int width, int height,
                                              GtkPolicyType horizontal_policy,
                                              GtkPolicyType vertical_policy, GtkShadowType shadow) {
  return packed(
      box, Expand::yes,
      v_gui_create_scrolled_window(width, height, horizontal_policy, vertical_policy, shadow));
}

GtkTreeView *v_gui_create_tree_view(HeadersVisible headers_visible, FixedHeight fixed_height,
                                    SelectionMode selection_mode) {
  GtkTreeView *tree_view = GTK_TREE_VIEW(shown(gtk_tree_view_new()));
  v_css_style_widget(GTK_WIDGET(tree_view), list_css);
  gtk_tree_view_set_headers_visible(tree_view, headers_visible == HeadersVisible::yes);
  gtk_tree_view_set_fixed_height_mode(tree_view, fixed_height == FixedHeight::yes);
  if (selection_mode == SelectionMode::multiple) {
    gtk_tree_selection_set_mode(gtk_tree_view_get_selection(tree_view), GTK_SELECTION_MULTIPLE);
  }
  return tree_view;
}

GtkTreeView *v_gui_add_tree_view(GtkContainer *container, HeadersVisible headers_visible,
                                 FixedHeight fixed_height, SelectionMode selection_mode) {
  return added(container, v_gui_create_tree_view(headers_visible, fixed_height, selection_mode));
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
