#pragma once
// The rows of the table whose measurements need a display.

// Editing window against a bare list of the same rows.
void v_bench_add_editing_rows();
// The whole program against a minimal one.
void v_bench_add_process_rows();
