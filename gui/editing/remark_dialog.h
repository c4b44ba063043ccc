#pragma once
// The modal window in which one remark's code and description are entered.

#include <functional>

#include "base/owned.h"
#include "codeset/codeset.h"
#include "gui/window_stack.h"
#include "workspace/settings.h"

// Edits the remark in place: returns 1 when the user has confirmed a valid code and description,
// which the remark then has; 0 when the window was cancelled, and the remark is as it was. The
// remark keeps its place in its list: the caller moves it to the sorted one. codeset: the one in
// which the code must be unique, null for none. title: UTF-8.
int v_remark_gui_edit_remark(VWindowStack *window_stack, const VSettings *settings, VRemark *remark,
                             const VCodeset *codeset, const char *title);

// A pass through several remarks, with one window after the other.
struct VRemarkPass {
  // The step to the remark that the user wants to edit next: 1 to the next one in the list, -1 to
  // the one before, 0 to none.
  int step = 0;
  // The language (UTF-8, as the user reads it) whose description has the focus; null when the code
  // or anything else has it. The next window gives its field of that language the focus, if it has
  // one.
  OwnedText language;
};

// What is typed into the window, for a draft.
struct VRemarkTyping {
  std::function<void()> changed; // called after each change of a field
  // Returns a remark with all that is typed, valid or not: a missing code is "?", a taken one gets
  // a question mark at its end; for the description see v_langstr_editor_get_text_for_draft. Null
  // when there is no description. Set while the window is open, otherwise empty.
  std::function<OwnedRemark()> read;
};

// The same, for an owner of the codeset that writes drafts, and with a pass (null: not in one):
// Ctrl+Down and Ctrl+Up confirm as OK does, and set the step to 1 and -1. Any other way to close
// the window sets the step to 0.
int v_remark_gui_edit_remark_for_drafts(VWindowStack *window_stack, const VSettings *settings,
                                        VRemark *remark, const VCodeset *codeset, const char *title,
                                        VRemarkTyping &typing, VRemarkPass *pass);
