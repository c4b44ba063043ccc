#include "gui/editing/spacifying_entry.h"

#include <string>

#include "spacifying_test.h"

namespace {

class SpacifyingEntryTest : public SpacifyingTest {
protected:
  SpacifyingEntryTest() : SpacifyingTest(v_spacifying_entry_new(Compact::yes)) {}

  VSpacifyingEntry *entry() { return V_SPACIFYING_ENTRY(widget); }
  GtkEditable *editable() { return GTK_EDITABLE(widget); }
  std::string shown() { return gtk_entry_get_text(GTK_ENTRY(widget)); }
};

OwnedText read_back(Compact compact, const char *latin1_text) {
  GtkWidget *widget = GTK_WIDGET(g_object_ref_sink(v_spacifying_entry_new(compact)));
  v_spacifying_entry_set_text(V_SPACIFYING_ENTRY(widget), latin1_text);
  OwnedText text = v_spacifying_entry_get_text(V_SPACIFYING_ENTRY(widget));
  g_object_unref(widget);
  return text;
}

TEST_F(SpacifyingEntryTest, IsAnEntryWithoutEmojis) {
  EXPECT_STREQ(G_OBJECT_TYPE_NAME(widget), "VSpacifyingEntry");
  EXPECT_EQ(g_type_parent(V_TYPE_SPACIFYING_ENTRY), GTK_TYPE_ENTRY);
  gboolean has_emoji_icon = TRUE;
  g_object_get(widget, "show-emoji-icon", &has_emoji_icon, nullptr);
  EXPECT_FALSE(has_emoji_icon);
  expect_no_emojis(gtk_entry_get_input_hints(GTK_ENTRY(widget)));
}

const std::vector<Insertion> insertions = common_insertions_and({"one\ntwo", "one two", 1});

TEST_F(SpacifyingEntryTest, RepairsInsertedText) {
  for (const Insertion &insertion : insertions) {
    gtk_entry_set_text(GTK_ENTRY(widget), "[]");
    int position = 1;
    gtk_editable_insert_text(editable(), insertion.text, -1, &position);
    EXPECT_EQ(shown(), std::string("[") + insertion.shown + "]");
    EXPECT_EQ(position, 1 + g_utf8_strlen(insertion.shown, -1)) << insertion.text;
    EXPECT_EQ(take_beep_count(), insertion.beeps) << insertion.text;
  }
}

TEST_F(SpacifyingEntryTest, RepairsPastedText) {
  const ShownWindow host(widget);
  for (const Insertion &insertion : insertions) {
    gtk_entry_set_text(GTK_ENTRY(widget), "[marked]");
    gtk_editable_select_region(editable(), 1, 7);
    if (*insertion.text == '\0') {
      continue;
    }
    paste(widget, insertion.text);
    EXPECT_EQ(shown(), std::string("[") + insertion.shown + "]");
    EXPECT_EQ(gtk_editable_get_position(editable()), 1 + g_utf8_strlen(insertion.shown, -1));
    EXPECT_EQ(take_beep_count(), insertion.beeps) << insertion.text;
  }
}

TEST_F(SpacifyingEntryTest, RepairsTypedText) {
  const ShownWindow host(widget);
  gtk_widget_grab_focus(widget);
  for (const int key : {GDK_KEY_a, GDK_KEY_space, GDK_KEY_aring}) {
    press_key(static_cast<guint>(key));
  }
  EXPECT_EQ(shown(), "a \u00E5");
  EXPECT_EQ(take_beep_count(), 0);
  press_key(GDK_KEY_nobreakspace);
  EXPECT_EQ(shown(), "a \u00E5 ");
  EXPECT_EQ(take_beep_count(), 1);
  press_key(GDK_KEY_EuroSign);
  press_key(GDK_KEY_b);
  EXPECT_EQ(shown(), "a \u00E5 b");
  EXPECT_EQ(take_beep_count(), 1);
}

TEST_F(SpacifyingEntryTest, ReturnsTheWholeOfATextThatIsTooLongToShow) {
  auto *entry = V_SPACIFYING_ENTRY(widget);
  const std::string longest(65'534, 'x');
  v_spacifying_entry_set_text(entry, longest.c_str());
  EXPECT_EQ(shown(), longest);
  const std::string too_long = longest + " \xe5 and its end";
  v_spacifying_entry_set_text(entry, too_long.c_str());
  EXPECT_LT(shown().size(), too_long.size());
  EXPECT_EQ(v_spacifying_entry_get_text(entry).get(), too_long);
  // A character that does not fit is not inserted and changes nothing.
  int end = -1;
  gtk_editable_insert_text(editable(), "z", 1, &(end = 65'534));
  EXPECT_EQ(v_spacifying_entry_get_text(entry).get(), too_long);
  v_spacifying_entry_set_text(entry, shown().c_str());
  EXPECT_LT(std::string(v_spacifying_entry_get_text(entry).get()).size(), too_long.size());
  v_spacifying_entry_set_text(entry, too_long.c_str());
  // Once the user edits the text, the part that is not shown is dropped.
  gtk_editable_delete_text(editable(), 10, -1);
  EXPECT_EQ(v_spacifying_entry_get_text(entry).get(), std::string(10, 'x'));
  v_spacifying_entry_set_text(entry, too_long.c_str());
  v_spacifying_entry_set_text(entry, "short");
  EXPECT_STREQ(v_spacifying_entry_get_text(entry).get(), "short");
}

TEST_F(SpacifyingEntryTest, InsertsARepairedTextOnce) {
  int insertion_count = 0;
  const auto count_insertion =
      +[](GtkEntryBuffer *, guint, char *, guint, int *count) { ++*count; };
  g_signal_connect(gtk_entry_get_buffer(GTK_ENTRY(widget)), "inserted-text",
                   G_CALLBACK(count_insertion), &insertion_count);
  int position = 0;
  gtk_editable_insert_text(editable(), "a\t\u20ACb", -1, &position);
  EXPECT_EQ(insertion_count, 1);
  gtk_editable_insert_text(editable(), "\u20AC", -1, &position);
  EXPECT_EQ(insertion_count, 1);
}

TEST_F(SpacifyingEntryTest, InsertsOnlyTheGivenLength) {
  int position = 0;
  gtk_editable_insert_text(editable(), "ab\tc", 2, &position);
  EXPECT_EQ(shown(), "ab");
  EXPECT_EQ(take_beep_count(), 0);
  gtk_editable_insert_text(editable(), "\tcd\u20AC", 2, &position);
  EXPECT_EQ(shown(), "ab c");
  EXPECT_EQ(position, 4);
}

TEST_F(SpacifyingEntryTest, InsertsNothingWhenTheTextIsNotUtf8) {
  gtk_entry_set_text(GTK_ENTRY(widget), "kept");
  int position = 2;
  g_signal_emit_by_name(widget, "insert-text", "a\xE5", 2, &position);
  EXPECT_EQ(shown(), "kept");
  EXPECT_EQ(position, 2);
  EXPECT_EQ(take_beep_count(), 1);
}

TEST_F(SpacifyingEntryTest, ShowsTheProgramsTextNormalisedWithoutABeep) {
  v_spacifying_entry_set_text(entry(), "  a\t\n b \xE5\xA0\xDF  ");
  EXPECT_EQ(shown(), "a b \u00E5 \u00DF");
  v_spacifying_entry_set_text(entry(), "\x01 100 % <b>");
  EXPECT_EQ(shown(), "\x01 100 % <b>");
  v_spacifying_entry_set_text(entry(), "");
  EXPECT_EQ(shown(), "");
  EXPECT_EQ(take_beep_count(), 0);
  int position = 0;
  gtk_editable_insert_text(editable(), "\t", -1, &position);
  EXPECT_EQ(take_beep_count(), 1);
}

TEST_F(SpacifyingEntryTest, ReadsNormalisedTextWithoutChangingTheShownText) {
  gtk_entry_set_text(GTK_ENTRY(widget), "   two  and   \u00E5tta ");
  EXPECT_STREQ(v_spacifying_entry_get_text(entry()).get(), "two and \xE5tta");
  EXPECT_EQ(shown(), "   two  and   \u00E5tta ");
}

TEST_F(SpacifyingEntryTest, ReadsOnlySpacesAsTheEmptyText) {
  gtk_entry_set_text(GTK_ENTRY(widget), "    ");
  const OwnedText text = v_spacifying_entry_get_text(entry());
  ASSERT_NE(text, nullptr);
  EXPECT_STREQ(text.get(), "");
}

TEST_F(SpacifyingEntryTest, RepairsTextThatBypassedTheHandlerWhenItIsRead) {
  gtk_entry_buffer_set_text(gtk_entry_get_buffer(GTK_ENTRY(widget)), "\u20AC a\u00A0\tb\x02", -1);
  EXPECT_STREQ(v_spacifying_entry_get_text(entry()).get(), "a b");
}

TEST(SpacifyingEntryCompactTest, DecidesWhetherRunsOfSpacesAreKept) {
  EXPECT_STREQ(read_back(Compact::yes, " a \t b\n\nc ").get(), "a b c");
  EXPECT_STREQ(read_back(Compact::no, " a \t b\n\nc ").get(), "a   b  c");
  EXPECT_STREQ(read_back(Compact::no, "").get(), "");
}

} // namespace
