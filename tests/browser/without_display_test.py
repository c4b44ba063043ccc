#!/usr/bin/python3
"""A session in a web browser, from the first start to the last byte: its work, its protection
against others, and its clean-up."""

import os
import pathlib
import re
import signal
import socket
import subprocess
import tempfile
import unittest

from browser import HOME, RETURN, TAB, Browser
from session import LIBRARY, Session, listening_sockets, shared_memory
from support import codeset, main, wait_until
from support.journey import artifacts_folder
from visitor import WEBSOCKET, ask, head

# Distances of buttons from the corners of their windows, in pixels, the shadow of a window that is
# not maximized included.
ASSISTANT_BUTTON = (72, 53)  # from right and bottom: Next, Apply or Close
ADD_NEW_CODESET = (93, 168)  # from right and top
CLOSE_WINDOW = (44, 41)  # from right and top
ADD_NEW_CODE = (60, 77)  # from left and bottom
SAVE_CODESET = (68, 26)  # from left and bottom

PROGRAM = "vantorelle-rema"  # of a process's name the system keeps 15 characters
PROCESSES = ("bash", "python3", "broadwayd", PROGRAM)

# The report of the shell on a process that was killed.
KILLED = r".* Killed .*\n"

REFUSAL = b"HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\nConnection: close\r\n\r\n"
NOBODY = 65534
NOT_ENCLOSED = (
    "Other users of this machine cannot be kept from the program's display here: "
    "unshare: unshare failed: Operation not permitted\n"
)
SAY_SO = "If this machine has no other user, set VANTORELLE_SOLE_USER=1 and start again.\n"

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
        self.shared_memory = set(shared_memory())

    def start(self, **environment):
        session = Session(self.home, self.scratch, **environment)
        self.addCleanup(session.kill)
        return session

    def test_a_codeset_is_written_in_the_browser(self):
        session = self.start()
        address, port, _ = session.read_address()
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
        wait_until(
            lambda: path.exists() and path.read_bytes() == written,
            lambda: f"{written!r} in {path.name}",
        )

        window = self.expect_window(main_window.number)
        self.browser.click(window.right - CLOSE_WINDOW[0], window.top + CLOSE_WINDOW[1])
        self.expect_nothing_left(session, 0, sockets)

    def test_sessions_of_one_user_share_nothing_and_end_with_their_script(self):
        ends = [
            ("bash", signal.SIGHUP, 129, ""),
            ("bash", signal.SIGINT, 130, ""),
            ("bash", signal.SIGTERM, 143, ""),
            ("bash", signal.SIGKILL, -signal.SIGKILL, ""),
            ("python3", signal.SIGKILL, 128 + signal.SIGKILL, KILLED),
            ("broadwayd", signal.SIGKILL, 1, r"Unable to read from broadway server: .*\n"),
            (PROGRAM, signal.SIGKILL, 128 + signal.SIGKILL, KILLED),
        ]
        runtime = self.folder / "runtime"
        runtime.mkdir(mode=0o700)
        # Started at the same moment, so that all try the same port.
        sessions = [self.start(XDG_RUNTIME_DIR=str(runtime)) for _ in ends]
        places = [session.read_address()[1:] for session in sessions]
        for values in zip(*places):
            self.assertEqual(len(set(values)), len(ends))
        sockets = [self.expect_local(session, port) for session, (port, _) in zip(sessions, places)]
        for session, own_sockets, (name, number, status, printed) in zip(sessions, sockets, ends):
            with self.subTest(name=name, signal=number.name):
                session.send(name, number)
                self.expect_nothing_left(session, status, own_sockets, printed)
        self.assertEqual(list(runtime.iterdir()), [])

    def test_only_the_printed_address_is_served_and_only_to_its_own_page(self):
        _, port, secret = self.start().read_address()
        host = f"127.0.0.1:{port}"
        own = {"Host": host, "Origin": f"http://{host}"}
        page, upgrade = f"/{secret}/", f"/{secret}/socket"
        refused = {
            "no secret": head("/", own),
            "no secret, the page's script": head("/broadway.js", own),
            "no secret, upgrade": head("/socket", {**own, **WEBSOCKET}),
            "another secret": head(f"/{secret[::-1]}/", own),
            "another secret, upgrade": head(f"/{secret[::-1]}/socket", {**own, **WEBSOCKET}),
            "the secret's beginning": head(f"/{secret[:-1]}/", own),
            "more than the secret": head(f"/{secret}A/", own),
            "the secret in the query": head(f"/?{secret}", own),
            "another page": head(page + "favicon.ico", own),
            "out of the secret's folder": head(page + "../socket", {**own, **WEBSOCKET}),
            "another method": head(page, own, "POST"),
            "a request with a body": head(page, {**own, "Content-Length": "0"}),
            "no host": head(page, {}),
            "another host": head(page, {"Host": f"rebound.example:{port}"}),
            "another host, its origin": head(
                upgrade,
                {
                    "Host": f"rebound.example:{port}",
                    "Origin": f"http://rebound.example:{port}",
                    **WEBSOCKET,
                },
            ),
            "a host without its port": head(page, {"Host": "127.0.0.1"}),
            "two hosts": head(page, {"host": "rebound.example", **own}),
            "another origin": head(page, {**own, "Origin": "http://foreign.example"}),
            "another origin, upgrade": head(
                upgrade, {**own, "Origin": "http://foreign.example", **WEBSOCKET}
            ),
            "another port's origin": head(
                upgrade, {**own, "Origin": "http://127.0.0.1:1", **WEBSOCKET}
            ),
            "an origin that the browser hides": head(
                upgrade, {**own, "Origin": "null", **WEBSOCKET}
            ),
            "no origin, upgrade": head(upgrade, {"Host": host, **WEBSOCKET}),
            "no upgrade": head(upgrade, own),
            "no HTTP": b"\0\xff\r\n\r\n",
            "no end": b"GET / HTTP/1.1\r\n" + b"A: a\r\n" * 2800,  # more than 16 KiB
        }
        for name, request in refused.items():
            with self.subTest(refused=name):
                self.assertEqual(ask(port, request), REFUSAL)
        served = {
            "the page": (head(page, {"Host": host}), b"HTTP/1.0 200 OK"),
            "the page, by the machine's own name": (
                head(page, {"Host": f"localhost:{port}"}),
                b"HTTP/1.0 200 OK",
            ),
            "the page's script": (head(page + "broadway.js", {"Host": host}), b"HTTP/1.0 200 OK"),
            "the page, with others' cookies": (
                head(page, {"Host": host, "Cookie": "a=\u00e4; b=c"}),
                b"HTTP/1.0 200 OK",
            ),
            "the upgrade": (
                head(upgrade, {**own, **WEBSOCKET}),
                b"HTTP/1.1 101 Switching Protocols",
            ),
        }
        for name, (request, status) in served.items():
            with self.subTest(served=name):
                self.assertEqual(ask(port, request).split(b"\r\n")[0], status)
        # A second request right behind an admitted one must not be passed on unchecked.
        two = head(page, {"Host": host}) + head(
            "/socket", {**own, "Origin": "http://foreign.example", **WEBSOCKET}
        )
        self.assertEqual(ask(port, two).count(b"HTTP/1."), 1)

    # Only root can become another user.
    if os.geteuid() == 0:

        def test_another_user_of_the_machine_cannot_connect(self):
            session = self.start()
            _, port, secret = session.read_address()
            self.expect_local(session, port)
            sockets = [path for path in self.scratch.rglob("*") if path.is_socket()]
            self.assertEqual(len(sockets), 1)
            # The folders around it are open to others, so that only the session's own folder keeps
            # them out.
            for folder in (self.folder, self.scratch):
                folder.chmod(0o755)
            other_user = (pathlib.Path(__file__).parent / "other_user.py").read_text()
            found = subprocess.run(
                ("/usr/bin/python3", "-c", other_user, str(port), self.scratch, *sockets),
                input=secret,
                capture_output=True,
                text=True,
                check=True,
                cwd="/",
                user=NOBODY,
                group=NOBODY,
                extra_groups=[],
            )
            self.assertEqual(found.stdout.split(), [])

    def test_without_namespaces_the_user_has_to_confirm_to_be_alone(self):
        path = self.path_without_namespaces()
        if os.geteuid() == 0:
            # Root acts as an ordinary user, who has to confirm that.
            check = ("bash", "-c", 'source "$1"; check_enclosure', "check", LIBRARY)
            refused = subprocess.run(
                check,
                capture_output=True,
                text=True,
                env={"PATH": path},
                cwd="/",
                user=NOBODY,
                group=NOBODY,
                extra_groups=[],
                check=False,
            )
            self.assertEqual((refused.returncode, refused.stderr), (1, NOT_ENCLOSED + SAY_SO))
            alone = self.start(PATH=path)
        else:
            self.start(PATH=path).expect_end(1, re.escape(NOT_ENCLOSED + SAY_SO))
            alone = self.start(PATH=path, VANTORELLE_SOLE_USER="1")
        self.assertEqual(alone.read_line(), NOT_ENCLOSED)
        _, port, _ = alone.read_address()
        self.expect_local(alone, port)
        # Here the program uses the machine's own shared memory, and the toolkit leaves some of it
        # behind. A stopped program takes no more.
        alone.stop(PROGRAM)
        memory = alone.shared_memory()
        alone.send(PROGRAM, signal.SIGKILL)
        alone.expect_end(128 + signal.SIGKILL, KILLED)
        for path in memory:
            path.unlink(missing_ok=True)
        self.assertEqual(list(self.scratch.iterdir()), [])

    def path_without_namespaces(self):
        """A search path on which `unshare` fails, as it does where the system forbids
        namespaces."""
        programs = self.folder / "programs"
        programs.mkdir()
        for folder in (self.folder, programs):
            folder.chmod(0o755)
        unshare = programs / "unshare"
        unshare.write_text(
            "#!/bin/sh\necho 'unshare: unshare failed: Operation not permitted' >&2\nexit 1\n"
        )
        unshare.chmod(0o755)
        return f"{programs}:{os.environ['PATH']}"

    def create_workspace(self, assistant):
        button = (assistant.right - ASSISTANT_BUTTON[0], assistant.bottom - ASSISTANT_BUTTON[1])
        self.browser.click(*button)
        location = self.expect_change(assistant)
        self.browser.press_alt("a")
        self.expect_change(location)
        self.browser.click(*button)
        main_window = self.expect_window(above=assistant.number)
        self.assertTrue(
            (self.home / "Vantorelle Workspace" / "codesets" / "metals.codeset").exists()
        )
        return main_window

    def begin_codeset(self, main_window):
        """A new codeset that has a name and is not saved."""
        self.browser.click(
            main_window.right - ADD_NEW_CODESET[0], main_window.top + ADD_NEW_CODESET[1]
        )
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
        """Waits until the topmost window is drawn and is the one with the number, or one made later
        than the window `above`."""

        def find():
            window = next(iter(self.browser.windows()[-1:]), None)
            wanted = window and (window.number == number if number else window.number > above)
            return window if wanted and window.ink >= LEAST_INK else None

        window = wait_until(
            find, lambda: f"window {number or above}; there are {self.browser.windows()!r}", 30
        )
        width, height = self.browser.size()
        self.assertGreaterEqual((window.left, window.top), (0, 0))
        self.assertLessEqual(window.right, width, "reaches beyond the page")
        self.assertLessEqual(window.bottom, height, "reaches beyond the page")
        return window

    def expect_change(self, window):
        """Waits until the window shows another text than before."""

        def find():
            now = self.browser.windows()[-1]
            return (
                now
                if now.number == window.number and abs(now.ink - window.ink) > CARET_INK
                else None
            )

        return wait_until(
            find, lambda: f"a change of {window!r}; there are {self.browser.windows()!r}"
        )

    def expect_local(self, session, port):
        """Only this machine itself can reach the program, once it shows something. Returns the
        sockets by which it can."""
        wait_until(session.shared_memory, lambda: f"a picture by any of {session.processes()!r}")
        self.assertCountEqual(session.processes().values(), PROCESSES)
        sockets = session.listening()
        self.assertEqual(list(sockets.values()), [("127.0.0.1", port)])
        own_addresses = subprocess.run(
            ("hostname", "-I"), capture_output=True, text=True, check=True
        ).stdout.split()
        for address in ("127.0.0.2", *own_addresses):
            with self.subTest(address=address), self.assertRaises(ConnectionRefusedError):
                socket.create_connection((address, port), 5).close()
        return set(sockets)

    def expect_nothing_left(self, session, status, sockets, printed=""):
        # Compares sockets, not ports: the port may belong to another session by now.
        session.expect_end(status, printed)
        # A process that is killed shows no command line any more before the system has closed its
        # sockets.
        wait_until(
            lambda: sockets.isdisjoint(listening_sockets()), lambda: f"{sockets!r} to be closed"
        )
        self.assertEqual(set(shared_memory()) - self.shared_memory, set())
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
