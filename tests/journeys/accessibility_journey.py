"""Every window without a mouse and without a screen: what is spoken, what the keys reach, and that
the focus is seen."""

import re
import subprocess

from support import MAIN_WINDOW, Journey, Widget, main
from support import accessibility, display
from support.waiting import settle

ASSISTANT = "Vantorelle Workspace Setup"
LANGUAGES = ("English/United Kingdom [en-uk]", "Swedish [sv]", "German [de]")

# The roles of widgets that a user operates. A combo box takes the keys through a button inside it
# that is no object of its own. A label that can have the focus is a text that can be copied.
CONTROLS = (
    *accessibility.BUTTONS,
    *accessibility.TEXTS,
    *accessibility.LISTS,
    "check box",
    "radio button",
    "slider",
    "link",
    "label",
)
NAMED = (*CONTROLS, "combo box", "menu item", "alert", "dialog", "frame", "icon")

# Tab goes from text to text in the language editor; the widgets beside a text are reached with
# Ctrl+Tab.
SIGNS = (" + ", " - ")

# Pixels around a widget within which its focus may be drawn.
FOCUS_MARGIN = 3

CODESET = """<?xml version="1.0" encoding="iso-8859-1"?>

<codeset>
\t<name lang="en-uk">Own</name>
\t<name lang="sv">Eget</name>
\t<name lang="de">Eigenes</name>
\t<author lang="en-uk">Vera</author>
\t<version>1</version>
\t<remark>
\t\t<code>Cr1</code>
\t\t<description lang="en-uk">Crack</description>
\t\t<description lang="sv">Spricka</description>
\t</remark>
\t<remark>
\t\t<code>Fl1</code>
\t\t<description lang="en-uk">Flaking</description>
\t</remark>
</codeset>
"""

# Nothing moves or blinks, so only the focus changes on the screen.
QUIET = "[Settings]\ngtk-cursor-blink=false\ngtk-enable-animations=false\n"


class Picture:
    """The screen's contents at one moment."""

    def __init__(self):
        command = ("import", "-silent", "-window", "root", "-depth", "8", "ppm:-")
        data = subprocess.run(command, capture_output=True, check=True, timeout=20).stdout
        header = re.match(rb"P6\s(\d+)\s(\d+)\s255\s", data)
        self.width, self.height = int(header[1]), int(header[2])
        self.pixels = data[header.end() :]

    def part(self, extents):
        """The pixels in and around the extents."""
        x, y, width, height = extents
        left, right = max(x - FOCUS_MARGIN, 0), min(x + width + FOCUS_MARGIN, self.width)
        rows = range(max(y - FOCUS_MARGIN, 0), min(y + height + FOCUS_MARGIN, self.height))
        return b"".join(
            self.pixels[3 * (row * self.width + left) : 3 * (row * self.width + right)]
            for row in rows
        )


def visible_objects(accessible, wanted_state="showing"):
    """All shown objects, including those that must be scrolled into view, but not the cells of
    lists."""
    for child in accessibility.children(accessible):
        if wanted_state in accessibility.states(child):
            yield child
            if accessibility.role(child) == "viewport":
                yield from visible_objects(child, "visible")
            elif accessibility.role(child) not in (*accessibility.LISTS, "combo box"):
                yield from visible_objects(child, wanted_state)


def objects(window, roles):
    window.accessible.clear_cache()
    return [
        Widget(window.program, o)
        for o in visible_objects(window.accessible)
        if accessibility.role(o) in roles
    ]


def spoken(widget):
    """The name that a screen reader says: its name, its label, or for signs its description."""
    texts = [widget.name, *accessibility.labels_of(widget.accessible)]
    if not any(re.search(r"\w", text) for text in texts):
        texts = [widget.description]
    return " ".join(text for text in texts if re.search(r"\w", text))


def comes_after(first, second):
    """Whether a reader's eye, going down and to the right, meets the second extents after the
    first."""
    x, y, width, height = first
    return second[1] >= y + height or second[0] >= x + width


