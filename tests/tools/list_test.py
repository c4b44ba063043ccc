#!/usr/bin/python3
"""vantorelle-codeset list."""

from command import DELIVERED, FAILED, GOOD, CommandTest, codeset_xml, main

REMARKS = [
    ("10", {"sv": "Krackelé", "en-uk": "Craquelure"}),
    ("9", {"sv": "Repa", "de": "Kratzer"}),
    ("a1", {"en-us": "Color loss", "fr": "Perte"}),
    ("A1", {"": "Text", "fr": "Texte"}),
]


class List(CommandTest):
    def setUp(self):
        super().setUp()
        self.write("a.codeset", codeset_xml(REMARKS))

    def lines(self, *options, **variables):
        result = self.run_program("list", "a.codeset", *options, **variables)
        self.assertEqual((result.status, result.errors), (GOOD, ""))
        return result.output.splitlines()

    def test_prints_codes_in_their_order_and_their_descriptions(self):
        self.expect(
            self.run_program("list", "a.codeset"),
            GOOD,
            "9\tRepa\n10\tCraquelure\nA1\tText\na1\tColor loss\n",
        )

    def test_prefers_the_wanted_language(self):
        self.assertEqual(
            self.lines("--language", "de"),
            ["9\tKratzer", "10\tCraquelure", "A1\tText", "a1\tColor loss"],
        )
        self.assertEqual(
            self.lines("-l", "fr"), ["9\tRepa", "10\tCraquelure", "A1\tTexte", "a1\tPerte"]
        )

    def test_a_language_is_also_its_dialects(self):
        self.assertEqual(self.lines("--language=en")[-1], "a1\tColor loss")

    def test_prefers_the_languages_of_the_user(self):
        self.assertEqual(self.lines(LC_ALL="sv_SE.UTF-8")[1], "10\tKrackelé")
        self.assertEqual(self.lines(VANTORELLE_USER_LANGUAGE="de")[0], "9\tKratzer")
        self.assertEqual(
            self.lines("--language", "en-uk", LC_ALL="sv_SE.UTF-8")[1], "10\tCraquelure"
        )

    def test_prints_utf_8_in_every_locale(self):
        for locale in ("C", "de_DE.ISO-8859-1", "ja_JP.EUC-JP"):
            self.assertEqual(self.lines("-l", "sv", LC_ALL=locale)[1], "10\tKrackelé")

    def test_warns_that_nothing_is_in_the_wanted_language(self):
        self.expect(
            self.run_program("list", "-l", "nl", "a.codeset"),
            GOOD,
            "9\tRepa\n10\tCraquelure\nA1\tText\na1\tColor loss\n",
            "vantorelle-codeset: a.codeset: warning: No description in nl.\n",
        )

    def test_refuses_a_language_that_is_not_utf_8(self):
        self.expect(
            self.run_program("list", "a.codeset", "-l", b"\xe5".decode(errors="surrogateescape")),
            FAILED,
            errors="vantorelle-codeset: list: The value of -l is not UTF-8; "
            'see "vantorelle-codeset list --help"\n',
        )

    def test_prints_every_code_of_a_delivered_codeset(self):
        easel = next(path for path in DELIVERED if path.name.startswith("easel"))
        result = self.run_program("list", easel, "--language=de")
        self.expect_golden("list/easel-paintings-de.txt", result.output_bytes)

    def test_says_why_a_file_is_refused(self):
        self.expect(
            self.run_program("list", "none"),
            FAILED,
            errors="vantorelle-codeset: none: Error loading codeset file. Cannot open file. "
            "Error 2: No such file or directory\n",
        )


if __name__ == "__main__":
    main()
