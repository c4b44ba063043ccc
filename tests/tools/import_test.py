#!/usr/bin/python3
"""vantorelle-codeset import."""

from command import FAILED, GOOD, CommandTest, main

TABLE = """\
name,Varnish damage,Fernissaskador
version,1.2,
code,en-uk,sv
Cr10,Craquelure,Krackelé
7,"Bloom, ""white"" haze",Blånad
Cr2,,Sprickor
"""
QUOTED = '"Bloom, ""white"" haze"'
CODESET = """\
<?xml version="1.0" encoding="iso-8859-1"?>

<codeset>

	<name lang="en-uk">Varnish damage</name>
	<name lang="sv">Fernissaskador</name>
	<version>1.2</version>

	<remark>
		<code>7</code>
		<description lang="en-uk">Bloom, &quot;white&quot; haze</description>
		<description lang="sv">Blånad</description>
	</remark>

	<remark>
		<code>Cr2</code>
		<description lang="sv">Sprickor</description>
	</remark>

	<remark>
		<code>Cr10</code>
		<description lang="en-uk">Craquelure</description>
		<description lang="sv">Krackelé</description>
	</remark>

</codeset>
"""


def as_saved_by_spreadsheets(text):
    """The table in the forms that spreadsheets save: name of the form and bytes."""
    rows = [line.split(",") for line in text.replace(QUOTED, "Bloom").splitlines()]
    quoted = [[f'"{cell}"' if cell else "" for cell in row] for row in rows]
    wide = [[*row, "", ""] for row in rows] + [["", "", "", "", ""]] * 3

    def joined(table, delimiter, line_end):
        return "".join(delimiter.join(row) + line_end for row in table).encode()

    return [
        ("commas", joined(rows, ",", "\n")),
        ("semicolons, mark, CRLF", b"\xef\xbb\xbf" + joined(rows, ";", "\r\n")),
        ("semicolons, all quoted", joined(quoted, ";", "\n")),
        ("tabs", joined(rows, "\t", "\r\n")),
        ("tabs, all quoted, mark", b"\xef\xbb\xbf" + joined(quoted, "\t", "\n")),
        ("delimiter in the first line", b"sep=;\r\n" + joined(rows, ";", "\r\n")),
        ("empty columns and rows", joined(wide, ",", "\r\n")),
    ]


