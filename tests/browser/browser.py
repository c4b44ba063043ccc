"""A web browser that shows the program: headless, with a profile of its own, driven through
WebDriver."""

import base64
import json
import os
import re
import select
import subprocess
import time
import urllib.error
import urllib.request
from dataclasses import dataclass

ARGUMENTS = (
    "--headless=new",
    "--no-sandbox",
    "--disable-gpu",
    "--disable-quic",
    "--no-first-run",
    "--disable-background-networking",
    "--disable-component-update",
    "--disable-sync",
    "--window-size=1280,900",
)
ANSWER_SECONDS = 60

# Keys that type nothing, as WebDriver writes them.
TAB, RETURN, ALT, HOME = "\ue004", "\ue006", "\ue00a", "\ue011"

# Each window of the program is a canvas; "ink" is the number of its dark pixels, nearly all of them
# text. Those smaller than any window are aids of the toolkit.
WINDOWS = """
    const shown = [...document.querySelectorAll("canvas")].filter(canvas =>
        canvas.style.visibility == "visible" && canvas.width > 50 && canvas.height > 50);
    shown.sort((one, other) => one.style.zIndex - other.style.zIndex);
    return shown.map(canvas => {
        const place = canvas.getBoundingClientRect();
        const pixels = canvas.getContext("2d").getImageData(0, 0, canvas.width, canvas.height).data;
        let ink = 0;
        for (let at = 0; at < pixels.length; at += 4)
            ink += pixels[at + 3] == 255 && Math.max(pixels[at], pixels[at + 1], pixels[at + 2]) < 100;
        return [canvas.surface.id, place.left, place.top, place.right, place.bottom, ink];
    });
"""


@dataclass
class Window:
    """The place of a window of the program on the page, its shadow included, in pixels."""

    number: int
    left: int
    top: int
    right: int
    bottom: int
    ink: int


class Browser:
    """`folder` takes the profile and is the browser's home."""

    def __init__(self, folder):
        folder.mkdir()
        self.driver = subprocess.Popen(
            ("chromedriver", "--port=0"),
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT,
            env={"PATH": "/usr/bin:/bin", "HOME": str(folder), "TMPDIR": str(folder)},
        )
        # The machine's proxy must not be used.
        self.http = urllib.request.build_opener(urllib.request.ProxyHandler({}))
        try:
            self.session = f"http://127.0.0.1:{self.read_port()}/session"
            options = {"args": [*ARGUMENTS, f"--user-data-dir={folder / 'profile'}"]}
            # The page shows an alert when its server has ended.
            capabilities = {
                "browserName": "chrome",
                "goog:chromeOptions": options,
                "unhandledPromptBehavior": "accept",
            }
            answer = self.call("POST", "", capabilities={"alwaysMatch": capabilities})
            self.session += "/" + answer["sessionId"]
        except BaseException:
            self.end_driver()
            raise

    def read_port(self):
        printed = ""
        end = time.monotonic() + ANSWER_SECONDS
        while not (started := re.search(r"started successfully on port (\d+)\D", printed)):
            if not select.select([self.driver.stdout], [], [], max(0, end - time.monotonic()))[0]:
                raise AssertionError(
                    f"Waited {ANSWER_SECONDS} s in vain for the browser's driver.\n{printed}"
                )
            piece = os.read(self.driver.stdout.fileno(), 4096).decode()
            if not piece:
                raise AssertionError(f"The browser's driver did not start.\n{printed}")
            printed += piece
        return started[1]

    def call(self, method, path, **parameters):
        """The value of WebDriver's answer."""
        data = json.dumps(parameters).encode() if method == "POST" else None
        request = urllib.request.Request(
            self.session + path, data, {"Content-Type": "application/json"}, method=method
        )
        try:
            with self.http.open(request, timeout=ANSWER_SECONDS) as answer:
                return json.load(answer)["value"]
        except urllib.error.HTTPError as error:
            raise AssertionError(f"{method} {path}: {error.read().decode()}") from error
        except TimeoutError as error:
            raise AssertionError(
                f"Waited {ANSWER_SECONDS} s in vain for the answer to {method} {path}"
            ) from error

    def end(self):
        try:
            self.call("DELETE", "")
        finally:
            self.end_driver()

    def end_driver(self):
        self.driver.terminate()
        self.driver.communicate()

    # Looking

    def open(self, address):
        self.call("POST", "/url", url=address)

    def reopen(self, address):
        """Closes the tab, and only then opens the address in another."""
        tab = self.call("POST", "/window/new", type="tab")["handle"]
        self.call("DELETE", "/window")
        self.call("POST", "/window", handle=tab)
        self.open(address)

    def windows(self):
        """The program's shown windows, the topmost last."""
        return [Window(*values) for values in self.run(WINDOWS)]

    def size(self):
        """The width and height of the page."""
        return tuple(self.run("return [window.innerWidth, window.innerHeight]"))

    def run(self, script):
        return self.call("POST", "/execute/sync", script=script, args=[])

    def screenshot(self, path):
        path.write_bytes(base64.b64decode(self.call("GET", "/screenshot")))

    # Operating

    def click(self, x, y):
        self.act(
            "pointer",
            {"type": "pointerMove", "x": int(x), "y": int(y)},
            {"type": "pointerDown", "button": 0},
            {"type": "pointerUp", "button": 0},
        )

    def type(self, text):
        """Presses the keys one after the other."""
        self.act("key", *strokes(text))

    def press_alt(self, key):
        self.act(
            "key", {"type": "keyDown", "value": ALT}, *strokes(key), {"type": "keyUp", "value": ALT}
        )

    def act(self, device, *actions):
        self.call("POST", "/actions", actions=[{"type": device, "id": device, "actions": actions}])


def strokes(keys):
    return [{"type": kind, "value": key} for key in keys for kind in ("keyDown", "keyUp")]
