"""Lists by keyboard: the place in a list is kept over every action, rows are found by typing, and
keys press buttons."""

import re

from support import MAIN_WINDOW, UK, WorkspaceJourney, codeset, main
from support import display
from support.waiting import settle

METALS = re.compile(r"^Metals \(")


def name_of(number):
    return f"Case {number:02}"


class Lists(WorkspaceJourney):
    def put_many(self, count=60):
        """Files whose order is that of their numbers, from 0."""
        for number in range(count):
            self.put(f"case_{number:02}.codeset", codeset(name_of(number), remarks=[("1", "One")]))

    def expect_row_in_view(self, rows, text):
        _, y, _, height = rows.resting_extents()

        def is_in_view():
            row = next((row for row in rows.rows() if row.text == text), None)
            return (
                row
                and (place := row.extents)
                and y <= place[1]
                and place[1] + place[3] <= y + height
            )

        rows.program.wait(is_in_view, f"{text!r} to be in view")

    def expect_place(self, window, rows, text, following):
        """Nothing is selected, the row is in view and Down selects the next one."""
        window.expect_active()
        settle()
        rows.expect_selected([])
        rows.expect_focus()
        self.expect_row_in_view(rows, text)
        display.press("Down")
        rows.expect_selected([following])

    def go_to(self, rows, number):
        """The row of that number, by keys alone, in a list that has the focus."""
        display.press("End", "Home", *["Down"] * number)
        rows.program.wait(
            lambda: rows.selected_indices() == [number],
            lambda: f"row {number}, not {rows.selected_indices()}",
        )

    def push(self, window, name):
        """Presses the button by keys alone."""
        window.tab_to(window.button(name))
        display.press("space")

    def close_editing(self, program, name):
        editing = program.window(f"Edit remark codeset - {name}")
        editing.button("Close").act()
        program.dialog("Really close?").answer("Close")
        editing.expect_closed()

    def add_as(self, program, name):
        naming = program.window("Add new")
        naming.field().expect_focus()
        display.type_text(f"{name}\n")
        naming.expect_closed()


