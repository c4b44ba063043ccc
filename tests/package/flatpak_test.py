"""The Flatpak's manifest, as flatpak-builder reads it, against what an installation holds."""

import json
import os
import pathlib
import re
import subprocess
import tempfile
import unittest

from layout import APPLICATION, PROGRAM, SOURCE, installed_files

MANIFEST = SOURCE / "data" / "flatpak" / f"{APPLICATION}.yaml"
ADDRESS = re.compile(r"https://[^/]+/.+\.tar\.xz", re.ASCII)
DIGEST = re.compile(r"[0-9a-f]{64}", re.ASCII)


class Manifest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        # It makes a folder for its state in the working folder.
        with tempfile.TemporaryDirectory(prefix="flatpak.") as state:
            answer = subprocess.run(
                ("flatpak-builder", "--show-manifest", MANIFEST),
                cwd=state,
                capture_output=True,
                text=True,
                check=True,
                env={**os.environ, "GIO_USE_VFS": "local"},
            )
        # It warns of each property that is not documented.
        cls.complaints = answer.stderr
        cls.manifest = json.loads(answer.stdout)
        cls.modules = {module["name"]: module for module in cls.manifest["modules"]}

    def test_it_has_only_documented_properties(self):
        self.assertEqual(self.complaints, "")

    def test_it_starts_the_installed_program_under_the_desktop_entrys_id(self):
        self.assertEqual(self.manifest["id"], APPLICATION)
        self.assertEqual(self.manifest["command"], PROGRAM)
        self.assertLessEqual(
            {
                f"bin/{PROGRAM}",
                f"share/applications/{APPLICATION}.desktop",
                f"share/metainfo/{APPLICATION}.metainfo.xml",
                f"share/icons/hicolor/scalable/apps/{APPLICATION}.svg",
            },
            installed_files(),
        )

    def test_it_opens_the_documents_and_the_configuration_of_the_suite_and_nothing_else(self):
        self.assertEqual(
            set(self.manifest["finish-args"]),
            {
                "--share=ipc",
                "--socket=fallback-x11",
                "--socket=wayland",
                "--filesystem=xdg-documents",
                "--filesystem=xdg-config/vantorelle:create",
                "--persist=.",
            },
        )

    def test_it_builds_this_checkout(self):
        (source,) = self.modules[PROGRAM]["sources"]
        self.assertEqual(source["type"], "dir")
        self.assertEqual((MANIFEST.parent / source["path"]).resolve(), SOURCE)

    def test_what_it_fetches_has_a_digest(self):
        fetched = [
            source
            for module in self.manifest["modules"]
            for source in module["sources"]
            if source["type"] != "dir"
        ]
        self.assertEqual(len(fetched), len(self.modules) - 1)
        for source in fetched:
            self.assertEqual(source["type"], "archive")
            self.assertRegex(source["url"], ADDRESS)
            self.assertRegex(source["sha256"], DIGEST)

    def test_every_file_that_its_commands_name_is_installed(self):
        moved = re.findall(
            r"^mv (\S+) ", "\n".join(self.modules[PROGRAM]["build-commands"]), re.MULTILINE
        )
        installed = {pathlib.PurePath(name).name for name in installed_files()}
        self.assertGreater(len(moved), 0)
        self.assertLessEqual(set(moved), installed)


if __name__ == "__main__":
    unittest.main(verbosity=2)
