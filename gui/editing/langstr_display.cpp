#include "gui/editing/langstr_display.h"

#include "base/text_encoding.h"
#include "gui/css.h"
#include "gui/owned_objects.h"
#include "gui/text_fields.h"
#include "langstr/supported_languages.h"

struct LangstrDisplayState {
  OwnedObject<GtkTextBuffer> buffer; // null once the display is destroyed
};

struct _VLangstrDisplay {
  GtkScrolledWindow parent_instance;

  LangstrDisplayState *state; // owned, from init to finalize
};

G_DEFINE_TYPE(VLangstrDisplay, v_langstr_display, GTK_TYPE_SCROLLED_WINDOW)

namespace {

constexpr char bold_tag[] = "bold";
// A frame that shows the focus, because a text without a cursor does not.
constexpr char focus_css[] =
    "textview:focus text { box-shadow: inset 0 0 0 1px @theme_selected_bg_color; }";
constexpr int text_margin = 4; // pixels between the frame and the text

void set_text_margins(GtkTextView *view) {
  gtk_text_view_set_left_margin(view, text_margin);
  gtk_text_view_set_right_margin(view, text_margin);
  gtk_text_view_set_top_margin(view, text_margin);
  gtk_text_view_set_bottom_margin(view, text_margin);
}

// "destroy", which may be emitted more than once.
void destroy_callback(GtkWidget *widget) {
  V_LANGSTR_DISPLAY(widget)->state->buffer.reset();
  GTK_WIDGET_CLASS(v_langstr_display_parent_class)->destroy(widget);
}

void finalize(GObject *display) {
  delete V_LANGSTR_DISPLAY(display)->state;
  G_OBJECT_CLASS(v_langstr_display_parent_class)->finalize(display);
}

// The width is the size request, whatever the text: the text wraps, and the widgets beside the
// display do not move.
void get_preferred_width(GtkWidget *, int *minimum, int *natural) {
  *minimum = 0;
  *natural = 0;
}

void insert_translation(GtkTextBuffer *buffer, GtkTextIter *place, const VLangstr *translation) {
  const OwnedText language = v_supported_languages_format_language_string(translation->lang.get());
  const OwnedText text = v_convert_latin1_to_utf8(translation->text.get());
  gtk_text_buffer_insert_with_tags_by_name(buffer, place, language.get(), -1, bold_tag, nullptr);
  gtk_text_buffer_insert(buffer, place, "\n\n", -1);
  gtk_text_buffer_insert(buffer, place, text.get(), -1);
}

} // namespace

static void v_langstr_display_class_init(VLangstrDisplayClass *klass) {
  G_OBJECT_CLASS(klass)->finalize = finalize;
  GTK_WIDGET_CLASS(klass)->destroy = destroy_callback;
  GTK_WIDGET_CLASS(klass)->get_preferred_width = get_preferred_width;
}

static void v_langstr_display_init(VLangstrDisplay *display) {
  display->state = new LangstrDisplayState;
  gtk_scrolled_window_set_overlay_scrolling(GTK_SCROLLED_WINDOW(display), FALSE);
  // The size never depends on the text. Without this mode, each new text would cause a new layout
  // and redraw of the whole window, including a long list.
  gtk_container_set_resize_mode(GTK_CONTAINER(display), GTK_RESIZE_QUEUE);
}

GtkWidget *v_langstr_display_new(int width, int height) {
  auto *display = V_LANGSTR_DISPLAY(g_object_new(V_TYPE_LANGSTR_DISPLAY, nullptr));
  GtkScrolledWindow *scroller = GTK_SCROLLED_WINDOW(display);
  gtk_scrolled_window_set_policy(scroller, GTK_POLICY_NEVER, GTK_POLICY_AUTOMATIC);
  gtk_scrolled_window_set_shadow_type(scroller, GTK_SHADOW_IN);
  gtk_widget_set_size_request(GTK_WIDGET(display), width, height);
  GtkTextView *view = v_gui_add_text_view(GTK_CONTAINER(display), Editable::no);
  // Breaks a word that is wider than the display, which does not scroll sideways.
  gtk_text_view_set_wrap_mode(view, GTK_WRAP_WORD_CHAR);
  set_text_margins(view);
  v_css_style_widget(GTK_WIDGET(view), focus_css);
  display->state->buffer = share(gtk_text_view_get_buffer(view));
  gtk_text_buffer_create_tag(display->state->buffer.get(), bold_tag, "weight", 700, nullptr);
  return GTK_WIDGET(display);
}

int v_langstr_display_set_text(VLangstrDisplay *display, const VLangstr *langstr) {
  GtkTextBuffer *buffer = display->state->buffer.get();
  if (buffer == nullptr) {
    return 0;
  }
  gtk_text_buffer_set_text(buffer, "", -1);
  GtkTextIter place;
  gtk_text_buffer_get_start_iter(buffer, &place);
  for (const VLangstr *translation = langstr; translation != nullptr;
       translation = translation->next.get()) {
    insert_translation(buffer, &place, translation);
    if (translation->next) {
      gtk_text_buffer_insert(buffer, &place, "\n\n", -1);
    }
  }
  return 1;
}