class Accessibility(Journey):
    def setUp(self):
        super().setUp()
        settings = self.home / ".config" / "gtk-3.0" / "settings.ini"
        settings.parent.mkdir(parents=True)
        settings.write_text(QUIET)

    # Ways into the program

    def start(self):
        return self.start_program(VANTORELLE_USER_LANGUAGE="en-uk")

    def open_main_window(self):
        program = self.start()
        assistant = program.window(ASSISTANT)
        for button in ("Next", "Apply", "Close"):
            assistant.button(button).click()
        assistant.expect_closed()
        window = program.window(MAIN_WINDOW)
        self.own_file = self.home / "Vantorelle Workspace" / "codesets" / "own.codeset"
        self.own_file.write_text(CODESET, "iso-8859-1")
        window.button("Refresh list").click()
        window.list().row("Own (Vera) 1").select()
        return program, window

    def open_editing_window(self):
        program, window = self.open_main_window()
        window.button("Edit").click()
        return program, program.window("Edit remark codeset - own.codeset")

    def open_remark_dialog(self):
        program, editing = self.open_editing_window()
        editing.list("Remark codes").row("Cr1. Crack").select()
        editing.button("Edit").click()
        return program, program.window("Edit remark code")

    # Checks

    def check(self, window):
        """Everything in the window has a spoken name, and Tab leads through all of it."""
        self.check_names(window)
        self.check_tab(window)

    def check_names(self, window):
        widgets = [window, *objects(window, NAMED)]
        nameless = [f"{widget!r} at {widget.extents}" for widget in widgets if not spoken(widget)]
        self.assertEqual(nameless, [], f"nameless in {window!r}")
        focusable = [
            widget
            for widget in objects(window, ("filler", "panel"))
            if "focusable" in widget.states
        ]
        self.assertEqual(
            [widget for widget in focusable if not widget.name],
            [],
            f"groups without a name in {window!r}",
        )

    def check_tab(self, window):
        stops = self.walk(window)
        wanted = [
            widget
            for widget in objects(window, CONTROLS)
            if {"sensitive", "focusable"} <= widget.states and widget.name not in SIGNS
        ]
        self.assertEqual(
            [widget for widget in wanted if widget not in stops],
            [],
            f"not reached with Tab in {window!r}",
        )
        self.assertEqual(
            [widget for widget in stops if widget not in wanted],
            [],
            f"reached unasked in {window!r}",
        )
        places = [widget.resting_extents() for widget in stops]
        leaps = [
            f"{stops[i - 1]!r} -> {stops[i]!r}"
            for i in range(len(stops))
            if not comes_after(places[i - 1], places[i])
        ]
        self.assertLessEqual(len(leaps), 1, f"Tab leaps about in {window!r}: {leaps}")

    def walk(self, window):
        """Presses Tab until the first widget has the focus again. Returns the focused widgets in
        order, and checks that the screen shows each focus."""
        program = window.program
        controls = [
            widget
            for widget in objects(window, CONTROLS)
            if {"sensitive", "focusable"} <= widget.states
        ]
        if len(controls) == 1:
            controls[0].expect_focus()
            return controls
        stops = []
        before = Picture()
        while len(stops) <= len(controls):
            focused = program.focused()
            window.press("Tab")
            stop = program.wait(
                lambda focused=focused: program.focused() not in (None, focused)
                and program.focused(),
                lambda focused=focused: f"Tab to move the focus from {focused!r} to a named widget",
            )
            if stop in stops:
                break
            stops.append(stop)
            before = self.expect_change(stop, before, f"the focus on {stop!r} to be seen")
        self.assertEqual(stop, stops[0], "Tab comes round to where it started")
        return stops

    def expect_change(self, widget, before, what):
        extents = widget.resting_extents()

        def changed():
            now = Picture()
            return now.part(extents) != before.part(extents) and now

        return widget.program.wait(changed, what)

    def check_dialog(self, dialog, message):
        """It is announced with its message as soon as it opens."""
        self.assertEqual(dialog.role, "alert")
        self.assertEqual(dialog.message, message)
        self.assertEqual(dialog.description, message)
        self.check(dialog)

    def escape(self, window):
        window.press("Escape")
        window.expect_closed()

    # The windows

    def test_the_assistant(self):
        program = self.start()
        assistant = program.window(ASSISTANT)
        self.check(assistant)
        assistant.button("Next").click()
        assistant.field("Workspace location").enter(str(self.home))
        self.check(assistant)
        assistant.button("Apply").click()
        refusal = program.dialog("Error")
        self.check_dialog(
            refusal,
            "There is already a folder or a file with that name.\n\nPlease choose a new location.",
        )
        self.escape(refusal)
        assistant.button("Next").click()
        assistant.field("Workspace location").enter(str(self.home / "Mine"))
        assistant.button("Apply").click()
        assistant.button("Close").resting_extents()
        self.check(assistant)
        self.assertTrue((self.home / "Mine" / "codesets").is_dir())

    def test_escape_leaves_the_assistant(self):
        program = self.start()
        self.escape(program.window(ASSISTANT))
        program.expect_exit(0)
        self.assertFalse((self.home / "Vantorelle Workspace").exists())

    def test_the_main_window(self):
        _, window = self.open_main_window()
        self.assertEqual(window.list().name, "Remark codeset files")
        self.check(window)
        # There is nothing to cancel here.
        window.press("Escape")
        settle()
        self.assertTrue(window.is_open)

    def test_the_main_window_with_an_incompatible_file(self):
        _, window = self.open_main_window()
        (self.own_file.parent / "a.codeset").write_text("a letter")
        window.button("Refresh list").click()
        window.list().row("a.codeset").select()
        self.check(window)

    def test_the_questions_of_the_main_window(self):
        program, window = self.open_main_window()
        window.button("Delete").click()
        question = program.dialog("Question")
        self.check_dialog(
            question, 'Do you really want to delete "Own (Vera) 1" from your workspace?'
        )
        self.escape(question)
        self.assertTrue(self.own_file.exists())
        window.list().row(re.compile("^Metals ")).select()
        window.button("Edit").click()
        question = program.dialog("Question")
        self.check_dialog(
            question,
            "This item was bundled with Vantorelle. You might want to clone it first, "
            "to make your own independent copy.\n\n"
            "Proceed anyway?",
        )
        self.escape(question)
        window.expect_active()

    def test_the_new_file_window(self):
        program, window = self.open_main_window()
        window.button("Add new").click()
        naming = program.window("Add new")
        self.check(naming)
        naming.field().enter("A.codeset")
        naming.press("Return")
        refusal = program.dialog("Error")
        self.check_dialog(refusal, 'The character "A" is not permitted.')
        self.escape(refusal)
        self.escape(naming)
        window.expect_active()

    def test_the_bundled_selector(self):
        program, window = self.open_main_window()
        before = sorted(path.name for path in self.own_file.parent.iterdir())
        window.button("Add bundled").click()
        selector = program.window("Select one to add")
        self.assertEqual(selector.list().name, "Remark codeset files")
        self.check(selector)
        self.escape(selector)
        self.assertEqual(sorted(path.name for path in self.own_file.parent.iterdir()), before)

    def test_the_editing_window(self):
        program, editing = self.open_editing_window()
        editing.list("Remark codes").row("Cr1. Crack").select()
        self.check(editing)
        names = [field.name for field in editing.fields()]
        self.assertEqual(
            names, [*LANGUAGES, LANGUAGES[0], "Version", "Description of the selected remark code"]
        )
        self.assertEqual([combo.description for combo in editing.combos()], ["Language"] * 4)
        for title in ("Codeset name", "Author", "Version", "Remark codes"):
            self.assertTrue(editing.frame(re.compile(f"^{title}:")).is_showing)
        editing.press("Escape")
        question = program.dialog("Really close?")
        self.check_dialog(question, "Are you sure you want to close the codeset without saving?")
        self.escape(question)
        self.assertTrue(editing.is_open)
        editing.press("Escape")
        program.dialog("Really close?").answer("Close")
        editing.expect_closed()

    def test_the_remark_dialog(self):
        program, dialog = self.open_remark_dialog()
        self.check(dialog)
        self.assertEqual(
            [spoken(field).strip() for field in dialog.fields()],
            ["Remark code: (Required)", *LANGUAGES[:2]],
        )
        self.assertTrue(dialog.frame("Short description").is_showing)
        self.assertEqual(
            [
                (button.name, button.description)
                for button in dialog.find_all("push button")
                if button.name in SIGNS
            ],
            [
                (" - ", "Delete this translation"),
                (" - ", "Delete this translation"),
                (" + ", "Add a translation"),
            ],
        )
        dialog.field("Remark code").enter("Fl1")
        dialog.press("Return")
        refusal = program.dialog("Error")
        self.check_dialog(refusal, "That code is already taken.")
        self.escape(refusal)
        self.escape(dialog)
        program.window("Edit remark codeset - own.codeset").list("Remark codes").expect_texts(
            ["Cr1. Crack", "Fl1. Flaking"]
        )

    # By keys alone

    def test_ctrl_tab_walks_through_a_translation(self):
        _, dialog = self.open_remark_dialog()
        before = Picture()
        dialog.press("Tab")
        buttons = [button for button in dialog.find_all("push button") if button.name in SIGNS]
        combos = dialog.combos()
        row = [(dialog.field(LANGUAGES[i]), combos[i], buttons[i]) for i in range(2)]
        stops = [*row[0], *row[1], buttons[2]]
        for number, stop in enumerate(stops):
            if number > 0:
                dialog.press("ctrl+Tab")
            before = self.expect_change(stop, before, f"the focus on {stop!r} to be seen")
            if stop.role != "combo box":
                stop.expect_focus()
        dialog.press("ctrl+Tab")
        dialog.button("OK").expect_focus()
        dialog.press("shift+Tab")
        row[1][0].expect_focus()
        for stop in (row[0][2], None, row[0][0], dialog.field("Remark code")):
            dialog.press("ctrl+shift+Tab")
            settle()
            if stop is not None:
                stop.expect_focus()

    def test_a_codeset_is_edited_by_keys_alone(self):
        program, window = self.open_main_window()
        window.list().expect_focus()
        display.type_text("own")
        display.press("Escape")
        window.tab_to("Edit")
        display.press("space")
        editing = program.window("Edit remark codeset - own.codeset")
        editing.field(LANGUAGES[0]).expect_focus()
        display.type_text("Mine")
        editing.tab_to("Remark codes")
        display.type_text("Fl")
        editing.list("Remark codes").expect_selected(["Fl1. Flaking"])
        display.press("Escape")
        editing.tab_to("Edit")
        display.press("space")
        dialog = program.window("Edit remark code")
        dialog.press("Tab", "End")
        display.type_text(" paint")
        # The language, then " - " which is insensitive, then " + ".
        dialog.press("ctrl+Tab", "ctrl+Tab", "space")
        dialog.field("English [en]").expect_focus()
        display.type_text("Loss of paint")
        for key, language in (("Up", LANGUAGES[0]), ("Down", "English [en]")):
            dialog.press("ctrl+Tab", key)
            dialog.field(language, index=-1).expect_focus()
        dialog.press("Return")
        dialog.expect_closed()
        editing.tab_to("Save codeset")
        display.press("space")
        editing.expect_closed()
        saved = self.own_file.read_text("iso-8859-1")
        self.assertIn('<name lang="en-uk">Mine</name>', saved)
        self.assertIn('<description lang="en-uk">Flaking paint</description>', saved)
        self.assertIn('<description lang="en">Loss of paint</description>', saved)

    def test_buttons_are_pressed_by_assistive_technologies(self):
        """An assistive technology that presses a button can use the window that it opens."""
        program, window = self.open_main_window()
        window.button("Clone").act()
        naming = program.window("Add new")
        naming.button("OK").act()
        program.dialog("Error").button("Close").act()
        naming.button("Cancel").act()
        naming.expect_closed()
        window.list().row("Own (Vera) 1").select()
        window.button("Edit").act()
        editing = program.window("Edit remark codeset - own.codeset")
        editing.button("Add new").act()
        dialog = program.window("Edit remark code")
        dialog.button(" + ").act()
        program.wait(lambda: len(dialog.find_all("push button", " - ")) == 2, "another row")
        dialog.button(" - ", index=-1).act()
        program.wait(lambda: len(dialog.find_all("push button", " - ")) == 1, "the row to go")
        dialog.button("Cancel").act()
        dialog.expect_closed()
        editing.button("Close").act()
        program.dialog("Really close?").button("Close").act()
        editing.expect_closed()
        window.button("Add from file").act()
        chooser = program.file_chooser("Select a file to add")
        chooser.cancel()
        window.close()
        program.expect_exit(0)

    def test_assistive_technologies_can_use_the_assistant(self):
        """The message of Apply can be read while it is shown."""
        program = self.start()
        assistant = program.window(ASSISTANT)
        assistant.button("Next").act()
        assistant.field("Workspace location").enter(str(self.home))
        assistant.button("Apply").act()
        refusal = program.dialog("Error")
        self.assertEqual(
            refusal.message,
            "There is already a folder or a file with that name.\n\nPlease choose a new location.",
        )
        refusal.button("Close").act()
        refusal.expect_closed()
        assistant.button("Next").act()
        assistant.field("Workspace location").expect_text(str(self.home))
        assistant.field("Workspace location").enter(str(self.home / "Mine"))
        assistant.button("Apply").act()
        assistant.button("Close").act()
        assistant.expect_closed()
        program.window(MAIN_WINDOW).close()
        program.expect_exit(0)

    def test_escape_ends_a_search_before_it_closes_the_window(self):
        program, window = self.open_main_window()
        window.button("Add bundled").click()
        selector = program.window("Select one to add")
        selector.list().expect_focus()
        display.type_text("met")
        program.wait(
            lambda: [text.split()[0] for text in selector.list().selected_texts()] == ["Metals"],
            "the row to be found",
        )
        display.press("Escape")
        settle()
        self.assertTrue(selector.is_open)
        self.escape(selector)
        window.expect_active()


if __name__ == "__main__":
    main()
