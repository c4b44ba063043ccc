#!/usr/bin/python3
"""The Debian package installed on a clean Debian, used there, and removed:

    debian_package.py PACKAGE ROOT

ROOT is the folder of a Debian with nothing but its base on it. To be run by root in a mount
namespace of its own.
"""

import gzip
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

from layout import PROGRAM, InstalledProgramJourney, installed_files, main

DICTIONARIES = {
    f"hunspell-{language}" for language in ("en-gb", "en-us", "sv", "de-de", "fr", "es", "nl")
}
LIBRARIES = {
    "libcairo2",
    "libfreetype6",
    "libglib2.0-0",
    "libgspell-1-2",
    "libgtk-3-0",
    "libjpeg62-turbo",
    "libpango-1.0-0",
    "libpng16-16",
    "librsvg2-2",
    "libxml2",
    "libxslt1.1",
    "libzip4",
}
ROOT_ENVIRONMENT = {
    "PATH": "/usr/sbin:/usr/bin:/sbin:/bin",
    "HOME": "/root",
    "LC_ALL": "C.UTF-8",
    "DEBIAN_FRONTEND": "noninteractive",
}
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
        f"share/doc/{PROGRAM}/LICENSE",
        f"share/doc/{PROGRAM}/changelog",
    }
    files |= {f"share/man/man1/{PROGRAM}.1.gz", f"share/lintian/overrides/{PROGRAM}"}
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


def in_root(*command):
    """Runs the command in the clean Debian and shows what it prints only when it fails."""
    answer = subprocess.run(
        ("chroot", root, *command),
        stdin=subprocess.DEVNULL,
        stdout=subprocess.PIPE,
        stderr=subprocess.STDOUT,
        text=True,
        check=False,
        env=ROOT_ENVIRONMENT,
    )
    if answer.returncode != 0:
        raise AssertionError(
            f"{' '.join(command)} ended with status {answer.returncode}:\n{answer.stdout}"
        )
    return answer.stdout


def everything_in_root():
    """Each file and folder of the clean Debian, apart from what is mounted there and from
    journals."""
    found = set()
    for path, folders, files in os.walk(root):
        folders[:] = [name for name in folders if pathlib.Path(path, name) not in mounted]
        found |= {os.path.relpath(os.path.join(path, name), root) for name in files + folders}
    return {name for name in found if not name.startswith(JOURNALS)}


class Package(unittest.TestCase):
    def test_it_says_what_it_is(self):
        self.assertEqual(field("Package"), PROGRAM)
        self.assertEqual(field("Version"), "3.2.3-1")
        self.assertEqual(field("Section"), "editors")
        self.assertEqual(field("Priority"), "optional")
        self.assertEqual(
            field("Maintainer"), "The Vantorelle developers <developers@vantorelle.org>"
        )

    def test_it_asks_for_what_the_program_needs(self):
        self.assertLessEqual(
            LIBRARIES | {"fonts-liberation", "librsvg2-common"}, names_in(field("Depends"))
        )
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


class CleanDebian(InstalledProgramJourney):
    """One test, because each step needs the one before."""

    def test_it_is_installed_used_and_removed(self):
        shutil.copy(package, root / "package.deb")
        # Its dependencies are installed first, so that all files that remain at the end are its
        # own.
        in_root("apt-get", "satisfy", "--yes", "--no-install-recommends", field("Depends"))
        before = everything_in_root()

        in_root("apt-get", "install", "--yes", "--no-install-recommends", "/package.deb")
        added = {f"./{name}" for name in everything_in_root() - before}
        self.assertEqual(packaged_files() - added, set())
        self.assertEqual(in_root("dpkg", "--verify", PROGRAM), "")
        self.check_desktop()
        self.use_installed()

        in_root("apt-get", "purge", "--yes", PROGRAM)
        self.assertEqual(everything_in_root() ^ before, set())
        self.assertNotIn("vantorelle", (root / TYPES_INDEX).read_text())

    def check_desktop(self):
        """The desktop's index of types has the codeset, although no script of the package told
        it."""
        self.assertIn(
            ":application/x-vantorelle-codeset:*.codeset\n", (root / TYPES_INDEX).read_text()
        )
        page = gzip.decompress((root / f"usr/share/man/man1/{PROGRAM}.1.gz").read_bytes())
        self.assertTrue(page.startswith(b".TH VANTORELLE"))

    def use_installed(self):
        """The program sees the clean Debian only, and in it the display, the session's bus and the
        test's home."""
        entry = self.folder / "entry"
        entry.mkdir()
        script = entry / PROGRAM
        script.write_text(f"#!/bin/sh\nexec chroot '{root}' /usr/bin/{PROGRAM}\n")
        script.chmod(0o755)
        self.use(entry, root / "usr/lib/vantorelle", GSETTINGS_SCHEMA_DIR=None)


def prepare():
    for name, text in (
        ("etc/dpkg/dpkg.cfg.d/fast", "force-unsafe-io\n"),
        # No service of a package is started.
        ("usr/sbin/policy-rc.d", "#!/bin/sh\nexit 101\n"),
    ):
        (root / name).write_text(text)
        (root / name).chmod(0o755)
    processes, temporary = mounted
    for folder in mounted:
        folder.mkdir(parents=True, exist_ok=True)
    subprocess.run(("mount", "-t", "proc", "proc", processes), check=True)
    subprocess.run(("mount", "--bind", tempfile.gettempdir(), temporary), check=True)


if __name__ == "__main__":
    del sys.argv[1:3]
    os.environ.setdefault("JOURNEY_ARTIFACTS", str(package.parent / "journey-artifacts"))
    prepare()
    main()
