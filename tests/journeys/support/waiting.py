"""Waiting for the effects of what a journey does."""

import time

from gi.repository import GLib

DEFAULT_SECONDS = 10
PAUSE_SECONDS = 0.02


class JourneyTimeout(AssertionError):
    """A condition that a journey waited for did not become true."""


def wait_until(condition, what, seconds=DEFAULT_SECONDS):
    """Calls `condition` until it returns something true, and returns that. `what` completes "Waited
    in vain for ..."; it may be a function, called only on failure."""
    deadline = time.monotonic() + seconds
    while True:
        pump()
        value = condition()
        if value:
            return value
        if time.monotonic() > deadline:
            raise JourneyTimeout(
                f"Waited in vain for {what() if callable(what) else what} ({seconds} s)"
            )
        time.sleep(PAUSE_SECONDS)


def settle(seconds=0.1):
    """Lets the program work for a while where no state shows that it is finished, such as after a
    keystroke that must change nothing."""
    deadline = time.monotonic() + seconds
    while time.monotonic() < deadline:
        pump()
        time.sleep(PAUSE_SECONDS)


def pump():
    """Handles the messages that arrived from the accessibility bus, so that they do not pile up."""
    context = GLib.MainContext.default()
    while context.pending():
        context.iteration(False)
