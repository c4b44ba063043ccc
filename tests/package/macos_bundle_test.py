#!/usr/bin/python3
"""The application bundle of macOS, as far as it can be examined on another system."""

import filecmp
import os
import pathlib
import plistlib
import re
import struct
import subprocess
import tempfile
import unittest

from layout import (
    APPLICATION,
    MEDIA_TYPE_ICON,
    PROGRAM,
    InstalledProgramJourney,
    files_below,
    install,
    main,
)
from support.journey import delivered_stage

BUNDLE_NAME = "Vantorelle Remark Codesets Manager.app"
ICON_SIZES = (16, 32, 48, 128, 256, 512, 1024)

applications = None


def setUpModule():
    global applications
    folder = tempfile.TemporaryDirectory(prefix="bundle.")
    unittest.addModuleCleanup(folder.cleanup)
    install(folder.name, "--prefix", "/Applications", "--component", "macos_bundle")
    applications = pathlib.Path(folder.name) / "Applications"


def contents():
    return applications / BUNDLE_NAME / "Contents"


def icon_elements(data):
    """The elements of an icon file, type by type."""
    elements = {}
    offset = 8
    while offset < len(data):
        kind, length = struct.unpack(">4sI", data[offset : offset + 8])
        elements[kind.decode()] = data[offset + 8 : offset + length]
        offset += length
    return elements


class Bundle(unittest.TestCase):
    def setUp(self):
        self.properties = plistlib.loads((contents() / "Info.plist").read_bytes())

    def test_it_is_installed_alone(self):
        self.assertEqual([path.name for path in applications.iterdir()], [BUNDLE_NAME])

    def test_it_holds_what_is_staged_and_nothing_else(self):
        self.assertEqual(
            {path.name for path in contents().iterdir()}, {"Info.plist", "MacOS", "Resources"}
        )
        names = files_below(contents() / "MacOS")
        self.assertEqual(names, files_below(delivered_stage()))
        _, differing, unreadable = filecmp.cmpfiles(
            contents() / "MacOS", delivered_stage(), names, shallow=False
        )
        self.assertEqual((differing, unreadable), ([], []))
        self.assertEqual(
            files_below(contents() / "Resources"),
            {f"{APPLICATION}.icns", f"{MEDIA_TYPE_ICON}.icns"},
        )

    def test_it_starts_the_program(self):
        self.assertEqual(self.properties["CFBundlePackageType"], "APPL")
        self.assertEqual(self.properties["CFBundleExecutable"], PROGRAM)
        self.assertTrue(
            os.access(contents() / "MacOS" / self.properties["CFBundleExecutable"], os.X_OK)
        )

    def test_its_properties_identify_the_program(self):
        self.assertEqual(self.properties["CFBundleIdentifier"], APPLICATION)
        self.assertEqual(self.properties["CFBundleShortVersionString"], "3.2.3")
        self.assertEqual(self.properties["CFBundleVersion"], "3.2.3")
        self.assertEqual(self.properties["CFBundleDisplayName"] + ".app", BUNDLE_NAME)
        # The menu bar has no room for more.
        self.assertLess(len(self.properties["CFBundleName"]), 16)
        self.assertIs(self.properties["NSHighResolutionCapable"], True)

    def test_it_declares_the_codeset(self):
        (document,) = self.properties["CFBundleDocumentTypes"]
        (declared,) = self.properties["UTExportedTypeDeclarations"]
        self.assertEqual(document["CFBundleTypeName"], "codeset")
        self.assertEqual(document["CFBundleTypeExtensions"], ["codeset"])
        self.assertEqual(document["LSItemContentTypes"], [declared["UTTypeIdentifier"]])
        self.assertEqual(declared["UTTypeConformsTo"], ["public.xml"])
        self.assertEqual(
            declared["UTTypeTagSpecification"]["public.filename-extension"], ["codeset"]
        )

    def test_the_icons_it_names_are_there_in_every_size(self):
        named = {self.properties["CFBundleIconFile"]}
        named |= {
            document["CFBundleTypeIconFile"]
            for document in self.properties["CFBundleDocumentTypes"]
        }
        named |= {
            declared["UTTypeIconFile"] for declared in self.properties["UTExportedTypeDeclarations"]
        }
        self.assertEqual(named, files_below(contents() / "Resources"))
        for name in named:
            path = contents() / "Resources" / name
            data = path.read_bytes()
            self.assertEqual(struct.unpack(">4sI", data[:8]), (b"icns", len(data)), name)
            self.assertNotIn(b"", icon_elements(data).values(), name)
            with tempfile.TemporaryDirectory() as folder:
                subprocess.run(
                    ("icns2png", "-x", "-o", folder, path), stdout=subprocess.DEVNULL, check=True
                )
                sizes = sorted(
                    struct.unpack(">II", image.read_bytes()[16:24])
                    for image in pathlib.Path(folder).glob("*.png")
                )
            self.assertEqual(sizes, [(size, size) for size in ICON_SIZES], name)

    def test_no_value_was_left_unfilled(self):
        self.assertIsNone(re.search(r"@\w*@", (contents() / "Info.plist").read_text()))


class BundledProgram(InstalledProgramJourney):
    def test_it_finds_the_files_beside_it(self):
        self.use(contents() / "MacOS", contents() / "MacOS")


if __name__ == "__main__":
    main()
