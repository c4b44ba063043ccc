#include "gui/editing/codes_list.h"

#include "base/text_buffer.h"
#include "base/text_encoding.h"
#include "gui/accessibility.h"
#include "gui/list_place.h"
#include "gui/list_search.h"
#include "gui/lists.h"
#include "workspace/display_text.h"

namespace {

enum CodesColumn { display_text_column, remark_column };

// The column has fixed sizing, because otherwise every row of a long list would be measured. A text
// that is too wide is ellipsised; the display beside the list shows all of it.
void add_column(GtkTreeView *view) {
  GtkCellRenderer *renderer = gtk_cell_renderer_text_new();
  g_object_set(renderer, "ellipsize", PANGO_ELLIPSIZE_END, nullptr);
  GtkTreeViewColumn *column = gtk_tree_view_column_new_with_attributes(
      "Remark", renderer, "text", display_text_column, nullptr);
  gtk_tree_view_column_set_sizing(column, GTK_TREE_VIEW_COLUMN_FIXED);
  gtk_tree_view_append_column(view, column);
}

// Replaces the content of text.
void format_row(const VCodesList *codes, const VRemark *remark, VUtf8String *text) {
  g_string_truncate(text, 0);
  v_utf8_string_append_latin1(text, remark->code.get());
  v_utf8_string_append(text, ". ");
  if (const char *description =
          v_util_get_langstr_string(codes->settings, remark->description.get())) {
    v_utf8_string_append_latin1(text, description);
  }
}

// The values borrow the text, and the store copies it: gtk_list_store_insert_with_values would copy
// it once more, which makes filling a third slower. text: a buffer that the caller can reuse for
// other rows. place: from 0; -1 is the end.
void insert_row(const VCodesList *codes, VRemark *remark, VUtf8String *text, int place) {
  format_row(codes, remark, text);
  int columns[] = {display_text_column, remark_column};
  GValue values[] = {G_VALUE_INIT, G_VALUE_INIT};
  g_value_init(&values[0], G_TYPE_STRING);
  g_value_set_static_string(&values[0], text->str);
  g_value_init(&values[1], G_TYPE_POINTER);
  g_value_set_pointer(&values[1], remark);
  gtk_list_store_insert_with_valuesv(codes->store.get(), nullptr, place, columns, values, 2);
}

void remove_row(const VCodesList *codes, int place) {
  GtkTreeIter row;
  if (gtk_tree_model_iter_nth_child(GTK_TREE_MODEL(codes->store.get()), &row, nullptr, place)) {
    gtk_list_store_remove(codes->store.get(), &row);
  }
}

// Returns the index of the inserted row, else that of the removed one.
int change_rows(const VCodesList *codes, const VRemarkExchange &exchange) {
  if (exchange.removed != nullptr) {
    remove_row(codes, exchange.removed_index);
  }
  if (exchange.inserted == nullptr) {
    return exchange.removed_index;
  }
  const OwnedUtf8String text = v_utf8_string_new(nullptr);
  insert_row(codes, exchange.inserted, text.get(), exchange.inserted_index);
  return exchange.inserted_index;
}

OwnedText get_display_text(GtkTreeModel *model, GtkTreeIter *row) {
  OwnedText text;
  gtk_tree_model_get(model, row, display_text_column, static_cast<char **>(receive(text)), -1);
  return text;
}

} // namespace

VCodesList v_codes_list_pack(GtkBox *box, const VSettings *settings) {
  GtkScrolledWindow *scroller = v_gui_pack_list_scrolled_window(box, 200, 150);
  GtkTreeView *view = v_gui_add_tree_view(GTK_CONTAINER(scroller), HeadersVisible::no,
                                          FixedHeight::yes, SelectionMode::single);
  add_column(view);
  v_gui_set_accessible_name(GTK_WIDGET(view), "Remark codes");
  return {settings, take(gtk_list_store_new(2, G_TYPE_STRING, G_TYPE_POINTER)), view};
}

// The store is filled before the view gets it, because otherwise the view would process each row.
void v_codes_list_show(VCodesList *codes, const VRemarkList *remarks) {
  const OwnedUtf8String text = v_utf8_string_new(nullptr);
  for (VRemark *remark = remarks->head.next; remark != &remarks->tail; remark = remark->next) {
    insert_row(codes, remark, text.get(), -1);
  }
  gtk_tree_view_set_model(codes->view, GTK_TREE_MODEL(codes->store.get()));
  v_list_search_enable(codes->view, display_text_column, get_display_text);
}

VRemark *v_codes_list_get_selected(const VCodesList *codes) {
  GtkTreeModel *model = nullptr;
  GtkTreeIter row;
  VRemark *remark = nullptr;
  if (gtk_tree_selection_get_selected(gtk_tree_view_get_selection(codes->view), &model, &row)) {
    gtk_tree_model_get(model, &row, remark_column, &remark, -1);
  }
  return remark;
}

void v_codes_list_follow_exchange(VCodesList *codes, const VRemarkExchange &exchange) {
  int row = 0;
  {
    const VListWithoutSelection without_selection(codes->view);
    row = change_rows(codes, exchange);
  }
  v_codes_list_set_place(codes, row);
}

void v_codes_list_set_place(VCodesList *codes, int row) { v_list_place_set(codes->view, row); }
