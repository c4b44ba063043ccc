"""Every window on the screen that is there, with all that is in it: long names, long paths, many
languages. Once with the usual text and once with larger text."""

import itertools
import re

from support import (
    MAIN_WINDOW,
    RESTORE,
    UK,
    Journey,
    Widget,
    WorkspaceJourney,
    codeset,
    display,
    main,
)
from support import accessibility
from support.waiting import settle

ASSISTANT = "Vantorelle Workspace Setup"
TITLE_BAR = 30
PARTS = (
    *accessibility.BUTTONS,
    *accessibility.TEXTS,
    *accessibility.LISTS,
    "combo box",
    "label",
    "icon",
)

# 300 characters, of which no two stretches are the same.
LONG = " ".join(f"Beschreibung {number:02}" for number in range(19))[:299] + "."
TAGS = (
    "en-uk",
    "en",
    "sv",
    "de",
    "de-de",
    "fr",
    "es",
    "da",
    "nb",
    "nn",
    "fi",
    "it",
    "pt",
    "is",
    "fo",
    "ga",
    "gd",
    "af",
    "eu",
    "ca",
    "sq",
    "sw",
    "nl",
    "en-us",
    "en-au",
    "en-ca",
    "en-ie",
    "de-at",
    "de-ch",
    "fr-fr",
)
LONG_NAMED = codeset(LONG, "Vera", "2", [("W1", "Split"), ("W2", {tag: LONG for tag in TAGS[:3]})])
MANY = codeset(
    {tag: f"Name {tag}" for tag in TAGS},
    "Vera",
    "2",
    [("W1", {tag: f"Split {tag}" for tag in TAGS}), ("W2", "Worm")],
)
SIX = ("en-uk", "sv", "de", "fr", "es", "da")
SIX_LANGUAGES = codeset(
    {tag: f"Name {tag}" for tag in SIX},
    {tag: f"Author {tag}" for tag in SIX},
    "2",
    [(f"W{number:02}", {tag: f"Damage {number} {tag}" for tag in SIX}) for number in range(60)],
)
FEW_LANGUAGES = codeset(
    "Wood", "Vera", "2", [(f"W{number:02}", f"Damage {number}") for number in range(60)]
)
LONG_FILE_NAME = "a" * 247 + ".codeset"


def overlap(first, second):
    x, y, width, height = first
    return (
        x < second[0] + second[2]
        and second[0] < x + width
        and y < second[1] + second[3]
        and second[1] < y + height
    )


class Fitting(Journey):
    """Expectations for every window."""

    scale = 1
    environment = {}

    def setUp(self):
        super().setUp()
        self.assertEqual(len(LONG), 300)

    def start_program(self, *arguments, **options):
        return super().start_program(
            *arguments, GDK_DPI_SCALE=str(self.scale), **self.environment, **options
        )

    def expect_inside(self, what, extents, around):
        x, y, width, height = extents
        left, top, right, bottom = (
            around[0],
            around[1],
            around[0] + around[2],
            around[1] + around[3],
        )
        # On a doubled screen the toolkit rounds places to its own pixels.
        slack = what.program.scale if what.program.scale > 1 else 0
        self.assertTrue(
            x >= left - slack
            and y >= top - slack
            and x + width <= right + slack
            and y + height <= bottom + slack,
            f"{what!r} at {extents} reaches out of {around}",
        )

    def expect_fitting(self, window):
        """The window and everything in it are on the screen."""
        self.expect_inside(window, window.resting_extents(), (0, 0, *display.screen_size()))
        self.expect_fitting_inside(window)

    def expect_fitting_inside(self, window):
        """All widgets of the window are inside it, and none covers another."""
        window.accessible.clear_cache()
        extents = window.resting_extents()
        parts = list(self.parts(window))
        for is_scrolled, part, place in parts:
            if not is_scrolled:
                self.expect_inside(part, place, extents)
        for (scrolled, part, place), (
            other_scrolled,
            other_part,
            other_place,
        ) in itertools.combinations(parts, 2):
            if scrolled == other_scrolled:
                self.assertFalse(
                    overlap(place, other_place), f"{part!r} and {other_part!r} overlap"
                )

    def parts(self, widget, is_scrolled=False):
        """Each widget that a user operates or reads: whether it can be scrolled, the widget, and
        its place."""
        for child in (
            Widget(widget.program, child) for child in accessibility.children(widget.accessible)
        ):
            place = child.extents
            # A viewport has no place in the tree, but its scroll pane has one.
            scrolls = child.role == "scroll pane" and "viewport" in map(
                accessibility.role, accessibility.children(child.accessible)
            )
            if (
                (child.role in PARTS or scrolls)
                and place
                and "showing" in accessibility.states(child.accessible)
            ):
                yield is_scrolled, child, place
            if child.role not in PARTS:
                yield from self.parts(child, is_scrolled or child.role == "viewport")

    def scroller(self, window):
        """The scroll pane of the window's fields: the first and outermost one."""
        return window.find("scroll pane")

    def expect_shrinking(self, window):
        """However small the user makes the window, it is no larger than it was, or than the screen,
        and all is still there."""
        before = window.resting_extents()
        self.expect_fitting_inside(window)
        after = window.resize(1, 1)
        for one, other, limit in zip(after[2:], before[2:], display.screen_size()):
            self.assertLessEqual(one, min(other, limit))
        self.expect_fitting_inside(window)

    def expect_fitting_chooser(self, chooser, *buttons):
        self.expect_inside(chooser, chooser.resting_extents(), (0, 0, *display.screen_size()))
        for button in map(chooser.button, buttons):
            self.expect_inside(button, button.resting_extents(), chooser.resting_extents())


