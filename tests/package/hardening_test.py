"""The programs of a release build: their hardening against the exploitation of a fault."""

import os
import pathlib
import platform
import re
import subprocess
import unittest

from layout import COMMAND, PROGRAM, SOURCE

BUILD = pathlib.Path(os.environ["VANTORELLE_RELEASE_BUILD"])


def build_release():
    """Builds as scripts/run does, but in a folder outside the checkout."""
    subprocess.run(
        ("bash", "-euc", "source scripts/lib/build.bash; build_preset release"),
        cwd=SOURCE,
        stdout=subprocess.DEVNULL,
        check=True,
        env={**os.environ, "VANTORELLE_BUILD": str(BUILD.parent)},
    )


def read(*options):
    command = ("readelf", "--wide", *options)
    return subprocess.run(
        command, stdout=subprocess.PIPE, text=True, check=True, env={**os.environ, "LC_ALL": "C"}
    ).stdout


def setUpModule():
    build_release()


class Hardening(unittest.TestCase):
    program = BUILD / "stage" / PROGRAM

    def read(self, *options):
        return read(*options, self.program)

    def test_the_stack_cannot_be_executed(self):
        flags = re.search(
            r"^ *GNU_STACK(?: +0x[0-9a-f]+){5} +([RWE ]+?) +0x",
            self.read("--program-headers"),
            re.MULTILINE,
        )
        self.assertEqual(flags.group(1).strip(), "RW")

    def test_nothing_can_be_written_and_executed(self):
        segments = re.findall(
            r"^ *LOAD(?: +0x[0-9a-f]+){5} ([RWE ]{3}) ",
            self.read("--program-headers"),
            re.MULTILINE,
        )
        self.assertGreater(len(segments), 1)
        for flags in segments:
            self.assertFalse("W" in flags and "E" in flags, flags)

    def test_it_is_loaded_at_another_place_each_time(self):
        self.assertRegex(self.read("--file-header"), r"Type: +DYN ")
        self.assertRegex(self.read("--dynamic"), r"\(FLAGS_1\) .*\bPIE\b")

    def test_the_addresses_of_library_functions_are_bound_at_once_and_cannot_be_overwritten(self):
        self.assertIn("GNU_RELRO", self.read("--program-headers"))
        self.assertRegex(self.read("--dynamic"), r"\(FLAGS\) .*\bBIND_NOW\b")
        self.assertRegex(self.read("--dynamic"), r"\(FLAGS_1\) .*\bNOW\b")

    def test_the_stack_is_guarded(self):
        self.assertTrue(re.search(r" __stack_chk_fail\b", self.read("--dyn-syms")))

    def test_functions_of_the_c_library_are_fortified(self):
        self.assertTrue(re.search(r" __\w+_chk\b", self.read("--dyn-syms")))

    @unittest.skipUnless(platform.machine() == "x86_64", "other processors have other means")
    def test_jumps_and_returns_are_protected(self):
        """The program as a whole says so only where the C library's own start files do, which they
        do not on Debian 12."""
        # The trial objects of the build have flags of their own.
        objects = [path for path in BUILD.rglob("*.o") if "_CMakeLTOTest-CXX" not in path.parts]
        self.assertGreater(len(objects), 50)
        for path in objects:
            self.assertRegex(read("--notes", path), r"x86 feature: IBT, SHSTK", path)
        # The code itself is made when the program is linked.
        command = ("objdump", "--disassemble=main", "--no-show-raw-insn", self.program)
        code = subprocess.run(command, stdout=subprocess.PIPE, text=True, check=True).stdout
        self.assertRegex(code, r"<main>:\n.*\bendbr64\b")


class HardeningOfTheCommand(Hardening):
    program = BUILD / "tools" / COMMAND


if __name__ == "__main__":
    unittest.main(verbosity=2)
