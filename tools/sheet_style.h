#pragma once
// The style sheet of printed codesets (ASCII), which is also installed beside the user guide.

extern const char *const v_sheet_style;
