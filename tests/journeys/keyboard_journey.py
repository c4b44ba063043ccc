"""Every window with the keyboard alone: nothing here touches the mouse."""

from support import MAIN_WINDOW, WorkspaceJourney, codeset, main
from support import display
from support.waiting import settle

UK = "English/United Kingdom [en-uk]"
EN = "English [en]"
WOOD = codeset("Wood", "Vera", "2", [("W1", "Split"), ("W2", "Worm"), ("W10", "Stain")])
GLASS = codeset("Glass", version="1.5", remarks=[("G1", "Chip")])


class Keyboard(WorkspaceJourney):
    def name_of(self, widget):
        return None if widget is None else widget.name or (widget.program and self.label_of(widget))

    def label_of(self, widget):
        window = widget.program.active_window()
        for label in ("File name of selected item", "Enter new file name", "Remark code"):
            if window.find_all(widget.role, labelled=label) == [widget]:
                return label
        return ""

    def go(self, window, name, key="Tab"):
        """Presses the key until the widget of that name has the focus. Nothing has it after the button that had it became
        insensitive; then the key leads to the window's first or last widget."""
        program = window.program
        window.expect_active()
        settle()
        for _ in range(25):
            focused = program.focused()
            if self.name_of(focused) == name:
                return focused
            window.press(key)
            program.wait(lambda focused=focused: program.focused() not in (None, focused), f"{key} to move the focus")
        self.fail(f"{key} does not lead to {name!r}")

    def push(self, window, name):
        self.go(window, name)
        display.press("space")

    def expect_order(self, window, names, key="Tab"):
        """The focus goes through these, begins with the first and comes back to it."""
        program = window.program
        self.go(window, names[0], key)
        for name in [*names[1:], names[0]]:
            window.press(key)
            program.wait(
                lambda name=name: self.name_of(program.focused()) == name,
                lambda name=name: f"the focus on {name!r}; it is on {program.focused()!r}")

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
        always = ["Remark codeset files", "File name of selected item", "Add from file", "Add bundled", "Add new"]
        rows.expect_selected([])
        self.expect_order(window, [*always, "Refresh list"])
        self.go(window, "Remark codeset files")
        for key, text in (
            ("Down", "Glass 1.5"), ("Down", "Wood (Vera) 2"), ("Up", "Glass 1.5"), ("End", "Wood (Vera) 2"), ("Home", "Glass 1.5"),
        ):
            display.press(key)
            rows.expect_selected([text])
        selected = [*always, "Clone", "Edit", "Save a copy", "Delete", "Refresh list"]
        self.expect_order(window, selected)
        self.expect_order(window, selected[::-1], "shift+Tab")
        # From button to button with the arrows.
        self.go(window, "Clone")
        display.press("Down")
        window.button("Edit").expect_focus()
        display.press("Up", "Up")
        window.button("Add new").expect_focus()

        # What a button was pressed for leads back to the button.
        self.push(window, "Delete")
        question = program.dialog("Question")
        self.assertEqual(question.message, 'Do you really want to delete "Glass 1.5" from your workspace?')
        self.push(question, "No")
        question.expect_closed()
        rows.expect_selected([])
        self.go(window, "Remark codeset files", "shift+Tab")
        self.select(window, "Wood (Vera) 2")
        self.push(window, "Delete")
        question = program.dialog("Question")
        self.go(question, "Yes")
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
        self.go(window, "Remark codeset files", "shift+Tab")
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

    # Smaller windows

    def test_the_new_file_window(self):
        program, window = self.open()
        self.push(window, "Add new")
        naming = program.window("Add new")
        self.expect_order(naming, ["Enter new file name", "OK", "Cancel"])
        self.expect_order(naming, ["Cancel", "OK", "Enter new file name"], "shift+Tab")
        self.go(naming, "Enter new file name")
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
        self.expect_order(question, ["Close", "Cancel"])
        self.push(question, "Close")
        editing.expect_closed()
        window.expect_active()

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
        self.go(selector, "Remark codeset files")
        display.type_text("ston")
        program.wait(lambda: [text.split()[0] for text in rows.selected_texts()] == ["Stone"], "the row to be found")
        display.press("Escape")
        self.go(selector, "OK")
        display.press("Return")
        selector.expect_closed()
        self.assertEqual(list(self.contents()), ["stone_and_sculpture.codeset"])
        # Editing what was delivered asks; Enter on the default answer goes back.
        self.go(window, "Remark codeset files", "shift+Tab")
        display.press("Home")
        program.wait(lambda: window.list().selected_texts(), "the row to be selected")
        self.push(window, "Edit")
        question = program.dialog("Question")
        self.expect_order(question, ["No", "Yes"])
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
        # Coming to the list selects its first row, so there is something to edit and to delete.
        stops = [
            UK, UK, "Version", "Remark codes", "Description of the selected remark code", "Add new", "Edit", "Delete",
            "Save codeset", "Close",
        ]
        self.expect_order(editing, stops)
        self.expect_order(editing, [stops[0], *stops[:0:-1]], "shift+Tab")

        # A second name: out of the text with Ctrl+Tab to " + ".
        self.go_to_field(editing, 0)
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

        self.go(editing, "Remark codes")
        codes = editing.list("Remark codes")
        display.type_text("W10")
        codes.expect_selected(["W10. Stain"])
        display.press("Escape")
        settle()
        self.push(editing, "Edit")
        dialog = program.window("Edit remark code")
        self.expect_order(dialog, ["Remark code", UK, "OK", "Cancel"])
        self.go(dialog, "Remark code")
        display.press("ctrl+a")
        display.type_text("W0\n")
        dialog.expect_closed()
        codes.expect_texts(["W0. Stain", "W1. Split", "W2. Worm"])
        codes.expect_selected([])

        self.go(editing, "Remark codes", "shift+Tab")
        display.type_text("W2")
        codes.expect_selected(["W2. Worm"])
        display.press("Escape")
        settle()
        self.push(editing, "Delete")
        codes.expect_texts(["W0. Stain", "W1. Split"])
        self.go(editing, "Add new")
        display.press("Return")
        dialog = program.window("Edit remark code")
        display.type_text("W3\tHole\n")
        dialog.expect_closed()
        codes.expect_texts(["W0. Stain", "W1. Split", "W3. Hole"])
        self.go(editing, "Save codeset")
        display.press("Return")
        editing.expect_closed()
        program.window(MAIN_WINDOW).list().expect_texts(["Wood (Vera) 2"])
        self.assertEqual(self.contents(), {"wood.codeset": codeset(
            {"en-uk": "Wood", "en": "Timber"}, "Vera", "2", [("W0", "Stain"), ("W1", "Split"), ("W3", "Hole")])})

    def go_to_field(self, window, index):
        """Tab until the text field of that index has the focus: several have the same name."""
        field = window.fields()[index]
        for _ in range(25):
            if field.is_focused:
                return
            focused = window.program.focused()
            window.press("Tab")
            window.program.wait(lambda focused=focused: window.program.focused() != focused, "Tab to move the focus")
        self.fail(f"Tab does not lead to the field {index}")

    def test_a_language_is_changed_and_a_translation_deleted(self):
        self.put("wood.codeset", codeset({"en-uk": "Wood", "en": "Timber"}, remarks=[("1", "One")]))
        program, window = self.open()
        self.select(window, "Wood")
        self.push(window, "Edit")
        editing = program.window("Edit remark codeset - wood.codeset")
        editing.field(UK).expect_focus()
        display.press("ctrl+Tab", "ctrl+Tab", "space")
        program.wait(lambda: len(editing.combos()) == 2, "the first translation to go")
        self.go_to_field(editing, 0)
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
        self.assertEqual(self.contents(), {"wood.codeset": codeset("Timber", remarks=[("1", "One")])})

    def test_the_answers_of_a_question(self):
        self.put("wood.codeset", WOOD)
        program, window = self.open()
        self.select(window, "Wood (Vera) 2")
        self.push(window, "Delete")
        question = program.dialog("Question")
        self.go(question, "No")
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
