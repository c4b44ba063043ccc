#include "gui/answering_button.h"

#include <gtk/gtk-a11y.h>

#include "gui/idle_call.h"

struct _VAnsweringButton {
  GtkButton parent_instance;
};

G_DEFINE_TYPE(VAnsweringButton, v_answering_button, GTK_TYPE_BUTTON)

namespace {

struct VAnsweringButtonAccessible {
  GtkButtonAccessible parent_instance;
};

struct VAnsweringButtonAccessibleClass {
  GtkButtonAccessibleClass parent_class;
};

constexpr char keybinding_key[] = "vantorelle_keybinding"; // on a button

bool can_be_pressed(GtkWidget *button) {
  return gtk_widget_is_sensitive(button) && gtk_widget_is_visible(button);
}

// The toolkit's own handler would first draw the button as pressed for a quarter of a second.
void activate(GtkButton *button) {
  if (can_be_pressed(GTK_WIDGET(button))) {
    gtk_button_clicked(button);
  }
}

// Action 0 is the only one of a button. activate checks the button again, because another window
// may cover it by then.
gboolean do_action(AtkAction *accessible, int action) {
  GtkWidget *button = gtk_accessible_get_widget(GTK_ACCESSIBLE(accessible));
  if (action != 0 || button == nullptr || !can_be_pressed(button)) {
    return FALSE;
  }
  v_idle_call_add(button, G_PRIORITY_DEFAULT, [button] { activate(GTK_BUTTON(button)); });
  return TRUE;
}

// Null when no key is set. The button owns the string until another key is set.
const char *get_keybinding(AtkAction *accessible, int action) {
  GtkWidget *button = gtk_accessible_get_widget(GTK_ACCESSIBLE(accessible));
  return action != 0 || button == nullptr
             ? nullptr
             : static_cast<const char *>(g_object_get_data(G_OBJECT(button), keybinding_key));
}

void implement_action(void *interface, void *) {
  auto *action = static_cast<AtkActionIface *>(interface);
  action->do_action = do_action;
  action->get_keybinding = get_keybinding;
}

} // namespace

G_DEFINE_TYPE_WITH_CODE(VAnsweringButtonAccessible, v_answering_button_accessible,
                        GTK_TYPE_BUTTON_ACCESSIBLE,
                        G_IMPLEMENT_INTERFACE(ATK_TYPE_ACTION, implement_action))

static void v_answering_button_accessible_class_init(VAnsweringButtonAccessibleClass *) {}

static void v_answering_button_accessible_init(VAnsweringButtonAccessible *) {}

static void v_answering_button_class_init(VAnsweringButtonClass *klass) {
  GTK_BUTTON_CLASS(klass)->activate = activate;
  gtk_widget_class_set_accessible_type(GTK_WIDGET_CLASS(klass),
                                       v_answering_button_accessible_get_type());
}

static void v_answering_button_init(VAnsweringButton *) {}

GtkWidget *v_answering_button_new(const char *label) {
  return GTK_WIDGET(g_object_new(V_TYPE_ANSWERING_BUTTON, "label", label, nullptr));
}

void v_answering_button_set_key(VAnsweringButton *button, const char *key) {
  // The format is "mnemonic;key sequence;shortcut". Only the shortcut is set.
  g_object_set_data_full(G_OBJECT(button), keybinding_key, g_strconcat(";;", key, nullptr), g_free);
}
