#pragma once
// Fixture and table for the tests of the spacifying one-line field and text view.

#include <vector>

#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include "shown_window.h"
#include "support/editing_faults.h"
#include "support/gui_driver.h"

// A widget of its own, and no beeps yet.
class SpacifyingTest : public testing::Test {
protected:
  explicit SpacifyingTest(GtkWidget *floating) : widget(GTK_WIDGET(g_object_ref_sink(floating))) {
    take_beep_count();
  }
  ~SpacifyingTest() override { g_object_unref(widget); }

  static void expect_no_emojis(GtkInputHints hints) {
    EXPECT_EQ(hints & (GTK_INPUT_HINT_EMOJI | GTK_INPUT_HINT_NO_EMOJI), GTK_INPUT_HINT_NO_EMOJI);
  }

  GtkWidget *const widget;
};

// A text that a user types or pastes, how it is shown, and how often the program beeps.
struct Insertion {
  const char *text;
  const char *shown;
  int beeps;
};

// The rows that hold for one line and for several.
inline const std::vector<Insertion> common_insertions = {
    {"a\tb", "a b", 1},
    {"a b", "a b", 0},
    {"a  b", "a  b", 0},
    {"\u00A0", " ", 1},
    {"5 \u20AC net", "5  net", 1},
    {"a\u00A0\u2028\u20ACb", "a  b", 1},
    {"a\U0001F600b", "ab", 1},
    {"\U0001F600", "", 1},
    {"one\vtwo", "one two", 1},
    {"a\x01\x1F"
     "b",
     "ab", 1},
    {"\u00E5\u00E4\u00F6 100 % <b>&amp; %s", "\u00E5\u00E4\u00F6 100 % <b>&amp; %s", 0},
    {"", "", 0},
};

inline std::vector<Insertion> common_insertions_and(const Insertion &another) {
  std::vector<Insertion> insertions = common_insertions;
  insertions.push_back(another);
  return insertions;
}
