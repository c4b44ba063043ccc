#include "gui/key_guard.h"

#include <gtest/gtest.h>

#include "gui/answering_button.h"
#include "gui/message_dialogs.h"
#include "gui/owned_objects.h"
#include "support/gui_driver.h"

namespace {

// A window with a field, a text of several lines and a button, and keys that reach it through the
// queue of events, with explicit times.
class KeyGuard : public testing::Test {
protected:
  KeyGuard() {
    v_key_guard_install();
    GtkWidget *box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    for (GtkWidget *widget : {field, text, button}) {
      gtk_container_add(GTK_CONTAINER(box), widget);
    }
    gtk_container_add(GTK_CONTAINER(window.widget()), box);
    gtk_widget_show_all(box);
    g_signal_connect_swapped(window.widget(), "key-press-event", G_CALLBACK(count_callback),
                             &presses);
    g_signal_connect_swapped(other.widget(), "key-press-event", G_CALLBACK(count_callback),
                             &other_presses);
    window.show_active();
    time += 10'000; // no key of the previous test counts as held
  }

  static gboolean count_callback(int *count) {
    ++*count;
    return GDK_EVENT_STOP;
  }

  static void send(GtkWidget *to, GdkEventType type, guint key) {
    gdk_event_put(make_key_event(to, type, key, 0, time).get());
    settle();
  }

  static void press(GtkWidget *to, guint key, guint32 pause = 0) {
    time += pause;
    send(to, GDK_KEY_PRESS, key);
  }
  static void release(GtkWidget *to, guint key) { send(to, GDK_KEY_RELEASE, key); }

  void focus(GtkWidget *widget) { gtk_widget_grab_focus(widget); }

  static guint32 time; // milliseconds
  int presses = 0;
  int other_presses = 0;
  GtkWidget *field = gtk_entry_new();
  GtkWidget *text = gtk_text_view_new();
  GtkWidget *button = v_answering_button_new("Button");
  TestWindow window;
  TestWindow other;
};

guint32 KeyGuard::time = 0;

struct Key {
  const char *name;
  guint key;
  bool in_field, in_text, on_button; // whether its repeats are delivered
};

TEST_F(KeyGuard, AHeldKeyThatActsDoesNotRepeat) {
  const Key keys[] = {
      {"letter", GDK_KEY_a, true, true, true},
      {"cursor", GDK_KEY_Down, true, true, true},
      {"rub out", GDK_KEY_BackSpace, true, true, true},
      {"Space", GDK_KEY_space, true, true, false},
      {"Space of the keypad", GDK_KEY_KP_Space, true, true, false},
      {"Return", GDK_KEY_Return, false, true, false},
      {"Enter", GDK_KEY_KP_Enter, false, true, false},
      {"Enter after a shift of the layout", GDK_KEY_ISO_Enter, false, true, false},
      {"Escape", GDK_KEY_Escape, false, false, false},
  };
  for (const Key &key : keys) {
    for (const auto &[widget, repeats] :
         {std::pair(field, key.in_field), {text, key.in_text}, {button, key.on_button}}) {
      focus(widget);
      presses = 0;
      press(window.widget(), key.key, 2000);
      EXPECT_EQ(presses, 1) << key.name;
      press(window.widget(), key.key, 660);
      press(window.widget(), key.key, 40);
      press(window.widget(), key.key, 40);
      EXPECT_EQ(presses, repeats ? 4 : 1) << key.name << " in " << G_OBJECT_TYPE_NAME(widget);
      release(window.widget(), key.key);
      press(window.widget(), key.key, 40);
      EXPECT_EQ(presses, repeats ? 5 : 2) << key.name << " again";
      release(window.widget(), key.key);
    }
  }
}

TEST_F(KeyGuard, ASpaceThatPressesAButtonIsNotTypedIntoTheFieldThatGetsTheFocus) {
  focus(button);
  press(window.widget(), GDK_KEY_space);
  focus(field);
  press(window.widget(), GDK_KEY_space, 660);
  EXPECT_EQ(presses, 1);
  release(window.widget(), GDK_KEY_space);
  press(window.widget(), GDK_KEY_space, 40);
  EXPECT_EQ(presses, 2);
}

TEST_F(KeyGuard, AHeldKeyDoesNotReachTheNextWindow) {
  other.show_active();
  press(window.widget(), GDK_KEY_a);
  press(other.widget(), GDK_KEY_a, 660);
  press(other.widget(), GDK_KEY_a, 40);
  EXPECT_EQ(other_presses, 0);
  release(other.widget(), GDK_KEY_a);
  press(other.widget(), GDK_KEY_a, 40);
  EXPECT_EQ(other_presses, 1);
}

TEST_F(KeyGuard, AnotherKeyOrALongTimeEndsTheRepeating) {
  other.show_active();
  press(window.widget(), GDK_KEY_Return);
  press(other.widget(), GDK_KEY_a, 40);
  press(other.widget(), GDK_KEY_Return, 40);
  EXPECT_EQ(other_presses, 2);
  press(other.widget(), GDK_KEY_Return, 2000); // a release was lost
  EXPECT_EQ(other_presses, 3);
}

// A keyboard that is set to its slowest repeats a key after a second.
TEST_F(KeyGuard, ASecondPressWithinASecondOfAnUnreleasedOneIsARepeat) {
  focus(field);
  press(window.widget(), GDK_KEY_Return);
  press(window.widget(), GDK_KEY_Return, 999);
  EXPECT_EQ(presses, 1);
  press(window.widget(), GDK_KEY_Return, 1000);
  EXPECT_EQ(presses, 2);
}

// When a press destroys its window, the release may not be delivered.
TEST_F(KeyGuard, APressAfterALostReleaseIsNotLost) {
  other.show_active();
  press(window.widget(), GDK_KEY_Escape);
  press(other.widget(), GDK_KEY_Escape, 200);
  release(other.widget(), GDK_KEY_Escape);
  EXPECT_EQ(other_presses, 1);
  press(window.widget(), GDK_KEY_Escape, 200);
  press(other.widget(), GDK_KEY_Escape, 200);
  press(other.widget(), GDK_KEY_a, 40);
  EXPECT_EQ(other_presses, 3);
  press(window.widget(), GDK_KEY_Escape, 200);
  press(other.widget(), GDK_KEY_Escape, 200);
  EXPECT_TRUE(wait_until("the fourth press", [this] { return other_presses == 4; })); // still held
  press(other.widget(), GDK_KEY_Escape, 660);
  EXPECT_EQ(other_presses, 4);
}

TEST_F(KeyGuard, ADestroyedWindowGetsNoPressLater) {
  other.show_active();
  press(window.widget(), GDK_KEY_Escape);
  press(other.widget(), GDK_KEY_Escape, 200);
  other.destroy();
  EXPECT_TRUE(
      holds_for(200, "no press in the other window", [this] { return other_presses == 0; }));
}

class Shield : public KeyGuard {
protected:
  static void response_callback(GtkDialog *, int response, int *answer) { *answer = response; }

