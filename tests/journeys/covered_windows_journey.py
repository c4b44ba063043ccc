"""A window with another one over it: no request of the desktop closes it, no click reaches it, and
its contents stay."""

from support import MAIN_WINDOW, UK, Journey, WorkspaceJourney, codeset, main
from support import display
from support.waiting import settle
from support.widgets import Window

ASSISTANT = "Vantorelle Workspace Setup"

WOOD = codeset("Wood", "Vera", "2", [("W1", "Split")])
WOOD_TEXT = "Wood (Vera) 2"


class CoveredWindows(WorkspaceJourney):
    def expect_no_way_past(self, program, top):
        """Requests for the windows below the top one do nothing at all."""
        before = program.windows()
        covered = [window for window in before if window != top]
        for ask in (Window.ask_to_close, Window.ask_directly_to_close):
            for window in covered:
                ask(window)
            settle(0.3)
            program.wait(lambda: program.windows() == before, "the same windows as before")
        top.expect_active()

    def open_wood(self):
        self.wood = self.put("wood.codeset", WOOD)
        program, editing = self.open_editing("wood.codeset", WOOD_TEXT)
        editing.field(UK).enter("Changed")
        return program, editing

    def expect_unsaved_work(self, program, editing):
        self.expect_no_way_past(program, editing)
        editing.field(UK).expect_text("Changed")
        self.assertEqual(self.wood.read_bytes(), WOOD)

    def save_and_end(self, program, editing, remarks):
        editing.button("Save codeset").click()
        editing.expect_closed()
        self.assertEqual(self.wood.read_bytes(), codeset("Changed", "Vera", "2", remarks))
        window = program.window(MAIN_WINDOW)
        window.ask_to_close()
        program.expect_exit(0)

    def test_unsaved_work_after_a_dialog_that_was_cancelled(self):
        program, editing = self.open_wood()
        self.expect_unsaved_work(program, editing)
        editing.button("Add new").click()
        remark = program.window("Edit remark code")
        self.expect_no_way_past(program, remark)
        remark.button("Cancel").click()
        remark.expect_closed()
        self.expect_unsaved_work(program, editing)
        self.save_and_end(program, editing, [("W1", "Split")])

    def test_unsaved_work_after_a_code_was_added(self):
        program, editing = self.open_wood()
        editing.button("Add new").click()
        remark = program.window("Edit remark code")
        remark.button("OK").click()
        error = program.dialog("Error")
        self.expect_no_way_past(program, error)
        error.answer("Close")
        self.expect_no_way_past(program, remark)
        remark.field("Remark code").type("W2")
        remark.field(UK).type("Worm")
        remark.button("OK").click()
        remark.expect_closed()
        self.expect_unsaved_work(program, editing)
        self.save_and_end(program, editing, [("W1", "Split"), ("W2", "Worm")])

    def test_unsaved_work_after_an_error_and_a_question(self):
        program, editing = self.open_wood()
        editing.list("Remark codes").row("W1. Split").select()
        editing.button("Delete").click()
        editing.button("Save codeset").click()
        error = program.dialog("Error")
        self.expect_no_way_past(program, error)
        error.answer("Close")
        self.expect_unsaved_work(program, editing)
        editing.ask_to_close()
        question = program.dialog("Really close?")
        self.expect_no_way_past(program, question)
        question.answer("Cancel")
        self.expect_unsaved_work(program, editing)
        editing.close()
        program.dialog("Really close?").answer("Close")
        self.end(program, program.window(MAIN_WINDOW))

    def test_a_name_after_an_error(self):
        program, window = self.open()
        window.button("Add new").click()
        naming = program.window("Add new")
        naming.field().enter("Bad.codeset")
        self.expect_no_way_past(program, naming)
        naming.button("OK").click()
        error = program.dialog("Error")
        self.expect_no_way_past(program, error)
        error.answer("Close")
        self.expect_no_way_past(program, naming)
        naming.field().expect_text("Bad.codeset")
        naming.ask_to_close()
        naming.expect_closed()
        self.end(program, window)

    def test_the_main_window_below_a_file_chooser_and_a_selector(self):
        program, window = self.open()
        for button, title in (
            ("Add from file", "Select a file to add"),
            ("Add bundled", "Select one to add"),
        ):
            window.button(button).click()
            above = program.window(title)
            self.expect_no_way_past(program, above)
            above.button("Cancel").click()
            above.expect_closed()
            window.expect_active()
        window.ask_to_close()
        program.expect_exit(0)

    def test_clicks_and_keys_for_a_covered_window(self):
        program, editing = self.open_wood()
        editing.button("Add new").click()
        remark = program.window("Edit remark code")
        remark.press("Escape")
        remark.expect_closed()
        editing.expect_active()
        editing.button("Add new").click()
        remark = program.window("Edit remark code")
        for button in ("Close", "Delete", "Save codeset"):
            editing.button(button).click_as_it_is()
        settle(0.3)
        remark.expect_active()
        display.type_text("W2")
        remark.field("Remark code").expect_text("W2")
        self.expect_no_way_past(program, remark)
        remark.press("Escape")
        remark.expect_closed()
        self.expect_unsaved_work(program, editing)
        self.save_and_end(program, editing, [("W1", "Split")])


class CoveredAssistant(Journey):
    def test_the_assistant_below_an_error_and_a_file_chooser(self):
        program = self.start_program()
        (self.home / "taken").mkdir()
        assistant = program.window(ASSISTANT)
        assistant.button("Next").click()
        assistant.button("Browse...").click()
        chooser = program.file_chooser()
        assistant.ask_to_close()
        settle(0.3)
        chooser.expect_active()
        chooser.cancel()
        assistant.expect_active()
        assistant.field("Workspace location").enter(str(self.home / "taken"))
        assistant.button("Apply").click()
        error = program.dialog("Error")
        assistant.ask_to_close()
        settle(0.3)
        error.expect_active()
        error.answer("Close")
        assistant.expect_active()
        assistant.ask_to_close()
        program.expect_exit(0)


if __name__ == "__main__":
    main()
