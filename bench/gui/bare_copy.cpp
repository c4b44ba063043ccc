#include "bare_copy.h"

#include <memory>

namespace {

// The properties that set the size and the content of widgets.
constexpr const char *properties[] = {"border-width",
                                      "bottom-padding",
                                      "column-spacing",
                                      "editable",
                                      "halign",
                                      "height-request",
                                      "hexpand",
                                      "homogeneous",
                                      "label",
                                      "left-padding",
                                      "max-content-height",
                                      "n-columns",
                                      "n-rows",
                                      "orientation",
                                      "right-padding",
                                      "row-spacing",
                                      "shadow-type",
                                      "spacing",
                                      "text",
                                      "title",
                                      "top-padding",
                                      "use-markup",
                                      "use-underline",
                                      "valign",
                                      "vexpand",
                                      "visible",
                                      "width-chars",
                                      "width-request",
                                      "wrap",
                                      "xalign",
                                      "xscale",
                                      "yalign",
                                      "yscale",
                                      "hscrollbar-policy",
                                      "vscrollbar-policy",
                                      "propagate-natural-height",
                                      "propagate-natural-width"};

GType toolkit_type_of(GtkWidget *widget) {
  GType type = G_OBJECT_TYPE(widget);
  while (!g_str_has_prefix(g_type_name(type), "Gtk")) {
    type = g_type_parent(type);
  }
  return type;
}

void copy_property(GtkWidget *from, GtkWidget *to, const char *name) {
  GParamSpec *property = g_object_class_find_property(G_OBJECT_GET_CLASS(to), name);
  // The window is shown later, when it is complete. The label of a frame is a widget that is copied
  // separately.
  const bool is_label_of_frame = GTK_IS_FRAME(to) && g_str_equal(name, "label");
  if (property == nullptr || is_label_of_frame ||
      (GTK_IS_WINDOW(to) && g_str_equal(name, "visible"))) {
    return;
  }
  GValue value = G_VALUE_INIT;
  g_value_init(&value, property->value_type);
  g_object_get_property(G_OBJECT(from), name, &value);
  g_object_set_property(G_OBJECT(to), name, &value);
  g_value_unset(&value);
}

void copy_place(GtkContainer *from, GtkWidget *child, GtkContainer *to, GtkWidget *copy) {
  guint count = 0;
  const std::unique_ptr<GParamSpec *, decltype(&g_free)> places(
      gtk_container_class_list_child_properties(G_OBJECT_GET_CLASS(to), &count), g_free);
  for (guint i = 0; i < count; i++) {
    GParamSpec *place = places.get()[i];
    GValue value = G_VALUE_INIT;
    g_value_init(&value, place->value_type);
    gtk_container_child_get_property(from, child, place->name, &value);
    gtk_container_child_set_property(to, copy, place->name, &value);
    g_value_unset(&value);
  }
}

void copy_children(GtkContainer *from, GtkContainer *to) {
  GList *children = gtk_container_get_children(from);
  for (const GList *at = children; at != nullptr; at = at->next) {
    GtkWidget *child = GTK_WIDGET(at->data);
    GtkWidget *copy = v_bench_copy_bare(child);
    if (GTK_IS_FRAME(from) && child == gtk_frame_get_label_widget(GTK_FRAME(from))) {
      gtk_frame_set_label_widget(GTK_FRAME(to), copy);
    } else {
      gtk_container_add(to, copy);
      copy_place(from, child, to, copy);
    }
  }
  g_list_free(children);
}

void copy_choices(GtkComboBox *from, GtkComboBoxText *to) {
  GtkTreeModel *model = gtk_combo_box_get_model(from);
  GtkTreeIter row;
  for (gboolean more = gtk_tree_model_get_iter_first(model, &row); more != FALSE;
       more = gtk_tree_model_iter_next(model, &row)) {
    char *text = nullptr;
    gtk_tree_model_get(model, &row, 0, &text, -1);
    gtk_combo_box_text_append_text(to, text);
    g_free(text);
  }
  gtk_combo_box_set_active(GTK_COMBO_BOX(to), gtk_combo_box_get_active(from));
}

// These widgets create their own children.
bool is_whole(GtkWidget *widget) {
  return GTK_IS_BUTTON(widget) || GTK_IS_COMBO_BOX(widget) || GTK_IS_TREE_VIEW(widget) ||
         GTK_IS_TEXT_VIEW(widget) || !GTK_IS_CONTAINER(widget);
}

} // namespace

GtkWidget *v_bench_copy_bare(GtkWidget *widget) {
  GtkWidget *copy = GTK_WIDGET(g_object_new(toolkit_type_of(widget), nullptr));
  for (const char *property : properties) {
    copy_property(widget, copy, property);
  }
  if (GTK_IS_COMBO_BOX_TEXT(copy)) {
    copy_choices(GTK_COMBO_BOX(widget), GTK_COMBO_BOX_TEXT(copy));
  }
  if (!is_whole(widget)) {
    copy_children(GTK_CONTAINER(widget), GTK_CONTAINER(copy));
  }
  return copy;
}
