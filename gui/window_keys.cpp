#include "gui/window_keys.h"

#include <memory>

#include "base/owned.h"
#include "gui/answering_button.h"
#include "gui/key_guard.h"
#include "gui/list_place.h"
#include "gui/window_commands.h"

namespace {

enum class Row { selected, with_cursor };

// One key of a window. The window owns the widgets and this record.
struct Key {
  GtkWindow *window = nullptr;
  GdkModifierType modifiers = {};
  GtkTreeView *list = nullptr; // null: the key works everywhere in the window
  Row row = Row::selected;
  GtkButton *button = nullptr;
};

struct KeypadKey {
  guint key;
  guint same_on_keypad;
};

constexpr KeypadKey keypad_keys[] = {
    {GDK_KEY_Return, GDK_KEY_KP_Enter},
    {GDK_KEY_Delete, GDK_KEY_KP_Delete},
};

bool press(GtkButton *button) {
  if (!gtk_widget_is_sensitive(GTK_WIDGET(button)) || !gtk_widget_get_mapped(GTK_WIDGET(button))) {
    return false;
  }
  gtk_button_clicked(button);
  return true;
}

// Compares all modifiers, because the toolkit may ignore Shift, so that the key would work with and
// without it.
bool has_modifiers_of(const Key *key) {
  GdkModifierType state = {};
  gtk_get_current_event_state(&state);
  return (state & gtk_accelerator_get_default_mod_mask()) == key->modifiers;
}

// FALSE passes the key on to the widget with the focus.
gboolean key_callback(GtkAccelGroup *, GObject *, guint, GdkModifierType, Key *key) {
  if (!has_modifiers_of(key) ||
      (key->list != nullptr && gtk_window_get_focus(key->window) != GTK_WIDGET(key->list))) {
    return FALSE;
  }
  if (v_key_guard_is_repeating()) {
    return TRUE;
  }
  if (key->list != nullptr && key->row == Row::with_cursor) {
    v_list_place_select(key->list);
  }
  return press(key->button);
}

void connect(const Key &key, guint keyval) {
  GClosure *closure =
      g_cclosure_new(G_CALLBACK(key_callback), std::make_unique<Key>(key).release(),
                     [](void *data, GClosure *) { delete static_cast<Key *>(data); });
  gtk_accel_group_connect(v_window_commands_get_keys(key.window), keyval, key.modifiers,
                          GtkAccelFlags{}, closure);
}

void announce(const Key &key, guint keyval) {
  const OwnedText name(gtk_accelerator_get_label(keyval, key.modifiers));
  const OwnedText tooltip(
      g_strdup_printf(key.list == nullptr ? "Key: %s" : "Key: %s (in the list)", name.get()));
  gtk_widget_set_tooltip_text(GTK_WIDGET(key.button), tooltip.get());
  v_answering_button_set_key(V_ANSWERING_BUTTON(key.button), name.get());
}

void add(const Key &key, guint keyval) {
  v_key_guard_install();
  connect(key, keyval);
  for (const KeypadKey &other : keypad_keys) {
    if (other.key == keyval) {
      connect(key, other.same_on_keypad);
    }
  }
  announce(key, keyval);
}

bool is_handling_a_key() {
  const Owned<GdkEvent, gdk_event_free> event(gtk_get_current_event());
  return event && (event->type == GDK_KEY_PRESS || event->type == GDK_KEY_RELEASE);
}

// "row-activated", which the toolkit also emits for Space, and for Return in the search field;
// these are ignored. For assistive technologies, which emit it without a key, the button's action
// answers the request before it presses the button.
void row_activated_callback(GtkTreeView *, GtkTreePath *, GtkTreeViewColumn *, GtkButton *button) {
  if (!is_handling_a_key()) {
    atk_action_do_action(ATK_ACTION(gtk_widget_get_accessible(GTK_WIDGET(button))), 0);
  }
}

} // namespace

void v_window_keys_add(GtkWindow *window, guint key, GdkModifierType modifiers, GtkButton *button) {
  add({window, modifiers, nullptr, Row::selected, button}, key);
}

void v_window_keys_add_in_list(GtkWindow *window, GtkTreeView *list, guint key, GtkButton *button) {
  add({window, {}, list, Row::selected, button}, key);
}

void v_window_keys_add_return_in_list(GtkWindow *window, GtkTreeView *list, GtkButton *button) {
  add({window, {}, list, Row::with_cursor, button}, GDK_KEY_Return);
}

void v_window_keys_press_on_double_click(GtkTreeView *list, GtkButton *button) {
  g_signal_connect(list, "row-activated", G_CALLBACK(row_activated_callback), button);
}
