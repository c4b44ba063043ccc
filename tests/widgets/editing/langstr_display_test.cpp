#include "gui/editing/langstr_display.h"

#include <string>

#include <gtest/gtest.h>

#include "base/owned.h"
#include "support/gui/layout.h"
#include "support/gui_driver.h"
#include "support/values/translations.h"

namespace {

class LangstrDisplayTest : public testing::Test {
protected:
  ~LangstrDisplayTest() override { g_object_unref(widget); }

  VLangstrDisplay *display() { return V_LANGSTR_DISPLAY(widget); }
  GtkTextView *view() { return GTK_TEXT_VIEW(gtk_bin_get_child(GTK_BIN(widget))); }

  // The shown text, with "*" around bold parts.
  std::string shown() {
    GtkTextBuffer *buffer = gtk_text_view_get_buffer(view());
    GtkTextTag *bold = gtk_text_tag_table_lookup(gtk_text_buffer_get_tag_table(buffer), "bold");
    std::string text;
    GtkTextIter place;
    gtk_text_buffer_get_start_iter(buffer, &place);
    for (;; gtk_text_iter_forward_char(&place)) {
      if (gtk_text_iter_toggles_tag(&place, bold)) {
        text += "*";
      }
      if (gtk_text_iter_is_end(&place)) {
        return text;
      }
      char bytes[6];
      const int count = g_unichar_to_utf8(gtk_text_iter_get_char(&place), bytes);
      text.append(bytes, static_cast<std::size_t>(count));
    }
  }

  GtkWidget *widget = GTK_WIDGET(g_object_ref_sink(v_langstr_display_new(300, 150)));
};

TEST_F(LangstrDisplayTest, TheTextHasTheSameMarginOnAllSides) {
  const int margin = gtk_text_view_get_left_margin(view());
  EXPECT_GT(margin, 0);
  EXPECT_EQ(gtk_text_view_get_right_margin(view()), margin);
  EXPECT_EQ(gtk_text_view_get_top_margin(view()), margin);
  EXPECT_EQ(gtk_text_view_get_bottom_margin(view()), margin);
}

TEST_F(LangstrDisplayTest, IsAScrolledReadOnlyText) {
  EXPECT_STREQ(G_OBJECT_TYPE_NAME(widget), "VLangstrDisplay");
  EXPECT_EQ(g_type_parent(V_TYPE_LANGSTR_DISPLAY), GTK_TYPE_SCROLLED_WINDOW);
  expect_scrolls_downwards(GTK_SCROLLED_WINDOW(widget), 300, 150);
  EXPECT_FALSE(gtk_text_view_get_editable(view()));
  EXPECT_FALSE(gtk_text_view_get_cursor_visible(view()));
  EXPECT_EQ(gtk_text_view_get_wrap_mode(view()), GTK_WRAP_WORD_CHAR);
}

TEST_F(LangstrDisplayTest, HasABoldTag) {
  GtkTextTagTable *tags = gtk_text_buffer_get_tag_table(gtk_text_view_get_buffer(view()));
  GtkTextTag *bold = gtk_text_tag_table_lookup(tags, "bold");
  ASSERT_NE(bold, nullptr);
  int weight = 0;
  g_object_get(bold, "weight", &weight, nullptr);
  EXPECT_EQ(weight, 700);
}

TEST_F(LangstrDisplayTest, ShowsOneTranslationWithoutATrailingLine) {
  EXPECT_EQ(v_langstr_display_set_text(display(), langstr_of({{"sv", "F\xE4rgbortfall"}}).get()),
            1);
  EXPECT_EQ(shown(), "*Swedish [sv]*\n\nF\u00E4rgbortfall");
}

TEST_F(LangstrDisplayTest, ShowsAllTranslationsInOrder) {
  const OwnedLangstr langstr = langstr_of({{"sv", "Spricka"},
                                           {"en-uk", "Crack, 100 % <b>&amp; %s"},
                                           {"", "?"},
                                           {"pl", "P\xEAkni\xEA"
                                                  "cie"}});
  EXPECT_EQ(v_langstr_display_set_text(display(), langstr.get()), 1);
  EXPECT_EQ(shown(), "*Swedish [sv]*\n\nSpricka\n\n"
                     "*English/United Kingdom [en-uk]*\n\nCrack, 100 % <b>&amp; %s\n\n"
                     "*Undefined*\n\n?\n\n"
                     "*Unknown language [pl]*\n\nP\u00EAkni\u00EAcie");
}

TEST_F(LangstrDisplayTest, ReplacesTheShownText) {
  v_langstr_display_set_text(display(), langstr_of({{"sv", "Spricka"}}).get());
  v_langstr_display_set_text(display(), langstr_of({{"nb", "Sprekk"}}).get());
  EXPECT_EQ(shown(), "*Norwegian Bokm\u00E5l [nb]*\n\nSprekk");
}

TEST_F(LangstrDisplayTest, IsClearedByAnAbsentText) {
  v_langstr_display_set_text(display(), langstr_of({{"sv", "Spricka"}}).get());
  EXPECT_EQ(v_langstr_display_set_text(display(), nullptr), 1);
  EXPECT_EQ(shown(), "");
}

TEST_F(LangstrDisplayTest, TakesNoTextOnceDestroyed) {
  gtk_widget_destroy(widget);
  EXPECT_EQ(v_langstr_display_set_text(display(), langstr_of({{"sv", "Spricka"}}).get()), 0);
  gtk_widget_destroy(widget);
}

} // namespace
