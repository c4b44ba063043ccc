// Measures the editing window with a large codeset against a window with a bare list of the same
// rows, or against bare copies of all its widgets. Both make all rows by the same calls of the
// toolkit; the bare list gets finished texts.

#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "bare_copy.h"
#include "bare_list_window.h"
#include "base/text_encoding.h"
#include "codeset/codeset_io.h"
#include "gui/editing/editing_window.h"
#include "gui/editing/langstr_editor.h"
#include "gui_rows.h"
#include "idle.h"
#include "langstr/supported_languages.h"
#include "support/codeset_generator.h"
#include "support/comparison.h"
#include "support/require.h"
#include "support/scratch_folder.h"
#include "workspace/display_text.h"
#include "workspace/drafts.h"

namespace {

constexpr int many_remarks = 100'000;
// All these rows are visible in both windows: otherwise the smaller list would scroll where the
// larger one need not.
constexpr int selection_count = 15;
constexpr int repetitions = 7;
constexpr char many_remarks_text[] = "100,000 remarks";

// ---- What both windows show ---------------------------------------------------------------------

struct Vocabulary {
  explicit Vocabulary(int remarks) : remark_count(remarks) {
    workspace.folder_path = copy_text(folder.path_of("").c_str());
    workspace.settings = v_settings_new(workspace.folder_path.get());
    workspace.settings->preferred_languages = {"en-uk", "sv"};
    const OwnedCodeset codeset = require(v_codeset_io_read_from_file(path.c_str()));
    const VRemarkList *list = codeset->remarks.get();
    for (const VRemark *remark = list->head.next; remark != &list->tail; remark = remark->next) {
      rows.push_back(row_of(remark));
    }
    // Only the rows that are selected need a description.
    for (const VRemark *remark = list->head.next; descriptions.size() <= selection_count;
         remark = remark->next) {
      descriptions.push_back(description_of(remark));
    }
  }

  std::string row_of(const VRemark *remark) const {
    const char *text =
        v_util_get_langstr_string(workspace.settings.get(), remark->description.get());
    const std::string latin1_text = std::string(remark->code.get()) + ". " + text;
    return v_convert_latin1_to_utf8(latin1_text.c_str()).get();
  }

