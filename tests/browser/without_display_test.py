#!/usr/bin/python3
"""A session in a web browser, from the first start to the last byte; and what it leaves behind."""

import pathlib
import signal
import socket
import subprocess
import tempfile
import unittest

from browser import HOME, RETURN, TAB, Browser
from session import Session, listening_sockets
from support import codeset, main, wait_until
from support.journey import artifacts_folder

# How far buttons lie from the corners of their windows, in pixels, the shadow of a window that is not maximized included.
ASSISTANT_BUTTON = (72, 53)  # from right and bottom: Next, Apply or Close
ADD_NEW_CODESET = (93, 168)  # from right and top
CLOSE_WINDOW = (44, 41)  # from right and top
ADD_NEW_CODE = (60, 77)  # from left and bottom
SAVE_CODESET = (68, 26)  # from left and bottom

PROGRAM = "vantorelle-rema"  # of a process's name the system keeps 15 characters

# Dark pixels: of a window that is drawn at least, and more than a blinking caret has.
LEAST_INK = 300
CARET_INK = 40


class WithoutDisplay(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="browser.", ignore_cleanup_errors=True)
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.home = self.folder / "home"
        self.scratch = self.folder / "scratch"
        self.home.mkdir()
        self.scratch.mkdir()

    def start(self, **environment):
        session = Session(self.home, self.scratch, **environment)
        self.addCleanup(session.kill)
        return session

    def test_a_codeset_is_written_in_the_browser(self):
        session = self.start()
        address, port = session.read_address()
        self.browser = Browser(self.folder / "browser")
        self.addCleanup(self.browser.end)
        self.addCleanup(self.leave_picture)
        self.browser.open(address)

        main_window = self.create_workspace(self.expect_window())
        sockets = self.expect_local(session, port)
        path = self.home / "Vantorelle Workspace" / "codesets" / "harbour.codeset"
        editing = self.begin_codeset(main_window)
        self.browser.reopen(address)
        self.finish_codeset(self.expect_window(editing.number))
        written = codeset("Hafenmühle", remarks=[("H1", "Rusty crane")])
        wait_until(lambda: path.exists() and path.read_bytes() == written, lambda: f"{written!r} in {path.name}")

        window = self.expect_window(main_window.number)
        self.browser.click(window.right - CLOSE_WINDOW[0], window.top + CLOSE_WINDOW[1])
        self.expect_nothing_left(session, 0, sockets)

    def test_sessions_of_one_user_share_nothing_and_end_with_their_script(self):
        ends = {signal.SIGHUP: 129, signal.SIGINT: 130, signal.SIGTERM: 143, signal.SIGKILL: -signal.SIGKILL}
        runtime = self.folder / "runtime"
        runtime.mkdir(mode=0o700)
        # At the same moment, so that they want the same port.
        sessions = [self.start(XDG_RUNTIME_DIR=str(runtime)) for _ in ends]
        ports = [session.read_address()[1] for session in sessions]
        self.assertEqual(len(set(ports)), len(ends))
        for session in sessions:
            wait_until(lambda: PROGRAM in session.processes().values(), lambda: f"the program in {session.processes()!r}")
        sockets = [self.expect_local(session, port) for session, port in zip(sessions, ports)]
        for session, own_sockets, (number, status) in zip(sessions, sockets, ends.items()):
            with self.subTest(signal=number.name):
                session.send(number)
                self.expect_nothing_left(session, status, own_sockets)

    def create_workspace(self, assistant):
        button = (assistant.right - ASSISTANT_BUTTON[0], assistant.bottom - ASSISTANT_BUTTON[1])
        self.browser.click(*button)
        location = self.expect_change(assistant)
        self.browser.press_alt("a")
        self.expect_change(location)
        self.browser.click(*button)
        main_window = self.expect_window(above=assistant.number)
        self.assertTrue((self.home / "Vantorelle Workspace" / "codesets" / "metals.codeset").exists())
        return main_window

    def begin_codeset(self, main_window):
        """A new codeset that has a name and is not saved."""
        self.browser.click(main_window.right - ADD_NEW_CODESET[0], main_window.top + ADD_NEW_CODESET[1])
        naming = self.expect_window(above=main_window.number)
        self.browser.type(HOME + "harbour" + RETURN)
        editing = self.expect_window(above=naming.number)
        self.browser.type("Hafenmühle")
        self.expect_change(editing)
        return editing

    def finish_codeset(self, editing):
        self.browser.click(editing.left + ADD_NEW_CODE[0], editing.bottom - ADD_NEW_CODE[1])
        self.expect_window(above=editing.number)
        self.browser.type("H1" + TAB + "Rusty crane" + RETURN)
        self.expect_window(editing.number)
        self.browser.click(editing.left + SAVE_CODESET[0], editing.bottom - SAVE_CODESET[1])

    def expect_window(self, number=None, above=0):
        """The topmost window, waited for until it is drawn: that of the number, or one that was made later than another."""

        def find():
            window = next(iter(self.browser.windows()[-1:]), None)
            wanted = window and (window.number == number if number else window.number > above)
            return window if wanted and window.ink >= LEAST_INK else None

        window = wait_until(find, lambda: f"window {number or above}; there are {self.browser.windows()!r}", 30)
        width, height = self.browser.size()
        self.assertGreaterEqual((window.left, window.top), (0, 0))
        self.assertLessEqual(window.right, width, "reaches beyond the page")
        self.assertLessEqual(window.bottom, height, "reaches beyond the page")
        return window

    def expect_change(self, window):
        """The same window, waited for until it shows another text than before."""

        def find():
            now = self.browser.windows()[-1]
            return now if now.number == window.number and abs(now.ink - window.ink) > CARET_INK else None

        return wait_until(find, lambda: f"a change of {window!r}; there are {self.browser.windows()!r}")

    def expect_local(self, session, port):
        """Only this machine itself can reach the program. Returns the sockets by which it can."""
        self.assertCountEqual(session.processes().values(), ("bash", "broadwayd", PROGRAM))
        sockets = session.listening()
        self.assertEqual(list(sockets.values()), [("127.0.0.1", port)])
        own_addresses = subprocess.run(("hostname", "-I"), capture_output=True, text=True, check=True).stdout.split()
        for address in ("127.0.0.2", *own_addresses):
            with self.subTest(address=address), self.assertRaises(ConnectionRefusedError):
                socket.create_connection((address, port), 5).close()
        return set(sockets)

    def expect_nothing_left(self, session, status, sockets):
        # By the sockets: the port may be another session's by now.
        session.expect_end(status)
        # A process that is killed shows no command line any more before the system has closed its sockets.
        wait_until(lambda: sockets.isdisjoint(listening_sockets()), lambda: f"{sockets!r} to be closed")
        self.assertEqual(list(self.scratch.iterdir()), [])

    def leave_picture(self):
        """A screenshot, if the test failed."""
        outcome = self._outcome.result
        if any(test is self for test, _ in outcome.failures + outcome.errors):
            folder = artifacts_folder()
            folder.mkdir(parents=True, exist_ok=True)
            self.browser.screenshot(folder / f"{self._testMethodName}.png")


if __name__ == "__main__":
    main()
