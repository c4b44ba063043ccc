"""The editing window and its dialog: codes and translations, refusals on saving, the question on
closing, and every byte that is saved."""

import re
import resource
import signal

from support import EN, MAIN_WINDOW, QUESTION, UK, WorkspaceJourney, codeset, main
from support import display
from support.waiting import settle

SWEDISH = "Swedish [sv]"
TITLE = "Edit remark codeset - own.codeset"

NAME = {"en-uk": "Own", "sv": "Egen"}
REMARKS = [("1", {"en-uk": "One", "sv": "Ett"}), ("2", "Two"), ("10", "Ten")]
OWN = codeset(NAME, {"en-uk": "Vera"}, "3", REMARKS)


class Editing(WorkspaceJourney):
    def open_own(self, data=OWN, text="Own (Vera) 3", **options):
        self.own = self.put("own.codeset", data)
        return self.open_editing("own.codeset", text, **options)

    def expect_refused(self, program, editing, message):
        """Saving shows the reason, and the file is unchanged."""
        before = self.contents()
        editing.button("Save codeset").click()
        self.expect_message(program, "Error", message, "Close")
        self.assertTrue(editing.is_open)
        self.assertEqual(self.contents(), before)

    def dialog(self, program, editing, button, row=None):
        """The dialog for a new code, or for that of a row."""
        if row is not None:
            editing.list("Remark codes").row(row).select()
        editing.button(button).click()
        return program.window("Edit remark code")

    def add(self, program, editing, code, text):
        dialog = self.dialog(program, editing, "Add new")
        dialog.field("Remark code").type(code)
        dialog.field(UK).type(text)
        dialog.button("OK").click()
        dialog.expect_closed()

    def display_of(self, editing):
        return editing.field("Description of the selected remark code")

    # The window

    def test_the_window_at_the_start(self):
        _, editing = self.open_own()
        editing.field(UK).expect_focus()
        self.assertEqual(
            [(field.name, field.text) for field in editing.fields()],
            [
                (UK, "Own"),
                (SWEDISH, "Egen"),
                (UK, "Vera"),
                ("Version", "3"),
                ("Description of the selected remark code", ""),
            ],
        )
        self.assertEqual([combo.text for combo in editing.combos()], [UK, SWEDISH, UK])
        self.assertEqual(
            [button.name for button in editing.find_all("push button")],
            [
                " - ",
                " - ",
                " + ",
                " - ",
                " + ",
                "Add new",
                "Edit",
                "Delete",
                "Save codeset",
                "Close",
            ],
        )
        self.assertEqual(
            [button.is_sensitive for button in editing.find_all("push button")],
            [True, True, True, False, True, True, False, False, True, True],
        )
        codes = editing.list("Remark codes")
        codes.expect_texts(["1. One", "2. Two", "10. Ten"])
        codes.expect_selected([])
        for title in (
            "Codeset name: (Required)",
            "Author:",
            "Version:",
            "Remark codes: (Required)",
        ):
            self.assertTrue(editing.frame(title).is_showing)

    def test_a_deleted_row_gives_its_room_back(self):
        program, editing = self.open_own()
        program.wait(
            lambda: editing.extents[2:] == display.screen_size(), "the window to fill the screen"
        )
        editing.toggle_maximized()
        program.wait(
            lambda: editing.extents[2:] != display.screen_size(), "the window to leave room"
        )
        # As low as it can be, the list has no room to give.
        size = editing.resize(1, 1)[2:]
        for added, gone in ((0, 2), (1, 3)):
            editing.button(" + ", index=added).click()
            program.wait(lambda: editing.extents[3] > size[1], "the window to grow")
            editing.button(" - ", index=gone).click()
            program.wait(lambda: editing.extents[2:] == size, "the window to shrink")

    def test_the_display_beside_the_list(self):
        _, editing = self.open_own()
        codes = editing.list("Remark codes")
        shown = self.display_of(editing)
        self.assertFalse(shown.is_editable)
        codes.row("1. One").select()
        shown.expect_text(f"{UK}\n\nOne\n\n{SWEDISH}\n\nEtt")
        self.assertEqual(shown.text_attributes(0).get("weight"), "700")
        self.assertNotEqual(shown.text_attributes(len(UK) + 2).get("weight"), "700")
        self.assertEqual(shown.text_attributes(shown.text.index(SWEDISH)).get("weight"), "700")
        self.expect_sensitivity(editing, Edit=True, Delete=True)
        codes.row("10. Ten").select()
        shown.expect_text(f"{UK}\n\nTen")

    def test_descriptions_are_listed_in_the_users_language(self):
        _, editing = self.open_own(text="Egen (Vera) 3", VANTORELLE_USER_LANGUAGE="sv")
        editing.list("Remark codes").expect_texts(["1. Ett", "2. Two", "10. Ten"])

    def test_the_wheel_over_a_language_changes_nothing(self):
        program, editing = self.open_own()
        for combo in editing.combos():
            x, y, width, height = combo.resting_extents()
            for wheel in (4, 5):
                display.click(x + width // 2, y + height // 2, wheel, times=3)
        settle()
        self.assertEqual([combo.text for combo in editing.combos()], [UK, SWEDISH, UK])
        self.assertEqual(
            [field.text for field in editing.fields()], ["Own", "Egen", "Vera", "3", ""]
        )
        # There are no changes that could be lost.
        self.assertEqual(self.drafts(), [])
        self.close_without_saving(program, editing)

    def test_type_ahead_in_the_list(self):
        _, editing = self.open_own()
        codes = editing.list("Remark codes")
        codes.row("1. One").select()
        display.type_text("10")
        codes.expect_selected(["10. Ten"])
        display.press("Escape")
        settle()
        self.assertTrue(editing.is_active)
        display.press("Up")
        codes.expect_selected(["2. Two"])
        self.display_of(editing).expect_text(f"{UK}\n\nTwo")

    def test_names_with_special_characters(self):
        name = "a %s <b>&amp; é.codeset"
        self.put(name, codeset("100 % <i>", version="&lt;", remarks=[("%d", "<b>%s</b> & é")]))
        program, editing = self.open_editing(name, "100 % <i> &lt;")
        editing.field(UK).expect_text("100 % <i>")
        editing.field("Version").expect_text("&lt;")
        editing.list("Remark codes").row("%d. <b>%s</b> & é").select()
        self.display_of(editing).expect_text(f"{UK}\n\n<b>%s</b> & é")
        self.save(editing)
        self.assertEqual(
            self.contents(),
            {name: codeset("100 % <i>", version="&lt;", remarks=[("%d", "<b>%s</b> & é")])},
        )
        program.window(MAIN_WINDOW)

    # Codes

    def test_codes_are_added_moved_and_deleted(self):
        program, editing = self.open_own()
        codes = editing.list("Remark codes")
        for code, text in (
            ("9", "Nine"),
            ("1a", "One A"),
            ("A1", "Big"),
            ("a1", "Small"),
            ("07", "Oh seven"),
            ("7", "Seven"),
        ):
            self.add(program, editing, code, text)
            codes.expect_selected([])
        codes.expect_texts(
            [
                "1. One",
                "1a. One A",
                "2. Two",
                "07. Oh seven",
                "7. Seven",
                "9. Nine",
                "10. Ten",
                "A1. Big",
                "a1. Small",
            ]
        )

        dialog = self.dialog(program, editing, "Edit", "1. One")
        dialog.field("Remark code").expect_text("1")
        dialog.field("Remark code").enter("100")
        dialog.button("OK").click()
        dialog.expect_closed()
        codes.expect_selected([])
        self.display_of(editing).expect_text("")
        self.expect_sensitivity(editing, Edit=False, Delete=False)
        for text in ("07. Oh seven", "7. Seven", "A1. Big", "1a. One A"):
            codes.row(text).select()
            editing.button("Delete").click()
            program.wait(
                lambda text=text: text not in codes.texts(), f"the row {text!r} to be gone"
            )
        codes.expect_texts(["2. Two", "9. Nine", "10. Ten", "100. One", "a1. Small"])
        self.save(editing)
        self.assertEqual(
            self.own.read_bytes(),
            codeset(
                NAME,
                "Vera",
                "3",
                [
                    ("2", "Two"),
                    ("9", "Nine"),
                    ("10", "Ten"),
                    ("100", {"en-uk": "One", "sv": "Ett"}),
                    ("a1", "Small"),
                ],
            ),
        )

    def test_refusals_of_the_remark_dialog(self):
        program, editing = self.open_own()
        dialog = self.dialog(program, editing, "Add new")
        code = dialog.field("Remark code")
        code.expect_focus()
        self.assertEqual(
            dialog.labels(), ["Remark code: (Required)", "Short description: (Required)"]
        )
        dialog.press("Return")
        self.expect_message(program, "Error", "Missing a code.", "Close")
        code.type("   ")
        dialog.press("Return")
        self.expect_message(program, "Error", "Missing a code.", "Escape")
        code.enter(" 2 ")
        dialog.press("Return")
        self.expect_message(program, "Error", "That code is already taken.", "Close")
        code.enter("3")
        dialog.press("Return")
        self.expect_message(program, "Error", "Missing a description.", "Close")
        dialog.field(UK).type("   ")
        dialog.press("Return")
        self.expect_message(program, "Error", "Missing a description.", "Close")
        dialog.field(UK).enter("Three")
        dialog.button(" + ").click()
        dialog.combos()[1].choose(UK)
        # A second row of a language is in order while it is empty.
        display.type_text("Three again")
        dialog.press("Return")
        self.expect_message(
            program,
            "Error",
            'Each language may only appear once. Language "en-uk" appears several times.',
            "Close",
        )
        dialog.field(UK, index=1).clear()
        dialog.press("Return")
        dialog.expect_closed()
        editing.list("Remark codes").expect_texts(["1. One", "2. Two", "3. Three", "10. Ten"])

    def test_a_remark_keeps_its_own_code_and_cannot_take_another(self):
        program, editing = self.open_own()
        dialog = self.dialog(program, editing, "Edit", "2. Two")
        dialog.field(UK).enter("Double")
        dialog.field("Remark code").enter("10")
        dialog.button("OK").click()
        self.expect_message(program, "Error", "That code is already taken.", "Close")
        dialog.field("Remark code").enter("2")
        dialog.button("OK").click()
        dialog.expect_closed()
        editing.list("Remark codes").expect_texts(["1. One", "2. Double", "10. Ten"])

    def test_ways_out_of_the_remark_dialog(self):
        program, editing = self.open_own()
        for way_out in ("Escape", "alt+F4", "Cancel"):
            for button, row in (("Add new", None), ("Edit", "2. Two")):
                dialog = self.dialog(program, editing, button, row)
                dialog.field("Remark code").enter("5")
                dialog.field(UK).enter("Five")
                dialog.leave(way_out)
                editing.expect_active()
        editing.list("Remark codes").expect_texts(["1. One", "2. Two", "10. Ten"])
        self.save(editing)
        self.assertEqual(self.own.read_bytes(), OWN)

    def test_a_code_is_written_as_it_is(self):
        program, editing = self.open_own()
        self.add(program, editing, "a&b", "Ampersand")
        self.save(editing)
        self.assertEqual(
            self.own.read_bytes(), codeset(NAME, "Vera", "3", [*REMARKS, ("a&b", "Ampersand")])
        )
        # The file is not well-formed, and the list shows that at once.
        window = program.window(MAIN_WINDOW)
        window.list().expect_texts(["own.codeset"])

    # Translations

    def test_translations_are_added_and_deleted(self):
        program, editing = self.open_own()

        def delete(index):
            return editing.button(" - ", index)

        def add(index):
            return editing.button(" + ", index)

        add(0).click()
        editing.field(EN).expect_focus()
        # Every language of the user is shown now, so the first one comes again.
        add(0).click()
        editing.field(UK, index=1).expect_focus()
        delete(3).click()
        program.wait(lambda: len(editing.combos()) == 4, "the second new row to go")
        editing.field(EN).type("Mine")
        delete(0).click()
        program.wait(lambda: len(editing.combos()) == 3, "the row to go")
        delete(0).click()
        program.wait(lambda: len(editing.combos()) == 2, "the next row to go")
        delete(0).expect_sensitive(False)
        self.assertEqual([field.text for field in editing.fields()][:2], ["Mine", "Vera"])
        self.save(editing)
        self.assertEqual(self.own.read_bytes(), codeset({"en": "Mine"}, "Vera", "3", REMARKS))

    def test_a_new_row_takes_the_next_language(self):
        self.prefer("sv", "de-de", "fr")
        self.own = self.put("own.codeset", OWN)
        _, editing = self.open_editing("own.codeset", "Egen (Vera) 3")
        editing.button(" + ", 1).click()
        self.assertEqual(editing.combos()[3].text, "Swedish [sv]")
        editing.button(" + ", 1).click()
        editing.field("German/Germany [de-de]").expect_focus()
        self.assertEqual(
            editing.combos()[4].choices(), ["Swedish [sv]", "German/Germany [de-de]", "French [fr]"]
        )
        self.assertEqual(
            editing.combos()[0].choices(),
            ["Swedish [sv]", "German/Germany [de-de]", "French [fr]", UK],
        )

    def test_a_language_outside_the_table(self):
        data = codeset({"en-uk": "Own", "pl": "Moje"}, "Vera", "3", [("1", {"pl": "Raz"})])
        program, editing = self.open_own(data)
        editing.field("Unknown language [pl]").expect_text("Moje")
        editing.list("Remark codes").row("1. Raz").select()
        self.display_of(editing).expect_text("Unknown language [pl]\n\nRaz")
        dialog = self.dialog(program, editing, "Edit")
        dialog.button("OK").click()
        self.expect_message(program, "Error", "An unknown program error has occured.", "Close")
        dialog.button("Cancel").click()
        dialog.expect_closed()
        self.expect_refused(program, editing, "An unknown program error has occured.")
        editing.button(" - ", 1).click()
        self.save(editing)
        self.assertEqual(self.own.read_bytes(), codeset("Own", "Vera", "3", [("1", {"pl": "Raz"})]))

    def test_an_untagged_translation(self):
        data = codeset({"": "Own", "sv": "Egen"}, remarks=REMARKS)
        _, editing = self.open_own(data, "Own")
        editing.field("Undefined").expect_text("Own")
        self.save(editing)
        self.assertEqual(self.own.read_bytes(), data)

    # Saving

    def test_refusals_come_in_their_order(self):
        program, editing = self.open_own(
            codeset("Own", "Vera", remarks=[("1", "One")]), "Own (Vera)"
        )
        codes = editing.list("Remark codes")
        codes.row("1. One").select()
        editing.button("Delete").click()
        codes.expect_texts([])
        self.expect_sensitivity(editing, Edit=False, Delete=False)
        self.display_of(editing).expect_text("")
        editing.field(UK).clear()
        editing.button(" + ", 1).click()
        editing.combos()[-1].choose(UK)
        editing.field(UK, index=2).type("Verus")
        editing.field("Version").enter("   ")

        self.expect_refused(
            program, editing, "There must be at least one remark code in the codeset."
        )
        self.add(program, editing, "2", "Two")
        self.expect_refused(program, editing, "The codeset must have a name.")
        editing.field(UK).type("  ")
        self.expect_refused(program, editing, "The codeset must have a name.")
        editing.field(UK).enter(" Mine  own ")
        self.expect_refused(
            program,
            editing,
            'Each language may only appear once. Language "en-uk" appears several times.',
        )
        editing.field(UK, index=2).clear()
        self.save(editing)
        # Blanks make no version.
        self.assertEqual(self.own.read_bytes(), codeset("Mine own", "Vera", remarks=[("2", "Two")]))
        program.window(MAIN_WINDOW).list().expect_texts(["Mine own (Vera)"])

    def test_a_name_twice_in_one_language(self):
        program, editing = self.open_own()
        editing.combos()[1].choose(UK)
        self.expect_refused(
            program,
            editing,
            'Each language may only appear once. Language "en-uk" appears several times.',
        )
        self.assertEqual(
            [field.text for field in editing.fields()][:4], ["Own", "Egen", "Vera", "3"]
        )

    def test_saving_unchanged_and_without_author(self):
        program, editing = self.open_own()
        self.save(editing)
        self.assertEqual(self.own.read_bytes(), OWN)
        window = program.window(MAIN_WINDOW)
        window.list().row("Own (Vera) 3").select()
        window.button("Edit").click()
        editing = program.window(TITLE)
        editing.field(UK, index=1).clear()
        editing.field("Version").enter(" 4  b ")
        self.save(editing)
        self.assertEqual(self.own.read_bytes(), codeset(NAME, None, "4 b", REMARKS))
        window.list().expect_texts(["Own 4 b"])

    def test_enter_in_a_name_does_not_save(self):
        program, editing = self.open_own()
        editing.field(UK).enter("Mine")
        for field in (editing.field(UK), editing.field(UK, index=1), editing.field("Version")):
            field.press("Return")
        settle(0.5)
        self.assertEqual(program.windows()[-1], editing)
        self.assertEqual(self.own.read_bytes(), OWN)

    def test_a_folder_that_is_gone_cannot_be_written_to(self):
        program, editing = self.open_own()
        moved = self.codesets.rename(self.workspace / "moved")
        editing.button("Save codeset").click()
        self.expect_message(
            program,
            "Error",
            "Cannot create file.\n\nCannot open file.\n\nError 2: No such file or directory",
            "Close",
        )
        moved.rename(self.codesets)
        self.own.unlink()
        self.own.mkdir()
        editing.button("Save codeset").click()
        self.expect_message(
            program,
            "Error",
            "Cannot access file.\n\nCannot unlink file.\n\nError 21: Is a directory",
            "Close",
        )
        self.own.rmdir()
        # The changes are kept, and the next attempt succeeds.
        self.save(editing)
        self.assertEqual(self.own.read_bytes(), OWN)

    def test_a_disk_that_takes_no_more(self):
        program, editing = self.open_own(ignored_signals=(signal.SIGXFSZ,))
        limits = resource.prlimit(program.pid, resource.RLIMIT_FSIZE, (100, resource.RLIM_INFINITY))
        editing.button("Save codeset").click()
        self.expect_message(
            program, "Error", re.compile("^File I/O error when writing to file."), "Close"
        )
        self.assertEqual(self.contents(), {})
        resource.prlimit(program.pid, resource.RLIMIT_FSIZE, limits)
        self.save(editing)
        self.assertEqual(self.own.read_bytes(), OWN)

    # Opening

    def test_files_that_cannot_be_opened(self):
        program, window = self.open()
        shown = "Error when loading the codeset file:\n\n%s\n\n%s"
        for data, message in (
            (b"<codesets/>", "Not a codeset file."),
            (
                OWN.replace(b"<remark>", b"<other>").replace(b"</remark>", b"</other>"),
                "Error parsing codeset file.\n\nMissing remarks.",
            ),
            (
                OWN.replace(b"<code>2<", b"<code>1<"),
                "Error parsing codeset file.\n\nDuplicate remark codes.",
            ),
            (
                OWN.replace(b"name", b"title"),
                "Error parsing codeset file.\n\nMissing XML node: name",
            ),
            (
                OWN.replace(b">3<", b"> <"),
                "Error parsing codeset file.\n\nMissing text content in XML.\n\n"
                "Text content is empty.",
            ),
            (
                b"a letter",
                re.compile("Error loading codeset file\\.\n\nCould not parse XML data\\.\n\n."),
            ),
            (b"", re.compile("Error loading codeset file\\.\n\nCould not parse XML data\\.")),
            (
                OWN.replace(b"Own", b"<b>%s</b> \xff &nosuch;"),
                re.compile("Could not parse XML data\\.\n\n.*nosuch"),
            ),
        ):
            with self.subTest(message=message):
                path = self.put("own.codeset", data)
                window.button("Refresh list").click()
                window.list().row("own.codeset").select()
                window.button("Edit").click()
                error = program.dialog("Error")
                if isinstance(message, str):
                    self.assertEqual(error.message, shown % (path, message))
                else:
                    self.assertTrue(
                        error.message.startswith(
                            f"Error when loading the codeset file:\n\n{path}\n\n"
                        )
                    )
                    self.assertRegex(error.message, message)
                error.answer("Close")
                window.list().expect_selected([])
                self.assertEqual(path.read_bytes(), data)
        self.end(program, window)

    def test_a_file_that_changes_before_it_is_opened(self):
        path = self.put("own.codeset", OWN)
        program, window = self.open()
        window.list().row("Own (Vera) 3").select()
        path.unlink()
        path.symlink_to(path)
        window.button("Edit").click()
        self.expect_message(
            program,
            "Error",
            f"Something went wrong when accessing the codeset file:\n\n{path}",
            "Close",
        )
        window.list().expect_texts([])
        path.unlink()
        path.write_bytes(OWN)
        window.button("Refresh list").click()
        window.list().row("Own (Vera) 3").select()
        path.unlink()
        window.button("Edit").click()
        editing = program.window(TITLE)
        editing.list("Remark codes").expect_texts([])
        self.assertEqual([field.text for field in editing.fields()], ["", "", "", ""])
        self.expect_refused(
            program, editing, "There must be at least one remark code in the codeset."
        )

    # Closing

    def test_closing_asks_each_time(self):
        program, editing = self.open_own()
        editing.field(UK).enter("Changed")

        def ask(way_out):
            if way_out == "Close":
                editing.button("Close").click()
            else:
                editing.press(way_out)
            question = program.dialog("Really close?")
            self.assertEqual(question.message, QUESTION)
            self.assertEqual(
                [button.name for button in question.find_all("push button")], ["Close", "Cancel"]
            )
            return question

        for way_out in ("Close", "alt+F4", "Escape"):
            ask(way_out).answer("Cancel")
            editing.expect_active()
            for key in ("Escape", "alt+F4"):
                question = ask(way_out)
                question.press(key)
                question.expect_closed()
                editing.expect_active()
        editing.field(UK).expect_text("Changed")
        window = None
        for way_out in ("Close", "alt+F4", "Escape"):
            ask(way_out).answer("Close")
            editing.expect_closed()
            window = program.window(MAIN_WINDOW)
            window.list().expect_selected([])
            self.assertEqual(self.own.read_bytes(), OWN)
            window.list().row("Own (Vera) 3").select()
            window.button("Edit").click()
            editing = program.window(TITLE)
            editing.field(UK).expect_text("Own")
        editing.button("Close").click()
        program.dialog("Really close?").answer("Close")
        self.end(program, window)


if __name__ == "__main__":
    main()
