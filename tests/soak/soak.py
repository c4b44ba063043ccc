"""Performs random actions in the program and checks its health:

    tests/support/headless /usr/bin/python3 tests/soak/soak.py [ACTIONS [SEED]]

VANTORELLE_STAGE is the folder with the program, in a build folder. After all actions it must still
answer, must have printed nothing, must not have grown since the first measurement, and must end
well.
"""

import pathlib
import shutil
import signal
import sys
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "journeys"))

from support import WorkspaceJourney, codeset, main, wait_until  # noqa: E402
from support.journey import delivered_stage  # noqa: E402
from user import KEPT_CODESETS, User  # noqa: E402

DEFAULT_ACTIONS = 2000
DEFAULT_SEED = 1

# By the first measurement every window has been opened more than once, and everything that is
# loaded only once is loaded.
MEASURED_EVERY = 500
TOLERATED_GROWTH = 1.05

# Upon SIGUSR2 this makes the program give back what it has freed. It is beside the stage in the
# build folder.
HEAP_TRIMMING = pathlib.Path("tests") / "soak" / "heap_trimming.so"

# A name in the languages of the user and of the delivered codesets. Each brings a dictionary of
# some megabytes when it is shown first, and that is before the first measurement.
EVERY_LANGUAGE = "every_language.codeset"
NAME_IN_EVERY_LANGUAGE = {
    tag: f"Every language {tag}" for tag in ("en-uk", "en", "de", "es", "fr", "nl", "sv")
}

IDLE_SECONDS = 0.5

# The accessibility bus keeps inspected objects for half a minute, those of closed windows included.
UNOBSERVED_SECONDS = 40


class Soak(WorkspaceJourney):
    actions = DEFAULT_ACTIONS
    seed = DEFAULT_SEED

    def setUp(self):
        super().setUp()
        for path in (delivered_stage() / "codesets").iterdir():
            shutil.copy(path, self.codesets)
        for number in range(KEPT_CODESETS - len(self.contents())):
            self.put(f"own_{number}.codeset", own_codeset(number))
        self.outside = self.folder / "outside"
        self.outside.mkdir()
        for number in (0, 1, 100, 101, 102):
            (self.outside / f"own_{number}.codeset").write_bytes(own_codeset(number))
        (self.outside / "broken.codeset").write_bytes(own_codeset(3)[:-3])
        (self.outside / "letter.txt").write_text("a letter")

    def test_the_program_bears_it(self):
        print(f"{self.actions} actions, seed {self.seed}")
        measuring = self.actions >= MEASURED_EVERY
        program, _ = self.open(**({"LD_PRELOAD": str(heap_trimming())} if measuring else {}))
        user = User(program, self.codesets, self.outside, self.seed)
        try:
            self.soak(program, user)
        except BaseException:
            print(
                f"The seed was {self.seed}. The last of {user.count} actions:",
                *user.last,
                sep="\n    ",
                file=sys.stderr,
            )
            raise
        finally:
            print(
                *(f"{kind:<20}{count:>6}" for kind, count in user.done.most_common()),
                sep="\n",
                flush=True,
            )

    def soak(self, program, user):
        started = time.monotonic()
        measured = []
        for number in range(1, self.actions + 1):
            user.act()
            self.assertEqual(program.printed, "", "the program printed something")
            if number % MEASURED_EVERY == 0:
                measured.append(self.memory_at_rest(program, user))
                print(
                    f"after {number:5} actions: {measured[-1]:,} KiB, "
                    f"{len(self.contents())} codesets, "
                    f"{time.monotonic() - started:.0f} s",
                    flush=True,
                )
        window = user.return_to_main_window()
        self.refresh(window)
        self.assertEqual(len(window.list()), len(self.contents()))
        self.end(program, window)
        self.assertEqual(program.printed, "")
        if len(measured) > 1:
            self.assertLessEqual(
                measured[-1], measured[0] * TOLERATED_GROWTH, f"the program grows: {measured} KiB"
            )

    def memory_at_rest(self, program, user):
        """What the program alone has written into its memory and not freed, in KiB, with the main
        window on top and nothing to do. Pages that it shares with the files they come from do not
        count: the system takes and gives them as it likes.
        """
        self.show_every_language(program, user)
        self.refresh(user.return_to_main_window())
        time.sleep(UNOBSERVED_SECONDS)
        self.wait_for_idleness(program)
        program.process.send_signal(signal.SIGUSR2)
        self.wait_for_idleness(program)
        return program.private_memory

    def wait_for_idleness(self, program):
        spent = [program.processor_time]

        def idle():
            time.sleep(IDLE_SECONDS)
            spent.append(program.processor_time)
            return spent[-1] == spent[-2] and program.is_asleep

        wait_until(idle, "the program to be idle")

    def show_every_language(self, program, user):
        """Leaves the editing window open."""
        self.put(EVERY_LANGUAGE, codeset(NAME_IN_EVERY_LANGUAGE, remarks=[("1", "One")]))
        window = user.return_to_main_window()
        self.refresh(window)
        window.list().row(NAME_IN_EVERY_LANGUAGE["en-uk"]).select()
        window.button("Edit").click()
        program.window(f"Edit remark codeset - {EVERY_LANGUAGE}")

    def refresh(self, window):
        window.button("Refresh list").click()
        window.list().expect_selected([])


def heap_trimming():
    library = delivered_stage().resolve().parent / HEAP_TRIMMING
    if not library.exists():
        raise AssertionError(f"The stage is not in a build folder: there is no {library}")
    return library


def own_codeset(number):
    remarks = [
        (f"W{code}", {"en-uk": f"Damage {code}", "sv": f"Skada {code}"})
        for code in range(1, 2 + number % 30)
    ]
    return codeset(
        {"en-uk": f"Codeset {number}", "sv": f"Kodlista {number}"}, "Vera", f"{number}.0", remarks
    )


if __name__ == "__main__":
    for attribute, argument in zip(("actions", "seed"), sys.argv[1:]):
        setattr(Soak, attribute, int(argument))
    del sys.argv[1:]
    main()