class MainWindowPlaces(Lists):
    def test_after_editing_up_and_down_go_on_from_the_row(self):
        self.put_many()
        program, window = self.open()
        rows = window.list()
        rows.expect_focus()
        for number in (7, 40, 59):
            self.go_to(rows, number)
            display.press("Return")
            self.close_editing(program, f"case_{number:02}.codeset")
            self.expect_place(window, rows, name_of(number), name_of(min(number + 1, 59)))
            window.field("File name of selected item").expect_text(
                f"case_{min(number + 1, 59):02}.codeset"
            )
        self.go_to(rows, 40)
        display.press("Return")
        self.close_editing(program, "case_40.codeset")
        window.expect_active()
        settle()
        rows.expect_selected([])
        display.press("Up")
        rows.expect_selected([name_of(39)])

    def test_return_and_space_act_on_the_row_of_the_last_action(self):
        self.put_many(20)
        program, window = self.open()
        rows = window.list()
        rows.expect_focus()
        self.go_to(rows, 12)
        for _ in range(2):
            display.press("Return")
            self.close_editing(program, "case_12.codeset")
            window.expect_active()
            settle()
        rows.expect_selected([])
        display.press("space")
        rows.expect_selected([name_of(12)])
        settle()
        self.assertEqual(program.windows(), [window])

    def test_the_button_of_an_action_leaves_the_focus_in_the_list(self):
        self.put_many()
        program, window = self.open()
        rows = window.list()
        self.go_to(rows, 30)
        self.push(window, "Edit")
        self.close_editing(program, "case_30.codeset")
        self.expect_place(window, rows, name_of(30), name_of(31))

        self.push(window, "Clone")
        naming = program.window("Add new")
        naming.field().expect_focus()
        display.press("Escape")
        naming.expect_closed()
        self.expect_place(window, rows, name_of(31), name_of(32))

        self.push(window, "Save a copy")
        program.file_chooser("Save As").choose(self.folder / "copy.codeset")
        self.expect_place(window, rows, name_of(32), name_of(33))

        self.push(window, "Delete")
        program.dialog("Question").answer("No")
        self.expect_place(window, rows, name_of(33), name_of(34))
        self.push(window, "Delete")
        program.dialog("Question").answer("Yes")
        # The row after the deleted one.
        self.expect_place(window, rows, name_of(35), name_of(36))
        self.go_to(rows, 58)
        display.press("Delete")
        program.dialog("Question").answer("Yes")
        # The last row was deleted.
        self.expect_place(window, rows, name_of(58), name_of(58))

    def test_the_place_is_that_of_the_new_file(self):
        self.put_many()
        source = self.folder / "case_45_b.codeset"
        source.write_bytes(codeset("Case 45 b", remarks=[("1", "One")]))
        program, window = self.open()
        rows = window.list()
        self.go_to(rows, 50)
        self.push(window, "Clone")
        self.add_as(program, "zzz")
        # The copy reads like its original and is beside it.
        settle()
        rows.expect_selected([])
        rows.expect_focus()
        self.expect_row_in_view(rows, name_of(50))
        display.press("space")
        window.field("File name of selected item").expect_text("zzz.codeset")

        display.press("Home", "ctrl+n")
        self.add_as(program, "mine")
        editing = program.window("Edit remark codeset - mine.codeset")
        editing.field(UK).expect_focus()
        display.type_text("Case 33 b")
        self.push(editing, "Add new")
        dialog = program.window("Edit remark code")
        display.type_text("1\tOne\n")
        dialog.expect_closed()
        editing.button("Save codeset").act()
        editing.expect_closed()
        self.expect_place(window, rows, "Case 33 b", name_of(34))

        window.button("Add from file").act()
        program.file_chooser().choose(source)
        self.expect_place(window, rows, "Case 45 b", name_of(46))

        window.button("Add bundled").act()
        selector = program.window("Select one to add")
        selector.list().row(METALS).select()
        selector.button("OK").act()
        selector.expect_closed()
        settle()
        metals = next(text for text in rows.texts() if METALS.search(text))
        self.expect_row_in_view(rows, metals)
        display.press("Up")
        rows.expect_selected([name_of(59)])

    def test_refreshing_keeps_the_place_and_what_is_in_view(self):
        self.put_many()
        program, window = self.open()
        rows = window.list()
        self.go_to(rows, 45)
        display.press("Up", "Up")
        rows.expect_selected([name_of(43)])
        before = rows.row(name_of(43)).resting_extents()
        display.press("F5")
        program.wait(lambda: rows.selected_texts() == [], "the list to be refreshed")
        # The last row in view may be cut by a pixel before, and is shown whole then.
        program.wait(
            lambda: abs(
                next(row for row in rows.rows() if row.text == name_of(43)).extents[1] - before[1]
            )
            <= 1,
            lambda: f"the row at {before}; it is in {[row.extents for row in rows.rows()][41:45]}",
        )
        self.expect_place(window, rows, name_of(43), name_of(44))
        for number in (10, 11, 44):
            (self.codesets / f"case_{number:02}.codeset").unlink()
        window.button("Refresh list").act()
        program.wait(lambda: len(rows) == 57, "the list to be refreshed")
        # Two rows above the selected one are gone, and the selected one too.
        self.expect_place(window, rows, name_of(45), name_of(46))

    def test_the_file_behind_a_new_notice_is_in_view(self):
        self.put_many()
        _, window = self.open()
        rows = window.list()
        self.go_to(rows, 45)
        self.put("strange.codeset", b"a letter")
        display.press("F5")
        rows.program.wait(lambda: len(rows) == 61, "the list to be refreshed")
        self.expect_row_in_view(rows, "strange.codeset")
        rows.expect_selected([])
        display.press("Down")
        rows.expect_selected([name_of(46)])
        self.expect_row_in_view(rows, name_of(46))
        # The notice is not new any more.
        display.press("F5")
        self.expect_place(window, rows, name_of(46), name_of(47))
        # At the top of the list, too, the first row stays in view.
        display.press("Home")
        (self.codesets / "strange.codeset").unlink()
        display.press("F5")
        rows.program.wait(lambda: len(rows) == 60, "the list to be refreshed")
        self.put("strange.codeset", b"a letter")
        display.press("F5")
        rows.program.wait(lambda: len(rows) == 61, "the list to be refreshed")
        self.expect_row_in_view(rows, "strange.codeset")

    def test_a_returning_focus_selects_nothing(self):
        self.put_many(20)
        program, window = self.open()
        rows = window.list()
        file_name = window.field("File name of selected item")
        rows.expect_focus()
        window.button("Refresh list").act()
        settle()
        for _ in range(2):
            window.button("Add from file").act()
            program.file_chooser().cancel()
            window.expect_active()
            settle()
            rows.expect_selected([])
            file_name.expect_text("")
        # Nothing has been chosen yet, so the first row is the next one.
        display.press("Down")
        rows.expect_selected([name_of(0)])


