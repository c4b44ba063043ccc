#!/usr/bin/python3
"""The Debian package installed on a clean Debian, used there, and removed:

    debian_package.py PACKAGE ROOT

ROOT is the folder of a Debian with nothing but its base on it, the release that the package is made
for. To be run by root in a mount namespace of its own.
"""

import gzip
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

from clean_debian import CleanDebian
from layout import COMMAND, PROGRAM, InstalledProgramJourney, installed_files, main

DICTIONARIES = {
    f"hunspell-{language}" for language in ("en-gb", "en-us", "sv", "de-de", "fr", "es", "nl")
}
LIBRARIES = {
    "libcairo2",
    "libfreetype6",
    "libjpeg62-turbo",
    "libpango-1.0-0",
    "librsvg2-2",
    "libxml2",
    "libxslt1.1",
}
# By the version of Debian.
OTHER_LIBRARIES = {
    "12": {"libglib2.0-0", "libgspell-1-2", "libgtk-3-0", "libpng16-16", "libzip4"},
    "13": {"libglib2.0-0t64", "libgspell-1-3", "libgtk-3-0t64", "libpng16-16t64", "libzip5"},
}
FONTS = {"fonts-dejavu-core", "fonts-liberation"}
TYPES_INDEX = "usr/share/mime/globs2"
# The package manager's logs and state.
JOURNALS = ("var/log/", "var/lib/dpkg/", "var/lib/apt/", "var/cache/")

package, root = (pathlib.Path(argument).resolve() for argument in sys.argv[1:3])
mounted = root / "proc", root / tempfile.gettempdir().lstrip("/")


def packaged_files():
    """An installation as Debian wants it: documents compressed, its own copyright file, the font
    from the font's package."""
    files = installed_files() - {f"lib/vantorelle/fonts/{name}" for name in ("copyright", "GPL-2")}
    files -= {
        f"share/man/man1/{PROGRAM}.1",
        f"share/man/man1/{COMMAND}.1",
        f"share/doc/{PROGRAM}/LICENSE",
        f"share/doc/{PROGRAM}/changelog",
    }
    files |= {f"share/man/man1/{name}.1.gz" for name in (PROGRAM, COMMAND)}
    files |= {f"share/lintian/overrides/{PROGRAM}"}
    files |= {f"share/doc/{PROGRAM}/{name}" for name in ("copyright", "changelog.Debian.gz")}
    if f"share/doc/{PROGRAM}/changelog" in installed_files():
        files.add(f"share/doc/{PROGRAM}/changelog.gz")
    return {f"./usr/{name}" for name in files}


def read(*command):
    return subprocess.run(
        [str(part) for part in command], stdout=subprocess.PIPE, text=True, check=True
    ).stdout


def field(name):
    return read("dpkg-deb", "--field", package, name).strip()


def names_in(relation):
    return {part.split()[0] for part in relation.split(",")}


def debian_version():
    return re.search(r'^VERSION_ID="(\d+)"$', (root / "etc/os-release").read_text(), re.MULTILINE)[
        1
    ]


def everything_in_root():
    """Each file and folder of the clean Debian, apart from what is mounted there and from
    journals."""
    found = set()
    for path, folders, files in os.walk(root):
        folders[:] = [name for name in folders if pathlib.Path(path, name) not in debian.mounted]
        found |= {os.path.relpath(os.path.join(path, name), root) for name in files + folders}
    return {name for name in found if not name.startswith(JOURNALS)}


class Package(unittest.TestCase):
    def test_its_fields_describe_the_program(self):
        self.assertEqual(field("Package"), PROGRAM)
        self.assertEqual(field("Version"), "3.2.3-1")
        self.assertEqual(field("Section"), "editors")
        self.assertEqual(field("Priority"), "optional")
        self.assertEqual(
            field("Maintainer"), "The Vantorelle developers <developers@vantorelle.org>"
        )

    def test_it_asks_for_what_the_program_needs(self):
        libraries = LIBRARIES | OTHER_LIBRARIES[debian_version()]
        self.assertLessEqual(libraries | FONTS | {"librsvg2-common"}, names_in(field("Depends")))
        self.assertEqual(names_in(field("Recommends")), DICTIONARIES)

    def test_it_holds_every_file_and_no_other(self):
        lines = [
            line.split(maxsplit=5) for line in read("dpkg-deb", "--contents", package).splitlines()
        ]
        self.assertEqual(
            {line[5].split(" -> ")[0] for line in lines if line[0][0] != "d"}, packaged_files()
        )
        self.assertEqual({line[1] for line in lines}, {"root/root"})
        self.assertEqual(
            {line[0] for line in lines}, {"drwxr-xr-x", "-rw-r--r--", "-rwxr-xr-x", "lrwxrwxrwx"}
        )

    def test_it_runs_no_scripts(self):
        with tempfile.TemporaryDirectory() as folder:
            subprocess.run(("dpkg-deb", "--control", package, folder), check=True)
            self.assertEqual(set(os.listdir(folder)), {"control", "md5sums"})


class InstalledPackage(InstalledProgramJourney):
    """One test, because each step needs the one before."""

    def test_it_is_installed_used_and_removed(self):
        shutil.copy(package, root / "package.deb")
        # Its dependencies are installed first, so that all files that remain at the end are its
        # own.
        debian.read("apt-get", "satisfy", "--yes", "--no-install-recommends", field("Depends"))
        before = everything_in_root()

        debian.read("apt-get", "install", "--yes", "--no-install-recommends", "/package.deb")
        added = {f"./{name}" for name in everything_in_root() - before}
        self.assertEqual(packaged_files() - added, set())
        self.assertEqual(debian.read("dpkg", "--verify", PROGRAM), "")
        self.check_desktop()
        debian.check_font(self)
        self.use_installed()

        debian.read("apt-get", "purge", "--yes", PROGRAM)
        self.assertEqual(everything_in_root() ^ before, set())
        self.assertNotIn("vantorelle", (root / TYPES_INDEX).read_text())

    def check_desktop(self):
        """The desktop's index of types has the codeset, although no script of the package
        updated it."""
        self.assertIn(
            ":application/x-vantorelle-codeset:*.codeset\n", (root / TYPES_INDEX).read_text()
        )
        page = gzip.decompress((root / f"usr/share/man/man1/{PROGRAM}.1.gz").read_bytes())
        self.assertTrue(page.startswith(b".TH VANTORELLE"))

    def use_installed(self):
        """The program sees the clean Debian only, and in it the display, the session's bus and
        the test's home."""
        entry = debian.entry(self.folder, f"/usr/bin/{PROGRAM}")
        self.use(entry, root / "usr/lib/vantorelle", GSETTINGS_SCHEMA_DIR=None)


if __name__ == "__main__":
    del sys.argv[1:3]
    os.environ.setdefault("JOURNEY_ARTIFACTS", str(package.parent / "journey-artifacts"))
    debian = CleanDebian(root)
    main()
