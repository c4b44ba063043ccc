#pragma once
// The main window on a workspace, its parts, and steps of its user.

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "component_fixture.h"
#include "gui/components/main_window.h"

inline constexpr const char *main_title = "Manager 100%s <b>& co";
inline constexpr const char *selector_title = "Select one to add";
inline constexpr const char *notice_text =
    "Some incompatible files found. They are marked with red in the list:";

bool is_sensitive(const char *button_label);
// Labels of the sensitive buttons among the four that depend on the selection.
std::string sensitive_buttons();
bool shows_notice();
std::string deletion_question(const std::string &text);

// Steps are queued until the window runs; the first waits until its list has the focus.
class MainWindow : public ComponentFixture {
protected:
  MainWindow();
  ~MainWindow() override;

  // Makes the folders and, for each text, the user's file that shows it: "A" in a.codeset.
  void make_own(const std::vector<std::string> &texts);

  // Returns when a step has closed the window.
  void run();
  // The same, with a last step that closes it.
  void run_until_closed();

  // Acts when the window has no other over it.
  void check(std::function<void()> act) { script.on(main_title, std::move(act)); }
  void expect_texts(const std::vector<std::string> &texts); // of the rows of the list
  void select(const std::string &text);
  // Selects the row that shows the text, and clicks the button.
  void act_on(const std::string &text, const std::string &button_label);
  // All questions of this window have the warning icon.
  void answer_question(const std::string &message, const char *label);
  void add_from_file(const std::string &path);
  // Expects that adding the unreadable delivered a.codeset keeps the user's own file of that name.
  void add_in_vain_over_own_file();

  OfferBundled offer_bundled = OfferBundled::yes;
  bool has_edit_callback = true;
  std::optional<std::string> cannot_edit; // a path; none: there is no such callback
  std::function<void(const std::string &path)> on_edit;
  std::vector<std::string> edited;

private:
  static int edit_callback(const char *path, void *fixture);
  static bool can_edit_callback(const char *path, void *fixture);
};
