"""Disturbances of the running program: a second program on the same workspace, a sudden end,
files and folders that appear, vanish and change. And every way out of every dialog."""

import os
import re
import resource
import shutil
import signal
import socket

from support import MAIN_WINDOW, RESTORE, UK, Journey, WorkspaceJourney, codeset, main

ASSISTANT = "Vantorelle Workspace Setup"
NOTICE = "Some incompatible files found. They are marked with red in the list:"
RED = (65535, 0, 0)
NO_FOLDER = "The workspace fonts folder does not exist and could not be created."
NO_CODES = "There must be at least one remark code in the codeset."
TOO_SHORT = 'The file name must contain at least one character and then end with ".codeset"'
OVERWRITE = 'Really overwrite "Wood (Vera) 2" with "Glass 1.5"?'

# A window's own button, the key, and the window manager's.
WAYS_OUT = ("Cancel", "Escape", "alt+F4")
ANSWERS = ("Close", "Escape", "alt+F4")

WOOD = codeset("Wood", "Vera", "2", [("W1", "Split"), ("W2", "Worm")])
GLASS = codeset("Glass", version="1.5", remarks=[("G1", "Chip")])
WOOD_TEXT = "Wood (Vera) 2"
GLASS_TEXT = "Glass 1.5"

# The entries that put_hostile_entries() makes. Only the target of MEMORY is a regular file.
MEMORY = "memory.codeset"
HOSTILE_ENTRIES = [
    MEMORY,
    "dangling.codeset",
    "endless.codeset",
    "loop.codeset",
    "pipe.codeset",
    "socket.codeset",
]


def tree(folder):
    """Everything below the folder: the bytes of each file, None for a folder."""
    return {
        str(path.relative_to(folder)): path.read_bytes() if path.is_file() else None
        for path in folder.rglob("*")
    }


