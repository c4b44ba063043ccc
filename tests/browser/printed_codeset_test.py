"""A codeset as a printable list: the style sheets of docs/print in a real browser."""

import base64
import pathlib
import tempfile
import unittest
from xml.etree import ElementTree

from browser import Browser

SOURCE = pathlib.Path(__file__).resolve().parents[2]
SHEETS = SOURCE / "docs/print"
CODESET = SOURCE / "data/codesets/easel_paintings.codeset"

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
PAGE_WIDTH = "return document.documentElement.getBoundingClientRect().right"


class PrintedCodeset(unittest.TestCase):
    def setUp(self):
        self.scratch = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory(prefix="print.")))
        self.browser = Browser(self.scratch / "browser")
        self.addCleanup(self.browser.end)
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
        self.expect_heading(shown)

    def test_one_language_is_printed_alone_on_a_single_page(self):
        shown = self.show("codeset-in-one-language.css")
        self.assertEqual(
            [tuple(text[:3]) for text in shown],
            [text for text in self.texts if text[1] in (None, "sv")],
        )
        self.expect_in_page(shown)
        self.expect_codes_on_the_left(shown)
        self.expect_heading(shown)
        self.assertEqual(self.count_pages(), 1)

    def expect_in_page(self, shown):
        width = self.browser.run(PAGE_WIDTH)
        self.assertEqual([text for text in shown if text[3] < 0 or text[4] > width + 1], [])

    def expect_codes_on_the_left(self, shown):
        left = None
        for kind, _, text, begin, _, _ in shown:
            if kind == "code":
                left = begin
            elif kind == "description":
                self.assertGreater(begin, left, text)

    def expect_heading(self, shown):
        self.assertEqual(shown[0][0], "name")
        self.assertGreater(shown[0][5], max(text[5] for text in shown[1:]))

    def count_pages(self):
        printed = base64.b64decode(self.browser.call("POST", "/print", page=A4))
        return printed.count(b"/Type /Page\n") or printed.count(b"/Type /Page ")


if __name__ == "__main__":
    unittest.main()
