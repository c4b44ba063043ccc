#!/usr/bin/python3
"""The manual page and the completion of vantorelle-codeset cover all that its help shows."""

import re
import shlex
import subprocess

from command import SOURCE, CommandTest, main

COMPLETION = SOURCE / "data" / "completions" / "vantorelle-codeset"
PAGE = SOURCE / "data" / "desktop" / "vantorelle-codeset.1"

# Prints the proposals for the last of the words, one per line. Completion functions call compopt,
# which fails outside of a completion.
COMPLETE = """
compopt() { :; }
source "$1"
shift
COMP_WORDS=(vantorelle-codeset "$@")
COMP_CWORD=$#
_vantorelle_codeset
printf '%s\\n' "${COMPREPLY[@]}"
"""


class Documents(CommandTest):
    def commands(self):
        help_text = self.run_program("--help").output.partition("Commands:")[2]
        return re.findall(r"^  (\w+)  ", help_text, re.MULTILINE)

    def options(self, command):
        help_text = self.run_program(command, "--help").output
        options = set(re.findall(r"^  (?:-\w, )?(--[\w-]+)", help_text, re.MULTILINE))
        self.assertIn("--help", options)
        return options

    def complete(self, *words):
        printed = subprocess.run(
            ("bash", "-euc", COMPLETE, "bash", COMPLETION, *words),
            cwd=self.folder,
            stdout=subprocess.PIPE,
            text=True,
            check=True,
        ).stdout
        return set(printed.split("\n")) - {""}

    def test_the_commands_are_completed(self):
        self.assertLessEqual({*self.commands(), "--help", "--version"}, self.complete(""))
        self.assertEqual(self.complete("ch"), {"check"})

    def test_the_options_of_each_command_are_completed(self):
        for command in self.commands():
            self.assertEqual(self.complete(command, "-"), self.options(command), command)

    def test_files_are_completed(self):
        for name in ("a.codeset", "a b.codeset", "a.csv", "a.txt"):
            self.write(name, b"")
        (self.folder / "around").mkdir()
        self.assertEqual(self.complete("list", "a"), {"a.codeset", "a b.codeset", "around"})
        self.assertEqual(self.complete("import", "a"), {"a.csv", "around"})
        self.assertEqual(
            self.complete("export", "-o", "a"),
            {"a.codeset", "a b.codeset", "a.csv", "a.txt", "around"},
        )

    def test_forms_are_completed(self):
        for words in (("--to", "="), ("--to", "=", ""), ("--to", "")):
            self.assertEqual(self.complete("export", *words), {"csv", "html", "skos"}, words)
        self.assertEqual(self.complete("import", "--from", "=", "c"), {"csv"})

    def test_values_that_nobody_can_guess_are_not_completed(self):
        self.write("a.codeset", b"")
        for option in ("--language", "-l"):
            self.assertEqual(self.complete("list", option, ""), set())

    def test_the_manual_page_has_every_command_and_option(self):
        page = PAGE.read_text().replace("\\-", "-")
        for command in self.commands():
            self.assertRegex(page, rf"\n\.B {command}\n")
            for option in self.options(command):
                self.assertRegex(page, rf"\n\.B[IR]? .*{option}\b", shlex.join((command, option)))


if __name__ == "__main__":
    main()
