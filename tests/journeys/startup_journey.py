"""Before and after the tool's windows: a start that fails, two programs at once, and what a
start ignores and cleans up."""

import os
import pathlib
import re
import shlex
import shutil
import subprocess

from support import MAIN_WINDOW, Journey, display, main, wait_until
from support.program import EXECUTABLE

FONT_MESSAGE = "Startup failed.\n\nCouldn't open required fonts."
APPLICATION = "org.vantorelle.VantorelleRemarkCodesetsManager"
TEMP_FOLDER = pathlib.Path("/tmp")
ABSENT_PROCESS = 999999


class Startup(Journey):
    def make_workspace(self):
        (self.home / "Vantorelle Workspace").mkdir()

    def test_a_missing_font_is_reported_and_nothing_else_opens(self):
        self.make_workspace()
        stage = self.copy_stage()
        (stage / "fonts" / "LiberationSans-Bold.ttf").unlink()
        program = self.start_program(stage=stage)
        message = program.dialog("Error")
        self.assertEqual(message.message, FONT_MESSAGE)
        self.assertEqual(program.windows(), [message])
        message.button("Close").click()
        program.expect_exit(0)
        self.assertEqual(list((self.home / "Vantorelle Workspace").iterdir()), [])

    def test_a_file_that_is_no_font_is_reported(self):
        stage = self.copy_stage()
        (stage / "fonts" / "LiberationSans-Bold.ttf").write_text("no font")
        program = self.start_program(stage=stage)
        message = program.dialog("Error")
        self.assertEqual(message.message, FONT_MESSAGE)
        message.close()
        program.expect_exit(0)
        self.assertEqual(list(self.home.glob("Vantorelle*")), [])

    def test_the_desktop_knows_the_windows_for_the_programs(self):
        # It finds name and icon in the entry that is called like the windows' class, of which the
        # toolkit writes the first letter as a capital.
        own = (APPLICATION, "O" + APPLICATION[1:])
        self.make_workspace()
        program = self.start_program()
        window = program.window(MAIN_WINDOW)
        self.assertEqual(display.window_class(window.window_id), own)
        window.button("Add new").click()
        naming = program.window("Add new")
        self.assertEqual(display.window_class(naming.window_id), own)
        naming.button("Cancel").click()
        naming.expect_closed()
        window.close()
        program.expect_exit(0)

    def test_two_programs_run_side_by_side(self):
        self.make_workspace()
        first = self.start_program()
        window = first.window(MAIN_WINDOW)
        second = self.start_program()
        other = second.window(MAIN_WINDOW)
        self.assertNotEqual(first.pid, second.pid)
        self.assertTrue(window.is_open)
        other.close()
        second.expect_exit(0)
        window.expect_active()
        window.button("Add new").click()
        first.window("Add new").button("Cancel").click()
        window.close()
        first.expect_exit(0)

    def test_arguments_are_ignored(self):
        self.make_workspace()
        stage = self.copy_stage()
        real = stage / "real-program"
        shutil.move(stage / EXECUTABLE, real)
        arguments = [
            "--help",
            "--version",
            "--display=:77",
            "--gtk-no-such-option",
            "--gapplication-service",
            "/nowhere/a.codeset",
        ]
        (stage / EXECUTABLE).write_text(f"#!/bin/sh\nexec {shlex.join([str(real), *arguments])}\n")
        (stage / EXECUTABLE).chmod(0o755)
        program = self.start_program(stage=stage)
        window = program.window(MAIN_WINDOW)
        self.assertIn(
            b"--gtk-no-such-option", pathlib.Path(f"/proc/{program.pid}/cmdline").read_bytes()
        )
        window.close()
        program.expect_exit(0)
        self.assertEqual(program.printed, "")

    def test_the_theme_of_the_user_is_ignored(self):
        self.make_workspace()
        pictures = [
            self.picture_under(theme) for theme in (None, "HighContrastInverse", "Adwaita:dark")
        ]
        # Light for one and dark for the others, if the variable counted.
        self.assertEqual(pictures[1], pictures[0])
        self.assertEqual(pictures[2], pictures[0])

    def picture_under(self, theme):
        """The average colour of a button of the main window."""
        program = self.start_program(GTK_THEME=theme)
        window = program.window(MAIN_WINDOW)
        window.list().expect_focus()
        display.move(0, 0)
        picture = self.folder / "picture.png"
        display.screenshot(picture)
        button = window.button("Refresh list").extents
        region = f"{button[2]}x{button[3]}+{button[0]}+{button[1]}"
        colours = subprocess.run(
            ("convert", str(picture), "-crop", region, "-resize", "1x1!", "txt:-"),
            capture_output=True,
            check=True,
            text=True,
        )
        window.close()
        program.expect_exit(0)
        return re.search(r"#[0-9A-F]{6}", colours.stdout).group()

    def test_stale_print_files_are_removed(self):
        self.make_workspace()
        self.assertFalse(pathlib.Path(f"/proc/{ABSENT_PROCESS}").exists())
        own_id = os.getpid()
        own_size = pathlib.Path("/proc/self/exe").stat().st_size & 0x7FFFFFFF
        # The number of this process keeps them apart from those of another run of this test.
        stale = [
            f"vantorelle-{ABSENT_PROCESS}.{own_id}.out",
            f"vantorelle-{ABSENT_PROCESS}.{own_id}.odt",
            f"vantorelle-{own_id}.{own_size + 1}.out",
        ]
        kept = [
            f"vantorelle-{own_id}.{own_size}.out",
            f"vantorelle-{own_id}.{own_size}.odt",
            f"vantorelle-{ABSENT_PROCESS}.{own_id}.txt",
            f"vantorelle-{own_id}.out",
            f"vantorelle-a{own_id}.1.out",
        ]
        for name in stale + kept:
            path = TEMP_FOLDER / name
            path.write_text("printed")
            self.addCleanup(path.unlink, missing_ok=True)
        program = self.start_program()
        window = program.window(MAIN_WINDOW)
        self.assertEqual([name for name in stale if (TEMP_FOLDER / name).exists()], [])
        self.assertEqual([name for name in kept if not (TEMP_FOLDER / name).exists()], [])
        window.close()
        program.expect_exit(0)

    def test_a_killed_program_does_not_block_the_next_one(self):
        self.make_workspace()
        program = self.start_program()
        program.window(MAIN_WINDOW)
        program.kill()
        wait_until(
            lambda: not pathlib.Path(f"/proc/{program.pid}").exists(), "the process to be gone"
        )
        program = self.start_program()
        program.window(MAIN_WINDOW).close()
        program.expect_exit(0)


if __name__ == "__main__":
    main()
