"""Keys at the pace of real hands: confirming a field and typing on, keys that are held down, and
reading a message."""

from support import EN, MAIN_WINDOW, UK, Journey, WorkspaceJourney, codeset, main
from support import display
from support.waiting import settle

PACES = (10, 30, 60, 100, 150, 260)  # milliseconds from key to key
HOLD_SECONDS = 1.5  # the screen's keys repeat after 0.66 seconds
OWN = codeset("Own", "Vera", "1", [("1", "One"), ("2", "Two")])


class Pace(WorkspaceJourney):
    def open_own(self):
        self.put("own.codeset", OWN)
        return self.open_editing("own.codeset", "Own (Vera) 1")

    def titles(self, program):
        return sorted(window.title for window in program.windows())

    def edit_code(self, program, editing, row):
        editing.list("Remark codes").row(row).select()
        editing.button("Edit").click()
        return program.window("Edit remark code")

    def test_keys_after_return_are_not_in_the_confirmed_code(self):
        program, editing = self.open_own()
        shown = "1. One"
        for pace in PACES:
            with self.subTest(pace=pace):
                dialog = self.edit_code(program, editing, shown)
                dialog.field(UK).clear()
                shown = f"1. txt{pace}"
                display.press_at_pace(pace, *f"txt{pace}", "Return", "space", "Q", "7")
                dialog.expect_closed()
                settle(0.5)
                editing.list("Remark codes").expect_texts([shown, "2. Two"])
                self.assertEqual(
                    [field.text for field in editing.fields()[:3]], ["Own", "Vera", "1"]
                )
                # The first click ends the search that the letters have begun in the list.
                editing.field(UK).click()
                editing.field(UK).focus()

    def test_return_between_the_keys_of_a_fast_typist(self):
        """Each key goes down before the one before it is up."""
        program, editing = self.open_own()
        dialog = self.edit_code(program, editing, "1. One")
        dialog.field(UK).clear()
        dialog.field(UK).type("txt")
        display.xdotool(
            "keydown",
            "Return",
            "sleep",
            0.03,
            "keydown",
            "space",
            "sleep",
            0.03,
            "keyup",
            "Return",
            "keydown",
            "Q",
            "sleep",
            0.03,
            "keyup",
            "space",
            "keyup",
            "Q",
        )
        dialog.expect_closed()
        editing.list("Remark codes").expect_texts(["1. txt", "2. Two"])

    def test_keys_after_return_go_to_the_window_of_the_new_file(self):
        program, window = self.open()
        for pace in PACES:
            with self.subTest(pace=pace):
                window.button("Add new").click()
                naming = program.window("Add new")
                naming.field().expect_focus()
                display.press_at_pace(pace, "a", "b", "c", *str(pace), "Return", "M", "y")
                editing = program.window(f"Edit remark codeset - abc{pace}.codeset")
                settle(0.5)
                self.assertIn(editing.field(UK).text, ("My", "y", ""))
                self.close_without_saving(program, editing)

    def test_keys_typed_over_an_error_are_dropped(self):
        program, window = self.open()
        for pace in PACES:
            with self.subTest(pace=pace):
                window.button("Add new").click()
                naming = program.window("Add new")
                naming.field().expect_focus()
                display.press_at_pace(
                    pace, "a", "minus", "Return", "space", "Q", "7", "Tab", "x", "Return", "u", "v"
                )
                error = program.dialog("Error")
                settle(0.6)
                self.assertTrue(error.is_open)
                # After the pause the message takes keys.
                display.press("Return")
                error.expect_closed()
                naming.field().expect_focus()
                naming.field().expect_text("a-.codeset")
                display.press("Escape")
                naming.expect_closed()
        self.assertEqual(self.contents(), {})

    def test_a_held_return_confirms_once(self):
        program, editing = self.open_own()
        editing.list("Remark codes").row("1. One").select()
        display.press("Tab", "Tab")
        editing.button("Add new").expect_focus()
        display.press("space")
        dialog = program.window("Edit remark code")
        dialog.field("Remark code").type("3\tThree")
        display.hold("Return", HOLD_SECONDS)
        dialog.expect_closed()
        settle(0.5)
        editing.expect_active()
        self.assertEqual(self.titles(program), sorted([MAIN_WINDOW, editing.title]))
        editing.list("Remark codes").expect_texts(["1. One", "2. Two", "3. Three"])
        # The key is free again.
        editing.button("Add new").expect_focus()
        display.press("Return")
        program.window("Edit remark code")

    def test_a_held_return_leaves_the_error_to_be_read(self):
        program, editing = self.open_own()
        editing.button("Add new").click()
        dialog = program.window("Edit remark code")
        dialog.field("Remark code").expect_focus()
        display.hold("Return", HOLD_SECONDS)
        error = program.dialog("Error")
        settle(0.5)
        self.assertEqual(error.message, "Missing a code.")
        display.press("Return")
        error.expect_closed()
        settle(0.5)
        dialog.expect_active()

    def test_a_held_escape_closes_one_window(self):
        program, editing = self.open_own()
        dialog = self.edit_code(program, editing, "1. One")
        display.hold("Escape", HOLD_SECONDS)
        dialog.expect_closed()
        settle(0.5)
        editing.expect_active()

    def test_the_same_key_in_window_after_window_counts_each_time(self):
        program, editing = self.open_own()
        for _ in range(10):
            editing.button("Add new").click()
            dialog = program.window("Edit remark code")
            display.press("Escape")
            dialog.expect_closed()
            display.press("Escape")
            question = program.dialog("Really close?")
            display.press("Escape")
            question.expect_closed()

    def test_a_held_space_presses_a_button_once(self):
        _, editing = self.open_own()
        fields = len(editing.fields())
        editing.field(UK).focus()
        display.press("ctrl+Tab", "ctrl+Tab")
        editing.button(" + ").expect_focus()
        display.hold("space", HOLD_SECONDS)
        settle(0.5)
        self.assertEqual(len(editing.fields()), fields + 1)
        editing.field(EN).expect_focus()
        self.assertEqual(editing.field(EN).text, "")

    def test_keys_that_repeat_in_a_field_do(self):
        _, editing = self.open_own()
        version = editing.field("Version")
        version.enter("v")
        display.hold("x", HOLD_SECONDS)
        settle(0.3)
        self.assertGreater(len(version.text), 8)
        display.hold("BackSpace", HOLD_SECONDS)
        settle(0.3)
        self.assertLess(len(version.text), 25)

    def test_escape_then_return_keeps_the_work(self):
        _, editing = self.open_own()
        for pace in PACES:
            with self.subTest(pace=pace):
                editing.field("Version").enter(f"2{pace}")
                display.press_at_pace(pace, "Escape", "Return")
                settle(0.5)
                display.press("Return")
                settle(0.3)
                editing.expect_active()
                editing.field("Version").expect_text(f"2{pace}")


