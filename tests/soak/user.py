"""A user who acts at random: chooses each action among those that the active window offers."""

import collections
import random
import subprocess

from support import MAIN_WINDOW, Dialog, FileChooser, JourneyTimeout, accessibility, display
from support.waiting import settle, wait_until
from support.widgets import as_widget

# The kind of action of each button of the main window, and how often it is pressed. The list must
# neither run empty nor grow without end: what adds to it is pressed more often the emptier it is.
MAIN_BUTTONS = {
    "Add from file": ("add", 2),
    "Add bundled": ("add", 2),
    "Add new": ("add", 3),
    "Clone": ("clone", 8),
    "Edit": ("edit", 8),
    "Save a copy": ("save a copy", 2),
    "Delete": ("delete", 5),
    "Refresh list": ("refresh", 2),
}
ADDING = ("add", "clone")
KEPT_CODESETS = 50

# The same for the other windows. Each translation has a " - ", each text a " + ".
BUTTONS = {
    "Save codeset": ("save", 14),
    "Close": ("close", 8),
    "Cancel": ("close", 2),
    "OK": ("confirm", 8),
    "Add new": ("add a code", 6),
    "Edit": ("edit a code", 10),
    "Delete": ("delete a code", 3),
    " + ": ("add a language", 1),
    " - ": ("delete a language", 0.7),
}

WORDS = (
    "W1",
    "worm holes",
    "Split  end",
    "100 % & <b>",
    "%s%n",
    "x" * 40,
    "1.5",
    "G10",
    "åäö",
    " ",
)
PASTED = (
    "Ébène & chêne",
    "one\ntwo\tthree",
    "\u4e2d\u6587 €",
    "a \"b\" 'c' &amp; ]]>",
    "\u00a0\u00a0",
    "word " * 50,
    "e\u0301t\u00e9",
    "\U0001f600",
)
FIELD_KEYS = (
    "Left",
    "Right",
    "Home",
    "End",
    "BackSpace",
    "Delete",
    "ctrl+a",
    "ctrl+c",
    "ctrl+x",
    "ctrl+v",
    "ctrl+z",
    "shift+Left",
    "shift+End",
    "ctrl+shift+Left",
    "Up",
    "Down",
    "Insert",
)
LIST_KEYS = ("Up", "Down", "Home", "End", "Next", "Prior", "space")
WINDOW_KEYS = ("Tab", "shift+Tab", "ctrl+Tab", "Return", "alt")
MENU_KEYS = ("Up", "Down", "Left", "Right", "Home", "End")

CHOOSER_SECONDS = 0.2
LOST_SECONDS = 5

CLOSED = (*accessibility.LISTS, *accessibility.TEXTS, *accessibility.BUTTONS, "combo box", "label")

Offer = collections.namedtuple("Offer", "weight kind what act")


