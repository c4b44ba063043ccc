#include "gui/labels.h"

#include <algorithm>
#include <cstring>

#include "gui/placing.h"
#include "gui/screen_area.h"

namespace {

constexpr const char *required_suffix = " <span style=\"italic\" alpha=\"50%\">(Required)</span>";

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

glong count_characters_of_longest_line(const char *text) {
  glong longest = 0;
  for (const char *line = text; line != nullptr;) {
    const char *end = std::strchr(line, '\n');
    longest = std::max(longest, g_utf8_strlen(line, end == nullptr ? -1 : end - line));
    line = end == nullptr ? nullptr : end + 1;
  }
  return longest;
}

// A hyphen at the end of a line could be mistaken for part of a path.
void forbid_hyphens(GtkLabel *label) {
  const Owned<PangoAttrList, pango_attr_list_unref> attributes(pango_attr_list_new());
  pango_attr_list_insert(attributes.get(), pango_attr_insert_hyphens_new(FALSE));
  gtk_label_set_attributes(label, attributes.get());
}

} // namespace

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

void v_gui_set_frame_label_markup(GtkFrame *frame, const char *markup) {
  GtkLabel *label = markup == nullptr ? nullptr : create_label_with_markup(markup, 0.5f, 0.5f);
  gtk_frame_set_label_widget(frame, label == nullptr ? nullptr : GTK_WIDGET(label));
}
