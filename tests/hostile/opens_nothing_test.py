"""A codeset file that names files, devices, pipes and network addresses: nothing of it is opened.

    opens_nothing_test.py HOSTILE_READER

The reader runs under strace, which sees every attempt, whether or not it would have succeeded.
"""

import os
import re
import socket
import subprocess
import sys
import tempfile
import unittest

READER = sys.argv.pop(1)
# A pipe that is opened keeps the reader waiting for ever.
PATIENCE = 120

NAME = "<name lang='sv'>Namn</name>"
REMARK = "<remark><code>7</code><description lang='sv'>a</description></remark>"


def codeset(content):
    return "<codeset>" + content + "</codeset>"


def documents_naming(address):
    """Codeset files that name the address in every way that XML has."""
    general = f'<!ENTITY e SYSTEM "{address}">'
    public = f'<!ENTITY e PUBLIC "-//P" "{address}">'
    parameter = f'<!ENTITY % p SYSTEM "{address}"> %p;'
    in_text = codeset("<name lang='sv'>Namn&e;</name>" + REMARK)
    plain = codeset(NAME + REMARK)
    return [
        f"<!DOCTYPE codeset [{general}]>" + in_text,
        f"<!DOCTYPE codeset [{public}]>" + in_text,
        f"<!DOCTYPE codeset [{general}]>" + codeset("<name lang='&e;'>Namn</name>" + REMARK),
        f"<!DOCTYPE codeset [{general}]>" + codeset(NAME + REMARK + "&e;"),
        f"<!DOCTYPE codeset [{general}]>"
        + codeset(NAME + "<remark><code>&e;</code><description lang=''>&e;</description></remark>"),
        f"<!DOCTYPE codeset [{general}<!ENTITY f 'x&e;'><!ATTLIST name lang CDATA '&f;'>]>"
        + codeset("<name>&f;</name>" + REMARK),
        f"<!DOCTYPE codeset [{parameter}]>" + plain,
        f'<!DOCTYPE codeset SYSTEM "{address}">' + plain,
        f'<!DOCTYPE codeset PUBLIC "-//P" "{address}">' + in_text,
        f'<!DOCTYPE codeset SYSTEM "{address}" [{parameter}{general}]>' + in_text,
        f'<?oasis-xml-catalog catalog="{address}"?><!DOCTYPE codeset PUBLIC "-//P" "s">' + plain,
        f'<?xml-stylesheet href="{address}"?>' + plain,
        "<codeset xmlns:i='http://www.w3.org/2001/XInclude'>"
        f'<i:include href="{address}"/>{NAME}{REMARK}</codeset>',
    ]


class OpensNothing(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def path(self, name):
        return os.path.join(self.folder, name)

    def write(self, name, text):
        with open(self.path(name), "w", encoding="ascii") as file:
            file.write(text)
        return self.path(name)

    def addresses(self):
        secret = self.write("secret", "<!ENTITY f 'SECRET'>SECRET")
        pipe = self.path("pipe")
        os.mkfifo(pipe)
        server = socket.create_server(("127.0.0.1", 0))
        self.addCleanup(server.close)
        port = server.getsockname()[1]
        return [
            secret,
            "secret",
            "file://" + secret,
            "file://localhost" + secret,
            pipe,
            "/dev/zero",
            "/dev/tty",
            "/dev/stdin",
            "/proc/self/environ",
            f"http://127.0.0.1:{port}/x",
            f"ftp://127.0.0.1:{port}/x",
            f"http://localhost:{port}/x",
            "https://example.org/x",
            f"//127.0.0.1:{port}/x",
        ]

    def read(self, files):
        """The output of the reader, and the traced lines of its calls."""
        log = self.path("strace")
        # The leak checker traces the process too, and a process can be traced only once.
        environment = dict(os.environ, ASAN_OPTIONS="detect_leaks=0")
        result = subprocess.run(
            [
                "strace",
                "-f",
                "-o",
                log,
                "-e",
                "trace=open,openat,openat2,connect,socket,execve",
                READER,
                *files,
            ],
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            cwd=self.folder,
            env=environment,
            timeout=PATIENCE,
            check=True,
        )
        with open(log, encoding="utf-8", errors="replace") as lines:
            return result.stdout.decode("latin-1"), lines.read().splitlines()

    def opened_since(self, lines, first_file):
        """The paths opened from the first file on, and the calls of other kinds."""
        paths, others = [], []
        for line in lines:
            opened = re.search(r'\bopen(?:at2?)?\((?:AT_FDCWD, )?"([^"]*)"', line)
            if opened:
                paths.append(opened.group(1))
            elif re.search(r"\b(?:connect|socket|execve)\(", line):
                others.append(line)
        self.assertIn(first_file, paths, "strace sees what is opened")
        return paths[paths.index(first_file) :], others[1:]

    def test_nothing_that_a_file_names_is_opened(self):
        files = [
            self.write(f"{number}-{way}.codeset", document)
            for number, address in enumerate(self.addresses())
            for way, document in enumerate(documents_naming(address))
        ]
        printed, lines = self.read(files)
        self.assertEqual(printed.count(".codeset: "), len(files))
        self.assertNotIn("SECRET", printed)
        # Some of them are codesets all the same.
        self.assertIn(".codeset: Namn\n", printed)
        paths, others = self.opened_since(lines, files[0])
        self.assertEqual(paths, files)
        self.assertEqual(others, [])

    def test_the_trace_shows_an_opened_file(self):
        secret = self.write("secret", codeset(NAME + REMARK))
        _, lines = self.read([secret])
        paths, _ = self.opened_since(lines, secret)
        self.assertEqual(paths, [secret])


if __name__ == "__main__":
    unittest.main()
