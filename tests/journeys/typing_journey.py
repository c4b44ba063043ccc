"""Typing and pasting into the fields, the saved texts, and checking of spelling."""

import re
import signal

from support import MAIN_WINDOW, UK, WorkspaceJourney, codeset, main
from support import display
from support.waiting import settle

TITLE = "Edit remark codeset - own.codeset"
OWN = codeset("Own", "Vera", "1", [("1", "One")])
EVERY_LATIN1_CHARACTER = "".join(map(chr, [*range(0x21, 0x7F), *range(0xA1, 0x100)]))

# The pasted text, the text that the field then shows, and the saved text.
PASTED = [
    ("é à ü ß ÿ ¿ × Å", "é à ü ß ÿ ¿ × Å", None),
    ("10 € or $", "10  or $", "10 or $"),
    ("a\tb", "a b", None),
    ("a\nb", "a b", None),
    ("a\r\nb", "a  b", "a b"),
    ("a\u00a0b", "a b", None),
    ("a\u2003b\u2028c\u2029d", "a b c d", None),
    ("bell\x07 del\x01ete \x1b[31m", "bell delete [31m", None),
    ("vertical\x0btab form\x0cfeed", "vertical tab form feed", None),
    ("emoji \U0001f600! \u4e2d\u6587 \u0141 \u2014 \u2019", "emoji !    ", "emoji !"),
    ("  outer \t  blanks  ", "  outer    blanks  ", "outer blanks"),
    # Odd, but a file can hold them.
    ("soft\u00adhyphen \x7f\x80\x85\x9f", "soft\u00adhyphen \x7f\x80\x85\x9f", None),
    ("a &amp; <b> \"c\" 'd' > %s &#10;", "a &amp; <b> \"c\" 'd' > %s &#10;", None),
    ("]]> <!-- --> <?xml?>", "]]> <!-- --> <?xml?>", None),
    ("\u0141\u00f3d\u017a e\u0301t\u00e9 \ufeff\u200b", "\u00f3d et\u00e9 ", "\u00f3d et\u00e9"),
    (EVERY_LATIN1_CHARACTER, EVERY_LATIN1_CHARACTER, None),
]


