#include "window_stack_fixture.h"

#include <string>
#include <vector>

#include "gui/owned_objects.h"
#include "support/gui/layout.h"

namespace {

class BusyWindow : public WindowStack {
protected:
  BusyWindow() {
    open(window);
    v_window_stack_busy_begin(stack.get(), ShowBusyWindow::yes);
  }

  GtkWidget *busy_widget() const { return GTK_WIDGET(busy()->window); }

  TestWindow window;
};

TEST_F(BusyWindow, IsUndecoratedAndCoversTheWindowBelow) {
  GtkWindow *busy_window = busy()->window;
  ASSERT_NE(busy_window, nullptr);
  EXPECT_TRUE(gtk_widget_get_visible(busy_widget()));
  EXPECT_FALSE(gtk_window_get_decorated(busy_window));
  GtkWindowPosition position = GTK_WIN_POS_NONE;
  g_object_get(busy_window, "window-position", &position, nullptr);
  EXPECT_EQ(position, GTK_WIN_POS_CENTER_ALWAYS);
  EXPECT_EQ(gtk_window_get_transient_for(busy_window), window.get());
  EXPECT_TRUE(gtk_window_get_modal(busy_window));
  EXPECT_TRUE(gtk_window_get_destroy_with_parent(busy_window));
  EXPECT_TRUE(gtk_window_get_skip_taskbar_hint(busy_window));
  EXPECT_FALSE(is_sensitive(window));
  EXPECT_EQ(name_cursor(window), "wait");
  EXPECT_EQ(top()->window, nullptr);
  EXPECT_EQ(gtk_box_get_spacing(busy()->content_box), 15);
}

// The colours (0xrrggbb) of a window on the screen.
class Picture {
public:
  explicit Picture(GtkWindow *window) {
    gtk_window_get_size(window, &width, &height);
    pixbuf = take(
        gdk_pixbuf_get_from_window(gtk_widget_get_window(GTK_WIDGET(window)), 0, 0, width, height));
  }

  int get_pixel(int x, int y) const {
    const guint8 *pixel = gdk_pixbuf_read_pixels(pixbuf.get()) +
                          y * gdk_pixbuf_get_rowstride(pixbuf.get()) +
                          x * gdk_pixbuf_get_n_channels(pixbuf.get());
    return pixel[0] << 16 | pixel[1] << 8 | pixel[2];
  }

