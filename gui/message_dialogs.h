#pragma once
// Shows a message or asks a yes/no question in a modal dialog, which is pushed onto the window
// stack while it runs. Texts are plain UTF-8: markup is shown literally, line breaks are kept and
// overlong lines wrap. The text can be selected and copied; if it is higher than its area, Up,
// Down, Page Up, Page Down, Home and End scroll it. window_stack: null runs the dialog without
// pushing it. Responses are the toolkit's (GTK_RESPONSE_...).

#include <gtk/gtk.h>

#include "gui/widget_options.h"
#include "gui/window_stack.h"

enum class WarningIcon { no, yes };

struct MessageKind {
  const char *title = nullptr;
  const char *icon_name = nullptr; // null for none
  VButtonSet button_set = VButtonSet::none;
};

extern const MessageKind *const info_message;
extern const MessageKind *const error_message;
extern const MessageKind *const warning_message;
extern const MessageKind *const question_message;

int v_message_show(VWindowStack *window_stack, const char *text);
void v_message_show_utf8_printf(VWindowStack *window_stack, const char *format, ...)
    G_GNUC_PRINTF(2, 3);
int v_message_show_error(VWindowStack *window_stack, const char *text);
void v_message_show_error_utf8_printf(VWindowStack *window_stack, const char *format, ...)
    G_GNUC_PRINTF(2, 3);
// Shows the text of v_error_message_unknown.
int v_message_show_unknown_error(VWindowStack *window_stack);
int v_message_show_warning(VWindowStack *window_stack, const char *text);
void v_message_show_warning_utf8_printf(VWindowStack *window_stack, const char *format, ...)
    G_GNUC_PRINTF(2, 3);

// Returns 1 for yes, 0 for no, or the default answer when the dialog is closed in any other way.
// The button of the default answer has the initial focus. A question about losing data should have
// the warning icon and the default answer 0.
int v_message_ask_yes_no_question(VWindowStack *window_stack, int default_answer,
                                  WarningIcon warning_icon, const char *text);
int v_message_ask_yes_no_question_utf8_printf(VWindowStack *window_stack, int default_answer,
                                              WarningIcon warning_icon, const char *format, ...)
    G_GNUC_PRINTF(4, 5);

// Creates a question without buttons: add them with v_gui_add_dialog_button, make the safe one the
// default with gtk_dialog_set_default_response, then call v_message_run_and_destroy_dialog. title:
// null gives "Question".
GtkDialog *v_message_create_question_dialog(const char *title, const char *text);
GtkDialog *v_message_create_question_dialog_utf8_printf(const char *title, const char *format, ...)
    G_GNUC_PRINTF(2, 3);
// Runs any dialog modally, destroys it and returns the response. The default button, if there is
// one, has the initial focus.
int v_message_run_and_destroy_dialog(VWindowStack *window_stack, GtkDialog *dialog);
