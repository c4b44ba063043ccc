"""Waiting for the effects of what a journey does."""

import time
import weakref

from gi.repository import GLib

DEFAULT_SECONDS = 10
PAUSE_SECONDS = 0.02
# Seconds that a wait may last beyond its own while a program works.
WORK_SECONDS = 60
# The most that one look counts, however long the program takes to answer it.
LOOK_SECONDS = 1
# Seconds without work after which a program has nothing left to do.
QUIET_SECONDS = 0.1

# The programs under test. Each says with is_working whether it needs the processor at this moment.
programs = weakref.WeakSet()


class JourneyTimeout(AssertionError):
    """A condition that a journey waited for did not become true."""


class Clock:
    """Counts the time in which no program works, or would if the machine let it, as long as it is
    looked at often."""

    def __init__(self):
        self.begin = self.latest = time.monotonic()
        self.counted = 0  # seconds

    @property
    def elapsed(self):
        """All seconds up to the last look."""
        return self.latest - self.begin

    def look(self):
        now = time.monotonic()
        if not are_programs_working():
            self.counted += min(now - self.latest, LOOK_SECONDS)
        self.latest = now

    def run(self, seconds):
        """Lets so many seconds pass, counted or not."""
        while (rest := self.begin + seconds - time.monotonic()) > 0:
            time.sleep(min(rest, PAUSE_SECONDS))
            self.look()


def wait_until(condition, what, seconds=DEFAULT_SECONDS):
    """Calls `condition` until it returns something true, and returns that. `what` completes "Waited
    in vain for ..."; it may be a function, called only on failure. Time in which a program works,
    or would if the machine let it, does not count."""
    clock = Clock()
    while True:
        pump()
        value = condition()
        if value:
            return value
        clock.look()
        if clock.counted > seconds or clock.elapsed > seconds + WORK_SECONDS:
            raise JourneyTimeout(
                f"Waited {clock.elapsed:.1f} s in vain for {describe(what)} "
                f"(at most {seconds} s in which no program worked)"
            )
        time.sleep(PAUSE_SECONDS)


def describe(what):
    return what() if callable(what) else what


def settle(seconds=0.1):
    """Lets the programs work for a while, and until they have nothing left to do, where no state
    shows that they are finished, such as after a keystroke that must change nothing."""
    end = time.monotonic() + seconds
    limit = end + DEFAULT_SECONDS
    while time.monotonic() < end:
        pump()
        time.sleep(PAUSE_SECONDS)
        if are_programs_working():
            end = min(limit, max(end, time.monotonic() + QUIET_SECONDS))


def are_programs_working():
    return any(program.is_working for program in programs)


def pump():
    """Handles the messages that arrived from the accessibility bus, so that they do not pile up."""
    context = GLib.MainContext.default()
    while context.pending():
        context.iteration(False)
