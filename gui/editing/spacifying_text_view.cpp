#include "gui/editing/spacifying_text_view.h"

#include "base/text_encoding.h"
#include "base/whitespace.h"
#include "gui/editing/latin1_input.h"
#include "gui/text_fields.h"

struct _VSpacifyingTextView {
  GtkTextView parent_instance;

  gulong insert_text_handler; // on the buffer
};

G_DEFINE_TYPE(VSpacifyingTextView, v_spacifying_text_view, GTK_TYPE_TEXT_VIEW)

namespace {

// "insert-text" of the buffer, before the toolkit inserts typed or pasted text. Moves the place to
// the end of the text.
void insert_text_callback(GtkTextBuffer *buffer, GtkTextIter *place, const char *text, int length,
                          void *) {
  v_latin1_input_repair_insertion(buffer, text, length, InputLines::several,
                                  [buffer, place](const char *repaired) {
                                    gtk_text_buffer_insert(buffer, place, repaired, -1);
                                  });
}

// Tab moves the focus; a plain text view would insert it.
gboolean key_press_event_callback(GtkWidget *widget, GdkEventKey *event) {
  auto *text_view_class = GTK_WIDGET_CLASS(v_spacifying_text_view_parent_class);
  if (event->keyval != GDK_KEY_Tab && event->keyval != GDK_KEY_KP_Tab) {
    return text_view_class->key_press_event(widget, event);
  }
  auto *above = GTK_WIDGET_CLASS(g_type_class_peek_parent(text_view_class));
  return above->key_press_event == nullptr || above->key_press_event(widget, event);
}

} // namespace

static void v_spacifying_text_view_class_init(VSpacifyingTextViewClass *klass) {
  GTK_WIDGET_CLASS(klass)->key_press_event = key_press_event_callback;
}

static void v_spacifying_text_view_init(VSpacifyingTextView *view) {
  v_gui_disable_emojis_in_text_view(GTK_TEXT_VIEW(view));
  // Shift+Tab has another key symbol and would otherwise insert a tab.
  gtk_text_view_set_accepts_tab(GTK_TEXT_VIEW(view), FALSE);
}

GtkWidget *v_spacifying_text_view_new() {
  auto *view = V_SPACIFYING_TEXT_VIEW(g_object_new(V_TYPE_SPACIFYING_TEXT_VIEW, nullptr));
  view->insert_text_handler =
      g_signal_connect(gtk_text_view_get_buffer(GTK_TEXT_VIEW(view)), "insert-text",
                       G_CALLBACK(insert_text_callback), nullptr);
  return GTK_WIDGET(view);
}

void v_spacifying_text_view_set_text(VSpacifyingTextView *view, const char *latin1_text) {
  const OwnedText utf8_text = v_convert_latin1_to_utf8(latin1_text);
  const char *normalised =
      v_strip_surrounding_and_detabify_within_original_for_utf8(utf8_text.get());
  GtkTextBuffer *buffer = gtk_text_view_get_buffer(GTK_TEXT_VIEW(view));
  // Text set by the program causes no beep.
  g_signal_handler_block(buffer, view->insert_text_handler);
  gtk_text_buffer_set_text(buffer, normalised, -1);
  g_signal_handler_unblock(buffer, view->insert_text_handler);
}

OwnedText v_spacifying_text_view_get_text(VSpacifyingTextView *view) {
  GtkTextBuffer *buffer = gtk_text_view_get_buffer(GTK_TEXT_VIEW(view));
  GtkTextIter start;
  GtkTextIter end;
  gtk_text_buffer_get_bounds(buffer, &start, &end);
  const OwnedText utf8_text(gtk_text_buffer_get_text(buffer, &start, &end, TRUE));
  const OwnedText latin1_text = v_latin1_input_convert(utf8_text.get(), InputLines::several);
  if (!latin1_text) {
    return nullptr;
  }
  return v_strip_surrounding_and_detabify_in_new_for_latin1(latin1_text.get());
}
