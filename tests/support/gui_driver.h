#pragma once
// Drives windows as a user would, from inside their nested main loops.

#include "support/gui/keys.h"
#include "support/gui/script.h"
#include "support/gui/test_window.h"
#include "support/gui/waiting.h"
#include "support/gui/widget_search.h"
