#include "gui/editing/spacifying_text_view.h"

#include <string>

#include "spacifying_test.h"

namespace {

class SpacifyingTextViewTest : public SpacifyingTest {
protected:
  SpacifyingTextViewTest() : SpacifyingTest(v_spacifying_text_view_new()) {}

  VSpacifyingTextView *view() { return V_SPACIFYING_TEXT_VIEW(widget); }
  GtkTextBuffer *buffer() { return gtk_text_view_get_buffer(GTK_TEXT_VIEW(widget)); }
  std::string shown() {
    char *text = nullptr;
    g_object_get(buffer(), "text", &text, nullptr);
    return OwnedText(text).get();
  }
  // Whether the view handles the key itself.
  bool takes_key(guint keyval) {
    GdkEventKey event = {};
    event.type = GDK_KEY_PRESS;
    event.window = gtk_widget_get_window(widget);
    event.keyval = keyval;
    return GTK_WIDGET_GET_CLASS(widget)->key_press_event(widget, &event);
  }
};

TEST_F(SpacifyingTextViewTest, IsATextViewWithoutEmojis) {
  EXPECT_STREQ(G_OBJECT_TYPE_NAME(widget), "VSpacifyingTextView");
  EXPECT_EQ(g_type_parent(V_TYPE_SPACIFYING_TEXT_VIEW), GTK_TYPE_TEXT_VIEW);
  expect_no_emojis(gtk_text_view_get_input_hints(GTK_TEXT_VIEW(widget)));
}

const std::vector<Insertion> insertions = common_insertions_and({"a\nb", "a\nb", 0});

TEST_F(SpacifyingTextViewTest, RepairsInsertedText) {
  for (const Insertion &insertion : insertions) {
    gtk_text_buffer_set_text(buffer(), "[]", -1);
    GtkTextIter place;
    gtk_text_buffer_get_iter_at_offset(buffer(), &place, 1);
    gtk_text_buffer_insert(buffer(), &place, insertion.text, -1);
    EXPECT_EQ(shown(), std::string("[") + insertion.shown + "]");
    EXPECT_EQ(gtk_text_iter_get_offset(&place), 1 + g_utf8_strlen(insertion.shown, -1));
    EXPECT_EQ(take_beep_count(), insertion.beeps) << insertion.text;
  }
}

TEST_F(SpacifyingTextViewTest, RepairsPastedText) {
  const ShownWindow host(widget);
  for (const Insertion &insertion : insertions) {
    gtk_text_buffer_set_text(buffer(), "", -1);
    paste(widget, insertion.text);
    EXPECT_EQ(shown(), insertion.shown);
    EXPECT_EQ(take_beep_count(), insertion.beeps) << insertion.text;
  }
}

// Pasted text has line feeds only, so insert the carriage return directly.
TEST_F(SpacifyingTextViewTest, ReplacesACarriageReturnByASpace) {
  GtkTextIter place;
  gtk_text_buffer_get_start_iter(buffer(), &place);
  gtk_text_buffer_insert(buffer(), &place, "a\r\nb", -1);
  EXPECT_EQ(shown(), "a \nb");
  EXPECT_EQ(take_beep_count(), 1);
}

TEST_F(SpacifyingTextViewTest, InsertsNothingWhenTheTextIsNotUtf8) {
  gtk_text_buffer_set_text(buffer(), "kept", -1);
  GtkTextIter place;
  gtk_text_buffer_get_start_iter(buffer(), &place);
  g_signal_emit_by_name(buffer(), "insert-text", &place, "a\xE5", 2);
  EXPECT_EQ(shown(), "kept");
  EXPECT_EQ(take_beep_count(), 1);
}

TEST_F(SpacifyingTextViewTest, ShowsTheProgramsTextNormalisedWithoutABeep) {
  v_spacifying_text_view_set_text(view(), "\n a\t\tb \n\n \xE5\xA0\x63\x01\n ");
  EXPECT_EQ(shown(), "a  b \n\n \u00E5 c\x01");
  v_spacifying_text_view_set_text(view(), "");
  EXPECT_EQ(shown(), "");
  EXPECT_EQ(take_beep_count(), 0);
}

TEST_F(SpacifyingTextViewTest, ReadsNormalisedTextWithoutChangingTheShownText) {
  const char *text = "\n  a  b \n\n\u00E5 \n";
  gtk_text_buffer_set_text(buffer(), text, -1);
  EXPECT_STREQ(v_spacifying_text_view_get_text(view()).get(), "a  b \n\n\xE5");
  EXPECT_EQ(shown(), text);
  gtk_text_buffer_set_text(buffer(), " \n ", -1);
  EXPECT_STREQ(v_spacifying_text_view_get_text(view()).get(), "");
}

TEST_F(SpacifyingTextViewTest, RepairsTheProgramsTextWhenItIsRead) {
  v_spacifying_text_view_set_text(view(), "a\x01\x02z");
  EXPECT_STREQ(v_spacifying_text_view_get_text(view()).get(), "az");
}

TEST_F(SpacifyingTextViewTest, LeavesTabToTheWindow) {
  const ShownWindow host(widget);
  gtk_widget_grab_focus(widget);
  press_key(GDK_KEY_Tab);
  EXPECT_EQ(host.focus(), host.after());
  gtk_widget_grab_focus(widget);
  EXPECT_FALSE(takes_key(GDK_KEY_KP_Tab));
  gtk_widget_grab_focus(widget);
  press_key(GDK_KEY_ISO_Left_Tab, GDK_SHIFT_MASK);
  EXPECT_EQ(host.focus(), host.before());
  EXPECT_EQ(shown(), "");
  EXPECT_EQ(take_beep_count(), 0);
}

TEST_F(SpacifyingTextViewTest, HandlesAllOtherKeys) {
  const ShownWindow host(widget);
  gtk_widget_grab_focus(widget);
  for (const int key : {GDK_KEY_a, GDK_KEY_Return, GDK_KEY_b, GDK_KEY_Left, GDK_KEY_c}) {
    press_key(static_cast<guint>(key));
  }
  EXPECT_EQ(shown(), "a\ncb");
  EXPECT_EQ(take_beep_count(), 0);
  press_key(GDK_KEY_EuroSign);
  EXPECT_EQ(shown(), "a\ncb");
  EXPECT_EQ(take_beep_count(), 1);
}

} // namespace