class SmallScreen(Fitting, WorkspaceJourney):
    def leave(self, program, editing):
        editing.button("Close").click()
        question = program.dialog("Really close?")
        self.expect_fitting(question)
        question.answer("Close")
        editing.expect_closed()

    def expect_fitting_message(self, program, title, message, answer):
        dialog = program.dialog(title)
        self.assertEqual(dialog.message, message)
        self.expect_fitting(dialog)
        dialog.answer(answer)

    def expect_centred(self, window, parent):
        """The window is on the screen, and in the middle of its parent as far as the screen
        allows."""
        screen = display.screen_size()
        place, around = window.resting_extents(), parent.resting_extents()
        self.expect_inside(window, place, (0, 0, *screen))
        for axis in (0, 1):
            size = place[axis + 2]
            wanted = around[axis] + (around[axis + 2] - size) / 2
            wanted = min(max(wanted, 0), screen[axis] - size)
            self.assertAlmostEqual(
                place[axis],
                wanted,
                delta=TITLE_BAR,
                msg=f"{window!r} at {place}, its parent at {around}",
            )

    def test_windows_open_over_their_parent(self):
        self.put("plain.codeset", codeset("Plain", remarks=[("1", "One")]))
        program, window = self.open()
        _, _, width, height = window.resting_extents()
        right, bottom = display.screen_size()
        # The window manager keeps a tenth of a window on the screen.
        far = 60 * program.scale
        for x, y in (
            (10, 30),
            (right - width - 10, bottom - height - 10),
            (far - width, 60),
            (right - 20 - far, bottom - 60),
        ):
            with self.subTest(x=x, y=y):
                display.move_window(window.window_id, x, y)
                program.wait(
                    lambda x=x: abs(window.resting_extents()[0] - x) < TITLE_BAR,
                    "the main window to move",
                )
                for button, title in (("Add new", "Add new"), ("Add bundled", "Select one to add")):
                    window.press("Home")
                    window.button(button).act()
                    opened = program.window(title)
                    self.expect_centred(opened, window)
                    opened.press("Escape")
                    opened.expect_closed()
        display.move_window(window.window_id, 10, 30)
        editing = self.edit(program, window, "Plain", "plain.codeset")
        self.expect_fitting(editing)
        editing.button("Add new").click()
        dialog = program.window("Edit remark code")
        self.expect_centred(dialog, editing)
        dialog.press("Return")
        error = program.dialog("Error")
        self.expect_centred(error, dialog)
        error.answer("Close")

    def go_back_to(self, window, label, index=0):
        """Presses Shift+Tab until the text field of that label has the focus, wherever it is
        scrolled to."""
        field = window.find_all(accessibility.TEXTS, labelled=label, showing=False)[index]
        return window.tab_to(field, "shift+Tab")

    def test_the_main_window(self):
        self.put("long.codeset", LONG_NAMED)
        self.put("plain.codeset", codeset("Plain", remarks=[("1", "One")]))
        self.put("strange.codeset", b"a letter")
        program, window = self.open()
        text = f"{LONG} (Vera) 2"
        self.expect_fitting(window)
        self.expect_shrinking(window)
        window.list().expect_texts(["strange.codeset", text, "Plain"])
        window.list().row(text).select()
        window.button("Delete").click()
        self.expect_fitting_message(
            program, "Question", f'Do you really want to delete "{text}" from your workspace?', "No"
        )
        window.list().row(text).select()
        window.button("Clone").click()
        naming = program.window("Add new")
        self.expect_fitting(naming)
        self.expect_shrinking(naming)
        naming.field().enter("long.codeset")
        naming.button("OK").click()
        self.expect_fitting_message(
            program, "Error", f'That file name is already taken for "{text}"', "Close"
        )
        naming.field().enter(LONG_FILE_NAME)
        self.expect_fitting(naming)
        naming.button("OK").click()
        naming.expect_closed()
        self.assertEqual(self.contents()[LONG_FILE_NAME], LONG_NAMED)
        self.expect_shrinking(window)
        # As large as the screen, and back.
        window.toggle_maximized()
        self.expect_fitting(window)
        window.toggle_maximized()
        self.expect_fitting(window)
        self.end(program, window)

    def test_long_paths(self):
        path = self.put(LONG_FILE_NAME, b"<codesets/>")
        source = self.folder / LONG_FILE_NAME
        source.write_bytes(b"a letter")
        program, window = self.open()
        self.expect_fitting(window)
        self.expect_shrinking(window)
        window.list().row(LONG_FILE_NAME).select()
        window.field("File name of selected item").expect_text(LONG_FILE_NAME)
        window.button("Edit").click()
        self.expect_fitting_message(
            program,
            "Error",
            f"Error when loading the codeset file:\n\n{path}\n\nNot a codeset file.",
            "Close",
        )
        window.button("Add from file").click()
        chooser = program.file_chooser()
        self.expect_fitting_chooser(chooser, "Cancel", "Open")
        chooser.choose(source)
        self.expect_fitting_message(
            program, "Question", f'Really overwrite "{path}" with "{source}"?', "No"
        )
        window.list().row(LONG_FILE_NAME).select()
        path.unlink()
        path.mkdir()
        window.button("Delete").click()
        self.expect_fitting_message(
            program,
            "Question",
            f'Do you really want to delete "{LONG_FILE_NAME}" from your workspace?',
            "Yes",
        )
        self.expect_fitting_message(
            program, "Error", f"Couldn't delete the file.\n\n{path}", "Close"
        )
        self.expect_shrinking(window)

    def test_a_message_higher_than_the_screen(self):
        self.put("high.codeset", codeset("Word " * 3000, remarks=[("1", "One")]))
        program, window = self.open()
        window.list().row(re.compile("^Word")).select()
        window.button("Delete").click()
        question = program.dialog("Question")
        self.expect_fitting(question)
        question.answer("No")

    def test_the_question_about_changes_left_behind(self):
        self.put("plain.codeset", codeset("Plain", remarks=[("1", "One")]))
        program, window = self.open()
        editing = self.edit(program, window, "Plain", "plain.codeset")
        editing.field(UK).enter("Changed")
        program.wait(self.drafts, "a draft")
        program.kill()
        program, window = self.open()
        window.list().row("Plain").select()
        window.button("Edit").click()
        question = program.dialog("Question")
        self.assertRegex(question.message, RESTORE)
        self.expect_fitting(question)
        question.answer("No")

    def test_the_bundled_selector(self):
        stage = self.copy_stage()
        (stage / "codesets" / "long.codeset").write_bytes(LONG_NAMED)
        (stage / "codesets" / LONG_FILE_NAME).write_bytes(b"a letter")
        for number in range(30):
            (stage / "codesets" / f"more{number}.codeset").write_bytes(
                codeset(f"More {number}", remarks=[("1", "One")])
            )
        program, window = self.open(stage=stage)
        window.button("Add bundled").click()
        selector = program.window("Select one to add")
        self.expect_fitting(selector)
        self.expect_shrinking(selector)
        selector.list().row("More 9").select()
        selector.list().row(f"{LONG} (Vera) 2").select()
        selector.button("OK").click()
        selector.expect_closed()
        self.assertEqual(self.contents(), {"long.codeset": LONG_NAMED})
        self.expect_fitting(window)

    def test_a_name_in_many_languages(self):
        path = self.put("many.codeset", MANY)
        program, window = self.open()
        editing = self.edit(program, window, "Name en-uk (Vera) 2", "many.codeset")
        self.expect_fitting(editing)
        self.assertEqual(editing.resting_extents(), (0, 0, *display.screen_size()))
        # A widget that gets the focus scrolls into view.
        version = self.go_back_to(editing, "Version")
        viewport = self.scroller(editing).extents
        self.expect_inside(version, version.resting_extents(), viewport)
        self.expect_fitting(editing)
        self.expect_buttons_in_view(editing)
        editing.button("Edit").click()
        dialog = program.window("Edit remark code")
        self.expect_fitting(dialog)
        self.expect_shrinking(dialog)
        last = self.go_back_to(dialog, "French/France [fr-fr]")
        self.expect_inside(last, last.resting_extents(), self.scroller(dialog).extents)
        display.press("End")
        display.type_text("!")
        dialog.button("OK").click()
        dialog.expect_closed()

        # A tooltip that shows before the window changes its size would take the click afterwards.
        display.move(0, 0)
        editing.toggle_maximized()
        self.expect_shrinking(editing)
        editing.toggle_maximized()
        self.expect_fitting(editing)
        editing.button("Save codeset").click()
        editing.expect_closed()
        self.assertEqual(path.read_bytes(), MANY.replace(b"Split fr-fr", b"Split fr-fr!"))

    def expect_buttons_in_view(self, editing):
        for button in ("Add new", "Edit", "Delete", "Save codeset", "Close"):
            self.expect_inside(
                editing.button(button),
                editing.button(button).resting_extents(),
                (0, 0, *display.screen_size()),
            )

    def count_codes_in_view(self, editing):
        codes = editing.list("Remark codes")
        _, y, _, height = codes.resting_extents()
        tops = [row.extents for row in codes.rows()]
        return sum(
            place is not None and place[1] >= y and place[1] + place[3] <= y + height
            for place in tops
        )

    def fields_in_view(self, editing):
        """Those of the name, the author and the version that are shown whole, from top to
        bottom."""
        _, y, _, height = self.scroller(editing).resting_extents()
        places = [
            (field, field.extents)
            for field in editing.find_all(accessibility.TEXTS)
            if field.is_editable
        ]
        return [
            field for field, place in places if place[1] >= y and place[1] + place[3] <= y + height
        ]

    def test_many_codes_in_six_languages(self):
        self.prefer(*SIX)
        self.put("six.codeset", SIX_LANGUAGES)
        program, window = self.open()
        editing = self.edit(program, window, "Name en-uk (Author en-uk) 2", "six.codeset")
        self.expect_fitting(editing)
        self.expect_buttons_in_view(editing)
        height = display.screen_size()[1] // program.scale
        self.assertGreaterEqual(
            self.count_codes_in_view(editing), 12 if height >= 900 and self.scale == 1 else 8
        )
        if height >= 1440:
            self.assertEqual(len(self.fields_in_view(editing)), 13)
        self.assertGreaterEqual(len(self.fields_in_view(editing)), 3)
        self.leave(program, editing)

    def test_new_rows_are_in_view(self):
        self.prefer(*TAGS)
        self.put("six.codeset", SIX_LANGUAGES)
        program, window = self.open()
        editing = self.edit(program, window, "Name en-uk (Author en-uk) 2", "six.codeset")
        author = editing.find_all("panel", re.compile("^Author"), showing=False)[0]
        for _ in range(3):
            plus = author.find_all("push button", " + ", showing=False)[0]
            plus.act()
            settle()
            new = program.focused()
            new.expect_text("")
            self.expect_inside(new, new.resting_extents(), self.scroller(editing).extents)
        editing.button("Add new").click()
        dialog = program.window("Edit remark code")
        for _ in range(20):
            dialog.find_all("push button", " + ", showing=False)[0].act()
            settle()
            new = program.focused()
            new.expect_text("")
            self.expect_inside(new, new.resting_extents(), self.scroller(dialog).extents)
        self.expect_fitting(dialog)
        dialog.press("Escape")
        dialog.expect_closed()
        self.leave(program, editing)

    def test_many_codes_in_one_language(self):
        self.put("few.codeset", FEW_LANGUAGES)
        program, window = self.open()
        editing = self.edit(program, window, "Wood (Vera) 2", "few.codeset")
        self.expect_fitting(editing)
        self.expect_buttons_in_view(editing)
        self.assertEqual(len(self.fields_in_view(editing)), 3)
        self.assertGreaterEqual(self.count_codes_in_view(editing), 8)
        self.leave(program, editing)

    def test_long_texts_are_edited(self):
        self.put("long.codeset", LONG_NAMED)
        program, window = self.open()
        editing = self.edit(program, window, f"{LONG} (Vera) 2", "long.codeset")
        editing.field(UK).expect_text(LONG)
        self.expect_fitting(editing)
        size = editing.toggle_maximized()[2:]
        editing.toggle_maximized()
        codes = editing.list("Remark codes")
        codes.expect_texts(["W1. Split", f"W2. {LONG}"])
        place = codes.resting_extents()
        codes.row(f"W2. {LONG}").select()
        self.expect_fitting(editing)
        # A long description takes no room from the list, and asks for none from the screen.
        self.assertEqual(codes.resting_extents(), place)
        editing.button("Edit").click()
        dialog = program.window("Edit remark code")
        self.expect_fitting(dialog)
        self.expect_shrinking(dialog)
        one_more = dialog.extents
        dialog.button(" + ").click()
        program.wait(lambda: dialog.extents[3] > one_more[3], "the dialog to make room for a row")
        self.expect_fitting(dialog)
        dialog.button(" - ", index=-1).click()
        program.wait(lambda: dialog.extents[2:] == one_more[2:], "the dialog to shrink again")
        self.expect_fitting(dialog)
        dialog.button("Cancel").click()
        dialog.expect_closed()
        self.assertEqual(editing.toggle_maximized()[2:], size)
        self.expect_shrinking(editing)
        self.leave(program, editing)
        self.end(program, window)


