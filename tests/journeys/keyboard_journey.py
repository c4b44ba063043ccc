"""Every window with the keyboard alone: nothing here touches the mouse."""

import subprocess

from support import EN, MAIN_WINDOW, UK, Journey, WorkspaceJourney, codeset, main
from support import display
from support.waiting import settle

WOOD = codeset("Wood", "Vera", "2", [("W1", "Split"), ("W2", "Worm"), ("W10", "Stain")])
GLASS = codeset("Glass", version="1.5", remarks=[("G1", "Chip")])


class Keys(Journey):
    """Moves the focus by keys. A widget without a name of its own is known by its label."""

    def push(self, window, name):
        window.tab_to(name)
        display.press("space")

    def expect_order(self, window, names, key="Tab"):
        """The key moves the focus from the first of these to the last, and back to the first."""
        program = window.program
        window.tab_to(names[0], key)
        for name in [*names[1:], names[0]]:
            window.press(key)
            program.wait(
                lambda name=name: (focused := program.focused()) and focused.known_as == name,
                lambda name=name: f"the focus on {name!r}; it is on {program.focused()!r}",
            )


class FirstStart(Keys, Journey):
    def start(self):
        program = self.start_program(VANTORELLE_USER_LANGUAGE="en-uk")
        return program, program.window("Vantorelle Workspace Setup")

    def test_from_the_assistant_to_the_main_window(self):
        (self.home / "taken").mkdir()
        program, assistant = self.start()
        self.expect_order(assistant, ["Cancel", "Next"])
        self.push(assistant, "Next")
        stops = ["Workspace location", "Browse...", "Cancel", "Back", "Apply"]
        self.expect_order(assistant, stops)
        self.expect_order(assistant, stops[::-1], "shift+Tab")

        location = assistant.field("Workspace location")
        location.expect_text(str(self.home / "Vantorelle Workspace"))
        assistant.tab_to("Workspace location")
        display.press("ctrl+a")
        display.type_text(str(self.home / "taken"))
        self.push(assistant, "Apply")
        error = program.dialog("Error")
        self.assertEqual(
            error.message,
            "There is already a folder or a file with that name.\n\nPlease choose a new location.",
        )
        display.press("Return")
        error.expect_closed()

        # Back on the first page.
        self.push(assistant, "Next")
        location.expect_text(str(self.home / "taken"))
        self.push(assistant, "Browse...")
        chooser = program.file_chooser("Select a parent folder for your workspace")
        display.press("Escape")
        chooser.expect_closed()
        location.expect_text(str(self.home / "taken"))
        self.push(assistant, "Browse...")
        chooser = program.file_chooser("Select a parent folder for your workspace")
        chooser.enter_path(self.home / "taken")
        display.press("Return")
        chooser.expect_closed()
        location.expect_text(str(self.home / "taken" / "Vantorelle Workspace"))
        self.push(assistant, "Back")
        self.push(assistant, "Next")
        self.push(assistant, "Apply")
        assistant.tab_to("Close")
        display.press("Return")
        assistant.expect_closed()
        window = program.window(MAIN_WINDOW)
        window.list().expect_focus()
        self.assertTrue((self.home / "taken" / "Vantorelle Workspace" / "codesets").is_dir())
        window.press("alt+F4")
        program.expect_exit(0)

    def test_cancelling_the_assistant(self):
        program, assistant = self.start()
        self.push(assistant, "Next")
        assistant.tab_to("Cancel")
        display.press("Return")
        program.expect_exit(0)
        self.assertEqual([path.name for path in self.home.glob("Vantorelle*")], [])


