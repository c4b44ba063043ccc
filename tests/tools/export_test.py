#!/usr/bin/python3
"""vantorelle-codeset export: tables, sheets, and vocabularies that rapper reads back."""

import collections
import csv
import html.parser
import io
import random
import re
import subprocess
import urllib.parse
from xml.etree import ElementTree

from command import DELIVERED, FAILED, GOOD, CommandTest, codeset_xml, main

SKOS = "http://www.w3.org/2004/02/skos/core#"
RDF_TYPE = "http://www.w3.org/1999/02/22-rdf-syntax-ns#type"
TITLE = "http://purl.org/dc/terms/title"
CREATOR = "http://purl.org/dc/elements/1.1/creator"
VERSION = "http://www.w3.org/2002/07/owl#versionInfo"

TRIPLE = re.compile(r'<([^>]*)> <([^>]*)> (?:<([^>]*)>|"((?:[^"\\]|\\.)*)"(?:@([\w-]+))?) \.')
ESCAPED = re.compile(r"\\(?:u([0-9A-F]{4})|U([0-9A-F]{8})|(.))")
EASEL = next(path for path in DELIVERED if path.name.startswith("easel"))

REMARKS = [("Ab1", {"en-uk": "Abrasion", "sv": "Avnötning"}), ("Cr2", {"en-uk": "Crack"})]
# Codes, texts and tags with odd characters of every kind.
ODD_REMARKS = [
    (".", {"en-uk": 'A "quoted" \\ text'}),
    ("..", {"": "no language"}),
    ("a/b?c#d:e%20", {"en-uk": "first", "en-gb": "second", "EN-UK": "first", "en": "third"}),
    ("Å ä", {"not_a_tag": "å", "x": "ÿ", "sv--fi": "\x85"}),
    ("'", {"zh-hant-tw": "'''"}),
    ("§1", {"sv": "ÿ"}),
]


def unescape(text):
    def character(match):
        code = match[1] or match[2]
        return (
            chr(int(code, 16)) if code else {"n": "\n", "r": "\r", "t": "\t"}.get(*[match[3]] * 2)
        )

    return ESCAPED.sub(character, text)


def read_triples(turtle):
    """What rapper reads: (subject, predicate, address or (text, language)) of each triple."""
    read = subprocess.run(
        ["rapper", "-q", "-i", "turtle", "-o", "ntriples", "-", "http://base.invalid/"],
        input=turtle,
        capture_output=True,
        check=False,
    )
    assert (read.returncode, read.stderr) == (0, b""), read.stderr.decode()
    for line in read.stdout.decode().splitlines():
        subject, predicate, address, text, language = TRIPLE.fullmatch(line).groups()
        yield subject, predicate, address or (unescape(text), language)


def read_codeset(path):
    """Name, author, version and remarks of a codeset file: texts as [(tag, text)]."""
    root = ElementTree.parse(path).getroot()

    def texts(parent, element):
        return [(each.get("lang"), " ".join(each.text.split())) for each in parent.iter(element)]

    remarks = [(each.findtext("code"), texts(each, "description")) for each in root.iter("remark")]
    return texts(root, "name"), texts(root, "author"), root.findtext("version"), remarks


def language_of(tag):
    return {"en-uk": "en-GB"}.get(tag, tag) or None


class Table(CommandTest):
    def export(self, path, *options):
        result = self.run_program("export", "--to", "csv", path, *options)
        self.assertEqual((result.status, result.errors), (GOOD, ""))
        return result.output

    def rows_of(self, path, *options):
        """The table as Python reads it."""
        return list(csv.reader(io.StringIO(self.export(path, *options), newline=""), strict=True))

    def test_has_all_of_the_delivered_codesets(self):
        for path in DELIVERED:
            _, _, _, remarks = read_codeset(path)
            tags = [tag for tag, _ in remarks[0][1]]
            expected = [["code", *tags]]
            for code, description in remarks:
                expected.append([code, *[dict(description).get(tag, "") for tag in tags]])
            with self.subTest(path.name):
                self.assertEqual(self.rows_of(path), expected)

    def test_begins_with_the_header_when_it_is_wanted(self):
        rows = self.rows_of(EASEL, "--with-header")
        name, author, version, _ = read_codeset(EASEL)
        self.assertEqual(rows[0], ["name", *[text for _, text in name]])
        self.assertEqual(rows[1], ["author", *[text for _, text in author]])
        self.assertEqual(rows[2][:2], ["version", version])
        self.assertEqual(rows[3:], self.rows_of(EASEL))

    def test_round_trips(self):
        for path in DELIVERED:
            with self.subTest(path.name):
                table = self.write("table.csv", self.export(path, "--with-header").encode())
                command = ("import", "--from", "csv", table, "-o", "again.codeset", "--force")
                self.expect(self.run_program(*command), GOOD)
                self.expect(self.run_program("diff", path, "again.codeset"), GOOD)


