"""The main window: its list, and the effect of each button on the files in the workspace."""

import re

from support import MAIN_WINDOW, WorkspaceJourney, codeset, main
from support.journey import delivered_stage

NOTICE = "Some incompatible files found. They are marked with red in the list:"
RED = (65535, 0, 0)
BUTTONS = [
    "Add from file",
    "Add bundled",
    "Add new",
    "Clone",
    "Edit",
    "Save a copy",
    "Delete",
    "Refresh list",
]
BUNDLED_QUESTION = (
    "This item was bundled with Vantorelle. You might want to clone it first, "
    "to make your own independent copy.\n\n"
    "Proceed anyway?"
)

WOOD = codeset("Wood", "Vera", "2", [("W1", "Split")])
GLASS = codeset({"en-uk": "Glass", "sv": "Glas"}, version="1.5", remarks=[("G1", "Chip")])
# Texts of the root element before and after its elements, as other programs may write them.
SURROUNDED = (
    b"<codeset><name lang='sv'>N</name><![CDATA[a]]>"
    b"<remark><code>7</code><description lang='sv'>text</description></remark>"
    b"<![CDATA[b]]></codeset>"
)
METALS = re.compile(r"^Metals \(")


class ComponentManager(WorkspaceJourney):
    def file_name(self, window):
        return window.field("File name of selected item")

    def ask_to_delete(self, window, text):
        window.list().row(text).select()
        window.button("Delete").click()

    def refresh(self, program, window, *strange):
        """Refreshes a list of "Wood" and the incompatible files, which have no order."""
        window.button("Refresh list").click()
        program.wait(
            lambda: window.list().texts()[:-1] in (list(strange), list(reversed(strange))),
            lambda: f"the rows {strange!r}; they are {window.list().texts()!r}",
        )
        self.assertEqual(window.list().texts()[-1], "Wood (Vera) 2")
        self.assertEqual(NOTICE in window.labels(), bool(strange))
        self.expect_nothing_selected(window)

    # The list

    def test_the_list_at_the_start(self):
        self.put("wood.codeset", WOOD)
        self.put("GLASS.CODESET", GLASS)
        self.put("notes.txt", WOOD)
        self.put("x.codeset.bak", WOOD)
        (self.codesets / "folder.codeset").mkdir()
        program, window = self.open()
        window.list().expect_texts(["Glass 1.5", "Wood (Vera) 2"])
        window.list().expect_focus()
        self.expect_nothing_selected(window)
        self.assertEqual([button.name for button in window.find_all("push button")], BUTTONS)
        self.expect_sensitivity(
            window, Add_from_file=True, Add_bundled=True, Add_new=True, Refresh_list=True
        )
        self.assertEqual(window.labels(), ["File name of selected item:"])
        self.assertFalse(self.file_name(window).is_editable)

        window.list().row("Glass 1.5").select()
        self.file_name(window).expect_text("GLASS.CODESET")
        self.expect_sensitivity(window, Clone=True, Edit=True, Save_a_copy=True, Delete=True)
        window.list().row("Wood (Vera) 2").select()
        self.file_name(window).expect_text("wood.codeset")
        window.button("Refresh list").click()
        self.expect_nothing_selected(window)
        self.end(program, window)

    def test_the_list_in_the_users_language(self):
        self.put("glass.codeset", GLASS)
        _, window = self.open(VANTORELLE_USER_LANGUAGE="sv_SE")
        window.list().expect_texts(["Glas 1.5"])

    def test_texts_are_shown_as_they_are(self):
        texts = ['100 % <b>wood</b> & "%s"', "Ébène & chêne", "&amp;"]
        for number, text in enumerate(texts):
            self.put(f"{number}.codeset", codeset(text, "<i>%n</i>", remarks=[("1", "One")]))
        program, window = self.open()
        self.assertCountEqual(window.list().texts(), [f"{text} (<i>%n</i>)" for text in texts])
        self.ask_to_delete(window, f"{texts[0]} (<i>%n</i>)")
        self.expect_message(
            program,
            "Question",
            f'Do you really want to delete "{texts[0]} (<i>%n</i>)" from your workspace?',
            "No",
        )

    def test_incompatible_files_come_and_go(self):
        self.put("wood.codeset", WOOD)
        program, window = self.open()
        height = window.extents[3]
        strange = self.put("strange.codeset", b"a letter")
        window.list().expect_texts(["Wood (Vera) 2"])
        window.button("Refresh list").click()
        window.list().expect_texts(["strange.codeset", "Wood (Vera) 2"])
        self.assertIn(NOTICE, window.labels())
        self.assertEqual(window.list().row("strange.codeset").colour, RED)
        self.assertIsNone(window.list().row("Wood (Vera) 2").colour)
        marked = window.label(NOTICE)
        self.assertEqual(marked.text_attributes(NOTICE.index("red")).get("fg-color"), "65535,0,0")
        self.assertNotIn("fg-color", marked.text_attributes(0))
        program.wait(lambda: window.extents[3] > height, "the window to make room for the notice")

        window.list().row("strange.codeset").select()
        self.file_name(window).expect_text("strange.codeset")
        self.expect_sensitivity(window, Clone=True, Edit=True, Save_a_copy=True, Delete=True)
        self.delete(program, window, "strange.codeset")
        window.list().expect_texts(["Wood (Vera) 2"])
        self.assertFalse(strange.exists())
        self.assertNotIn(NOTICE, window.labels())
        program.wait(
            lambda: window.extents[3] == height, "the window to shrink to its former height"
        )
        self.expect_nothing_selected(window)

        (self.codesets / "a.codeset").write_bytes(b"")
        (self.codesets / "z.codeset").write_bytes(WOOD[: -1 - len("</codeset>")])
        self.refresh(program, window, "a.codeset", "z.codeset")
        (self.codesets / "a.codeset").unlink()
        self.refresh(program, window, "z.codeset")
        self.delete(program, window, "z.codeset", "Escape")
        self.refresh(program, window, "z.codeset")

    def test_the_window_shrinks_with_the_notice_unless_it_fills_the_screen(self):
        self.put("wood.codeset", WOOD)
        program, window = self.open()
        width, height = window.extents[2:]
        strange = self.put("z.codeset", b"")
        self.refresh(program, window, "z.codeset")
        window.resize(width + 100, height + 100)
        strange.unlink()
        self.refresh(program, window)
        program.wait(
            lambda: window.extents[2:] == (width, height), "the window to shrink to its first size"
        )
        filling = window.toggle_maximized()
        self.put("a.codeset", b"<codeset/>")
        self.refresh(program, window, "a.codeset")
        self.delete(program, window, "a.codeset")
        self.refresh(program, window)
        self.assertEqual(window.resting_extents(), filling)

    def test_an_incompatible_file_is_mended_outside(self):
        path = self.put("wood.codeset", WOOD[:-3])
        _, window = self.open()
        window.list().expect_texts(["wood.codeset"])
        window.label(NOTICE)
        path.write_bytes(WOOD)
        window.button("Refresh list").click()
        window.list().expect_texts(["Wood (Vera) 2"])
        self.assertIsNone(window.list().row("Wood (Vera) 2").colour)
        self.assertNotIn(NOTICE, window.labels())

    def test_an_incompatible_file_of_a_strange_name(self):
        name = "two\nlines\t<b>&.codeset"
        neighbours = {
            "two": b"2",
            "lines\t<b>&.codeset": WOOD,
            "two\nlines\t&lt;b&gt;&amp;.codeset": GLASS,
        }
        for other, data in {**neighbours, name: b"a letter"}.items():
            self.put(other, data)
        program, window = self.open()
        window.list().expect_texts([name, "Glass 1.5", "Wood (Vera) 2"])
        self.assertEqual(window.list().row(name).colour, RED)
        window.list().row(name).select()
        self.file_name(window).expect_text(name)
        question = f'Do you really want to delete "{name}" from your workspace?'
        for answer, left in (("No", {**neighbours, name: b"a letter"}), ("Yes", neighbours)):
            self.ask_to_delete(window, name)
            self.expect_message(program, "Question", question, answer)
            window.expect_active()
            self.expect_nothing_selected(window)
            self.assertEqual(self.contents(), left)
        window.list().expect_texts(["Glass 1.5", "Wood (Vera) 2"])
        self.assertNotIn(NOTICE, window.labels())

    def test_texts_around_elements_are_passed_over(self):
        self.put("surrounded.codeset", SURROUNDED)
        for _ in range(2):
            program, window = self.open()
            window.list().expect_texts(["N"])
            self.end(program, window)

        program, window = self.open()
        self.put("another.codeset", SURROUNDED.replace(b">N<", b">A<"))
        window.button("Refresh list").click()
        window.list().expect_texts(["A", "N"])

        source = self.folder / "added.codeset"
        source.write_bytes(SURROUNDED.replace(b">N<", b">B<"))
        window.button("Add from file").click()
        program.file_chooser("Select a file to add").choose(source)
        window.list().expect_texts(["A", "B", "N"])
        self.assertEqual((self.codesets / "added.codeset").read_bytes(), source.read_bytes())
        self.assertNotIn(NOTICE, window.labels())
        self.end(program, window)

    # Adding

    def test_add_from_file(self):
        self.put("wood.codeset", WOOD)
        elsewhere = self.folder / "else where"
        elsewhere.mkdir()
        (elsewhere / "glass.CodeSet").write_bytes(GLASS)
        (elsewhere / "a.txt").write_bytes(GLASS)
        program, window = self.open()

        window.button("Add from file").click()
        chooser = program.file_chooser("Select a file to add")
        self.assertEqual(chooser.filter, "Remark codeset files")
        self.assertEqual(chooser.filters, ["Remark codeset files", "All files"])
        chooser.cancel()
        window.expect_active()
        window.list().expect_texts(["Wood (Vera) 2"])

        window.button("Add from file").click()
        program.file_chooser("Select a file to add").choose(elsewhere / "a.txt")
        self.expect_message(program, "Error", 'The file name must end with ".codeset".', "Close")
        self.assertEqual(self.contents(), {"wood.codeset": WOOD})

        # The folder was used before, so the chooser begins there.
        window.button("Add from file").click()
        chooser = program.file_chooser("Select a file to add")
        program.wait(
            lambda: chooser.folder == elsewhere.name,
            lambda: f"the last used folder; it is {chooser.folder!r}",
        )
        chooser.choose(elsewhere / "glass.CodeSet")
        window.list().expect_texts(["Glass 1.5", "Wood (Vera) 2"])
        self.assertEqual(self.contents(), {"wood.codeset": WOOD, "glass.CodeSet": GLASS})
        self.expect_nothing_selected(window)

    def test_adding_asks_before_it_overwrites(self):
        own = self.put("glass.codeset", WOOD)
        source = self.folder / "glass.codeset"
        source.write_bytes(GLASS)
        program, window = self.open()
        question = 'Really overwrite "Wood (Vera) 2" with "Glass 1.5"?'
        for answer in ("No", "Escape", "alt+F4"):
            window.button("Add from file").click()
            program.file_chooser().choose(source)
            self.expect_message(program, "Question", question, answer)
            window.list().expect_texts(["Wood (Vera) 2"])
            self.assertEqual(own.read_bytes(), WOOD)
        window.button("Add from file").click()
        program.file_chooser().choose(source)
        self.expect_message(program, "Question", question, "Yes")
        window.list().expect_texts(["Glass 1.5"])
        self.assertEqual(own.read_bytes(), GLASS)
        self.assertEqual(source.read_bytes(), GLASS)

    def test_adding_over_and_from_a_file_without_a_text(self):
        own = self.put("odd.codeset", b"old")
        source = self.folder / "odd.codeset"
        source.write_bytes(b"new <b>")
        program, window = self.open()
        window.button("Add from file").click()
        program.file_chooser().choose(source)
        self.expect_message(
            program, "Question", f'Really overwrite "{own}" with "{source}"?', "Yes"
        )
        program.wait(lambda: own.read_bytes() == b"new <b>", "the file to be overwritten")
        window.list().expect_texts(["odd.codeset"])
        window.label(NOTICE)

    def test_add_bundled(self):
        program, window = self.open()
        delivered = delivered_stage() / "codesets"
        window.button("Add bundled").click()
        selector = program.window("Select one to add")
        selector.list().expect_focus()
        selector.list().expect_selected([])
        texts = selector.list().texts()
        self.assertEqual(len(texts), len(list(delivered.glob("*.codeset"))))
        self.assertEqual(texts, sorted(texts))
        selector.button("OK").click()
        self.expect_message(program, "Error", "None selected.", "Close")
        self.assertTrue(selector.is_open)
        selector.button("Cancel").click()
        selector.expect_closed()
        self.assertEqual(self.contents(), {})

        metals = (delivered / "metals.codeset").read_bytes()
        window.button("Add bundled").click()
        selector = program.window("Select one to add")
        selector.list().row(METALS).select()
        selector.button("OK").click()
        selector.expect_closed()
        window.list().row(METALS)
        self.assertEqual(self.contents(), {"metals.codeset": metals})

        own = self.put("metals.codeset", GLASS)
        text = next(text for text in texts if METALS.search(text))
        for answer, expected in (("No", GLASS), ("Yes", metals)):
            window.button("Add bundled").click()
            selector = program.window("Select one to add")
            selector.list().row(METALS).select()
            selector.button("OK").click()
            self.expect_message(
                program, "Question", f'Really overwrite "Glass 1.5" with "{text}"?', answer
            )
            window.expect_active()
            self.assertEqual(own.read_bytes(), expected)

    def test_a_stage_with_odd_delivered_files(self):
        stage = self.copy_stage()
        for path in (stage / "codesets").iterdir():
            path.unlink()
        (stage / "codesets" / "broken.codeset").write_bytes(b"broken")
        (stage / "codesets" / "readme.txt").write_bytes(WOOD)
        program, window = self.open(stage=stage)
        window.button("Add bundled").click()
        selector = program.window("Select one to add")
        selector.list().expect_texts(["broken.codeset"])
        self.assertIsNone(selector.list().row("broken.codeset").colour)
        selector.list().row("broken.codeset").select()
        selector.button("OK").click()
        selector.expect_closed()
        window.list().expect_texts(["broken.codeset"])
        self.assertEqual(self.contents(), {"broken.codeset": b"broken"})

        (stage / "codesets").rename(stage / "moved")
        window.button("Add bundled").click()
        selector = program.window("Select one to add")
        selector.list().expect_texts([])
        selector.button("OK").click()
        self.expect_message(program, "Error", "None selected.", "Close")
        selector.close()
        selector.expect_closed()
        window.expect_active()

    # Making new ones

    def test_add_new(self):
        program, window = self.open()
        window.button("Add new").click()
        naming = program.window("Add new")
        naming.field().enter("mine.codeset")
        naming.press("Return")
        editing = program.window("Edit remark codeset - mine.codeset")
        self.assertFalse((self.codesets / "mine.codeset").exists())
        editing.field("English/United Kingdom [en-uk]").expect_focus()
        editing.field("English/United Kingdom [en-uk]").type("Mine")
        editing.button("Add new").click()
        dialog = program.window("Edit remark code")
        dialog.field("Remark code").type("M1")
        dialog.field("English/United Kingdom [en-uk]").type("Worn")
        dialog.press("Return")
        dialog.expect_closed()
        editing.button("Save codeset").click()
        editing.expect_closed()
        window.list().expect_texts(["Mine"])
        self.assertEqual(
            self.contents(), {"mine.codeset": codeset("Mine", remarks=[("M1", "Worn")])}
        )

    def test_cancelling_add_new_refreshes_the_list(self):
        program, window = self.open()
        self.put("wood.codeset", WOOD)
        window.button("Add new").click()
        program.window("Add new").button("Cancel").click()
        window.list().expect_texts(["Wood (Vera) 2"])
        window.button("Add new").click()
        naming = program.window("Add new")
        naming.field().enter("mine.codeset")
        naming.press("Return")
        editing = program.window("Edit remark codeset - mine.codeset")
        editing.button("Close").click()
        self.expect_message(
            program,
            "Really close?",
            "Are you sure you want to close the codeset without saving?",
            "Close",
        )
        editing.expect_closed()
        self.assertEqual(self.contents(), {"wood.codeset": WOOD})

    def test_clone(self):
        self.put("wood.codeset", WOOD)
        self.put("strange.codeset", b"\x00strange\xff")
        program, window = self.open()
        window.list().row("strange.codeset").select()
        window.button("Clone").click()
        naming = program.window("Add new")
        naming.button("Cancel").click()
        naming.expect_closed()
        self.expect_nothing_selected(window)
        for text, name in (
            ("strange.codeset", "copy.codeset"),
            ("Wood (Vera) 2", "wood_2.codeset"),
        ):
            window.list().row(text).select()
            window.button("Clone").click()
            naming = program.window("Add new")
            naming.field().enter(name)
            naming.button("OK").click()
            naming.expect_closed()
            self.expect_nothing_selected(window)
        self.assertCountEqual(
            window.list().texts(),
            ["copy.codeset", "strange.codeset", "Wood (Vera) 2", "Wood (Vera) 2"],
        )
        self.assertEqual(
            self.contents(),
            {
                "wood.codeset": WOOD,
                "wood_2.codeset": WOOD,
                "strange.codeset": b"\x00strange\xff",
                "copy.codeset": b"\x00strange\xff",
            },
        )

    def test_cloning_a_file_that_is_gone(self):
        path = self.put("wood.codeset", WOOD)
        program, window = self.open()
        window.list().row("Wood (Vera) 2").select()
        path.unlink()
        window.button("Clone").click()
        naming = program.window("Add new")
        naming.field().enter("copy.codeset")
        naming.button("OK").click()
        self.expect_message(program, "Error", "An error occured when copying the file.", "Close")
        window.list().expect_texts([])
        self.assertEqual(self.contents(), {})

    # Editing

    def test_editing_a_bundled_file_asks_first(self):
        metals = (delivered_stage() / "codesets" / "metals.codeset").read_bytes()
        path = self.put("metals.codeset", metals)
        self.put("metals_2.codeset", metals.replace(b">Metals<", b">Mine<"))
        program, window = self.open()
        for answer in ("No", "Escape", "alt+F4"):
            window.list().row(METALS).select()
            window.button("Edit").click()
            self.expect_message(program, "Question", BUNDLED_QUESTION, answer)
            window.expect_active()
            self.expect_nothing_selected(window)
        window.list().row(METALS).select()
        window.button("Edit").click()
        self.expect_message(program, "Question", BUNDLED_QUESTION, "Yes")
        self.leave_editing(program, program.window("Edit remark codeset - metals.codeset"))
        # The same content under a name that was not delivered, and one byte more: no question.
        window.list().row(re.compile("^Mine ")).select()
        window.button("Edit").click()
        self.leave_editing(program, program.window("Edit remark codeset - metals_2.codeset"))
        path.write_bytes(metals + b"\n")
        window.list().row(METALS).select()
        window.button("Edit").click()
        self.leave_editing(program, program.window("Edit remark codeset - metals.codeset"))
        self.assertEqual(path.read_bytes(), metals + b"\n")

    def leave_editing(self, program, editing):
        self.close_without_saving(program, editing)
        program.window(MAIN_WINDOW)

    def test_double_clicking_a_row_edits_it(self):
        self.put("glass.codeset", GLASS)
        self.put("wood.codeset", WOOD)
        program, window = self.open()
        window.list().row("Wood (Vera) 2").click(times=2)
        self.leave_editing(program, program.window("Edit remark codeset - wood.codeset"))
        self.expect_nothing_selected(window)

    # Saving a copy

    def test_save_a_copy(self):
        self.put("wood.codeset", WOOD)
        target = self.folder / "target"
        target.mkdir()
        taken = target / "taken.codeset"
        taken.write_bytes(b"taken")
        program, window = self.open()

        def save_as():
            window.list().row("Wood (Vera) 2").select()
            window.button("Save a copy").click()
            return program.file_chooser("Save As")

        chooser = save_as()
        self.assertEqual(chooser.proposed_name, "wood.codeset")
        self.assertEqual(chooser.filter, "Remark codeset files")
        self.assertEqual(chooser.filters, ["Remark codeset files", "All files"])
        chooser.cancel()
        window.expect_active()
        self.assertEqual(self.contents(target), {"taken.codeset": b"taken"})

        save_as().choose(target / "copy of wood.txt")
        self.expect_nothing_selected(window)
        self.assertEqual((target / "copy of wood.txt").read_bytes(), WOOD)

        for answer, expected in (("Cancel", b"taken"), ("Replace", WOOD)):
            chooser = save_as()
            program.wait(lambda chooser=chooser: chooser.folder == "target", "the last used folder")
            chooser.accept(taken)
            question = program.dialog()
            self.assertIn(
                "A file named “taken.codeset” already exists.  Do you want to replace it?",
                question.message,
            )
            question.answer(answer)
            if answer == "Cancel":
                chooser.expect_active()
                chooser.cancel()
            chooser.expect_closed()
            window.expect_active()
            self.assertEqual(taken.read_bytes(), expected)
        self.assertEqual(self.contents(), {"wood.codeset": WOOD})

    def test_a_copy_that_cannot_be_written(self):
        self.put("wood.codeset", WOOD)
        program, window = self.open()
        window.list().row("Wood (Vera) 2").select()
        window.button("Save a copy").click()
        # A folder in which no file can be created.
        program.file_chooser("Save As").choose("/proc/copy.codeset")
        self.expect_message(
            program,
            "Error",
            "An error occured when saving the copy of the file.\n\n/proc/copy.codeset",
            "Close",
        )
        self.expect_nothing_selected(window)

    def test_a_copy_onto_itself_keeps_the_file(self):
        path = self.put("wood.codeset", WOOD)
        program, window = self.open()
        window.list().row("Wood (Vera) 2").select()
        window.button("Save a copy").click()
        chooser = program.file_chooser("Save As")
        chooser.accept(path)
        program.dialog().answer("Replace")
        chooser.expect_closed()
        dialogs = [w for w in program.windows() if w.title == "Error"]
        for dialog in dialogs:
            dialog.answer("Close")
        window.expect_active()
        self.assertEqual(path.read_bytes(), WOOD)

    # Deleting

    def test_delete(self):
        wood = self.put("wood.codeset", WOOD)
        self.put("glass.codeset", GLASS)
        program, window = self.open()
        question = 'Do you really want to delete "Wood (Vera) 2" from your workspace?'
        for answer in ("No", "Escape", "alt+F4"):
            self.ask_to_delete(window, "Wood (Vera) 2")
            self.expect_message(program, "Question", question, answer)
            window.expect_active()
            self.expect_nothing_selected(window)
            self.assertTrue(wood.exists())
        self.ask_to_delete(window, "Wood (Vera) 2")
        self.expect_message(program, "Question", question, "Yes")
        window.list().expect_texts(["Glass 1.5"])
        self.expect_nothing_selected(window)
        self.assertEqual(self.contents(), {"glass.codeset": GLASS})

    def test_deleting_a_missing_file_and_one_that_cannot_be_deleted(self):
        path = self.put("wood.codeset", WOOD)
        program, window = self.open()
        question = 'Do you really want to delete "Wood (Vera) 2" from your workspace?'
        self.ask_to_delete(window, "Wood (Vera) 2")
        path.unlink()
        self.expect_message(program, "Question", question, "Yes")
        window.list().expect_texts([])
        path.write_bytes(WOOD)
        window.button("Refresh list").click()
        self.ask_to_delete(window, "Wood (Vera) 2")
        path.unlink()
        path.mkdir()
        self.expect_message(program, "Question", question, "Yes")
        self.expect_message(program, "Error", f"Couldn't delete the file.\n\n{path}", "Close")
        window.list().expect_texts([])
        self.assertTrue(path.is_dir())

    # The folder itself

    def test_the_folder_is_removed_while_the_program_runs(self):
        wood = self.put("wood.codeset", WOOD)
        source = self.folder / "glass.codeset"
        source.write_bytes(GLASS)
        program, window = self.open()
        window.list().row("Wood (Vera) 2").select()
        wood.unlink()
        self.codesets.rmdir()
        window.button("Refresh list").click()
        window.list().expect_texts([])
        self.expect_nothing_selected(window)
        window.button("Add from file").click()
        program.file_chooser().choose(source)
        window.list().expect_texts(["Glass 1.5"])
        self.assertEqual(self.contents(), {"glass.codeset": GLASS})
        self.assertEqual(self.codesets.stat().st_mode & 0o777, 0o700)

        (self.codesets / "glass.codeset").unlink()
        self.codesets.rmdir()
        self.codesets.write_bytes(b"in the way")
        window.button("Add from file").click()
        program.file_chooser().choose(source)
        self.expect_message(
            program,
            "Error",
            "The workspace fonts folder does not exist and could not be created.",
            "Close",
        )
        window.list().expect_texts([])
        self.assertEqual(self.codesets.read_bytes(), b"in the way")
        self.end(program, window)


if __name__ == "__main__":
    main()
