#!/usr/bin/python3
"""vantorelle-codeset: its options, and its behaviour in pipes and on terminals."""

import os
import pty
import re
import select
import subprocess
import time

from command import (
    FAILED,
    GOOD,
    NOTICED,
    PATIENCE,
    PROGRAM,
    SOURCE,
    CommandTest,
    codeset_xml,
    environment,
    main,
)

LIBRARIES_OF_WINDOWS = ("gtk", "gdk", "X11", "xcb", "wayland", "cairo", "pango", "gspell", "rsvg")
REMARKS = [("1", {"en-uk": "Crack"}), ("2", {"en-uk": "Crack"})]


class Command(CommandTest):
    def commands(self):
        help_text = self.run_program("--help").output
        return re.findall(r"^  (\w+)  ", help_text.partition("Commands:")[2], re.MULTILINE)

    def test_shows_help(self):
        result = self.run_program("--help")
        self.assertEqual((result.status, result.errors), (GOOD, ""))
        self.expect_golden("command/help.txt", result.output_bytes)
        self.assertEqual(self.run_program("-h").output, result.output)

    def test_shows_the_help_of_each_command(self):
        commands = self.commands()
        self.assertGreaterEqual(set(commands), {"check", "diff", "export", "list"})
        for command in commands:
            result = self.run_program(command, "--help")
            self.assertEqual((result.status, result.errors), (GOOD, ""), command)
            self.expect_golden(f"{command}/help.txt", result.output_bytes)

    def test_shows_the_version(self):
        (version,) = re.findall(r"VERSION (\S+)", (SOURCE / "CMakeLists.txt").read_text())[1:2]
        self.expect(self.run_program("--version"), GOOD, f"vantorelle-codeset {version}\n")

    def test_says_what_is_wrong_with_its_arguments(self):
        see = 'see "vantorelle-codeset --help"'
        see_list = 'see "vantorelle-codeset list --help"'
        see_diff = 'see "vantorelle-codeset diff --help"'
        for arguments, message in {
            (): f"No command is given; {see}",
            ("paint",): f"paint: Unknown command; {see}",
            ("--paint",): f"--paint: Unknown option; {see}",
            ("list",): f"list: No file is named; {see_list}",
            ("diff", "a"): f"diff: A file is missing; {see_diff}",
            ("list", "a", "b"): f"list: Too many files are named; {see_list}",
            ("diff", "-", "-"): f"diff: Standard input can be read only once; {see_diff}",
            ("list", "--paint", "a"): f"list: Unknown option --paint; {see_list}",
            ("list", "a", "--language"): f"list: Missing argument for --language; {see_list}",
            ("list", "a", "--language="): f"list: The value of --language is empty; {see_list}",
            ("list", ""): f"list: The name of a file is empty; {see_list}",
            ("",): f"No command is given; {see}",
        }.items():
            with self.subTest(arguments=arguments):
                self.expect(
                    self.run_program(*arguments), FAILED, errors=f"vantorelle-codeset: {message}\n"
                )

    def test_its_own_texts_are_the_same_in_every_locale(self):
        for locale in ("sv_SE.UTF-8", "de_DE.ISO-8859-1"):
            for arguments in (("list", "--help"), ("list", "--paint"), ("list", "none")):
                here, there = (self.run_program(*arguments, LC_ALL=x) for x in ("C", locale))
                self.assertEqual((there.output, there.errors), (here.output, here.errors))

    def test_names_files_after_two_dashes(self):
        self.write("--help", codeset_xml(REMARKS))
        self.expect(self.run_program("list", "--", "--help"), GOOD, "1\tCrack\n2\tCrack\n")

    def test_reads_a_file_with_any_name(self):
        self.write("ä ü.codeset", codeset_xml(REMARKS))
        for locale in ("C", "de_DE.ISO-8859-1"):
            result = self.run_program("check", "ä ü.codeset", LC_ALL=locale)
            self.assertEqual(result.output, "ä ü.codeset: 2 codes, en-uk\n")

    def test_links_no_gui_library(self):
        libraries = subprocess.run(
            ("ldd", PROGRAM), stdout=subprocess.PIPE, text=True, check=True
        ).stdout
        self.assertIn("libxml2", libraries)
        for name in LIBRARIES_OF_WINDOWS:
            self.assertNotRegex(libraries, rf"lib{name}", name)

    def test_needs_neither_a_home_nor_a_display(self):
        self.write("a", codeset_xml(REMARKS))
        self.expect(
            self.run_program("list", "a", HOME="/nonexistent"), GOOD, "1\tCrack\n2\tCrack\n"
        )
        self.assertEqual(sorted(path.name for path in self.folder.iterdir()), ["a"])


