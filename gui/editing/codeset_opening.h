#pragma once
// Chooses the codeset that the editing window starts with, and asks the user when there is a draft.

#include "codeset/codeset.h"
#include "gui/window_stack.h"
#include "workspace/drafts.h"

// The codeset at the path (UTF-8), or the draft of it that the user wants to restore, or a new one
// when there is neither. A draft needs no file that can be read: the program may have ended while
// it was written. A draft that the user does not want is removed. Null after an error message.
OwnedCodeset v_codeset_opening_run(VWindowStack *window_stack, const char *path, VDraft *draft);
