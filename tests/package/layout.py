"""The files below the prefix of an installation, and the program started from there."""

import os
import pathlib
import subprocess
import sys

SOURCE = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(SOURCE / "tests" / "journeys"))

from support import MAIN_WINDOW, Journey, main  # noqa: E402  (found only now)
from support.journey import delivered_stage  # noqa: E402

__all__ = [
    "APPLICATION",
    "COMMAND",
    "ICON_SIZES",
    "MEDIA_TYPE_ICON",
    "PROGRAM",
    "SOURCE",
    "InstalledProgramJourney",
    "files_below",
    "install",
    "installed_files",
    "main",
]

PROGRAM = "vantorelle-remark-codesets-manager"
COMMAND = "vantorelle-codeset"
APPLICATION = "org.vantorelle.VantorelleRemarkCodesetsManager"
MEDIA_TYPE_ICON = "application-x-vantorelle-codeset"
ICON_SIZES = (16, 22, 24, 32, 48, 64, 128, 256, 512)


def delivered():
    """The delivered files beside the executable, apart from the fonts."""
    return {
        f"{kind}s/{path.name}"
        for kind in ("codeset", "layout", "template")
        for path in (SOURCE / "data" / f"{kind}s").glob(f"*.{kind}")
    }


def installed_files():
    """Every file and link that an installation has below its prefix."""
    files = {f"bin/{PROGRAM}", f"lib/vantorelle/{PROGRAM}", f"bin/{COMMAND}"}
    files |= {f"lib/vantorelle/{name}" for name in delivered()}
    files |= {
        f"lib/vantorelle/fonts/{name}" for name in ("LiberationSans-Bold.ttf", "copyright", "GPL-2")
    }
    files |= {
        f"share/applications/{APPLICATION}.desktop",
        f"share/metainfo/{APPLICATION}.metainfo.xml",
        "share/mime/packages/vantorelle-codeset.xml",
        f"share/man/man1/{PROGRAM}.1",
        f"share/man/man1/{COMMAND}.1",
        f"share/bash-completion/completions/{COMMAND}",
        f"share/doc/{PROGRAM}/LICENSE",
    }
    documents = [
        SOURCE / "docs" / name for name in ("user-guide.md", "spreadsheets.md", "codeset-format.md")
    ]
    for folder in ("pictures", "print"):
        documents += (SOURCE / "docs" / folder).iterdir()
    files |= {f"share/doc/{PROGRAM}/{path.relative_to(SOURCE / 'docs')}" for path in documents}
    if (SOURCE / "CHANGELOG.md").exists():
        files.add(f"share/doc/{PROGRAM}/changelog")
    for context, icon in (("apps", APPLICATION), ("mimetypes", MEDIA_TYPE_ICON)):
        files.add(f"share/icons/hicolor/scalable/{context}/{icon}.svg")
        files |= {f"share/icons/hicolor/{size}x{size}/{context}/{icon}.png" for size in ICON_SIZES}
    return files


def files_below(folder):
    return {
        os.path.relpath(os.path.join(path, name), folder)
        for path, folders, files in os.walk(folder)
        for name in files + [name for name in folders if os.path.islink(os.path.join(path, name))]
    }


def install(destination, *arguments):
    """Installs the build that the stage belongs to, below a folder that is not the place it is
    meant for."""
    subprocess.run(
        (os.environ["VANTORELLE_CMAKE"], "--install", delivered_stage().parent, *arguments),
        env={**os.environ, "DESTDIR": str(destination)},
        stdout=subprocess.DEVNULL,
        check=True,
    )


class InstalledProgramJourney(Journey):
    def use(self, folder, beside, **environment):
        """Starts the program of the folder, has a workspace made and ends it. The workspace must
        receive the files in the folder `beside`."""
        program = self.start_program(stage=folder, **environment)
        assistant = program.window("Vantorelle Workspace Setup")
        self.expect_lines_as_written(assistant)
        assistant.button("Next").click()
        assistant.button("Apply")
        self.expect_lines_as_written(assistant)
        assistant.button("Apply").click()
        assistant.button("Close")
        self.expect_lines_as_written(assistant)
        assistant.button("Close").click()
        assistant.expect_closed()
        window = program.window(MAIN_WINDOW)
        codesets = sorted((SOURCE / "data" / "codesets").glob("*.codeset"))
        self.assertEqual(len(window.list().texts()), len(codesets))
        for name in delivered():
            received = (self.home / "Vantorelle Workspace" / name).read_bytes()
            self.assertEqual(received, (beside / name).read_bytes(), name)
            self.assertEqual(received, (SOURCE / "data" / name).read_bytes(), name)
        window.close()
        program.expect_exit(0)

    def expect_lines_as_written(self, window):
        """The texts of several lines break at their own line breaks and nowhere else."""
        texts = [label for label in window.find_all("label") if "\n" in label.text]
        self.assertGreater(len(texts), 0)
        for label in texts:
            self.assertEqual(label.lines, label.text.split("\n"))
