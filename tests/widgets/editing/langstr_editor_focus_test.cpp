#include <array>

#include "editor_fixture.h"
#include "shown_window.h"
#include "support/gui_driver.h"

namespace {

// Where the focus is: the text field, combo box or delete button of a row, the plus button, or
// outside, on one of the buttons around the editor.
enum class Part { field, combo, delete_button, plus_button, outside };

struct Place {
  Part part;
  guint row;
};

constexpr int leaves = -1;

// The row whose field gets the focus for GTK_DIR_TAB_FORWARD, TAB_BACKWARD, UP, DOWN, LEFT and
// RIGHT.
struct Move {
  Place from;
  std::array<int, 6> to;
};

class LangstrEditorFocusTest : public EditorTest {
protected:
  LangstrEditorFocusTest() { settings.preferred_languages = {"sv", "en-uk", "de-de"}; }

  void put_focus(const ShownWindow &host, Place place) {
    gtk_window_set_focus(host.window(), host.before());
    GtkWidget *const targets[] = {field(place.row), GTK_WIDGET(combo(place.row)),
                                  delete_button(place.row), plus_button(), host.before()};
    // A combo box cannot take the focus, but a widget inside it can.
    GtkWidget *target = targets[static_cast<int>(place.part)];
    if (gtk_widget_get_can_focus(target)) {
      gtk_window_set_focus(host.window(), target);
    } else {
      gtk_widget_child_focus(target, GTK_DIR_TAB_FORWARD);
    }
    ASSERT_TRUE(host.focus() == target || gtk_widget_is_ancestor(host.focus(), target));
  }

