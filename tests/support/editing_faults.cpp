#include "support/editing_faults.h"

#include <utility>

#include "gui/editing/spacifying_entry.h"
#include "gui/widgets.h"
#include "workspace/drafts.h"

namespace {

int beep_count = 0;
int draft_count = 0;
int combo_box_calls_to_failure = 0;
int entry_readings_to_failure = 0;

// Counts down to the first call that fails; all later ones fail too. 0 is no fault.
bool is_failing(int &calls_to_failure) {
  if (calls_to_failure > 1) {
    calls_to_failure--;
    return false;
  }
  return calls_to_failure == 1;
}

} // namespace

int take_beep_count() { return std::exchange(beep_count, 0); }
int take_draft_count() { return std::exchange(draft_count, 0); }

void fail_combo_boxes_from(int call) { combo_box_calls_to_failure = call; }

void fail_reading_entries_from(int call) { entry_readings_to_failure = call; }

GtkComboBoxText *real_create_combo_box_text() __asm__("__real__Z27v_gui_create_combo_box_textv");
GtkComboBoxText *wrapped_create_combo_box_text() __asm__("__wrap__Z27v_gui_create_combo_box_textv");
OwnedText real_get_text(VSpacifyingEntry *entry) __asm__(
    "__real__Z27v_spacifying_entry_get_textP17_VSpacifyingEntry");
OwnedText wrapped_get_text(VSpacifyingEntry *entry) __asm__(
    "__wrap__Z27v_spacifying_entry_get_textP17_VSpacifyingEntry");
bool real_draft_write(VDraft *draft, const VCodeset *codeset) __asm__(
    "__real__Z13v_draft_writeP6VDraftPK8VCodeset");
bool wrapped_draft_write(VDraft *draft, const VCodeset *codeset) __asm__(
    "__wrap__Z13v_draft_writeP6VDraftPK8VCodeset");
void wrapped_beep() __asm__("__wrap_gdk_beep");

void wrapped_beep() { beep_count++; }

GtkComboBoxText *wrapped_create_combo_box_text() {
  return is_failing(combo_box_calls_to_failure) ? nullptr : real_create_combo_box_text();
}

OwnedText wrapped_get_text(VSpacifyingEntry *entry) {
  return is_failing(entry_readings_to_failure) ? nullptr : real_get_text(entry);
}

bool wrapped_draft_write(VDraft *draft, const VCodeset *codeset) {
  draft_count++;
  return real_draft_write(draft, codeset);
}