class Vocabulary(CommandTest):
    def export(self, path, *options):
        result = self.run_program("export", "--to", "skos", path, *options)
        self.assertEqual((result.status, result.errors), (GOOD, ""))
        return result.output_bytes

    def values_of(self, path, *options):
        """{subject: {predicate: [objects]}}, no triple twice."""
        values = collections.defaultdict(lambda: collections.defaultdict(list))
        for subject, predicate, value in read_triples(self.export(path, *options)):
            self.assertNotIn(value, values[subject][predicate])
            values[subject][predicate.replace(SKOS, "")].append(value)
        return values

    def expect_integrity(self, values, scheme):
        """The rules of SKOS for every vocabulary, and those of our own."""
        concepts = set(values) - {scheme}
        self.assertEqual(values[scheme][RDF_TYPE], [SKOS + "ConceptScheme"])
        self.assertEqual(set(values[scheme]["hasTopConcept"]), concepts)
        notations = [values[concept]["notation"] for concept in concepts]
        self.assertEqual(len({tuple(notation) for notation in notations}), len(concepts))
        for subject, properties in values.items():
            preferred = properties["prefLabel"]
            languages = [language for _, language in preferred]
            self.assertEqual(len(set(languages)), len(languages), subject)
            self.assertFalse(set(preferred) & set(properties["altLabel"]), subject)
        for concept in concepts:
            properties = values[concept]
            self.assertEqual(properties[RDF_TYPE], [SKOS + "Concept"])
            self.assertEqual(properties["inScheme"], [scheme])
            self.assertEqual(properties["topConceptOf"], [scheme])
            (((code, language),),) = [properties["notation"]]
            self.assertIsNone(language)
            self.assertEqual(urllib.parse.unquote(concept[len(scheme) + 1 :]), code)

    def expect_same(self, path, scheme, *options):
        values = self.values_of(path, *options)
        self.expect_integrity(values, scheme)
        name, author, version, remarks = read_codeset(self.folder / path)

        def labels(texts):
            return sorted((text, str(language_of(tag))) for tag, text in texts)

        def found(subject, predicate):
            return sorted((text, str(language)) for text, language in values[subject][predicate])

        self.assertEqual(found(scheme, "prefLabel"), labels(name))
        self.assertEqual(found(scheme, TITLE), labels(name))
        self.assertEqual(found(scheme, CREATOR), labels(author))
        self.assertEqual(values[scheme][VERSION], [(version, None)] if version else [])
        self.assertEqual(len(values), 1 + len(remarks))
        for code, description in remarks:
            concept = scheme + ":" + urllib.parse.quote(code, safe="~")
            self.assertEqual(found(concept, "prefLabel"), labels(description))
        triples = sum(len(each) for properties in values.values() for each in properties.values())
        self.assertEqual(
            triples,
            1
            + 2 * len(name)
            + len(author)
            + bool(version)
            + sum(5 + len(description) for _, description in remarks),
        )

    def test_has_all_of_the_delivered_codesets(self):
        self.assertEqual(len(DELIVERED), 8)
        for path in DELIVERED:
            with self.subTest(path.name):
                self.expect_same(path, "urn:x-codeset:" + path.stem)

    def test_has_all_of_a_large_codeset(self):
        chance = random.Random(7)
        remarks = [
            (f"{chance.choice('ABCD')}{i}", {tag: f"{tag} {i} å" for tag in ("en-uk", "sv", "de")})
            for i in range(5000)
        ]
        self.write("large.codeset", codeset_xml(remarks))
        self.expect_same("large.codeset", "urn:x-codeset:large")

    def test_is_complete_with_odd_codes_texts_and_tags(self):
        self.write("odd.codeset", codeset_xml(ODD_REMARKS))
        for scheme, options in {
            "urn:x-codeset:odd": (),
            "http://museum.example/odd": ("--base", "http://museum.example/odd"),
        }.items():
            values = self.values_of("odd.codeset", *options)
            self.expect_integrity(values, scheme)
            self.assertEqual(len(values), 1 + len(ODD_REMARKS))
            labels = {
                values[subject]["notation"][0][0]: values[subject]["prefLabel"]
                for subject in values
                if subject != scheme
            }
            self.assertEqual(labels["."], [('A "quoted" \\ text', "en-GB")])
            self.assertEqual(labels[".."], [("no language", None)])
            self.assertEqual(labels["a/b?c#d:e%20"], [("first", "en-GB"), ("third", "en")])
            self.assertEqual(
                labels["Å ä"], [("å", "x-not-a-tag"), ("ÿ", "x-x"), ("\x85", "x-sv-fi")]
            )

    def test_looks_as_accepted(self):
        name = (
            "<name lang='en-uk'>Easel &quot;paintings&quot;</name><author lang=''>A. Lind</author>"
        )
        self.write("short.codeset", codeset_xml(REMARKS + ODD_REMARKS, name))
        self.expect_golden("export/short.ttl", self.export("short.codeset"))

    def test_has_the_users_address(self):
        self.write("a.codeset", codeset_xml(REMARKS))
        for base, concept in {
            "http://museum.example/a": "http://museum.example/a/Ab1",
            "http://museum.example/a/": "http://museum.example/a/Ab1",
            "http://museum.example/a#": "http://museum.example/a#Ab1",
        }.items():
            values = self.values_of("a.codeset", "--base", base)
            self.assertEqual(values[base][RDF_TYPE], [SKOS + "ConceptScheme"])
            self.assertIn(concept, values)

    def test_has_an_address_without_a_file_name(self):
        result = self.run_program("export", "--to=skos", "-", stdin=codeset_xml(REMARKS))
        self.assertEqual((result.status, result.errors), (GOOD, ""))
        self.assertIn("<urn:x-codeset:codeset> a skos:ConceptScheme", result.output)

    def test_refuses_an_address_that_is_not_absolute(self):
        self.write("a.codeset", codeset_xml(REMARKS))
        self.expect(
            self.run_program("export", "--to", "skos", "a.codeset", "--base", "museum/a"),
            FAILED,
            errors="vantorelle-codeset: export: Not an absolute address: museum/a\n",
        )


