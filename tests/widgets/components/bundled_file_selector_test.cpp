#include "gui/components/bundled_file_selector.h"

#include <gmock/gmock.h>

#include "component_fixture.h"
#include "support/gui/layout.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr const char *title = "Select one to add";

class BundledFileSelector : public ComponentFixture {
protected:
  std::string run() {
    const OwnedText path =
        v_components_gui_get_bundled_file_path(window_stack.get(), &workspace, kind);
    return path ? path.get() : "none";
  }
};

} // namespace

TEST_F(BundledFileSelector, ListsTheDeliveredFilesSorted) {
  make_folders();
  write_file(delivered("z.codeset"), "text:Ceramics");
  write_file(delivered("a.CODESET"), "text:wood <b>& 100%s");
  write_file(delivered("m.codeset"), "broken");
  write_file(delivered("readme.txt"), "text:no");
  write_file(managed("own.codeset"), "text:not delivered");
  await_focus_in_list(title);
  script.then([] {
    GtkWindow *window = top_window();
    EXPECT_STREQ(gtk_window_get_title(window), title);
    EXPECT_THAT(shown_rows(window), ElementsAre(ShownRow{"Ceramics"}, ShownRow{"m.codeset"},
                                                ShownRow{"wood <b>& 100%s"}));
    EXPECT_FALSE(has_selection(window));
    EXPECT_THAT(button_labels(GTK_WIDGET(window)), ElementsAre("OK", "Cancel"));
    GtkTreeView *list = list_of(window);
    EXPECT_FALSE(gtk_tree_view_get_headers_visible(list));
    EXPECT_STREQ(atk_object_get_name(gtk_widget_get_accessible(GTK_WIDGET(list))),
                 "Remark codeset files");
  });
  script.click("Cancel");
  EXPECT_EQ(run(), "none");
}

TEST_F(BundledFileSelector, ListTakesTheRoomAboveTheButtons) {
  make_folders();
  write_file(delivered("a.codeset"), "text:A");
  script.when_active(title, [] {
    GtkWidget *window = GTK_WIDGET(top_window());
    GtkTreeView *list = list_of(top_window());
    EXPECT_EQ(gtk_tree_view_column_get_width(gtk_tree_view_get_column(list, 0)),
              gtk_widget_get_allocated_width(GTK_WIDGET(list)));
    expect_window_layout(
        top_window(), WindowState::not_maximized,
        {{"list", gtk_widget_get_parent(GTK_WIDGET(list)), corner(), grows, grows},
         {"rows", GTK_WIDGET(list), anywhere(), grows, grows},
         {"OK", GTK_WIDGET(find_button(window, "OK")), below("list", 8), stays, moves},
         {"Cancel", GTK_WIDGET(find_button(window, "Cancel")), end_of_row("OK"), moves, moves}});
    expect_buttons_at_both_ends(find_button(window, "OK"), find_button(window, "Cancel"));
    EXPECT_EQ(gtk_window_get_default_widget(top_window()), GTK_WIDGET(find_button(window, "OK")));
  });
  script.click("Cancel");
  EXPECT_EQ(run(), "none");
}

TEST_F(BundledFileSelector, ReturnsThePathOfTheSelectedFile) {
  make_folders();
  write_file(delivered("a.codeset"), "text:A");
  write_file(delivered("b.codeset"), "text:B");
  write_file(delivered("c.codeset"), "broken");
  for (const auto &[shown, name] : {std::pair("B", "b.codeset"), std::pair("A", "a.codeset"),
                                    std::pair("c.codeset", "c.codeset")}) {
    await_focus_in_list(title);
    script.then([shown = shown] { select_row(top_window(), shown); });
    script.click("OK");
    EXPECT_EQ(run(), delivered(name));
  }
}

TEST_F(BundledFileSelector, IsEmptyWithoutDeliveredFolder) {
  await_focus_in_list(title);
  script.then([] { EXPECT_THAT(shown_rows(top_window()), IsEmpty()); });
  script.click("OK");
  script.answer("Error", "None selected.", "Close");
  script.close(title);
  EXPECT_EQ(run(), "none");
}

TEST_F(BundledFileSelector, NothingIsSelectedBeforeTheUserSelects) {
  make_folders();
  write_file(delivered("a.codeset"), "text:A");
  await_focus_in_list(title);
  script.click("OK");
  script.answer("Error", "None selected.", "Close");
  script.then([] { select_row(top_window(), "A"); });
  script.click("OK");
  EXPECT_EQ(run(), delivered("a.codeset"));
}

TEST_F(BundledFileSelector, ShowsNoWindowWhenTheInstallationFolderIsUnknown) {
  fake_platform.install_folder.reset();
  EXPECT_EQ(run(), "none");
  EXPECT_EQ(top_window(), nullptr);
}

TEST_F(BundledFileSelector, FolderWithTheExtensionIsListed) {
  make_folders();
  make_folder(delivered("x.codeset"));
  await_focus_in_list(title);
  script.then([] { EXPECT_THAT(shown_texts(top_window()), ElementsAre("x.codeset")); });
  script.close(title);
  EXPECT_EQ(run(), "none");
}
