#include "gui/editing/editing_widgets.h"

#include <gtest/gtest.h>

namespace {

class EditingWidgetsTest : public testing::Test {
protected:
  ~EditingWidgetsTest() override { g_object_unref(box); }

  void expect_packing(gpointer widget, bool expands) {
    gboolean expand = FALSE;
    gboolean fill = FALSE;
    guint padding = 1;
    GtkPackType end = GTK_PACK_END;
    gtk_box_query_child_packing(box, GTK_WIDGET(widget), &expand, &fill, &padding, &end);
    EXPECT_EQ(expand != FALSE, expands);
    EXPECT_EQ(fill != FALSE, expands);
    EXPECT_EQ(padding, 0u);
    EXPECT_EQ(end, GTK_PACK_START);
    EXPECT_TRUE(gtk_widget_get_visible(GTK_WIDGET(widget)));
  }

  GtkBox *box = GTK_BOX(g_object_ref_sink(gtk_box_new(GTK_ORIENTATION_VERTICAL, 0)));
};

TEST_F(EditingWidgetsTest, PacksEntries) {
  VSpacifyingEntry *entry = v_gui_pack_spacifying_entry(box, Expand::no, Compact::yes, " a  \xE5 ",
                                                        ActivatesDefault::yes);
  expect_packing(entry, false);
  EXPECT_STREQ(gtk_entry_get_text(GTK_ENTRY(entry)), "a \u00E5");
  EXPECT_TRUE(gtk_entry_get_activates_default(GTK_ENTRY(entry)));
  entry = v_gui_pack_spacifying_entry(box, Expand::yes, Compact::no, nullptr, ActivatesDefault::no);
  expect_packing(entry, true);
  EXPECT_STREQ(gtk_entry_get_text(GTK_ENTRY(entry)), "");
  EXPECT_FALSE(gtk_entry_get_activates_default(GTK_ENTRY(entry)));
}

TEST_F(EditingWidgetsTest, AddsTextViewsThatWrapInsideLongWords) {
  VSpacifyingTextView *view = v_gui_add_spacifying_text_view(GTK_CONTAINER(box));
  EXPECT_EQ(gtk_widget_get_parent(GTK_WIDGET(view)), GTK_WIDGET(box));
  EXPECT_EQ(gtk_text_view_get_wrap_mode(GTK_TEXT_VIEW(view)), GTK_WRAP_WORD_CHAR);
  EXPECT_TRUE(gtk_widget_get_visible(GTK_WIDGET(view)));
}

TEST_F(EditingWidgetsTest, PacksDisplaysExpanding) {
  VLangstrDisplay *display = v_gui_pack_langstr_display(box, 120, 90);
  expect_packing(display, true);
  int width = 0;
  int height = 0;
  gtk_widget_get_size_request(GTK_WIDGET(display), &width, &height);
  EXPECT_EQ(width, 120);
  EXPECT_EQ(height, 90);
}

TEST_F(EditingWidgetsTest, PacksEditorsNotExpanding) {
  const OwnedWindowStack stack = v_window_stack_new();
  const VSettings settings;
  expect_packing(v_gui_pack_langstr_editor(box, stack.get(), &settings,
                                           LangstrEditorMode::single_line, nullptr, nullptr,
                                           ActivatesDefault::no),
                 false);
  gtk_widget_destroy(GTK_WIDGET(box));
}

} // namespace