class Typing(WorkspaceJourney):
    def open_own(self):
        self.own = self.put("own.codeset", OWN)
        return self.open_editing("own.codeset", "Own (Vera) 1")

    def open_remark(self, program, editing):
        editing.list("Remark codes").row("1. One").select()
        editing.button("Edit").click()
        return program.window("Edit remark code")

    def replace_by_paste(self, field, text):
        field.clear()
        field.paste(text)

    # Texts

    def test_pasted_texts_are_repaired_and_saved(self):
        program, editing = self.open_own()
        for pasted, shown, saved in PASTED:
            saved = shown if saved is None else saved
            with self.subTest(pasted=pasted):
                for index in range(2):
                    self.replace_by_paste(editing.field(UK, index=index), pasted)
                    editing.field(UK, index=index).expect_text(shown)
                self.replace_by_paste(editing.field("Version"), pasted)
                editing.field("Version").expect_text(shown)
                dialog = self.open_remark(program, editing)
                self.replace_by_paste(dialog.field(UK), pasted)
                dialog.field(UK).expect_text(shown)
                dialog.press("Return")
                dialog.expect_closed()
                # The list shows the text as it will be saved.
                codes = editing.list("Remark codes")
                codes.expect_texts([f"1. {saved}"])
                codes.row(f"1. {saved}").select()
                editing.field("Description of the selected remark code").expect_text(
                    f"{UK}\n\n{saved}"
                )
                self.save(editing)
                self.assertEqual(
                    self.own.read_bytes(), codeset(saved, saved, saved, [("1", saved)])
                )

                # It is read back as it was saved.
                window = program.window(MAIN_WINDOW)
                window.list().expect_texts([f"{saved} ({saved}) {saved}"])
                self.own.write_bytes(OWN)
                window.button("Refresh list").click()
                window.list().row("Own (Vera) 1").select()
                window.button("Edit").click()
                editing = program.window(TITLE)

    def test_saved_texts_are_read_back_unchanged(self):
        text = "Ünïted &amp; <b> ÿ " + EVERY_LATIN1_CHARACTER
        self.put("own.codeset", codeset(text, text, text, [("1", text)]))
        program, editing = self.open_editing("own.codeset", f"{text} ({text}) {text}")
        self.assertEqual([field.text for field in editing.fields()][:3], [text] * 3)
        self.save(editing)
        self.assertEqual(self.contents(), {"own.codeset": codeset(text, text, text, [("1", text)])})
        program.window(MAIN_WINDOW)

    def test_pasted_codes(self):
        program, editing = self.open_own()
        codes = ["  é\tü ", "7\u00a07", "x€y", "\x01n\x02", "Å\nÄ"]
        for pasted, shown in zip(codes, ["  é ü ", "7 7", "xy", "n", "Å Ä"], strict=True):
            editing.button("Add new").click()
            dialog = program.window("Edit remark code")
            dialog.field("Remark code").paste(pasted)
            dialog.field("Remark code").expect_text(shown)
            dialog.field(UK).type("T")
            dialog.press("Return")
            dialog.expect_closed()
        # Outside ASCII letters come first: their bytes are negative.
        editing.list("Remark codes").expect_texts(
            ["Å Ä. T", "é ü. T", "1. One", "7 7. T", "n. T", "xy. T"]
        )
        self.save(editing)
        self.assertEqual(
            self.own.read_bytes(),
            codeset(
                "Own",
                "Vera",
                "1",
                [("Å Ä", "T"), ("é ü", "T"), ("1", "One"), ("7 7", "T"), ("n", "T"), ("xy", "T")],
            ),
        )

    def test_typed_codes(self):
        program, editing = self.open_own()
        # Line breaks and tabs are typed as Return, which presses OK, and Tab.
        for typed in ("é€\u00a0ü\tFällt\n", "«½»\tà\u00a0é\n"):
            editing.button("Add new").click()
            dialog = program.window("Edit remark code")
            dialog.field("Remark code").type(typed)
            dialog.expect_closed()
        editing.list("Remark codes").expect_texts(["«½». à é", "é ü. Fällt", "1. One"])
        self.save(editing)
        self.assertEqual(
            self.own.read_bytes(),
            codeset("Own", "Vera", "1", [("«½»", "à é"), ("é ü", "Fällt"), ("1", "One")]),
        )

    def test_unsupported_characters_alone_count_as_no_text(self):
        program, editing = self.open_own()
        editing.button("Add new").click()
        dialog = program.window("Edit remark code")
        for pasted, shown in (("€\u4e2d\x07", ""), ("\u00a0\t", "  ")):
            self.replace_by_paste(dialog.field("Remark code"), pasted)
            settle(0.3)
            dialog.field("Remark code").expect_text(shown)
            dialog.press("Return")
            self.expect_message(program, "Error", "Missing a code.", "Close")
        dialog.field("Remark code").enter("2")
        dialog.field(UK).paste("\u2003€\n")
        dialog.field(UK).expect_text("  ")
        dialog.press("Return")
        self.expect_message(program, "Error", "Missing a description.", "Close")
        dialog.press("Escape")
        dialog.expect_closed()
        name, author, version = editing.fields()[:3]
        for field in (name, author, version):
            self.replace_by_paste(field, "\u00a0\u20ac\r")
            field.expect_text("  ")
        editing.button("Save codeset").click()
        self.expect_message(program, "Error", "The codeset must have a name.", "Close")
        self.assertEqual(self.own.read_bytes(), OWN)
        name.enter("Own")
        self.save(editing)
        self.assertEqual(self.own.read_bytes(), codeset("Own", remarks=[("1", "One")]))

    def test_characters_by_their_number(self):
        _, editing = self.open_own()
        name = editing.field(UK)
        name.clear()
        for number in ("e9", "20ac", "2003", "f8"):
            display.press("ctrl+shift+u")
            display.type_text(f"{number} ")
        name.expect_text("é ø")

    def test_accents_by_dead_keys(self):
        _, editing = self.open_own()
        name = editing.field(UK)
        name.clear()
        # The last is no letter of Western Europe.
        for keys in (
            ("dead_acute", "e"),
            ("dead_diaeresis", "U"),
            ("dead_cedilla", "c"),
            ("dead_caron", "z"),
        ):
            display.press(*keys)
        name.expect_text("éÜç")

    def test_keys_typed_while_the_program_is_busy_are_kept(self):
        program, editing = self.open_own()
        name = editing.field(UK)
        name.clear()
        program.process.send_signal(signal.SIGSTOP)
        display.type_text("æ€ø")
        display.press("dead_acute", "e", "dead_diaeresis", "U")
        program.process.send_signal(signal.SIGCONT)
        name.expect_text("æøéÜ")

    def test_typed_texts(self):
        program, editing = self.open_own()
        name, author = editing.field(UK), editing.field(UK, index=1)
        name.enter("Zoë's naïve façade, 5 €")
        name.expect_text("Zoë's naïve façade, 5 ")
        # At the cursor, not at the end.
        display.press("Home")
        display.type_text("«€1» ")
        name.expect_text("«1» Zoë's naïve façade, 5 ")
        author.enter("  ærø \u00a0 þór  ")
        author.expect_text("  ærø   þór  ")
        editing.field("Version").enter("½")
        self.save(editing)
        self.assertEqual(
            self.own.read_bytes(),
            codeset("«1» Zoë's naïve façade, 5", "ærø þór", "½", [("1", "One")]),
        )
        program.window(MAIN_WINDOW).list().expect_texts(["«1» Zoë's naïve façade, 5 (ærø þór) ½"])

    def test_a_paste_replaces_the_selection(self):
        _, editing = self.open_own()
        name = editing.field(UK)
        name.enter("one two three")
        display.press("Home", "ctrl+Right", "ctrl+shift+Right")
        program = editing.program
        program.wait(
            lambda: name.selected_text == " two",
            lambda: f"the second word to be marked, not {name.selected_text!r}",
        )
        name.paste(" €2\t")
        name.expect_text("one 2  three")
        # The cursor is after the inserted text.
        display.type_text("!")
        name.expect_text("one 2 ! three")
        display.press("ctrl+a", "ctrl+c")
        program.wait(lambda: display.clipboard() == "one 2 ! three", "the text on the clipboard")

    def test_a_long_text(self):
        program, editing = self.open_own()
        text = "wörd " * 4000
        self.replace_by_paste(editing.field(UK), text)
        editing.field(UK).expect_text(text)
        self.save(editing)
        self.assertEqual(self.own.read_bytes(), codeset(text.strip(), "Vera", "1", [("1", "One")]))
        window = program.window(MAIN_WINDOW)
        window.list().expect_texts([f"{text.strip()} (Vera) 1"])
        self.assertLess(window.extents[2], 1400)

    # Spelling

    def is_marked(self, field, word):
        return field.text_attributes(field.text.index(word)).get("underline", "none") != "none"

    def expect_marks(self, field, *words):
        """These words, and only these, are marked as misspelt."""

        def marked():
            text = field.text
            return [word for word in text.split() if self.is_marked(field, word)]

        field.program.wait(
            lambda: marked() == list(words), lambda: f"marks on {words}; they are on {marked()}"
        )

    def test_spelling_is_checked_where_there_is_a_dictionary(self):
        self.prefer("en-uk", "en-us", "sv", "de-de", "fr-fr", "en", "fi")
        self.put(
            "own.codeset",
            codeset(
                {
                    "en-uk": "colour color spricka",
                    "en-us": "colour color spricka",
                    "sv": "colour spricka",
                    "de-de": "Farbe colour",
                    "fr-fr": "couleur Farbe",
                    "en": "colour xyzzyq",
                    "fi": "xyzzyq",
                    "": "zyxxyq",
                },
                remarks=[("1", {"sv": "spricka crackk", "en": "crackk"})],
            ),
        )
        program, editing = self.open_editing("own.codeset", "colour color spricka")
        for language, words in (
            (UK, ["color", "spricka"]),
            ("English/United States [en-us]", ["colour", "spricka"]),
            ("Swedish [sv]", ["colour"]),
            ("German/Germany [de-de]", ["colour"]),
            ("French/France [fr-fr]", ["Farbe"]),
        ):
            with self.subTest(language=language):
                self.expect_marks(editing.field(language), *words)
        for language in ("English [en]", "Finnish [fi]", "Undefined"):
            with self.subTest(language=language):
                self.expect_marks(editing.field(language))
        dialog = self.open_first_remark(program, editing)
        self.expect_marks(dialog.field("Swedish [sv]"), "crackk")
        self.expect_marks(dialog.field("English [en]"))

    def open_first_remark(self, program, editing):
        editing.list("Remark codes").rows()[0].select()
        editing.button("Edit").click()
        return program.window("Edit remark code")

    def test_spelling_follows_typing_and_the_language(self):
        self.prefer("en-uk", "sv", "en")
        self.put("own.codeset", OWN)
        _, editing = self.open_editing("own.codeset", "Own (Vera) 1")
        name = editing.field(UK)
        name.enter("colour spricka ")
        self.expect_marks(name, "spricka")
        editing.combos()[0].choose("Swedish [sv]")
        name = editing.field("Swedish [sv]")
        name.expect_focus()
        self.assertEqual(name.selected_text, "")
        self.expect_marks(name, "colour")
        editing.combos()[0].choose("English [en]")
        self.expect_marks(editing.field("English [en]"))
        editing.combos()[0].choose(UK)
        self.expect_marks(editing.field(UK), "spricka")
        # The version has no language.
        version = editing.field("Version")
        version.enter("spricka colour ")
        self.expect_marks(version)

    def choose_in_spelling_menu(self, field, *keys):
        """Opens the menu of the field's first word, in which the suggestions are chosen already,
        and goes on by keys."""
        # The toolkit's menu waits for the clipboard, and then prints a complaint of its own.
        field.program.expected_complaints = re.compile("not holding a GdkSeat")
        field.focus()
        display.press("Home", "shift+F10")
        settle()
        display.press("Right")
        settle()
        display.press(*keys)

    def test_a_suggested_spelling_is_taken(self):
        _, editing = self.open_own()
        name = editing.field(UK)
        name.enter("colourr rough")
        self.expect_marks(name, "colourr")
        self.choose_in_spelling_menu(name, "Return")
        name.expect_text("colour rough")
        self.expect_marks(name)

    def test_an_ignored_word_is_ignored_in_its_field_only(self):
        self.put("own.codeset", codeset("crackk", "crackk", remarks=[("1", "One")]))
        _, editing = self.open_editing("own.codeset", "crackk (crackk)")
        name, author = editing.fields()[:2]
        self.expect_marks(name, "crackk")
        # Above the last of the menu, which is to add it to the dictionary.
        self.choose_in_spelling_menu(name, "Up", "Up", "Return")
        self.expect_marks(name)
        self.expect_marks(author, "crackk")


if __name__ == "__main__":
    main()