class Keys(Lists):
    def test_keys_of_the_main_window(self):
        self.put_many(20)
        program, window = self.open()
        rows = window.list()
        rows.expect_focus()
        rows.row(name_of(3)).click(times=2)
        self.close_editing(program, "case_03.codeset")
        self.expect_place(window, rows, name_of(3), name_of(4))
        display.press("Delete")
        self.expect_message(
            program, "Question", 'Do you really want to delete "Case 04" from your workspace?', "No"
        )
        settle()
        rows.expect_selected([])
        display.press("Delete")
        settle()
        self.assertEqual(program.windows(), [window])
        (self.codesets / "case_00.codeset").unlink()
        display.press("F5")
        program.wait(lambda: len(rows) == 19, "the list to be refreshed")
        window.field("File name of selected item").focus()
        display.press("Delete", "Return", "ctrl+n")
        naming = program.window("Add new")
        # Keys of a covered window are not its keys any more.
        display.press("ctrl+n", "F5", "Escape")
        naming.expect_closed()
        window.expect_active()
        settle()
        self.assertEqual(program.windows(), [window])
        self.assertEqual(len(self.contents()), 19)

    def test_letters_search_and_the_search_has_its_own_keys(self):
        self.put_many(20)
        self.put("nut.codeset", codeset("Nut and dust", remarks=[("1", "One")]))
        program, window = self.open()
        rows = window.list()
        rows.expect_focus()
        for key in ("n", "d", "space"):
            display.press(key)
            if key != "space":
                program.wait(lambda: rows.selected_texts() == ["Nut and dust"], f"{key} to search")
                display.press("BackSpace", "Delete", "ctrl+n", "F5")
                settle()
                self.assertEqual([w.title for w in program.windows() if w.title], [MAIN_WINDOW])
                display.press("Escape")
                settle()
                display.press("Home")
                rows.expect_selected([name_of(0)])
        display.type_text("nut")
        rows.expect_selected(["Nut and dust"])
        display.press("Return")
        settle()
        self.assertEqual(program.windows(), [window])
        rows.expect_selected(["Nut and dust"])
        display.press("Return")
        self.close_editing(program, "nut.codeset")

    def test_keys_that_are_held_press_once(self):
        self.put_many(20)
        self.put("zzz.codeset", b"a letter")
        program, window = self.open()
        rows = window.list()
        rows.expect_focus()
        display.press("Down")
        rows.expect_selected(["zzz.codeset"])
        # The file cannot be opened, and Return closes the message that says so.
        with display.held("Return"):
            settle(2)
        settle()
        program.wait(lambda: len(program.windows()) <= 2, "the windows to settle")
        self.assertLessEqual(len(program.windows()), 2)
        for title in [w.title for w in program.windows()]:
            if title == "Error":
                program.dialog("Error").answer("Close")
        window.expect_active()
        self.go_to(rows, 5)
        with display.held("Delete"):
            settle(1.5)
        self.expect_message(
            program,
            "Question",
            'Do you really want to delete "Case 04" from your workspace?',
            "Yes",
        )
        settle()
        self.assertEqual(program.windows(), [window])
        self.assertEqual(len(self.contents()), 20)
        # Opened by a held Return, the list of delivered codesets adds none on its own.
        self.push(window, "Add bundled")
        selector = program.window("Select one to add")
        selector.press("Escape")
        selector.expect_closed()
        with display.held("Return"):
            program.window("Select one to add")
            settle(1.5)
        self.assertTrue(program.window("Select one to add").is_open)
        self.assertEqual(len(self.contents()), 20)

    def test_the_bundled_list(self):
        program, window = self.open()
        for choose in ("Return", "double click"):
            window.button("Add bundled").act()
            selector = program.window("Select one to add")
            selector.list().expect_focus()
            if choose == "Return":
                display.press("Return")
                self.expect_message(program, "Error", "None selected.", "Close")
                selector.expect_active()
                selector.list().expect_focus()
                # The text is not at the beginning of the row.
                display.type_text("work")
                codesets = selector.list()
                program.wait(codesets.selected_texts, "the row to be found")
                self.assertRegex(codesets.selected_texts()[0], "^Works|paper")
                display.press("Escape")
                settle()
                display.press("Return")
            else:
                selector.list().row(METALS).click(times=2)
            selector.expect_closed()
        self.assertEqual(len(self.contents()), 2)

    def test_buttons_name_their_keys(self):
        self.put("wood.codeset", codeset("Wood", remarks=[("1", "One")]))
        _, window = self.open()
        keys = {
            "Add new": ("Ctrl+N", "Key: Ctrl+N"),
            "Refresh list": ("F5", "Key: F5"),
            "Edit": ("Return", "Key: Return (in the list)"),
            "Delete": ("Delete", "Key: Delete (in the list)"),
            "Clone": (None, ""),
            "Save a copy": (None, ""),
            "Add from file": (None, ""),
        }
        for name, (key, description) in keys.items():
            button = window.button(name)
            self.assertEqual(button.description, description)
            self.assertEqual(button.key, key)


