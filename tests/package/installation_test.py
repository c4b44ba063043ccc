#!/usr/bin/python3
"""An installation into a prefix of its own: its files, its entries for the desktop, and the program
run from it."""

import configparser
import os
import pathlib
import shutil
import stat
import struct
import subprocess
import tempfile
import unittest
from xml.etree import ElementTree

from layout import (
    APPLICATION,
    COMMAND,
    ICON_SIZES,
    MEDIA_TYPE_ICON,
    PROGRAM,
    SOURCE,
    InstalledProgramJourney,
    files_below,
    install,
    installed_files,
    main,
)

FREEDESKTOP_TYPES = pathlib.Path("/usr/share/mime/packages/freedesktop.org.xml")
MEDIA_TYPE = "application/x-vantorelle-codeset"

prefix = None


def setUpModule():
    """Installs below one folder and moves the tree to another, as the making of any package
    does."""
    global prefix
    folder = tempfile.TemporaryDirectory(prefix="installation.")
    unittest.addModuleCleanup(folder.cleanup)
    root = pathlib.Path(folder.name)
    install(root / "made", "--prefix", "/opt/suite")
    prefix = root / "moved here, & täglich benutzt"
    (root / "made" / "opt" / "suite").rename(prefix)


def run(*command, **environment):
    """Runs a command that must succeed, and returns its output."""
    answer = subprocess.run(
        [str(part) for part in command],
        env={**os.environ, **environment},
        stdout=subprocess.PIPE,
        stderr=subprocess.STDOUT,
        text=True,
        check=False,
    )
    if answer.returncode != 0:
        raise AssertionError(
            f"{command[0]} ended with status {answer.returncode}:\n{answer.stdout}"
        )
    return answer.stdout


class Files(unittest.TestCase):
    def test_every_file_is_there_and_no_other(self):
        self.assertEqual(files_below(prefix), installed_files())

    def test_all_may_read_and_only_the_programs_may_be_run(self):
        for name in files_below(prefix):
            mode = (prefix / name).stat().st_mode
            is_program = name in (f"bin/{PROGRAM}", f"lib/vantorelle/{PROGRAM}", f"bin/{COMMAND}")
            self.assertEqual(stat.S_IMODE(mode), 0o755 if is_program else 0o644, name)

    def test_the_link_is_relative(self):
        self.assertEqual(os.readlink(prefix / "bin" / PROGRAM), f"../lib/vantorelle/{PROGRAM}")

    def test_the_font_has_its_own_licence_beside_it(self):
        fonts = prefix / "lib" / "vantorelle" / "fonts"
        copyright_text = (fonts / "copyright").read_text()
        self.assertRegex(
            copyright_text, r"LIBERATION font software|Upstream-Name: Liberation Fonts"
        )
        self.assertIn("/usr/share/common-licenses/GPL-2", copyright_text)
        self.assertIn("GNU GENERAL PUBLIC LICENSE", (fonts / "GPL-2").read_text())


class Desktop(unittest.TestCase):
    def entry(self):
        parser = configparser.ConfigParser(interpolation=None, strict=True)
        parser.optionxform = str
        parser.read(prefix / "share" / "applications" / f"{APPLICATION}.desktop", encoding="utf-8")
        return parser["Desktop Entry"]

    def metainfo(self):
        return ElementTree.parse(
            prefix / "share" / "metainfo" / f"{APPLICATION}.metainfo.xml"
        ).getroot()

    def test_the_desktop_entry_is_valid(self):
        self.assertEqual(
            run(
                "desktop-file-validate",
                prefix / "share" / "applications" / f"{APPLICATION}.desktop",
            ),
            "",
        )

    def test_the_desktop_entry_names_what_is_installed(self):
        self.assertTrue(os.access(prefix / "bin" / self.entry()["Exec"], os.X_OK))
        self.assertEqual(self.entry()["Icon"], APPLICATION)

    def test_the_desktop_knows_the_windows_by_the_application_id(self):
        self.assertEqual(self.entry()["StartupWMClass"], APPLICATION)

    def test_the_metainfo_is_valid(self):
        """Only the program's address is missing: it has none yet. Validators before AppStream 1.0
        do not ask for it."""
        metainfo = prefix / "share" / "metainfo" / f"{APPLICATION}.metainfo.xml"
        printed = subprocess.run(
            ("appstreamcli", "validate", "--no-net", "--no-color", metainfo),
            stdout=subprocess.PIPE,
            text=True,
            check=False,
        ).stdout
        self.assertIn("Validation ", printed)
        complaints = [line for line in printed.splitlines() if line.startswith(("E: ", "W: "))]
        self.assertEqual(
            [line for line in complaints if not line.endswith(" url-homepage-missing")], []
        )

    def test_the_metainfo_describes_this_program(self):
        component = self.metainfo()
        self.assertEqual(component.findtext("id"), APPLICATION)
        self.assertEqual(component.findtext("launchable"), f"{APPLICATION}.desktop")
        self.assertEqual(component.findtext("provides/binary"), PROGRAM)
        opened = [element.text for element in component.iterfind("provides/mediatype")]
        self.assertEqual(
            opened, [name for name in self.entry().get("MimeType", "").split(";") if name]
        )
        self.assertEqual(component.find("releases/release").get("version"), "3.2.3")

    def test_the_metainfo_names_no_address_that_cannot_be_reached(self):
        component = self.metainfo()
        self.assertEqual(component.findall("url") + component.findall("screenshots"), [])
        self.assertEqual(component.find("developer").get("id"), "org.vantorelle")

    def test_the_manual_pages_are_clean(self):
        for name in (PROGRAM, COMMAND):
            page = prefix / "share" / "man" / "man1" / f"{name}.1"
            self.assertEqual(run("mandoc", "-Tlint", page), "")
            self.assertIn(".TH VANTORELLE", page.read_text())

    def test_every_icon_has_the_size_of_its_folder(self):
        for context, icon in (("apps", APPLICATION), ("mimetypes", MEDIA_TYPE_ICON)):
            for size in ICON_SIZES:
                data = (
                    prefix / f"share/icons/hicolor/{size}x{size}/{context}/{icon}.png"
                ).read_bytes()
                self.assertEqual(data[:8], b"\x89PNG\r\n\x1a\n")
                self.assertEqual(struct.unpack(">II", data[16:24]), (size, size))


