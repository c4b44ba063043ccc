"""The few functions of Xlib for which there is no program: messages between windows, the answers of
the window manager, and the keys of the display."""

import contextlib
import ctypes

from .waiting import wait_until

PROPERTY_NOTIFY = 28
CLIENT_MESSAGE = 33
PROPERTY_CHANGE_MASK = 1 << 22
TO_MANAGER = 1 << 19 | 1 << 20  # SubstructureNotifyMask | SubstructureRedirectMask

KEYSYMS = ctypes.POINTER(ctypes.c_ulong)


class Event(ctypes.Structure):
    """XEvent of Xlib, any of its kinds."""

    _fields_ = [("room", ctypes.c_long * 24)]


class ClientMessage(ctypes.Structure):
    """XClientMessageEvent of Xlib, with room for the largest XEvent."""

    _fields_ = [
        ("type", ctypes.c_int),
        ("serial", ctypes.c_ulong),
        ("send_event", ctypes.c_int),
        ("display", ctypes.c_void_p),
        ("window", ctypes.c_ulong),
        ("message_type", ctypes.c_ulong),
        ("format", ctypes.c_int),
        ("data", ctypes.c_long * 5),
        ("room", ctypes.c_long * 24),
    ]


def load():
    x11 = ctypes.CDLL("libX11.so.6")
    x11.XOpenDisplay.restype = ctypes.c_void_p
    x11.XDefaultRootWindow.argtypes = x11.XCloseDisplay.argtypes = (ctypes.c_void_p,)
    x11.XDefaultRootWindow.restype = x11.XInternAtom.restype = ctypes.c_ulong
    x11.XInternAtom.argtypes = (ctypes.c_void_p, ctypes.c_char_p, ctypes.c_int)
    x11.XSendEvent.argtypes = (
        ctypes.c_void_p,
        ctypes.c_ulong,
        ctypes.c_int,
        ctypes.c_long,
        ctypes.c_void_p,
    )
    x11.XDisplayKeycodes.argtypes = (
        ctypes.c_void_p,
        ctypes.POINTER(ctypes.c_int),
        ctypes.POINTER(ctypes.c_int),
    )
    x11.XGetKeyboardMapping.argtypes = (
        ctypes.c_void_p,
        ctypes.c_ubyte,
        ctypes.c_int,
        ctypes.POINTER(ctypes.c_int),
    )
    x11.XGetKeyboardMapping.restype = KEYSYMS
    x11.XChangeKeyboardMapping.argtypes = (
        ctypes.c_void_p,
        ctypes.c_int,
        ctypes.c_int,
        KEYSYMS,
        ctypes.c_int,
    )
    x11.XStringToKeysym.argtypes = (ctypes.c_char_p,)
    x11.XStringToKeysym.restype = ctypes.c_ulong
    x11.XFree.argtypes = (ctypes.c_void_p,)
    x11.XSync.argtypes = (ctypes.c_void_p, ctypes.c_int)
    x11.XCreateSimpleWindow.argtypes = (
        ctypes.c_void_p,
        ctypes.c_ulong,
        ctypes.c_int,
        ctypes.c_int,
        ctypes.c_uint,
        ctypes.c_uint,
        ctypes.c_uint,
        ctypes.c_ulong,
        ctypes.c_ulong,
    )
    x11.XCreateSimpleWindow.restype = ctypes.c_ulong
    x11.XSelectInput.argtypes = (ctypes.c_void_p, ctypes.c_ulong, ctypes.c_long)
    x11.XCheckTypedWindowEvent.argtypes = (
        ctypes.c_void_p,
        ctypes.c_ulong,
        ctypes.c_int,
        ctypes.c_void_p,
    )
    return x11


@contextlib.contextmanager
def connection():
    """Xlib and a connection of its own to the display."""
    x11 = load()
    display = x11.XOpenDisplay(None)
    if not display:
        raise AssertionError("There is no X display.")
    try:
        yield x11, display
    finally:
        x11.XCloseDisplay(display)


def send_message(x11, display, receiver, window, kind, data, mask):
    kind_atom = x11.XInternAtom(display, kind.encode(), False)
    event = ClientMessage(type=CLIENT_MESSAGE, window=window, message_type=kind_atom, format=32)
    event.data[:2] = data
    if not x11.XSendEvent(display, receiver, False, mask, ctypes.byref(event)):
        raise AssertionError(f"The message {kind} was not sent.")


def await_manager():
    """Returns when the window manager has handled all that X had passed on to it before. It handles
    one thing after the other, and must answer the last one, the request of an invisible window for
    the width of its frame."""
    with connection() as (x11, display):
        root = x11.XDefaultRootWindow(display)
        window = x11.XCreateSimpleWindow(display, root, 0, 0, 1, 1, 0, 0, 0)
        x11.XSelectInput(display, window, PROPERTY_CHANGE_MASK)
        send_message(x11, display, root, window, "_NET_REQUEST_FRAME_EXTENTS", (0, 0), TO_MANAGER)
        event = Event()
        # The answer is a property of the window, which has no other.
        wait_until(
            lambda: x11.XCheckTypedWindowEvent(
                display, window, PROPERTY_NOTIFY, ctypes.byref(event)
            ),
            "the answer of the window manager",
        )


def keysym_of_name(name):
    """The key symbol of a name such as "dead_acute"; 0 for a name that X does not know."""
    return load().XStringToKeysym(name.encode())


def keysym_of_character(character):
    """The key symbols of ISO-8859-1 are its characters; all others have one by their number."""
    number = ord(character)
    return number if number < 0x100 else 0x1000000 + number


def add_keys(keysyms):
    """Gives each of the key symbols that no key has a free key, for as long as the display exists.

    xdotool types a character that the keyboard lacks with a key that has it only for a moment. A
    program under load asks for the meaning of the key when the moment is over, and the character is
    lost. A key that keeps its meaning can wait.
    """
    with connection() as (x11, display):
        first, last, width = ctypes.c_int(), ctypes.c_int(), ctypes.c_int()
        x11.XDisplayKeycodes(display, ctypes.byref(first), ctypes.byref(last))
        count = last.value - first.value + 1
        table = x11.XGetKeyboardMapping(display, first.value, count, ctypes.byref(width))
        keys = [table[key * width.value : (key + 1) * width.value] for key in range(count)]
        x11.XFree(table)
        # Only the first two symbols of a key are typed without a key that changes the level.
        present = {keysym for key in keys for keysym in key[:2]}
        free = [first.value + index for index, key in enumerate(keys) if not any(key)]
        missing = sorted(set(keysyms) - present)
        # Two for each key, as the keyboard has few free ones: the second is typed with Shift.
        for pair in zip(missing[::2], [*missing[1::2], *missing[-1:]], strict=False):
            if not free:
                raise AssertionError("The keyboard has no free key.")
            x11.XChangeKeyboardMapping(display, free.pop(), 2, (ctypes.c_ulong * 2)(*pair), 1)
        x11.XSync(display, False)
