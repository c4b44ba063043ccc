#!/usr/bin/python3
"""vantorelle-codeset check."""

from command import DELIVERED, FAILED, GOOD, NOTICED, CommandTest, codeset_xml, main

SOUND = [("1", {"en-uk": "Crack", "sv": "Spricka"}), ("2", {"en-uk": "Loss", "sv": "Bortfall"})]
SUSPICIOUS = [
    ("A&B", {"en-uk": "Crack", "sv": "Spricka", "": "C"}),
    ("C1", {"en-uk": "Crack", "sv": "Spricka"}),
    ("C2", {"en-uk": "Loss", "sv": "Bortfall"}),
    ("C3", {"en-uk": "Stain", "xx": "é"}),
]


class Check(CommandTest):
    def test_counts_the_codes_and_names_the_languages(self):
        self.write("a.codeset", codeset_xml(SOUND))
        self.write("b.codeset", codeset_xml([("1", {"": "x"})]))
        self.expect(
            self.run_program("check", "a.codeset", "b.codeset"),
            GOOD,
            "a.codeset: 2 codes, en-uk, sv\nb.codeset: 1 code, undefined\n",
        )

    def test_accepts_the_delivered_codesets_without_a_warning(self):
        result = self.run_program("check", "--strict", *DELIVERED)
        self.assertEqual((result.status, result.errors), (GOOD, ""))
        lines = result.output.splitlines()
        self.assertEqual(len(lines), 8)
        for line in lines:
            self.assertRegex(line, r": 5[01] codes, en-uk, sv, de, fr, es, nl$")

    def test_warns_of_what_is_most_likely_a_mistake(self):
        self.write("a.codeset", codeset_xml(SUSPICIOUS))
        result = self.run_program("check", "a.codeset")
        self.assertEqual(result.status, GOOD)
        self.assertEqual(result.output, "a.codeset: 4 codes, en-uk, sv, undefined, xx\n")
        self.expect_golden("check/warnings.txt", result.errors.encode())

    def test_lets_warnings_count_when_it_is_strict(self):
        self.write("a.codeset", codeset_xml(SUSPICIOUS))
        self.write("b.codeset", codeset_xml(SOUND))
        self.assertEqual(
            self.run_program("check", "--strict", "a.codeset", "b.codeset").status, NOTICED
        )
        self.assertEqual(self.run_program("check", "-s", "b.codeset").status, GOOD)

    def test_says_why_a_file_is_refused_and_checks_the_others(self):
        self.write("name.codeset", codeset_xml(SOUND, name=""))
        self.write("twice.codeset", codeset_xml(SOUND[:1] * 2))
        self.write("a.codeset", codeset_xml(SUSPICIOUS))
        files = ("name.codeset", "twice.codeset", "none.codeset")
        result = self.run_program("check", "--strict", *files, "a.codeset")
        self.assertEqual(result.status, FAILED)
        self.assertEqual(result.output, "a.codeset: 4 codes, en-uk, sv, undefined, xx\n")
        errors = result.errors.split("vantorelle-codeset: a.codeset")[0]
        self.expect_golden("check/errors.txt", errors.encode())

    def test_checks_standard_input(self):
        self.expect(
            self.run_program("check", "-", stdin=codeset_xml(SOUND)),
            GOOD,
            "standard input: 2 codes, en-uk, sv\n",
        )

    def test_refuses_a_folder(self):
        result = self.run_program("check", ".")
        self.assertEqual((result.status, result.output), (FAILED, ""))
        self.assertRegex(result.errors, r"^vantorelle-codeset: \.: .*Is a directory")

    def test_reports_what_the_parser_found_in_broken_xml(self):
        result = self.run_program("check", "-", stdin=b"<codeset>\n\n<name>\n</codeset>")
        self.assertEqual((result.status, result.output), (FAILED, ""))
        self.assertRegex(
            result.errors,
            r"^vantorelle-codeset: standard input: Error loading codeset file\. "
            r"Could not parse XML data\. .*line 4: .*\n(  .*\n)+$",
        )

    def test_sends_no_control_characters_of_a_file_name(self):
        self.write("a\033[31m\n.codeset", codeset_xml(SOUND))
        self.expect(
            self.run_program("check", "a\033[31m\n.codeset"),
            GOOD,
            "a?[31m\n  .codeset: 2 codes, en-uk, sv\n",
        )


if __name__ == "__main__":
    main()
