#!/usr/bin/python3
"""scripts/run on a Debian with nothing but its base on it, without a display and with one:

    bare_machine.py ROOT CHECKOUT

ROOT is the folder of that Debian, CHECKOUT the path of the checkout in it. To be run by root in a
mount namespace of its own.
"""

import pathlib
import re
import signal
import subprocess
import sys
import time

from clean_debian import ENVIRONMENT, CleanDebian
from layout import InstalledProgramJourney, main

ADDRESS = re.compile(r"Open http://127\.0\.0\.1:\d+/[\w-]{43,}/ in a web browser\.\n", re.ASCII)
TERMINATED = 128 + signal.SIGTERM


class BareMachine(InstalledProgramJourney):
    """One test, because the first start installs and builds what the second one uses."""

    def test_the_program_is_built_and_seen(self):
        self.start_without_display()
        debian.check_font(self)
        built = debian.root / checkout.lstrip("/") / "build" / "release" / "stage"
        entry = debian.entry(self.folder, f"{checkout}/scripts/run")
        self.use(entry, built, GSETTINGS_SCHEMA_DIR=None)

    def start_without_display(self):
        """Installs and builds, which takes minutes. A printed address means that it is served."""
        start = time.monotonic()
        process = subprocess.Popen(
            ("chroot", debian.root, f"{checkout}/scripts/run"),
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT,
            text=True,
            env=ENVIRONMENT,
        )
        self.addCleanup(process.kill)
        printed = []
        for line in process.stdout:
            printed.append(line)
            if ADDRESS.fullmatch(line):
                break
        else:
            self.fail(f"scripts/run ended with status {process.wait()}:\n{''.join(printed[-60:])}")
        print(
            f"installed, built and started in {time.monotonic() - start:.0f} seconds",
            file=sys.stderr,
        )
        self.assertNotIn("cannot be kept from the program's display", "".join(printed))
        process.terminate()
        process.communicate(timeout=20)
        self.assertEqual(process.returncode, TERMINATED)


if __name__ == "__main__":
    debian, checkout = CleanDebian(pathlib.Path(sys.argv[1]).resolve()), sys.argv[2]
    del sys.argv[1:3]
    main()
