#pragma once
// Searching a flat list by typing, in the toolkit's own search field. A row is found that contains
// the text, whatever the case and the accents of either.
//
// The toolkit takes the first row that matches, and Up and Down lead to the other ones, in the
// order of the list. So that rows beginning with the text come first, those before the first such
// row do not match. Where no row begins with the text, all that contain it match.

#include <string>

#include <gtk/gtk.h>

#include "base/owned.h"

// The text (UTF-8) by which a row is found; null for none.
using VListTextCallback = OwnedText (*)(GtkTreeModel *model, GtkTreeIter *row);

// The model of the view has to be set, and stays the view's for good. search_column: a column of
// text, without which the toolkit does not search.
void v_list_search_enable(GtkTreeView *view, int search_column, VListTextCallback text_callback);
// The text (UTF-8) without case and accents: two texts that differ in nothing else become the same.
std::string v_list_search_fold(const char *text);
