#include "gui/editing/langstr_editor.h"

#include <array>
#include <utility>

#include <gmock/gmock.h>
#include <gspell/gspell.h>

#include "base/error.h"
#include "editor_fixture.h"
#include "gui/editing/spacifying_entry.h"
#include "gui/editing/spacifying_text_view.h"
#include "langstr/supported_languages.h"
#include "shown_window.h"
#include "support/editing_faults.h"
#include "support/gui_driver.h"

namespace {

using testing::ElementsAre;

constexpr char swedish[] = "Swedish [sv]";
constexpr char british[] = "English/United Kingdom [en-uk]";
constexpr char german[] = "German/Germany [de-de]";
constexpr char undefined[] = "Undefined";
constexpr char broken[] = "An error occured with the user interface.";
constexpr char unknown[] = "An unknown program error has occured.";

constexpr auto multi_line_mode = LangstrEditorMode::multi_line;

// One line per translation: tag, equals sign, text.
std::string describe(const OwnedLangstr &langstr) {
  std::string description;
  for (const auto &[tag, text] : translations_of(langstr)) {
    description.append(tag).append("=").append(text).append("\n");
  }
  return description;
}

class LangstrEditorTest : public EditorTest {
protected:
  LangstrEditorTest() {
    settings.preferred_languages = {"sv", "en-uk", "de-de"};
    take_beep_count();
  }

  // The editor's value, or "failed: " and the message.
  std::string result() {
    OwnedLangstr langstr = langstr_of({{"xx", "left over"}});
    v_error_clear();
    if (v_langstr_editor_get_text(editor(), langstr) == 1) {
      return langstr ? describe(langstr) : "absent";
    }
    EXPECT_EQ(langstr, nullptr);
    return std::string("failed: ") + v_error_get();
  }

  // The least width of a choice of languages.
  int width_of(GtkComboBox *choice) {
    int width = 0;
    gtk_widget_get_preferred_width(GTK_WIDGET(choice), &width, nullptr);
    return width;
  }

  void expect_cell(gpointer child, guint left, guint right, guint top, guint bottom,
                   GtkAttachOptions x_options, GtkAttachOptions y_options) {
    guint found[4] = {};
    GtkAttachOptions found_x{};
    GtkAttachOptions found_y{};
    guint x_padding = 1;
    guint y_padding = 1;
    gtk_container_child_get(GTK_CONTAINER(table()), GTK_WIDGET(child), "left-attach", &found[0],
                            "right-attach", &found[1], "top-attach", &found[2], "bottom-attach",
                            &found[3], "x-options", &found_x, "y-options", &found_y, "x-padding",
                            &x_padding, "y-padding", &y_padding, nullptr);
    EXPECT_THAT(found, ElementsAre(left, right, top, bottom));
    EXPECT_EQ(found_x, x_options);
    EXPECT_EQ(found_y, y_options);
    EXPECT_EQ(x_padding, 0u);
    EXPECT_EQ(y_padding, 0u);
  }

  // The dictionary that checks the row; "off" when the row is not checked.
  std::string spelling(guint row) {
    gboolean is_on = FALSE;
    GspellChecker *checker = nullptr;
    if (multi_line) {
      GtkTextView *view = GTK_TEXT_VIEW(field(row));
      GspellTextView *gspell_view = gspell_text_view_get_from_gtk_text_view(view);
      EXPECT_FALSE(gspell_text_view_get_enable_language_menu(gspell_view));
      is_on = gspell_text_view_get_inline_spell_checking(gspell_view);
      checker = gspell_text_buffer_get_spell_checker(
          gspell_text_buffer_get_from_gtk_text_buffer(gtk_text_view_get_buffer(view)));
    } else {
      GtkEntry *entry = GTK_ENTRY(field(row));
      is_on = gspell_entry_get_inline_spell_checking(gspell_entry_get_from_gtk_entry(entry));
      checker = gspell_entry_buffer_get_spell_checker(
          gspell_entry_buffer_get_from_gtk_entry_buffer(gtk_entry_get_buffer(entry)));
    }
    const GspellLanguage *language = gspell_checker_get_language(checker);
    return is_on ? gspell_language_get_code(language) : "off";
  }

  const char *spoken_name(gpointer child) {
    return atk_object_get_name(gtk_widget_get_accessible(GTK_WIDGET(child)));
  }