  // Presses the key in the widget, shows a message at once, types the keys at the pace
  // (milliseconds) and returns the answer that they gave; 0 for none.
  int show_message(GtkWidget *widget, guint key, const std::vector<guint> &typed, guint32 pace) {
    const OwnedWindowStack stack = v_window_stack_new();
    v_window_stack_push_window(stack.get(), window.get());
    focus(widget);
    press(window.widget(), key, 2000);
    release(window.widget(), key);
    int answer = 0;
    int answer_to_typing = 0;
    when_dialog_shows([&](GtkDialog *dialog) {
      g_signal_connect(dialog, "response", G_CALLBACK(response_callback), &answer);
      for (const guint next : typed) {
        press(GTK_WIDGET(dialog), next, pace);
        release(GTK_WIDGET(dialog), next);
      }
      answer_to_typing = answer;
      press(GTK_WIDGET(dialog), GDK_KEY_Return, 500);
      release(GTK_WIDGET(dialog), GDK_KEY_Return);
    });
    EXPECT_NE(v_message_show_error(stack.get(), "Not so."), 0);
    return answer_to_typing;
  }

  const std::vector<guint> words = {GDK_KEY_space, GDK_KEY_x, GDK_KEY_Return, GDK_KEY_Escape};
};

TEST_F(Shield, TypingOnDoesNotAnswerTheMessage) {
  for (const guint32 pace : {10, 30, 60, 100, 150, 260, 399}) {
    EXPECT_EQ(show_message(field, GDK_KEY_Return, words, pace), 0) << pace;
    EXPECT_EQ(show_message(field, GDK_KEY_KP_Enter, words, pace), 0) << pace;
  }
}

TEST_F(Shield, TheFirstKeyAfterAPauseAnswersTheMessage) {
  for (const guint32 pause : {400, 450}) {
    EXPECT_EQ(show_message(field, GDK_KEY_Return, {GDK_KEY_space}, pause), GTK_RESPONSE_CLOSE);
    EXPECT_EQ(show_message(field, GDK_KEY_Return, {GDK_KEY_Return}, pause), GTK_RESPONSE_CLOSE);
    EXPECT_EQ(show_message(field, GDK_KEY_Return, {GDK_KEY_Escape}, pause),
              GTK_RESPONSE_DELETE_EVENT);
  }
}

TEST_F(Shield, ReturnOrEscapeAnswersTheMessageWhenNothingIsTypedBefore) {
  for (const guint32 pace : {100, 150, 260}) {
    EXPECT_EQ(show_message(field, GDK_KEY_Return, {GDK_KEY_Return}, pace), GTK_RESPONSE_CLOSE);
    EXPECT_EQ(show_message(field, GDK_KEY_Return, {GDK_KEY_Escape}, pace),
              GTK_RESPONSE_DELETE_EVENT);
    EXPECT_EQ(show_message(field, GDK_KEY_Return, {GDK_KEY_space}, pace), 0);
    EXPECT_EQ(show_message(field, GDK_KEY_Return, {GDK_KEY_x, GDK_KEY_Return}, pace), 0);
  }
  for (const guint32 pace : {30, 99}) {
    EXPECT_EQ(show_message(field, GDK_KEY_Return, {GDK_KEY_Return}, pace), 0) << "pressed twice";
  }
}

TEST_F(Shield, AMessageAfterNoTypingIsAnsweredAtOnce) {
  EXPECT_EQ(show_message(button, GDK_KEY_space, {GDK_KEY_space}, 10), GTK_RESPONSE_CLOSE);
  EXPECT_EQ(show_message(button, GDK_KEY_Return, {GDK_KEY_Return}, 10), GTK_RESPONSE_CLOSE);
  EXPECT_EQ(show_message(field, GDK_KEY_Escape, {GDK_KEY_Return}, 10), GTK_RESPONSE_CLOSE);
}

} // namespace
