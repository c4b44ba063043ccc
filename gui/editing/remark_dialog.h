#pragma once
// The modal window for entering the code and description of a remark.

#include <functional>

#include "base/owned.h"
#include "codeset/codeset.h"
#include "gui/window_stack.h"
#include "workspace/settings.h"

// Edits the remark in place. Returns 1 when the user has confirmed a valid code and description; 0
// when the window was cancelled, and the remark is unchanged. Does not move the remark in its list;
// that is up to the caller. codeset: the one in which the code must be unique, null for none.
// title: UTF-8.
int v_remark_gui_edit_remark(VWindowStack *window_stack, const VSettings *settings, VRemark *remark,
                             const VCodeset *codeset, const char *title);

// A pass through several remarks, one window at a time.
struct VRemarkPass {
  // Which remark the user wants to edit next: 1 for the next one in the list, -1 for the previous
  // one, 0 for none.
  int step = 0;
  // The display text (UTF-8) of the language whose description had the focus; null when the focus
  // was elsewhere. The next window focuses its field for that language, if it has one.
  OwnedText language;
};

// Access to the text typed into the window, for a draft.
struct VRemarkTyping {
  std::function<void()> changed; // called after each change of a field
  // Returns a remark with everything that is typed, valid or not: a missing code is "?", and a
  // taken one gets a question mark at its end; for the description see
  // v_langstr_editor_get_text_for_draft. Null when there is no description. Set while the window is
  // open, otherwise empty.
  std::function<OwnedRemark()> read;
};

// The same for an owner of the codeset that writes drafts, and with a pass (null: not in one):
// Ctrl+Down and Ctrl+Up confirm as OK does, and set the step to 1 and -1. Closing the window in any
// other way sets the step to 0.
int v_remark_gui_edit_remark_for_drafts(VWindowStack *window_stack, const VSettings *settings,
                                        VRemark *remark, const VCodeset *codeset, const char *title,
                                        VRemarkTyping &typing, VRemarkPass *pass);
