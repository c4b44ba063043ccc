"""Runs vantorelle-codeset, and compares what it prints with the golden files."""

import difflib
import os
import pathlib
import subprocess
import tempfile
import unittest
from xml.sax import saxutils

PROGRAM = os.environ["VANTORELLE_CODESET_PROGRAM"]
SOURCE = pathlib.Path(__file__).resolve().parents[2]
DELIVERED = sorted((SOURCE / "data" / "codesets").glob("*.codeset"))
GOLDEN = pathlib.Path(__file__).resolve().parent / "golden"

GOOD, NOTICED, FAILED = 0, 1, 2

# Seconds after which a run is given up. Ample, because other programs may have the processor.
PATIENCE = 100


class Result:
    """How a run of the program ended: its exit status and the bytes that it printed."""

    def __init__(self, process):
        self.status = process.returncode
        self.output_bytes = process.stdout
        self.errors = process.stderr.decode("utf-8")

    @property
    def output(self):
        """The output as text: everything but codesets is printed in UTF-8."""
        return self.output_bytes.decode("utf-8")


def environment(**variables):
    """The environment of an English-speaking user, independent of that of the test run."""
    kept = {name: os.environ[name] for name in ("PATH", "LSAN_OPTIONS") if name in os.environ}
    return {**kept, "LC_ALL": "en_GB.UTF-8", **variables}


def run(*arguments, folder, stdin=b"", **variables):
    return Result(
        subprocess.run(
            [PROGRAM, *[os.fspath(argument) for argument in arguments]],
            cwd=folder,
            input=stdin,
            stdout=subprocess.PIPE,
            stderr=subprocess.PIPE,
            env=environment(**variables),
            check=False,
            timeout=PATIENCE,
        )
    )


def codeset_xml(remarks, name="<name lang='en-uk'>A name</name>"):
    """A codeset file of (code, {tag: text}) pairs. The empty tag stands for unknown language."""
    xml = f"<?xml version='1.0' encoding='iso-8859-1'?><codeset>{name}"
    for code, description in remarks:
        xml += f"<remark><code>{saxutils.escape(code)}</code>"
        for tag, text in description.items():
            lang = saxutils.quoteattr(tag)
            xml += f"<description lang={lang}>{saxutils.escape(text)}</description>"
        xml += "</remark>"
    return (xml + "</codeset>").encode("latin-1")


class CommandTest(unittest.TestCase):
    """Each test runs the program in an empty folder of its own."""

    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="tools.")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def write(self, name, content):
        path = self.folder / name
        path.write_bytes(content)
        return name

    def run_program(self, *arguments, stdin=b"", **variables):
        return run(*arguments, folder=self.folder, stdin=stdin, **variables)

    def expect(self, result, status, output="", errors=""):
        self.assertEqual((result.status, result.output, result.errors), (status, output, errors))

    def expect_golden(self, name, content):
        """The bytes equal the golden file, which scripts/accept-golden rewrites."""
        path = GOLDEN / name
        if os.environ.get("VANTORELLE_ACCEPT_GOLDEN"):
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_bytes(content)
        golden = path.read_bytes() if path.exists() else b""
        if content != golden:
            difference = difflib.unified_diff(
                golden.decode("utf-8", "backslashreplace").splitlines(),
                content.decode("utf-8", "backslashreplace").splitlines(),
                f"golden/{name}",
                "printed",
                lineterm="",
            )
            self.fail("\n".join(("Accept it with scripts/accept-golden.", *difference)))


def main():
    unittest.main(verbosity=2)
