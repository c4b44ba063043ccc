#include "gui/editing/remark_dialog.h"

#include <memory>

#include <gmock/gmock.h>

#include "base/error.h"
#include "base/text_encoding.h"
#include "support/editing_faults.h"
#include "support/gui/layout.h"
#include "support/values/remarks.h"
#include "window_fixture.h"

using testing::ElementsAre;

namespace {

constexpr const char *title = "100%s <b>& r\u00e9marque";

GtkWidget *window() { return GTK_WIDGET(top_window()); }

// The field above the editor; the rows of the editor are entries of the same kind.
GtkEntry *code_field() {
  for (GtkWidget *entry : find_widgets(window(), V_TYPE_SPACIFYING_ENTRY)) {
    if (gtk_widget_get_ancestor(entry, V_TYPE_LANGSTR_EDITOR) == nullptr) {
      return GTK_ENTRY(entry);
    }
  }
  return nullptr;
}

std::vector<std::string> labels() {
  std::vector<std::string> texts;
  for (GtkWidget *label : find_widgets(gtk_bin_get_child(GTK_BIN(window())), GTK_TYPE_LABEL)) {
    if (gtk_widget_get_ancestor(label, GTK_TYPE_BUTTON) == nullptr &&
        gtk_widget_get_ancestor(label, GTK_TYPE_COMBO_BOX) == nullptr) {
      texts.emplace_back(gtk_label_get_text(GTK_LABEL(label)));
    }
  }
  return texts;
}

class RemarkDialog : public WindowFixture {
protected:
  // The codeset has "a1" ("Tear") and "b" ("Loss") at first.
  RemarkDialog() {
    for (OwnedRemark *remark : {&own, &other}) {
      v_remark_list_add_remark_last(codeset->remarks.get(), std::move(*remark));
    }
  }

  int run(VRemark *remark) {
    const int result = v_remark_gui_edit_remark(window_stack.get(), settings(), remark,
                                                has_codeset ? codeset.get() : nullptr, title);
    EXPECT_EQ(top_window(), nullptr);
    return result;
  }

  void fill_in(const char *code, const char *description) {
    script.on(title, [code, description] {
      gtk_entry_set_text(code_field(), code);
      enter(window(), 0, description);
    });
  }

  // Presses OK and expects the message; the fields stay as they are.
  void expect_refusal(const std::string &message) {
    script.click("OK").answer("Error", message, "Close");
  }
  void cancel() { script.click("Cancel"); }

  // Presses OK and returns the code of the remark.
  std::string code_after_ok() {
    script.click("OK");
    EXPECT_EQ(run(added.get()), 1);
    return added->code ? added->code.get() : "";
  }

  OwnedCodeset codeset = v_codeset_new();
  OwnedRemark own = remark_of("a1", {{"en-uk", "Tear"}, {"sv", "Reva"}});
  OwnedRemark other = remark_of("b", {{"en-uk", "Loss"}});
  VRemark *edited = own.get();
  OwnedRemark added = v_remark_new();
  bool has_codeset = true;
};

} // namespace

// ---- The window ---------------------------------------------------------------------------------

TEST_F(RemarkDialog, ShowsTheRemark) {
  script.on(title, [] {
    EXPECT_STREQ(gtk_entry_get_text(code_field()), "a1");
    EXPECT_EQ(shown_rows(window()), "English/United Kingdom [en-uk]=Tear\nSwedish [sv]=Reva\n");
    EXPECT_THAT(labels(), ElementsAre("Remark code: (Required)", "Short description: (Required)"));
    EXPECT_STREQ(gtk_label_get_text(label_of(GTK_WIDGET(code_field()))), "Remark code: (Required)");
    EXPECT_EQ(gtk_container_get_border_width(GTK_CONTAINER(window())), 8U);
    EXPECT_FALSE(gtk_window_is_maximized(top_window()));
    EXPECT_EQ(gtk_window_get_default_widget(top_window()), GTK_WIDGET(find_button(window(), "OK")));
  });
  script.when(
      "the focus in the code", [] { return gtk_widget_has_focus(GTK_WIDGET(code_field())); },
      [] {});
  cancel();
  EXPECT_EQ(run(edited), 0);
}

TEST_F(RemarkDialog, ButtonsAreAtTheBottomOverTheFullWidth) {
  script.when_active(title, [] {
    const auto label = [](const char *text) { return GTK_WIDGET(find_label(window(), text)); };
    GtkWidget *code_label = label("Remark code: (Required)");
    GtkWidget *description_label = label("Short description: (Required)");
    GtkWidget *editor = find_widget<GtkWidget>(window(), V_TYPE_LANGSTR_EDITOR);
    std::vector<LayoutRow> rows = {
        {"code label", code_label, corner(), stays, stays, {{0.0F, 0.0F}}},
        {"code", GTK_WIDGET(code_field()), below("code label", 8), grows, stays},
        {"label", description_label, below("code", 8), stays, stays, {{0.0F, 0.0F}}},
        {"description", editor, below("label", 8), grows, stays}};
    expect_layout(gtk_widget_get_parent(editor), rows);
    GtkButton *ok = find_button(window(), "OK");
    GtkButton *cancel = find_button(window(), "Cancel");
    rows.insert(rows.end(), {{"fields", gtk_widget_get_ancestor(editor, GTK_TYPE_SCROLLED_WINDOW),
                              corner(), grows, stays},
                             {"OK", GTK_WIDGET(ok), below("fields", 8), stays, moves},
                             {"Cancel", GTK_WIDGET(cancel), end_of_row("OK"), moves, moves}});
    expect_window_layout(top_window(), WindowState::not_maximized, rows);
    expect_buttons_at_both_ends(ok, cancel);
  });
  cancel();
  EXPECT_EQ(run(edited), 0);
}

