"""Takes the pictures of the documentation, one function each, inside tests/support/headless:

    VANTORELLE_STAGE=FOLDER pictures.py TARGET_FOLDER [PICTURE...]

The program works on a prepared workspace in a fresh home, so that a picture comes out the same each
time.
"""

import pathlib
import re
import subprocess
import sys
import tempfile

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tests" / "journeys"))

from support import MAIN_WINDOW, display  # noqa: E402
from support.journey import delivered_stage  # noqa: E402
from support.program import Program  # noqa: E402
from support.waiting import settle  # noqa: E402

ASSISTANT = "Vantorelle Workspace Setup"

# No blinking cursor, no animations, and a font that is on every machine that builds the program.
SETTINGS = """[Settings]
gtk-font-name=Liberation Sans 10
gtk-cursor-blink=false
gtk-enable-animations=false
"""

# A path that could be the reader's.
SHOWN_WORKSPACE = "/home/vera/Vantorelle Workspace"


def make_pictures(target, wanted):
    target.mkdir(parents=True, exist_ok=True)
    for name in wanted:
        with tempfile.TemporaryDirectory(prefix="pictures.") as folder:
            album = Album(pathlib.Path(folder), target / f"{name}.png")
            try:
                PICTURES[name](album)
            finally:
                album.close()
        print(target / f"{name}.png")


class Album:
    """One run of the program, and the picture that is taken of it."""

    def __init__(self, folder, picture):
        self.picture = picture
        self.home = folder / "home"
        settings = self.home / ".config" / "gtk-3.0" / "settings.ini"
        settings.parent.mkdir(parents=True)
        settings.write_text(SETTINGS)
        self.program = Program(
            self.home,
            delivered_stage(),
            folder / "printed.txt",
            {"VANTORELLE_USER_LANGUAGE": "en-uk"},
        )

    @property
    def codesets(self):
        return self.home / "Vantorelle Workspace" / "codesets"

    def main_window(self):
        """The main window on a workspace that holds the delivered codesets and one of the user's
        own."""
        assistant = self.program.window(ASSISTANT)
        for button in ("Next", "Apply", "Close"):
            assistant.button(button).click()
        assistant.expect_closed()
        window = self.program.window(MAIN_WINDOW)
        own = own_codeset((self.codesets / "easel_paintings.codeset").read_text("iso-8859-1"))
        (self.codesets / "town_museum.codeset").write_text(own, "iso-8859-1")
        window.button("Refresh list").click()
        window.list().row(re.compile("^Town museum"))
        return window

    def own_row(self, window):
        row = window.list().row(re.compile("^Town museum"))
        row.select()
        return row

    def editing_window(self):
        window = self.main_window()
        self.own_row(window)
        window.button("Edit").click()
        return self.program.window("Edit remark codeset - town_museum.codeset")

    def remark_dialog(self):
        editing = self.editing_window()
        editing.list("Remark codes").row(re.compile(r"^Cr4\. ")).select()
        editing.button("Edit").click()
        return self.program.window("Edit remark code")

    def take(self):
        """Takes the picture of the active window with its title bar."""
        # The pointer would highlight the widget below it.
        display.move(0, 0)
        settle()
        left, top, width, height = self.framed_extents()
        # Few colours make a small file, and are enough for antialiased text.
        subprocess.run(
            (
                "import",
                "-silent",
                "-window",
                "root",
                "-crop",
                f"{width}x{height}+{left}+{top}",
                "+repage",
                "-strip",
                "+dither",
                "-colors",
                "64",
                "-depth",
                "8",
                "-define",
                "png:compression-level=9",
                "-define",
                "png:exclude-chunks=date,time",
                f"png8:{self.picture}",
            ),
            check=True,
        )

    def framed_extents(self):
        """Left, top, width and height of the active window with what the window manager draws
        around it."""
        self.program.active_window().resting_extents()
        window = answer_of("xdotool", "getactivewindow").strip()
        facts = answer_of("xwininfo", "-id", window)
        left, top, width, height = (
            int(re.search(rf"{fact}: +(\d+)", facts).group(1))
            for fact in ("Absolute upper-left X", "Absolute upper-left Y", "Width", "Height")
        )
        frame = re.findall(
            r"\d+", answer_of("xprop", "-notype", "-id", window, "_NET_FRAME_EXTENTS")
        )
        frame_left, frame_right, frame_top, frame_bottom = map(int, frame)
        return (
            left - frame_left,
            top - frame_top,
            width + frame_left + frame_right,
            height + frame_top + frame_bottom,
        )

    def close(self):
        complaints = self.program.complaints()
        self.program.kill()
        if complaints:
            raise AssertionError("\n".join(complaints))


