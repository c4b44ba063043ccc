"""Unsaved work when the program is ended in any way. VANTORELLE_KILLS sets how often the program is
killed at a random moment, VANTORELLE_SEED repeats the moments of an earlier run."""

import os
import pathlib
import random
import signal
import stat
import subprocess
from xml.etree import ElementTree

from support import MAIN_WINDOW, QUESTION, RESTORE, UK, WorkspaceJourney, codeset, main, wait_until
from support import display
from support.waiting import Clock, settle

TITLE = "Edit remark codeset - wood.codeset"
REMARKS = [("W1", "Split"), ("W2", "Worm")]
WOOD = codeset("Wood", "Vera", "2", REMARKS)
WOOD_TEXT = "Wood (Vera) 2"
CHANGED = codeset("Changed", "Vera", "2", REMARKS)

# The longest that a change may stay out of the draft.
DRAFT_SECONDS = 2

REMARK_COUNT = 100_000
# About twice what a save of that many takes.
SAVE_SECONDS = 0.4


def permissions(path):
    return stat.S_IMODE(path.stat().st_mode)


class Drafts(WorkspaceJourney):
    def setUp(self):
        super().setUp()
        self.state = self.home / ".local" / "state"
        self.wood = self.put("wood.codeset", WOOD)

    def open_wood(self, **options):
        return self.open_editing("wood.codeset", WOOD_TEXT, **options)

    def change(self, editing):
        """Makes the one change of CHANGED and waits until it is in the draft."""
        editing.field(UK).enter("Changed")
        self.expect_draft(editing.program)

    def expect_draft(self, program):
        program.wait(
            lambda: self.drafts() == [CHANGED],
            lambda: f"the change in the draft; the drafts are {self.drafts()!r}",
            DRAFT_SECONDS,
        )

    def reopen(self, answer, row=WOOD_TEXT):
        """A new program, in which the question about the changes is answered."""
        program, window = self.open()
        window.list().row(row).select()
        window.button("Edit").click()
        self.expect_message(program, "Question", RESTORE, answer)
        return program, program.window(TITLE)

    def restore_and_save(self, row=WOOD_TEXT):
        program, editing = self.reopen("Yes", row)
        editing.field(UK).expect_text("Changed")
        editing.list("Remark codes").expect_texts(["W1. Split", "W2. Worm"])
        editing.button("Save codeset").click()
        window = program.window(MAIN_WINDOW)
        window.list().expect_texts(["Changed (Vera) 2"])
        self.assertEqual(self.contents(), {"wood.codeset": CHANGED})
        self.assertEqual(self.drafts(), [])
        self.end(program, window)

    # The end of the program

    def expect_restored_after(self, number):
        program, editing = self.open_wood()
        self.change(editing)
        program.kill(number)
        self.assertEqual(program.process.returncode, -number)
        self.assertEqual(self.contents(), {"wood.codeset": WOOD})
        self.assertEqual(self.drafts(), [CHANGED])
        self.restore_and_save()

    def test_killed(self):
        self.expect_restored_after(signal.SIGKILL)

    def test_terminated(self):
        self.expect_restored_after(signal.SIGTERM)

    def test_hung_up(self):
        self.expect_restored_after(signal.SIGHUP)

    def test_interrupted(self):
        self.expect_restored_after(signal.SIGINT)

    def test_the_last_word_before_a_signal_is_kept(self):
        for number in (signal.SIGTERM, signal.SIGHUP, signal.SIGINT):
            with self.subTest(number=number):
                self.put("wood.codeset", WOOD)
                program, editing = self.open_wood()
                editing.field(UK).enter("Changed")
                editing.field(UK).expect_text("Changed")
                program.kill(number)
                self.assertEqual(program.process.returncode, -number)
                self.assertEqual(self.drafts(), [CHANGED])
                self.restore_and_save()

    def test_a_signal_that_is_ignored_ends_nothing(self):
        program, editing = self.open_wood(ignored_signals=(signal.SIGHUP,))
        editing.field(UK).enter("Changed")
        program.process.send_signal(signal.SIGHUP)
        self.expect_draft(program)
        editing.button("Save codeset").click()
        self.end(program, program.window(MAIN_WINDOW))

    def start_x_server(self):
        """The server and the number of its display; ended after the test."""
        reading, writing = os.pipe()
        with open(self.folder / "server.log", "ab") as log:
            server = subprocess.Popen(
                (
                    "Xvfb",
                    "-screen",
                    "0",
                    "1400x1100x24",
                    "-nolisten",
                    "tcp",
                    "-noreset",
                    "-displayfd",
                    str(writing),
                ),
                stdin=subprocess.DEVNULL,
                stdout=log,
                stderr=log,
                pass_fds=(writing,),
            )
        os.close(writing)
        self.addCleanup(server.wait)
        self.addCleanup(server.kill)
        with open(reading, "rb") as pipe:
            return server, pipe.readline().decode().strip()

    def test_the_x_server_dies(self):
        server, number = self.start_x_server()
        settings = pathlib.Path(__file__).parents[1] / "support" / "openbox.xml"
        own_display = os.environ["DISPLAY"]
        self.addCleanup(os.environ.__setitem__, "DISPLAY", own_display)
        os.environ["DISPLAY"] = f":{number}"
        manager = subprocess.Popen(
            ("openbox", "--sm-disable", "--config-file", settings), stderr=subprocess.DEVNULL
        )
        self.addCleanup(manager.wait)
        self.addCleanup(manager.kill)
        wait_until(
            lambda: b"window id"
            in subprocess.run(
                ("xprop", "-root", "_NET_SUPPORTING_WM_CHECK"), capture_output=True, check=False
            ).stdout,
            "the window manager",
        )
        program, editing = self.open_wood()
        self.change(editing)
        server.kill()
        program.expect_exit(1)
        os.environ["DISPLAY"] = own_display
        self.restore_and_save()

    def test_the_wayland_compositor_dies(self):
        name = f"wayland-{os.getpid()}"
        with open(self.folder / "weston.log", "wb") as log:
            compositor = subprocess.Popen(
                (
                    "weston",
                    "--backend=x11-backend.so",
                    "--use-pixman",
                    "--width=1200",
                    "--height=900",
                    "--no-config",
                    "--idle-time=0",
                    f"--socket={name}",
                ),
                stdin=subprocess.DEVNULL,
                stdout=log,
                stderr=log,
            )
        self.addCleanup(compositor.wait)
        self.addCleanup(compositor.kill)
        socket = pathlib.Path(os.environ["XDG_RUNTIME_DIR"]) / name
        wait_until(socket.exists, "the compositor")
        program, window = self.open(GDK_BACKEND="wayland", WAYLAND_DISPLAY=name, DISPLAY=None)
        # Clients cannot know where their windows are on the screen, so only keys are used.
        window.list().expect_texts([WOOD_TEXT])
        window.list().expect_focus()
        display.press("Home", "space")
        window.list().expect_selected([WOOD_TEXT])
        window.button("Edit").act()
        editing = program.window(TITLE)
        editing.field(UK).expect_focus()
        display.press("ctrl+a")
        display.type_text("Changed")
        editing.field(UK).expect_text("Changed")
        self.expect_draft(program)
        compositor.kill()
        program.expect_exit(1)
        self.restore_and_save()

    # Answers

    def test_declined_changes_are_not_offered_again(self):
        program, editing = self.open_wood()
        self.change(editing)
        program.kill()
        program, editing = self.reopen("No")
        editing.field(UK).expect_text("Wood")
        self.assertEqual(self.drafts(), [])
        program.kill()
        program, editing = self.open_wood()
        editing.field(UK).expect_text("Wood")

    def test_restored_changes_survive_another_kill(self):
        program, editing = self.open_wood()
        self.change(editing)
        for answer in ("Yes", "Escape"):
            program.kill()
            program, editing = self.reopen(answer)
            editing.field(UK).expect_text("Changed")
            self.assertEqual(self.drafts(), [CHANGED])
        program.kill()
        self.restore_and_save()

    def test_closing_without_saving_leaves_nothing(self):
        program, editing = self.open_wood()
        self.change(editing)
        editing.button("Close").click()
        self.expect_message(program, "Really close?", QUESTION, "Cancel")
        self.assertEqual(self.drafts(), [CHANGED])
        editing.button("Close").click()
        self.expect_message(program, "Really close?", QUESTION, "Close")
        self.assertEqual(self.drafts(), [])
        self.end(program, program.window(MAIN_WINDOW))
        self.assertEqual(self.contents(), {"wood.codeset": WOOD})
        program, editing = self.open_wood()
        editing.field(UK).expect_text("Wood")

    def test_the_file_is_gone_or_broken(self):
        program, editing = self.open_wood()
        self.change(editing)
        program.kill()
        self.wood.unlink()
        program, window = self.open()
        window.button("Add new").click()
        naming = program.window("Add new")
        naming.field().enter("wood.codeset")
        naming.press("Return")
        self.expect_message(program, "Question", RESTORE, "Yes")
        program.window(TITLE).field(UK).expect_text("Changed")
        program.kill()
        self.put("wood.codeset", WOOD[:200])
        self.restore_and_save("wood.codeset")

    # The drafts' place

    def test_only_the_user_can_read_them(self):
        _, editing = self.open_wood()
        self.change(editing)
        for folder in (self.state, self.state / "vantorelle", self.state / "vantorelle" / "drafts"):
            self.assertEqual(permissions(folder), 0o700, folder)
            self.assertEqual(len(list(folder.iterdir())), 1)
        (draft,) = (self.state / "vantorelle" / "drafts").iterdir()
        self.assertEqual(permissions(draft), 0o600)
        self.assertTrue(draft.name.endswith(".wood.codeset"))

    def test_everything_else_works_without_a_folder_for_drafts(self):
        self.state.parent.mkdir()
        self.state.write_text("a file")
        program, editing = self.open_wood()
        editing.field(UK).enter("Changed")
        settle(DRAFT_SECONDS)
        self.assertEqual(
            [window.title for window in program.windows() if window.is_active], [TITLE]
        )
        editing.button("Save codeset").click()
        window = program.window(MAIN_WINDOW)
        self.assertEqual(self.contents(), {"wood.codeset": CHANGED})
        self.assertEqual(self.state.read_text(), "a file")
        self.end(program, window)

    def test_two_programs_on_one_file(self):
        program, editing = self.open_wood()
        self.change(editing)
        other, other_editing = self.open_wood()
        other_editing.field("Version").enter("3")
        other_draft = codeset("Wood", "Vera", "3", REMARKS)
        other.wait(lambda: sorted(self.drafts()) == sorted([CHANGED, other_draft]), "two drafts")
        program.kill()
        # The program that still runs keeps its draft.
        third, third_editing = self.reopen("Yes")
        third_editing.field(UK).expect_text("Changed")
        third_editing.button("Save codeset").click()
        third.window(MAIN_WINDOW)
        self.assertEqual(self.drafts(), [other_draft])
        other_editing.activate()
        other_editing.button("Save codeset").click()
        other.window(MAIN_WINDOW)
        self.assertEqual(self.contents(), {"wood.codeset": other_draft})
        self.assertEqual(self.drafts(), [])

    # Any moment

    def many(self, version):
        return codeset(
            "Many", version=version, remarks=[(str(i), f"Remark {i}") for i in range(REMARK_COUNT)]
        )

    @staticmethod
    def version_of(data):
        """The version of a whole codeset; None for anything else, read by another parser than the
        program's."""
        try:
            root = ElementTree.fromstring(data)
        except ElementTree.ParseError:
            return None
        return root.findtext("version") if len(root.findall("remark")) == REMARK_COUNT else None

    def versions_left(self):
        """Those of the file and of the drafts."""
        files = [self.wood.read_bytes()] if self.wood.exists() else []
        return {self.version_of(data) for data in files}, {
            self.version_of(data) for data in self.drafts()
        }

    def test_killed_at_any_moment(self):
        kills = int(os.environ.get("VANTORELLE_KILLS", 12))
        seed = int(os.environ.get("VANTORELLE_SEED", random.SystemRandom().getrandbits(32)))
        moments = random.Random(seed)
        old = self.many("1")
        for number in range(kills):
            is_saving = number % 2 == 0
            wait = moments.uniform(0, SAVE_SECONDS if is_saving else DRAFT_SECONDS + 1)
            with self.subTest(
                f"VANTORELLE_SEED={seed}", number=number, is_saving=is_saving, wait=wait
            ):
                self.wood.write_bytes(old)
                for draft in (self.state / "vantorelle" / "drafts").glob("*"):
                    draft.unlink()
                program, editing = self.open_editing("wood.codeset", "Many 1")
                editing.field("Version").enter("2")
                editing.field("Version").expect_text("2")
                clock = Clock()
                if is_saving:
                    editing.button("Save codeset").act()
                clock.run(wait)
                program.kill()
                in_file, in_drafts = self.versions_left()
                self.assertNotIn(None, in_drafts, "a draft is not whole")
                if is_saving:
                    self.assertTrue({"1", "2"} & in_file or "2" in in_drafts, (in_file, in_drafts))
                else:
                    self.assertEqual(in_file, {"1"})
                    if clock.counted >= DRAFT_SECONDS:
                        self.assertEqual(
                            in_drafts,
                            {"2"},
                            f"killed {clock.elapsed:.1f} s after the change, "
                            f"and was without work for {clock.counted:.1f} s of them",
                        )
                if in_file != {"1"}:
                    # Once the old file changes, the work must be in the file or in a draft.
                    self.assertIn("2", in_file | in_drafts)


if __name__ == "__main__":
    main()