class MediaType(unittest.TestCase):
    """Asked of GIO with a database of its own, made of the desktop's types and the installed
    one."""

    @classmethod
    def setUpClass(cls):
        work = tempfile.TemporaryDirectory(prefix="mediatype.")
        cls.addClassCleanup(work.cleanup)
        cls.work = pathlib.Path(work.name)
        cls.variables = {
            "XDG_DATA_DIRS": str(cls.work / "share"),
            "XDG_DATA_HOME": str(cls.work / "none"),
            "PKGSYSTEM_ENABLE_FSYNC": "0",
        }
        cls.database = cls.work / "share" / "mime"
        (cls.database / "packages").mkdir(parents=True)
        for source in (
            FREEDESKTOP_TYPES,
            prefix / "share" / "mime" / "packages" / "vantorelle-codeset.xml",
        ):
            shutil.copy(source, cls.database / "packages")
        cls.complaints = run("update-mime-database", cls.database, **cls.variables)
        cls.codeset = (SOURCE / "data" / "codesets" / "metals.codeset").read_bytes()

    def test_the_database_is_made_without_a_complaint(self):
        self.assertEqual(self.complaints, "")

    def ask(self, attribute, name, content):
        path = self.work / name
        path.write_bytes(content)
        printed = run("gio", "info", "-a", attribute, path, **self.variables)
        return next(line for line in printed.splitlines() if attribute in line).split(": ", 1)[1]

    def content_type(self, name, content):
        return self.ask("standard::content-type", name, content)

    def test_a_codeset_is_known_by_its_name(self):
        self.assertEqual(self.content_type("mine.codeset", self.codeset), MEDIA_TYPE)
        self.assertEqual(
            self.content_type("damaged.codeset", b"nothing that looks like one"), MEDIA_TYPE
        )

    def test_a_codeset_is_known_by_its_root_element(self):
        self.assertEqual(self.content_type("attachment", self.codeset), MEDIA_TYPE)
        self.assertIn(f" codeset {MEDIA_TYPE}\n", (self.database / "XMLnamespaces").read_text())

    def test_other_documents_keep_their_types(self):
        other = self.codeset.replace(b"codeset>", b"catalogue>")
        self.assertEqual(self.content_type("attachment", other), "application/xml")
        self.assertEqual(self.content_type("page.html", b"<html></html>"), "text/html")

    def test_a_codeset_has_its_own_icon(self):
        self.assertEqual(
            self.ask("standard::icon", "mine.codeset", self.codeset).split(", ")[0], MEDIA_TYPE_ICON
        )


class InstalledCommand(unittest.TestCase):
    def test_it_reads_the_delivered_codesets(self):
        codesets = sorted((prefix / "lib" / "vantorelle" / "codesets").iterdir())
        printed = run(prefix / "bin" / COMMAND, "check", "--strict", *codesets)
        self.assertEqual(len(printed.splitlines()), len(codesets))


class InstalledProgram(InstalledProgramJourney):
    def test_it_finds_the_files_beside_it_through_the_link(self):
        self.use(prefix / "bin", prefix / "lib" / "vantorelle")


if __name__ == "__main__":
    main()
