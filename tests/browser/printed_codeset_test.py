"""A codeset as a printable list in a real browser: a codeset file with the style sheets of
docs/print, and the sheets that vantorelle-codeset writes, which have the same style."""

import base64
import os
import pathlib
import random
import subprocess
import tempfile
import unittest
from xml.etree import ElementTree

from browser import Browser

SOURCE = pathlib.Path(__file__).resolve().parents[2]
SHEETS = SOURCE / "docs/print"
DELIVERED = sorted((SOURCE / "data/codesets").glob("*.codeset"))
CODESET = SOURCE / "data/codesets/easel_paintings.codeset"

WORDS = "crack lifting paint ground varnish yellowed blanching old retouching canvas rebate".split()

A4 = {"width": 21.0, "height": 29.7}  # centimetres

# The elements that are shown: name, language, text, left and right edge, and size of the letters.
SHOWN = """
    const texts = document.querySelectorAll("name, author, version, code, description");
    return [...texts].filter(element => element.getClientRects().length > 0).map(element => {
        const place = element.getBoundingClientRect();
        return [element.tagName, element.getAttribute("lang"), element.textContent.trim(),
                place.left, place.right, parseFloat(getComputedStyle(element).fontSize)];
    });
"""
# The same of a sheet, with what is shown before each text, and the edges of the text alone.
SHOWN_ON_SHEET = """
    const texts = document.querySelectorAll("h1, span, .version, dt, dd");
    return [...texts].map(element => {
        const range = document.createRange();
        range.selectNodeContents(element);
        const place = range.getBoundingClientRect();
        return [element.tagName.toLowerCase(), getComputedStyle(element, "::before").content,
                element.textContent, place.left, place.right,
                parseFloat(getComputedStyle(element).fontSize)];
    });
"""
PAGE_WIDTH = "return document.documentElement.getBoundingClientRect().right"


class PrintedTest(unittest.TestCase):
    def setUp(self):
        self.scratch = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory(prefix="print.")))
        self.browser = Browser(self.scratch / "browser")
        self.addCleanup(self.browser.end)

    def expect_in_page(self, shown):
        width = self.browser.run(PAGE_WIDTH)
        self.assertEqual([text for text in shown if text[3] < 0 or text[4] > width + 1], [])

    def expect_heading(self, shown, element):
        self.assertEqual(shown[0][0], element)
        self.assertGreater(shown[0][5], max(text[5] for text in shown[1:]))

    def count_pages(self):
        printed = base64.b64decode(self.browser.call("POST", "/print", page=A4))
        return printed.count(b"/Type /Page\n") or printed.count(b"/Type /Page ")


class PrintedCodeset(PrintedTest):
    def setUp(self):
        super().setUp()
        self.texts = [
            (element.tag, element.get("lang"), " ".join(element.text.split()))
            for element in ElementTree.parse(CODESET).iter()
            if element.tag in ("name", "author", "version", "code", "description")
        ]

    def show(self, sheet):
        """Prepares a copy of the codeset as the user guide says, and opens it."""
        for path in SHEETS.iterdir():
            (self.scratch / path.name).write_bytes(path.read_bytes())
        first, rest = CODESET.read_bytes().split(b"\n", 1)
        line = f'<?xml-stylesheet type="text/css" href="{sheet}"?>'.encode()
        copy = self.scratch / "codeset.xml"
        copy.write_bytes(b"\n".join((first, line, rest)))
        self.browser.open(copy.as_uri())
        return self.browser.run(SHOWN)

    def test_all_languages_are_printed_beside_their_codes(self):
        shown = self.show("codeset.css")
        self.assertEqual([tuple(text[:3]) for text in shown], self.texts)
        self.expect_in_page(shown)
        self.expect_codes_on_the_left(shown)
        self.expect_heading(shown, "name")

    def test_one_language_is_printed_alone_on_a_single_page(self):
        shown = self.show("codeset-in-one-language.css")
        self.assertEqual(
            [tuple(text[:3]) for text in shown],
            [text for text in self.texts if text[1] in (None, "sv")],
        )
        self.expect_in_page(shown)
        self.expect_codes_on_the_left(shown)
        self.expect_heading(shown, "name")
        self.assertEqual(self.count_pages(), 1)

    def expect_codes_on_the_left(self, shown):
        left = None
        for kind, _, text, begin, _, _ in shown:
            if kind == "code":
                left = begin
            elif kind == "description":
                self.assertGreater(begin, left, text)


