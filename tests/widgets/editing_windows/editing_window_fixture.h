#pragma once
// The editing window of a small codeset, its widgets, and steps of its user.

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "window_fixture.h"

using Codes = std::vector<std::pair<std::string, std::string>>; // codes and English descriptions

inline constexpr const char *dialog_title = "Edit remark code";

// The bytes of a codeset file as the program writes it. Each line of the head is a whole element.
std::string codeset_file(const std::vector<std::string> &head, const Codes &codes);

inline const std::vector<std::string> paper_head = {
    "<name lang=\"en-uk\">Paper</name>",
    "<name lang=\"sv\">Papper</name>",
    "<author lang=\"sv\">\xc5sa</author>",
    "<version>1.2</version>",
};
inline const Codes paper_codes = {{"1", "Tear"}, {"2", "Loss"}, {"10", "Stain"}};
inline const std::string paper_file = codeset_file(paper_head, paper_codes);

// Widgets of the top window.
GtkWidget *window();
GtkFrame *frame(const std::string &label);
GtkWidget *name_editor();
GtkWidget *author_editor();
GtkEntry *version_entry();
GtkTreeView *codes();
GtkTreeSelection *selection();

// The rows of the list of codes, from top to bottom.
std::vector<std::string> code_rows();
void select_code(int row);
// The row with the keyboard cursor, from 0; -1 when there is none.
int cursor_row();
std::string shown_description();
// Expects that no row is selected, and that buttons and description match.
void expect_no_selection();

// Steps are queued until the window runs.
class EditingWindow : public WindowFixture {
protected:
  EditingWindow() { write_paper(); }

  std::string path() const { return place + "/" + name; }
  std::string title() const { return "Edit remark codeset - " + name; }
  void write_paper() { write_file(path(), paper_file); }

  // Runs the window with the steps so far. Returns 1 when the codeset was saved, otherwise 0.
  int run();
  // The same, with a last step that closes the window without saving or saves.
  void run_until_closed();
  void run_until_saved();

  // Acts when the window has no other over it.
  void check(std::function<void()> act) { script.on(title(), std::move(act)); }
  void expect_codes(const std::vector<std::string> &rows);
  void select(int row);
  // Steps for the question whether to close without saving.
  void answer_question(const char *label);
  void dismiss_question();
  void close_without_saving();
  void expect_refused_save(const std::string &message);
  // Fills in the remark dialog, which is open or about to open.
  void type_remark(const char *code, const char *description);
  // The same, and confirms it.
  void enter_remark(const char *code, const char *description);
  void add_code(const char *code, const char *description);
  void edit_code(int row); // opens the remark dialog
  void delete_code(int row);

  std::string place = folder.path();
  std::string name = "paper.codeset";
};
