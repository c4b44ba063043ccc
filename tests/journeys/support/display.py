"""The user's hands and eyes: mouse, keyboard, clipboard and screen of the X display."""

import contextlib
import re
import subprocess
import time

from . import xlib
from .waiting import settle, wait_until

# A pause between keystrokes, in milliseconds.
KEY_DELAY = 8

# Seconds without a key before a message takes keys; see read_message.
READING_PAUSE = 0.45

last_key_time = 0

# Key symbols that the keyboard is known to have.
provided = set()

CONTROL_KEYS = {"\n": "Return", "\t": "Tab"}


def click(x, y, button=1, times=1):
    xdotool("mousemove", x, y, "click", "--repeat", times, "--delay", 60, button)


def move(x, y):
    xdotool("mousemove", x, y)


def press(*keys):
    """Presses keys one after the other, each named as X names it: "Tab", "Return", "ctrl+a",
    "alt+F4"."""
    press_at_pace(KEY_DELAY, *keys)


def press_at_pace(milliseconds, *keys):
    """Presses keys one after the other; each goes down that long after the one before it."""
    names = {name for key in keys for name in key.split("+")}
    # xdotool's own short names, such as "ctrl", are keys of every keyboard and unknown to X.
    provide({keysym for keysym in map(xlib.keysym_of_name, names) if keysym})
    xdotool("key", "--delay", milliseconds, *keys)


def hold(key, seconds):
    """Holds a key down, so that it repeats."""
    xdotool("keydown", key, "sleep", seconds, "keyup", key)


@contextlib.contextmanager
def held(key):
    """Holds the key down for the block; the display repeats it."""
    xdotool("keydown", key)
    try:
        yield
    finally:
        xdotool("keyup", key)


def type_text(text):
    """Types the text by keys, line breaks as Return and tabs as Tab."""
    run = ""
    for character in text:
        if character in CONTROL_KEYS:
            type_run(run)
            press(CONTROL_KEYS[character])
            run = ""
        else:
            run += character
    type_run(run)


def type_run(text):
    if text:
        provide(set(map(xlib.keysym_of_character, text)))
        xdotool("type", "--delay", KEY_DELAY, "--", text)


def provide(keysyms):
    """Makes sure that the keyboard has keys with these symbols."""
    missing = keysyms - provided
    if missing:
        xlib.add_keys(missing)
        provided.update(missing)


def set_clipboard(text):
    subprocess.run(
        ("xclip", "-selection", "clipboard", "-in"),
        input=text.encode(),
        stdout=subprocess.DEVNULL,
        check=True,
        timeout=10,
    )
    # It returns before it owns the clipboard.
    wait_until(lambda: read_clipboard().stdout == text.encode(), "the clipboard to hold the text")


def clipboard():
    answer = read_clipboard()
    answer.check_returncode()
    return answer.stdout.decode()


def read_clipboard():
    return subprocess.run(
        ("xclip", "-selection", "clipboard", "-out", "-target", "UTF8_STRING"),
        capture_output=True,
        check=False,
        timeout=10,
    )


def window_id(pid, title):
    """The X window of that title that the process shows."""
    pattern = "^" + re.sub(r"([][\\^$.*+?(){}|])", r"\\\1", title) + "$"

    # A window that is destroyed during the search can end it early.
    def find():
        answer = subprocess.run(
            ("xdotool", "search", "--all", "--onlyvisible", "--pid", str(pid), "--name", pattern),
            capture_output=True,
            check=False,
            text=True,
            timeout=10,
        )
        return answer.stdout.split()

    return wait_until(find, f"an X window {title!r}")[-1]


def active_process():
    """The process of the window that has the keyboard, or None when no window has it."""
    answer = subprocess.run(
        ("xdotool", "getactivewindow", "getwindowpid"),
        capture_output=True,
        check=False,
        text=True,
        timeout=10,
    )
    return int(answer.stdout) if answer.returncode == 0 else None


def window_class(window):
    """The instance and the class of an X window."""
    return tuple(re.findall(r'"([^"]*)"', window_property(window, "WM_CLASS")))


def is_maximized(window):
    return "_NET_WM_STATE_MAXIMIZED_VERT" in window_property(window, "_NET_WM_STATE")


def window_property(window, name):
    """The value of a window's property, as xprop prints it."""
    return subprocess.run(
        ("xprop", "-id", str(window), name), capture_output=True, check=True, text=True, timeout=10
    ).stdout


def activate(window):
    """Raises an X window and gives it the keyboard, as a click on its task bar button does."""
    xdotool("windowactivate", window)


def ask_manager_to_close(window):
    """Asks the window manager to close an X window, as its task bar button does. The window need
    not be active."""
    with xlib.connection() as (x11, display):
        xlib.send_message(
            x11,
            display,
            x11.XDefaultRootWindow(display),
            int(window),
            "_NET_CLOSE_WINDOW",
            (0, 2),
            xlib.TO_MANAGER,
        )


def ask_client_to_close(window):
    """Sends an X window what the window manager sends it when it is to be closed."""
    with xlib.connection() as (x11, display):
        delete = x11.XInternAtom(display, b"WM_DELETE_WINDOW", False)
        xlib.send_message(x11, display, int(window), int(window), "WM_PROTOCOLS", (delete, 0), 0)


def move_window(window, x, y):
    """Asks the window manager for a place on the screen, as dragging the title bar does, and waits
    until it has answered."""
    configure(window, "windowmove", window, x, y)


def resize(window, width, height):
    """Asks the window manager for a size, as dragging a corner does, and waits until it has
    answered. The program may insist on more."""
    configure(window, "windowsize", window, width, height)


def configure(window, *request):
    # X answers the question for the geometry after it has passed the request on.
    xdotool(*request, "getwindowgeometry", window)
    xlib.await_manager()


def screen_size():
    """(width, height) in pixels."""
    answer = subprocess.run(
        ("xdotool", "getdisplaygeometry"), capture_output=True, check=True, text=True, timeout=10
    )
    width, height = answer.stdout.split()
    return int(width), int(height)


def screenshot(path):
    subprocess.run(("import", "-window", "root", str(path)), check=True, timeout=20)


def read_message():
    """Waits after the last key for the time in which a user reads. A message that opens while the
    user types accepts no keys."""
    settle(max(0, last_key_time + READING_PAUSE - time.monotonic()))


def xdotool(*arguments):
    global last_key_time
    subprocess.run(
        ("xdotool", *map(str, arguments)), stdout=subprocess.DEVNULL, check=True, timeout=60
    )
    last_key_time = time.monotonic()
