#include "gui/message_dialogs.h"

#include "base/error.h"
#include "base/text_buffer.h"
#include "gui/accessibility.h"
#include "gui/key_guard.h"
#include "gui/labels.h"
#include "gui/owned_objects.h"
#include "gui/widgets.h"

namespace {

constexpr MessageKind info_kind = {"Message", nullptr, VButtonSet::ok};
constexpr MessageKind error_kind = {"Error", "dialog-error", VButtonSet::close};
constexpr MessageKind warning_kind = {"Warning", "dialog-warning", VButtonSet::close};
constexpr MessageKind question_kind = {"Question", "dialog-question", VButtonSet::none};

// The program's own lines are shorter; a long path or a text from a file may be longer.
constexpr int widest_line = 120; // characters

// Width in pixels of icon, margins, scroll bar and window border.
constexpr int width_beside_message = 150;

struct ScrollKey {
  guint key;
  guint keypad_key;
  // The distance that the key scrolls.
  int steps, pages, texts;
};

const ScrollKey scroll_keys[] = {
    {GDK_KEY_Up, GDK_KEY_KP_Up, -1, 0, 0},
    {GDK_KEY_Down, GDK_KEY_KP_Down, 1, 0, 0},
    {GDK_KEY_Page_Up, GDK_KEY_KP_Page_Up, 0, -1, 0},
    {GDK_KEY_Page_Down, GDK_KEY_KP_Page_Down, 0, 1, 0},
    {GDK_KEY_Home, GDK_KEY_KP_Home, 0, 0, -1},
    {GDK_KEY_End, GDK_KEY_KP_End, 0, 0, 1},
};

bool can_scroll(GtkAdjustment *adjustment) {
  return gtk_adjustment_get_upper(adjustment) > gtk_adjustment_get_page_size(adjustment);
}

// The adjustment clamps the value.
void scroll(GtkAdjustment *adjustment, const ScrollKey &row) {
  gtk_adjustment_set_value(adjustment,
                           gtk_adjustment_get_value(adjustment) +
                               row.steps * gtk_adjustment_get_step_increment(adjustment) +
                               row.pages * gtk_adjustment_get_page_increment(adjustment) +
                               row.texts * gtk_adjustment_get_upper(adjustment));
}

// "key-press-event" of the dialog, wherever the focus is. The text handles keys with Shift or
// Control.
gboolean scroll_key_callback(GtkWidget *, GdkEventKey *event, GtkScrolledWindow *scroller) {
  GtkAdjustment *adjustment = gtk_scrolled_window_get_vadjustment(scroller);
  if ((event->state & gtk_accelerator_get_default_mod_mask()) != 0 || !can_scroll(adjustment)) {
    return GDK_EVENT_PROPAGATE;
  }
  for (const ScrollKey &row : scroll_keys) {
    if (event->keyval == row.key || event->keyval == row.keypad_key) {
      scroll(adjustment, row);
      return GDK_EVENT_STOP;
    }
  }
  return GDK_EVENT_PROPAGATE;
}

// The text scrolls, so that the buttons remain visible below a text that is higher than the screen.
void pack_message(GtkDialog *dialog, GtkBox *box, const char *text) {
  GtkBox *text_box = v_gui_pack_scrolling_vbox(box, Expand::yes, Spacing::standard);
  GtkLabel *label = v_gui_pack_label(text_box, text, 0.0f, 0.0f);
  v_gui_wrap_overlong_label(label, widest_line, width_beside_message);
  gtk_label_set_selectable(label, TRUE); // so that the user can copy it
  GtkWidget *scroller = gtk_widget_get_ancestor(GTK_WIDGET(text_box), GTK_TYPE_SCROLLED_WINDOW);
  g_signal_connect_object(dialog, "key-press-event", G_CALLBACK(scroll_key_callback), scroller,
                          GConnectFlags{});
}

GtkDialog *create_dialog(const char *title, const char *icon_name, const char *text,
                         VButtonSet button_set) {
  GtkDialog *dialog = v_gui_create_dialog(title, button_set);
  GtkBox *box =
      v_gui_pack_hbox(GTK_BOX(gtk_dialog_get_content_area(dialog)), Expand::yes, Spacing::standard);
  if (icon_name != nullptr) {
    GtkBox *icon_box = v_gui_pack_vbox(box, Expand::no, Spacing::standard);
    v_gui_pack_image_from_icon_name(icon_box, icon_name, GTK_ICON_SIZE_DIALOG);
  }
  v_gui_set_box_spacing(box, icon_name != nullptr ? 20 : 25);
  v_gui_set_margins(GTK_WIDGET(box), 20, 25, 20, icon_name != nullptr ? 20 : 25);
  pack_message(dialog, box, text);
  v_gui_set_accessible_message(GTK_WIDGET(dialog), text);
  return dialog;
}

int run_dialog_of_kind(VWindowStack *window_stack, const MessageKind *kind, const char *text) {
  return v_message_run_and_destroy_dialog(
      window_stack, create_dialog(kind->title, kind->icon_name, text, kind->button_set));
}

// Without this, the first button gets the focus, which may not be the safe one.
void focus_default_button(GtkDialog *dialog) {
  if (GtkWidget *button = gtk_window_get_default_widget(GTK_WINDOW(dialog))) {
    gtk_widget_grab_focus(button);
  }
}

} // namespace