  void expect_moves(const std::vector<Move> &moves) {
    const ShownWindow host(widget);
    for (const Move &move : moves) {
      for (int direction = GTK_DIR_TAB_FORWARD; direction <= GTK_DIR_RIGHT; direction++) {
        SCOPED_TRACE(testing::Message() << "part " << static_cast<int>(move.from.part) << " row "
                                        << move.from.row << " direction " << direction);
        put_focus(host, move.from);
        GtkWidget *focus = host.focus();
        const bool handled =
            gtk_widget_child_focus(widget, static_cast<GtkDirectionType>(direction));
        const int row = move.to[static_cast<std::size_t>(direction)];
        EXPECT_EQ(handled, row != leaves);
        EXPECT_EQ(host.focus(), row == leaves ? focus : field(static_cast<guint>(row)));
      }
    }
  }
};

const std::vector<Move> moves_of_three_rows = {
    //                          forward backward up    down    left    right
    {{Part::field, 0}, {1, leaves, leaves, 1, leaves, leaves}},
    {{Part::field, 1}, {2, 0, 0, 2, leaves, leaves}},
    {{Part::field, 2}, {leaves, 1, 1, leaves, leaves, leaves}},
    {{Part::combo, 0}, {1, 0, leaves, 1, 0, leaves}},
    {{Part::combo, 1}, {2, 1, 0, 2, 1, leaves}},
    {{Part::combo, 2}, {leaves, 2, 1, leaves, 2, leaves}},
    {{Part::delete_button, 0}, {1, 0, leaves, 1, 0, leaves}},
    {{Part::delete_button, 1}, {2, 1, 0, 2, 1, leaves}},
    {{Part::delete_button, 2}, {leaves, 2, 1, leaves, 2, leaves}},
    {{Part::plus_button, 0}, {leaves, 2, 1, leaves, 2, leaves}},
    {{Part::outside, 0}, {0, 2, 2, 0, 0, 0}},
};

TEST_F(LangstrEditorFocusTest, MovesFromFieldToField) {
  make({{"sv", "a"}, {"en-uk", "b"}, {"de-de", "c"}});
  expect_moves(moves_of_three_rows);
}

TEST_F(LangstrEditorFocusTest, MovesTheSameWayInMultiLineMode) {
  make({{"sv", "a"}, {"en-uk", "b"}, {"de-de", "c"}}, LangstrEditorMode::multi_line);
  expect_moves(moves_of_three_rows);
}

TEST_F(LangstrEditorFocusTest, StaysInTheOnlyRow) {
  make({});
  expect_moves({
      {{Part::field, 0}, {leaves, leaves, leaves, leaves, leaves, leaves}},
      {{Part::combo, 0}, {leaves, 0, leaves, leaves, 0, leaves}},
      {{Part::plus_button, 0}, {leaves, 0, leaves, leaves, 0, leaves}},
      {{Part::outside, 0}, {0, 0, 0, 0, 0, 0}},
  });
}

TEST_F(LangstrEditorFocusTest, DoesNotMoveToALockedField) {
  make({{"sv", "a"}, {"en-uk", "b"}, {"de-de", "c"}}, LangstrEditorMode::single_line,
       {{"en-uk", "b"}});
  expect_moves({
      {{Part::field, 0}, {leaves, leaves, leaves, leaves, leaves, leaves}},
      {{Part::field, 2}, {leaves, leaves, leaves, leaves, leaves, leaves}},
  });
}

TEST_F(LangstrEditorFocusTest, TabMovesThroughTheFields) {
  make({{"sv", "a"}, {"en-uk", "b"}});
  const ShownWindow host(widget);
  gtk_widget_grab_focus(host.before());
  const std::vector<GtkWidget *> stations = {field(0), field(1), host.after()};
  for (GtkWidget *station : stations) {
    press_key(GDK_KEY_Tab);
    EXPECT_EQ(host.focus(), station);
  }
  for (GtkWidget *station : {field(1), field(0), host.before()}) {
    press_key(GDK_KEY_ISO_Left_Tab, GDK_SHIFT_MASK);
    EXPECT_EQ(host.focus(), station);
  }
}

TEST_F(LangstrEditorFocusTest, ArrowKeysMoveThroughTheFields) {
  make({{"sv", "a"}, {"en-uk", "b"}});
  const ShownWindow host(widget);
  gtk_widget_grab_focus(host.before());
  for (GtkWidget *station : {field(0), field(1), host.after()}) {
    press_key(GDK_KEY_Down);
    EXPECT_EQ(host.focus(), station);
  }
  for (GtkWidget *station : {field(1), field(0), host.before()}) {
    press_key(GDK_KEY_Up);
    EXPECT_EQ(host.focus(), station);
  }
}

TEST_F(LangstrEditorFocusTest, PassesItsOwnFocusToTheFirstField) {
  make({{"sv", "a"}, {"en-uk", "b"}});
  EXPECT_TRUE(gtk_widget_get_can_focus(widget));
  EXPECT_FALSE(gtk_widget_get_focus_on_click(widget));
  const ShownWindow host(widget);
  gtk_window_set_focus(host.window(), widget);
  EXPECT_TRUE(wait_until("the focus in the first field", [&] { return host.focus() == field(0); }));
}

TEST_F(LangstrEditorFocusTest, PassesItsFocusWhenItsWindowBecomesActiveLater) {
  make({});
  GtkWidget *window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
  gtk_container_add(GTK_CONTAINER(window), widget);
  gtk_widget_show(widget);
  gtk_widget_show(window);
  gtk_window_set_focus(GTK_WINDOW(window), widget);
  EXPECT_TRUE(wait_until("the keyboard in the first field",
                         [&] { return gtk_widget_has_focus(field(0)); }));
  gtk_container_remove(GTK_CONTAINER(window), widget);
  gtk_widget_destroy(window);
}

TEST_F(LangstrEditorFocusTest, MovesToTheFieldOfANewRow) {
  for (const auto mode : {LangstrEditorMode::single_line, LangstrEditorMode::multi_line}) {
    make({{"sv", "a"}}, mode);
    const ShownWindow host(widget);
    for (guint row = 1; row < 4; row++) {
      click(plus_button());
      EXPECT_EQ(host.focus(), field(row));
    }
    press_key(GDK_KEY_x);
    EXPECT_EQ(shown_text(3), "x");
    gtk_widget_destroy(widget);
    g_object_unref(std::exchange(widget, nullptr));
  }
}

TEST_F(LangstrEditorFocusTest, MovesToTheFieldOfARowWhoseLanguageChanges) {
  for (const auto mode : {LangstrEditorMode::single_line, LangstrEditorMode::multi_line}) {
    make({{"sv", "first"}, {"en-uk", "second"}}, mode);
    const ShownWindow host(widget);
    gtk_combo_box_set_active(combo(1), 2);
    EXPECT_EQ(host.focus(), field(1));
    if (mode == LangstrEditorMode::single_line) {
      EXPECT_FALSE(gtk_editable_get_selection_bounds(GTK_EDITABLE(field(1)), nullptr, nullptr));
    }
    gtk_widget_destroy(widget);
    g_object_unref(std::exchange(widget, nullptr));
  }
}

TEST_F(LangstrEditorFocusTest, MovesToTheRowThatReplacesADeletedOne) {
  make({{"sv", "a"}, {"en-uk", "b"}, {"de-de", "c"}});
  const ShownWindow host(widget);
  gtk_widget_grab_focus(delete_button(1));
  click(delete_button(1));
  EXPECT_EQ(host.focus(), field(1));
  EXPECT_EQ(shown_text(1), "c");
  gtk_widget_grab_focus(delete_button(1));
  click(delete_button(1));
  EXPECT_EQ(host.focus(), field(0));
}

TEST_F(LangstrEditorFocusTest, StaysWhereItIsWhenAnotherRowIsDeleted) {
  make({{"sv", "abc"}, {"en-uk", "b"}, {"de-de", "c"}});
  const ShownWindow host(widget);
  gtk_widget_grab_focus(field(0));
  gtk_editable_set_position(GTK_EDITABLE(field(0)), 2);
  click(delete_button(1));
  EXPECT_EQ(host.focus(), field(0));
  EXPECT_EQ(gtk_editable_get_position(GTK_EDITABLE(field(0))), 2);
  gtk_widget_grab_focus(host.after());
  click(delete_button(1));
  EXPECT_EQ(host.focus(), host.after());
}

} // namespace
