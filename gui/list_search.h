#pragma once
// Searching a flat list by typing, in the toolkit's own search field. A row matches when it
// contains the text; case and accents make no difference.
//
// The toolkit selects the first row that matches, and Up and Down move to the others, in the order
// of the list. So that a row beginning with the text is selected first, the rows before it do not
// match. When no row begins with the text, all rows that contain it match.

#include <string>

#include <gtk/gtk.h>

#include "base/owned.h"

// The text (UTF-8) by which a row is found; null for none.
using VListTextCallback = OwnedText (*)(GtkTreeModel *model, GtkTreeIter *row);

// The model of the view must be set before, and must not change. search_column: a column of text,
// without which the toolkit does not search.
void v_list_search_enable(GtkTreeView *view, int search_column, VListTextCallback text_callback);
// The text (UTF-8) without case and accents: texts that differ in nothing else become equal.
std::string v_list_search_fold(const char *text);
