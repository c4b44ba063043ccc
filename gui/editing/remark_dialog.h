#pragma once
// The modal window in which one remark's code and description are entered.

#include "codeset/codeset.h"
#include "gui/window_stack.h"
#include "workspace/settings.h"

// Edits the remark in place: returns 1 when the user has confirmed a valid code and description,
// which the remark then has; 0 when the window was cancelled, and the remark is as it was. The
// remark stays where it is in its list: whoever keeps the list puts it in its place. codeset: the
// one in which the code must be unique, null for none. title: UTF-8.
int v_remark_gui_edit_remark(VWindowStack *window_stack, const VSettings *settings, VRemark *remark,
                             const VCodeset *codeset, const char *title);
