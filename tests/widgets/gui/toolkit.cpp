#include "widgets/gui/toolkit.h"

#include <cstdio>
#include <cstdlib>

#include <gtest/gtest.h>

namespace {

constexpr int patience = 5000; // milliseconds

using Action = std::function<void()>;

gboolean call_action(void *data) {
  (*static_cast<Action *>(data))();
  return G_SOURCE_REMOVE;
}

void delete_action(void *data) { delete static_cast<Action *>(data); }

GtkDialog *find_active_dialog() {
  GtkDialog *found = nullptr;
  GList *windows = gtk_window_list_toplevels();
  for (GList *item = windows; item != nullptr; item = item->next) {
    if (GTK_IS_DIALOG(item->data) && gtk_widget_get_mapped(GTK_WIDGET(item->data)) &&
        gtk_window_is_active(GTK_WINDOW(item->data))) {
      found = GTK_DIALOG(item->data);
    }
  }
  g_list_free(windows);
  return found;
}

void act_on_dialog(std::function<void(GtkDialog *)> action, int waited) {
  constexpr int pause = 20;
  if (GtkDialog *dialog = find_active_dialog()) {
    action(dialog);
  } else if (waited > patience) {
    std::fputs("The dialog that the test waits for did not come up.\n", stderr);
    std::abort();
  } else {
    call_later(pause,
               [action = std::move(action), waited] { act_on_dialog(action, waited + pause); });
  }
}

void collect(GtkWidget *widget, void *data);

struct Collection {
  GType type;
  std::vector<GtkWidget *> found;
};

void collect(GtkWidget *widget, void *data) {
  auto *collection = static_cast<Collection *>(data);
  if (G_TYPE_CHECK_INSTANCE_TYPE(widget, collection->type)) {
    collection->found.push_back(widget);
  }
  if (GTK_IS_CONTAINER(widget)) {
    gtk_container_forall(GTK_CONTAINER(widget), collect, data);
  }
}

} // namespace

void settle() { run_for(20); }

void run_for(int milliseconds) {
  bool is_over = false;
  call_later(milliseconds, [&is_over] { is_over = true; });
  while (!is_over) {
    g_main_context_iteration(nullptr, TRUE);
  }
}

bool wait_until(const std::function<bool()> &condition) {
  for (const gint64 end = g_get_monotonic_time() + patience * G_TIME_SPAN_MILLISECOND;
       g_get_monotonic_time() < end; run_for(5)) {
    if (condition()) {
      return true;
    }
  }
  return condition();
}

void call_later(int milliseconds, std::function<void()> action) {
  g_timeout_add_full(G_PRIORITY_DEFAULT, static_cast<guint>(milliseconds), call_action,
                     new Action(std::move(action)), delete_action);
}

void when_dialog_shows(std::function<void(GtkDialog *)> action) {
  call_later(1, [action = std::move(action)] { act_on_dialog(action, 0); });
}

std::vector<GtkWidget *> find_all(GtkWidget *below, GType type) {
  Collection collection = {type, {}};
  collect(below, &collection);
  return collection.found;
}

void press_key(GtkWidget *window, guint key) {
  GdkKeymapKey *keys = nullptr;
  int count = 0;
  gdk_keymap_get_entries_for_keyval(gdk_keymap_get_for_display(gtk_widget_get_display(window)), key,
                                    &keys, &count);
  for (const GdkEventType type : {GDK_KEY_PRESS, GDK_KEY_RELEASE}) {
    GdkEvent *event = gdk_event_new(type);
    event->key.window = GDK_WINDOW(g_object_ref(gtk_widget_get_window(window)));
    event->key.time = GDK_CURRENT_TIME;
    event->key.keyval = key;
    event->key.hardware_keycode = count > 0 ? static_cast<guint16>(keys[0].keycode) : guint16{0};
    gdk_event_set_device(
        event, gdk_seat_get_keyboard(gdk_display_get_default_seat(gtk_widget_get_display(window))));
    gtk_main_do_event(event);
    gdk_event_free(event);
  }
  g_free(keys);
}

TestWindow::TestWindow() : window(GTK_WINDOW(gtk_window_new(GTK_WINDOW_TOPLEVEL))) {
  g_object_ref(window);
  gtk_window_set_default_size(window, 200, 100);
  g_signal_connect(window, "destroy", G_CALLBACK(+[](GtkWidget *, bool *flag) { *flag = true; }),
                   &destroyed);
}

TestWindow::~TestWindow() {
  if (!destroyed) {
    destroy();
  }
  g_object_unref(window);
  settle();
}

void TestWindow::show_active() {
  gtk_widget_show(widget());
  gtk_window_present(window);
  ASSERT_TRUE(wait_until([this] { return gtk_window_has_toplevel_focus(window) != FALSE; }));
}
