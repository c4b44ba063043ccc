#include "support/gui/file_choosers.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "support/gui/widget_search.h"
#include "support/wait.h"

namespace {

constexpr gint64 pause_between_loads = 200 * G_TIME_SPAN_MILLISECOND;

bool top_chooser_has_list() {
  GtkFileChooser *chooser = top_chooser();
  auto *list = chooser == nullptr
                   ? nullptr
                   : find_widget<GtkTreeView>(GTK_WIDGET(chooser), GTK_TYPE_TREE_VIEW);
  return list != nullptr && gtk_tree_view_get_model(list) != nullptr;
}

// The buttons of the path get their icons one by one.
bool top_chooser_has_icons() {
  const std::vector<GtkWidget *> images = find_widgets(GTK_WIDGET(top_chooser()), GTK_TYPE_IMAGE);
  return std::none_of(images.begin(), images.end(), [](GtkWidget *image) {
    return gtk_widget_get_mapped(image) &&
           gtk_image_get_storage_type(GTK_IMAGE(image)) == GTK_IMAGE_EMPTY;
  });
}

} // namespace

GtkFileChooser *top_chooser() {
  GtkWindow *window = top_window();
  return GTK_IS_FILE_CHOOSER_DIALOG(window) ? GTK_FILE_CHOOSER(window) : nullptr;
}

std::function<bool()> chooser_to_be_loaded() {
  return [pause = std::optional<Wait>()]() mutable {
    if (!pause || !top_chooser_has_list() || !top_chooser_has_icons()) {
      pause.emplace(pause_between_loads);
    }
    return pause->is_too_long();
  };
}
