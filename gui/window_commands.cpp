#include "gui/window_commands.h"

#include <memory>

#include "base/owned.h"
#include "gui/answering_button.h"
#include "gui/owned_objects.h"

namespace {

// One key of a window. The window owns this record.
struct Command {
  GtkWindow *window = nullptr;
  VWindowCommand function = nullptr;
  void *data = nullptr;
};

gboolean key_callback(GtkAccelGroup *, GObject *, guint, GdkModifierType, Command *command) {
  if (gtk_widget_is_sensitive(GTK_WIDGET(command->window))) {
    command->function(command->data);
  }
  return TRUE;
}

} // namespace

GtkAccelGroup *v_window_commands_get_keys(GtkWindow *window) {
  if (gtk_accel_groups_from_object(G_OBJECT(window)) == nullptr) {
    const OwnedObject<GtkAccelGroup> group = take(gtk_accel_group_new());
    gtk_window_add_accel_group(window, group.get());
  }
  return GTK_ACCEL_GROUP(gtk_accel_groups_from_object(G_OBJECT(window))->data);
}

void v_window_commands_add(GtkWindow *window, guint key, GdkModifierType modifiers,
                           VWindowCommand command, void *data) {
  auto owned_command = std::make_unique<Command>(Command{window, command, data});
  GClosure *closure =
      g_cclosure_new(G_CALLBACK(key_callback), owned_command.release(),
                     [](void *closed, GClosure *) { delete static_cast<Command *>(closed); });
  gtk_accel_group_connect(v_window_commands_get_keys(window), key, modifiers, GtkAccelFlags{},
                          closure);
}

void v_window_commands_announce(GtkButton *button, const char *key) {
  const OwnedText text(g_strdup_printf("Key: %s", key));
  gtk_widget_set_tooltip_text(GTK_WIDGET(button), text.get());
  v_answering_button_set_key(V_ANSWERING_BUTTON(button), key);
}
