"""One run of the staged program."""

import os
import pathlib
import re
import signal
import subprocess

from . import accessibility, display, widgets
from .waiting import DEFAULT_SECONDS, describe, programs, settle, wait_until

EXECUTABLE = "vantorelle-remark-codesets-manager"
START_SECONDS = 30

# The toolkit's chooser unselects its files half a second after its name was set. If a closed
# chooser is being destroyed at that moment, its list no longer exists, and the toolkit prints a
# critical ("gtk_tree_view_get_selection: assertion 'GTK_IS_TREE_VIEW (tree_view)' failed", GTK
# 3.24.38). A program with nothing but a chooser does the same. The journeys closed a chooser at
# that moment about once in fifty times.
CHOOSER_PAUSE = 0.7

# Lines that a clean run never prints: the toolkit's complaints and the reports of sanitizers.
COMPLAINTS = re.compile(
    r"(WARNING|CRITICAL|ERROR) \*\*|\*\* (WARNING|CRITICAL|ERROR)|runtime error:|Sanitizer"
)


class Program:
    """Started at once. `home` is the user's home folder, `stage` the folder with the executable and
    the files beside it, `output` the file that takes what is printed, `environment` what is set
    (or, with None, unset) beyond the caller's. Signals that the program's parent ignored stay
    ignored in it."""

    def __init__(self, home, stage, output, environment=None, ignored_signals=()):
        self.home = pathlib.Path(home)
        self.stage = pathlib.Path(stage)
        self.output = pathlib.Path(output)
        self.ended_by_journey = False
        self.expected_complaints = None
        variables = {**os.environ, **home_environment(self.home), **(environment or {})}
        # Pixels of the screen for each that the toolkit, and with it the accessibility tree,
        # reckons with.
        self.scale = int(variables.get("GDK_SCALE") or 1)

        def ignore_signals():
            for number in ignored_signals:
                signal.signal(number, signal.SIG_IGN)

        with open(self.output, "wb") as stream:
            self.process = subprocess.Popen(
                [self.stage / EXECUTABLE],
                stdin=subprocess.DEVNULL,
                stdout=stream,
                stderr=subprocess.STDOUT,
                cwd=self.home,
                env={name: value for name, value in variables.items() if value is not None},
                preexec_fn=ignore_signals,
            )
        programs.add(self)

    @property
    def pid(self):
        return self.process.pid

    @property
    def is_running(self):
        return self.process.poll() is None

    @property
    def is_asleep(self):
        """Whether the process sleeps at this moment."""
        return self.scheduling()[0] == "S"

    @property
    def is_working(self):
        """Whether the process needs the processor or the disk at this moment, even if the machine
        does not let it have them."""
        return self.is_running and self.scheduling()[0] in "RD"

    @property
    def processor_time(self):
        """The processor time used so far, in ticks of the system's clock."""
        return sum(map(int, self.scheduling()[11:13]))

    @property
    def private_memory(self):
        """KiB that it alone has written to."""
        lines = (
            pathlib.Path(f"/proc/{self.pid}/smaps_rollup").read_text(encoding="utf-8").splitlines()
        )
        return sum(
            int(line.split()[1]) for line in lines if line.startswith(("Private_Dirty:", "Swap:"))
        )

    def scheduling(self):
        """The fields of /proc/PID/stat from the third on; those before may contain blanks."""
        return (
            pathlib.Path(f"/proc/{self.pid}/stat")
            .read_text(encoding="utf-8")
            .rpartition(")")[2]
            .split()
        )

    @property
    def printed(self):
        """All that the program has printed so far."""
        return self.output.read_text(encoding="utf-8", errors="replace")

    def wait(self, condition, what, seconds=DEFAULT_SECONDS):
        """Like wait_until, but fails as soon as the program has ended."""

        def with_program():
            value = condition()
            if not value and not self.is_running:
                raise AssertionError(
                    f"The program ended with status {self.process.returncode} before "
                    f"{describe(what)}.\n"
                    f"{self.printed}"
                )
            return value

        return wait_until(with_program, what, seconds)

    # Windows

    def windows(self):
        """The windows that are shown."""
        application = accessibility.application(self.pid)
        if application is None:
            return []
        return [
            widgets.as_window(self, child)
            for child in accessibility.children(application)
            if accessibility.role(child) in widgets.WINDOW_ROLES
            and "showing" in accessibility.states(child)
        ]

    def window(self, title, kind=widgets.Window, seconds=START_SECONDS):
        """The window of that title (or pattern) and kind, waited for until it is there and
        active."""
        window = self.wait(
            lambda: next(
                (
                    w
                    for w in self.windows()
                    if widgets.matches(title, w.title) and isinstance(w, kind)
                ),
                None,
            ),
            lambda: f"a window {title!r}; the windows are {self.windows()!r}",
            seconds,
        )
        return window.expect_active()

    def dialog(self, title=None):
        """A message, after the pause in which a user reads it."""
        dialog = self.window(title, widgets.Dialog, DEFAULT_SECONDS)
        display.read_message()
        return dialog

    def file_chooser(self, title=None):
        chooser = self.window(title, widgets.FileChooser, DEFAULT_SECONDS)
        settle(CHOOSER_PAUSE)
        return chooser

    def active_window(self):
        return next((window for window in self.windows() if window.is_active), None)

    def has_passed_keyboard_on(self):
        """True when an open window has the keyboard: one of this program, if it still has any, or
        one of another program."""
        return (
            not self.windows()
            or self.active_window() is not None
            or display.active_process() not in (None, self.pid)
        )

    def focused(self):
        """The widget that has the keyboard focus in the active window, or None."""
        window = self.active_window()
        if window is None:
            return None
        window.accessible.clear_cache()
        found = [
            accessible
            for accessible in accessibility.descendants(window.accessible)
            if {"focused", "showing"} <= accessibility.states(accessible)
        ]
        return widgets.as_widget(self, found[-1]) if found else None

    # The end

    def expect_exit(self, status=0, seconds=DEFAULT_SECONDS):
        wait_until(
            lambda: not self.is_running,
            lambda: f"the program to end; its windows are {self.windows()!r}",
            seconds,
        )
        self.ended_by_journey = True
        if self.process.returncode != status:
            raise AssertionError(
                f"The program ended with status {self.process.returncode}, not {status}.\n"
                f"{self.printed}"
            )

    def kill(self, number=signal.SIGKILL):
        """Ends the program as a crash or a log-out would."""
        self.ended_by_journey = True
        self.process.send_signal(number)
        self.process.wait(DEFAULT_SECONDS)

    def complaints(self):
        return [line for line in self.printed.splitlines() if COMPLAINTS.search(line)]

    def check(self):
        """Fails when the program ended on its own, or printed a complaint that the journey did not
        expect."""
        if not self.is_running and not self.ended_by_journey:
            raise AssertionError(
                f"The program ended on its own with status {self.process.returncode}.\n"
                f"{self.printed}"
            )
        unexpected = [
            line
            for line in self.complaints()
            if not (self.expected_complaints and self.expected_complaints.search(line))
        ]
        if unexpected:
            raise AssertionError("The program complained:\n" + "\n".join(unexpected))

    def dump(self):
        """The program's accessibility tree as text."""
        application = accessibility.application(self.pid) if self.is_running else None
        return accessibility.dump(application) if application else "The program is not there.\n"


def home_environment(home):
    """The variables that put home and XDG folders below `home`."""
    return {
        "HOME": str(home),
        "XDG_CONFIG_HOME": str(home / ".config"),
        "XDG_DATA_HOME": str(home / ".local/share"),
        "XDG_CACHE_HOME": str(home / ".cache"),
        "XDG_STATE_HOME": str(home / ".local/state"),
    }
