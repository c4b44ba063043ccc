#pragma once
// The modal window in which one remark's code and description are entered.

#include "base/owned.h"
#include "codeset/codeset.h"
#include "gui/window_stack.h"
#include "workspace/settings.h"

// Edits the remark in place: returns 1 when the user has confirmed a valid code and description,
// which the remark then has; 0 when the window was cancelled, and the remark is as it was. The
// remark stays where it is in its list: whoever keeps the list puts it in its place. codeset: the
// one in which the code must be unique, null for none. title: UTF-8.
int v_remark_gui_edit_remark(VWindowStack *window_stack, const VSettings *settings, VRemark *remark,
                             const VCodeset *codeset, const char *title);

// The way through several remarks, one window after the other.
struct VRemarkPass {
  // How the user goes on after a confirmation: 1 to the next remark of the list, -1 to the one
  // before, 0 not at all.
  int step = 0;
  // The language (UTF-8, as the user reads it) in whose description the focus is; null for the code
  // or for anything else. The next window opens there if it has that language.
  OwnedText language;
};

// The same, with a key for going on: Ctrl+Down and Ctrl+Up confirm as OK does, and pass says where
// to. Any other end sets the step to 0.
int v_remark_gui_edit_remark_in_pass(VWindowStack *window_stack, const VSettings *settings,
                                     VRemark *remark, const VCodeset *codeset, const char *title,
                                     VRemarkPass &pass);