class Elements(html.parser.HTMLParser):
    """The texts of a sheet: (element, lang, tag, text), and what is wrong with its elements."""

    EMPTY = ("meta",)

    def __init__(self, document):
        super().__init__()
        self.texts = []
        self.open = []
        self.feed(document)
        self.close()

    def handle_starttag(self, tag, attrs):
        if tag not in self.EMPTY:
            self.open.append((tag, dict(attrs)))

    def handle_endtag(self, tag):
        assert self.open.pop()[0] == tag, tag

    def handle_data(self, data):
        if data.strip() and self.open:
            tag, attributes = self.open[-1]
            self.texts.append((tag, attributes.get("lang"), attributes.get("data-tag"), data))


class Sheet(CommandTest):
    def export(self, path, *options):
        result = self.run_program("export", "--to", "html", path, *options)
        self.assertEqual((result.status, result.errors), (GOOD, ""))
        return result.output

    def texts_of(self, path, *options):
        elements = Elements(self.export(path, *options))
        self.assertEqual(elements.open, [])
        return [text for text in elements.texts if text[0] in ("h1", "dt", "dd")]

    def test_has_all_of_the_delivered_codesets(self):
        for path in DELIVERED:
            name, _, _, remarks = read_codeset(path)
            expected = [("h1", language_of(name[0][0]), None, name[0][1])]
            for code, description in remarks:
                expected.append(("dt", None, None, code))
                expected += [("dd", language_of(tag), tag, text) for tag, text in description]
            with self.subTest(path.name):
                self.assertEqual(self.texts_of(path), expected)

    def test_has_one_language_of_the_delivered_codesets(self):
        for path in DELIVERED:
            name, _, _, remarks = read_codeset(path)
            for tag in ("sv", "en-uk"):
                expected = [("h1", language_of(tag), None, dict(name)[tag])]
                for code, description in remarks:
                    expected.append(("dt", None, None, code))
                    expected.append(("dd", language_of(tag), None, dict(description)[tag]))
                with self.subTest(path.name, tag=tag):
                    self.assertEqual(self.texts_of(path, "--language", tag), expected)

    def test_looks_as_accepted(self):
        name = "<name lang='en-uk'>Easel &lt;paintings&gt;</name><author lang=''>A. Lind</author>"
        self.write("short.codeset", codeset_xml(REMARKS + ODD_REMARKS, name))
        document = self.export("short.codeset")
        self.expect_golden("export/short.html", without_style(document))
        document = self.export("short.codeset", "-l", "sv")
        self.expect_golden("export/short-sv.html", without_style(document))

    def test_needs_no_other_file(self):
        document = self.export(EASEL)
        self.assertNotRegex(document, r"(?i)\b(?:src|href|url|@import|https?:)")

    def test_warns_that_nothing_is_in_the_wanted_language(self):
        self.write("a.codeset", codeset_xml(REMARKS))
        result = self.run_program("export", "--to=html", "a.codeset", "--language", "nl")
        self.assertEqual(
            (result.status, result.errors),
            (GOOD, "vantorelle-codeset: a.codeset: warning: No description in nl.\n"),
        )
        self.assertIn('<dd lang="en-GB" data-tag="en-uk">Crack</dd>', result.output)