def answer_of(*command):
    return subprocess.run(command, capture_output=True, check=True, text=True).stdout


def own_codeset(delivered):
    """A user's own codeset in three languages, made from the delivered one."""
    text = re.sub(r'\t+<(\w+) lang="(fr|es|nl)">.*</\1>\n', "", delivered)
    for tag, name in (
        ("en-uk", "Town museum, paintings"),
        ("sv", "Stadsmuseet, målningar"),
        ("de", "Stadtmuseum, Gemälde"),
    ):
        text = re.sub(f'<name lang="{tag}">.*<', f'<name lang="{tag}">{name}<', text)
    text = re.sub(r'\t<author lang="(sv|de)">.*\n', "", text)
    text = re.sub(r'<author lang="en-uk">.*<', '<author lang="en-uk">Vera Lind<', text)
    return re.sub("<version>.*<", "<version>2026<", text)


# The pictures, in the order of the guide.


def first_start(album):
    album.program.window(ASSISTANT)
    album.take()


def workspace_location(album):
    assistant = album.program.window(ASSISTANT)
    assistant.button("Next").click()
    assistant.field("Workspace location").enter(SHOWN_WORKSPACE)
    album.take()


def workspace_created(album):
    assistant = album.program.window(ASSISTANT)
    assistant.button("Next").click()
    assistant.button("Apply").click()
    assistant.button("Close").resting_extents()
    album.take()


def main_window(album):
    window = album.main_window()
    album.own_row(window)
    album.take()


def incompatible_file(album):
    window = album.main_window()
    (album.codesets / "from_a_letter.codeset").write_text(
        "Dear colleague, please find attached our list of codes.\n"
    )
    window.button("Refresh list").click()
    window.list().row("from_a_letter.codeset")
    window.list().row(re.compile("^Town museum")).select()
    album.take()


def bundled_selector(album):
    album.main_window().button("Add bundled").click()
    album.program.window("Select one to add").list().row(re.compile("^Metals")).select()
    album.take()


def new_file_name(album):
    album.main_window().button("Add new").click()
    naming = album.program.window("Add new")
    naming.field().expect_focus()
    naming.press("Home")
    naming.field().type("icons_2026")
    album.take()


def question_delete(album):
    window = album.main_window()
    album.own_row(window)
    window.button("Delete").click()
    album.program.dialog("Question")
    album.take()


def question_bundled(album):
    window = album.main_window()
    window.list().row(re.compile("^Metals")).select()
    window.button("Edit").click()
    album.program.dialog("Question")
    album.take()


def editing_window(album):
    album.editing_window().list("Remark codes").row(re.compile(r"^Cr4\. ")).select()
    album.take()


def remark_code(album):
    dialog = album.remark_dialog()
    dialog.field("Remark code").expect_focus()
    album.take()


def spelling(album):
    dialog = album.remark_dialog()
    dialog.field("English/United Kingdom [en-uk]").enter("Drying craks, wide with rounded edges")
    dialog.field("Remark code").focus()
    settle()
    album.take()


def error_message(album):
    dialog = album.remark_dialog()
    dialog.field("Remark code").enter("Ab1")
    dialog.button("OK").click()
    album.program.dialog("Error")
    album.take()


def question_close(album):
    album.editing_window().button("Close").click()
    album.program.dialog("Really close?")
    album.take()


PICTURES = {
    function.__name__.replace("_", "-"): function
    for function in (
        first_start,
        workspace_location,
        workspace_created,
        main_window,
        incompatible_file,
        bundled_selector,
        new_file_name,
        question_delete,
        question_bundled,
        editing_window,
        remark_code,
        spelling,
        error_message,
        question_close,
    )
}

if __name__ == "__main__":
    unknown = [name for name in sys.argv[2:] if name not in PICTURES]
    if len(sys.argv) < 2 or unknown:
        sys.exit(f"{__doc__}\nThe pictures: {' '.join(PICTURES)}")
    make_pictures(pathlib.Path(sys.argv[1]), sys.argv[2:] or list(PICTURES))
