#pragma once
// The list of remark codes in the editing window: one row for each remark, in the order of the
// remark list. Shows remarks and their changes, but never changes any.

#include <gtk/gtk.h>

#include "codeset/remark_history.h"
#include "gui/owned_objects.h"
#include "workspace/settings.h"

struct VCodesList {
  const VSettings *settings = nullptr; // borrowed; the languages in which descriptions are shown
  // Columns: the text of each row (UTF-8), and its remark, which the codeset owns.
  OwnedObject<GtkListStore> store;
  GtkTreeView *view = nullptr; // owned by the box
};

// Packs an empty scrolled list, expanding. The settings must outlive it.
VCodesList v_codes_list_pack(GtkBox *box, const VSettings *settings);
// Fills the list, once. The remarks must outlive their rows.
void v_codes_list_show(VCodesList *codes, const VRemarkList *remarks);
// Borrowed from the remark list; null when no row is selected.
VRemark *v_codes_list_get_selected(const VCodesList *codes);
// Applies an exchange in the remark list to the rows, and puts the cursor on the inserted row, else
// on the row that is now at the index of the removed one. No row is selected afterwards.
void v_codes_list_follow_exchange(VCodesList *codes, const VRemarkExchange &exchange);
// Puts the cursor on the row (from 0). No row is selected afterwards.
void v_codes_list_set_place(VCodesList *codes, int row);