def without_style(document):
    """The bytes of a sheet without the style sheet, which has a file of its own."""
    return re.sub(
        r"(?s)<style>\n/\*.*?\n(?=@page \{\n  @bottom-left \{\n    content)", "<style>\n", document
    ).encode()


class Export(CommandTest):
    def setUp(self):
        super().setUp()
        self.write("a.codeset", codeset_xml(REMARKS))

    def test_writes_a_file(self):
        for form in ("csv", "skos", "html"):
            printed = self.run_program("export", "--to", form, "a.codeset").output_bytes
            self.expect(self.run_program("export", "--to", form, "a.codeset", "-o", form), GOOD)
            self.assertEqual((self.folder / form).read_bytes(), printed)

    def test_replaces_a_file_only_with_force(self):
        self.write("out", b"old")
        command = ("export", "--to", "html", "a.codeset", "--output", "out")
        self.expect(
            self.run_program(*command),
            FAILED,
            errors="vantorelle-codeset: out: The file exists already; --force replaces it.\n",
        )
        self.assertEqual((self.folder / "out").read_bytes(), b"old")
        self.expect(self.run_program(*command, "--force"), GOOD)
        self.assertTrue((self.folder / "out").read_bytes().startswith(b"<!DOCTYPE html>"))

    def test_never_replaces_the_codeset_itself(self):
        (self.folder / "link").symlink_to("a.codeset")
        for output in ("a.codeset", "./a.codeset", "link"):
            self.expect(
                self.run_program("export", "--to", "skos", "a.codeset", "-o", output, "--force"),
                FAILED,
                errors=f"vantorelle-codeset: {output}: "
                "This is the codeset itself; it is not replaced.\n",
            )
        self.assertEqual((self.folder / "a.codeset").read_bytes(), codeset_xml(REMARKS))

    def test_prints_where_a_dash_is_the_output(self):
        result = self.run_program("export", "--to", "skos", "a.codeset", "-o", "-")
        self.assertEqual(result.output, self.run_program("export", "--to=skos", "a.codeset").output)
        self.assertFalse((self.folder / "-").exists())

    def test_refuses_options_that_do_not_fit_together(self):
        which = "The format must be given: --to csv, --to skos or --to html."
        for options, message in {
            (): which,
            ("--to", "pdf"): which,
            ("--to", "CSV"): which,
            ("--to", "html", "--base", "urn:a:b"): "--base is for --to skos.",
            ("--to", "skos", "--language", "sv"): "--language is for --to html.",
            ("--to", "csv", "--base", "urn:a:b"): "--base is for --to skos.",
            ("--to", "csv", "--language", "sv"): "--language is for --to html.",
            ("--to", "html", "--with-header"): "--with-header is for --to csv.",
        }.items():
            with self.subTest(options):
                self.expect(
                    self.run_program("export", "a.codeset", *options),
                    FAILED,
                    errors=f"vantorelle-codeset: export: {message}\n",
                )

    def test_says_why_a_codeset_is_refused_and_writes_nothing(self):
        self.write("broken", b"<codeset>")
        result = self.run_program("export", "--to", "html", "broken", "-o", "out")
        self.assertEqual((result.status, result.output), (FAILED, ""))
        self.assertRegex(
            result.errors, r"^vantorelle-codeset: broken: Error loading codeset file\. "
        )
        self.assertFalse((self.folder / "out").exists())

    def test_says_why_a_file_cannot_be_written(self):
        result = self.run_program("export", "--to", "html", "a.codeset", "-o", "none/out")
        self.assertEqual((result.status, result.output), (FAILED, ""))
        self.assertRegex(result.errors, r"^vantorelle-codeset: none/out: .*No such file.*\n$")


if __name__ == "__main__":
    main()