  static std::string description_of(const VRemark *remark) {
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

  int remark_count;
  ScratchFolder folder;
  std::string path =
      folder.put("bench.codeset", v_bench_generate_codeset(remark_count, CodeOrder::ascending));
  VWorkspace workspace;
  OwnedWindowStack window_stack = v_window_stack_new();
  RunContext context = {window_stack.get(), &workspace};
  std::vector<std::string> rows;
  std::vector<std::string> descriptions; // in all languages, of the rows that are selected
};

// ---- Finding and using what a user sees ---------------------------------------------------------

using Test = std::function<bool(GtkWidget *widget)>;

GtkWidget *find(GtkWidget *root, const Test &test) {
  if (test(root)) {
    return root;
  }
  GtkWidget *found = nullptr;
  if (GTK_IS_CONTAINER(root)) {
    GList *children = gtk_container_get_children(GTK_CONTAINER(root));
    for (const GList *at = children; at != nullptr && found == nullptr; at = at->next) {
      found = find(GTK_WIDGET(at->data), test);
    }
    g_list_free(children);
  }
  return found;
}

// Searches the window that is shown and not covered by another.
GtkWidget *find_in_top_window(const Test &test) {
  GList *windows = gtk_window_list_toplevels();
  GtkWidget *found = nullptr;
  for (const GList *at = windows; at != nullptr && found == nullptr; at = at->next) {
    GtkWidget *window = GTK_WIDGET(at->data);
    if (gtk_widget_get_visible(window) && gtk_widget_get_sensitive(window)) {
      found = find(window, test);
    }
  }
  g_list_free(windows);
  if (found == nullptr) {
    throw std::runtime_error("A widget is not where it should be.");
  }
  return found;
}

void click(const std::string &label) {
  GtkWidget *button = find_in_top_window([&label](GtkWidget *widget) {
    return GTK_IS_BUTTON(widget) && label == gtk_button_get_label(GTK_BUTTON(widget));
  });
  gtk_button_clicked(GTK_BUTTON(button));
}

bool is_list(GtkWidget *widget) { return GTK_IS_TREE_VIEW(widget); }

bool is_langstr_editor(GtkWidget *widget) { return V_IS_LANGSTR_EDITOR(widget); }

GtkTreeView *find_list() { return GTK_TREE_VIEW(find_in_top_window(is_list)); }

// The text must change: otherwise no row changes either.
void change_description() {
  GtkWidget *editor = find_in_top_window(is_langstr_editor);
  GtkWidget *field = find(editor, [](GtkWidget *widget) -> bool { return GTK_IS_ENTRY(widget); });
  gtk_entry_set_text(GTK_ENTRY(field), "Changed");
}

void close_editing_window() {
  gtk_widget_destroy(gtk_widget_get_toplevel(GTK_WIDGET(find_list())));
}

// Moves the cursor, as the arrow keys do.
void select_row(GtkTreeView *view, int row) {
  GtkTreePath *path = gtk_tree_path_new_from_indices(row, -1);
  gtk_tree_view_set_cursor(view, path, nullptr, FALSE);
  gtk_tree_path_free(path);
}

// Opens the window, acts when it is idle, and returns when the window is closed.
void edit(const Vocabulary &vocabulary, const std::function<void(double seconds)> &act) {
  v_bench_when_idle(Stopwatch(), act);
  run_editing_window(&vocabulary.context, vocabulary.path.c_str());
  // Otherwise the next window would ask about the draft.
  v_draft_remove(v_draft_open(vocabulary.path.c_str()).get());
}

// ---- Opening ------------------------------------------------------------------------------------

double measure_opening_list(const Vocabulary &vocabulary) {
  const Stopwatch stopwatch;
  const OwnedCodeset codeset = require(v_codeset_io_read_from_file(vocabulary.path.c_str()));
  const BareListWindow window(vocabulary.rows);
  return v_bench_run_until_idle(stopwatch);
}

double measure_opening(const Vocabulary &vocabulary) {
  double result = 0;
  edit(vocabulary, [&result](double seconds) {
    result = seconds;
    close_editing_window();
  });
  return result;
}

// ---- One edit -----------------------------------------------------------------------------------

// Opens the dialog for the middle remark and acts when it is idle. window: receives the window
// below the dialog; may be null.
void open_dialog(const Vocabulary &vocabulary, const std::function<void(double seconds)> &act,
                 GtkWidget **window = nullptr) {
  edit(vocabulary, [&](double) {
    if (window != nullptr) {
      *window = gtk_widget_get_toplevel(GTK_WIDGET(find_list()));
    }
    select_row(find_list(), vocabulary.remark_count / 2);
    v_bench_when_idle(Stopwatch(), act);
    click("Edit");
  });
}

double measure_refilling_list(const Vocabulary &vocabulary) {
  BareListWindow window(vocabulary.rows);
  v_bench_run_until_idle(Stopwatch());
  const Stopwatch stopwatch;
  window.refill(vocabulary.rows);
  return v_bench_run_until_idle(stopwatch);
}

double measure_edit(const Vocabulary &vocabulary) {
  double result = 0;
  const auto finish = [&result](double seconds) {
    result = seconds;
    close_editing_window();
  };
  const auto confirm = [&finish](double) {
    change_description();
    v_bench_when_idle(Stopwatch(), finish);
    click("OK");
  };
  open_dialog(vocabulary, confirm);
  return result;
}

// ---- One edit, until the list answers -----------------------------------------------------------

// Measures the processor time until the window is drawn next.
class NextFrame {
public:
  explicit NextFrame(GtkWidget *window) {
    clock = gtk_widget_get_frame_clock(window);
    g_object_ref(clock);
    handler = g_signal_connect(clock, "after-paint", G_CALLBACK(after_paint_callback), this);
  }
  ~NextFrame() {
    g_signal_handler_disconnect(clock, handler);
    g_object_unref(clock);
  }
  NextFrame(const NextFrame &) = delete;
  NextFrame &operator=(const NextFrame &) = delete;

  double seconds() const { return drawn_after.value(); }

private:
  static void after_paint_callback(GdkFrameClock *, NextFrame *self) {
    if (!self->drawn_after) {
      self->drawn_after = self->stopwatch.seconds();
    }
  }

  GdkFrameClock *clock;
  gulong handler;
  std::optional<double> drawn_after;
  Stopwatch stopwatch;
};

// The answer is the first frame with the new row. After it the theme fades the window in for 200
// ms, frame by frame, but keys already work.
double measure_answer(const Vocabulary &vocabulary) {
  double result = 0;
  GtkWidget *window = nullptr;
  std::optional<NextFrame> frame;
  const auto finish = [&](double) {
    result = frame->seconds();
    frame.reset();
    close_editing_window();
  };
  const auto confirm = [&](double) {
    change_description();
    v_bench_when_idle(Stopwatch(), finish);
    frame.emplace(window);
    click("OK");
  };
  open_dialog(vocabulary, confirm, &window);
  return result;
}

// Bare copies of the editing window and of the dialog for one remark. They are never shown; each
// measurement copies them again.
struct BareCopies {
  explicit BareCopies(const Vocabulary &vocabulary) {
    GtkWidget *covered = nullptr;
    const auto copy = [&](double) {
      GtkWidget *editor = find_in_top_window(is_langstr_editor);
      dialog = v_bench_copy_bare(gtk_widget_get_toplevel(editor));
      window = v_bench_copy_bare(covered);
      v_bench_when_idle(Stopwatch(), [](double) { close_editing_window(); });
      click("Cancel");
    };
    open_dialog(vocabulary, copy, &covered);
  }
  ~BareCopies() {
    gtk_widget_destroy(dialog);
    gtk_widget_destroy(window);
  }
  BareCopies(const BareCopies &) = delete;
  BareCopies &operator=(const BareCopies &) = delete;