class Codes(Lists):
    REMARKS = [(f"W{number}", f"Damage {number}") for number in range(1, 61)]

    def text(self, number):
        return f"W{number}. Damage {number}"

    def open_codes(self, remarks=None):
        self.put("wood.codeset", codeset("Wood", remarks=remarks or self.REMARKS))
        program, window = self.open()
        window.list().expect_focus()
        display.press("Down", "Return")
        editing = program.window("Edit remark codeset - wood.codeset")
        codes = editing.list("Remark codes")
        codes.focus()
        codes.expect_focus()
        return program, editing, codes

    def test_the_place_among_the_codes(self):
        program, editing, codes = self.open_codes()
        self.go_to(codes, 40)
        for number in (41, 42):
            display.press("Return")
            dialog = program.window("Edit remark code")
            dialog.field("Remark code").expect_focus()
            display.press("Return")
            dialog.expect_closed()
            self.expect_place(editing, codes, self.text(number), self.text(number + 1))
        # This time with the button, and with a code that moves the row to another place.
        self.push(editing, "Edit")
        dialog = program.window("Edit remark code")
        dialog.field("Remark code").expect_focus()
        display.press("ctrl+a")
        display.type_text("W7b\n")
        dialog.expect_closed()
        self.expect_place(editing, codes, "W7b. Damage 43", self.text(8))
        self.push(editing, "Add new")
        dialog = program.window("Edit remark code")
        display.type_text("W59b\tNew\n")
        dialog.expect_closed()
        editing.expect_active()
        settle()
        codes.expect_selected([])
        self.expect_row_in_view(codes, "W59b. New")
        editing.tab_to(codes, "shift+Tab")
        display.press("Down")
        codes.expect_selected([self.text(60)])
        # The last one; Space selects what has the cursor.
        display.press("Delete")
        self.expect_place(editing, codes, "W59b. New", "W59b. New")
        display.press("Home", "Delete")
        self.expect_place(editing, codes, self.text(2), self.text(3))
        self.assertEqual(len(codes), 59)

    def test_keys_of_the_list_of_codes(self):
        program, editing, codes = self.open_codes()
        codes.row(self.text(3)).click(times=2)
        settle(0.5)
        self.assertEqual(program.active_window(), editing)
        codes.expect_selected([self.text(3)])
        with display.held("Delete"):
            settle(1.5)
        self.assertEqual(len(codes), 59)
        codes.expect_selected([])
        display.press("space")
        codes.expect_selected([self.text(4)])
        settle()
        self.assertEqual(program.active_window(), editing)
        with display.held("Return"):
            dialog = program.window("Edit remark code")
            settle(0.3)
        dialog.press("Escape")
        dialog.expect_closed()
        codes.expect_selected([self.text(4)])
        editing.field(UK).focus()
        display.press("Delete", "Return")
        settle()
        self.assertEqual(program.active_window(), editing)
        self.assertEqual(len(codes), 59)

    def test_codes_are_found_by_what_they_contain(self):
        _, _, codes = self.open_codes(
            [
                ("A1", "Waxed"),
                ("B1", "Old Varnish, yellowed"),
                ("B2", "\xc9clat perdu"),
                ("C1", "Spot in the varnish"),
                ("Va", "Something"),
                ("X1", "Vanished"),
                ("X2", "Varnish"),
            ]
        )
        display.type_text("varnish")
        codes.expect_selected(["B1. Old Varnish, yellowed"])
        for key, text in (
            ("Down", "C1. Spot in the varnish"),
            ("Down", "X2. Varnish"),
            ("Down", "X2. Varnish"),
            ("Up", "C1. Spot in the varnish"),
        ):
            display.press(key)
            codes.expect_selected([text])
        display.press("Escape")
        settle()
        # Rows that begin with it come first, those that contain it after.
        display.type_text("va")
        codes.expect_selected(["Va. Something"])
        display.press("Down")
        codes.expect_selected(["X1. Vanished"])
        display.press("Escape")
        settle()
        display.type_text("eclat")
        codes.expect_selected(["B2. \xc9clat perdu"])


if __name__ == "__main__":
    main()
