#include "gui/components/component_list.h"

#include <clocale>
#include <map>

#include <gmock/gmock.h>

#include "component_fixture.h"
#include "support/gui/layout.h"

using testing::ElementsAre;
using testing::UnorderedElementsAre;

namespace {

using ComponentList = ComponentFixture;

std::vector<std::string> texts_of(const std::vector<OwnedText> &owned) {
  std::vector<std::string> texts;
  for (const OwnedText &text : owned) {
    texts.emplace_back(text.get());
  }
  return texts;
}

} // namespace

TEST_F(ComponentList, FindsNamesWithTheExtensionInAnyCase) {
  make_folders();
  for (const char *name : {"a.codeset", "B.CODESET", "c.CodeSet", ".codeset", "d.codeset.txt",
                           "codeset", "e.codesets", "f%s<&>\u00e5.codeset"}) {
    write_file(managed(name), "");
  }
  EXPECT_THAT(texts_of(v_component_list_find_names(managed().c_str(), kind)),
              UnorderedElementsAre("a.codeset", "B.CODESET", "c.CodeSet", ".codeset",
                                   "f%s<&>\u00e5.codeset"));
}

TEST_F(ComponentList, SkipsNamesThatAreNotUtf8) {
  make_folders();
  write_file(managed("before.codeset"), "");
  for (int i = 0; i < 20; i++) {
    write_file(managed("\xe5\xff" + std::to_string(i) + ".codeset"), "");
  }
  write_file(managed("behind.codeset"), "");
  EXPECT_THAT(texts_of(v_component_list_find_names(managed().c_str(), kind)),
              UnorderedElementsAre("before.codeset", "behind.codeset"));
}

TEST_F(ComponentList, FindsNoNamesInAFolderThatCannotBeOpened) {
  EXPECT_TRUE(v_component_list_find_names(managed().c_str(), kind).empty());
  write_file(managed(), "a file");
  EXPECT_TRUE(v_component_list_find_names(managed().c_str(), kind).empty());
  EXPECT_TRUE(v_component_list_find_names("", kind).empty());
}

TEST_F(ComponentList, LeavesNoDescriptorOpen) {
  make_folders();
  const int before = count_open_descriptors();
  v_component_list_find_names(managed().c_str(), kind);
  EXPECT_EQ(count_open_descriptors(), before);
}

// As in a dictionary of the user's language. The caller of the test sets the locale.
TEST_F(ComponentList, IsInTheOrderOfTheUsersLanguage) {
  const std::map<std::string, std::vector<std::string>> orders = {
      {"C.UTF-8", {"", "Arm", "Ost", "Zebra", "apa", "\u00c4rger", "\u00c5ska", "\u00d6l"}},
      {"sv_SE.UTF-8", {"", "apa", "Arm", "Ost", "Zebra", "\u00c5ska", "\u00c4rger", "\u00d6l"}},
      {"de_DE.ISO-8859-1",
       {"", "apa", "\u00c4rger", "Arm", "\u00c5ska", "\u00d6l", "Ost", "Zebra"}},
  };
  const auto order = orders.find(setlocale(LC_COLLATE, nullptr));
  ASSERT_NE(order, orders.end()) << setlocale(LC_COLLATE, nullptr);
  const OwnedObject<GtkListStore> list = v_component_list_new();
  for (const char *text : {"Zebra", "\u00d6l", "apa", "Ost", "\u00c5ska", "Arm", "\u00c4rger"}) {
    v_component_list_append(list.get(), text, text);
  }
  v_component_list_append(list.get(), nullptr, "incompatible");
  std::vector<std::string> texts;
  GtkTreeModel *model = GTK_TREE_MODEL(list.get());
  GtkTreeIter row;
  for (gboolean valid = gtk_tree_model_get_iter_first(model, &row); valid;
       valid = gtk_tree_model_iter_next(model, &row)) {
    const OwnedText text = v_component_list_get_text(model, &row, v_component_column_text);
    texts.emplace_back(text ? text.get() : "");
  }
  EXPECT_EQ(texts, order->second);
}

TEST_F(ComponentList, IsAListInAFrameThatScrolls) {
  const OwnedObject<GtkBox> box(
      GTK_BOX(g_object_ref_sink(gtk_box_new(GTK_ORIENTATION_VERTICAL, 0))));
  const OwnedObject<GtkListStore> list = v_component_list_new();
  GtkTreeView *view = v_component_list_pack_view(box.get(), list.get(), nullptr);
  EXPECT_EQ(gtk_tree_view_get_model(view), GTK_TREE_MODEL(list.get()));
  EXPECT_EQ(gtk_tree_selection_get_mode(gtk_tree_view_get_selection(view)), GTK_SELECTION_SINGLE);
  EXPECT_EQ(gtk_tree_view_get_n_columns(view), 1U);
  expect_scrolls_downwards(GTK_SCROLLED_WINDOW(gtk_widget_get_parent(GTK_WIDGET(view))), 300, 250);
}