  const char *spoken_description(gpointer child) {
    return atk_object_get_description(gtk_widget_get_accessible(GTK_WIDGET(child)));
  }
};

// ---- The widget ---------------------------------------------------------------------------------

TEST_F(LangstrEditorTest, IsAVerticalBoxOfOneTable) {
  make({});
  EXPECT_STREQ(G_OBJECT_TYPE_NAME(widget), "VLangstrEditor");
  EXPECT_TRUE(GTK_IS_BOX(widget));
  EXPECT_EQ(gtk_orientable_get_orientation(GTK_ORIENTABLE(widget)), GTK_ORIENTATION_VERTICAL);
  gboolean expand = TRUE;
  gboolean fill = TRUE;
  gtk_box_query_child_packing(GTK_BOX(widget), GTK_WIDGET(table()), &expand, &fill, nullptr,
                              nullptr);
  EXPECT_FALSE(expand);
  EXPECT_FALSE(fill);
  EXPECT_EQ(gtk_table_get_default_row_spacing(table()), 8u);
  EXPECT_EQ(gtk_table_get_default_col_spacing(table()), 8u);
}

TEST_F(LangstrEditorTest, ShowAllDoesNotRevealHiddenChildren) {
  make({{"sv", "a"}});
  gtk_widget_hide(delete_button(0));
  EXPECT_FALSE(gtk_widget_get_visible(widget));
  gtk_widget_show_all(widget);
  EXPECT_TRUE(gtk_widget_get_visible(widget));
  EXPECT_FALSE(gtk_widget_get_visible(delete_button(0)));
  for (GtkWidget *each : {GTK_WIDGET(table()), field(0), GTK_WIDGET(combo(0)), plus_button()}) {
    EXPECT_TRUE(gtk_widget_get_visible(each));
  }
}

// Turns the wheel over the widget, as a mouse or, with GDK_SCROLL_SMOOTH, a touchpad does.
void turn_wheel(GtkWidget *over, GdkScrollDirection direction) {
  GtkWidget *button = find_widget<GtkWidget>(over, GTK_TYPE_TOGGLE_BUTTON);
  ASSERT_NE(button, nullptr);
  const Owned<GdkEvent, gdk_event_free> event(gdk_event_new(GDK_SCROLL));
  event->scroll.window = share(gtk_button_get_event_window(GTK_BUTTON(button))).release();
  event->scroll.direction = direction;
  event->scroll.delta_y = direction == GDK_SCROLL_SMOOTH ? 1 : 0;
  GdkSeat *seat = gdk_display_get_default_seat(gtk_widget_get_display(over));
  gdk_event_set_device(event.get(), gdk_seat_get_pointer(seat));
  gtk_main_do_event(event.get());
}

// The window scrolls instead.
TEST_F(LangstrEditorTest, TheWheelDoesNotChangeTheLanguage) {
  for (const LangstrEditorMode mode : {LangstrEditorMode::single_line, multi_line_mode}) {
    make({{"sv", "a"}, {"en-uk", "b"}}, mode);
    {
      const ShownWindow host(widget);
      int reached_window_count = 0;
      g_signal_connect(host.window(), "scroll-event",
                       G_CALLBACK(+[](GtkWidget *, GdkEvent *, int *count) -> gboolean {
                         ++*count;
                         return GDK_EVENT_STOP;
                       }),
                       &reached_window_count);
      int turn_count = 0;
      for (const guint row : {0U, 1U}) {
        for (const GdkScrollDirection direction :
             {GDK_SCROLL_UP, GDK_SCROLL_DOWN, GDK_SCROLL_SMOOTH}) {
          turn_wheel(GTK_WIDGET(combo(row)), direction);
          turn_count++;
          EXPECT_EQ(shown_language(0), swedish);
          EXPECT_EQ(shown_language(1), british);
          EXPECT_EQ(reached_window_count, turn_count);
        }
      }
    }
    g_object_unref(std::exchange(widget, nullptr));
  }
}

TEST_F(LangstrEditorTest, HasTheSignalShrunk) {
  GSignalQuery query;
  g_signal_query(g_signal_lookup("shrunk", V_TYPE_LANGSTR_EDITOR), &query);
  EXPECT_EQ(query.signal_flags, G_SIGNAL_RUN_FIRST);
  EXPECT_EQ(query.n_params, 0u);
  EXPECT_EQ(query.return_type, G_TYPE_NONE);
}

// ---- Initial rows -------------------------------------------------------------------------------

TEST_F(LangstrEditorTest, ShowsOneEmptyRowForNoValue) {
  make({});
  EXPECT_EQ(row_count(), 1u);
  EXPECT_EQ(shown_text(0), "");
  EXPECT_EQ(shown_language(0), swedish);
  EXPECT_THAT(choices(0), ElementsAre(swedish, british, german));
  EXPECT_EQ(result(), "absent");
}

TEST_F(LangstrEditorTest, ShowsOneRowPerTranslationInOrder) {
  make({{"de-de", " Ri\xDF  hier "},
        {"sv", "Spr\xE4"
               "cka, 100 % <b>&amp; %s"}});
  EXPECT_EQ(row_count(), 2u);
  EXPECT_EQ(shown_text(0), "Ri\u00DF hier");
  EXPECT_EQ(shown_language(0), german);
  EXPECT_EQ(shown_text(1), "Spr\u00E4cka, 100 % <b>&amp; %s");
  EXPECT_EQ(shown_language(1), swedish);
  EXPECT_EQ(result(), "de-de=Ri\xDF hier\nsv=Spr\xE4"
                      "cka, 100 % <b>&amp; %s\n");
  EXPECT_EQ(take_beep_count(), 0);
}

TEST_F(LangstrEditorTest, OffersALanguageThatIsNotAmongTheUsersOwn) {
  make({{"sv", "a"}, {"fr-fr", "b"}, {"", "c"}});
  EXPECT_THAT(choices(0), ElementsAre(swedish, british, german));
  EXPECT_THAT(choices(1), ElementsAre(swedish, british, german, "French/France [fr-fr]"));
  EXPECT_EQ(shown_language(1), "French/France [fr-fr]");
  EXPECT_THAT(choices(2), ElementsAre(swedish, british, german, undefined));
  EXPECT_EQ(shown_language(2), undefined);
  EXPECT_EQ(result(), "sv=a\nfr-fr=b\n=c\n");
}

TEST_F(LangstrEditorTest, OffersOnlyTheUndefinedLanguageWhenTheUserHasNone) {
  settings.preferred_languages.clear();
  make({{"", "a"}, {"en-uk", "b"}});
  click(plus_button());
  EXPECT_THAT(choices(0), ElementsAre(undefined));
  EXPECT_THAT(choices(1), ElementsAre(undefined, british));
  EXPECT_EQ(shown_language(1), british);
  EXPECT_THAT(choices(2), ElementsAre(undefined));
  EXPECT_EQ(shown_language(2), undefined);
  EXPECT_EQ(result(), "=a\nen-uk=b\n");
}

TEST_F(LangstrEditorTest, ShowsAnUnsupportedLanguageButCannotReturnIt) {
  make({{"sv", "a"}, {"pl", "b"}});
  EXPECT_EQ(shown_language(1), "Unknown language [pl]");
  EXPECT_EQ(spelling(1), "off");
  EXPECT_EQ(result(), std::string("failed: ") + unknown);
  enter(1, "");
  EXPECT_EQ(result(), "sv=a\n");
  enter(1, "b");
  gtk_combo_box_set_active(combo(1), 1);
  EXPECT_EQ(result(), "sv=a\nen-uk=b\n");
}

// A hidden widget asks for no room, so these editors are shown, in no window.
TEST_F(LangstrEditorTest, IsNotWidenedByALongTag) {
  make({{"sv", "a"}, {std::string(500, 'x').c_str(), "b"}});
  gtk_widget_show_all(widget);
  EXPECT_LT(width_of(combo(1)), 2 * width_of(combo(0)));
}

TEST_F(LangstrEditorTest, AChoiceWithALongTagHasRoomForEveryLanguage) {
  for (int i = 0; i < v_supported_languages_get_count(); ++i) {
    settings.preferred_languages.emplace_back(v_supported_languages_get_tag(i));
  }
  make({{"sv", "a"}, {std::string(500, 'x').c_str(), "b"}});
  gtk_widget_show_all(widget);
  EXPECT_GT(width_of(combo(0)), 0);
  EXPECT_GE(width_of(combo(1)), width_of(combo(0)));
}

// ---- Reading ------------------------------------------------------------------------------------

TEST_F(LangstrEditorTest, ReturnsTheRowsThatHaveAText) {
  make({});
  click(plus_button());
  click(plus_button());
  enter(0, "  \u00E5 \u00A0 b ");
  enter(1, "   ");
  enter(2, "c");
  EXPECT_EQ(result(), "sv=\xE5 b\nde-de=c\n");
}

TEST_F(LangstrEditorTest, ALanguageMayBeBesideItsDialect) {
  make({{"en-uk", "a"}, {"en", "b"}});
  EXPECT_EQ(result(), "en-uk=a\nen=b\n");
}

TEST_F(LangstrEditorTest, RefusesTwoTextsInOneLanguage) {
  make({{"sv", "a"}, {"en-uk", "b"}});
  gtk_combo_box_set_active(combo(0), 1);
  EXPECT_EQ(result(), "failed: Each language may only appear once. Language \"en-uk\" appears "
                      "several times.");
  enter(0, " ");
  EXPECT_EQ(result(), "en-uk=b\n");
  enter(0, "b");
  EXPECT_EQ(result(), "failed: Each language may only appear once. Language \"en-uk\" appears "
                      "several times.");
}

TEST_F(LangstrEditorTest, RefusesTwoTextsWithoutLanguage) {
  settings.preferred_languages.clear();
  make({{"", "a"}});
  click(plus_button());
  enter(1, "b");
  EXPECT_EQ(result(), "failed: Each language may only appear once. Language \"\" appears several "
                      "times.");
}

TEST_F(LangstrEditorTest, TreatsARowWithoutAChoiceAsUntagged) {
  make({{"sv", "a"}});
  gtk_combo_box_set_active(combo(0), -1);
  EXPECT_EQ(result(), "=a\n");
  EXPECT_EQ(spelling(0), "off");
}

TEST_F(LangstrEditorTest, ReadsLinesInMultiLineMode) {
  make({{"sv", "a\nb"}}, multi_line_mode);
  EXPECT_EQ(shown_text(0), "a\nb");
  enter(0, "\n a\t\nc \u00E5\n");
  EXPECT_EQ(result(), "sv=a \nc \xE5\n");
}

TEST_F(LangstrEditorTest, FailsWhenAFieldCannotBeRead) {
  make({{"sv", "a"}});
  fail_reading_entries_from(1);
  EXPECT_EQ(result(), std::string("failed: ") + unknown);
  fail_reading_entries_from(0);
  EXPECT_EQ(result(), "sv=a\n");
}

TEST_F(LangstrEditorTest, IsBrokenWhenARowCannotBeCreated) {
  fail_combo_boxes_from(2);
  GuiScript script;
  script.answer("Error", broken, "Close");
  make({{"sv", "a"}, {"en-uk", "b"}, {"de-de", "c"}});
  fail_combo_boxes_from(0);
  EXPECT_EQ(row_count(), 1u);
  EXPECT_EQ(result(), std::string("failed: ") + broken);
}

TEST_F(LangstrEditorTest, IsBrokenWhenNoRowCanBeCreated) {
  fail_combo_boxes_from(1);
  GuiScript script;
  script.answer("Error", broken, "Close");
  make({});
  EXPECT_EQ(result(), std::string("failed: ") + broken);
  // Further actions have no effect and are safe; a row that is added later does not repair it.
  click(plus_button());
  fail_combo_boxes_from(0);
  const ShownWindow host(widget);
  EXPECT_FALSE(gtk_widget_child_focus(widget, GTK_DIR_TAB_FORWARD));
  click(plus_button());
  EXPECT_EQ(shown_language(0), swedish);
  EXPECT_EQ(result(), std::string("failed: ") + broken);
}

TEST_F(LangstrEditorTest, KeepsItsRowsWhenANewOneCannotBeCreated) {
  make({{"sv", "a"}});
  fail_combo_boxes_from(1);
  click(plus_button());
  fail_combo_boxes_from(0);
  EXPECT_EQ(row_count(), 1u);
  EXPECT_EQ(result(), "sv=a\n");
}

// ---- Adding and deleting rows -------------------------------------------------------------------

TEST_F(LangstrEditorTest, SelectsTheFirstLanguageThatNoRowShows) {
  make({});
  click(plus_button());
  EXPECT_EQ(shown_language(1), british);
  gtk_combo_box_set_active(combo(0), 2);
  click(plus_button());
  EXPECT_EQ(shown_language(2), swedish);
}

TEST_F(LangstrEditorTest, SelectsTheFirstLanguageWhenAllAreTaken) {
  make({{"de-de", "a"}, {"sv", "b"}, {"en-uk", "c"}});
  click(plus_button());
  EXPECT_EQ(row_count(), 4u);
  EXPECT_EQ(shown_language(3), swedish);
}

TEST_F(LangstrEditorTest, KeepsTheRestOfARowWhenTheTableIsRebuilt) {
  for (const auto mode : {LangstrEditorMode::single_line, multi_line_mode}) {
    make({{"sv", "a"}, {"fr-fr", "b"}, {"en-uk", "c"}}, mode);
    enter(1, "changed");
    gtk_combo_box_set_active(combo(2), 2);
    GtkWidget *second_field = field(1);
    click(plus_button());
    click(delete_button(0));
    click(plus_button());
    EXPECT_EQ(row_count(), 4u);
    EXPECT_EQ(field(0), second_field);
    EXPECT_EQ(shown_text(0), "changed");
    EXPECT_EQ(shown_language(0), "French/France [fr-fr]");
    EXPECT_EQ(spelling(0), "fr");
    EXPECT_EQ(shown_text(1), "c");
    EXPECT_EQ(shown_language(1), german);
    EXPECT_EQ(spelling(1), "de_DE");
    EXPECT_EQ(result(), "fr-fr=changed\nde-de=c\n");
    gtk_widget_destroy(widget);
    g_object_unref(std::exchange(widget, nullptr));
  }
}

TEST_F(LangstrEditorTest, EnablesDeletingOnlyForMoreThanOneRow) {
  make({{"sv", "a"}});
  EXPECT_FALSE(gtk_widget_get_sensitive(delete_button(0)));
  click(plus_button());
  EXPECT_TRUE(gtk_widget_get_sensitive(delete_button(0)));
  EXPECT_TRUE(gtk_widget_get_sensitive(delete_button(1)));
  click(delete_button(0));
  EXPECT_FALSE(gtk_widget_get_sensitive(delete_button(0)));
  EXPECT_EQ(shown_language(0), british);
}

TEST_F(LangstrEditorTest, KeepsTheOnlyRow) {
  make({{"sv", "a"}});
  GuiScript script;
  script.answer("Error", "There must be at least one row.", "Close");
  click(delete_button(0));
  EXPECT_EQ(result(), "sv=a\n");
  EXPECT_EQ(shrunk_count, 0);
}

TEST_F(LangstrEditorTest, EmitsShrunkOncePerDeletedRow) {
  make({{"sv", "a"}, {"en-uk", "b"}, {"de-de", "c"}});
  EXPECT_EQ(shrunk_count, 0);
  click(delete_button(1));
  EXPECT_EQ(shrunk_count, 1);
  EXPECT_EQ(result(), "sv=a\nde-de=c\n");
  click(plus_button());
  EXPECT_EQ(shrunk_count, 1);
  click(delete_button(0));
  click(delete_button(0));
  EXPECT_EQ(shrunk_count, 3);
  EXPECT_EQ(result(), "absent");
}

TEST_F(LangstrEditorTest, EmitsShrunkAfterTheRowIsDeleted) {
  make({{"sv", "a"}, {"en-uk", "b"}});
  OwnedLangstr seen;
  const auto look = +[](VLangstrEditor *shrunk_editor, OwnedLangstr *langstr) {
    v_langstr_editor_get_text(shrunk_editor, *langstr);
  };
  g_signal_connect(widget, "shrunk", G_CALLBACK(look), &seen);
  click(delete_button(0));
  EXPECT_EQ(translations_of(seen), (Translations{{"en-uk", "b"}}));
}

TEST_F(LangstrEditorTest, MayBeDestroyedInAShrunkHandler) {
  make({{"sv", "a"}, {"en-uk", "b"}});
  g_signal_connect(widget, "shrunk", G_CALLBACK(gtk_widget_destroy), nullptr);
  click(delete_button(0));
  EXPECT_EQ(result(), "absent");
}

TEST_F(LangstrEditorTest, EmitsChangedAfterEachChange) {
  for (const auto mode : {LangstrEditorMode::single_line, multi_line_mode}) {
    make({{"sv", "a"}}, mode);
    std::string seen;
    const auto look = +[](VLangstrEditor *changed_editor, std::string *text) {
      OwnedLangstr langstr;
      v_langstr_editor_get_text(changed_editor, langstr);
      *text = describe(langstr);
    };
    g_signal_connect(widget, "changed", G_CALLBACK(look), &seen);
    enter(0, "c");
    EXPECT_EQ(seen, "sv=c\n");
    click(plus_button());
    enter(1, "d");
    EXPECT_EQ(seen, "sv=c\nen-uk=d\n");
    gtk_combo_box_set_active(combo(1), 2);
    EXPECT_EQ(seen, "sv=c\nde-de=d\n");
    click(delete_button(0));
    EXPECT_EQ(seen, "de-de=d\n");
    seen = "nothing";
    gtk_widget_destroy(widget);
    EXPECT_EQ(seen, "nothing");
    g_object_unref(std::exchange(widget, nullptr));
  }
}

TEST_F(LangstrEditorTest, MayBeDestroyedInAChangedHandler) {
  make({{"sv", "a"}, {"en-uk", "b"}});
  g_signal_connect(widget, "changed", G_CALLBACK(gtk_widget_destroy), nullptr);
  click(delete_button(0));
  EXPECT_EQ(result(), "absent");
}

TEST_F(LangstrEditorTest, FreesTheWidgetsOfADeletedRow) {
  for (const auto mode : {LangstrEditorMode::single_line, multi_line_mode}) {
    make({{"sv", "a"}, {"en-uk", "b"}}, mode);
    GtkWidget *gone[] = {field(0), GTK_WIDGET(combo(0)), delete_button(0), GTK_WIDGET(table())};
    for (GtkWidget *&each : gone) {
      g_object_add_weak_pointer(G_OBJECT(each), reinterpret_cast<gpointer *>(&each));
    }
    click(delete_button(0));
    for (GtkWidget *&each : gone) {
      EXPECT_EQ(each, nullptr);
    }
    gtk_widget_destroy(widget);
    g_object_unref(std::exchange(widget, nullptr));
  }
}

TEST_F(LangstrEditorTest, AnswersRealClicks) {
  make({{"sv", "a"}});
  const ShownWindow host(widget);
  gtk_widget_grab_focus(plus_button());
  press_key(GDK_KEY_space);
  EXPECT_TRUE(wait_until("a second row", [this] { return row_count() == 2; }));
  gtk_widget_grab_focus(delete_button(0));
  press_key(GDK_KEY_Return);
  EXPECT_TRUE(wait_until("a single row", [this] { return row_count() == 1; }));
  EXPECT_EQ(shown_language(0), british);
}

TEST_F(LangstrEditorTest, CtrlReturnAddsARowWhereverTheFocusIs) {
  make({{"sv", "a"}}, multi_line_mode);
  const ShownWindow host(widget);
  std::size_t rows = 1;
  for (GtkWidget *focused : {field(0), delete_button(0), plus_button()}) {
    gtk_widget_grab_focus(focused);
    press_key(GDK_KEY_Return, GDK_CONTROL_MASK);
    rows++;
    EXPECT_TRUE(wait_until("the added row", [&] { return row_count() == rows; })) << rows;
  }
  EXPECT_EQ(result(), "sv=a\n");
}

TEST_F(LangstrEditorTest, IsDestroyedWithAllItsRows) {
  for (const auto mode : {LangstrEditorMode::single_line, multi_line_mode}) {
    make({{"sv", "a"}, {"en-uk", "b"}, {"fr-fr", "c"}, {"", "d"}}, mode);
    for (int i = 0; i < 12; i++) {
      click(plus_button());
    }
    GtkWidget *gone[] = {field(0), field(15), plus_button(), GTK_WIDGET(combo(8))};
    for (GtkWidget *&each : gone) {
      g_object_add_weak_pointer(G_OBJECT(each), reinterpret_cast<gpointer *>(&each));
    }
    gtk_widget_destroy(widget);
    for (GtkWidget *&each : gone) {
      EXPECT_EQ(each, nullptr);
    }
    EXPECT_EQ(shrunk_count, 0);
    gtk_widget_destroy(widget);
    g_object_unref(std::exchange(widget, nullptr));
  }
}

// ---- Layout -------------------------------------------------------------------------------------

constexpr auto fill = static_cast<GtkAttachOptions>(GTK_EXPAND | GTK_FILL);
constexpr auto shrink = GTK_SHRINK;
constexpr auto shrink_and_fill = static_cast<GtkAttachOptions>(GTK_SHRINK | GTK_FILL);

TEST_F(LangstrEditorTest, LaysOutOneLinePerRow) {
  make({{"sv", "a"}, {"en-uk", "b"}, {"de-de", "c"}});
  EXPECT_EQ(table_rows(), 3u);
  for (guint row = 0; row < 3; row++) {
    expect_cell(field(row), 0, 1, row, row + 1, fill, fill);
    expect_cell(combo(row), 1, 2, row, row + 1, shrink, shrink);
    expect_cell(delete_button(row), 2, 3, row, row + 1, shrink, shrink);
    EXPECT_TRUE(V_IS_SPACIFYING_ENTRY(field(row)));
    EXPECT_EQ(gtk_entry_get_width_chars(GTK_ENTRY(field(row))), 68);
  }
  expect_cell(plus_button(), 3, 4, 2, 3, shrink, shrink);
  EXPECT_STREQ(gtk_button_get_label(GTK_BUTTON(plus_button())), " + ");
  EXPECT_STREQ(gtk_button_get_label(GTK_BUTTON(delete_button(0))), " - ");
  for (GtkWidget *button : {GTK_WIDGET(plus_button()), GTK_WIDGET(delete_button(0))}) {
    int x_padding = -1;
    int y_padding = -1;
    g_object_get(gtk_bin_get_child(GTK_BIN(button)), "xpad", &x_padding, "ypad", &y_padding,
                 nullptr);
    EXPECT_EQ(x_padding, 0);
    EXPECT_EQ(y_padding, 0);
  }
  click(plus_button());
  EXPECT_EQ(table_rows(), 4u);
  expect_cell(plus_button(), 3, 4, 3, 4, shrink, shrink);
}

// The alignments and the scales of a widget that aligns another: across and down.
std::array<float, 4> place_in(GtkWidget *alignment) {
  std::array<float, 4> place = {};
  g_object_get(alignment, "xalign", &place[0], "yalign", &place[1], "xscale", &place[2], "yscale",
               &place[3], nullptr);
  return place;
}

TEST_F(LangstrEditorTest, LaysOutTwoTableRowsPerRowInMultiLineMode) {
  make({{"sv", "a"}, {"en-uk", "b"}}, multi_line_mode);
  EXPECT_EQ(table_rows(), 4u);
  for (guint row = 0; row < 2; row++) {
    const guint top = 2 * row;
    GtkWidget *scroller = child_at(0, top);
    expect_cell(scroller, 0, 1, top, top + 2, fill, fill);
    expect_cell(combo(row), 1, 4, top, top + 1, shrink, shrink);
    GtkWidget *alignment = child_at(1, top + 1);
    expect_cell(alignment, 1, 2, top + 1, top + 2, shrink_and_fill, shrink);
    EXPECT_THAT(place_in(alignment), ElementsAre(0.0f, 1.0f, 0.0f, 0.0f));
    int width = 0;
    int height = 0;
    gtk_widget_get_size_request(scroller, &width, &height);
    EXPECT_EQ(width, 400);
    EXPECT_EQ(height, -1);
    GtkPolicyType policies[2] = {};
    gtk_scrolled_window_get_policy(GTK_SCROLLED_WINDOW(scroller), &policies[0], &policies[1]);
    EXPECT_THAT(policies, ElementsAre(GTK_POLICY_NEVER, GTK_POLICY_AUTOMATIC));
    EXPECT_EQ(gtk_scrolled_window_get_shadow_type(GTK_SCROLLED_WINDOW(scroller)), GTK_SHADOW_IN);
    EXPECT_TRUE(V_IS_SPACIFYING_TEXT_VIEW(field(row)));
    EXPECT_EQ(gtk_text_view_get_wrap_mode(GTK_TEXT_VIEW(field(row))), GTK_WRAP_WORD_CHAR);
  }
  expect_cell(child_at(3, 3), 3, 4, 3, 4, shrink_and_fill, shrink);
  EXPECT_EQ(gtk_widget_get_parent(plus_button()), child_at(3, 3));
  EXPECT_THAT(place_in(child_at(3, 3)), ElementsAre(1.0f, 1.0f, 0.0f, 0.0f));
}

TEST_F(LangstrEditorTest, LetsEnterActivateTheDefaultOnlyWhenAsked) {
  for (const auto activates : {ActivatesDefault::yes, ActivatesDefault::no}) {
    make({}, LangstrEditorMode::single_line, {}, activates);
    click(plus_button());
    for (guint row = 0; row < 2; row++) {
      EXPECT_EQ(gtk_entry_get_activates_default(GTK_ENTRY(field(row))) != FALSE,
                activates == ActivatesDefault::yes);
    }
    gtk_widget_destroy(widget);
    g_object_unref(std::exchange(widget, nullptr));
  }
}

TEST_F(LangstrEditorTest, LocksTexts) {
  make({{"sv", "a"}, {"", "b"}, {"de-de", "c"}}, LangstrEditorMode::single_line,
       {{"sv", "anything"}, {"", "whatever"}, {"fi", "not there"}});
  const struct {
    bool text;
    bool language;
    bool may_be_deleted;
  } sensitivities[] = {{false, false, false}, {false, true, false}, {true, true, true}};
  for (guint row = 0; row < 3; row++) {
    EXPECT_EQ(gtk_widget_get_sensitive(field(row)) != FALSE, sensitivities[row].text) << row;
    EXPECT_EQ(gtk_widget_get_sensitive(GTK_WIDGET(combo(row))) != FALSE,
              sensitivities[row].language)
        << row;
    EXPECT_EQ(gtk_widget_get_sensitive(delete_button(row)) != FALSE,
              sensitivities[row].may_be_deleted)
        << row;
  }
  click(plus_button());
  EXPECT_FALSE(gtk_widget_get_sensitive(field(0)));
  EXPECT_TRUE(gtk_widget_get_sensitive(field(3)));
  EXPECT_EQ(result(), "sv=a\n=b\nde-de=c\n");
}

// ---- Spelling and speech ------------------------------------------------------------------------

TEST_F(LangstrEditorTest, ChecksTheSpellingInTheRowsLanguage) {
  settings.preferred_languages = {"sv", "en-uk", "en-us", "de-de", "fr-fr", "en", "fo"};
  const struct {
    int choice;
    const char *dictionary;
  } languages[] = {{0, "sv_SE"}, {1, "en_GB"}, {2, "en_US"},
                   {3, "de_DE"}, {4, "fr"},    {5, "off"}, // several dictionaries match
                   {6, "off"},                             // its dictionary is not installed
                   {1, "en_GB"}};
  for (const auto mode : {LangstrEditorMode::single_line, multi_line_mode}) {
    make({}, mode);
    EXPECT_EQ(spelling(0), "sv_SE");
    for (const auto &language : languages) {
      gtk_combo_box_set_active(combo(0), language.choice);
      EXPECT_EQ(spelling(0), language.dictionary);
    }
    gtk_widget_destroy(widget);
    g_object_unref(std::exchange(widget, nullptr));
  }
}

TEST_F(LangstrEditorTest, NamesEachFieldByItsLanguage) {
  make({{"sv", "a"}, {"fr-fr", "b"}});
  EXPECT_STREQ(spoken_name(field(0)), swedish);
  EXPECT_STREQ(spoken_name(field(1)), "French/France [fr-fr]");
  gtk_combo_box_set_active(combo(0), 2);
  EXPECT_STREQ(spoken_name(field(0)), german);
  // The other widgets have their shown text as their name.
  EXPECT_STREQ(spoken_description(combo(0)), "Language");
  EXPECT_STREQ(spoken_name(combo(0)), german);
  EXPECT_STREQ(spoken_description(plus_button()), "Add a translation");
  EXPECT_STREQ(atk_action_get_keybinding(
                   ATK_ACTION(gtk_widget_get_accessible(GTK_WIDGET(plus_button()))), 0),
               ";;Ctrl+Return");
  EXPECT_STREQ(spoken_description(delete_button(1)), "Delete this translation");
}

} // namespace