class Import(CommandTest):
    def import_table(self, table, *options, output="out.codeset"):
        self.write("table.csv", table.encode() if isinstance(table, str) else table)
        return self.run_program("import", "--from", "csv", "table.csv", "-o", output, *options)

    def expect_codeset(self, text, name="out.codeset"):
        self.assertEqual((self.folder / name).read_bytes().decode("latin-1"), text)

    def expect_refused(self, result, message, file="table.csv"):
        self.expect(result, FAILED, errors=f"vantorelle-codeset: {file}: {message}\n")
        self.assertFalse((self.folder / "out.codeset").exists())

    def test_makes_a_codeset_of_a_table(self):
        self.expect(self.import_table(TABLE), GOOD)
        self.expect_codeset(CODESET)
        self.assertEqual(
            sorted(path.name for path in self.folder.iterdir()), ["out.codeset", "table.csv"]
        )

    def test_reads_tables_as_spreadsheets_save_them(self):
        expected = CODESET.replace(", &quot;white&quot; haze", "")
        for form, table in as_saved_by_spreadsheets(TABLE):
            with self.subTest(form):
                self.expect(self.import_table(table, "--force"), GOOD)
                self.expect_codeset(expected)

    def test_reads_standard_input_and_writes_standard_output(self):
        result = self.run_program("import", "--from=csv", "-", "-o", "-", stdin=TABLE.encode())
        self.assertEqual((result.status, result.errors), (GOOD, ""))
        self.assertEqual(result.output_bytes.decode("latin-1"), CODESET)

    def test_does_not_depend_on_the_locale(self):
        self.write("table.csv", TABLE.encode())
        for locale in ("C", "de_DE.ISO-8859-1", "ja_JP.EUC-JP", "tr_TR.UTF-8"):
            result = self.run_program(
                "import", "--from=csv", "table.csv", "-o", "-", "--author", "Åsa", LC_ALL=locale
            )
            self.assertEqual((result.status, result.errors), (GOOD, ""))
            self.assertIn('<author lang="">Åsa</author>', result.output_bytes.decode("latin-1"))

    def test_options_replace_name_author_and_version(self):
        options = ["--name", "de=Firnis", "--name=fr=Vernis", "--author", "Åsa"]
        result = self.import_table(TABLE, *options, "--codeset-version", " 2 ")
        self.expect(result, GOOD)
        head = (
            '\t<name lang="de">Firnis</name>\n\t<name lang="fr">Vernis</name>\n'
            '\t<author lang="">Åsa</author>\n\t<version>2</version>\n'
        )
        self.expect_codeset(
            CODESET[: CODESET.index("\t<name")] + head + CODESET[CODESET.index("\n\t<remark") :]
        )

    def test_keeps_an_equals_sign_that_does_not_follow_a_tag(self):
        self.expect(self.import_table("code,sv\n1,a\n", "--name", "2 x 2=4"), GOOD)
        self.assertIn(b'<name lang="">2 x 2=4</name>', (self.folder / "out.codeset").read_bytes())
        self.expect(self.import_table("code,sv\n1,a\n", "--name", "=x=y", "--force"), GOOD)
        self.assertIn(b'<name lang="">x=y</name>', (self.folder / "out.codeset").read_bytes())

    def test_names_a_codeset_without_name_like_its_file(self):
        for output, name in (
            ("Museum list.codeset", "Museum list"),
            ("\u00e5 \u0142.codeset", "\u00e5 ?"),
            (".codeset", "table"),
            ("-", "table"),
        ):
            with self.subTest(output):
                result = self.import_table("code,sv\n1,a\n", output=output)
                self.assertEqual((result.status, result.errors), (GOOD, ""))
                written = result.output_bytes or (self.folder / output).read_bytes()
                self.assertIn(f'<name lang="">{name}</name>', written.decode("latin-1"))
        result = self.run_program("import", "--from=csv", "-", "-o", "-", stdin=b"code,sv\n1,a\n")
        self.assertIn('<name lang="">codeset</name>', result.output)

    def test_warns_of_a_language_that_the_program_does_not_have(self):
        self.expect(
            self.import_table("code,en-uk,en-gb\n1,a,b\n"),
            GOOD,
            errors='vantorelle-codeset: table.csv: warning: The language "en-gb" is not one of '
            "the program's.\n",
        )
        self.assertTrue((self.folder / "out.codeset").exists())

    def test_names_line_and_column_of_what_it_refuses(self):
        for table, message in (
            (
                "code,en-uk,sv\n1,one,ett\n2,two,tv\u2019å\n",
                "Line 3, column 3 (sv): the character U+2019 (\u2019) is not among those that a "
                "codeset can hold, the Western European ones of ISO-8859-1. Write ' instead.",
            ),
            (
                "code,sv\n1,a\n1,b\n",
                'Line 3, column 1 (code): the code "1" is in line 2 already. Change one of the '
                "two codes.",
            ),
            (
                "code,fran\u00e7ais\n1,a\n",
                "Line 1, column 2: a language tag has ASCII characters alone, as "
                '"sv" or "en-uk".',
            ),
            (
                "code,sv\n1,\n",
                'Line 2, column 1 (code): the code "1" has no text in any language. Write one, '
                "or delete the line.",
            ),
            (
                'code,sv\n"A&B",a\n',
                'Line 2, column 1 (code): the code "A&B" has "&", "<" or "]]>", and a file with '
                "such a code cannot be read. Change the code.",
            ),
            ("", "The file is empty."),
        ):
            with self.subTest(table):
                self.expect_refused(self.import_table(table), message)

    def test_says_how_to_save_a_table_in_another_encoding(self):
        how = 'as "Text CSV" with the character set Unicode (UTF-8).'
        self.expect_refused(
            self.import_table(TABLE.encode("utf-16")),
            f"The file is written in UTF-16, not in UTF-8. Save it from the spreadsheet {how}",
        )
        self.expect_refused(
            self.import_table(b"PK\x03\x04mimetype"),
            f"The file is a spreadsheet, not csv. Open it in its program and save it {how}",
        )
        self.expect_refused(
            self.import_table(TABLE.encode("latin-1")),
            "Line 4, column 3 (sv): this text is not UTF-8. Save it again with the character set "
            "Unicode (UTF-8).",
        )

    def test_never_replaces_a_file_without_force(self):
        self.write("out.codeset", b"precious")
        self.expect(
            self.import_table(TABLE),
            FAILED,
            errors="vantorelle-codeset: out.codeset: The file exists already; --force replaces "
            "it.\n",
        )
        self.assertEqual((self.folder / "out.codeset").read_bytes(), b"precious")
        self.expect(self.import_table(TABLE, "--force"), GOOD)
        self.expect_codeset(CODESET)

    def test_never_replaces_the_table_itself(self):
        self.write("table.codeset", TABLE.encode())
        (self.folder / "link.codeset").symlink_to("table.codeset")
        for output in ("table.codeset", "link.codeset"):
            self.expect_refused(
                self.run_program("import", "--from=csv", "table.codeset", "--force", "-o", output),
                "This is the table itself; it is not replaced.",
                output,
            )
        self.assertEqual((self.folder / "table.codeset").read_bytes(), TABLE.encode())

    def test_keeps_the_old_file_when_the_table_is_refused(self):
        self.write("out.codeset", b"precious")
        self.assertEqual(self.import_table("code,sv\n1\n", "--force").status, FAILED)
        self.assertEqual((self.folder / "out.codeset").read_bytes(), b"precious")

    def test_explains_wrong_options(self):
        self.write("table.csv", TABLE.encode())
        for arguments, message in (
            (["table.csv", "-o", "a.codeset"], "The format must be given: --from csv."),
            (
                ["--from", "xls", "table.csv", "-o", "a.codeset"],
                "The format must be given: --from csv.",
            ),
            (
                ["--from", "csv", "table.csv"],
                "The codeset to write must be named: --output OUT.codeset.",
            ),
            (
                ["--from", "csv", "table.csv", "-o", "table.csv", "--force"],
                "The name of a codeset must end in .codeset; others are not found.",
            ),
            (
                ["--from", "csv", "table.csv", "-o", "a.codeset", "--name", "sv= "],
                "--name: the text is empty.",
            ),
            (
                ["--from", "csv", "table.csv", "-o", "a.codeset", "--codeset-version", "\u20ac"],
                "--codeset-version: the character U+20AC (\u20ac) is not among those that a "
                "codeset can hold, the Western European ones of ISO-8859-1. Write EUR instead.",
            ),
        ):
            with self.subTest(arguments):
                self.expect(
                    self.run_program("import", *arguments),
                    FAILED,
                    errors=f"vantorelle-codeset: import: {message}\n",
                )
        self.assertEqual([path.name for path in self.folder.iterdir()], ["table.csv"])

    def test_reports_a_table_that_is_not_there(self):
        self.expect(
            self.run_program("import", "--from=csv", "none.csv", "-o", "a.codeset"),
            FAILED,
            errors="vantorelle-codeset: none.csv: Cannot open file. "
            "Error 2: No such file or directory\n",
        )

    def test_reports_a_folder_that_is_not_there(self):
        result = self.import_table(TABLE, output="none/out.codeset")
        self.assertEqual(result.status, FAILED)
        self.assertTrue(result.errors.startswith("vantorelle-codeset: none/out.codeset: "))


if __name__ == "__main__":
    main()
