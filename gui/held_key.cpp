#include "gui/held_key.h"

#include <gtk/gtk.h>

namespace {

// The last key that was pressed and, as far as is known, not released. Only that one is repeated.
struct HeldKey {
  bool is_down = false;
  bool is_repeating = false;
  guint16 code = 0; // of the hardware
  guint32 time = 0; // of its last press, in milliseconds
};

HeldKey held_key;

// A release is not reported while another program has the focus. Repetitions come faster than this,
// in milliseconds.
constexpr guint32 longest_pause = 2000;

void take_press(const GdkEventKey &event) {
  held_key.is_repeating = held_key.is_down && held_key.code == event.hardware_keycode &&
                          event.time - held_key.time < longest_pause;
  held_key.is_down = true;
  held_key.code = event.hardware_keycode;
  held_key.time = event.time;
}

void take_release(const GdkEventKey &event) {
  if (held_key.code == event.hardware_keycode) {
    held_key.is_down = false;
  }
}

// "event", which precedes the signals of a key. A window gets it before the widget with the focus
// in it does.
gboolean event_hook(GSignalInvocationHint *, guint, const GValue *parameters, void *) {
  if (GTK_IS_WINDOW(g_value_get_object(&parameters[0]))) {
    const auto *event = static_cast<const GdkEvent *>(g_value_get_boxed(&parameters[1]));
    if (event->type == GDK_KEY_PRESS) {
      take_press(event->key);
    } else if (event->type == GDK_KEY_RELEASE) {
      take_release(event->key);
    }
  }
  return TRUE;
}

} // namespace

void v_held_key_watch() {
  static bool is_watched = false;
  if (!is_watched) {
    is_watched = true;
    // Signals are known as soon as their class is.
    g_type_class_unref(g_type_class_ref(GTK_TYPE_WIDGET));
    g_signal_add_emission_hook(g_signal_lookup("event", GTK_TYPE_WIDGET), 0, event_hook, nullptr,
                               nullptr);
  }
}

bool v_held_key_is_repeating() { return held_key.is_repeating; }