class Streams(CommandTest):
    def setUp(self):
        super().setUp()
        self.write("a", codeset_xml(REMARKS))

    def shell(self, command):
        return subprocess.run(
            ("bash", "-c", command),
            cwd=self.folder,
            env=environment(PROGRAM=PROGRAM, LC_ALL="C"),
            stdout=subprocess.PIPE,
            stderr=subprocess.PIPE,
            text=True,
            check=False,
            timeout=PATIENCE,
        )

    def test_reads_the_output_of_another_command(self):
        self.assertEqual(self.shell('"$PROGRAM" list <(cat a)').stdout, "1\tCrack\n2\tCrack\n")
        self.assertEqual(self.shell('cat a | "$PROGRAM" diff a -').returncode, GOOD)

    def test_leaves_no_copy_of_standard_input_behind(self):
        self.assertEqual(
            self.shell('mkdir t; TMPDIR=t "$PROGRAM" list - <a; ls -A t').stdout[-2:], "k\n"
        )

    def test_leaves_no_file_behind_when_nobody_reads_its_codeset(self):
        rows = "".join(f"{i},{'x' * 50}\n" for i in range(2000))  # more than a pipe takes at once
        self.write("table", f"code,sv\n{rows}".encode())
        command = 'mkdir t; TMPDIR=t "$PROGRAM" import --from csv table -o - | true; ls -A t'
        result = self.shell(command)
        self.assertEqual((result.stdout, result.stderr), ("", ""))

    def test_leaves_no_part_of_a_file_that_becomes_too_large(self):
        self.write("table", f"code,sv\n1,{'x' * 5000}\n".encode())
        self.shell('ulimit -f 1; "$PROGRAM" import --from csv table -o b.codeset')
        self.assertEqual(sorted(path.name for path in self.folder.iterdir()), ["a", "table"])

    def test_reports_a_full_disk(self):
        self.write("table", b"code,sv\n1,Spricka\n")
        for command in (
            "list a",
            "check a",
            "diff a <(sed s/Crack/Loss/ a)",
            "export --to csv a",
            "export --to csv a -o -",
            "import --from csv table -o -",
            "--help",
            "--version",
            "list --help",
        ):
            result = self.shell(f'"$PROGRAM" {command} >/dev/full')
            self.assertEqual(result.returncode, FAILED, command)
            self.assertEqual(
                result.stderr,
                "vantorelle-codeset: standard output: File I/O error when writing to file. "
                "Error 28: No space left on device\n",
            )

    def test_ends_quietly_when_nobody_reads_its_output(self):
        self.assertEqual(self.shell('"$PROGRAM" list a | true; echo ${PIPESTATUS[0]}').stderr, "")

    def test_reports_a_closed_output(self):
        result = self.shell('"$PROGRAM" list a >&-')
        self.assertEqual(result.returncode, FAILED)
        self.assertIn("standard output: File I/O error when writing to file.", result.stderr)

    def test_reports_a_closed_input(self):
        result = self.shell('"$PROGRAM" list - <&-')
        self.assertEqual(result.returncode, FAILED)
        self.assertIn("standard input: File I/O error when reading file.", result.stderr)

    def test_works_without_standard_error(self):
        result = self.shell('"$PROGRAM" check --strict a 2>&-')
        self.assertEqual((result.returncode, result.stdout), (NOTICED, "a: 2 codes, en-uk\n"))


class Terminal(CommandTest):
    """Standard error is a terminal."""

    READING = r"\r\033\[Kstandard input: reading, \d+ s"

    def run_on_terminal(self, *arguments, late_input=None, **variables):
        """Returns what the terminal received. Late input arrives once the terminal shows that the
        program is reading."""
        terminal, end = pty.openpty()
        self.addCleanup(os.close, terminal)
        with subprocess.Popen(
            (PROGRAM, *arguments),
            cwd=self.folder,
            stdin=subprocess.PIPE if late_input else subprocess.DEVNULL,
            stdout=subprocess.DEVNULL,
            stderr=end,
            env=environment(TERM="xterm", **variables),
        ) as process:
            os.close(end)
            received = ""
            try:
                if late_input:
                    received = self.read(terminal, self.READING)
                    process.stdin.write(late_input)
                    process.stdin.close()
                received += self.read(terminal)
            except BaseException:
                process.kill()
                raise
        return received.replace("\r\n", "\n")

    @staticmethod
    def read(terminal, expected=None):
        """What the terminal receives until it contains that regular expression, or else until the
        program has ended."""
        received = b""
        begin = time.monotonic()

        def failure(what):
            return AssertionError(
                f"{what} {time.monotonic() - begin:.1f} s in vain for "
                f"{expected or 'the end of the program'}; the terminal shows {received!r}"
            )

        while not (expected and re.search(expected.encode(), received)):
            rest = begin + PATIENCE - time.monotonic()
            if not select.select([terminal], [], [], max(0, rest))[0]:
                raise failure("Waited")
            try:
                piece = os.read(terminal, 1000)
            except OSError:  # the other end is closed
                piece = b""
            if not piece and expected:
                raise failure("The program has ended. Waited")
            if not piece:
                break
            received += piece
        return received.decode()

    def test_colours_its_messages(self):
        self.write("a", codeset_xml(REMARKS))
        self.assertEqual(
            self.run_on_terminal("check", "a"),
            "\033[1mvantorelle-codeset: a: \033[0m\033[35mwarning: \033[0m"
            '2 codes have the same description in en-uk: 1, 2 ("Crack")\n',
        )
        self.assertEqual(
            self.run_on_terminal("paint"),
            "\033[1mvantorelle-codeset: paint: \033[0m"
            'Unknown command; see "vantorelle-codeset --help"\n',
        )

    def test_uses_no_colour_that_the_user_does_not_want(self):
        self.assertNotIn("\033", self.run_on_terminal("list", "none", NO_COLOR="1"))
        self.assertIn("\033", self.run_on_terminal("list", "none", NO_COLOR=""))

    def test_shows_that_it_is_still_reading(self):
        for arguments, late_input in (
            (("list", "-"), codeset_xml(REMARKS[:1])),
            (("import", "--from=csv", "-", "-o", "-"), b"code,sv\n1,Spricka\n"),
        ):
            self.assertRegex(
                self.run_on_terminal(*arguments, late_input=late_input),
                rf"\A({self.READING})+\r\033\[K\Z",
            )

    def test_shows_nothing_when_it_is_quick(self):
        self.write("a", codeset_xml(REMARKS[:1]))
        self.assertEqual(self.run_on_terminal("list", "a"), "")


if __name__ == "__main__":
    main()