class Keyboard(Keys, WorkspaceJourney):
    def select(self, window, text):
        """In a list that has the focus: types the beginning of the row."""
        display.type_text(text.split()[0])
        window.list().expect_selected([text])
        # Ends the search; the selection stays.
        display.press("Escape")
        settle()
        window.list().expect_selected([text])

    # The main window

    def test_the_main_window(self):
        self.put("wood.codeset", WOOD)
        self.put("glass.codeset", GLASS)
        program, window = self.open()
        rows = window.list()
        rows.expect_focus()
        always = [
            "Remark codeset files",
            "File name of selected item",
            "Add from file",
            "Add bundled",
            "Add new",
        ]
        rows.expect_selected([])
        self.expect_order(window, [*always, "Refresh list"])
        window.tab_to("Remark codeset files")
        for key, text in (
            ("Down", "Glass 1.5"),
            ("Down", "Wood (Vera) 2"),
            ("Up", "Glass 1.5"),
            ("End", "Wood (Vera) 2"),
            ("Home", "Glass 1.5"),
        ):
            display.press(key)
            rows.expect_selected([text])
        selected = [*always, "Clone", "Edit", "Save a copy", "Delete", "Refresh list"]
        self.expect_order(window, selected)
        self.expect_order(window, selected[::-1], "shift+Tab")
        # From button to button with the arrows.
        window.tab_to("Clone")
        display.press("Down")
        window.button("Edit").expect_focus()
        display.press("Up", "Up")
        window.button("Add new").expect_focus()

        # After its action the focus is on the button again.
        self.push(window, "Delete")
        question = program.dialog("Question")
        self.assertEqual(
            question.message, 'Do you really want to delete "Glass 1.5" from your workspace?'
        )
        self.push(question, "No")
        question.expect_closed()
        rows.expect_selected([])
        window.tab_to("Remark codeset files", "shift+Tab")
        self.select(window, "Wood (Vera) 2")
        self.push(window, "Delete")
        question = program.dialog("Question")
        question.tab_to("Yes")
        display.press("Return")
        question.expect_closed()
        rows.expect_texts(["Glass 1.5"])
        self.push(window, "Refresh list")
        rows.expect_texts(["Glass 1.5"])
        self.assertEqual(self.contents(), {"glass.codeset": GLASS})
        window.press("alt+F4")
        program.expect_exit(0)

    def test_add_from_file_and_save_a_copy(self):
        (self.home / "wood.codeset").write_bytes(WOOD)
        (self.home / "wood.txt").write_bytes(WOOD)
        program, window = self.open()
        self.push(window, "Add from file")
        program.file_chooser().enter_path(self.home / "wood.txt")
        display.press("Return")
        error = program.dialog("Error")
        error.button("Close").expect_focus()
        display.press("Return")
        error.expect_closed()
        self.push(window, "Add from file")
        chooser = program.file_chooser()
        chooser.press("Escape")
        chooser.expect_closed()
        self.push(window, "Add from file")
        program.file_chooser().enter_path(self.home / "wood.codeset")
        display.press("Return")
        window.list().expect_texts(["Wood (Vera) 2"])
        window.tab_to("Remark codeset files", "shift+Tab")
        self.select(window, "Wood (Vera) 2")
        self.push(window, "Save a copy")
        chooser = program.file_chooser("Save As")
        self.assertEqual(chooser.proposed_name, "wood.codeset")
        chooser.name_field().expect_focus()
        # The name without its extension is marked, ready to be typed over.
        program.wait(lambda: chooser.name_field().selected_text == "wood", "the name to be marked")
        display.type_text("oak")
        display.press("Return")
        chooser.expect_closed()
        window.expect_active()
        self.assertEqual((self.home / "oak.codeset").read_bytes(), WOOD)
        self.assertEqual(self.contents(), {"wood.codeset": WOOD})

    def test_looking_around_in_the_file_chooser(self):
        # The chooser shows them in this order, behind the workspace's folder.
        (self.home / "wood.codeset").write_bytes(WOOD)
        (self.home / "wood.txt").write_bytes(WOOD)
        (self.home / "zoo").mkdir()
        (self.home / "zoo" / "glass.codeset").write_bytes(GLASS)
        program, window = self.open()

        def chooser_with(rows):
            self.push(window, "Add from file")
            chooser = program.file_chooser("Select a file to add")
            chooser.list().expect_focus()
            program.wait(
                lambda: len(chooser.list()) == rows,
                lambda: f"{rows} entries, not {len(chooser.list())}",
            )
            return chooser

        chooser = chooser_with(3)
        self.expect_row(chooser, "End", 2)
        self.expect_row(chooser, "Up", 1)
        display.press("Return")
        chooser.expect_closed()
        window.list().expect_texts(["Wood (Vera) 2"])

        chooser = chooser_with(3)
        display.press("Tab")
        program.wait(lambda: not chooser.list().is_focused, "the filter to get the focus")
        display.press("Down")
        program.wait(lambda: chooser.filter == "All files", "the other filter")
        program.wait(lambda: len(chooser.list()) == 4, "the other file")
        chooser.tab_to("Files", "shift+Tab")
        self.expect_row(chooser, "End", 3)
        self.expect_row(chooser, "Up", 2)
        display.press("Return")
        error = program.dialog("Error")
        self.assertEqual(error.message, 'The file name must end with ".codeset".')
        display.press("Escape")
        error.expect_closed()

        # Into the other folder, out of it and into it again.
        chooser = chooser_with(3)
        self.expect_row(chooser, "End", 2)
        display.press("Return")
        program.wait(
            lambda: chooser.folder == "zoo" and len(chooser.list()) == 1, "the other folder"
        )
        display.press("alt+Up")
        program.wait(
            lambda: chooser.folder == "home" and len(chooser.list()) == 3, "the first folder"
        )
        chooser.tab_to("Files")
        self.expect_row(chooser, "End", 2)
        display.press("Return")
        program.wait(
            lambda: chooser.folder == "zoo" and len(chooser.list()) == 1, "the other folder"
        )
        chooser.tab_to("Files")
        self.expect_row(chooser, "Home", 0)
        # The button by its underlined letter.
        display.press("alt+o")
        chooser.expect_closed()
        window.list().expect_texts(["Glass 1.5", "Wood (Vera) 2"])
        self.assertEqual(self.contents(), {"glass.codeset": GLASS, "wood.codeset": WOOD})

        # The same file once more: Escape is the careful answer.
        self.push(window, "Add from file")
        chooser = program.file_chooser("Select a file to add")
        chooser.enter_path(self.home / "wood.codeset")
        display.press("Return")
        question = program.dialog("Question")
        self.expect_order(question, ["No", "Yes", question.message])
        display.press("Escape")
        question.expect_closed()
        window.expect_active()

    def expect_row(self, chooser, key, index):
        """Presses the key and expects the row with that index to be selected."""
        rows = chooser.list()
        display.press(key)
        chooser.program.wait(
            lambda: rows.selected_indices() == [index],
            lambda: f"row {index} after {key}, not {rows.selected_indices()}",
        )

    def test_saving_a_copy_over_another_file(self):
        self.put("wood.codeset", WOOD)
        oak = self.home / "oak.codeset"
        oak.write_bytes(GLASS)
        program, window = self.open()
        self.select(window, "Wood (Vera) 2")
        self.push(window, "Save a copy")
        chooser = program.file_chooser("Save As")
        program.wait(lambda: chooser.name_field().selected_text == "wood", "the name to be marked")
        chooser.enter_path(oak)
        display.press("Return")
        question = program.dialog()
        display.press("Escape")
        question.expect_closed()
        chooser.expect_active()
        self.assertEqual(oak.read_bytes(), GLASS)
        chooser.name_field().expect_focus()
        display.press("Return")
        question = program.dialog()
        self.push(question, "Replace")
        question.expect_closed()
        chooser.expect_closed()
        window.expect_active()
        self.assertEqual(oak.read_bytes(), WOOD)

    # Smaller windows

    def test_the_new_file_window(self):
        program, window = self.open()
        self.push(window, "Add new")
        naming = program.window("Add new")
        self.expect_order(naming, ["Enter new file name", "OK", "Cancel"])
        self.expect_order(naming, ["Cancel", "OK", "Enter new file name"], "shift+Tab")
        naming.tab_to("Enter new file name")
        display.press("Home")
        display.type_text("A")
        display.press("Return")
        error = program.dialog("Error")
        display.press("Escape")
        error.expect_closed()
        naming.expect_active()
        naming.field().expect_focus()
        display.press("ctrl+a")
        display.type_text("abc.codeset\n")
        naming.expect_closed()
        editing = program.window("Edit remark codeset - abc.codeset")
        editing.field(UK).expect_focus()
        display.press("Escape")
        question = program.dialog("Really close?")
        self.expect_order(question, ["Cancel", question.message, "Close"])
        self.push(question, "Close")
        editing.expect_closed()
        window.expect_active()

    def test_cloning(self):
        self.put("wood.codeset", WOOD)
        program, window = self.open()
        self.select(window, "Wood (Vera) 2")
        self.push(window, "Clone")
        naming = program.window("Add new")
        # The cursor is before the extension, which is kept.
        naming.field().expect_focus()
        display.type_text("oak")
        naming.field().expect_text("oak.codeset")
        display.press("Escape")
        naming.expect_closed()
        window.tab_to("Remark codeset files", "shift+Tab")
        self.select(window, "Wood (Vera) 2")
        self.push(window, "Clone")
        naming = program.window("Add new")
        naming.field().expect_focus()
        display.type_text("oak\n")
        naming.expect_closed()
        window.list().expect_texts(["Wood (Vera) 2"] * 2)
        self.assertEqual(self.contents(), {"oak.codeset": WOOD, "wood.codeset": WOOD})

    def test_the_bundled_selector(self):
        program, window = self.open()
        self.push(window, "Add bundled")
        selector = program.window("Select one to add")
        rows = selector.list()
        rows.expect_focus()
        rows.expect_selected([])
        self.expect_order(selector, ["Remark codeset files", "OK", "Cancel"])
        self.push(selector, "OK")
        error = program.dialog("Error")
        self.assertEqual(error.message, "None selected.")
        display.press("Return")
        error.expect_closed()
        selector.tab_to("Remark codeset files")
        display.type_text("ston")
        program.wait(
            lambda: [text.split()[0] for text in rows.selected_texts()] == ["Stone"],
            "the row to be found",
        )
        display.press("Escape")
        selector.tab_to("OK")
        display.press("Return")
        selector.expect_closed()
        self.assertEqual(list(self.contents()), ["stone_and_sculpture.codeset"])
        # Editing a delivered file asks; Enter on the default answer goes back.
        window.tab_to("Remark codeset files", "shift+Tab")
        display.press("Home")
        program.wait(lambda: window.list().selected_texts(), "the row to be selected")
        self.push(window, "Edit")
        question = program.dialog("Question")
        self.expect_order(question, ["No", "Yes", question.message])
        display.press("Escape")
        question.expect_closed()
        window.expect_active()

    # Editing

    def test_editing_from_start_to_end(self):
        self.put("wood.codeset", WOOD)
        program, window = self.open()
        self.select(window, "Wood (Vera) 2")
        self.push(window, "Edit")
        editing = program.window("Edit remark codeset - wood.codeset")
        editing.field(UK).expect_focus()
        # The list selects its first row when it gets the focus, so there is something to edit and
        # to delete.
        stops = [
            UK,
            UK,
            "Version",
            "Remark codes",
            "Description of the selected remark code",
            "Add new",
            "Edit",
            "Delete",
            "Save codeset",
            "Close",
        ]
        self.expect_order(editing, stops)
        self.expect_order(editing, [stops[0], *stops[:0:-1]], "shift+Tab")

        # A second name: out of the text with Ctrl+Tab to " + ".
        editing.tab_to(editing.fields()[0])
        display.press("ctrl+Tab", "ctrl+Tab")
        editing.button(" + ").expect_focus()
        display.press("space")
        editing.field(EN).expect_focus()
        display.type_text("Timber")
        # Up and down go from translation to translation.
        display.press("Up")
        editing.field(UK).expect_focus()
        display.press("Down")
        editing.field(EN).expect_focus()

        editing.tab_to("Remark codes")
        codes = editing.list("Remark codes")
        display.type_text("W10")
        codes.expect_selected(["W10. Stain"])
        display.press("Escape")
        settle()
        self.push(editing, "Edit")
        dialog = program.window("Edit remark code")
        self.expect_order(dialog, ["Remark code", UK, "OK", "Cancel"])
        dialog.tab_to("Remark code")
        display.press("ctrl+a")
        display.type_text("W0\n")
        dialog.expect_closed()
        codes.expect_texts(["W0. Stain", "W1. Split", "W2. Worm"])
        codes.expect_selected([])

        editing.tab_to("Remark codes", "shift+Tab")
        display.type_text("W2")
        codes.expect_selected(["W2. Worm"])
        display.press("Escape")
        settle()
        self.push(editing, "Delete")
        codes.expect_texts(["W0. Stain", "W1. Split"])
        editing.tab_to("Add new")
        display.press("Return")
        dialog = program.window("Edit remark code")
        display.type_text("W3\tHole\n")
        dialog.expect_closed()
        codes.expect_texts(["W0. Stain", "W1. Split", "W3. Hole"])
        editing.tab_to("Save codeset")
        display.press("Return")
        editing.expect_closed()
        program.window(MAIN_WINDOW).list().expect_texts(["Wood (Vera) 2"])
        self.assertEqual(
            self.contents(),
            {
                "wood.codeset": codeset(
                    {"en-uk": "Wood", "en": "Timber"},
                    "Vera",
                    "2",
                    [("W0", "Stain"), ("W1", "Split"), ("W3", "Hole")],
                )
            },
        )

    def test_the_search_in_a_list(self):
        self.put("wood.codeset", WOOD)
        program, window = self.open()
        self.select(window, "Wood (Vera) 2")
        self.push(window, "Edit")
        editing = program.window("Edit remark codeset - wood.codeset")
        editing.tab_to("Remark codes")
        codes = editing.list("Remark codes")
        # Small letters find capitals, too. Up and Down go from find to find.
        for keys, text in (("w1", "W1. Split"), ("0", "W10. Stain")):
            display.type_text(keys)
            codes.expect_selected([text])
        for key, text in (("BackSpace", "W1. Split"), ("Down", "W10. Stain"), ("Up", "W1. Split")):
            display.press(key)
            codes.expect_selected([text])
        # The first Escape ends the search, the second asks.
        display.press("Escape")
        settle()
        codes.expect_focus()
        display.press("Escape")
        question = program.dialog("Really close?")
        display.press("Escape")
        question.expect_closed()
        codes.expect_selected(["W1. Split"])

    def test_a_long_list(self):
        remarks = [(f"W{number}", f"Damage {number}") for number in range(1, 101)]
        self.put("wood.codeset", codeset("Wood", remarks=remarks))
        program, window = self.open()
        self.select(window, "Wood")
        self.push(window, "Edit")
        editing = program.window("Edit remark codeset - wood.codeset")
        editing.tab_to("Remark codes")
        codes = editing.list("Remark codes")

        def expect_seen(index):
            program.wait(
                lambda: codes.selected_indices() == [index],
                lambda: f"row {index}, not {codes.selected_indices()}",
            )
            _, y, _, height = codes.resting_extents()
            program.wait(
                lambda: (place := codes.rows()[index].extents)
                and y <= place[1]
                and place[1] + place[3] <= y + height,
                f"row {index} to be scrolled into view",
            )

        for key, index in (("End", 99), ("Up", 98), ("Home", 0), ("Down", 1)):
            display.press(key)
            expect_seen(index)
        display.press("Next")
        program.wait(lambda: codes.selected_indices() not in ([], [1]), "a page further down")
        page = codes.selected_indices()[0] - 1
        self.assertGreater(page, 3)
        expect_seen(1 + page)
        display.press("Prior")
        expect_seen(1)
        display.type_text("W77")
        expect_seen(76)

    def test_copying_a_file_that_cannot_be_edited(self):
        self.put("wood.codeset", WOOD)
        program, window = self.open()
        self.select(window, "Wood (Vera) 2")
        window.tab_to("File name of selected item")
        display.press("ctrl+a", "ctrl+c")
        program.wait(lambda: self.copied() == "wood.codeset", "the file name on the clipboard")
        display.type_text("x")
        display.press("Delete")
        settle()
        window.field("File name of selected item").expect_text("wood.codeset")
        self.push(window, "Edit")
        editing = program.window("Edit remark codeset - wood.codeset")
        editing.tab_to("Remark codes")
        display.press("Down")
        editing.list("Remark codes").expect_selected(["W2. Worm"])
        editing.tab_to("Description of the selected remark code")
        display.press("ctrl+a", "ctrl+c")
        program.wait(lambda: self.copied() == f"{UK}\n\nWorm", "the description on the clipboard")
        display.type_text("x")
        settle()
        editing.field("Description of the selected remark code").expect_text(f"{UK}\n\nWorm")

    def copied(self):
        """The text on the clipboard; None as long as nobody offers one."""
        try:
            return display.clipboard()
        except subprocess.CalledProcessError:
            return None

    def test_copying_a_message(self):
        program, window = self.open()
        self.push(window, "Add new")
        naming = program.window("Add new")
        display.type_text("a-\n")
        error = program.dialog("Error")
        error.button("Close").expect_focus()
        error.tab_to(error.message)
        display.press("ctrl+c")
        program.wait(
            lambda: self.copied() == 'The character "-" is not permitted.',
            "the message on the clipboard",
        )
        # Return presses the button, wherever the focus is.
        display.press("Return")
        error.expect_closed()
        naming.field().expect_focus()

    def test_a_language_is_chosen_from_the_open_list(self):
        self.put("wood.codeset", WOOD)
        self.prefer("en-uk", "en", "sv")
        program, window = self.open()
        self.select(window, "Wood (Vera) 2")
        self.push(window, "Edit")
        editing = program.window("Edit remark codeset - wood.codeset")
        name, combo = editing.fields()[0], editing.combos()[0]
        name.expect_focus()
        self.assertEqual(combo.choices(), [UK, EN, "Swedish [sv]"])

        def open_list():
            display.press("ctrl+Tab")
            program.wait(lambda: not name.is_focused, "the focus to leave the text")
            display.press("space")
            program.wait(lambda: combo.find_all("menu item"), "the list to open")

        open_list()
        display.press("Down", "Escape")
        program.wait(lambda: not combo.find_all("menu item"), "the list to close")
        combo.expect_text(UK)
        self.assertTrue(editing.is_open)
        display.press("ctrl+shift+Tab")
        name.expect_focus()
        open_list()
        display.press("End", "Return")
        combo.expect_text("Swedish [sv]")
        name.expect_focus()
        display.press("End")
        display.type_text("s")
        self.push(editing, "Save codeset")
        editing.expect_closed()
        self.assertEqual(
            self.contents(),
            {"wood.codeset": WOOD.replace(b'<name lang="en-uk">Wood', b'<name lang="sv">Woods')},
        )

    def test_a_language_is_changed_and_a_translation_deleted(self):
        self.put("wood.codeset", codeset({"en-uk": "Wood", "en": "Timber"}, remarks=[("1", "One")]))
        program, window = self.open()
        self.select(window, "Wood")
        self.push(window, "Edit")
        editing = program.window("Edit remark codeset - wood.codeset")
        editing.field(UK).expect_focus()
        display.press("ctrl+Tab", "ctrl+Tab", "space")
        program.wait(lambda: len(editing.combos()) == 2, "the first translation to go")
        editing.tab_to(editing.fields()[0])
        editing.field(EN).expect_focus()
        display.press("ctrl+Tab", "Up")
        editing.field(UK).expect_focus()
        editing.field(UK).expect_text("Timber")
        # Enter in a name does not save; the button does.
        display.press("Return")
        settle(0.5)
        self.assertTrue(editing.is_open)
        self.push(editing, "Save codeset")
        editing.expect_closed()
        self.assertEqual(
            self.contents(), {"wood.codeset": codeset("Timber", remarks=[("1", "One")])}
        )

    def test_the_answers_of_a_question(self):
        self.put("wood.codeset", WOOD)
        program, window = self.open()
        self.select(window, "Wood (Vera) 2")
        self.push(window, "Delete")
        question = program.dialog("Question")
        question.tab_to("No")
        display.press("Right")
        question.button("Yes").expect_focus()
        display.press("Left")
        question.button("No").expect_focus()
        display.press("Return")
        question.expect_closed()
        window.expect_active()
        self.assertEqual(self.contents(), {"wood.codeset": WOOD})


if __name__ == "__main__":
    main()