const MessageKind *const info_message = &info_kind;
const MessageKind *const error_message = &error_kind;
const MessageKind *const warning_message = &warning_kind;
const MessageKind *const question_message = &question_kind;

int v_message_show(VWindowStack *window_stack, const char *text) {
  return run_dialog_of_kind(window_stack, info_message, text);
}

void v_message_show_utf8_printf(VWindowStack *window_stack, const char *format, ...) {
  V_FORMAT_ARGUMENTS(text, format);
  v_message_show(window_stack, text.get());
}

int v_message_show_error(VWindowStack *window_stack, const char *text) {
  return run_dialog_of_kind(window_stack, error_message, text);
}

void v_message_show_error_utf8_printf(VWindowStack *window_stack, const char *format, ...) {
  V_FORMAT_ARGUMENTS(text, format);
  v_message_show_error(window_stack, text.get());
}

int v_message_show_unknown_error(VWindowStack *window_stack) {
  return v_message_show_error(window_stack, v_error_message_unknown);
}

int v_message_show_warning(VWindowStack *window_stack, const char *text) {
  return run_dialog_of_kind(window_stack, warning_message, text);
}

void v_message_show_warning_utf8_printf(VWindowStack *window_stack, const char *format, ...) {
  V_FORMAT_ARGUMENTS(text, format);
  v_message_show_warning(window_stack, text.get());
}

int v_message_ask_yes_no_question(VWindowStack *window_stack, int default_answer,
                                  WarningIcon warning_icon, const char *text) {
  const MessageKind *icon_kind =
      warning_icon == WarningIcon::yes ? warning_message : question_message;
  GtkDialog *dialog =
      create_dialog(question_message->title, icon_kind->icon_name, text, VButtonSet::yes_no);
  gtk_dialog_set_default_response(dialog, default_answer != 0 ? GTK_RESPONSE_YES : GTK_RESPONSE_NO);
  switch (v_message_run_and_destroy_dialog(window_stack, dialog)) {
  case GTK_RESPONSE_YES:
    return 1;
  case GTK_RESPONSE_NO:
    return 0;
  default:
    return default_answer;
  }
}

int v_message_ask_yes_no_question_utf8_printf(VWindowStack *window_stack, int default_answer,
                                              WarningIcon warning_icon, const char *format, ...) {
  V_FORMAT_ARGUMENTS(text, format);
  return v_message_ask_yes_no_question(window_stack, default_answer, warning_icon, text.get());
}

GtkDialog *v_message_create_question_dialog(const char *title, const char *text) {
  return create_dialog(title == nullptr ? question_message->title : title,
                       question_message->icon_name, text, question_message->button_set);
}

GtkDialog *v_message_create_question_dialog_utf8_printf(const char *title, const char *format,
                                                        ...) {
  V_FORMAT_ARGUMENTS(text, format);
  return v_message_create_question_dialog(title, text.get());
}

int v_message_run_and_destroy_dialog(VWindowStack *window_stack, GtkDialog *dialog) {
  // The dialog is destroyed while it runs if the window below it is destroyed.
  const OwnedObject<GtkDialog> held = share(dialog);
  if (window_stack != nullptr) {
    v_window_stack_push_window(window_stack, GTK_WINDOW(dialog));
  }
  focus_default_button(dialog);
  v_key_guard_shield(GTK_WINDOW(dialog));
  const int response = gtk_dialog_run(dialog);
  gtk_widget_destroy(GTK_WIDGET(dialog));
  if (window_stack != nullptr) {
    v_window_stack_pop_window(window_stack);
  }
  return response;
}