  int width = 0;
  int height = 0;

private:
  OwnedObject<GdkPixbuf> pixbuf;
};

TEST_F(BusyWindow, IsWhiteInABlackFrameOfOnePixel) {
  ASSERT_TRUE(wait_until("a white window",
                         [this] { return Picture(busy()->window).get_pixel(2, 2) == 0xffffff; }));
  const Picture picture(busy()->window);
  // The content, 20 pixels on each side, and the frame.
  EXPECT_EQ(picture.width, 280 + 2 * 20 + 2);
  EXPECT_EQ(picture.height,
            gtk_widget_get_allocated_height(GTK_WIDGET(busy()->message_label)) + 2 * 20 + 2);
  for (const int x : {0, picture.width / 2, picture.width - 1}) {
    EXPECT_EQ(picture.get_pixel(x, 0), 0x000000);
    EXPECT_EQ(picture.get_pixel(x, picture.height - 1), 0x000000);
  }
  for (const int x : {1, picture.width / 2, picture.width - 2}) {
    EXPECT_EQ(picture.get_pixel(x, 1), 0xffffff);
    EXPECT_EQ(picture.get_pixel(x, picture.height - 2), 0xffffff);
  }
}

TEST_F(BusyWindow, CentresItsContentInsideItsMargins) {
  v_window_stack_show_abort_button(stack.get());
  GtkWidget *message = GTK_WIDGET(busy()->message_label);
  GtkWidget *abort_place = GTK_WIDGET(busy()->abort_button_alignment);
  expect_layout(gtk_bin_get_child(GTK_BIN(busy_widget())),
                {{"content", GTK_WIDGET(busy()->content_box), corner(20, 20), grows, grows},
                 {"message", message, anywhere(), moves_by_half, stays, {{0.5f, 0.5f}}},
                 {"place of Abort", abort_place, anywhere(), grows, stays},
                 {"Abort", GTK_WIDGET(busy()->abort_button), anywhere(), moves_by_half, stays}});
  EXPECT_EQ(gtk_container_get_border_width(GTK_CONTAINER(busy_widget())), 1U);
}

TEST_F(BusyWindow, HasTheWaitCursorItselfToo) {
  GdkWindow *own = gtk_widget_get_window(busy_widget());
  EXPECT_EQ(name_cursor(window), "wait");
  ASSERT_NE(own, nullptr);
  EXPECT_EQ(gdk_window_get_cursor(own),
            gdk_window_get_cursor(gtk_widget_get_window(window.widget())));
}

TEST_F(BusyWindow, SaysPleaseWaitInBoldUntilTheMessageIsSet) {
  struct Row {
    const char *message;
    const char *text;
    const char *markup;
  };
  constexpr Row rows[] = {
      {nullptr, "Please wait", "<b>Please wait</b>"},
      {"Reading <a> & 100 % é", "Reading <a> & 100 % é", "<b>Reading &lt;a&gt; &amp; 100 % é</b>"},
      {"", "", "<b></b>"},
      {nullptr, "Please wait", "<b>Please wait</b>"},
  };
  EXPECT_STREQ(gtk_label_get_label(busy()->message_label), "<b>Please wait</b>");
  EXPECT_STREQ(gtk_window_get_title(busy()->window), "Please wait");
  for (const Row &row : rows) {
    v_window_stack_set_busy_window_message(stack.get(), row.message);
    EXPECT_STREQ(gtk_label_get_label(busy()->message_label), row.markup);
    EXPECT_STREQ(gtk_label_get_text(busy()->message_label), row.text);
    EXPECT_TRUE(gtk_label_get_use_markup(busy()->message_label));
    EXPECT_STREQ(gtk_window_get_title(busy()->window), row.text);
  }
  v_window_stack_set_busy_window_message_utf8_printf(stack.get(), "%d & \"%s\"", 3, "<%d>");
  EXPECT_STREQ(gtk_label_get_text(busy()->message_label), "3 & \"<%d>\"");
}

TEST_F(BusyWindow, ShrinksToItsMessage) {
  const auto get_width = [&] {
    int width = 0;
    gtk_window_get_size(busy()->window, &width, nullptr);
    return width;
  };
  v_window_stack_set_busy_window_message(stack.get(), std::string(90, 'm').c_str());
  ASSERT_TRUE(wait_until("a wide window", [&] { return get_width() > 600; }));
  v_window_stack_set_busy_window_message(stack.get(), "m");
  EXPECT_TRUE(wait_until("a narrow window", [&] { return get_width() == 322; }));
}

TEST_F(BusyWindow, AbortIsARequest) {
  EXPECT_FALSE(v_window_stack_is_abort_requested(stack.get()));
  v_window_stack_hide_abort_button(stack.get());
  EXPECT_EQ(busy()->abort_button, nullptr);

  v_window_stack_show_abort_button(stack.get());
  GtkWidget *button = GTK_WIDGET(busy()->abort_button);
  GtkWidget *alignment = GTK_WIDGET(busy()->abort_button_alignment);
  EXPECT_STREQ(gtk_button_get_label(GTK_BUTTON(button)), "Abort");
  EXPECT_TRUE(gtk_widget_get_mapped(button));
  EXPECT_EQ(gtk_widget_get_parent(alignment), GTK_WIDGET(busy()->content_box));
  float x_align = -1;
  float y_align = -1;
  float x_scale = -1;
  float y_scale = -1;
  g_object_get(alignment, "xalign", &x_align, "yalign", &y_align, "xscale", &x_scale, "yscale",
               &y_scale, nullptr);
  EXPECT_EQ((std::vector{x_align, y_align, x_scale, y_scale}),
            (std::vector{0.5f, 0.0f, 0.0f, 0.0f}));

  gtk_button_clicked(GTK_BUTTON(button));
  EXPECT_TRUE(v_window_stack_is_abort_requested(stack.get()));
  EXPECT_FALSE(gtk_widget_get_sensitive(button));
  v_window_stack_hide_abort_button(stack.get());
  EXPECT_FALSE(gtk_widget_get_mapped(button));
  EXPECT_TRUE(v_window_stack_is_abort_requested(stack.get()));
  v_window_stack_show_abort_button(stack.get());
  EXPECT_EQ(GTK_WIDGET(busy()->abort_button), button);
  EXPECT_TRUE(gtk_widget_get_mapped(button));

  v_window_stack_push_native_window(stack.get());
  EXPECT_FALSE(v_window_stack_is_abort_requested(stack.get()));
  v_window_stack_pop_window(stack.get());
  v_window_stack_busy_end(stack.get());
  EXPECT_FALSE(v_window_stack_is_abort_requested(stack.get()));
}

TEST_F(BusyWindow, IsNotEndedByAPopOrByTheUser) {
  WindowStackNode *node = top();
  v_window_stack_pop_window(stack.get());
  EXPECT_EQ(top(), node);
  gtk_window_close(busy()->window);
  EXPECT_TRUE(holds_for(100, "a shown busy window", [this] {
    return busy()->window != nullptr && gtk_widget_get_visible(busy_widget());
  }));
}

TEST_F(BusyWindow, IsDestroyedAtTheEnd) {
  GtkWindow *busy_window = busy()->window;
  bool is_destroyed = false;
  g_signal_connect(busy_window, "destroy",
                   G_CALLBACK(+[](GtkWidget *, bool *flag) { *flag = true; }), &is_destroyed);
  v_window_stack_busy_end(stack.get());
  EXPECT_TRUE(is_destroyed);
  EXPECT_TRUE(is_sensitive(window));
  EXPECT_EQ(name_cursor(window), "none");
  EXPECT_EQ(top()->window, window.get());
  v_window_stack_busy_end(stack.get());
  EXPECT_EQ(top()->window, window.get());
}

TEST_F(BusyWindow, IsHiddenWhileAWindowIsAbove) {
  TestWindow dialog;
  v_window_stack_push_window(stack.get(), dialog.get());
  WindowStackNode *busy_node = top()->previous;
  GtkWidget *busy_window = GTK_WIDGET(busy_node->busy->window);
  EXPECT_FALSE(gtk_widget_get_visible(busy_window));
  EXPECT_EQ(gtk_window_get_transient_for(dialog.get()), window.get());
  // Calls for the busy window do nothing now.
  v_window_stack_set_busy_window_message(stack.get(), "other");
  v_window_stack_show_abort_button(stack.get());
  v_window_stack_show_busy_window(stack.get());
  v_window_stack_busy_end(stack.get());
  EXPECT_STREQ(gtk_window_get_title(GTK_WINDOW(busy_window)), "Please wait");
  EXPECT_EQ(busy_node->busy->abort_button, nullptr);
  EXPECT_EQ(top()->window, dialog.get());

  v_window_stack_pop_window(stack.get());
  EXPECT_TRUE(gtk_widget_get_visible(busy_window));
  EXPECT_FALSE(is_sensitive(window));
  EXPECT_EQ(name_cursor(window), "wait");
}

TEST_F(BusyWindow, IsHiddenWhileANativeDialogIsAbove) {
  GtkWidget *busy_window = busy_widget();
  EXPECT_EQ(v_window_stack_push_native_window(stack.get()), window.get());
  EXPECT_FALSE(gtk_widget_get_visible(busy_window));
  v_window_stack_pop_window(stack.get());
  EXPECT_TRUE(gtk_widget_get_visible(busy_window));
}

TEST_F(BusyWindow, AnInnerTaskReplacesTheWindowOfTheOuterOne) {
  GtkWidget *outer = busy_widget();
  v_window_stack_busy_begin(stack.get(), ShowBusyWindow::no);
  EXPECT_TRUE(gtk_widget_get_visible(outer));
  v_window_stack_set_busy_window_message(stack.get(), "without a window");
  v_window_stack_show_busy_window(stack.get());
  GtkWidget *inner = busy_widget();
  EXPECT_NE(inner, outer);
  EXPECT_FALSE(gtk_widget_get_visible(outer));
  EXPECT_TRUE(gtk_widget_get_visible(inner));
  v_window_stack_show_busy_window(stack.get());
  EXPECT_EQ(busy_widget(), inner);

  // A third task without a window shows the window of the second.
  v_window_stack_busy_begin(stack.get(), ShowBusyWindow::no);
  v_window_stack_push_native_window(stack.get());
  EXPECT_FALSE(gtk_widget_get_visible(inner));
  v_window_stack_pop_window(stack.get());
  EXPECT_TRUE(gtk_widget_get_visible(inner));
  EXPECT_FALSE(gtk_widget_get_visible(outer));

  v_window_stack_busy_end(stack.get());
  v_window_stack_busy_end(stack.get());
  EXPECT_TRUE(gtk_widget_get_visible(outer));
  EXPECT_FALSE(is_sensitive(window));
  v_window_stack_busy_end(stack.get());
  EXPECT_TRUE(is_sensitive(window));
}

TEST_F(WindowStack, ABusyWindowMayBeTheFirstWindow) {
  v_window_stack_busy_begin(stack.get(), ShowBusyWindow::yes);
  EXPECT_TRUE(gtk_widget_get_visible(GTK_WIDGET(busy()->window)));
  EXPECT_EQ(gtk_window_get_transient_for(busy()->window), nullptr);
  EXPECT_FALSE(gtk_window_get_modal(busy()->window));
  v_window_stack_present(stack.get());
  v_window_stack_busy_end(stack.get());
  EXPECT_EQ(stack->bottom->next.get(), stack->top);
}

// The stack destroys no windows, so its busy window remains and the user has to close it.
TEST_F(BusyWindow, CanBeClosedAfterTheStackIsDestroyed) {
  v_window_stack_show_abort_button(stack.get());
  const OwnedObject<GtkWindow> left = share(busy()->window);
  GtkButton *abort_button = busy()->abort_button;
  stack.reset();
  gtk_button_clicked(abort_button);
  EXPECT_TRUE(gtk_widget_get_sensitive(GTK_WIDGET(abort_button)));
  bool is_destroyed = false;
  g_signal_connect(left.get(), "destroy",
                   G_CALLBACK(+[](GtkWidget *, bool *flag) { *flag = true; }), &is_destroyed);
  gtk_window_close(left.get());
  EXPECT_TRUE(wait_until("the end of the busy window", [&] { return is_destroyed; }));
}

TEST(Events, AreHandledUntilNoneIsPending) {
  int calls = 0;
  for (int i = 0; i < 3; ++i) {
    g_idle_add(
        [](void *data) -> gboolean {
          ++*static_cast<int *>(data);
          return G_SOURCE_REMOVE;
        },
        &calls);
  }
  v_util_let_through_gtk_events();
  EXPECT_EQ(calls, 3);
  EXPECT_FALSE(gtk_events_pending());
}

} // namespace
