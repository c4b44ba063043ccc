#include "editing_actions.h"

#include <iterator>
#include <stdexcept>

#include "base/text_encoding.h"
#include "codeset/codeset_io.h"
#include "gui/editing/langstr_editor.h"
#include "idle.h"
#include "langstr/supported_languages.h"
#include "support/codeset_generator.h"
#include "support/require.h"
#include "workspace/display_text.h"
#include "workspace/drafts.h"

namespace {

std::string describe(const VRemark *remark) {
  std::string text;
  for (const VLangstr *translation = remark->description.get(); translation != nullptr;
       translation = translation->next.get()) {
    const OwnedText language =
        v_supported_languages_format_language_string(translation->lang.get());
    text += std::string(text.empty() ? "" : "\n\n") + language.get() + "\n\n" +
            v_convert_latin1_to_utf8(translation->text.get()).get();
  }
  return text;
}

std::string format_row(const VSettings *settings, const VRemark *remark) {
  const char *text = v_util_get_langstr_string(settings, remark->description.get());
  const std::string latin1_text = std::string(remark->code.get()) + ". " + text;
  return v_convert_latin1_to_utf8(latin1_text.c_str()).get();
}

} // namespace

Vocabulary::Vocabulary(int remarks, int described_remarks) : remark_count(remarks) {
  path = folder.put("bench.codeset", v_bench_generate_codeset(remarks, CodeOrder::ascending));
  workspace.folder_path = copy_text(folder.path_of("").c_str());
  workspace.settings = v_settings_new(workspace.folder_path.get());
  workspace.settings->preferred_languages = {"en-uk", "sv"};
  const OwnedCodeset codeset = require(v_codeset_io_read_from_file(path.c_str()));
  const VRemarkList *list = codeset->remarks.get();
  for (const VRemark *remark = list->head.next; remark != &list->tail; remark = remark->next) {
    rows.push_back(format_row(workspace.settings.get(), remark));
    if (std::ssize(descriptions) < described_remarks) {
      descriptions.push_back(describe(remark));
    }
  }
}

GtkWidget *v_bench_find(GtkWidget *root, const WidgetTest &test) {
  if (test(root)) {
    return root;
  }
  GtkWidget *found = nullptr;
  if (GTK_IS_CONTAINER(root)) {
    GList *children = gtk_container_get_children(GTK_CONTAINER(root));
    for (const GList *at = children; at != nullptr && found == nullptr; at = at->next) {
      found = v_bench_find(GTK_WIDGET(at->data), test);
    }
    g_list_free(children);
  }
  return found;
}

GtkWidget *v_bench_find_in_top_window(const WidgetTest &test) {
  GList *windows = gtk_window_list_toplevels();
  GtkWidget *found = nullptr;
  for (const GList *at = windows; at != nullptr && found == nullptr; at = at->next) {
    GtkWidget *window = GTK_WIDGET(at->data);
    if (gtk_widget_get_visible(window) && gtk_widget_get_sensitive(window)) {
      found = v_bench_find(window, test);
    }
  }
  g_list_free(windows);
  if (found == nullptr) {
    throw std::runtime_error("A widget is not where it should be.");
  }
  return found;
}

void v_bench_click(const std::string &label) {
  GtkWidget *button = v_bench_find_in_top_window([&label](GtkWidget *widget) {
    return GTK_IS_BUTTON(widget) && label == gtk_button_get_label(GTK_BUTTON(widget));
  });
  gtk_button_clicked(GTK_BUTTON(button));
}

bool v_bench_is_list(GtkWidget *widget) { return GTK_IS_TREE_VIEW(widget); }

bool v_bench_is_langstr_editor(GtkWidget *widget) { return V_IS_LANGSTR_EDITOR(widget); }

GtkTreeView *v_bench_find_list() {
  return GTK_TREE_VIEW(v_bench_find_in_top_window(v_bench_is_list));
}

void v_bench_change_description() {
  GtkWidget *editor = v_bench_find_in_top_window(v_bench_is_langstr_editor);
  GtkWidget *field =
      v_bench_find(editor, [](GtkWidget *widget) -> bool { return GTK_IS_ENTRY(widget); });
  gtk_entry_set_text(GTK_ENTRY(field), "Changed");
}

void v_bench_close_editing_window() {
  gtk_widget_destroy(gtk_widget_get_toplevel(GTK_WIDGET(v_bench_find_list())));
}

void v_bench_select_row(GtkTreeView *view, int row) {
  GtkTreePath *path = gtk_tree_path_new_from_indices(row, -1);
  gtk_tree_view_set_cursor(view, path, nullptr, FALSE);
  gtk_tree_path_free(path);
}

void v_bench_edit(const Vocabulary &vocabulary, const std::function<void(double seconds)> &act) {
  v_bench_when_idle(Stopwatch(), act);
  run_editing_window(&vocabulary.context, vocabulary.path.c_str());
  // Otherwise the next window would ask about the draft.
  v_draft_remove(v_draft_open(vocabulary.path.c_str()).get());
}

void v_bench_open_dialog(const Vocabulary &vocabulary,
                         const std::function<void(double seconds)> &act, GtkWidget **window) {
  v_bench_edit(vocabulary, [&](double) {
    if (window != nullptr) {
      *window = gtk_widget_get_toplevel(GTK_WIDGET(v_bench_find_list()));
    }
    v_bench_select_row(v_bench_find_list(), vocabulary.remark_count / 2);
    v_bench_when_idle(Stopwatch(), act);
    v_bench_click("Edit");
  });
}