class User:
    """`codesets` is the folder that the program lists, `outside` one with files to be added and
    copies to be saved."""

    def __init__(self, program, codesets, outside, seed):
        self.program = program
        self.codesets = codesets
        self.outside = outside
        self.files = sorted(outside.iterdir())
        self.random = random.Random(seed)
        self.count = 0
        self.done = collections.Counter()
        self.last = collections.deque(maxlen=20)

    def act(self):
        window = self.resting_window()
        offers = self.offers(window)
        offer = self.random.choices(offers, [offer.weight for offer in offers])[0]
        self.last.append(f"{window.title}: {offer.what}")
        self.count += 1
        try:
            offer.act()
        except subprocess.CalledProcessError:
            # The X tools fail when a window closes while they look for another.
            self.done["given up"] += 1
        except JourneyTimeout:
            # The effect of an earlier action may close the window during this one.
            if window.is_open:
                raise
        self.done[offer.kind] += 1

    def resting_window(self):
        """The active window, when two looks in a row agree and the program sleeps."""
        looks = [None]

        def at_rest():
            looks.append(self.program.active_window())
            return (
                looks[-1] is not None
                and looks[-1] == looks[-2]
                and self.program.is_asleep
                and looks[-1]
            )

        try:
            return wait_until(at_rest, "a window to come to rest", LOST_SECONDS)
        except JourneyTimeout:
            # When a question and the window that it is about close in the same moment, the window
            # manager may find the second gone before it can activate it. A user then clicks on what
            # is left.
            left = self.program.windows()[-1:]
            if left and not left[0].is_active:
                self.last.append(f"click on {left[0]!r}, which is left")
                self.done["activate"] += 1
                display.click(*(place + 2 for place in left[0].extents[:2]))
            return self.program.wait(
                at_rest,
                lambda: f"a window to come to rest; the windows are {self.program.windows()!r}",
            )

    def return_to_main_window(self):
        """Leaves all windows over the main window."""
        for _ in range(20):
            window = self.resting_window()
            if window.title == MAIN_WINDOW:
                return window
            if window.has("push button", "Save codeset") or window.title == "Really close?":
                window.button("Close").click()
            else:
                display.press("Escape")
        raise AssertionError(f"There is no way back from {window!r} to the main window")

    # The offered actions

    def offers(self, window):
        if isinstance(window, FileChooser):
            return self.chooser_offers(window)
        if isinstance(window, Dialog):
            return self.dialog_offers(window)
        if not window.title:
            return self.menu_offers()
        return [
            *self.window_offers(window),
            *(
                offer
                for widget in self.widgets(window)
                for offer in self.widget_offers(window, widget)
            ),
        ]

    def widgets(self, window):
        """The widgets of the window that a user can operate."""
        window.accessible.clear_cache()
        for accessible in accessibility.descendants(window.accessible, CLOSED):
            if accessibility.role(accessible) in CLOSED and {
                "showing",
                "sensitive",
            } <= accessibility.states(accessible):
                yield as_widget(self.program, accessible)

    def widget_offers(self, window, widget):
        role = widget.role
        if role in accessibility.BUTTONS:
            return self.button_offers(window, widget)
        if role in accessibility.TEXTS:
            return self.field_offers(widget)
        if role in accessibility.LISTS:
            return self.list_offers(widget)
        if role == "combo box":
            return [Offer(0.6, "choose", f"choose in {widget!r}", lambda: self.choose(widget))]
        return []

    def button_offers(self, window, button):
        name = button.name
        if window.title == MAIN_WINDOW:
            kind, weight = MAIN_BUTTONS[name]
            need = 2 ** ((KEPT_CODESETS - len(list(self.codesets.iterdir()))) / 5)
            weight *= need if kind in ADDING else 1 / need if kind == "delete" else 1
        else:
            kind, weight = BUTTONS[name]
        return [Offer(weight, kind, f"click {name!r}", lambda: self.click(button))]

    def field_offers(self, field):
        keys = self.random.choices(FIELD_KEYS, k=3)
        offers = [
            Offer(0.3, "keys", f"{keys} in {field!r}", lambda: self.press_in(field, *keys)),
            Offer(0.1, "menu", f"right click on {field!r}", lambda: self.click(field, 3)),
        ]
        if field.is_editable:
            typed = self.random.choice(WORDS)
            pasted = self.random.choice(PASTED)
            offers += [
                Offer(
                    0.6,
                    "type",
                    f"type {typed!r} into {field!r}",
                    lambda: self.type_into(field, "ctrl+a", typed),
                ),
                Offer(
                    0.2,
                    "type",
                    f"add {typed!r} to {field!r}",
                    lambda: self.type_into(field, "End", typed),
                ),
                Offer(
                    0.4,
                    "paste",
                    f"paste {pasted!r} into {field!r}",
                    lambda: self.paste_into(field, pasted),
                ),
            ]
        return offers

    def list_offers(self, rows):
        keys = self.random.choices(LIST_KEYS, k=2)
        searched = self.random.choice(("c", "w1", "m", "zz"))
        return [
            Offer(12, "select", f"click in {rows!r}", lambda: self.click_somewhere(rows, 1)),
            Offer(
                0.5, "select", f"double click in {rows!r}", lambda: self.click_somewhere(rows, 2)
            ),
            Offer(2, "select", f"{keys} in {rows!r}", lambda: self.press_in(rows, *keys)),
            Offer(
                1,
                "search",
                f"search {searched!r} in {rows!r}",
                lambda: self.search_in(rows, searched),
            ),
        ]

    def window_offers(self, window):
        key = self.random.choice(WINDOW_KEYS)
        width, height = self.random.randint(200, 1300), self.random.randint(150, 1000)
        offers = [
            Offer(2, "keys", key, lambda: display.press(key)),
            Offer(
                1,
                "resize",
                f"{width} x {height}",
                lambda: display.resize(window.window_id, width, height),
            ),
            Offer(0.5, "resize", "maximize or not", lambda: display.press("alt+F10")),
        ]
        if window.title != MAIN_WINDOW:
            offers += self.leaving_offers(window)
        if window.title == "Add new":
            name = f"c{self.random.randrange(10000)}.codeset"
            offers.append(
                Offer(12, "type", f"name it {name}", lambda: self.name_file(window, name))
            )
        return offers

    def leaving_offers(self, window):
        # Closing waits until this window is active: the main window must not be closed.
        return [
            Offer(0.5, "close", "Escape", lambda: display.press("Escape")),
            Offer(0.5, "close", "alt+F4", window.close),
        ]

    def dialog_offers(self, dialog):
        answers = [
            Offer(3, "answer", f"answer {button.name!r}", lambda button=button: self.click(button))
            for button in self.widgets(dialog)
            if button.role in accessibility.BUTTONS
        ]
        return [
            *answers,
            *self.leaving_offers(dialog),
            Offer(0.5, "keys", "Tab", lambda: display.press("Tab")),
        ]

    def menu_offers(self):
        """The menu of a field is a window without a name."""
        key = self.random.choice(MENU_KEYS)
        return [
            Offer(6, "menu", key, lambda: display.press(key)),
            Offer(3, "menu", "Return", lambda: display.press("Return")),
            Offer(2, "menu", "Escape", lambda: display.press("Escape")),
        ]

    def chooser_offers(self, chooser):
        path = self.random.choice(self.files)
        keys = self.random.choices(("Up", "Down", "Home", "End"), k=2)
        return [
            Offer(6, "choose", f"choose {path.name}", lambda: self.choose_file(chooser, path)),
            Offer(1, "keys", f"{keys}", lambda: display.press(*keys)),
            Offer(1, "keys", "Return", lambda: display.press("Return")),
            *self.leaving_offers(chooser),
            Offer(2, "close", "click 'Cancel'", lambda: self.click(chooser.button("Cancel"))),
        ]

    # How it is done

    def click(self, widget, button=1, times=1, place=(0.5, 0.5)):
        """Clicks it where it is just now. What is scrolled away or behind the window's edge is left
        alone."""
        active = self.program.active_window()
        own, window = widget.extents, active and active.extents
        if not own or not window:
            return False
        x, y = (int(own[axis] + own[axis + 2] * place[axis]) for axis in (0, 1))
        if not (window[0] <= x < window[0] + window[2] and window[1] <= y < window[1] + window[3]):
            return False
        display.click(x, y, button, times)
        return True

    def click_somewhere(self, widget, times):
        self.click(widget, times=times, place=(0.4, self.random.random()))

    def press_in(self, widget, *keys):
        if self.click(widget):
            display.press(*keys)

    def type_into(self, field, key, text):
        if self.click(field):
            display.press(key)
            display.type_text(text)

    def paste_into(self, field, text):
        display.set_clipboard(text)
        self.press_in(field, "ctrl+a", "ctrl+v")

    def search_in(self, rows, text):
        if self.click(rows):
            display.type_text(text)
            display.press("Escape")

    def choose(self, combo):
        place = self.random.randint(0, len(combo.choices()))
        if self.click(combo):
            settle()
            display.press("Home", *["Down"] * place, "Return")

    def choose_file(self, chooser, path):
        """The slash brings the location field up where there is none; the chooser looks at the path
        in its own time."""
        display.set_clipboard(str(path))
        display.press("slash")
        settle(CHOOSER_SECONDS)
        display.press("ctrl+a", "ctrl+v")
        settle(CHOOSER_SECONDS)
        display.press("Return")
        for _ in range(5):
            settle(CHOOSER_SECONDS)
            if not chooser.is_active:
                break

    def name_file(self, window, name):
        if self.click(window.field()):
            display.press("ctrl+a")
            display.type_text(f"{name}\n")
