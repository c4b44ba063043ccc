"""Prints the coverage of each folder and fails when one is below its mark:

    coverage_report.py SUMMARY MARKS

SUMMARY is a JSON summary of gcovr. MARKS has one line for each folder: its path, the percentage of
lines and the percentage of branches. Sub-folders of a folder have lines of their own.
"""

import json
import pathlib
import sys


def percentage(files, kind):
    """How many of all lines or branches are covered, and the percentage."""
    covered = sum(file[f"{kind}_covered"] for file in files)
    total = sum(file[f"{kind}_total"] for file in files)
    return covered, total, 100 * covered / total if total else 0


def main(summary, marks):
    files = json.loads(pathlib.Path(summary).read_text(encoding="utf-8"))["files"]
    is_below = False
    print(f"{'folder':<22}{'lines':>17}{'branches':>19}")
    for folder, *limits in (line.split() for line in marks.splitlines() if line):
        inside = [file for file in files if str(pathlib.Path(file["filename"]).parent) == folder]
        figures = ""
        for kind, limit in zip(("line", "branch"), limits, strict=True):
            covered, total, percent = percentage(inside, kind)
            is_missed = percent < float(limit)
            figures += f"{covered:>8}/{total:<5}{percent:5.1f}{'!' if is_missed else ' '}"
            is_below = is_below or is_missed
        print(f"{folder:<22}{figures}")
    return "FAILED: a folder is below its mark (!)" if is_below else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1], sys.argv[2]))
