"""Widgets, windows, dialogs, lists and the file chooser, as a user sees and operates them."""

import re
import time

from gi.repository import Atspi

from . import accessibility, display, xlib
from .waiting import DEFAULT_SECONDS, settle

WINDOW_ROLES = (
    "frame",
    "dialog",
    "alert",
    "window",
    "file chooser",
    "file chooser dialog",
    "color chooser",
)
DIALOG_ROLES = ("dialog", "alert")


def matches(wanted, actual):
    """`wanted` is a text, a compiled pattern to be found in the text, or None for anything."""
    if wanted is None:
        return True
    return bool(wanted.search(actual)) if isinstance(wanted, re.Pattern) else wanted == actual


def labels_of(accessible, label_before):
    """The texts that identify a widget to a user: the labels related to it, the one directly before
    it, its accessible name. The colon and the mark of a required field are left out."""
    labels = [*accessibility.labels_of(accessible), accessibility.name(accessible)]
    if label_before is not None:
        labels.append(label_before)
    return [re.sub(r":( \(Required\))?$", "", label) for label in labels]


class Widget:
    """One accessible object of the program. Properties are read from the program each time; the
    functions that find a widget wait for it."""

    def __init__(self, program, accessible):
        self.program = program
        self.accessible = accessible

    def __repr__(self):
        return f"{self.role} {self.name!r}"

    def __eq__(self, other):
        return isinstance(other, Widget) and self.accessible == other.accessible

    __hash__ = None

    # Reading

    @property
    def role(self):
        return accessibility.role(self.accessible)

    @property
    def name(self):
        return accessibility.name(self.accessible)

    @property
    def description(self):
        return accessibility.description(self.accessible)

    @property
    def known_as(self):
        """The text by which a user knows it: its name, or else its label."""
        return next(filter(None, [self.name, *labels_of(self.accessible, None)]), "")

    @property
    def key(self):
        """The key of its first action in the accessibility tree; None when there is none."""
        binding = self.accessible.get_action_iface().get_key_binding(0)
        return binding.removeprefix(";;") or None

    @property
    def states(self):
        self.accessible.clear_cache()
        return accessibility.states(self.accessible)

    @property
    def text(self):
        """The shown text: the content of a field, the text of a label, the choice of a combo
        box."""
        self.accessible.clear_cache()
        shown = accessibility.text(self.accessible)
        return self.name if shown is None else shown

    @property
    def lines(self):
        """The text as it is shown, line by line, without the line breaks."""
        text = self.text
        found = (
            Atspi.Text.get_string_at_offset(self.accessible, offset, Atspi.TextGranularity.LINE)
            for offset in range(len(text))
        )
        ranges = sorted({(line.start_offset, line.end_offset) for line in found})
        return [text[start:end].removesuffix("\n") for start, end in ranges]

    @property
    def extents(self):
        """(x, y, width, height) in pixels of the screen, or None when it is not on the screen."""
        place = accessibility.extents(self.accessible)
        return place and tuple(pixels * self.program.scale for pixels in place)

    @property
    def is_sensitive(self):
        return "sensitive" in self.states

    @property
    def is_showing(self):
        return "showing" in self.states

    @property
    def is_focused(self):
        return "focused" in self.states

    @property
    def is_editable(self):
        return "editable" in self.states

    @property
    def is_checked(self):
        return bool({"checked", "pressed"} & self.states)

    @property
    def caret(self):
        return accessibility.attempt(Atspi.Text.get_caret_offset, self.accessible)

    @property
    def selected_text(self):
        """The marked part of a field; the empty text when nothing is marked."""
        if not accessibility.attempt(Atspi.Text.get_n_selections, self.accessible, default=0):
            return ""
        marked = Atspi.Text.get_selection(self.accessible, 0)
        return Atspi.Text.get_text(self.accessible, marked.start_offset, marked.end_offset)

    def text_attributes(self, offset=0):
        """The attributes of the text at an offset, such as {"underline": "single", "fg-color":
        "65535,0,0"}."""
        run = accessibility.attempt(Atspi.Text.get_attribute_run, self.accessible, offset, False)
        return run[0] if run else {}

    # Finding inside

    def find_all(self, role=None, name=None, labelled=None, showing=True):
        """The matching widgets inside at this moment, in reading order. `role` is one role name or
        several; `labelled` is the text of a label that belongs to the widget, without its colon."""
        roles = (role,) if isinstance(role, str) else role
        self.accessible.clear_cache()
        found = []
        label_before = None
        for accessible in accessibility.descendants(self.accessible):
            own_role = accessibility.role(accessible)
            if showing and "showing" not in accessibility.states(accessible):
                continue
            if (
                (roles is None or own_role in roles)
                and matches(name, accessibility.name(accessible))
                and (
                    labelled is None
                    or any(
                        matches(labelled, label) for label in labels_of(accessible, label_before)
                    )
                )
            ):
                found.append(as_widget(self.program, accessible))
            if own_role == "label":
                label_before = accessibility.name(accessible)
            elif own_role not in ("filler", "panel", "scroll pane", "viewport"):
                label_before = None
        if not showing:
            return found
        # Containers list their children in any order; users read from the top.
        places = [(widget.extents, widget) for widget in found]
        return [
            widget
            for _, widget in sorted(
                (place for place in places if place[0]), key=lambda place: place[0][1::-1]
            )
        ]

    def find(self, role=None, name=None, labelled=None, index=0, seconds=DEFAULT_SECONDS):
        """The widget of that index among the matching ones; waits until it exists."""
        wanted = ", ".join(
            f"{key} {value!r}"
            for key, value in (("role", role), ("name", name), ("label", labelled))
            if value
        )
        found = self.program.wait(
            lambda: self.find_all(role, name, labelled)[index:][:1],
            lambda: f"a widget with {wanted}, index {index}, in {self!r}",
            seconds,
        )
        return found[0]

    def has(self, role=None, name=None, labelled=None):
        return bool(self.find_all(role, name, labelled))

    def button(self, name, index=0):
        return self.find(accessibility.BUTTONS, name, index=index)

    def field(self, labelled=None, index=0):
        """A text field (entry or text view)."""
        return self.find(accessibility.TEXTS, labelled=labelled, index=index)

    def fields(self):
        return self.find_all(accessibility.TEXTS)

    def combo(self, labelled=None, index=0):
        return self.find("combo box", labelled=labelled, index=index)

    def combos(self):
        return self.find_all("combo box")

    def label(self, text):
        return self.find("label", text)

    def labels(self):
        """The texts of all labels that are shown."""
        return [widget.text for widget in self.find_all("label")]

    def list(self, labelled=None, index=0):
        return self.find(accessibility.LISTS, labelled=labelled, index=index)

    def frame(self, title):
        """The box whose frame bears the title. A required field's mark is part of the title: give a
        pattern to leave it out."""
        return self.find("panel", title)

    # Operating

    def click(self, button=1, times=1):
        """Clicks its middle once it is on the screen, at rest and sensitive."""
        self.program.wait(lambda: self.is_sensitive, lambda: f"{self!r} to become sensitive")
        self.click_as_it_is(button, times)

    def click_as_it_is(self, button=1, times=1):
        """Clicks its middle whether or not it is sensitive."""
        x, y, width, height = self.resting_extents()
        display.click(x + width // 2, y + height // 2, button, times)

    def act(self):
        """Performs its first action through the accessibility interface, as a screen reader
        does."""
        self.program.wait(lambda: self.is_sensitive, lambda: f"{self!r} to become sensitive")
        if not self.accessible.get_action_iface().do_action(0):
            raise AssertionError(f"{self!r} refuses its action")

    def resting_extents(self):
        """Its extents, as soon as two readings in a row agree and the program has no work."""
        looks = [None]

        def at_rest():
            looks.append(self.extents if self.is_showing else None)
            is_same = looks[-1] is not None and looks[-1] == looks[-2]
            return is_same and not self.program.is_working and looks[-1]

        return self.program.wait(at_rest, lambda: f"{self!r} to come to rest on the screen")

    def focus(self):
        """Gives it the keyboard by a click, unless it has it."""
        if not self.is_focused:
            self.click()
            self.expect_focus()
        return self

    def type(self, text):
        """Types by keys at the cursor."""
        self.focus()
        display.type_text(text)

    def press(self, *keys):
        self.focus()
        display.press(*keys)

    def paste(self, text):
        self.focus()
        display.set_clipboard(text)
        display.press("ctrl+v")

    def clear(self):
        """Empties a field by keys."""
        self.press("ctrl+a", "Delete")
        self.expect_text("")

    def enter(self, text):
        """Replaces a field's content by typing."""
        self.clear()
        display.type_text(text)

    def choose(self, choice):
        """Opens a combo box and selects the item of that name by keys, because near the edge of the
        screen part of the list is hidden."""
        place = self.choices().index(choice)
        self.open_choices()
        display.press("Home", *["Down"] * place, "Return")
        self.expect_text(choice)

    def open_choices(self):
        """A mouse button that is released late chooses the item below it, and the list closes
        again. The second click finds the program ready."""
        for _ in range(2):
            self.click()
            self.program.wait(lambda: self.find_all("menu item"), lambda: f"{self!r} to open")
            settle()
            if self.find_all("menu item"):
                return
        raise AssertionError(f"{self!r} does not stay open")

    def choices(self):
        """The names of a combo box's items, in order."""
        return [item.name for item in self.find_all("menu item", showing=False)]

    # Expecting, with patience

    def expect_text(self, text, seconds=DEFAULT_SECONDS):
        self.program.wait(
            lambda: matches(text, self.text),
            lambda: f"{self!r} to show {text!r}; it shows {self.text!r}",
            seconds,
        )

    def expect_focus(self, seconds=DEFAULT_SECONDS):
        self.program.wait(
            lambda: self.is_focused,
            lambda: f"the focus on {self!r}; it is on {self.program.focused()!r}",
            seconds,
        )

    def expect_sensitive(self, sensitive=True, seconds=DEFAULT_SECONDS):
        state = "sensitive" if sensitive else "insensitive"
        self.program.wait(
            lambda: self.is_sensitive == sensitive, lambda: f"{self!r} to become {state}", seconds
        )


class Row(Widget):
    """One row of a list: its cell in the first column."""

    next_click = 0

    def __init__(self, table, index, accessible):
        super().__init__(table.program, accessible)
        self.table = table
        self.index = index

    @property
    def is_selected(self):
        return self.index in self.table.selected_indices()

    @property
    def colour(self):
        """Its own text colour as (red, green, blue) of 0-65535, or None when it has none of its
        own."""
        value = self.text_attributes().get("fg-color")
        return tuple(map(int, value.split(","))) if value else None

    def reveal(self):
        """Turns the mouse wheel over the list until the whole row is visible."""

        def seen():
            x, y, width, height = self.table.resting_extents()
            own = self.extents
            if own and y <= own[1] and own[1] + own[3] <= y + height:
                return True
            display.click(x + width // 2, y + height // 2, 4 if self.is_above() else 5)
            return False

        self.program.wait(seen, lambda: f"{self!r} to be scrolled into view")

    def is_above(self):
        seen = [row.index for row in self.table.rows() if row.extents]
        return bool(seen) and self.index <= seen[0]

    def click_as_it_is(self, button=1, times=1):
        """A click soon after the last one in the same place would be taken for the second half of a
        double one."""
        self.reveal()
        settle(max(0, Row.next_click - time.monotonic()))
        super().click_as_it_is(button, times)
        Row.next_click = time.monotonic() + 0.5

    def select(self):
        self.click()
        self.program.wait(lambda: self.is_selected, lambda: f"{self!r} to be selected")
        return self


class List(Widget):
    """A list or tree view."""

    def __bool__(self):
        """An empty list is still a widget that was found."""
        return True

    def __len__(self):
        self.accessible.clear_cache()
        return max(accessibility.attempt(Atspi.Table.get_n_rows, self.accessible, default=0), 0)

    def rows(self):
        cells = (
            (index, accessibility.attempt(Atspi.Table.get_accessible_at, self.accessible, index, 0))
            for index in range(len(self))
        )
        return [Row(self, index, cell) for index, cell in cells if cell is not None]

    def texts(self):
        """The texts of all rows, in order."""
        return [row.text for row in self.rows()]

    def row(self, text):
        """The first row with that text (or pattern), waiting until there is one."""
        return self.program.wait(
            lambda: next((row for row in self.rows() if matches(text, row.text)), None),
            lambda: f"a row {text!r} among {self.texts()!r}",
        )

    def selected_indices(self):
        self.accessible.clear_cache()
        return list(
            accessibility.attempt(Atspi.Table.get_selected_rows, self.accessible, default=[])
        )

    def selected_texts(self):
        chosen = self.selected_indices()
        return [row.text for row in self.rows() if row.index in chosen]

    def expect_texts(self, texts, seconds=DEFAULT_SECONDS):
        self.program.wait(
            lambda: self.texts() == texts,
            lambda: f"the rows {texts!r}; they are {self.texts()!r}",
            seconds,
        )

    def expect_selected(self, texts, seconds=DEFAULT_SECONDS):
        self.program.wait(
            lambda: self.selected_texts() == texts,
            lambda: f"the selection {texts!r}; it is {self.selected_texts()!r}",
            seconds,
        )


class Window(Widget):
    """A top-level window."""

    @property
    def title(self):
        return self.name

    @property
    def is_active(self):
        return "active" in self.states

    @property
    def is_open(self):
        return any(window == self for window in self.program.windows())

    def expect_active(self, seconds=DEFAULT_SECONDS):
        self.program.wait(
            lambda: self.is_active,
            lambda: f"{self!r} to be the active window; the windows are {self.program.windows()!r}",
            seconds,
        )
        return self

    def expect_closed(self, seconds=DEFAULT_SECONDS):
        """Also waits until another window has the keyboard, because keys are lost until then."""
        self.program.wait(lambda: not self.is_open, lambda: f"{self!r} to close", seconds)
        self.program.wait(
            self.program.has_passed_keyboard_on,
            lambda: f"another window to be active; the windows are {self.program.windows()!r}",
        )

    @property
    def window_id(self):
        return display.window_id(self.program.pid, self.title)

    def activate(self):
        """Raises it above the windows of other programs."""
        if not self.is_active:
            display.activate(self.window_id)
        return self.expect_active()

    def resize(self, width, height):
        """Requests a size, and returns the resulting extents."""
        display.resize(self.window_id, width, height)
        settle()
        return self.resting_extents()

    def toggle_maximized(self):
        """As a double click on its title bar does. Returns the extents afterwards."""
        before = display.is_maximized(self.window_id)
        self.press("alt+F10")
        self.program.wait(
            lambda: display.is_maximized(self.window_id) != before,
            f"{self!r} to be {'restored' if before else 'maximized'}",
        )
        xlib.await_manager()
        settle()
        return self.resting_extents()

    def press(self, *keys):
        """Presses keys wherever the focus is in this window."""
        self.expect_active()
        display.press(*keys)

    def tab_to(self, wanted, key="Tab"):
        """Presses the key until the focus is on the widget, or on one that is known as this text,
        and returns that. Nothing has the focus after the button that had it became insensitive;
        then the key leads to the window's first or last widget."""
        self.expect_active()
        settle()
        for _ in range(30):
            focused = self.program.focused()
            if isinstance(wanted, Widget) and wanted.is_focused:
                return wanted
            if focused is not None and focused.known_as == wanted:
                return focused
            self.press(key)
            self.program.wait(
                lambda focused=focused: self.program.focused() not in (None, focused),
                f"{key} to move the focus",
            )
        raise AssertionError(f"{key} does not lead to {wanted!r}")

    def close(self):
        """Asks the window manager to close it, as its title bar's button does."""
        self.press("alt+F4")

    def leave(self, way_out):
        """Closes it by its button of that name, or by keys such as "Escape"."""
        if self.has("push button", way_out):
            self.button(way_out).click()
        else:
            self.press(way_out)
        self.expect_closed()

    def ask_to_close(self):
        """Asks the window manager to close it, as a task bar does. It need not be the active
        window."""
        display.ask_manager_to_close(self.window_id)

    def ask_directly_to_close(self):
        """Sends it the window manager's request to close, past the window manager."""
        display.ask_client_to_close(self.window_id)


class Dialog(Window):
    """A message or question."""

    @property
    def message(self):
        return "\n".join(self.labels())

    def answer(self, button):
        """Clicks the button and waits until the dialog is gone."""
        self.button(button).click()
        self.expect_closed()


class FileChooser(Window):
    """The toolkit's file chooser."""

    def name_field(self):
        return self.find("text")

    @property
    def proposed_name(self):
        return self.name_field().text

    def filter_combo(self):
        return self.find("combo box", index=-1)

    @property
    def filter(self):
        """The name of the current filter."""
        return self.filter_combo().text

    @property
    def filters(self):
        return self.filter_combo().choices()

    @property
    def folder(self):
        """The last entry name of the folder that is shown: the pressed button of the path bar."""
        pressed = [button.name for button in self.find_all("toggle button") if button.is_checked]
        return pressed[-1] if pressed else None

    def enter_path(self, path):
        """Puts an absolute path into the location field without accepting it."""
        path = str(path)
        self.expect_active()
        if not self.has("text"):
            # The first character brings the location field up; keys that come before it is there
            # are lost.
            display.press("slash")
            self.name_field().expect_focus()
        else:
            self.name_field().focus()
        settle()
        display.press("ctrl+a")
        if path.isascii():
            display.type_text(path)
        else:
            display.set_clipboard(path)
            display.press("ctrl+v")
        field = self.name_field()
        self.program.wait(
            lambda: field.text.startswith(path), lambda: f"the path {path!r}; it is {field.text!r}"
        )
        # The chooser may have completed the path to that of a longer name. The completion is
        # marked, so it can be deleted.
        settle()
        if field.text != path:
            display.press("Delete")
            field.expect_text(path)

    def accept(self, path):
        """Chooses an absolute path. Does not wait: the chooser may ask a question first."""
        self.enter_path(path)
        display.press("Return")

    def choose(self, choice):
        """Chooses an absolute path and waits until the chooser is gone."""
        self.accept(choice)
        self.expect_closed()

    def cancel(self):
        self.button("Cancel").click()
        self.expect_closed()


def as_widget(program, accessible):
    return (
        List(program, accessible)
        if accessibility.role(accessible) in accessibility.LISTS
        else Widget(program, accessible)
    )


def as_window(program, accessible):
    role = accessibility.role(accessible)
    if role.startswith("file chooser"):
        return FileChooser(program, accessible)
    return Dialog(program, accessible) if role in DIALOG_ROLES else Window(program, accessible)
