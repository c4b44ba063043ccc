"""Another user of the machine tries to get into a session:

    other_user.py PORT FOLDER [SOCKET...] <SECRET

Prints what was found, one line each: the sockets, among those named and the abstract ones below the
folder, that accept a connection; the pages that are served without the secret; and the files about
processes that hold it.
"""

import http.client
import pathlib
import socket
import sys


def abstract_sockets(folder):
    """Their names, which are shown with an at sign for the null byte."""
    for line in pathlib.Path("/proc/net/unix").read_text(encoding="utf-8").splitlines()[1:]:
        for name in line.split(maxsplit=7)[7:]:
            if name.startswith("@" + folder):
                yield "\0" + name[1:]


def accepts(name):
    with socket.socket(socket.AF_UNIX) as connection:
        try:
            connection.connect(name)
        except OSError:
            return False
    return True


def is_served(port, page):
    connection = http.client.HTTPConnection("127.0.0.1", port, timeout=10)
    connection.request("GET", page)
    return connection.getresponse().status != http.client.NOT_FOUND


def process_files():
    for process in pathlib.Path("/proc").glob("[0-9]*"):
        yield process / "cmdline"
        yield process / "environ"


def holds(path, secret):
    try:
        return secret in path.read_bytes()
    except OSError:
        return False


def main(port, folder, *sockets):
    secret = sys.stdin.buffer.read()
    found = [name for name in (*sockets, *abstract_sockets(folder)) if accepts(name)]
    found += [page for page in ("/", "/broadway.js", "/socket") if is_served(int(port), page)]
    found += [path for path in process_files() if holds(path, secret)]
    print(*found, sep="\n")


main(*sys.argv[1:])
