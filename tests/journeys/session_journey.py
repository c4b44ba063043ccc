"""From the start to the main window, or not: the assistant's answers, and workspaces and settings
that are not as they should be."""

from xml.etree import ElementTree

from support import MAIN_WINDOW, Journey, main

ASSISTANT = "Vantorelle Workspace Setup"
TAKEN = "There is already a folder or a file with that name.\n\nPlease choose a new location."
SUB_FOLDERS = ["codesets", "documents", "layouts", "templates"]


class Session(Journey):
    def setUp(self):
        super().setUp()
        self.pointer_file = self.home / ".config" / "vantorelle" / "vantorelle.xml"
        self.default_workspace = self.home / "Vantorelle Workspace"

    def write_pointer_file(self, text):
        self.pointer_file.parent.mkdir(parents=True)
        self.pointer_file.write_text(text)

    def saved_path(self):
        return ElementTree.parse(self.pointer_file).getroot().find("workspace").get("path")

    def sub_folders(self, workspace):
        return sorted(path.name for path in workspace.iterdir())

    def apply(self, assistant, location):
        """From the first page: enters the location and applies."""
        assistant.button("Next").click()
        assistant.field("Workspace location").enter(str(location))
        assistant.button("Apply").click()

    def expect_refusal(self, program, assistant, message):
        """The message, and the first page again."""
        refusal = program.dialog("Error")
        self.assertEqual(refusal.message, message)
        refusal.answer("Close")
        assistant.button("Next").expect_sensitive()

    def finish(self, program, assistant):
        assistant.button("Close").click()
        program.window(MAIN_WINDOW).close()
        program.expect_exit(0)

    def cancel(self, program, assistant):
        assistant.button("Cancel").click()
        program.expect_exit(0)

    # The assistant

    def test_a_cancelled_assistant_ends_the_program_silently(self):
        program = self.start_program()
        assistant = program.window(ASSISTANT)
        self.assertEqual(program.windows(), [assistant])
        self.cancel(program, assistant)
        self.assertEqual(program.printed, "")
        self.assertFalse(self.default_workspace.exists())
        self.assertFalse(self.pointer_file.exists())

    def test_a_closed_assistant_ends_the_program_silently(self):
        program = self.start_program()
        assistant = program.window(ASSISTANT)
        assistant.button("Next").click()
        assistant.field("Workspace location").expect_text(str(self.default_workspace))
        assistant.close()
        program.expect_exit(0)
        self.assertFalse(self.default_workspace.exists())

    def test_a_taken_place_is_refused_and_another_can_be_chosen(self):
        program = self.start_program()
        assistant = program.window(ASSISTANT)
        taken = self.home / "taken"
        taken.mkdir()
        (taken / "kept.txt").write_text("kept")
        self.apply(assistant, taken)
        self.expect_refusal(program, assistant, TAKEN)
        self.apply(assistant, taken / "kept.txt")
        self.expect_refusal(program, assistant, TAKEN)
        self.assertEqual(self.sub_folders(taken), ["kept.txt"])
        self.assertEqual((taken / "kept.txt").read_text(), "kept")
        self.apply(assistant, taken / "new")
        self.finish(program, assistant)
        self.assertEqual(self.sub_folders(taken / "new"), SUB_FOLDERS)
        self.assertEqual(self.saved_path(), str(taken / "new"))

    def test_blanks_and_delimiters_around_the_location_are_ignored(self):
        program = self.start_program()
        assistant = program.window(ASSISTANT)
        workspace = self.home / "my  place"
        self.apply(assistant, f"  {workspace}//  ")
        self.finish(program, assistant)
        self.assertEqual(self.saved_path(), str(workspace))
        self.assertEqual(self.sub_folders(workspace), SUB_FOLDERS)

    def test_a_missing_parent_is_not_made(self):
        program = self.start_program()
        assistant = program.window(ASSISTANT)
        self.apply(assistant, self.home / "missing" / "place")
        self.expect_refusal(
            program, assistant, "Creating a workspace at the chosen location failed."
        )
        self.assertFalse((self.home / "missing").exists())
        self.assertFalse(self.pointer_file.exists())
        assistant.button("Next").click()
        assistant.field("Workspace location").expect_text(str(self.home / "missing" / "place"))
        self.cancel(program, assistant)

    def test_a_place_below_a_file_cannot_be_reached(self):
        program = self.start_program()
        assistant = program.window(ASSISTANT)
        (self.home / "file").write_text("kept")
        self.apply(assistant, self.home / "file" / "place")
        self.expect_refusal(
            program,
            assistant,
            "Cannot access the specified location.\n\nCannot get file status.\n\n"
            "Error 20: Not a directory",
        )
        self.assertEqual((self.home / "file").read_text(), "kept")
        self.cancel(program, assistant)

    # Workspaces

    def test_the_default_place_is_opened_without_a_pointer_file(self):
        self.default_workspace.mkdir()
        program = self.start_program()
        program.window(MAIN_WINDOW).close()
        program.expect_exit(0)
        self.assertEqual(self.sub_folders(self.default_workspace), SUB_FOLDERS)
        self.assertFalse(self.pointer_file.exists())

    def test_a_pointer_file_to_a_vanished_folder_brings_the_assistant(self):
        # The program does not use the default folder in place of the missing one.
        self.default_workspace.mkdir()
        self.write_pointer_file(f'<vantorelle><workspace path="{self.home}/gone/"/></vantorelle>')
        program = self.start_program()
        assistant = program.window(ASSISTANT)
        self.apply(assistant, self.home / "new")
        self.finish(program, assistant)
        self.assertEqual(self.saved_path(), str(self.home / "new"))
        self.assertEqual(self.sub_folders(self.default_workspace), [])

    def test_a_malformed_pointer_file_is_like_none(self):
        self.default_workspace.mkdir()
        self.write_pointer_file("<vantorelle><workspace")
        program = self.start_program()
        program.window(MAIN_WINDOW).close()
        program.expect_exit(0)
        self.assertEqual(self.pointer_file.read_text(), "<vantorelle><workspace")

    def test_a_file_in_place_of_a_sub_folder_brings_the_assistant(self):
        self.default_workspace.mkdir()
        (self.default_workspace / "codesets").write_text("kept")
        program = self.start_program()
        assistant = program.window(ASSISTANT)
        assistant.button("Next").click()
        assistant.button("Apply").click()
        self.expect_refusal(program, assistant, TAKEN)
        self.cancel(program, assistant)
        self.assertEqual((self.default_workspace / "codesets").read_text(), "kept")

    # Settings

    def test_malformed_settings_cause_one_warning(self):
        self.default_workspace.mkdir()
        (self.default_workspace / "settings.xml").write_text("<settings")
        program = self.start_program()
        warning = program.dialog("Warning")
        self.assertEqual(
            warning.message, "Something went wrong when reading your personal settings."
        )
        warning.button("Close").click()
        window = program.window(MAIN_WINDOW)
        self.assertEqual(program.windows(), [window])
        window.close()
        program.expect_exit(0)
        self.assertEqual((self.default_workspace / "settings.xml").read_text(), "<settings")

    def test_settings_decide_the_language_of_the_list(self):
        (self.default_workspace / "codesets").mkdir(parents=True)
        (self.default_workspace / "codesets" / "a.codeset").write_text(
            '<codeset><name lang="de">Papier &lt;b&gt; &amp; 100%s</name>'
            '<name lang="sv">Papper</name>'
            '<remark><code>1</code><description lang="de">Riss</description></remark></codeset>'
        )
        (self.default_workspace / "settings.xml").write_text(
            '<settings><preferred-languages><language tag="de"/></preferred-languages></settings>'
        )
        program = self.start_program(VANTORELLE_USER_LANGUAGE="sv")
        window = program.window(MAIN_WINDOW)
        window.list().expect_texts(["Papier <b> & 100%s"])
        window.close()
        program.expect_exit(0)


if __name__ == "__main__":
    main()
