#include "gui/message_dialogs.h"

#include <functional>
#include <optional>

#include <gtest/gtest.h>

#include "base/error.h"
#include "gui/widgets.h"
#include "support/gui/layout.h"
#include "support/gui_driver.h"

namespace {

constexpr const char *literal_text = "100 % <b>bold</b> & é\n\nsecond &lt; paragraph";

// The visible parts of a dialog.
struct Seen {
  std::string title;
  std::string text;
  bool is_markup = true;
  std::string icon_name;
  GtkIconSize icon_size = GTK_ICON_SIZE_INVALID;
  std::vector<std::pair<std::string, int>> buttons;
  int spacing = -1;
  std::vector<int> margins; // top, right, bottom, left
};

GtkBox *find_message_box(GtkDialog *dialog) {
  GList *children = gtk_container_get_children(GTK_CONTAINER(gtk_dialog_get_content_area(dialog)));
  GtkBox *box = GTK_BOX(children->data);
  g_list_free(children);
  return box;
}

Seen look_at(GtkDialog *dialog) {
  GtkBox *box = find_message_box(dialog);
  Seen seen;
  seen.title = gtk_window_get_title(GTK_WINDOW(dialog));
  GtkLabel *label = find_widget<GtkLabel>(GTK_WIDGET(box), GTK_TYPE_LABEL);
  seen.text = gtk_label_get_text(label);
  seen.is_markup = gtk_label_get_use_markup(label) != FALSE;
  if (GtkImage *image = find_widget<GtkImage>(GTK_WIDGET(box), GTK_TYPE_IMAGE)) {
    const char *icon_name = nullptr;
    gtk_image_get_icon_name(image, &icon_name, &seen.icon_size);
    seen.icon_name = icon_name;
  }
  for (GtkWidget *button : find_widgets(gtk_dialog_get_action_area(dialog), GTK_TYPE_BUTTON)) {
    seen.buttons.emplace_back(gtk_button_get_label(GTK_BUTTON(button)),
                              gtk_dialog_get_response_for_widget(dialog, button));
  }
  seen.spacing = gtk_box_get_spacing(box);
  GtkWidget *widget = GTK_WIDGET(box);
  seen.margins = {gtk_widget_get_margin_top(widget), gtk_widget_get_margin_end(widget),
                  gtk_widget_get_margin_bottom(widget), gtk_widget_get_margin_start(widget)};
  return seen;
}

// Looks at the dialog that the call shows and answers it.
Seen see(const std::function<void()> &call, int answer = GTK_RESPONSE_DELETE_EVENT) {
  Seen seen;
  when_dialog_shows([&](GtkDialog *dialog) {
    seen = look_at(dialog);
    gtk_dialog_response(dialog, answer);
  });
  call();
  return seen;
}

struct Kind {
  const char *name;
  std::function<void(VWindowStack *)> show;
  std::string title;
  std::string icon_name;
  std::vector<std::pair<std::string, int>> buttons;
};

const std::vector<std::pair<std::string, int>> ok = {{"OK", -5}};
const std::vector<std::pair<std::string, int>> close_only = {{"Close", -7}};
const std::vector<std::pair<std::string, int>> no_yes = {{"No", -9}, {"Yes", -8}};

// Every way to show the literal text.
const Kind kinds[] = {
    {"message", [](VWindowStack *s) { v_message_show(s, literal_text); }, "Message", "", ok},
    {"message_printf", [](VWindowStack *s) { v_message_show_utf8_printf(s, "%s", literal_text); },
     "Message", "", ok},
    {"error", [](VWindowStack *s) { v_message_show_error(s, literal_text); }, "Error",
     "dialog-error", close_only},
    {"error_printf",
     [](VWindowStack *s) { v_message_show_error_utf8_printf(s, "%s", literal_text); }, "Error",
     "dialog-error", close_only},
    {"warning", [](VWindowStack *s) { v_message_show_warning(s, literal_text); }, "Warning",
     "dialog-warning", close_only},
    {"warning_printf",
     [](VWindowStack *s) { v_message_show_warning_utf8_printf(s, "%s", literal_text); }, "Warning",
     "dialog-warning", close_only},
    {"question",
     [](VWindowStack *s) { v_message_ask_yes_no_question(s, 1, WarningIcon::no, literal_text); },
     "Question", "dialog-question", no_yes},
    {"question_printf",
     [](VWindowStack *s) {
       v_message_ask_yes_no_question_utf8_printf(s, 1, WarningIcon::no, "%s", literal_text);
     },
     "Question", "dialog-question", no_yes},
    {"question_with_warning",
     [](VWindowStack *s) { v_message_ask_yes_no_question(s, 0, WarningIcon::yes, literal_text); },
     "Question", "dialog-warning", no_yes},
    {"own_question",
     [](VWindowStack *s) {
       v_message_run_and_destroy_dialog(s, v_message_create_question_dialog(nullptr, literal_text));
     },
     "Question",
     "dialog-question",
     {}},
    {"own_question_printf",
     [](VWindowStack *s) {
       v_message_run_and_destroy_dialog(
           s, v_message_create_question_dialog_utf8_printf("Really <close>?", "%s", literal_text));
     },
     "Really <close>?",
     "dialog-question",
     {}},
};

class MessageKinds : public testing::TestWithParam<Kind> {};
INSTANTIATE_TEST_SUITE_P(All, MessageKinds, testing::ValuesIn(kinds),
                         [](const auto &row) { return std::string(row.param.name); });

TEST_P(MessageKinds, ShowTheTextLiterallyWithTheirIconAndButtons) {
  const Kind &kind = GetParam();
  const Seen seen = see([&] { kind.show(nullptr); });
  EXPECT_EQ(seen.title, kind.title);
  EXPECT_EQ(seen.text, literal_text);
  EXPECT_FALSE(seen.is_markup);
  EXPECT_EQ(seen.icon_name, kind.icon_name);
  EXPECT_EQ(seen.buttons, kind.buttons);
  if (kind.icon_name.empty()) {
    EXPECT_EQ(seen.spacing, 25);
    EXPECT_EQ(seen.margins, (std::vector{20, 25, 20, 25}));
  } else {
    EXPECT_EQ(seen.icon_size, 6);
    EXPECT_EQ(seen.spacing, 20);
    EXPECT_EQ(seen.margins, (std::vector{20, 25, 20, 20}));
  }
}

TEST_P(MessageKinds, HaveTheTextBesideTheIconAndButtonsOfOneWidthBelow) {
  when_dialog_shows([](GtkDialog *dialog) {
    GtkWidget *box = GTK_WIDGET(find_message_box(dialog));
    GtkWidget *text = find_widget<GtkWidget>(box, GTK_TYPE_LABEL);
    GtkWidget *icon = find_widget<GtkWidget>(box, GTK_TYPE_IMAGE);
    GtkWidget *text_place = gtk_widget_get_ancestor(text, GTK_TYPE_SCROLLED_WINDOW);
    std::vector<LayoutRow> rows = {
        {"box", box, corner(icon == nullptr ? 25 : 20, 20), grows, grows},
        {"text place", text_place, anywhere(), grows, grows}};
    if (icon != nullptr) {
      rows.push_back({"icon", icon, corner(20, 20), stays, stays});
    }
    const LayoutPlace place = icon == nullptr ? corner(25, 20) : beside("icon", 20);
    rows.push_back({"text", text, place, stays, stays, {{0.0f, 0.0f}}});
    const auto buttons = find_widgets(gtk_dialog_get_action_area(dialog), GTK_TYPE_BUTTON);
    if (buttons.size() == 1) {
      rows.push_back({"button", buttons[0], anywhere(), grows, moves});
    } else if (buttons.size() == 2) {
      rows.push_back({"left", buttons[0], anywhere(), grows_by_half, moves});
      rows.push_back({"right", buttons[1], end_of_row("left"), moves_and_grows_by_half, moves});
    }
    expect_layout(gtk_dialog_get_content_area(dialog), rows);
    EXPECT_FALSE(gtk_window_is_maximized(GTK_WINDOW(dialog)));
    gtk_dialog_response(dialog, GTK_RESPONSE_DELETE_EVENT);
  });
  GetParam().show(nullptr);
}

TEST_P(MessageKinds, ArePushedWhileTheyRun) {
  TestWindow window;
  const OwnedWindowStack stack = v_window_stack_new();
  v_window_stack_push_window(stack.get(), window.get());
  window.show_active();
  bool was_on_top = false;
  when_dialog_shows([&](GtkDialog *dialog) {
    was_on_top = stack->top->previous->window == GTK_WINDOW(dialog);
    EXPECT_EQ(gtk_window_get_transient_for(GTK_WINDOW(dialog)), window.get());
    EXPECT_TRUE(gtk_window_get_modal(GTK_WINDOW(dialog)));
    EXPECT_FALSE(gtk_widget_get_sensitive(window.widget()));
    gtk_dialog_response(dialog, GTK_RESPONSE_DELETE_EVENT);
  });
  GetParam().show(stack.get());
  EXPECT_TRUE(was_on_top);
  EXPECT_EQ(stack->top->previous->window, window.get());
  EXPECT_TRUE(gtk_widget_get_sensitive(window.widget()));
}

TEST(MessageDialogs, KindsHaveTheirTitlesIconsAndButtons) {
  struct Row {
    const MessageKind *kind;
    const char *title;
    const char *icon_name;
    int button_set;
  };
  const Row rows[] = {{info_message, "Message", nullptr, 1},
                      {error_message, "Error", "dialog-error", 2},
                      {warning_message, "Warning", "dialog-warning", 2},
                      {question_message, "Question", "dialog-question", 0}};
  for (const Row &row : rows) {
    EXPECT_STREQ(row.kind->title, row.title);
    EXPECT_STREQ(row.kind->icon_name, row.icon_name);
    EXPECT_EQ(static_cast<int>(row.kind->button_set), row.button_set);
  }
}

TEST(MessageDialogs, ReturnTheResponse) {
  int response = 0;
  see([&] { response = v_message_show(nullptr, "x"); }, GTK_RESPONSE_OK);
  EXPECT_EQ(response, -5);
  see([&] { response = v_message_show_error(nullptr, "x"); }, GTK_RESPONSE_CLOSE);
  EXPECT_EQ(response, -7);
  see([&] { response = v_message_show_warning(nullptr, "x"); }, GTK_RESPONSE_CLOSE);
  EXPECT_EQ(response, -7);
  see([&] { response = v_message_show_warning(nullptr, "x"); });
  EXPECT_EQ(response, -4);
}

TEST(MessageDialogs, TheUnknownErrorHasTheTextOfTheErrorState) {
  EXPECT_EQ(see([] { v_message_show_unknown_error(nullptr); }).text,
            "An unknown program error has occured.");
  const char *text = v_error_message_unknown;
  v_error_message_unknown = "Another text.";
  const Seen seen = see([] { v_message_show_unknown_error(nullptr); });
  v_error_message_unknown = text;
  EXPECT_EQ(seen.text, "Another text.");
  EXPECT_EQ(seen.title, "Error");
}

TEST(MessageDialogs, FormattedTextsTakeTheirArguments) {
  EXPECT_EQ(see([] { v_message_show_error_utf8_printf(nullptr, "%d of \"%s\"", 7, "é%s"); }).text,
            "7 of \"é%s\"");
}

struct Answer {
  const char *name;
  std::function<void(GtkDialog *)> act;
  std::optional<int> answer; // none: the default
};

void click(GtkDialog *dialog, int response) {
  gtk_button_clicked(GTK_BUTTON(gtk_dialog_get_widget_for_response(dialog, response)));
}

const Answer answers[] = {
    {"yes", [](GtkDialog *dialog) { click(dialog, GTK_RESPONSE_YES); }, 1},
    {"no", [](GtkDialog *dialog) { click(dialog, GTK_RESPONSE_NO); }, 0},
    {"window_manager", [](GtkDialog *dialog) { gtk_window_close(GTK_WINDOW(dialog)); }, {}},
    {"escape", [](GtkDialog *dialog) { press_key(GTK_WIDGET(dialog), GDK_KEY_Escape); }, {}},
    {"destroyed", [](GtkDialog *dialog) { gtk_widget_destroy(GTK_WIDGET(dialog)); }, {}},
    {"other", [](GtkDialog *dialog) { gtk_dialog_response(dialog, 12); }, {}},
};

class YesNoAnswers : public testing::TestWithParam<Answer> {};
INSTANTIATE_TEST_SUITE_P(All, YesNoAnswers, testing::ValuesIn(answers),
                         [](const auto &row) { return std::string(row.param.name); });

TEST_P(YesNoAnswers, AreOneZeroOrTheDefault) {
  for (const int default_answer : {0, 1}) {
    when_dialog_shows(GetParam().act);
    EXPECT_EQ(v_message_ask_yes_no_question(nullptr, default_answer, WarningIcon::no, "Sure?"),
              GetParam().answer.value_or(default_answer));
  }
}

TEST(MessageDialogs, ACustomQuestionAnswersWithTheCallersButtons) {
  when_dialog_shows([](GtkDialog *dialog) { click(dialog, GTK_RESPONSE_CANCEL); });
  GtkDialog *dialog = v_message_create_question_dialog("Really close?", "Changes are lost.");
  EXPECT_FALSE(gtk_widget_get_visible(GTK_WIDGET(dialog)));
  gtk_dialog_add_buttons(dialog, "Close", GTK_RESPONSE_CLOSE, "Cancel", GTK_RESPONSE_CANCEL,
                         nullptr);
  EXPECT_EQ(v_message_run_and_destroy_dialog(nullptr, dialog), GTK_RESPONSE_CANCEL);
}

TEST(MessageDialogs, ADialogIsDestroyedAfterItsRun) {
  GtkDialog *dialog = v_message_create_question_dialog(nullptr, "x");
  bool is_finalized = false;
  g_object_weak_ref(
      G_OBJECT(dialog), [](void *flag, GObject *) { *static_cast<bool *>(flag) = true; },
      &is_finalized);
  when_dialog_shows([](GtkDialog *shown) { gtk_dialog_response(shown, 1); });
  EXPECT_EQ(v_message_run_and_destroy_dialog(nullptr, dialog), 1);
  settle();
  EXPECT_TRUE(is_finalized);
}

// Destroying the window below destroys the dialog: the answer is the default, the stack consistent.
TEST(MessageDialogs, DestroyingTheWindowBelowEndsARunningDialog) {
  TestWindow bottom;
  TestWindow middle;
  const OwnedWindowStack stack = v_window_stack_new();
  v_window_stack_push_window(stack.get(), bottom.get());
  bottom.show_active();
  v_window_stack_push_window(stack.get(), middle.get());
  middle.show_active();
  when_dialog_shows([&](GtkDialog *) { middle.destroy(); });
  EXPECT_EQ(v_message_ask_yes_no_question(stack.get(), 1, WarningIcon::no, "Sure?"), 1);
  v_window_stack_pop_window(stack.get());
  EXPECT_EQ(stack->top->previous->window, bottom.get());
  EXPECT_TRUE(gtk_widget_get_sensitive(bottom.widget()));
}

struct Size {
  int width = 0;
  int height = 0;
};

Size measure(const std::string &text) {
  Size size;
  when_dialog_shows([&](GtkDialog *dialog) {
    gtk_window_get_size(GTK_WINDOW(dialog), &size.width, &size.height);
    gtk_dialog_response(dialog, GTK_RESPONSE_CLOSE);
  });
  v_message_show_error(nullptr, text.c_str());
  return size;
}

GtkLabel *find_text(GtkDialog *dialog) {
  return find_widget<GtkLabel>(GTK_WIDGET(find_message_box(dialog)), GTK_TYPE_LABEL);
}

TEST(MessageDialogs, AnOverlongLineWrapsAndAShortOneDoesNot) {
  const int line = measure("One line").height;
  // The longest line of the program's own messages.
  EXPECT_EQ(measure("This item was bundled with Vantorelle. You might want to clone it first, to "
                    "make your own independent copy.")
                .height,
            line);
  std::string words;
  for (int i = 0; i < 120; ++i) {
    words += "word ";
  }
  for (const std::string &text : {words, std::string("/") + std::string(600, 'x')}) {
    const Size size = measure(text);
    EXPECT_LT(size.width, 1200);
    EXPECT_GT(size.height, line);
    EXPECT_LT(size.height, 400);
  }
  when_dialog_shows([](GtkDialog *dialog) {
    EXPECT_EQ(gtk_label_get_max_width_chars(find_text(dialog)), 120);
    gtk_dialog_response(dialog, GTK_RESPONSE_CLOSE);
  });
  v_message_show_error(nullptr, words.c_str());
}

// The adjustment that scrolls the text.
GtkAdjustment *get_text_place(GtkDialog *dialog) {
  return gtk_scrolled_window_get_vadjustment(
      find_widget<GtkScrolledWindow>(GTK_WIDGET(dialog), GTK_TYPE_SCROLLED_WINDOW));
}

bool is_text_cut_off(GtkDialog *dialog) {
  GtkAdjustment *place = get_text_place(dialog);
  return gtk_adjustment_get_upper(place) > gtk_adjustment_get_page_size(place);
}

std::string make_lines(int count) {
  std::string lines;
  for (int i = 0; i < count; ++i) {
    lines += "line\n";
  }
  return lines;
}

struct DefaultRow {
  const char *name;
  std::function<void(const char *)> show;
  int response;
};

void ask_own_question(const char *text) {
  GtkDialog *dialog = v_message_create_question_dialog(nullptr, text);
  v_gui_add_dialog_button(dialog, "gtk-close", GTK_RESPONSE_CLOSE);
  v_gui_add_dialog_button(dialog, "gtk-cancel", GTK_RESPONSE_CANCEL);
  gtk_dialog_set_default_response(dialog, GTK_RESPONSE_CANCEL);
  v_message_run_and_destroy_dialog(nullptr, dialog);
}

const DefaultRow defaults[] = {
    {"message", [](const char *text) { v_message_show(nullptr, text); }, GTK_RESPONSE_OK},
    {"error", [](const char *text) { v_message_show_error(nullptr, text); }, GTK_RESPONSE_CLOSE},
    {"no",
     [](const char *text) { v_message_ask_yes_no_question(nullptr, 0, WarningIcon::yes, text); },
     GTK_RESPONSE_NO},
    {"yes",
     [](const char *text) { v_message_ask_yes_no_question(nullptr, 1, WarningIcon::no, text); },
     GTK_RESPONSE_YES},
    {"own", ask_own_question, GTK_RESPONSE_CANCEL},
};

void see_default(const DefaultRow &row, const std::string &text, bool is_cut_off) {
  when_dialog_shows([&row, is_cut_off](GtkDialog *dialog) {
    EXPECT_EQ(is_text_cut_off(dialog), is_cut_off) << row.name;
    GtkWidget *button = gtk_dialog_get_widget_for_response(dialog, row.response);
    EXPECT_EQ(gtk_window_get_focus(GTK_WINDOW(dialog)), button) << row.name;
    EXPECT_EQ(gtk_window_get_default_widget(GTK_WINDOW(dialog)), button) << row.name;
    gtk_dialog_response(dialog, GTK_RESPONSE_DELETE_EVENT);
  });
  row.show(text.c_str());
}

TEST(MessageDialogs, TheFocusIsOnTheButtonOfTheDefaultAnswer) {
  for (const DefaultRow &row : defaults) {
    see_default(row, "Sure?", false);
    see_default(row, make_lines(120), true);
  }
}

// In the alternative button order of some desktops the default answer may be the last button.
TEST(MessageDialogs, TheFocusIsOnTheButtonOfTheDefaultAnswerInTheAlternativeOrder) {
  GtkSettings *settings = gtk_settings_get_default();
  g_object_set(settings, "gtk-alternative-button-order", TRUE, nullptr);
  for (const DefaultRow &row : defaults) {
    see_default(row, "Sure?", false);
  }
  g_object_set(settings, "gtk-alternative-button-order", FALSE, nullptr);
}

TEST(MessageDialogs, ReturnGivesTheDefaultAnswer) {
  for (const int default_answer : {0, 1}) {
    when_dialog_shows([](GtkDialog *dialog) { press_key(GTK_WIDGET(dialog), GDK_KEY_Return); });
    EXPECT_EQ(v_message_ask_yes_no_question(nullptr, default_answer, WarningIcon::no, "Sure?"),
              default_answer);
  }
}

// The scroll position of the text, from 0 at its start to 1 at its end.
double get_scrolled(GtkDialog *dialog) {
  GtkAdjustment *adjustment = get_text_place(dialog);
  return gtk_adjustment_get_value(adjustment) /
         (gtk_adjustment_get_upper(adjustment) - gtk_adjustment_get_page_size(adjustment));
}

TEST(MessageDialogs, KeysScrollALongTextFromAnyFocus) {
  when_dialog_shows([](GtkDialog *dialog) {
    GtkWidget *button = gtk_dialog_get_widget_for_response(dialog, GTK_RESPONSE_CLOSE);
    for (GtkWidget *focus : {button, GTK_WIDGET(find_text(dialog))}) {
      gtk_widget_grab_focus(focus);
      const auto scroll = [&](guint key) {
        press_key(GTK_WIDGET(dialog), key);
        settle();
        EXPECT_EQ(gtk_window_get_focus(GTK_WINDOW(dialog)), focus);
        return get_scrolled(dialog);
      };
      EXPECT_EQ(scroll(GDK_KEY_Home), 0.0);
      const double step = scroll(GDK_KEY_Down);
      EXPECT_GT(step, 0.0);
      const double page = scroll(GDK_KEY_Page_Down) - step;
      EXPECT_GT(page, step);
      EXPECT_NEAR(scroll(GDK_KEY_Up), page, 0.001);
      EXPECT_NEAR(scroll(GDK_KEY_Page_Up), 0.0, 0.001);
      EXPECT_NEAR(scroll(GDK_KEY_End), 1.0, 0.001);
      EXPECT_EQ(scroll(GDK_KEY_KP_Home), 0.0);
      EXPECT_NEAR(scroll(GDK_KEY_KP_Page_Down), page, 0.001);
    }
    gtk_dialog_response(dialog, GTK_RESPONSE_CLOSE);
  });
  v_message_show_error(nullptr, make_lines(120).c_str());
}

TEST(MessageDialogs, OtherKeysDoNotScrollALongText) {
  when_dialog_shows([](GtkDialog *dialog) {
    press_key(GTK_WIDGET(dialog), GDK_KEY_End);
    for (const guint key : {GDK_KEY_x, GDK_KEY_F2, GDK_KEY_Left, GDK_KEY_Insert}) {
      press_key(GTK_WIDGET(dialog), key);
      settle();
      EXPECT_NEAR(get_scrolled(dialog), 1.0, 0.001);
    }
    gtk_dialog_response(dialog, GTK_RESPONSE_CLOSE);
  });
  v_message_show_error(nullptr, make_lines(120).c_str());
}

TEST(MessageDialogs, TheTextIsSelectedByTabAndCopied) {
  const OwnedWindowStack stack = v_window_stack_new();
  when_dialog_shows([](GtkDialog *dialog) {
    GtkLabel *label = find_text(dialog);
    EXPECT_FALSE(gtk_label_get_selection_bounds(label, nullptr, nullptr));
    press_key(GTK_WIDGET(dialog), GDK_KEY_Tab);
    EXPECT_EQ(gtk_window_get_focus(GTK_WINDOW(dialog)), GTK_WIDGET(label));
    g_signal_emit_by_name(label, "copy-clipboard"); // Ctrl+C
    press_key(GTK_WIDGET(dialog), GDK_KEY_Tab);
    EXPECT_EQ(gtk_window_get_focus(GTK_WINDOW(dialog)),
              gtk_dialog_get_widget_for_response(dialog, GTK_RESPONSE_CLOSE));
    gtk_dialog_response(dialog, GTK_RESPONSE_CLOSE);
  });
  v_message_show_error(stack.get(), literal_text);
  const OwnedText copied(gtk_clipboard_wait_for_text(gtk_clipboard_get(GDK_SELECTION_CLIPBOARD)));
  EXPECT_STREQ(copied.get(), literal_text);
}

TEST(MessageDialogs, ReturnGivesTheDefaultAnswerAlsoFromTheText) {
  for (const int default_answer : {0, 1}) {
    when_dialog_shows([](GtkDialog *dialog) {
      gtk_widget_grab_focus(GTK_WIDGET(find_text(dialog)));
      press_key(GTK_WIDGET(dialog), GDK_KEY_Return);
    });
    EXPECT_EQ(v_message_ask_yes_no_question(nullptr, default_answer, WarningIcon::no, "Sure?"),
              default_answer);
  }
}

TEST(MessageDialogs, AnEndlessTextLeavesTheButtonsOnTheScreen) {
  std::string words;
  for (int i = 0; i < 5000; ++i) {
    words += "word ";
  }
  GdkRectangle screen = {};
  gdk_monitor_get_geometry(gdk_display_get_monitor(gdk_display_get_default(), 0), &screen);
  const Size size = measure(words);
  EXPECT_LT(size.width, screen.width);
  EXPECT_LT(size.height, screen.height);
}

} // namespace
