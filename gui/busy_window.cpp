#include "gui/busy_window.h"

#include "base/owned.h"
#include "gui/css.h"
#include "gui/labels.h"
#include "gui/widgets.h"

namespace {

void shrink_to_fit(GtkWindow *window) { gtk_window_resize(window, 1, 1); }

// "destroy" of the window, by the stack or together with its parent.
void destroy_callback(GtkWidget *, VBusyRecord *busy) {
  v_busy_window_disconnect(busy);
  *busy = VBusyRecord{.abort_requested = busy->abort_requested};
}

// "clicked" of the abort button.
void abort_clicked_callback(GtkWidget *button, VBusyRecord *busy) {
  busy->abort_requested = 1;
  gtk_widget_set_sensitive(button, FALSE);
  v_util_let_through_gtk_events();
}

void build_window(VBusyRecord *busy) {
  busy->window = v_gui_create_window(nullptr);
  gtk_window_set_decorated(busy->window, FALSE);
  gtk_window_set_position(busy->window, GTK_WIN_POS_CENTER_ALWAYS);
  v_css_style_widget(GTK_WIDGET(busy->window), "* { background: #000000 }");
  v_gui_set_surrounding_margin(GTK_WIDGET(busy->window), 1);
  g_signal_connect(busy->window, "destroy", G_CALLBACK(destroy_callback), busy);
  // The window closes only when the task ends.
  g_signal_connect(busy->window, "delete-event", G_CALLBACK(gtk_true), busy);
}

void build_content(VBusyRecord *busy) {
  GtkWidget *area = gtk_event_box_new();
  v_css_style_widget(area, "* { background: #ffffff }");
  gtk_container_add(GTK_CONTAINER(busy->window), area);
  GtkBox *columns = GTK_BOX(gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 0));
  gtk_container_add(GTK_CONTAINER(area), GTK_WIDGET(columns));
  v_gui_pack_space(columns, 20, 1);
  GtkBox *rows = v_gui_pack_vbox(columns, Expand::yes, Spacing::none);
  v_gui_pack_space(columns, 20, 1);
  v_gui_pack_space(rows, 1, 20);
  busy->content_box = v_gui_pack_vbox(rows, Expand::yes, Spacing::none);
  v_gui_set_box_spacing(busy->content_box, 15);
  v_gui_pack_space(rows, 280, 20);
  busy->message_label = v_gui_pack_label(busy->content_box, "", 0.5f, 0.5f);
}

void build_abort_button(VBusyRecord *busy) {
  busy->abort_button = v_gui_pack_button_in_alignment(busy->content_box, Expand::no, "Abort",
                                                      MakeDefault::no, 0.5f, 0.0f, 0.0f, 0.0f);
  busy->abort_button_alignment =
      GTK_ALIGNMENT(gtk_widget_get_parent(GTK_WIDGET(busy->abort_button)));
  g_signal_connect(busy->abort_button, "clicked", G_CALLBACK(abort_clicked_callback), busy);
}

} // namespace

// Builds a white area in a black frame one pixel wide, with the content in the middle.
void v_busy_window_build(VBusyRecord *busy) {
  build_window(busy);
  build_content(busy);
}

void v_busy_window_disconnect(VBusyRecord *busy) {
  if (busy->window != nullptr) {
    g_signal_handlers_disconnect_by_data(busy->window, busy);
  }
  if (busy->abort_button != nullptr) {
    g_signal_handlers_disconnect_by_data(busy->abort_button, busy);
  }
}

void v_busy_window_set_message(VBusyRecord *busy, const char *message) {
  const char *text = message == nullptr ? "Please wait" : message;
  const OwnedText markup(g_markup_printf_escaped("<b>%s</b>", text));
  gtk_label_set_markup(busy->message_label, markup.get());
  gtk_window_set_title(busy->window, text);
  shrink_to_fit(busy->window);
  v_util_let_through_gtk_events();
}

void v_busy_window_show_abort_button(VBusyRecord *busy) {
  if (busy->abort_button == nullptr) {
    build_abort_button(busy);
  }
  gtk_widget_show(GTK_WIDGET(busy->abort_button_alignment));
  v_util_let_through_gtk_events();
}

void v_busy_window_hide_abort_button(VBusyRecord *busy) {
  if (busy->abort_button == nullptr) {
    return;
  }
  gtk_widget_hide(GTK_WIDGET(busy->abort_button_alignment));
  shrink_to_fit(busy->window);
  v_util_let_through_gtk_events();
}

void v_util_let_through_gtk_events() {
  while (gtk_events_pending()) {
    gtk_main_iteration();
  }
}