class FirstStart(Journey):
    def on_the_location_page(self, home=None):
        program = self.start_program(home, VANTORELLE_USER_LANGUAGE="en-uk")
        assistant = program.window("Vantorelle Workspace Setup")
        assistant.button("Next").click()
        location = assistant.field("Workspace location")
        location.focus()
        return program, assistant, location

    def test_return_in_the_location_goes_on(self):
        program, assistant, location = self.on_the_location_page()
        place = self.home / "mine"
        location.enter(str(place))
        display.press("Return")
        assistant.button("Close").click()
        self.assertTrue((place / "codesets").is_dir())
        program.window(MAIN_WINDOW)

    def test_keys_after_return_are_not_in_the_location(self):
        for pace in PACES:
            with self.subTest(pace=pace):
                home = self.folder / f"home {pace}"
                home.mkdir()
                program, assistant, location = self.on_the_location_page(home)
                location.enter(str(home / "mine"))
                display.press_at_pace(pace, "Return", "space", "Q", "7")
                settle(0.5)
                self.assertTrue((home / "mine" / "codesets").is_dir())
                self.assertEqual([path.name for path in home.glob("mine*")], ["mine"])
                if assistant.is_open:
                    assistant.button("Close").click()
                program.window(MAIN_WINDOW).close()
                program.expect_exit(0)

    def test_a_held_return_applies_once(self):
        program, assistant, location = self.on_the_location_page()
        location.enter(str(self.home / "missing" / "place"))
        display.hold("Return", HOLD_SECONDS)
        error = program.dialog("Error")
        settle(0.5)
        self.assertEqual(error.message, "Creating a workspace at the chosen location failed.")
        display.press("Return")
        error.expect_closed()
        settle(0.5)
        # Back on the first page, with nothing over it.
        assistant.expect_active()
        self.assertEqual(len(program.windows()), 1)
        assistant.button("Next").click()
        location.expect_text(str(self.home / "missing" / "place"))


if __name__ == "__main__":
    main()
