#include "gui/list_search.h"

#include <ctime>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "gui/lists.h"
#include "gui/owned_objects.h"
#include "support/gui_driver.h"

namespace {

OwnedText get_text(GtkTreeModel *model, GtkTreeIter *row) {
  OwnedText text;
  gtk_tree_model_get(model, row, 0, static_cast<char **>(receive(text)), -1);
  return text;
}

class ListSearch : public testing::Test {
protected:
  ListSearch() {
    GtkScrolledWindow *scroller = v_gui_create_scrolled_window(100, 100, GTK_POLICY_NEVER,
                                                               GTK_POLICY_AUTOMATIC, GTK_SHADOW_IN);
    gtk_container_add(GTK_CONTAINER(window.widget()), GTK_WIDGET(scroller));
    view = v_gui_add_tree_view(GTK_CONTAINER(scroller), HeadersVisible::no, FixedHeight::no,
                               SelectionMode::single);
    gtk_tree_view_insert_column_with_attributes(view, -1, "Text", gtk_cell_renderer_text_new(),
                                                "text", 0, nullptr);
    gtk_tree_view_set_model(view, GTK_TREE_MODEL(store.get()));
    v_list_search_enable(view, 0, get_text);
  }

  void show(std::vector<const char *> texts) {
    for (const char *text : texts) {
      gtk_list_store_insert_with_values(store.get(), nullptr, -1, 0, text, -1);
    }
    window.show_active();
    gtk_widget_grab_focus(GTK_WIDGET(view));
    settle();
    gtk_tree_selection_unselect_all(gtk_tree_view_get_selection(view));
  }

  void press(guint key) {
    press_key(window.widget(), key);
    settle();
  }

  // The row that is selected after the text has been typed.
  std::string type(const char *text) {
    for (; *text != '\0'; text = g_utf8_next_char(text)) {
      press(gdk_unicode_to_keyval(g_utf8_get_char(text)));
    }
    return selected();
  }

  std::string after(guint key) {
    press(key);
    return selected();
  }

  void end() {
    press(GDK_KEY_Escape);
    gtk_tree_selection_unselect_all(gtk_tree_view_get_selection(view));
  }

  std::string selected() {
    GtkTreeModel *model = nullptr;
    GtkTreeIter row;
    return gtk_tree_selection_get_selected(gtk_tree_view_get_selection(view), &model, &row)
               ? get_text(model, &row).get()
               : "";
  }

  TestWindow window;
  OwnedObject<GtkListStore> store = take(gtk_list_store_new(1, G_TYPE_STRING));
  GtkTreeView *view = nullptr;
};

} // namespace

TEST(ListSearchText, IgnoresCaseAndAccents) {
  const struct {
    const char *text;
    const char *folded;
  } cases[] = {
      {"", ""},
      {"Old Varnish, 3 %", "old varnish, 3 %"},
      {"\u00c9CLAT perdu", "eclat perdu"},
      {"e\u0301clat", "eclat"},
      {"\u00c5kerstr\u00f6m", "akerstrom"},
      {"Stra\u00dfe", "strasse"},
      {"S\u00f8lv", "soelv"},
      {"\u00c6rlig", "aerlig"},
      {"\u0130stanbul", "istanbul"},
      {"\uff36arnish", "varnish"},
      {"\u039b\u03ac\u03b4\u03b9", "\u03bb\u03b1\u03b4\u03b9"},
      {"\u65e5\u672c", "\u65e5\u672c"},
  };
  for (const auto &fold : cases) {
    EXPECT_EQ(v_list_search_fold(fold.text), fold.folded) << fold.text;
  }
}

TEST_F(ListSearch, FindsTextInTheMiddleOfARow) {
  show({"A1. Wax", "B1. Old Varnish", "B2. Spot", "C1. Under the varnish"});
  EXPECT_EQ(type("varn"), "B1. Old Varnish");
  EXPECT_EQ(after(GDK_KEY_Down), "C1. Under the varnish");
  EXPECT_EQ(after(GDK_KEY_Down), "C1. Under the varnish");
  EXPECT_EQ(after(GDK_KEY_Up), "B1. Old Varnish");
}

TEST_F(ListSearch, RowsThatBeginWithTheTextComeFirst) {
  show({"A1. Wax", "B1. In wood", "W1. Split", "W2. Worm", "X1. Waxed"});
  EXPECT_EQ(type("w"), "W1. Split");
  EXPECT_EQ(after(GDK_KEY_Down), "W2. Worm");
  EXPECT_EQ(after(GDK_KEY_Down), "X1. Waxed");
  end();
  EXPECT_EQ(type("wa"), "A1. Wax");
}

TEST_F(ListSearch, FindsChangedRows) {
  show({"Wood", "Glass"});
  EXPECT_EQ(type("gl"), "Glass");
  end();
  gtk_list_store_insert_with_values(store.get(), nullptr, 0, 0, "Glue", -1);
  EXPECT_EQ(type("gl"), "Glue");
  end();
  GtkTreeIter row;
  gtk_tree_model_get_iter_first(GTK_TREE_MODEL(store.get()), &row);
  gtk_list_store_set(store.get(), &row, 0, "Metal", -1);
  EXPECT_EQ(type("gl"), "Glass");
  end();
  gtk_list_store_remove(store.get(), &row);
  EXPECT_EQ(type("m"), "");
}

TEST_F(ListSearch, AnswersAKeyFastInALongList) {
  std::vector<std::string> texts;
  std::vector<const char *> pointers;
  for (int number = 0; number < 20000; number++) {
    texts.push_back("W" + std::to_string(number) + ". Old varnish, \u00e9clat number " +
                    std::to_string(number));
  }
  for (const std::string &text : texts) {
    pointers.push_back(text.c_str());
  }
  show(pointers);
  EXPECT_EQ(type("e"), "W0. Old varnish, \u00e9clat number 0");
  // The texts are folded by now; each key must be handled before the next one is typed.
  const std::clock_t start = std::clock();
  press(GDK_KEY_c);
  EXPECT_LT(std::clock() - start, CLOCKS_PER_SEC / 5);
}
