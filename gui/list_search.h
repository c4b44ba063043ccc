#pragma once
// Search by typing in a flat list, in the toolkit's own search field. A row matches when it
// contains the text, ignoring case and accents.
//
// The toolkit selects the first row that matches, and Up and Down move to the others in list order.
// If some row begins with the text, the rows before the first of these do not match, so that it is
// selected first. If none does, all rows that contain the text match.

#include <string>

#include <gtk/gtk.h>

#include "base/owned.h"

// The text (UTF-8) by which a row is found; null for none.
using VListTextCallback = OwnedText (*)(GtkTreeModel *model, GtkTreeIter *row);

// The model of the view must already be set, and must not be replaced. search_column: a text
// column, which the toolkit requires for searching.
void v_list_search_enable(GtkTreeView *view, int search_column, VListTextCallback text_callback);
// The text (UTF-8) without case and accents: texts that differ only in these become equal.
std::string v_list_search_fold(const char *text);
