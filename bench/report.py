#!/usr/bin/env python3
"""report.py DOCUMENT RESULT...: prints a table of the result files of Google Benchmark, and writes
it between the two marks in the document. Ends with 1 when a target is missed."""

import json
import pathlib
import sys

START = "<!-- table of scripts/bench -->\n"
END = "<!-- end of the table -->\n"
REACHED, MISSED = "reached", "MISSED"
HEADINGS = ("What", "Size", "Baseline in the same run", "Baseline", "Ours", "Ratio", "Target", "")


def rows_of(path):
    """The results of bench/support/comparison.cpp, one row for each benchmark."""
    for run in json.loads(pathlib.Path(path).read_text(encoding="utf-8"))["benchmarks"]:
        if run.get("error_occurred"):
            sys.exit(f"{run['name']}: {run['error_message']}")
        what, size, baseline, unit = run["label"].split("\t")
        yield (
            what,
            size,
            baseline,
            amount(run["baseline"], unit),
            amount(run["ours"], unit),
            f"{run['ratio']:.2f}",
            *verdict(run["ratio"], run.get("target")),
        )


def verdict(ratio, target):
    """The cells for the target and for whether it is reached; empty for a row that only informs."""
    if target is None:
        return "", ""
    return f"{target:.2f}", REACHED if ratio <= target else MISSED


def amount(value, unit):
    if unit == "s":
        for scale, name in ((1, "s"), (1e3, "ms")):
            if value * scale >= 1:
                return f"{value * scale:.3g} {name}"
        return f"{value * 1e6:.3g} µs"
    return f"{value:.0f} {unit}"


def lines_of(rows, separator):
    widths = [max(len(cell) for cell in column) for column in zip(*rows)]
    return [
        separator.join(cell.ljust(width) for cell, width in zip(row, widths)).rstrip()
        for row in rows
    ]


def markdown(rows):
    cells = [HEADINGS, tuple("---" for _ in HEADINGS), *rows]
    return "".join("| " + " | ".join(row) + " |\n" for row in cells)


def put(document, table):
    text = document.read_text(encoding="utf-8")
    before, start, rest = text.partition(START)
    _, end, after = rest.partition(END)
    if not start or not end:
        sys.exit(f"{document} does not have the two marks of the table.")
    document.write_text(before + start + "\n" + table + "\n" + end + after, encoding="utf-8")


def main(document, *results):
    rows = [row for path in results for row in rows_of(path)]
    print("\n".join(lines_of([HEADINGS, *rows], "  ")))
    put(pathlib.Path(document), markdown(rows))
    verdicts = [row[-1] for row in rows]
    reached, missed = verdicts.count(REACHED), verdicts.count(MISSED)
    print(f"\n{reached} of {reached + missed} targets reached")
    sys.exit(1 if missed else 0)


main(*sys.argv[1:])
