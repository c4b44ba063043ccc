#include "gui/labels.h"
#include "gui/lists.h"
#include "gui/text_fields.h"
#include "gui/widgets.h"

#include <string>

#include <dlfcn.h>
#include <gtest/gtest.h>

#include "gui/owned_objects.h"
#include "gui/screen_area.h"
#include "support/gui_driver.h"

namespace {

int resize_count = 0;

} // namespace

// Replaces the toolkit's function and counts its calls: the window manager may ignore a new size of
// a window that fills the screen, so the size alone shows nothing.
void gtk_window_resize(GtkWindow *window, int width, int height) {
  static const auto resize =
      reinterpret_cast<decltype(&gtk_window_resize)>(dlsym(RTLD_NEXT, "gtk_window_resize"));
  resize_count++;
  resize(window, width, height);
}

namespace {

template <typename T>
T get_property(void *object, const char *name) {
  T value{};
  g_object_get(object, name, &value, nullptr);
  return value;
}

struct Packing {
  gboolean expand = FALSE;
  gboolean fill = FALSE;
  guint padding = 0;
  GtkPackType pack_type = GTK_PACK_END;
};

Packing get_packing(GtkBox *box, void *child) {
  Packing packing;
  gtk_box_query_child_packing(box, GTK_WIDGET(child), &packing.expand, &packing.fill,
                              &packing.padding, &packing.pack_type);
  return packing;
}

// Expects a shown child, packed at the start of the box, that expands and fills or does neither.
// Its own child, if any, is shown too.
void expect_packed(GtkBox *box, void *child, bool expand) {
  ASSERT_EQ(gtk_widget_get_parent(GTK_WIDGET(child)), GTK_WIDGET(box));
  EXPECT_TRUE(gtk_widget_get_visible(GTK_WIDGET(child)));
  const Packing packing = get_packing(box, child);
  EXPECT_EQ(packing.expand, expand);
  EXPECT_EQ(packing.fill, expand);
  EXPECT_EQ(packing.padding, 0u);
  EXPECT_EQ(packing.pack_type, GTK_PACK_START);
}

void expect_alignment(void *alignment, float x_align, float y_align, float x_scale, float y_scale) {
  ASSERT_TRUE(GTK_IS_ALIGNMENT(alignment));
  EXPECT_TRUE(gtk_widget_get_visible(GTK_WIDGET(alignment)));
  EXPECT_FLOAT_EQ(get_property<float>(alignment, "xalign"), x_align);
  EXPECT_FLOAT_EQ(get_property<float>(alignment, "yalign"), y_align);
  EXPECT_FLOAT_EQ(get_property<float>(alignment, "xscale"), x_scale);
  EXPECT_FLOAT_EQ(get_property<float>(alignment, "yscale"), y_scale);
}

void expect_label(GtkLabel *label, const char *text, bool is_markup, float x_align, float y_align) {
  EXPECT_TRUE(gtk_widget_get_visible(GTK_WIDGET(label)));
  EXPECT_STREQ(gtk_label_get_label(label), text);
  EXPECT_EQ(gtk_label_get_use_markup(label), is_markup);
  EXPECT_FLOAT_EQ(gtk_label_get_xalign(label), x_align);
  EXPECT_FLOAT_EQ(gtk_label_get_yalign(label), y_align);
}

GtkWidget *parent_of(void *widget) { return gtk_widget_get_parent(GTK_WIDGET(widget)); }

constexpr const char *required_markup =
    "Name: <span style=\"italic\" alpha=\"50%\">(Required)</span>";

class Widgets : public testing::Test {
protected:
  TestWindow window;
  GtkBox *box = v_gui_add_vbox(GTK_CONTAINER(window.get()), Spacing::standard);
};

TEST(WindowWidget, HasTheGivenTitleAndTheMargin) {
  for (const char *title : {static_cast<const char *>(nullptr), "100 % <b>é</b> & more"}) {
    GtkWindow *window = v_gui_create_window(title);
    EXPECT_STREQ(gtk_window_get_title(window), title);
    EXPECT_EQ(gtk_container_get_border_width(GTK_CONTAINER(window)), 8u);
    EXPECT_EQ(gtk_window_get_window_type(window), GTK_WINDOW_TOPLEVEL);
    EXPECT_FALSE(gtk_widget_get_visible(GTK_WIDGET(window)));
    gtk_widget_destroy(GTK_WIDGET(window));
  }
}

TEST(WindowWidget, DefaultMarginIsEightPixels) { EXPECT_EQ(v_gui_get_default_margin(), 8); }

struct ButtonSetRow {
  VButtonSet button_set;
  int number;
  std::vector<std::pair<const char *, int>> buttons;
};

TEST(DialogWidget, HasTheButtonsOfItsSetInOrder) {
  const ButtonSetRow rows[] = {
      {VButtonSet::none, 0, {}},
      {VButtonSet::ok, 1, {{"OK", -5}}},
      {VButtonSet::close, 2, {{"Close", -7}}},
      {VButtonSet::yes_no, 4, {{"No", -9}, {"Yes", -8}}},
  };
  for (const ButtonSetRow &row : rows) {
    EXPECT_EQ(static_cast<int>(row.button_set), row.number);
    GtkDialog *dialog = v_gui_create_dialog("Title", row.button_set);
    const std::vector<GtkWidget *> buttons =
        find_widgets(gtk_dialog_get_action_area(dialog), GTK_TYPE_BUTTON);
    ASSERT_EQ(buttons.size(), row.buttons.size());
    for (std::size_t i = 0; i < buttons.size(); ++i) {
      EXPECT_STREQ(gtk_button_get_label(GTK_BUTTON(buttons[i])), row.buttons[i].first);
      EXPECT_EQ(gtk_dialog_get_response_for_widget(dialog, buttons[i]), row.buttons[i].second);
      EXPECT_TRUE(gtk_widget_get_visible(buttons[i]));
      EXPECT_TRUE(gtk_button_get_use_underline(GTK_BUTTON(buttons[i])));
      EXPECT_TRUE(gtk_button_get_use_stock(GTK_BUTTON(buttons[i])));
    }
    gtk_widget_destroy(GTK_WIDGET(dialog));
  }
}

TEST(DialogWidget, YesComesFirstInTheAlternativeOrder) {
  GtkSettings *settings = gtk_settings_get_default();
  g_object_set(settings, "gtk-alternative-button-order", TRUE, nullptr);
  GtkDialog *dialog = v_gui_create_dialog("Title", VButtonSet::yes_no);
  const std::vector<GtkWidget *> buttons =
      find_widgets(gtk_dialog_get_action_area(dialog), GTK_TYPE_BUTTON);
  g_object_set(settings, "gtk-alternative-button-order", FALSE, nullptr);
  ASSERT_EQ(buttons.size(), 2u);
  EXPECT_EQ(gtk_dialog_get_response_for_widget(dialog, buttons[0]), GTK_RESPONSE_YES);
  EXPECT_EQ(gtk_dialog_get_response_for_widget(dialog, buttons[1]), GTK_RESPONSE_NO);
  gtk_widget_destroy(GTK_WIDGET(dialog));
}

TEST(DialogWidget, IsModalAndDestroyedWithItsParentAndHasNoBorders) {
  GtkDialog *dialog = v_gui_create_dialog("Ärende", VButtonSet::ok);
  EXPECT_TRUE(gtk_window_get_modal(GTK_WINDOW(dialog)));
  EXPECT_TRUE(gtk_window_get_destroy_with_parent(GTK_WINDOW(dialog)));
  EXPECT_STREQ(gtk_window_get_title(GTK_WINDOW(dialog)), "Ärende");
  EXPECT_EQ(gtk_button_box_get_layout(GTK_BUTTON_BOX(gtk_dialog_get_action_area(dialog))),
            GTK_BUTTONBOX_EXPAND);
  int action_area_border = -1;
  int content_area_border = -1;
  gtk_widget_style_get(GTK_WIDGET(dialog), "action-area-border", &action_area_border,
                       "content-area-border", &content_area_border, nullptr);
  EXPECT_EQ(action_area_border, 0);
  EXPECT_EQ(content_area_border, 0);
  gtk_widget_destroy(GTK_WIDGET(dialog));
}

TEST_F(Widgets, BoxesHaveTheSpacingAndTheDirection) {
  struct Row {
    GtkBox *made;
    GtkOrientation orientation;
    int spacing;
  };
  const OwnedObject<GtkBox> standard = sink(v_gui_create_vbox(Spacing::standard));
  const OwnedObject<GtkBox> tight = sink(v_gui_create_vbox(Spacing::none));
  const OwnedObject<GtkWidget> frame = sink(gtk_frame_new(nullptr));
  const Row rows[] = {
      {standard.get(), GTK_ORIENTATION_VERTICAL, 8},
      {tight.get(), GTK_ORIENTATION_VERTICAL, 0},
      {v_gui_add_vbox(GTK_CONTAINER(frame.get()), Spacing::standard), GTK_ORIENTATION_VERTICAL, 8},
      {v_gui_pack_vbox(box, Expand::no, Spacing::none), GTK_ORIENTATION_VERTICAL, 0},
      {v_gui_pack_hbox(box, Expand::no, Spacing::none), GTK_ORIENTATION_HORIZONTAL, 0},
      {v_gui_pack_hbox(box, Expand::no, Spacing::standard), GTK_ORIENTATION_HORIZONTAL, 8},
  };
  for (const Row &row : rows) {
    EXPECT_EQ(gtk_orientable_get_orientation(GTK_ORIENTABLE(row.made)), row.orientation);
    EXPECT_EQ(gtk_box_get_spacing(row.made), row.spacing);
    EXPECT_FALSE(gtk_box_get_homogeneous(row.made));
    EXPECT_TRUE(gtk_widget_get_visible(GTK_WIDGET(row.made)));
  }
  EXPECT_EQ(gtk_bin_get_child(GTK_BIN(frame.get())), GTK_WIDGET(rows[2].made));
}

TEST_F(Widgets, PackedBoxesExpandAndFillOrNeither) {
  for (const Expand expand : {Expand::no, Expand::yes}) {
    const bool expands = expand == Expand::yes;
    expect_packed(box, v_gui_pack_vbox(box, expand, Spacing::none), expands);
    expect_packed(box, v_gui_pack_hbox(box, expand, Spacing::none), expands);
    expect_packed(box, v_gui_pack_entry(box, expand, nullptr, ActivatesDefault::no), expands);
  }
}

TEST_F(Widgets, PackingABoxInAnAlignmentReturnsTheInnerBox) {
  GtkBox *inner =
      v_gui_pack_hbox_in_alignment(box, Expand::yes, Spacing::standard, 0.0f, 1.0f, 0.5f, 0.25f);
  EXPECT_EQ(gtk_orientable_get_orientation(GTK_ORIENTABLE(inner)), GTK_ORIENTATION_HORIZONTAL);
  EXPECT_EQ(gtk_box_get_spacing(inner), 8);
  EXPECT_TRUE(gtk_widget_get_visible(GTK_WIDGET(inner)));
  expect_alignment(parent_of(inner), 0.0f, 1.0f, 0.5f, 0.25f);
  expect_packed(box, parent_of(inner), true);
}

TEST_F(Widgets, AFramedBoxHasTheFieldLabelAndTheMargin) {
  GtkBox *inner = v_gui_pack_vbox_in_frame_with_input_field_label(box, Expand::yes, "Name",
                                                                  Required::yes, Spacing::standard);
  EXPECT_EQ(gtk_orientable_get_orientation(GTK_ORIENTABLE(inner)), GTK_ORIENTATION_VERTICAL);
  EXPECT_EQ(gtk_box_get_spacing(inner), 8);
  EXPECT_EQ(gtk_container_get_border_width(GTK_CONTAINER(inner)), 8u);
  EXPECT_TRUE(gtk_widget_get_visible(GTK_WIDGET(inner)));
  GtkWidget *frame = parent_of(inner);
  ASSERT_TRUE(GTK_IS_FRAME(frame));
  expect_packed(box, frame, true);
  expect_label(GTK_LABEL(gtk_frame_get_label_widget(GTK_FRAME(frame))), required_markup, true, 0.5f,
               0.5f);
}

TEST_F(Widgets, AFrameLabelIsReplacedAndRemoved) {
  GtkFrame *frame = GTK_FRAME(gtk_frame_new("old"));
  gtk_container_add(GTK_CONTAINER(box), GTK_WIDGET(frame));
  v_gui_set_frame_label_markup(frame, "<i>new</i>");
  GtkLabel *label = GTK_LABEL(gtk_frame_get_label_widget(frame));
  expect_label(label, "<i>new</i>", true, 0.5f, 0.5f);
  EXPECT_STREQ(gtk_label_get_text(label), "new");
  v_gui_set_frame_label_markup(frame, nullptr);
  EXPECT_EQ(gtk_frame_get_label_widget(frame), nullptr);
}

TEST(FieldLabel, EndsWithTheColonOrTheRequiredMark) {
  struct Row {
    const char *label;
    Required required;
    const char *markup;
  };
  constexpr Row rows[] = {
      {"Name", Required::no, "Name:"},
      {"Name", Required::yes, required_markup},
      {"", Required::no, ":"},
      {"100 % a & <b>", Required::no, "100 % a &amp; &lt;b&gt;:"},
  };
  for (const Row &row : rows) {
    EXPECT_STREQ(v_util_format_input_field_label_markup(row.label, row.required).get(), row.markup);
  }
}

TEST_F(Widgets, LabelsShowTextOrMarkup) {
  const OwnedObject<GtkLabel> created =
      sink(v_gui_create_label_for_input_field("Name", Required::no, 0.25f, 0.75f));
  expect_label(created.get(), "Name:", true, 0.25f, 0.75f);

  GtkLabel *field = v_gui_pack_label_for_input_field(box, "Name", Required::yes, 0.0f, 1.0f);
  expect_label(field, required_markup, true, 0.0f, 1.0f);
  EXPECT_STREQ(gtk_label_get_text(field), "Name: (Required)");
  expect_packed(box, field, false);

  GtkLabel *plain = v_gui_pack_label(box, "<b>100 % &amp; é</b>", 1.0f, 0.0f);
  expect_label(plain, "<b>100 % &amp; é</b>", false, 1.0f, 0.0f);
  EXPECT_STREQ(gtk_label_get_text(plain), "<b>100 % &amp; é</b>");
  expect_packed(box, plain, false);

  GtkLabel *markup = v_gui_pack_label_with_markup(box, "<b>bold</b>", 0.0f, 0.0f);
  expect_label(markup, "<b>bold</b>", true, 0.0f, 0.0f);
  EXPECT_STREQ(gtk_label_get_text(markup), "bold");
  expect_packed(box, markup, false);
}

TEST_F(Widgets, ALabelIsWrappedWhenItHasTooManyCharactersOrNoRoom) {
  const std::string text(60, 'm');
  const int screen_width = v_screen_area_get(window.widget()).width;
  const struct {
    int widest_line;
    int reserved_pixels;
    bool is_wrapped;
  } rows[] = {
      {60, 0, false},
      {59, 0, true},
      {60, screen_width - 200, true},
      {59, screen_width - 200, true},
  };
  for (const auto &row : rows) {
    GtkLabel *label = v_gui_pack_label(box, text.c_str(), 0.0f, 0.0f);
    v_gui_wrap_overlong_label(label, row.widest_line, row.reserved_pixels);
    EXPECT_EQ(gtk_label_get_line_wrap(label), row.is_wrapped)
        << row.widest_line << " " << row.reserved_pixels;
    EXPECT_EQ(gtk_label_get_attributes(label) != nullptr, row.is_wrapped);
  }
}

// The box needs the height of its rows, but never more than three tenths of the screen's.
TEST_F(Widgets, AYieldingBoxNeedsTheHeightOfItsRowsUpToThreeTenthsOfTheScreen) {
  GtkBox *rows = v_gui_pack_yielding_vbox(box, Spacing::standard);
  GtkWidget *scroller = gtk_widget_get_ancestor(GTK_WIDGET(rows), GTK_TYPE_SCROLLED_WINDOW);
  const auto measure_minimum = [](GtkWidget *widget) {
    int minimum = 0;
    gtk_widget_get_preferred_height(widget, &minimum, nullptr);
    return minimum;
  };
  GtkWidget *row = gtk_drawing_area_new();
  gtk_widget_set_size_request(row, 10, 100);
  gtk_container_add(GTK_CONTAINER(rows), row);
  gtk_widget_show(row);
  EXPECT_EQ(measure_minimum(scroller), 100);
  gtk_widget_set_size_request(row, 10, 5000);
  EXPECT_EQ(measure_minimum(scroller), v_screen_area_get(scroller).height * 3 / 10);
}

TEST_F(Widgets, AListTakesTheRoomThatIsLeft) {
  GtkScrolledWindow *scroller = v_gui_pack_list_scrolled_window(box, 100, 50);
  expect_packed(box, scroller, true);
  int width = 0;
  int height = 0;
  gtk_widget_get_size_request(GTK_WIDGET(scroller), &width, &height);
  EXPECT_EQ(width, 100);
  EXPECT_EQ(height, 50);
}

TEST_F(Widgets, ButtonsHaveALabelOrNothingInside) {
  const OwnedObject<GtkButton> labelled = sink(v_gui_create_button("Save _as <b>"));
  EXPECT_STREQ(gtk_button_get_label(labelled.get()), "Save _as <b>");
  EXPECT_FALSE(gtk_button_get_use_underline(labelled.get()));
  const OwnedObject<GtkButton> empty = sink(v_gui_create_button(nullptr));
  EXPECT_EQ(gtk_bin_get_child(GTK_BIN(empty.get())), nullptr);
  EXPECT_TRUE(gtk_widget_get_visible(GTK_WIDGET(empty.get())));

  GtkButton *packed = v_gui_pack_button(box, "Packed", MakeDefault::no);
  expect_packed(box, packed, false);
  EXPECT_FALSE(gtk_widget_get_can_default(GTK_WIDGET(packed)));

  GtkButton *aligned = v_gui_pack_button_in_alignment(box, Expand::yes, "Close", MakeDefault::no,
                                                      1.0f, 0.0f, 0.0f, 0.5f);
  EXPECT_TRUE(gtk_widget_get_visible(GTK_WIDGET(aligned)));
  expect_alignment(parent_of(aligned), 1.0f, 0.0f, 0.0f, 0.5f);
  expect_packed(box, parent_of(aligned), true);
  EXPECT_EQ(gtk_window_get_default_widget(window.get()), nullptr);
}

TEST_F(Widgets, AButtonMadeDefaultIsPressedByEnterInAnEntryThatActivatesIt) {
  const auto count_clicks = +[](GtkButton *, int *clicks) { ++*clicks; };
  GtkEntry *silent = v_gui_pack_entry(box, Expand::no, nullptr, ActivatesDefault::no);
  GtkEntry *entry = v_gui_pack_entry(box, Expand::no, nullptr, ActivatesDefault::yes);
  GtkButton *first = v_gui_pack_button(box, "First", MakeDefault::yes);
  EXPECT_TRUE(gtk_widget_get_can_default(GTK_WIDGET(first)));
  EXPECT_EQ(gtk_window_get_default_widget(window.get()), GTK_WIDGET(first));
  GtkButton *second = v_gui_pack_button_in_alignment(box, Expand::no, "Second", MakeDefault::yes,
                                                     0.0f, 0.0f, 0.0f, 0.0f);
  EXPECT_EQ(gtk_window_get_default_widget(window.get()), GTK_WIDGET(second));
  int first_clicks = 0;
  int second_clicks = 0;
  g_signal_connect(first, "clicked", G_CALLBACK(count_clicks), &first_clicks);
  g_signal_connect(second, "clicked", G_CALLBACK(count_clicks), &second_clicks);

  window.show_active();
  gtk_widget_grab_focus(GTK_WIDGET(silent));
  press_key(window.widget(), GDK_KEY_Return);
  // The toolkit emits the click only after the button has been pressed for a moment.
  EXPECT_TRUE(holds_for(400, "no click on the second button", [&] { return second_clicks == 0; }));
  gtk_widget_grab_focus(GTK_WIDGET(entry));
  press_key(window.widget(), GDK_KEY_Return);
  EXPECT_TRUE(wait_until("a click on the second button", [&] { return second_clicks == 1; }));
  EXPECT_EQ(first_clicks, 0);
}

TEST_F(Widgets, OkAndCancelAreAtBothEndsOfTheirRow) {
  GtkBox *row = v_gui_pack_hbox(box, Expand::no, Spacing::standard);
  int count = 0;
  GtkButton *ok = v_gui_pack_ok_and_cancel(
      row, window.get(), G_CALLBACK(+[](GtkButton *, int *clicks) { ++*clicks; }), &count);
  window.show_active();
  GtkButton *cancel = find_button(window.widget(), "Cancel");
  ASSERT_NE(cancel, nullptr);
  EXPECT_EQ(gtk_window_get_default_widget(window.get()), GTK_WIDGET(ok));
  expect_packed(row, ok, false);
  expect_packed(row, parent_of(cancel), true);
  expect_alignment(parent_of(cancel), 1.0f, 0.0f, 0.0f, 0.0f);
  gtk_button_clicked(ok);
  EXPECT_EQ(count, 1);
  gtk_button_clicked(cancel);
  EXPECT_TRUE(window.is_destroyed());
}

TEST_F(Widgets, AnAlignmentHoldsAnyWidget) {
  GtkWidget *child = gtk_label_new("inside");
  const OwnedObject<GtkAlignment> alignment =
      sink(v_gui_create_alignment_for_widget(0.1f, 0.2f, 0.3f, 0.4f, child));
  EXPECT_EQ(parent_of(child), GTK_WIDGET(alignment.get()));
  expect_alignment(alignment.get(), 0.1f, 0.2f, 0.3f, 0.4f);
}

TEST_F(Widgets, ASpaceIsAnEmptyAlignmentOfItsSize) {
  v_gui_pack_space(box, 20, 3);
  GtkWidget *space = find_widget<GtkWidget>(GTK_WIDGET(box), GTK_TYPE_ALIGNMENT);
  ASSERT_NE(space, nullptr);
  expect_packed(box, space, false);
  EXPECT_EQ(gtk_bin_get_child(GTK_BIN(space)), nullptr);
  int width = 0;
  int height = 0;
  gtk_widget_get_size_request(space, &width, &height);
  EXPECT_EQ(width, 20);
  EXPECT_EQ(height, 3);
}

TEST_F(Widgets, EntriesHoldTextAndTakeNoEmojis) {
  const OwnedObject<GtkEntry> empty = sink(v_gui_create_entry(nullptr, ActivatesDefault::no));
  EXPECT_STREQ(v_gui_get_entry_text(empty.get()), "");
  EXPECT_FALSE(gtk_entry_get_activates_default(empty.get()));
  EXPECT_TRUE(gtk_widget_get_visible(GTK_WIDGET(empty.get())));

  GtkEntry *entry = v_gui_pack_entry(box, Expand::no, "100 % é", ActivatesDefault::yes);
  EXPECT_STREQ(v_gui_get_entry_text(entry), "100 % é");
  EXPECT_TRUE(gtk_entry_get_activates_default(entry));
  EXPECT_FALSE(get_property<gboolean>(entry, "show-emoji-icon"));
  EXPECT_EQ(gtk_entry_get_input_hints(entry), GTK_INPUT_HINT_NO_EMOJI);
  v_gui_set_entry_text(entry, "<b>");
  EXPECT_STREQ(v_gui_get_entry_text(entry), "<b>");
}

TEST_F(Widgets, EmojisAreSwitchedOffAndOtherHintsStay) {
  GtkEntry *entry = v_gui_pack_entry(box, Expand::no, nullptr, ActivatesDefault::no);
  gtk_entry_set_input_hints(
      entry, static_cast<GtkInputHints>(GTK_INPUT_HINT_EMOJI | GTK_INPUT_HINT_LOWERCASE));
  g_object_set(entry, "show-emoji-icon", TRUE, nullptr);
  v_gui_disable_emojis_in_entry(entry);
  EXPECT_EQ(gtk_entry_get_input_hints(entry), GTK_INPUT_HINT_NO_EMOJI | GTK_INPUT_HINT_LOWERCASE);
  EXPECT_FALSE(get_property<gboolean>(entry, "show-emoji-icon"));

  GtkTextView *text_view = v_gui_add_text_view(GTK_CONTAINER(box), Editable::yes);
  gtk_text_view_set_input_hints(
      text_view, static_cast<GtkInputHints>(GTK_INPUT_HINT_EMOJI | GTK_INPUT_HINT_SPELLCHECK));
  v_gui_disable_emojis_in_text_view(text_view);
  EXPECT_EQ(gtk_text_view_get_input_hints(text_view),
            GTK_INPUT_HINT_NO_EMOJI | GTK_INPUT_HINT_SPELLCHECK);
}

TEST_F(Widgets, TextViewsWrapAtWordsAndShowACursorWhenEditable) {
  for (const Editable editable : {Editable::no, Editable::yes}) {
    GtkTextView *text_view = v_gui_add_text_view(GTK_CONTAINER(box), editable);
    EXPECT_EQ(parent_of(text_view), GTK_WIDGET(box));
    EXPECT_TRUE(gtk_widget_get_visible(GTK_WIDGET(text_view)));
    EXPECT_EQ(gtk_text_view_get_wrap_mode(text_view), GTK_WRAP_WORD);
    EXPECT_EQ(gtk_text_view_get_editable(text_view), editable == Editable::yes);
    EXPECT_EQ(gtk_text_view_get_cursor_visible(text_view), editable == Editable::yes);
    EXPECT_EQ(gtk_text_view_get_input_hints(text_view), GTK_INPUT_HINT_NO_EMOJI);
  }
}

void expect_scrolled_window(GtkScrolledWindow *scrolled_window, int width, int height) {
  GtkPolicyType horizontal_policy;
  GtkPolicyType vertical_policy;
  gtk_scrolled_window_get_policy(scrolled_window, &horizontal_policy, &vertical_policy);
  EXPECT_EQ(horizontal_policy, GTK_POLICY_NEVER);
  EXPECT_EQ(vertical_policy, GTK_POLICY_ALWAYS);
  EXPECT_EQ(gtk_scrolled_window_get_shadow_type(scrolled_window), GTK_SHADOW_ETCHED_IN);
  EXPECT_FALSE(gtk_scrolled_window_get_overlay_scrolling(scrolled_window));
  EXPECT_TRUE(gtk_widget_get_visible(GTK_WIDGET(scrolled_window)));
  int requested_width = 0;
  int requested_height = 0;
  gtk_widget_get_size_request(GTK_WIDGET(scrolled_window), &requested_width, &requested_height);
  EXPECT_EQ(requested_width, width);
  EXPECT_EQ(requested_height, height);
}

TEST_F(Widgets, ScrolledWindowsHaveTheirPoliciesShadowAndSize) {
  const OwnedObject<GtkScrolledWindow> created = sink(v_gui_create_scrolled_window(
      300, -1, GTK_POLICY_NEVER, GTK_POLICY_ALWAYS, GTK_SHADOW_ETCHED_IN));
  expect_scrolled_window(created.get(), 300, -1);
  GtkScrolledWindow *packed = v_gui_pack_scrolled_window(box, -1, 150, GTK_POLICY_NEVER,
                                                         GTK_POLICY_ALWAYS, GTK_SHADOW_ETCHED_IN);
  expect_scrolled_window(packed, -1, 150);
  expect_packed(box, packed, true);
}

TEST_F(Widgets, TreeViewsFollowTheirFlags) {
  const OwnedObject<GtkTreeView> plain =
      sink(v_gui_create_tree_view(HeadersVisible::no, FixedHeight::no, SelectionMode::single));
  EXPECT_FALSE(gtk_tree_view_get_headers_visible(plain.get()));
  EXPECT_FALSE(gtk_tree_view_get_fixed_height_mode(plain.get()));
  EXPECT_EQ(gtk_tree_selection_get_mode(gtk_tree_view_get_selection(plain.get())),
            GTK_SELECTION_SINGLE);
  EXPECT_TRUE(gtk_widget_get_visible(GTK_WIDGET(plain.get())));

  GtkTreeView *added = v_gui_add_tree_view(GTK_CONTAINER(box), HeadersVisible::yes,
                                           FixedHeight::yes, SelectionMode::multiple);
  EXPECT_EQ(parent_of(added), GTK_WIDGET(box));
  EXPECT_TRUE(gtk_tree_view_get_headers_visible(added));
  EXPECT_TRUE(gtk_tree_view_get_fixed_height_mode(added));
  EXPECT_EQ(gtk_tree_selection_get_mode(gtk_tree_view_get_selection(added)),
            GTK_SELECTION_MULTIPLE);
}

TEST(TableWidget, HasItsSizeAndTheSpacing) {
  const OwnedObject<GtkTable> table = sink(v_gui_create_table(3, 4, Homogeneous::yes));
  guint rows = 0;
  guint columns = 0;
  gtk_table_get_size(table.get(), &rows, &columns);
  EXPECT_EQ(rows, 3u);
  EXPECT_EQ(columns, 4u);
  EXPECT_TRUE(gtk_table_get_homogeneous(table.get()));
  EXPECT_EQ(gtk_table_get_row_spacing(table.get(), 0), 8u);
  EXPECT_EQ(gtk_table_get_col_spacing(table.get(), 0), 8u);
  EXPECT_TRUE(gtk_widget_get_visible(GTK_WIDGET(table.get())));
  const OwnedObject<GtkTable> uneven = sink(v_gui_create_table(1, 1, Homogeneous::no));
  EXPECT_FALSE(gtk_table_get_homogeneous(uneven.get()));
}

TEST(ComboBoxWidget, IsEmpty) {
  const OwnedObject<GtkComboBoxText> combo_box = sink(v_gui_create_combo_box_text());
  EXPECT_EQ(gtk_tree_model_iter_n_children(gtk_combo_box_get_model(GTK_COMBO_BOX(combo_box.get())),
                                           nullptr),
            0);
  EXPECT_TRUE(gtk_widget_get_visible(GTK_WIDGET(combo_box.get())));
}

TEST_F(Widgets, ImagesComeFromTheIconTheme) {
  GtkImage *image = v_gui_pack_image_from_icon_name(box, "dialog-error", GTK_ICON_SIZE_DIALOG);
  expect_packed(box, image, false);
  const char *icon_name = nullptr;
  GtkIconSize icon_size;
  gtk_image_get_icon_name(image, &icon_name, &icon_size);
  EXPECT_STREQ(icon_name, "dialog-error");
  EXPECT_EQ(icon_size, GTK_ICON_SIZE_DIALOG);
}

TEST_F(Widgets, DrawingAreasAreAdded) {
  GtkDrawingArea *area = v_gui_add_drawing_area(GTK_CONTAINER(box));
  EXPECT_EQ(parent_of(area), GTK_WIDGET(box));
  EXPECT_TRUE(gtk_widget_get_visible(GTK_WIDGET(area)));
}

std::vector<int> get_margins(void *widget) {
  return {get_property<int>(widget, "margin-top"), get_property<int>(widget, "margin-right"),
          get_property<int>(widget, "margin-bottom"), get_property<int>(widget, "margin-left")};
}

TEST_F(Widgets, TheSurroundingMarginIsInsideAContainerAndOutsideAnythingElse) {
  GtkBox *container = v_gui_pack_vbox(box, Expand::no, Spacing::none);
  v_gui_set_surrounding_margin(GTK_WIDGET(container), 11);
  EXPECT_EQ(gtk_container_get_border_width(GTK_CONTAINER(container)), 11u);
  EXPECT_EQ(get_margins(container), (std::vector{0, 0, 0, 0}));
  v_gui_set_default_surrounding_margin(GTK_WIDGET(container));
  EXPECT_EQ(gtk_container_get_border_width(GTK_CONTAINER(container)), 8u);

  GtkLabel *label = v_gui_pack_label(box, "", 0.0f, 0.0f);
  v_gui_set_surrounding_margin(GTK_WIDGET(label), 11);
  EXPECT_EQ(get_margins(label), (std::vector{11, 11, 11, 11}));
  v_gui_set_default_surrounding_margin(GTK_WIDGET(label));
  EXPECT_EQ(get_margins(label), (std::vector{8, 8, 8, 8}));
}

TEST_F(Widgets, MarginsSpacingAndSensitivityAreSet) {
  v_gui_set_margins(GTK_WIDGET(box), 1, 2, 3, 4);
  EXPECT_EQ(get_margins(box), (std::vector{1, 2, 3, 4}));
  v_gui_set_box_spacing(box, 17);
  EXPECT_EQ(gtk_box_get_spacing(box), 17);
  for (const int state : {1, 0, -1, 0, 2}) {
    v_gui_set_sensitivity(GTK_WIDGET(box), state);
    EXPECT_EQ(gtk_widget_get_sensitive(GTK_WIDGET(box)), state == 0) << state;
  }
}

std::pair<int, int> get_size(GtkWindow *window) {
  std::pair<int, int> size;
  gtk_window_get_size(window, &size.first, &size.second);
  return size;
}

TEST_F(Widgets, AWindowShrinksToItsLeastSize) {
  gtk_window_set_default_size(window.get(), 500, 400);
  gtk_widget_set_size_request(GTK_WIDGET(box), 150, 120);
  window.show_active();
  ASSERT_TRUE(wait_until("the size of 500 x 400",
                         [&] { return get_size(window.get()) == std::pair(500, 400); }));
  resize_count = 0;
  v_gui_resize_window_to_minimum_unless_maximized(window.get());
  EXPECT_EQ(resize_count, 1);
  EXPECT_TRUE(
      wait_until("the least size", [&] { return get_size(window.get()) == std::pair(150, 120); }));
}

TEST_F(Widgets, AWindowThatFillsTheScreenOrIsNotShownYetKeepsItsSize) {
  v_gui_resize_window_to_minimum_unless_maximized(window.get());
  gtk_window_set_default_size(window.get(), 500, 400);
  window.show_active();
  EXPECT_EQ(get_size(window.get()), std::pair(500, 400));

  struct Row {
    void (*enter)(GtkWindow *);
    void (*leave)(GtkWindow *);
    GdkWindowState state;
  };
  constexpr Row rows[] = {
      {gtk_window_maximize, gtk_window_unmaximize, GDK_WINDOW_STATE_MAXIMIZED},
      {gtk_window_fullscreen, gtk_window_unfullscreen, GDK_WINDOW_STATE_FULLSCREEN},
  };
  for (const Row &row : rows) {
    const auto is_in_state = [&] {
      return (gdk_window_get_state(gtk_widget_get_window(window.widget())) & row.state) != 0;
    };
    row.enter(window.get());
    ASSERT_TRUE(wait_until("a window that fills the screen",
                           [&] { return is_in_state() && get_size(window.get()).first > 1200; }));
    resize_count = 0;
    v_gui_resize_window_to_minimum_unless_maximized(window.get());
    EXPECT_EQ(resize_count, 0) << row.state;
    EXPECT_TRUE(holds_for(100, "a window that fills the screen", is_in_state));
    row.leave(window.get());
    ASSERT_TRUE(
        wait_until("a window that does not fill the screen", [&] { return !is_in_state(); }));
    EXPECT_TRUE(wait_until("the size of 500 x 400", [&] {
      return get_size(window.get()) == std::pair(500, 400);
    })) << row.state;
  }
}

TEST(MenuWidget, ItemsHaveLabelDataSensitivityAndCallback) {
  int data = 0;
  int activations = 0;
  const OwnedObject<GtkMenuItem> item = sink(v_gui_menu_create_item_with_activate_callback(
      "100 % <b>", &data, 0, G_CALLBACK(+[](GtkMenuItem *, int *count) { ++*count; }),
      &activations));
  EXPECT_STREQ(gtk_menu_item_get_label(item.get()), "100 % <b>");
  EXPECT_TRUE(gtk_widget_get_visible(GTK_WIDGET(item.get())));
  EXPECT_TRUE(gtk_widget_get_sensitive(GTK_WIDGET(item.get())));
  EXPECT_EQ(g_object_get_data(G_OBJECT(item.get()), "vantorelle_menu_item_data"), &data);
  gtk_menu_item_activate(item.get());
  EXPECT_EQ(activations, 1);

  const OwnedObject<GtkMenuItem> grey = sink(v_gui_menu_create_item_with_activate_callback(
      "", nullptr, 1, G_CALLBACK(+[](GtkMenuItem *, int *count) { ++*count; }), &activations));
  EXPECT_FALSE(gtk_widget_get_sensitive(GTK_WIDGET(grey.get())));

  const OwnedObject<GtkSeparatorMenuItem> separator = sink(v_gui_menu_create_separator());
  EXPECT_TRUE(gtk_widget_get_visible(GTK_WIDGET(separator.get())));
}

} // namespace
