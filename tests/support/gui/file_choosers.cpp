#include "support/gui/file_choosers.h"

#include "support/gui/widget_search.h"

namespace {

constexpr gint64 pause_between_loads = 200 * G_TIME_SPAN_MILLISECOND;

bool top_chooser_has_list() {
  GtkFileChooser *chooser = top_chooser();
  auto *list = chooser == nullptr
                   ? nullptr
                   : find_widget<GtkTreeView>(GTK_WIDGET(chooser), GTK_TYPE_TREE_VIEW);
  return list != nullptr && gtk_tree_view_get_model(list) != nullptr;
}

} // namespace

GtkFileChooser *top_chooser() {
  GtkWindow *window = top_window();
  return GTK_IS_FILE_CHOOSER_DIALOG(window) ? GTK_FILE_CHOOSER(window) : nullptr;
}

std::function<bool()> chooser_to_be_loaded() {
  return [latest_without_list = gint64{0}]() mutable {
    const gint64 now = g_get_monotonic_time();
    if (latest_without_list == 0 || !top_chooser_has_list()) {
      latest_without_list = now;
    }
    return now - latest_without_list > pause_between_loads;
  };
}
