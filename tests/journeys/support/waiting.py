"""Waiting for what a program does in its own time."""

import time

from gi.repository import GLib

DEFAULT_SECONDS = 10
PAUSE_SECONDS = 0.02


class JourneyTimeout(AssertionError):
    """What a journey waited for did not come."""


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
    """For the few things that announce themselves nowhere, such as a keystroke that must change
    nothing."""
    deadline = time.monotonic() + seconds
    while time.monotonic() < deadline:
        pump()
        time.sleep(PAUSE_SECONDS)


def pump():
    """Takes in what arrived from the accessibility bus, so that its messages do not pile up."""
    context = GLib.MainContext.default()
    while context.pending():
        context.iteration(False)
