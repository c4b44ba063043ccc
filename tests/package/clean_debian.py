"""A Debian in a folder, as scripts/lib/clean_debian.bash sets it up.

To be used by root in a mount namespace of its own."""

import subprocess
import tempfile

from layout import PROGRAM

ENVIRONMENT = {
    "PATH": "/usr/sbin:/usr/bin:/sbin:/bin",
    "HOME": "/root",
    "LC_ALL": "C.UTF-8",
    "DEBIAN_FRONTEND": "noninteractive",
}
# The value of FC_SPACING for fonts whose characters all have the same width.
MONOSPACED = "100"


class CleanDebian:
    """Mounts /proc below `root`, and the folder for temporary files, where the tests' homes are."""

    def __init__(self, root):
        self.root = root
        processes, temporary = root / "proc", root / tempfile.gettempdir().lstrip("/")
        self.mounted = processes, temporary
        temporary.mkdir(parents=True, exist_ok=True)
        # unshare needs a root that is mounted.
        subprocess.run(("mount", "--bind", root, root), check=True)
        subprocess.run(("mount", "-t", "proc", "proc", processes), check=True)
        subprocess.run(("mount", "--bind", tempfile.gettempdir(), temporary), check=True)

    def read(self, *command):
        """The output of the command there, which must succeed."""
        answer = subprocess.run(
            ("chroot", self.root, *command),
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT,
            text=True,
            check=False,
            env=ENVIRONMENT,
        )
        if answer.returncode != 0:
            raise AssertionError(
                f"{' '.join(command)} ended with status {answer.returncode}:\n{answer.stdout}"
            )
        return answer.stdout

    def check_font(self, test):
        """The toolkit's font, "Sans", is one whose characters have widths of their own."""
        name, spacing = self.read("fc-match", "--format", "%{family}/%{spacing}", "sans").split("/")
        test.assertNotEqual(spacing, MONOSPACED, name)

    def entry(self, folder, command):
        """A folder with a program of the usual name, which becomes the command there.

        It sees the caller's display."""
        entry = folder / "entry"
        entry.mkdir()
        script = entry / PROGRAM
        script.write_text(f"#!/bin/sh\nexec chroot '{self.root}' {command}\n")
        script.chmod(0o755)
        return entry