class Beginnings(Fitting, Journey):
    def expect_fitting_page(self, assistant, *buttons):
        self.expect_fitting(assistant)
        self.expect_shrinking(assistant)
        for button in buttons:
            assistant.button(button).expect_sensitive()

    def expect_lines_as_they_are(self, assistant, text, line_height):
        """No line of the text wraps, so that the text has no more lines than its own."""
        label = assistant.label(re.compile(f"^{text}"))
        lines = label.text.count("\n") + 1
        self.assertLess(label.resting_extents()[3], (lines + 0.5) * line_height)

    def test_the_assistant(self):
        program = self.start_program()
        assistant = program.window(ASSISTANT)
        self.expect_fitting_page(assistant, "Cancel", "Next")
        assistant.button("Next").click()
        line_height = assistant.label("Workspace location:").resting_extents()[3]
        if display.screen_size()[0] // program.scale >= (1280 if self.scale > 1 else 1024):
            self.expect_lines_as_they_are(assistant, "Please make sure", line_height)
            assistant.button("Back").click()
            self.expect_lines_as_they_are(assistant, "Before you can start", line_height)
            assistant.button("Next").click()
        assistant.field("Workspace location").paste("/" + "y" * 300)
        self.expect_fitting_page(assistant, "Cancel", "Browse...", "Apply")
        assistant.button("Browse...").click()
        chooser = program.file_chooser()
        self.expect_fitting_chooser(chooser, "Cancel", "OK")
        chooser.cancel()
        assistant.button("Apply").click()
        refusal = program.dialog("Error")
        self.assertEqual(
            refusal.message,
            "Cannot access the specified location.\n\nCannot get file status.\n\n"
            "Error 36: File name too long",
        )
        self.expect_fitting(refusal)
        refusal.answer("Close")
        assistant.button("Next").click()
        assistant.field("Workspace location").clear()
        assistant.field("Workspace location").paste(str(self.home / "Mine"))
        assistant.button("Apply").click()
        self.expect_fitting_page(assistant, "Close")
        assistant.button("Close").click()
        window = program.window(MAIN_WINDOW)
        self.expect_shrinking(window)
        window.list().row(re.compile("^Metals ")).select()
        window.button("Edit").click()
        question = program.dialog("Question")
        self.expect_fitting(question)
        question.answer("No")


class SmallScreenWithLargerText(SmallScreen):
    scale = 1.4


class BeginningsWithLargerText(Beginnings):
    scale = 1.4


if __name__ == "__main__":
    main()
