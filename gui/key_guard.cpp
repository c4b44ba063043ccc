#include "gui/key_guard.h"

#include <utility>

#include "base/owned.h"
#include "gui/window_focus.h"

namespace {

using OwnedEvent = Owned<GdkEvent, gdk_event_free>;

constexpr const char *shield_key = "vantorelle-key-guard-shield";

// Maximum delays of a keyboard, in milliseconds, before its first repeat and between repeats.
constexpr guint32 longest_repeat_delay = 1000;
constexpr guint longest_repeat_interval = 150;
// Milliseconds. Longer than the pauses in slow typing, shorter than the time to read a message.
constexpr guint32 typing_pause = 400;
// Milliseconds. Shorter than the time to press the same key again as an answer.
constexpr guint32 shortest_answer = 100;

// The last press of a key other than a modifier.
struct LastPress {
  guint16 keycode = 0;
  guint32 time = 0; // of the event, in milliseconds
  bool is_down = false;
  bool is_repeating = false;
  bool acts_once = false;
  bool confirms_text = false;
  GtkWidget *window = nullptr; // weak
};

LastPress last_press;

// A press that is either the first repeat of a key pressed in another window, or a new press after
// the release was lost with that window. The next event decides, because only a key that is held
// repeats at once.
struct DoubtfulPress {
  OwnedEvent event; // null for none
  guint source = 0;
};

DoubtfulPress doubtful_press;

bool is_enter(const GdkEventKey *event) {
  return event->keyval == GDK_KEY_Return || event->keyval == GDK_KEY_KP_Enter ||
         event->keyval == GDK_KEY_ISO_Enter;
}

bool is_space(const GdkEventKey *event) {
  return event->keyval == GDK_KEY_space || event->keyval == GDK_KEY_KP_Space;
}

// The window that receives the key; a modal window also receives the keys of the other windows.
GtkWidget *find_receiver(GdkEvent *event) {
  GtkWidget *widget = gtk_get_event_widget(event);
  GtkWidget *grab_widget = gtk_grab_get_current();
  if (widget == nullptr) {
    return nullptr;
  }
  return gtk_widget_get_toplevel(grab_widget == nullptr ? widget : grab_widget);
}

GtkWidget *get_focus(GtkWidget *window) {
  return window == nullptr ? nullptr : v_window_focus_find_focus(window);
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

// Return and Escape answer a message unless they continue typing.
bool is_answer(const GdkEventKey *event, Shield shield) {
  const guint32 pause = event->time - last_press.time;
  const bool can_answer = is_enter(event) || event->keyval == GDK_KEY_Escape;
  return pause >= typing_pause || (shield == shielded && can_answer && pause >= shortest_answer);
}

// True while typing continues. The first key that is an answer ends the shield.
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
  last_press.is_repeating = false;
  last_press.acts_once = acts_once(event, focus);
  last_press.confirms_text = is_enter(event) && GTK_IS_EDITABLE(focus);
  g_set_weak_pointer(&last_press.window, window);
}

OwnedEvent take_doubtful_press() {
  if (doubtful_press.source != 0) {
    g_source_remove(std::exchange(doubtful_press.source, 0));
  }
  return std::exchange(doubtful_press.event, nullptr);
}

void deliver_doubtful_press() {
  if (const OwnedEvent event = take_doubtful_press()) {
    remember(&event->key, find_receiver(event.get()));
    gtk_main_do_event(event.get());
  }
}

gboolean doubt_timeout_callback(void *) {
  doubtful_press.source = 0;
  deliver_doubtful_press();
  return G_SOURCE_REMOVE;
}

void doubt(GdkEvent *event) {
  doubtful_press.event.reset(gdk_event_copy(event));
  doubtful_press.source = g_timeout_add(longest_repeat_interval, doubt_timeout_callback, nullptr);
}

// A second press of the same key means that the key is held; any other key, or the release, means
// that it was pressed again. True when the event was put back into the queue, so that it comes
// after the doubtful press, whose handlers may run a main loop.
bool settle_doubt(GdkEvent *event) {
  if (!doubtful_press.event) {
    return false;
  }
  if (event->type == GDK_KEY_PRESS && event->key.hardware_keycode == last_press.keycode) {
    take_doubtful_press();
    last_press.is_repeating = true;
    return false;
  }
  gdk_event_put(event);
  deliver_doubtful_press();
  return true;
}

bool let_repeat_through(GdkEvent *event, GtkWidget *window) {
  last_press.time = event->key.time;
  if (window != last_press.window) {
    if (!last_press.is_repeating) {
      doubt(event);
    }
    return false;
  }
  last_press.is_repeating = true;
  return !last_press.acts_once && !acts_once(&event->key, get_focus(window));
}

bool let_press_through(GdkEvent *event) {
  const GdkEventKey *key = &event->key;
  GtkWidget *window = find_receiver(event);
  const bool repeats = is_repeat(key);
  if (is_typed_into_shield(key, window)) {
    remember(key, window);
    return false;
  }
  if (repeats) {
    return let_repeat_through(event, window);
  }
  remember(key, window);
  return true;
}

bool let_through(GdkEvent *event) {
  const bool is_key = event->type == GDK_KEY_PRESS || event->type == GDK_KEY_RELEASE;
  if (!is_key || event->key.is_modifier) {
    return true;
  }
  if (settle_doubt(event)) {
    return false;
  }
  if (event->type == GDK_KEY_PRESS) {
    return let_press_through(event);
  }
  if (event->key.hardware_keycode == last_press.keycode) {
    last_press.is_down = false;
  }
  return true;
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

bool v_key_guard_is_repeating() { return last_press.is_repeating; }