class Robustness(WorkspaceJourney):
    def push(self, window, button, row=None):
        """Presses a button, with that row selected, in whichever program the window belongs to."""
        window.activate()
        if row is not None:
            window.list().row(row).select()
        window.button(button).click()

    def name_new(self, program, window, button, name, row=None):
        """The window that asks for a name, filled in."""
        self.push(window, button, row)
        naming = program.window("Add new")
        naming.field().enter(name)
        return naming

    def add_file(self, program, window, path):
        self.push(window, "Add from file")
        program.file_chooser("Select a file to add").choose(path)

    def save_copy(self, program, window, row, path):
        self.push(window, "Save a copy", row)
        program.file_chooser("Save As").accept(path)

    def outside(self, name, data):
        """A file outside the workspace."""
        path = self.folder / name
        path.write_bytes(data)
        return path

    # Two programs on one workspace

    def test_each_program_sees_what_the_other_did_after_its_next_action(self):
        self.put("wood.codeset", WOOD)
        self.put("glass.codeset", GLASS)
        program, window = self.open()
        other, other_window = self.open()
        window.activate()
        window.list().row(WOOD_TEXT).select()
        self.delete(other, other_window, WOOD_TEXT)
        other_window.list().expect_texts([GLASS_TEXT])
        # The first program continues normally.
        window.activate()
        window.list().expect_selected([WOOD_TEXT])
        window.field("File name of selected item").expect_text("wood.codeset")
        self.expect_sensitivity(window, Clone=True, Edit=True, Save_a_copy=True, Delete=True)
        window.button("Refresh list").click()
        window.list().expect_texts([GLASS_TEXT])
        self.expect_nothing_selected(window)

        self.name_new(other, other_window, "Clone", "copy.codeset", GLASS_TEXT).press("Return")
        other_window.list().expect_texts([GLASS_TEXT] * 2)
        self.delete(program, window, GLASS_TEXT, "No")
        window.list().expect_texts([GLASS_TEXT] * 2)
        self.expect_nothing_selected(window)
        self.assertEqual(self.contents(), {"glass.codeset": GLASS, "copy.codeset": GLASS})
        other_window.activate()
        self.end(other, other_window)
        window.activate()
        self.end(program, window)

    def test_files_that_the_other_program_has_deleted(self):
        self.put("wood.codeset", WOOD)
        taken = self.outside("taken.codeset", b"taken")
        program, window = self.open()
        other, other_window = self.open()

        def delete_behind_the_back():
            self.put("wood.codeset", WOOD)
            for either in (window, other_window):
                self.push(either, "Refresh list")
            window.list().row(WOOD_TEXT).select()
            self.delete(other, other_window, WOOD_TEXT)
            self.assertEqual(self.contents(), {})

        delete_behind_the_back()
        self.name_new(program, window, "Clone", "copy.codeset").press("Return")
        self.expect_message(program, "Error", "An error occured when copying the file.", "Escape")
        self.expect_nothing_selected(window)

        delete_behind_the_back()
        self.save_copy(program, window, None, taken)
        program.dialog("Question").answer("Replace")
        self.expect_message(
            program,
            "Error",
            f"An error occured when saving the copy of the file.\n\n{taken}",
            "alt+F4",
        )
        self.assertEqual(taken.read_bytes(), b"taken")
        self.expect_nothing_selected(window)

        delete_behind_the_back()
        self.delete(program, window, WOOD_TEXT)
        window.activate()
        window.list().expect_texts([])

        delete_behind_the_back()
        self.push(window, "Edit")
        editing = program.window("Edit remark codeset - wood.codeset")
        self.assertEqual([field.text for field in editing.fields()], [""] * 4)
        editing.list("Remark codes").expect_texts([])
        self.close_without_saving(program, editing)
        self.assertEqual(self.contents(), {})

    def test_files_that_the_other_program_has_replaced(self):
        path = self.put("wood.codeset", WOOD)
        source = self.outside("wood.codeset", GLASS)
        program, window = self.open()
        other, other_window = self.open()
        window.activate()
        window.list().row(WOOD_TEXT).select()
        self.add_file(other, other_window, source)
        self.expect_message(other, "Question", OVERWRITE, "Yes")
        other_window.list().expect_texts([GLASS_TEXT])
        # The question names what the list shows; what is edited and copied is what is there.
        self.delete(program, window, WOOD_TEXT, "No")
        window.list().expect_texts([GLASS_TEXT])
        self.put("wood.codeset", WOOD)
        window.button("Refresh list").click()
        window.list().row(WOOD_TEXT).select()
        path.write_bytes(GLASS)
        editing = self.edit(program, window, WOOD_TEXT, "wood.codeset")
        self.assertEqual([field.text for field in editing.fields()][:3], ["Glass", "", "1.5"])
        editing.list("Remark codes").expect_texts(["G1. Chip"])
        self.close_without_saving(program, editing)
        window.list().expect_texts([GLASS_TEXT])
        self.assertEqual(self.contents(), {"wood.codeset": GLASS})

    def test_both_programs_save_the_same_codeset(self):
        self.put("wood.codeset", WOOD)
        program, window = self.open()
        other, other_window = self.open()
        editing = self.edit(program, window, WOOD_TEXT, "wood.codeset")
        other_editing = self.edit(other, other_window, WOOD_TEXT, "wood.codeset")
        editing.activate()
        editing.field(UK).enter("Timber")
        other_editing.activate()
        other_editing.field("Version").enter("3")
        self.save(editing)
        self.assertEqual(
            self.contents(),
            {"wood.codeset": codeset("Timber", "Vera", "2", [("W1", "Split"), ("W2", "Worm")])},
        )
        # The last save wins: the file has everything from that window and nothing from the other.
        self.save(other_editing)
        both = {"wood.codeset": codeset("Wood", "Vera", "3", [("W1", "Split"), ("W2", "Worm")])}
        self.assertEqual(self.contents(), both)
        other_window.list().expect_texts(["Wood (Vera) 3"])
        window.activate()
        window.list().expect_texts(["Timber (Vera) 2"])
        window.button("Refresh list").click()
        window.list().expect_texts(["Wood (Vera) 3"])
        self.assertEqual(self.contents(), both)

    def test_the_other_program_deletes_the_edited_file(self):
        self.put("wood.codeset", WOOD)
        program, window = self.open()
        other, other_window = self.open()
        editing = self.edit(program, window, WOOD_TEXT, "wood.codeset")
        self.delete(other, other_window, WOOD_TEXT)
        self.assertEqual(self.contents(), {})
        editing.activate()
        editing.list("Remark codes").row("W2. Worm").select()
        editing.button("Delete").click()
        self.save(editing)
        self.assertEqual(
            self.contents(), {"wood.codeset": codeset("Wood", "Vera", "2", [("W1", "Split")])}
        )
        window.list().expect_texts([WOOD_TEXT])

    def test_both_programs_take_the_same_name(self):
        self.put("wood.codeset", WOOD)
        program, window = self.open()
        other, other_window = self.open()
        naming = self.name_new(program, window, "Clone", "mine.codeset", WOOD_TEXT)
        self.name_new(other, other_window, "Clone", "mine.codeset", WOOD_TEXT).press("Return")
        other_window.list().expect_texts([WOOD_TEXT] * 2)
        naming.activate()
        naming.button("OK").click()
        self.expect_message(
            program, "Error", f'That file name is already taken for "{WOOD_TEXT}"', "alt+F4"
        )
        naming.expect_active()
        naming.field().expect_text("mine.codeset")
        naming.field().enter("other.codeset")
        naming.press("Return")
        naming.expect_closed()
        window.list().expect_texts([WOOD_TEXT] * 3)
        self.assertEqual(
            self.contents(),
            {name: WOOD for name in ("wood.codeset", "mine.codeset", "other.codeset")},
        )

    # A sudden end

    def expect_untouched_by_killing(self, lead_to, leaves_draft=True):
        """`lead_to` brings a program to where it is killed. The workspace is as before, and the
        next start is as the first, but for the question about a draft of wood.codeset."""
        self.put("wood.codeset", WOOD)
        program, window = self.open()
        before = tree(self.workspace)
        lead_to(program, window)
        program.kill()
        self.assertEqual(tree(self.workspace), before)
        program, window = self.open()
        window.list().expect_texts([WOOD_TEXT])
        self.expect_nothing_selected(window)
        self.push(window, "Edit", WOOD_TEXT)
        if leaves_draft:
            self.expect_message(program, "Question", RESTORE, "No")
        editing = program.window("Edit remark codeset - wood.codeset")
        editing.list("Remark codes").expect_texts(["W1. Split", "W2. Worm"])
        self.save(editing)
        self.assertEqual(self.contents(), {"wood.codeset": WOOD})
        self.assertEqual(self.drafts(), [])
        self.end(program, window)

    def change(self, program, window):
        editing = self.edit(program, window, WOOD_TEXT, "wood.codeset")
        editing.field(UK).enter("Changed")
        program.wait(self.drafts, "a draft")
        editing.button(" + ").click()
        editing.list("Remark codes").row("W2. Worm").select()
        editing.button("Delete").click()
        editing.list("Remark codes").expect_texts(["W1. Split"])
        return editing

    def test_killed_while_editing(self):
        self.expect_untouched_by_killing(self.change)

    def test_killed_while_a_remark_dialog_is_open(self):
        def lead_to(program, window):
            editing = self.change(program, window)
            editing.list("Remark codes").row("W1. Split").select()
            editing.button("Edit").click()
            dialog = program.window("Edit remark code")
            dialog.field("Remark code").enter("X")

        self.expect_untouched_by_killing(lead_to)

    def test_killed_while_a_refusal_is_shown(self):
        def lead_to(program, window):
            editing = self.change(program, window)
            editing.list("Remark codes").row("W1. Split").select()
            editing.button("Delete").click()
            editing.button("Save codeset").click()
            self.assertEqual(program.dialog("Error").message, NO_CODES)

        self.expect_untouched_by_killing(lead_to)

    def test_killed_while_a_new_one_is_edited(self):
        def lead_to(program, window):
            self.name_new(program, window, "Add new", "mine.codeset").press("Return")
            program.window("Edit remark codeset - mine.codeset").field(UK).type("Mine")

        self.expect_untouched_by_killing(lead_to, leaves_draft=False)

    # Ways out

    def test_ways_out_of_the_choosers(self):
        self.put("wood.codeset", WOOD)
        program, window = self.open()
        before = tree(self.workspace)
        for way_out in WAYS_OUT:
            with self.subTest(way_out=way_out):
                # When cancelled, these two windows do not even change the selection.
                self.push(window, "Add from file", WOOD_TEXT)
                program.file_chooser("Select a file to add").leave(way_out)
                window.expect_active()
                self.push(window, "Add bundled")
                program.window("Select one to add").leave(way_out)
                window.expect_active()
                window.list().expect_selected([WOOD_TEXT])
                self.expect_sensitivity(
                    window, Clone=True, Edit=True, Save_a_copy=True, Delete=True
                )
                self.push(window, "Save a copy")
                program.file_chooser("Save As").leave(way_out)
                window.expect_active()
                self.expect_nothing_selected(window)
                self.assertEqual(program.windows(), [window])
        self.assertEqual(tree(self.workspace), before)

    def test_ways_out_of_the_refusals(self):
        self.put("wood.codeset", WOOD)
        program, window = self.open()
        for answer in ANSWERS:
            with self.subTest(answer=answer):
                self.push(window, "Add bundled")
                selector = program.window("Select one to add")
                selector.button("OK").click()
                self.expect_message(program, "Error", "None selected.", answer)
                selector.expect_active()
                selector.leave("Cancel")

                self.push(window, "Add new")
                naming = program.window("Add new")
                naming.press("Return")
                self.expect_message(program, "Error", TOO_SHORT, answer)
                naming.expect_active()
                naming.field().expect_focus()
                self.assertEqual((naming.field().text, naming.field().caret), (".codeset", 0))
                naming.leave("Cancel")

                editing = self.edit(program, window, WOOD_TEXT, "wood.codeset")
                editing.button("Add new").click()
                dialog = program.window("Edit remark code")
                for code, message in (
                    ("W1", "That code is already taken."),
                    ("W3", "Missing a description."),
                ):
                    dialog.field("Remark code").enter(code)
                    dialog.press("Return")
                    self.expect_message(program, "Error", message, answer)
                    dialog.expect_active()
                    dialog.field("Remark code").expect_focus()
                    dialog.field("Remark code").expect_text(code)
                dialog.leave("Cancel")
                editing.field(UK).clear()
                editing.button("Save codeset").click()
                self.expect_message(program, "Error", "The codeset must have a name.", answer)
                editing.expect_active()
                editing.field(UK).expect_text("")
                self.close_without_saving(program, editing)
        self.assertEqual(self.contents(), {"wood.codeset": WOOD})
        self.end(program, window)

    # A workspace that is not what it was

    def test_the_workspace_is_away_for_a_while(self):
        self.put("wood.codeset", WOOD)
        source = self.outside("glass.codeset", GLASS)
        program, window = self.open()
        window.list().row(WOOD_TEXT).select()
        moved = self.workspace.rename(self.home / "moved")
        self.name_new(program, window, "Clone", "copy.codeset").press("Return")
        self.expect_message(program, "Error", "An error occured when copying the file.", "Close")
        window.list().expect_texts([])
        self.expect_nothing_selected(window)
        # The program creates this folder, but not its parent.
        self.add_file(program, window, source)
        self.expect_message(program, "Error", NO_FOLDER, "Escape")
        self.push(window, "Add bundled")
        selector = program.window("Select one to add")
        selector.list().rows()[0].select()
        selector.button("OK").click()
        self.expect_message(program, "Error", NO_FOLDER, "alt+F4")
        self.assertFalse(self.workspace.exists())

        self.name_new(program, window, "Add new", "mine.codeset").press("Return")
        editing = program.window("Edit remark codeset - mine.codeset")
        editing.field(UK).type("Mine")
        editing.button("Add new").click()
        dialog = program.window("Edit remark code")
        dialog.field("Remark code").type("1")
        dialog.field(UK).type("One\n")
        dialog.expect_closed()
        editing.button("Save codeset").click()
        self.expect_message(
            program,
            "Error",
            "Cannot create file.\n\nCannot open file.\n\nError 2: No such file or directory",
            "Escape",
        )
        moved.rename(self.workspace)
        # The unsaved changes are still there, and so is the rest.
        self.save(editing)
        window.list().expect_texts(["Mine", WOOD_TEXT])
        self.assertEqual(
            self.contents(),
            {"wood.codeset": WOOD, "mine.codeset": codeset("Mine", remarks=[("1", "One")])},
        )
        self.end(program, window)

    def test_a_file_in_place_of_the_workspace(self):
        path = self.put("wood.codeset", WOOD)
        source = self.outside("glass.codeset", GLASS)
        program, window = self.open()
        editing = self.edit(program, window, WOOD_TEXT, "wood.codeset")
        shutil.move(self.workspace, self.home / "moved")
        self.workspace.write_bytes(b"in the way")
        editing.button("Save codeset").click()
        self.expect_message(
            program,
            "Error",
            "Cannot access file.\n\nCannot unlink file.\n\nError 20: Not a directory",
            "Close",
        )
        editing.expect_active()
        self.close_without_saving(program, editing)
        window.list().expect_texts([])
        self.add_file(program, window, source)
        self.expect_message(
            program,
            "Error",
            "Can not access the workspace fonts folder.\n\nCannot get file status.\n\n"
            "Error 20: Not a directory",
            "Close",
        )
        # A name whose status cannot be read counts as taken.
        naming = self.name_new(program, window, "Add new", "mine.codeset")
        naming.press("Return")
        self.expect_message(program, "Error", "That file name is already taken.", "Close")
        naming.leave("Escape")

        for action in ("Edit", "Delete"):
            self.workspace.unlink()
            shutil.move(self.home / "moved", self.workspace)
            self.push(window, "Refresh list")
            window.list().row(WOOD_TEXT).select()
            shutil.move(self.workspace, self.home / "moved")
            self.workspace.write_bytes(b"in the way")
            if action == "Edit":
                self.push(window, "Edit")
                self.expect_message(
                    program,
                    "Error",
                    f"Something went wrong when accessing the codeset file:\n\n{path}",
                    "Close",
                )
            else:
                self.delete(program, window, WOOD_TEXT)
                self.expect_message(
                    program, "Error", f"Couldn't delete the file.\n\n{path}", "Close"
                )
            window.expect_active()
            window.list().expect_texts([])
        self.assertEqual(self.workspace.read_bytes(), b"in the way")
        self.assertEqual((self.home / "moved" / "codesets" / "wood.codeset").read_bytes(), WOOD)
        self.end(program, window)

    def test_adding_over_a_folder_and_from_a_vanishing_file(self):
        wood = self.put("glass.codeset", WOOD)
        (self.codesets / "folder.codeset").mkdir()
        glass = self.outside("glass.codeset", GLASS)
        folder = self.outside("folder.codeset", GLASS)
        program, window = self.open()
        self.add_file(program, window, folder)
        self.expect_message(
            program,
            "Question",
            f'Really overwrite "{self.codesets}/folder.codeset" with "{GLASS_TEXT}"?',
            "Yes",
        )
        self.expect_message(
            program,
            "Error",
            f"An error occured when writing file.\n\n{self.codesets}/folder.codeset",
            "Close",
        )
        self.assertEqual(list((self.codesets / "folder.codeset").iterdir()), [])

        self.add_file(program, window, glass)
        self.assertEqual(program.dialog("Question").message, OVERWRITE)
        glass.unlink()
        program.dialog("Question").answer("Yes")
        self.expect_message(
            program, "Error", f"An error occured when writing file.\n\n{wood}", "Escape"
        )
        window.expect_active()
        window.list().expect_texts([WOOD_TEXT])
        self.assertEqual(self.contents(), {"glass.codeset": WOOD})

    def test_a_disk_that_takes_no_more(self):
        self.put("wood.codeset", WOOD)
        source = self.outside("glass.codeset", GLASS)
        target = self.folder / "copy.codeset"
        program, window = self.open(ignored_signals=(signal.SIGXFSZ,))
        # The toolkit cannot write its list of recently used files either, and says so.
        program.expected_complaints = re.compile("Attempting to store changes")
        resource.prlimit(program.pid, resource.RLIMIT_FSIZE, (150, resource.RLIM_INFINITY))
        self.name_new(program, window, "Clone", "copy.codeset", WOOD_TEXT).press("Return")
        self.expect_message(program, "Error", "An error occured when copying the file.", "Close")
        self.add_file(program, window, source)
        self.expect_message(
            program,
            "Error",
            f"An error occured when writing file.\n\n{self.codesets}/glass.codeset",
            "Close",
        )
        self.save_copy(program, window, WOOD_TEXT, target)
        self.expect_message(
            program,
            "Error",
            f"An error occured when saving the copy of the file.\n\n{target}",
            "Close",
        )
        # Half a file is not left behind.
        window.list().expect_texts([WOOD_TEXT])
        self.assertEqual(self.contents(), {"wood.codeset": WOOD})
        self.assertFalse(target.exists())
        self.end(program, window)

    def test_a_delivered_codeset_that_vanishes_from_the_list(self):
        stage = self.copy_stage()
        delivered = stage / "codesets"
        for path in delivered.iterdir():
            path.unlink()
        (delivered / "glass.codeset").write_bytes(GLASS)
        program, window = self.open(stage=stage)
        self.push(window, "Add bundled")
        selector = program.window("Select one to add")
        selector.list().row(GLASS_TEXT).select()
        (delivered / "glass.codeset").unlink()
        selector.button("OK").click()
        self.expect_message(
            program,
            "Error",
            f"An error occured when writing file.\n\n{self.codesets}/glass.codeset",
            "Close",
        )
        window.expect_active()
        self.assertEqual(self.contents(), {})

    # Entries that cannot be read

    def put_hostile_entries(self, folder):
        """Entries with names of codesets: endless, blocking, dangling, circular and unreadable
        ones. They are the same for the superuser."""
        os.mkfifo(folder / "pipe.codeset")
        # Bound at a path that is short enough for a socket's address.
        with socket.socket(socket.AF_UNIX) as endpoint:
            endpoint.bind(str(self.folder / "socket"))
        (self.folder / "socket").rename(folder / "socket.codeset")
        for name, target in (
            ("endless", "/dev/zero"),
            ("dangling", "nowhere"),
            ("loop", "loop.codeset"),
            ("memory", "/proc/self/mem"),
        ):
            (folder / f"{name}.codeset").symlink_to(target)

    def expect_rows(self, window, texts):
        """Expects the rows in any order, because it depends on the locale."""
        window.program.wait(
            lambda: sorted(window.list().texts()) == sorted(texts),
            lambda: f"the rows {texts!r}; they are {window.list().texts()!r}",
        )

    def test_hostile_entries_in_the_workspace(self):
        self.put("wood.codeset", WOOD)
        self.put_hostile_entries(self.codesets)
        program, window = self.open()

        def expect_listed(*texts):
            window.list().expect_texts([MEMORY, *texts])
            self.assertEqual(
                [row.colour for row in window.list().rows()], [RED, *[None] * len(texts)]
            )
            window.label(NOTICE)

        expect_listed(WOOD_TEXT)
        self.put("glass.codeset", GLASS)
        self.push(window, "Refresh list")
        expect_listed(GLASS_TEXT, WOOD_TEXT)
        self.assertCountEqual(
            os.listdir(self.codesets), ["wood.codeset", "glass.codeset", *HOSTILE_ENTRIES]
        )
        self.end(program, window)

    def test_hostile_entries_among_the_delivered(self):
        stage = self.copy_stage()
        delivered = stage / "codesets"
        for path in delivered.iterdir():
            path.unlink()
        (delivered / "glass.codeset").write_bytes(GLASS)
        self.put_hostile_entries(delivered)
        self.put("wood.codeset", WOOD)
        program, window = self.open(stage=stage)

        def choose(text):
            self.push(window, "Add bundled")
            selector = program.window("Select one to add")
            self.expect_rows(selector, [GLASS_TEXT, *HOSTILE_ENTRIES])
            self.assertEqual({row.colour for row in selector.list().rows()}, {None})
            selector.list().row(text).select()
            selector.button("OK").click()
            selector.expect_closed()

        for name in HOSTILE_ENTRIES:
            with self.subTest(name=name):
                choose(name)
                self.expect_message(
                    program,
                    "Error",
                    f"An error occured when writing file.\n\n{self.codesets}/{name}",
                    "Close",
                )
                window.expect_active()
                window.list().expect_texts([WOOD_TEXT])
                self.assertEqual(os.listdir(self.codesets), ["wood.codeset"])
        choose(GLASS_TEXT)
        window.list().expect_texts([GLASS_TEXT, WOOD_TEXT])
        self.assertEqual(self.contents(), {"wood.codeset": WOOD, "glass.codeset": GLASS})
        self.assertCountEqual(os.listdir(delivered), ["glass.codeset", *HOSTILE_ENTRIES])
        self.end(program, window)

    # Incompatible files

    def test_a_codeset_that_becomes_incompatible_while_it_is_selected(self):
        path = self.put("wood.codeset", WOOD)
        program, window = self.open()
        window.list().row(WOOD_TEXT).select()
        path.write_bytes(b"a letter")
        self.name_new(program, window, "Clone", "copy.codeset").press("Return")
        # Copied byte for byte all the same.
        program.wait(
            lambda: window.list().texts()
            in (["wood.codeset", "copy.codeset"], ["copy.codeset", "wood.codeset"]),
            "both files to be listed by name",
        )
        window.label(NOTICE)
        self.assertEqual(
            self.contents(), {"wood.codeset": b"a letter", "copy.codeset": b"a letter"}
        )
        naming = self.name_new(program, window, "Add new", "copy.codeset")
        naming.press("Return")
        self.expect_message(program, "Error", "That file name is already taken.", "Close")
        naming.leave("alt+F4")