TEST_F(RemarkDialog, ANewRemarkHasEmptyFields) {
  script.on(title, [] {
    EXPECT_STREQ(gtk_entry_get_text(code_field()), "");
    EXPECT_EQ(shown_rows(window()), "English/United Kingdom [en-uk]=\n");
  });
  cancel();
  EXPECT_EQ(run(added.get()), 0);
  EXPECT_EQ(added->code, nullptr);
  EXPECT_EQ(added->description, nullptr);
}

// Cancel is at the right edge.
TEST_F(RemarkDialog, ButtonsAreAtBothEndsOfTheLowestRow) {
  script.on(title, [] {
    GtkAllocation ok;
    GtkAllocation cancel_button;
    GtkAllocation whole;
    gtk_widget_get_allocation(GTK_WIDGET(find_button(window(), "OK")), &ok);
    gtk_widget_get_allocation(GTK_WIDGET(find_button(window(), "Cancel")), &cancel_button);
    gtk_widget_get_allocation(gtk_bin_get_child(GTK_BIN(window())), &whole);
    EXPECT_EQ(ok.x, whole.x);
    EXPECT_EQ(cancel_button.x + cancel_button.width, whole.x + whole.width);
    EXPECT_EQ(ok.y, cancel_button.y);
    EXPECT_EQ(ok.y + ok.height, whole.y + whole.height);
  });
  cancel();
  run(edited);
}

TEST_F(RemarkDialog, ShrinksAfterARowIsDeleted) {
  auto height = std::make_shared<int>(0);
  const auto get_height = [] {
    int height_now = 0;
    gtk_window_get_size(top_window(), nullptr, &height_now);
    return height_now;
  };
  script.on(title, [height, get_height] {
    *height = get_height();
    for (int i = 0; i < 3; i++) {
      add_row(window());
    }
  });
  script.when(
      "a higher window", [height, get_height] { return get_height() > *height; },
      [] { gtk_button_clicked(find_button(window(), " - ")); });
  for (int i = 0; i < 2; i++) {
    script.then([] { gtk_button_clicked(find_button(window(), " - ")); });
  }
  script.when(
      "the window as it was", [height, get_height] { return get_height() == *height; }, [] {});
  cancel();
  run(edited);
}

// ---- Refusals -----------------------------------------------------------------------------------

TEST_F(RemarkDialog, ReportsOneErrorAtATime) {
  fill_in("", "");
  expect_refusal("Missing a code.");
  fill_in(" \u00a0 ", "Text");
  expect_refusal("Missing a code.");
  script.on(title,
            [] { EXPECT_EQ(shown_rows(window()), "English/United Kingdom [en-uk]=Text\n"); });
  fill_in("b", "");
  expect_refusal("That code is already taken.");
  fill_in("c", "  ");
  expect_refusal("Missing a description.");
  script.on(title, [] {
    enter(window(), 0, "One");
    add_row(window());
    enter(window(), 1, "Two");
    gtk_combo_box_set_active(languages_of(window())[1], 0);
  });
  expect_refusal("Each language may only appear once. Language \"en-uk\" appears several times.");
  script.on(title, [] {
    EXPECT_STREQ(gtk_entry_get_text(code_field()), "c");
    EXPECT_EQ(shown_rows(window()),
              "English/United Kingdom [en-uk]=One\nEnglish/United Kingdom [en-uk]=Two\n");
    gtk_combo_box_set_active(languages_of(window())[1], 1);
  });
  EXPECT_EQ(code_after_ok(), "c");
  EXPECT_EQ(translations_of(added->description), (Translations{{"en-uk", "One"}, {"sv", "Two"}}));
}

TEST_F(RemarkDialog, RefusesATakenCodeWithAnyDescription) {
  for (const char *code : {"a1", " a1 ", "b"}) {
    fill_in(code, "Something else");
    expect_refusal("That code is already taken.");
  }
  cancel();
  EXPECT_EQ(run(added.get()), 0);
}

TEST_F(RemarkDialog, AnEditedRemarkCannotTakeAnothersCode) {
  fill_in("b", "Tear");
  expect_refusal("That code is already taken.");
  cancel();
  EXPECT_EQ(run(edited), 0);
}

