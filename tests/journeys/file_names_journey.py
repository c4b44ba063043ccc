"""The window that asks for the name of a new file: refused names, accepted names, and the ways to
close it."""

from support import WorkspaceJourney, codeset, main
from support import display
from support.waiting import settle

TOO_SHORT = 'The file name must contain at least one character and then end with ".codeset"'
WOOD = codeset("Wood", "Vera", "2", [("W1", "Split")])


class FileNames(WorkspaceJourney):
    def open_naming(self):
        program, window = self.open()
        window.button("Add new").click()
        return program, window, program.window("Add new")

    def expect_refusals(self, program, naming, refusals):
        """Each name is refused with its message, and stays as it was typed."""
        for name, message in refusals:
            with self.subTest(name=name):
                self.fill(naming, name)
                naming.press("Return")
                self.expect_message(program, "Error", message, "Close")
                naming.field().expect_text(name)
                self.assertTrue(naming.is_open)

    def fill(self, naming, name):
        naming.field().focus()
        display.press("ctrl+a", "Delete")
        if name:
            naming.field().paste(name)
        naming.field().expect_text(name)

    def expect_taken(self, program, naming, name):
        """The name opens the editing window, which is closed again."""
        editing = program.window(f"Edit remark codeset - {name}")
        naming.expect_closed()
        self.close_without_saving(program, editing)

    def test_the_window_when_it_opens(self):
        _, window, naming = self.open_naming()
        self.assertEqual(
            naming.labels(),
            [
                "Enter new file name:",
                "Permitted characters: Lowercase letters, digits and underscores.",
            ],
        )
        field = naming.field("Enter new file name")
        field.expect_text(".codeset")
        field.expect_focus()
        self.assertEqual((field.caret, field.selected_text), (0, ""))
        self.assertFalse(window.is_sensitive)
        # The extension stays when a name is typed.
        display.type_text("abc")
        field.expect_text("abc.codeset")
        self.assertEqual(
            [button.name for button in naming.find_all("push button")], ["OK", "Cancel"]
        )

    def test_names_of_the_wrong_form(self):
        program, _, naming = self.open_naming()
        self.expect_refusals(
            program,
            naming,
            [
                ("", TOO_SHORT),
                ("   ", TOO_SHORT),
                (".codeset", TOO_SHORT),
                ("  .codeset  ", TOO_SHORT),
                ("abc", TOO_SHORT),
                ("codeset", TOO_SHORT),
                ("abc.codese", TOO_SHORT),
                ("abc.codeset.txt", TOO_SHORT),
                ("abc,codeset", TOO_SHORT),
            ],
        )
        self.assertEqual(self.contents(), {})

    def test_characters_that_are_not_permitted(self):
        program, _, naming = self.open_naming()
        self.expect_refusals(
            program,
            naming,
            [
                (name, f'The character "{character}" is not permitted.')
                for name, character in (
                    ("Abc.codeset", "A"),
                    ("åbc.codeset", "å"),
                    ("abc-1.codeset", "-"),
                    ("a b.codeset", " "),
                    ("a/b.codeset", "/"),
                    ("../a.codeset", "."),
                    ("a.codeset.codeset", "."),
                    ("a<b>.codeset", "<"),
                    ("%s.codeset", "%"),
                    ("a&b.codeset", "&"),
                    ("abcZ.CODESET", "Z"),
                    ("naïve.codeset", "ï"),
                    ("10€.codeset", "€"),
                    ("a\u00a0b.codeset", "\u00a0"),
                    ("x\U0001f600.codeset", "\U0001f600"),
                    ("\u0131.codeset", "\u0131"),
                    ("a١.codeset", "١"),
                )
            ],
        )
        self.assertEqual(self.contents(), {})

    def test_names_that_are_taken(self):
        self.put("wood.codeset", WOOD)
        self.put("odd.codeset", b"odd")
        (self.codesets / "folder.codeset").mkdir()
        program, _, naming = self.open_naming()
        self.expect_refusals(
            program,
            naming,
            [
                ("wood.codeset", 'That file name is already taken for "Wood (Vera) 2"'),
                (" wood.codeset ", 'That file name is already taken for "Wood (Vera) 2"'),
                ("odd.codeset", "That file name is already taken."),
                ("folder.codeset", "That file name is already taken."),
            ],
        )
        # The status of a name that is too long for a folder cannot be read.
        self.fill(naming, "a" * 250 + ".codeset")
        naming.button("OK").click()
        self.expect_message(program, "Error", "That file name is already taken.", "Escape")
        # The case of the extension makes another name.
        self.fill(naming, "wood.Codeset")
        naming.button("OK").click()
        self.expect_taken(program, naming, "wood.Codeset")
        self.assertEqual(self.contents(), {"wood.codeset": WOOD, "odd.codeset": b"odd"})

    def test_names_that_are_accepted(self):
        program, window = self.open()
        for typed, name in (
            ("abc.codeset", "abc.codeset"),
            ("  abc.codeset\t ", "abc.codeset"),
            ("abc.CODESET", "abc.CODESET"),
            ("_0.codeset", "_0.codeset"),
            ("codeset.codeset", "codeset.codeset"),
            ("a" * 247 + ".codeset", "a" * 247 + ".codeset"),
        ):
            with self.subTest(name=typed):
                window.button("Add new").click()
                naming = program.window("Add new")
                self.fill(naming, typed)
                naming.press("Return")
                self.expect_taken(program, naming, name)
        self.assertEqual(self.contents(), {})

    def test_an_upper_case_extension_reaches_the_disk(self):
        self.put("wood.codeset", WOOD)
        program, window = self.open()
        window.list().row("Wood (Vera) 2").select()
        window.button("Clone").click()
        naming = program.window("Add new")
        naming.field().enter("abc.CODESET")
        naming.press("Return")
        naming.expect_closed()
        window.list().expect_texts(["Wood (Vera) 2"] * 2)
        self.assertEqual(self.contents(), {"wood.codeset": WOOD, "abc.CODESET": WOOD})

    def test_ways_out(self):
        self.put("wood.codeset", WOOD)
        program, window = self.open()
        for way_out in ("Escape", "alt+F4", "Cancel"):
            for button in ("Add new", "Clone"):
                window.list().row("Wood (Vera) 2").select()
                window.button(button).click()
                naming = program.window("Add new")
                # A click into the field would put the cursor at its end.
                naming.field().expect_focus()
                display.type_text("abc")
                naming.field().expect_text("abc.codeset")
                naming.leave(way_out)
                window.expect_active()
                window.list().expect_selected([])
        settle()
        self.assertEqual(program.windows(), [window])
        self.assertEqual(self.contents(), {"wood.codeset": WOOD})

    def test_enter_on_cancel_cancels(self):
        program, window, naming = self.open_naming()
        naming.field().type("abc")
        naming.press("Tab", "Tab")
        naming.button("Cancel").expect_focus()
        naming.press("Return")
        naming.expect_closed()
        settle()
        self.assertEqual(program.windows(), [window])
        self.end(program, window)


if __name__ == "__main__":
    main()