  GtkWidget *window = nullptr;
  GtkWidget *dialog = nullptr;
};

double measure_answer_of_copies(const Vocabulary &vocabulary, const BareCopies &copies) {
  GtkWidget *list_window = v_bench_copy_bare(copies.window);
  BareListWindow window(vocabulary.rows, GTK_TREE_VIEW(find(list_window, is_list)));
  const int place = vocabulary.remark_count / 2;
  select_row(window.view(), place);
  v_bench_run_until_idle(Stopwatch());
  GtkWidget *dialog = v_bench_copy_bare(copies.dialog);
  gtk_window_set_transient_for(GTK_WINDOW(dialog), GTK_WINDOW(list_window));
  gtk_window_set_modal(GTK_WINDOW(dialog), TRUE);
  gtk_widget_set_sensitive(list_window, FALSE);
  gtk_widget_show(dialog);
  v_bench_run_until_idle(Stopwatch());
  const NextFrame frame(list_window);
  gtk_widget_destroy(dialog);
  gtk_widget_set_sensitive(list_window, TRUE);
  window.replace_row(place, vocabulary.rows[static_cast<std::size_t>(place)]);
  select_row(window.view(), place);
  v_bench_run_until_idle(Stopwatch());
  return frame.seconds();
}

// ---- Selecting ----------------------------------------------------------------------------------

// Selects one remark after the other and measures the mean time of a selection.
class Selecting {
public:
  explicit Selecting(std::function<void()> when_done) : done(std::move(when_done)) {}

  void begin(GtkTreeView *list) {
    view = list;
    select_row(view, 0);
    v_bench_when_idle(Stopwatch(), [this](double) { step(); });
  }
  double seconds_each() const { return total / selection_count; }

private:
  void step() {
    if (row == selection_count) {
      done();
      return;
    }
    const Stopwatch stopwatch;
    select_row(view, ++row);
    v_bench_when_idle(stopwatch, [this](double seconds) {
      total += seconds;
      step();
    });
  }

  std::function<void()> done;
  GtkTreeView *view = nullptr;
  int row = 0;
  double total = 0;
};

double measure_selecting_in(BareListWindow &window) {
  v_bench_run_until_idle(Stopwatch());
  Selecting selecting(gtk_main_quit);
  selecting.begin(window.view());
  gtk_main();
  return selecting.seconds_each();
}

double measure_selecting_in_list(const Vocabulary &vocabulary) {
  BareListWindow window(vocabulary.rows);
  return measure_selecting_in(window);
}

double measure_selecting_in_list_with_descriptions(const Vocabulary &vocabulary) {
  BareListWindow window(vocabulary.rows);
  window.show_descriptions(vocabulary.descriptions);
  return measure_selecting_in(window);
}

double measure_selecting(const Vocabulary &vocabulary) {
  Selecting selecting(close_editing_window);
  edit(vocabulary, [&selecting](double) { selecting.begin(find_list()); });
  return selecting.seconds_each();
}

// ---- The rows -----------------------------------------------------------------------------------

using Measure = double (*)(const Vocabulary &vocabulary);

void add_row(const char *what, const char *baseline, std::optional<double> target,
             Measure measure_list, Measure measure_window) {
  v_bench_add_row({.what = what, .size = many_remarks_text, .baseline = baseline, .target = target},
                  repetitions, [=] {
                    const auto vocabulary = std::make_shared<Vocabulary>(many_remarks);
                    return Comparison{[=] { return measure_list(*vocabulary); },
                                      [=] { return measure_window(*vocabulary); }};
                  });
}

void add_answer_row(int remarks, const char *size) {
  v_bench_add_row({.what = "One edit, from OK until the list answers",
                   .size = size,
                   .baseline = "bare copies of both windows: the dialog is closed, and the list "
                               "gets one new row",
                   .target = 1.3},
                  repetitions, [=] {
                    const auto vocabulary = std::make_shared<Vocabulary>(remarks);
                    const auto copies = std::make_shared<BareCopies>(*vocabulary);
                    return Comparison{
                        [=] { return measure_answer_of_copies(*vocabulary, *copies); },
                        [=] { return measure_answer(*vocabulary); }};
                  });
}

} // namespace

void v_bench_add_editing_rows() {
  add_row("Open the editing window until idle",
          "the file is read, and a bare list of fixed-height rows shows the same", 1.3,
          measure_opening_list, measure_opening);
  add_row("One edit, from OK until idle", "a bare list store is refilled, off its view", 1.3,
          measure_refilling_list, measure_edit);
  for (const auto &[remarks, size] : {std::pair{60, "60 remarks"}, {20'000, "20,000 remarks"}}) {
    add_answer_row(remarks, size);
  }
  // The bare list shows no description, so the first row has no target.
  add_row("Select another remark until repainted", "the same in the bare list", std::nullopt,
          measure_selecting_in_list, measure_selecting);
  add_row("Select another remark until repainted",
          "the same in the bare list with a bare text view that shows the description", 1.2,
          measure_selecting_in_list_with_descriptions, measure_selecting);
}
