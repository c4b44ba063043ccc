"""The program on a machine without a display, as scripts/run starts it once it is built."""

import os
import pathlib
import re
import select
import signal
import socket
import struct
import subprocess
import sys

SOURCE = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(SOURCE / "tests" / "journeys"))

from support import wait_until  # noqa: E402
from support.journey import delivered_stage  # noqa: E402
from support.program import EXECUTABLE, START_SECONDS  # noqa: E402

# A command that a shell starts in the background ignores the interrupt.
START = (
    "env",
    "--default-signal=INT,QUIT",
    "bash",
    "-c",
    'set -euo pipefail; source "$1"; run_in_browser "$2"',
    "run",
)
LIBRARY = SOURCE / "scripts" / "lib" / "browser.bash"
LISTENING = "0A"
SHARED_MEMORY = "/dev/shm/bdw-*"  # the toolkit's names


class Session:
    """The script, which is started at once with a fresh home and nothing else of the caller's
    desktop. Temporary files are in `scratch`."""

    def __init__(self, home, scratch, **environment):
        kept = {name: os.environ[name] for name in ("PATH", "LSAN_OPTIONS") if name in os.environ}
        own = {
            "HOME": str(home),
            "TMPDIR": str(scratch),
            "LC_ALL": "C.UTF-8",
            "G_DEBUG": "fatal-criticals",
            "VANTORELLE_USER_LANGUAGE": "en-uk",
        }
        self.process = subprocess.Popen(
            (*START, LIBRARY, delivered_stage() / EXECUTABLE),
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT,
            bufsize=0,  # so that the next line is in the pipe, where it can be waited for
            cwd=home,
            env={**kept, **own, **environment},
            start_new_session=True,
        )

    def read_line(self):
        """The next line that is printed; empty when the script ends before."""
        wait_until(
            lambda: select.select([self.process.stdout], [], [], 0)[0],
            "what the script prints",
            START_SECONDS,
        )
        return self.process.stdout.readline().decode()

    def read_address(self):
        """The address that is printed for the user, and its port and secret."""
        line = self.read_line()
        told = re.fullmatch(
            r"Open (http://127\.0\.0\.1:(\d+)/([\w-]{43,})/) in a web browser\.\n", line, re.ASCII
        )
        if not told:
            raise AssertionError(f"No address was printed, but {line!r}")
        return told[1], int(told[2]), told[3]

    def processes(self):
        """The script and all that it started, by name: the script, the gateway, the server and the
        program, if all is well."""
        return {
            pid: name for pid, name, session in running_processes() if session == self.process.pid
        }

    def listening(self):
        """The sockets on which any of the processes listens: (address, port) by the socket's name,
        which is unique."""
        names = {link for pid in self.processes() for link in open_files(pid)}
        return {name: place for name, place in listening_sockets().items() if name in names}

    def shared_memory(self):
        """The files, as the processes name them, by which the program and the server share
        pictures."""
        return {
            path
            for pid in self.processes()
            for path in mapped_files(pid)
            if path.match(SHARED_MEMORY)
        }

    def find(self, name):
        """The process with that name."""
        return next(pid for pid, other in self.processes().items() if other == name)

    def send(self, name, number):
        """Sends a signal to that process alone, as `kill` does."""
        os.kill(self.find(name), number)

    def stop(self, name):
        """Stops the process until it is killed."""
        self.send(name, signal.SIGSTOP)
        stat = pathlib.Path(f"/proc/{self.find(name)}/stat")
        wait_until(
            lambda: stat.read_text(encoding="utf-8").rpartition(") ")[2].startswith("T"),
            lambda: f"{name} to stand still",
        )

    def expect_end(self, status, printed=""):
        """Expects the exit status, that no process is left, and that no more was printed than the
        regular expression matches."""
        output = self.process.communicate(timeout=20)[0].decode()
        if self.process.returncode != status or not re.fullmatch(printed, output):
            raise AssertionError(
                f"The script ended with status {self.process.returncode}, not {status}, "
                f"and printed {output!r}"
            )
        wait_until(lambda: not self.processes(), lambda: f"the end of {self.processes()!r}")

    def kill(self):
        for pid in self.processes():
            os.kill(pid, signal.SIGKILL)
        self.process.communicate()


def running_processes():
    for folder in pathlib.Path("/proc").glob("[0-9]*"):
        try:
            # The name in brackets may hold blanks.
            before, _, after = (folder / "stat").read_text().rpartition(") ")
        except OSError:
            continue
        state, _parent, _group, session = after.split()[:4]
        if state != "Z":
            yield int(folder.name), before.partition("(")[2], int(session)


def open_files(pid):
    for link in pathlib.Path(f"/proc/{pid}/fd").glob("*"):
        try:
            yield os.readlink(link)
        except OSError:
            continue


def mapped_files(pid):
    """The mapped files that still have a name."""
    try:
        lines = pathlib.Path(f"/proc/{pid}/maps").read_text(encoding="utf-8").splitlines()
    except OSError:
        return
    for line in lines:
        _range, _mode, _offset, _device, _inode, *path = line.split(maxsplit=5)
        yield from (pathlib.Path(name) for name in path if not name.endswith(" (deleted)"))


def shared_memory():
    """Shared memory of programs outside a namespace and their server."""
    return pathlib.Path("/").glob(SHARED_MEMORY.lstrip("/"))


def listening_sockets():
    """The listening sockets of the whole machine."""
    return {
        f"socket:[{inode}]": read_place(local)
        for table in ("tcp", "tcp6")
        if (path := pathlib.Path("/proc/net") / table).exists()
        for _, local, _, state, _, _, _, _, _, inode, *_ in map(
            str.split, path.read_text().splitlines()[1:]
        )
        if state == LISTENING
    }


def read_place(local):
    """The address and port of a line, where each four bytes of the address are in the machine's own
    order."""
    address, port = local.split(":")
    packed = b"".join(
        struct.pack("=I", int(address[at : at + 8], 16)) for at in range(0, len(address), 8)
    )
    return socket.inet_ntop(socket.AF_INET if len(packed) == 4 else socket.AF_INET6, packed), int(
        port, 16
    )
