"""The user's hands and eyes: mouse, keyboard, clipboard and screen of the X display."""

import re
import subprocess

# A pause between keystrokes, in milliseconds. Characters outside the keyboard's layout are typed by remapping a key, which
# the program has to notice before the key arrives.
KEY_DELAY = 8
REMAPPED_KEY_DELAY = 100

CONTROL_KEYS = {"\n": "Return", "\t": "Tab"}


def click(x, y, button=1, times=1):
    xdotool("mousemove", x, y, "click", "--repeat", times, "--delay", 60, button)


def move(x, y):
    xdotool("mousemove", x, y)


def press(*keys):
    """Presses keys one after the other, each named as X names it: "Tab", "Return", "ctrl+a", "alt+F4"."""
    xdotool("key", "--delay", KEY_DELAY, *keys)


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
        xdotool("type", "--delay", KEY_DELAY if text.isascii() else REMAPPED_KEY_DELAY, "--", text)


def set_clipboard(text):
    subprocess.run(
        ("xclip", "-selection", "clipboard", "-in"), input=text.encode(), stdout=subprocess.DEVNULL, check=True, timeout=10)


def clipboard():
    answer = subprocess.run(
        ("xclip", "-selection", "clipboard", "-out", "-target", "UTF8_STRING"), capture_output=True, check=True, timeout=10)
    return answer.stdout.decode()


def window_id(pid, title):
    """The X window of that title that the process shows."""
    pattern = "^" + re.sub(r"([][\\^$.*+?(){}|])", r"\\\1", title) + "$"
    answer = subprocess.run(
        ("xdotool", "search", "--all", "--onlyvisible", "--pid", str(pid), "--name", pattern), capture_output=True, check=True,
        text=True, timeout=10)
    return answer.stdout.split()[-1]


def activate(window):
    """Raises an X window and gives it the keyboard, as a click on its task bar button does."""
    xdotool("windowactivate", window)


def resize(window, width, height):
    """Asks the window manager for a size, as dragging a corner does. The program may insist on more."""
    xdotool("windowsize", window, width, height)


def screen_size():
    """(width, height) in pixels."""
    answer = subprocess.run(("xdotool", "getdisplaygeometry"), capture_output=True, check=True, text=True, timeout=10)
    width, height = answer.stdout.split()
    return int(width), int(height)


def screenshot(path):
    subprocess.run(("import", "-window", "root", str(path)), check=True, timeout=20)


def xdotool(*arguments):
    subprocess.run(("xdotool", *map(str, arguments)), check=True, timeout=60)
