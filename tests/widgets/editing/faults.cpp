#include "faults.h"

#include <utility>

#include "gui/editing/spacifying_entry.h"
#include "gui/widgets.h"

namespace {

int beep_count = 0;
int combo_box_calls_to_failure = 0;
bool entry_reading_fails = false;

} // namespace

int take_beep_count() { return std::exchange(beep_count, 0); }

void fail_combo_boxes_from(int call) { combo_box_calls_to_failure = call; }

void fail_reading_entries(bool fails) { entry_reading_fails = fails; }

GtkComboBoxText *real_create_combo_box_text() __asm__("__real__Z27v_gui_create_combo_box_textv");
GtkComboBoxText *wrapped_create_combo_box_text() __asm__("__wrap__Z27v_gui_create_combo_box_textv");
OwnedText real_get_text(VSpacifyingEntry *entry) __asm__(
    "__real__Z27v_spacifying_entry_get_textP17_VSpacifyingEntry");
OwnedText wrapped_get_text(VSpacifyingEntry *entry) __asm__(
    "__wrap__Z27v_spacifying_entry_get_textP17_VSpacifyingEntry");
void wrapped_beep() __asm__("__wrap_gdk_beep");

void wrapped_beep() { beep_count++; }

GtkComboBoxText *wrapped_create_combo_box_text() {
  if (combo_box_calls_to_failure == 0) {
    return real_create_combo_box_text();
  }
  if (combo_box_calls_to_failure > 1) {
    combo_box_calls_to_failure--;
    return real_create_combo_box_text();
  }
  return nullptr;
}

OwnedText wrapped_get_text(VSpacifyingEntry *entry) {
  return entry_reading_fails ? nullptr : real_get_text(entry);
}