class Sheet(PrintedTest):
    def show(self, path, *options):
        """Writes the sheet of a codeset and opens it."""
        sheet = self.scratch / "sheet.html"
        program = os.environ["VANTORELLE_CODESET_PROGRAM"]
        command = (program, "export", "--to", "html", "--force", "-o", sheet, path, *options)
        subprocess.run(command, check=True)
        self.browser.open(sheet.as_uri())
        return self.browser.run(SHOWN_ON_SHEET)

    def show_list(self, count, words):
        """The same of a codeset in one language with texts of up to so many words."""
        chance = random.Random(count)
        xml = "<codeset><name lang='en'>A list</name><author lang='en'>A studio</author>"
        for i in range(count):
            text = " ".join(chance.choices(WORDS, k=chance.randint(2, words)))
            xml += f"<remark><code>{chance.choice('ABC')}{i}</code>"
            xml += f"<description lang='en'>{text}</description></remark>"
        path = self.scratch / "list.codeset"
        path.write_text(xml + "</codeset>", encoding="utf-8")
        return self.show(path)

    def test_one_language_of_a_delivered_codeset_is_printed_on_a_single_page(self):
        for path in DELIVERED:
            for tag in ("sv", "de", "en-uk"):
                with self.subTest(path.name, tag=tag):
                    shown = self.show(path, "--language", tag)
                    self.expect_in_page(shown)
                    self.expect_heading(shown, "h1")
                    self.assertEqual(
                        {tag for element, tag, *_ in shown if element == "dd"}, {"none"}
                    )
                    self.assertEqual(self.count_pages(), 1)

    def test_all_languages_are_printed_with_their_tags(self):
        shown = self.show(CODESET)
        self.expect_in_page(shown)
        self.expect_heading(shown, "h1")
        tags = {f'"{tag}"' for tag in ("en-uk", "sv", "de", "fr", "es", "nl")}
        for element in ("span", "dd"):
            self.assertEqual({tag for name, tag, *_ in shown if name == element}, tags)
        self.assertEqual([tag for _, tag, text, *_ in shown if text == "1.1"], ['"Version "'])
        self.assertGreater(self.count_pages(), 1)

    def test_codes_tags_and_texts_are_beside_each_other(self):
        shown = self.show(CODESET)
        for (_, _, code, left, right, _), (_, _, _, text_left, _, _) in zip(shown, shown[1:]):
            if code in ("Ab1", "Cr14", "Lo15", "So12"):
                self.assertLess(left, right)
                self.assertGreater(text_left - right, 0, code)
                self.assertLess(text_left - left, 120, code)

    def test_short_lists_have_the_letters_with_which_they_fill_a_page(self):
        sizes = []
        for count in (8, 16, 24, 32, 40, 48, 56):
            for words in (3, 10):
                with self.subTest(count, words=words):
                    shown = self.show_list(count, words)
                    self.expect_in_page(shown)
                    self.assertEqual(self.count_pages(), 1)
                    sizes.append(shown[-1][5])
        self.assertGreater(sizes[0], 1.5 * sizes[-1])

    def test_long_words_and_codes_stay_in_their_columns(self):
        path = self.scratch / "long.codeset"
        path.write_text(
            f"<codeset><name lang='{'x' * 30}'>{'Name' * 60}</name>"
            f"<remark><code>{'W' * 40}</code><description lang='sv'>{'lång' * 200}</description>"
            f"<description lang='{'t' * 30}'>text</description></remark></codeset>",
            encoding="utf-8",
        )
        for options in ((), ("--language", "sv")):
            shown = self.show(path, *options)
            self.expect_in_page(shown)
            ((_, _, _, _, code_right, _),) = [text for text in shown if text[0] == "dt"]
            for _, _, text, left, _, _ in [text for text in shown if text[0] == "dd"]:
                self.assertGreater(left, code_right, text)


if __name__ == "__main__":
    unittest.main()