TEST_F(ComponentList, ShortensByCharacters) {
  const OwnedObject<GtkCellRenderer> cell = sink(gtk_cell_renderer_text_new());
  const OwnedObject<GtkBox> box(
      GTK_BOX(g_object_ref_sink(gtk_box_new(GTK_ORIENTATION_VERTICAL, 0))));
  const OwnedObject<GtkListStore> list = v_component_list_new();
  GtkTreeViewColumn *column =
      gtk_tree_view_get_column(v_component_list_pack_view(box.get(), list.get(), nullptr), 0);
  const std::string accented = "\u00e9";
  std::string text;
  for (int i = 0; i < 100; i++) {
    text += accented;
  }
  PangoEllipsizeMode mode = PANGO_ELLIPSIZE_MIDDLE;
  v_component_list_show_text(column, cell.get(), text.c_str());
  g_object_get(cell.get(), "ellipsize", &mode, nullptr);
  EXPECT_EQ(mode, PANGO_ELLIPSIZE_NONE);
  v_component_list_show_text(column, cell.get(), (text + accented).c_str());
  g_object_get(cell.get(), "ellipsize", &mode, nullptr);
  EXPECT_EQ(mode, PANGO_ELLIPSIZE_END);
}

TEST_F(ComponentList, SortsByTextAndPutsMissingTextsFirst) {
  const OwnedObject<GtkListStore> list = v_component_list_new();
  v_component_list_append(list.get(), "b", "1");
  v_component_list_append(list.get(), nullptr, "2");
  v_component_list_append(list.get(), "a", "3");
  v_component_list_append(list.get(), "c", "4");
  std::vector<std::string> files;
  GtkTreeModel *model = GTK_TREE_MODEL(list.get());
  GtkTreeIter row;
  for (gboolean more = gtk_tree_model_get_iter_first(model, &row); more;
       more = gtk_tree_model_iter_next(model, &row)) {
    files.emplace_back(v_component_list_get_text(model, &row, v_component_column_file).get());
  }
  EXPECT_THAT(files, ElementsAre("2", "3", "1", "4"));
  ASSERT_TRUE(gtk_tree_model_get_iter_first(model, &row));
  EXPECT_EQ(v_component_list_get_text(model, &row, v_component_column_text), nullptr);
}

TEST_F(ComponentList, DoesNotUnselectInADestroyedView) {
  const OwnedObject<GtkListStore> list = v_component_list_new();
  GtkWidget *window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
  GtkWidget *box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
  gtk_container_add(GTK_CONTAINER(window), box);
  const auto show_text = [](GtkTreeViewColumn *, GtkCellRenderer *, GtkTreeModel *, GtkTreeIter *,
                            void *) {};
  GtkTreeView *view = v_component_list_pack_view(GTK_BOX(box), list.get(), show_text);
  v_component_list_unselect_when_idle(view);
  gtk_widget_destroy(window);
  settle(); // a call for the destroyed view would be a critical
}

TEST_F(ComponentList, AnUpdateChangesOnlyRowsThatDiffer) {
  const OwnedObject<GtkListStore> list = v_component_list_new();
  std::string events;
  g_signal_connect_swapped(list.get(), "row-changed",
                           G_CALLBACK(+[](std::string *text) { *text += "changed "; }), &events);
  g_signal_connect_swapped(list.get(), "row-inserted",
                           G_CALLBACK(+[](std::string *text) { *text += "inserted "; }), &events);
  g_signal_connect_swapped(list.get(), "row-deleted",
                           G_CALLBACK(+[](std::string *text) { *text += "deleted "; }), &events);
  const auto update = [&](std::vector<std::pair<const char *, const char *>> wanted) {
    std::vector<VComponentRow> rows;
    for (const auto &[text, file] : wanted) {
      rows.push_back({copy_text(text), copy_text(file)});
    }
    events.clear();
    v_component_list_update(list.get(), rows);
    std::string shown;
    for (int place = 0; const auto row = v_component_list_get_row(list.get(), place); place++) {
      EXPECT_EQ(v_component_list_find(list.get(), row->file.get()), place);
      shown += std::string(row->text ? row->text.get() : "-") + "=" + row->file.get() + " ";
    }
    return shown;
  };
  EXPECT_EQ(update({{"B", "b"}, {"A", "a"}, {"C", "c"}}), "A=a B=b C=c ");
  EXPECT_EQ(update({{"A", "a"}, {"C", "c"}, {"B", "b"}}), "A=a B=b C=c ");
  EXPECT_EQ(events, "");
  EXPECT_EQ(update({{"A", "a"}, {"Z", "b"}, {"C", "c"}}), "A=a C=c Z=b ");
  EXPECT_EQ(events.find("inserted"), std::string::npos);
  EXPECT_EQ(events.find("deleted"), std::string::npos);
  EXPECT_EQ(update({{nullptr, "c"}, {"Z", "b"}, {"M", "m"}}), "-=c M=m Z=b ");
  EXPECT_EQ(update({}), "");
  EXPECT_EQ(v_component_list_find(list.get(), "a"), -1);
  EXPECT_EQ(v_component_list_find(list.get(), nullptr), -1);
  EXPECT_FALSE(v_component_list_get_row(list.get(), -1));
}
