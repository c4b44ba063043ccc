#pragma once
// Determines the codeset that the editing window starts with, and asks the user when there is a
// draft.

#include "codeset/codeset.h"
#include "gui/window_stack.h"
#include "workspace/drafts.h"

// The draft of the codeset at the path (UTF-8) if there is one and the user restores it, else the
// codeset, else a new one if there is no file. A draft is offered even when the file cannot be
// read: the program may have ended while it was written. A draft that the user does not restore is
// removed. Null after an error message.
OwnedCodeset v_codeset_opening_run(VWindowStack *window_stack, const char *path, VDraft *draft);
