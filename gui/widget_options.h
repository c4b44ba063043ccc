#pragma once
// The options of the functions that create widgets (gui/widgets.h, labels.h, text_fields.h,
// lists.h), for headers that need the options but not the functions.

enum class Expand { no, yes };
enum class Spacing { none, standard };
enum class Required { no, yes };
enum class ActivatesDefault { no, yes };
enum class MakeDefault { no, yes };
enum class Editable { no, yes };
enum class HeadersVisible { no, yes };
enum class FixedHeight { no, yes };
enum class SelectionMode { single, multiple };
enum class Homogeneous { no, yes };
// yes: a field collapses every run of whitespace to one space.
enum class Compact { no, yes };

// The initial buttons of a dialog, in the order in which they are added.
enum class VButtonSet {
  none = 0,   // the caller adds them
  ok = 1,     // "OK" (GTK_RESPONSE_OK)
  close = 2,  // "Close" (GTK_RESPONSE_CLOSE)
  yes_no = 4, // "No" (GTK_RESPONSE_NO), "Yes" (GTK_RESPONSE_YES); Yes first where that is customary
};
