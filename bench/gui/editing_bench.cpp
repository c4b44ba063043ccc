// Measures the editing window with a large codeset against a window with a bare list of the same
// rows, or against bare copies of all its widgets. Both make all rows by the same calls of the
// toolkit; the bare list gets finished texts.

#include <functional>
#include <memory>
#include <optional>
#include <utility>

#include "bare_copy.h"
#include "bare_list_window.h"
#include "codeset/codeset_io.h"
#include "editing_actions.h"
#include "gui_rows.h"
#include "idle.h"
#include "support/comparison.h"
#include "support/require.h"

namespace {

constexpr int many_remarks = 100'000;
// All these rows are visible in both windows: otherwise the smaller list would scroll where the
// larger one need not.
constexpr int selection_count = 15;
constexpr int repetitions = 7;
constexpr char many_remarks_text[] = "100,000 remarks";

// ---- Opening ------------------------------------------------------------------------------------

double measure_opening_list(const Vocabulary &vocabulary) {
  const Stopwatch stopwatch;
  const OwnedCodeset codeset = require(v_codeset_io_read_from_file(vocabulary.path.c_str()));
  const BareListWindow window(vocabulary.rows);
  return v_bench_run_until_idle(stopwatch);
}

double measure_opening(const Vocabulary &vocabulary) {
  double result = 0;
  v_bench_edit(vocabulary, [&result](double seconds) {
    result = seconds;
    v_bench_close_editing_window();
  });
  return result;
}

// ---- One edit -----------------------------------------------------------------------------------

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
    v_bench_close_editing_window();
  };
  const auto confirm = [&finish](double) {
    v_bench_change_description();
    v_bench_when_idle(Stopwatch(), finish);
    v_bench_click("OK");
  };
  v_bench_open_dialog(vocabulary, confirm);
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
    v_bench_close_editing_window();
  };
  const auto confirm = [&](double) {
    v_bench_change_description();
    v_bench_when_idle(Stopwatch(), finish);
    frame.emplace(window);
    v_bench_click("OK");
  };
  v_bench_open_dialog(vocabulary, confirm, &window);
  return result;
}

// Bare copies of the editing window and of the dialog for one remark. They are never shown; each
// measurement copies them again.
struct BareCopies {
  explicit BareCopies(const Vocabulary &vocabulary) {
    GtkWidget *covered = nullptr;
    const auto copy = [&](double) {
      GtkWidget *editor = v_bench_find_in_top_window(v_bench_is_langstr_editor);
      dialog = v_bench_copy_bare(gtk_widget_get_toplevel(editor));
      window = v_bench_copy_bare(covered);
      v_bench_when_idle(Stopwatch(), [](double) { v_bench_close_editing_window(); });
      v_bench_click("Cancel");
    };
    v_bench_open_dialog(vocabulary, copy, &covered);
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
  BareListWindow window(vocabulary.rows, GTK_TREE_VIEW(v_bench_find(list_window, v_bench_is_list)));
  const int place = vocabulary.remark_count / 2;
  v_bench_select_row(window.view(), place);
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
  v_bench_select_row(window.view(), place);
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
    v_bench_select_row(view, 0);
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
    v_bench_select_row(view, ++row);
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
  Selecting selecting(v_bench_close_editing_window);
  v_bench_edit(vocabulary, [&selecting](double) { selecting.begin(v_bench_find_list()); });
  return selecting.seconds_each();
}

// ---- The rows -----------------------------------------------------------------------------------

using Measure = double (*)(const Vocabulary &vocabulary);

void add_row(const char *what, const char *baseline, std::optional<double> target,
             Measure measure_list, Measure measure_window) {
  v_bench_add_row({.what = what, .size = many_remarks_text, .baseline = baseline, .target = target},
                  repetitions, [=] {
                    const auto vocabulary =
                        std::make_shared<Vocabulary>(many_remarks, selection_count + 1);
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
                    const auto vocabulary = std::make_shared<Vocabulary>(remarks, 0);
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
