#pragma once
// An editor, the objects that it borrows, and access to the widgets in its table.

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "gui/editing/langstr_editor.h"
#include "support/values/translations.h"

class EditorTest : public testing::Test {
protected:
  ~EditorTest() override {
    if (widget != nullptr) {
      gtk_widget_destroy(widget);
      g_object_unref(widget);
    }
  }

  void make(const Translations &value, LangstrEditorMode mode = LangstrEditorMode::single_line,
            const Translations &locked = {},
            ActivatesDefault activates_default = ActivatesDefault::no) {
    const OwnedLangstr initial_value = langstr_of(value);
    const OwnedLangstr locked_texts = langstr_of(locked);
    widget = GTK_WIDGET(g_object_ref_sink(v_langstr_editor_new(
        stack.get(), &settings, mode, initial_value.get(), locked_texts.get(), activates_default)));
    g_signal_connect(widget, "shrunk", G_CALLBACK(+[](VLangstrEditor *, int *count) { ++*count; }),
                     &shrunk_count);
    multi_line = mode == LangstrEditorMode::multi_line;
  }

  VLangstrEditor *editor() { return V_LANGSTR_EDITOR(widget); }

  GtkTable *table() {
    GList *children = gtk_container_get_children(GTK_CONTAINER(widget));
    GtkTable *found = g_list_length(children) == 1 ? GTK_TABLE(children->data) : nullptr;
    g_list_free(children);
    return found;
  }

  guint table_rows() {
    guint count = 0;
    gtk_table_get_size(table(), &count, nullptr);
    return count;
  }

  std::size_t row_count() { return table_rows() / (multi_line ? 2 : 1); }

  // The child of the table that begins in the cell; null when there is none.
  GtkWidget *child_at(guint left, guint top) {
    GtkWidget *found = nullptr;
    GList *children = gtk_container_get_children(GTK_CONTAINER(table()));
    for (const GList *item = children; item != nullptr; item = item->next) {
      guint child_left = 0;
      guint child_top = 0;
      gtk_container_child_get(GTK_CONTAINER(table()), GTK_WIDGET(item->data), "left-attach",
                              &child_left, "top-attach", &child_top, nullptr);
      if (child_left == left && child_top == top) {
        found = GTK_WIDGET(item->data);
      }
    }
    g_list_free(children);
    return found;
  }

  GtkWidget *inside(GtkWidget *bin) { return gtk_bin_get_child(GTK_BIN(bin)); }

  GtkWidget *field(guint row) {
    return multi_line ? inside(child_at(0, 2 * row)) : child_at(0, row);
  }
  GtkComboBox *combo(guint row) { return GTK_COMBO_BOX(child_at(1, multi_line ? 2 * row : row)); }
  GtkWidget *delete_button(guint row) {
    return multi_line ? inside(child_at(1, 2 * row + 1)) : child_at(2, row);
  }
  GtkWidget *plus_button() {
    GtkWidget *plus = child_at(3, table_rows() - 1);
    return multi_line ? inside(plus) : plus;
  }

  void click(GtkWidget *button) { gtk_button_clicked(GTK_BUTTON(button)); }

  void enter(guint row, const char *utf8_text) {
    if (multi_line) {
      gtk_text_buffer_set_text(gtk_text_view_get_buffer(GTK_TEXT_VIEW(field(row))), utf8_text, -1);
    } else {
      gtk_entry_set_text(GTK_ENTRY(field(row)), utf8_text);
    }
  }

  std::string shown_text(guint row) {
    if (!multi_line) {
      return gtk_entry_get_text(GTK_ENTRY(field(row)));
    }
    char *text = nullptr;
    g_object_get(gtk_text_view_get_buffer(GTK_TEXT_VIEW(field(row))), "text", &text, nullptr);
    return OwnedText(text).get();
  }

  std::string shown_language(guint row) {
    const OwnedText text(gtk_combo_box_text_get_active_text(GTK_COMBO_BOX_TEXT(combo(row))));
    return text ? text.get() : "";
  }

  std::vector<std::string> choices(guint row) {
    std::vector<std::string> texts;
    GtkTreeModel *model = gtk_combo_box_get_model(combo(row));
    GtkTreeIter place;
    for (gboolean valid = gtk_tree_model_get_iter_first(model, &place); valid;
         valid = gtk_tree_model_iter_next(model, &place)) {
      char *text = nullptr;
      gtk_tree_model_get(model, &place, 0, &text, -1);
      texts.emplace_back(OwnedText(text).get());
    }
    return texts;
  }

  OwnedWindowStack stack = v_window_stack_new();
  VSettings settings;
  GtkWidget *widget = nullptr;
  bool multi_line = false;
  int shrunk_count = 0;
};