// The window stays open and shows no message.
TEST_F(RemarkDialog, ACodeThatCannotBeReadKeepsTheWindow) {
  fill_in("c", "Text");
  script.then([] { fail_reading_entries_from(1); });
  script.click("OK");
  script.on(title, [] { fail_reading_entries_from(0); });
  EXPECT_EQ(code_after_ok(), "c");
}

// The code can be read, the first row of the description cannot.
TEST_F(RemarkDialog, AnUnknownLanguageIsRefused) {
  added->description = langstr_of({{"pl", "Opis"}});
  script.on(title, [] {
    EXPECT_EQ(shown_rows(window()), "Unknown language [pl]=Opis\n");
    gtk_entry_set_text(code_field(), "c");
  });
  expect_refusal(v_error_message_unknown);
  cancel();
  EXPECT_EQ(run(added.get()), 0);
  EXPECT_EQ(translations_of(added->description), (Translations{{"pl", "Opis"}}));
}

// ---- Accepted values ----------------------------------------------------------------------------

TEST_F(RemarkDialog, StoresBothFieldsNormalised) {
  fill_in("  Cr  15 ", " Flaking \u00a0 \u00e5 ");
  EXPECT_EQ(code_after_ok(), "Cr 15");
  EXPECT_EQ(translations_of(added->description), (Translations{{"en-uk", "Flaking \xe5"}}));
  // The caller puts it into the list.
  EXPECT_EQ(added->next, nullptr);
}

TEST_F(RemarkDialog, ItsOwnCodeIsNotTaken) {
  script.on(title, [] { enter(window(), 1, "Revor"); });
  script.click("OK");
  EXPECT_EQ(run(edited), 1);
  EXPECT_STREQ(edited->code.get(), "a1");
  EXPECT_EQ(translations_of(edited->description),
            (Translations{{"en-uk", "Tear"}, {"sv", "Revor"}}));
  EXPECT_EQ(codeset->remarks->head.next, edited);
}

TEST_F(RemarkDialog, CodesAreComparedByteForByte) {
  for (const char *code : {"A1", "a01", "a 1", "B", "\u00e51"}) {
    added = v_remark_new();
    fill_in(code, "Tear");
    code_after_ok();
    EXPECT_STREQ(v_convert_latin1_to_utf8(added->code.get()).get(), code);
  }
}

TEST_F(RemarkDialog, AcceptsAnyCodeWithoutACodeset) {
  has_codeset = false;
  fill_in("a1", "Tear");
  EXPECT_EQ(code_after_ok(), "a1");
}

TEST_F(RemarkDialog, CodesAreTakenLiterally) {
  fill_in("%s%n<&>", "100 % <b>&amp;");
  EXPECT_EQ(code_after_ok(), "%s%n<&>");
  EXPECT_EQ(translations_of(added->description), (Translations{{"en-uk", "100 % <b>&amp;"}}));
}

TEST_F(RemarkDialog, EnterIsOkInEveryField) {
  for (const bool in_code : {true, false}) {
    added = v_remark_new();
    fill_in("c", "Text");
    script.then([in_code] {
      g_signal_emit_by_name(in_code ? code_field() : rows_of(window())[0], "activate");
    });
    EXPECT_EQ(run(added.get()), 1);
    EXPECT_STREQ(added->code.get(), "c");
  }
}

// ---- Leaving ------------------------------------------------------------------------------------

TEST_F(RemarkDialog, LeavingChangesNothing) {
  const char *code = edited->code.get();
  const VLangstr *description = edited->description.get();
  for (const int way : {0, 1, 2}) {
    script.on(title, [] {
      gtk_entry_set_text(code_field(), "z");
      add_row(window());
      enter(window(), 0, "Other");
    });
    if (way == 0) {
      cancel();
    } else if (way == 1) {
      script.close(title);
    } else {
      script.then([] { press_key(GDK_KEY_Escape); });
    }
    EXPECT_EQ(run(edited), 0);
    EXPECT_EQ(edited->code.get(), code);
    EXPECT_EQ(edited->description.get(), description);
    EXPECT_STREQ(code, "a1");
    EXPECT_EQ(translations_of(description), (Translations{{"en-uk", "Tear"}, {"sv", "Reva"}}));
  }
}

// Also after a refusal, Cancel changes nothing.
TEST_F(RemarkDialog, ARefusalChangesNothing) {
  const char *code = edited->code.get();
  fill_in("c", "");
  script.on(title, [] { enter(window(), 1, ""); });
  expect_refusal("Missing a description.");
  cancel();
  EXPECT_EQ(run(edited), 0);
  EXPECT_EQ(edited->code.get(), code);
  EXPECT_EQ(translations_of(edited->description),
            (Translations{{"en-uk", "Tear"}, {"sv", "Reva"}}));
}

TEST_F(RemarkDialog, TheWindowMayBeDestroyedUnderAMessage) {
  fill_in("", "");
  script.click("OK");
  script.when(
      "the message", [] { return is_on_top("Error"); },
      [] { gtk_widget_destroy(GTK_WIDGET(gtk_window_get_transient_for(top_window()))); });
  EXPECT_EQ(run(added.get()), 0);
}
