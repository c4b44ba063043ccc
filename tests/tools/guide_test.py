#!/usr/bin/python3
"""The guide to spreadsheets: its tables and commands give the results that it shows."""

import csv
import io
import re
import shlex

from command import SOURCE, CommandTest, main

GUIDE = (SOURCE / "docs" / "spreadsheets.md").read_text(encoding="utf-8")


def blocks(language):
    return re.findall(rf"(?ms)^```{language}\n(.*?)^```$", GUIDE)


class Guide(CommandTest):
    def test_its_commands_print_what_it_says(self):
        (table,) = blocks("csv")
        self.write("frames.csv", table.encode())
        for block in blocks("console"):
            command, expected = re.fullmatch(r"\$ (.*?)\n(.*)", block, re.DOTALL).groups()
            program, *arguments = shlex.split(command)
            self.assertEqual(program, "vantorelle-codeset")
            result = self.run_program(*arguments)
            self.assertEqual(result.output + result.errors, expected, command)

    def test_its_table_and_its_csv_have_the_same_content(self):
        (table,) = blocks("csv")
        lines = re.findall(r"(?m)^\|(?!-)(.*)\|$", GUIDE)
        rows = [[field.strip() for field in line.split("|")] for line in lines]
        self.assertEqual(rows, list(csv.reader(io.StringIO(table))))

    def test_its_pictures_and_pages_exist(self):
        for target in re.findall(r"\]\(([^)#]+)[^)]*\)", GUIDE):
            self.assertTrue((SOURCE / "docs" / target).exists(), target)


if __name__ == "__main__":
    main()
