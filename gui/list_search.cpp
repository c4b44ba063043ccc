#include "gui/list_search.h"

#include <algorithm>
#include <memory>
#include <vector>

#include "gui/owned_objects.h"

namespace {

// The search in one list. Caches the folded texts, because folding thousands of them for each key
// would be slow.
struct ListSearch {
  OwnedObject<GtkTreeModel> model;
  VListTextCallback text_callback = nullptr;
  bool is_folded = false;
  std::vector<std::string> texts; // folded, one for each row; valid while is_folded
  OwnedText key;                  // as typed; null when first_match is not valid
  std::string folded_key;
  std::size_t first_match = 0; // earlier rows do not match
};

// Ligatures and letters with a stroke, which Unicode does not decompose, become ASCII letters.
void append_without_accent(std::string *text, gunichar character) {
  char utf8[7] = {};
  g_unichar_to_utf8(character, utf8);
  const OwnedText ascii(character < 0x80 ? nullptr : g_str_to_ascii(utf8, "C"));
  const bool has_ascii = ascii && g_strcmp0(ascii.get(), "?") != 0;
  *text += has_ascii ? ascii.get() : utf8;
}

void forget(ListSearch *search) {
  search->is_folded = false;
  search->key.reset();
}

// "row-changed" and "row-inserted" of the model.
void row_changed_callback(GtkTreeModel *, GtkTreePath *, GtkTreeIter *, ListSearch *search) {
  forget(search);
}
void row_deleted_callback(GtkTreeModel *, GtkTreePath *, ListSearch *search) { forget(search); }
void rows_reordered_callback(GtkTreeModel *, GtkTreePath *, GtkTreeIter *, void *,
                             ListSearch *search) {
  forget(search);
}

void fold_rows(ListSearch *search) {
  GtkTreeModel *model = search->model.get();
  search->texts.clear();
  GtkTreeIter row;
  for (gboolean valid = gtk_tree_model_get_iter_first(model, &row); valid;
       valid = gtk_tree_model_iter_next(model, &row)) {
    const OwnedText text = search->text_callback(model, &row);
    search->texts.push_back(v_list_search_fold(text ? text.get() : ""));
  }
  search->is_folded = true;
}

void take_key(ListSearch *search, const char *key) {
  if (!search->is_folded) {
    fold_rows(search);
  }
  search->key = copy_text(key);
  search->folded_key = v_list_search_fold(key);
  const auto first =
      std::find_if(search->texts.begin(), search->texts.end(), [search](const std::string &text) {
        return text.starts_with(search->folded_key);
      });
  const bool is_found = first != search->texts.end();
  search->first_match = is_found ? static_cast<std::size_t>(first - search->texts.begin()) : 0;
}

bool matches(const ListSearch *search, GtkTreeIter *row) {
  const Owned<GtkTreePath, gtk_tree_path_free> path(
      gtk_tree_model_get_path(search->model.get(), row));
  const auto index = static_cast<std::size_t>(gtk_tree_path_get_indices(path.get())[0]);
  return index >= search->first_match &&
         search->texts.at(index).find(search->folded_key) != std::string::npos;
}

// FALSE for a match, as gtk_tree_view_set_search_equal_func requires.
gboolean differs_callback(GtkTreeModel *, int, const char *key, GtkTreeIter *row, void *data) {
  auto *search = static_cast<ListSearch *>(data);
  if (!search->key || g_strcmp0(search->key.get(), key) != 0) {
    take_key(search, key);
  }
  return !matches(search, row);
}

void destroy_search(void *data) {
  const std::unique_ptr<ListSearch> search(static_cast<ListSearch *>(data));
  g_signal_handlers_disconnect_by_data(search->model.get(), search.get());
}

} // namespace

void v_list_search_enable(GtkTreeView *view, int search_column, VListTextCallback text_callback) {
  auto search = std::make_unique<ListSearch>();
  search->model = share(gtk_tree_view_get_model(view));
  search->text_callback = text_callback;
  GtkTreeModel *model = search->model.get();
  for (const char *signal : {"row-changed", "row-inserted"}) {
    g_signal_connect(model, signal, G_CALLBACK(row_changed_callback), search.get());
  }
  g_signal_connect(model, "row-deleted", G_CALLBACK(row_deleted_callback), search.get());
  g_signal_connect(model, "rows-reordered", G_CALLBACK(rows_reordered_callback), search.get());
  gtk_tree_view_set_search_column(view, search_column);
  gtk_tree_view_set_search_equal_func(view, differs_callback, search.release(), destroy_search);
}

std::string v_list_search_fold(const char *text) {
  const OwnedText caseless(g_utf8_casefold(text, -1));
  const OwnedText decomposed(g_utf8_normalize(caseless.get(), -1, G_NORMALIZE_ALL));
  std::string folded;
  for (const char *at = decomposed ? decomposed.get() : ""; *at != '\0';
       at = g_utf8_next_char(at)) {
    const gunichar character = g_utf8_get_char(at);
    if (!g_unichar_ismark(character)) {
      append_without_accent(&folded, character);
    }
  }
  return folded;
}
