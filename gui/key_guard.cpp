#include "gui/key_guard.h"

namespace {

constexpr const char *shield_key = "vantorelle-key-guard-shield";

// Milliseconds. A key whose release is lost, because no window of the program had the focus, passes
// for held down no longer than a keyboard waits before its first repeat.
constexpr guint32 longest_repeat_delay = 1000;
// Slow typing has shorter pauses from key to key, and reading a message takes longer.
constexpr guint32 typing_pause = 400;
// A second press of the same key, meant as an answer, takes longer.
constexpr guint32 shortest_answer = 100;

// The last press of a key that is no modifier.
struct LastPress {
  guint16 keycode = 0;
  guint32 time = 0; // of the event, in milliseconds
  bool is_down = false;
  bool acts_once = false;
  bool confirms_text = false;
  GtkWidget *window = nullptr; // weak
};

LastPress last_press;

bool is_enter(const GdkEventKey *event) {
  return event->keyval == GDK_KEY_Return || event->keyval == GDK_KEY_KP_Enter ||
         event->keyval == GDK_KEY_ISO_Enter;
}

bool is_space(const GdkEventKey *event) {
  return event->keyval == GDK_KEY_space || event->keyval == GDK_KEY_KP_Space;
}

// The window that gets the key: a modal window gets what was meant for the others, too.
GtkWidget *find_receiver(GdkEvent *event) {
  GtkWidget *widget = gtk_get_event_widget(event);
  GtkWidget *grab_widget = gtk_grab_get_current();
  if (widget == nullptr) {
    return nullptr;
  }
  return gtk_widget_get_toplevel(grab_widget == nullptr ? widget : grab_widget);
}

GtkWidget *get_focus(GtkWidget *window) {
  return GTK_IS_WINDOW(window) ? gtk_window_get_focus(GTK_WINDOW(window)) : nullptr;
}

bool is_repeat(const GdkEventKey *event) {
  return last_press.is_down && event->hardware_keycode == last_press.keycode &&
         event->time - last_press.time < longest_repeat_delay;
}

bool acts_once(const GdkEventKey *event, GtkWidget *focus) {
  return event->keyval == GDK_KEY_Escape || (is_enter(event) && !GTK_IS_TEXT_VIEW(focus)) ||
         (is_space(event) && GTK_IS_BUTTON(focus));
}

enum Shield { not_shielded, shielded, typed_into };

Shield get_shield(GtkWidget *window) {
  void *data = window == nullptr ? nullptr : g_object_get_data(G_OBJECT(window), shield_key);
  return static_cast<Shield>(GPOINTER_TO_INT(data));
}

void set_shield(GtkWidget *window, Shield shield) {
  g_object_set_data(G_OBJECT(window), shield_key, GINT_TO_POINTER(shield));
}

// Return and Escape answer a message, unless they are a part of what is typed on.
bool is_answer(const GdkEventKey *event, Shield shield) {
  const guint32 pause = event->time - last_press.time;
  const bool can_answer = is_enter(event) || event->keyval == GDK_KEY_Escape;
  return pause >= typing_pause || (shield == shielded && can_answer && pause >= shortest_answer);
}

// Ends the shield at the first key that is an answer.
bool is_typed_into_shield(const GdkEventKey *event, GtkWidget *window) {
  const Shield shield = get_shield(window);
  if (shield == not_shielded) {
    return false;
  }
  set_shield(window, is_answer(event, shield) ? not_shielded : typed_into);
  return get_shield(window) != not_shielded;
}

void remember(const GdkEventKey *event, GtkWidget *window) {
  GtkWidget *focus = get_focus(window);
  last_press.keycode = event->hardware_keycode;
  last_press.time = event->time;
  last_press.is_down = true;
  last_press.acts_once = acts_once(event, focus);
  last_press.confirms_text = is_enter(event) && GTK_IS_EDITABLE(focus);
  g_set_weak_pointer(&last_press.window, window);
}

bool let_press_through(GdkEvent *event) {
  const GdkEventKey *key = &event->key;
  if (key->is_modifier) {
    return true;
  }
  GtkWidget *window = find_receiver(event);
  const bool is_typing = is_typed_into_shield(key, window);
  if (is_repeat(key)) {
    last_press.time = key->time;
    return !is_typing && window == last_press.window && !last_press.acts_once &&
           !acts_once(key, get_focus(window));
  }
  remember(key, window);
  return !is_typing;
}

bool let_through(GdkEvent *event) {
  if (event->type == GDK_KEY_RELEASE && event->key.hardware_keycode == last_press.keycode) {
    last_press.is_down = false;
  }
  return event->type != GDK_KEY_PRESS || let_press_through(event);
}

void event_callback(GdkEvent *event, void *) {
  if (let_through(event)) {
    gtk_main_do_event(event);
  }
}

} // namespace

void v_key_guard_install() { gdk_event_handler_set(event_callback, nullptr, nullptr); }

void v_key_guard_shield(GtkWindow *window) {
  set_shield(GTK_WIDGET(window), last_press.confirms_text ? shielded : not_shielded);
}