class Beginnings(Journey):
    """Every way out of the windows that come before the main window."""

    def setUp(self):
        super().setUp()
        self.workspace = self.home / "Vantorelle Workspace"

    def start_assistant(self, page):
        program = self.start_program()
        assistant = program.window(ASSISTANT)
        for button in ("Next", "Apply")[:page]:
            assistant.button(button).click()
        assistant.button(("Next", "Apply", "Close")[page])
        return program, assistant

    def test_ways_out_of_the_assistant(self):
        for page in (0, 1):
            for way_out in WAYS_OUT:
                with self.subTest(page=page, way_out=way_out):
                    program, assistant = self.start_assistant(page)
                    assistant.leave(way_out)
                    program.expect_exit(0)
                    self.assertEqual(program.printed, "")
                    self.assertFalse(self.workspace.exists())

    def test_ways_out_of_the_last_page(self):
        # The workspace already exists, however the window is closed.
        for way_out in ANSWERS:
            with self.subTest(way_out=way_out):
                program, assistant = self.start_assistant(2)
                assistant.leave(way_out)
                window = program.window(MAIN_WINDOW)
                self.assertGreater(len(window.list()), 0)
                window.close()
                program.expect_exit(0)
                shutil.rmtree(self.workspace)

    def test_browsing_for_a_place(self):
        parent = self.home / "a b"
        parent.mkdir()
        program, assistant = self.start_assistant(1)
        location = assistant.field("Workspace location")
        location.enter("typed")
        for way_out in WAYS_OUT:
            assistant.button("Browse...").click()
            chooser = program.file_chooser("Select a parent folder for your workspace")
            self.assertFalse(assistant.is_sensitive)
            chooser.leave(way_out)
            assistant.expect_active()
            location.expect_text("typed")
        assistant.button("Browse...").click()
        program.file_chooser("Select a parent folder for your workspace").choose(parent)
        location.expect_text(f"{parent}/Vantorelle Workspace")
        assistant.button("Apply").click()
        assistant.button("Close").click()
        program.window(MAIN_WINDOW)
        self.assertTrue((parent / "Vantorelle Workspace" / "codesets").is_dir())
        self.assertFalse(self.workspace.exists())

    def test_a_new_workspace_that_is_gone_at_once(self):
        for answer in ANSWERS:
            with self.subTest(answer=answer):
                program, assistant = self.start_assistant(2)
                shutil.rmtree(self.workspace)
                assistant.button("Close").click()
                message = program.dialog("Error")
                self.assertEqual(
                    message.message, "Something went wrong when opening your new workspace."
                )
                self.assertEqual(program.windows(), [message])
                message.leave(answer)
                program.expect_exit(0)
                self.assertEqual(program.printed, "")
                self.assertFalse(self.workspace.exists())

    def test_ways_out_of_the_warning_about_settings(self):
        self.workspace.mkdir()
        settings = self.workspace / "settings.xml"
        settings.write_text("<settings")
        for answer in ANSWERS:
            with self.subTest(answer=answer):
                program = self.start_program()
                warning = program.dialog("Warning")
                self.assertEqual(
                    warning.message, "Something went wrong when reading your personal settings."
                )
                warning.leave(answer)
                program.window(MAIN_WINDOW).close()
                program.expect_exit(0)
        self.assertEqual(settings.read_text(), "<settings")

    def test_ways_out_of_a_start_that_fails(self):
        stage = self.copy_stage()
        (stage / "fonts" / "LiberationSans-Bold.ttf").unlink()
        for answer in ANSWERS:
            with self.subTest(answer=answer):
                program = self.start_program(stage=stage)
                message = program.dialog("Error")
                self.assertEqual(
                    message.message, "Startup failed.\n\nCouldn't open required fonts."
                )
                message.leave(answer)
                program.expect_exit(0)


if __name__ == "__main__":
    main()
