"""The test case of all journeys."""

import functools
import os
import pathlib
import shutil
import sys
import tempfile
import unittest

from . import display
from .program import EXECUTABLE, Program


class Journey(unittest.TestCase):
    """Each test has its own folder and home, and leaves pictures when it fails."""

    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="journey.", ignore_cleanup_errors=True)
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.home = self.folder / "home"
        self.home.mkdir()
        self.programs = []
        self.addCleanup(self.end_programs)

    def start_program(self, home=None, stage=None, ignored_signals=(), **environment):
        """Starts the program in the test's home. `stage` is a folder from copy_stage(); environment
        variables are given by name, with None to unset one."""
        output = self.folder / f"printed-{len(self.programs)}.txt"
        program = Program(
            home or self.home, stage or delivered_stage(), output, environment, ignored_signals
        )
        self.programs.append(program)
        return program

    def copy_stage(self, name="stage"):
        """Copies the staged program, so that a test can change the files beside the executable."""
        return pathlib.Path(shutil.copytree(delivered_stage(), self.folder / name, symlinks=True))

    def end_programs(self):
        for program in self.programs:
            if program.is_running:
                program.kill()

    def run(self, result=None):
        """Runs the test with the checks and pictures that every journey gets."""
        test = getattr(self, self._testMethodName)

        @functools.wraps(test)
        def observed():
            try:
                test()
                for program in self.programs:
                    program.check()
            except BaseException:
                self.leave_pictures()
                raise

        setattr(self, self._testMethodName, observed)
        return super().run(result)

    def leave_pictures(self):
        """A screenshot, and for each program its accessibility tree and what it printed."""
        try:
            folder = artifacts_folder() / self.id().removeprefix("__main__.")
            folder.mkdir(parents=True, exist_ok=True)
            print(f"pictures of the failure: {folder}", file=sys.stderr)
            display.screenshot(folder / "screen.png")
            for number, program in enumerate(self.programs):
                (folder / f"tree-{number}.txt").write_text(program.dump())
                (folder / f"printed-{number}.txt").write_text(program.printed)
        # The journey's own failure must be reported, so nothing may escape here.
        except Exception as error:  # pylint: disable=broad-exception-caught
            print(f"no complete picture of the failure: {error}", file=sys.stderr)


def delivered_stage():
    stage = os.environ.get("VANTORELLE_STAGE")
    if not stage or not os.access(pathlib.Path(stage) / EXECUTABLE, os.X_OK):
        raise AssertionError(f"VANTORELLE_STAGE names no folder with the program: {stage!r}")
    return pathlib.Path(stage)


def artifacts_folder():
    """JOURNEY_ARTIFACTS, or the folder journey-artifacts beside the stage."""
    named = os.environ.get("JOURNEY_ARTIFACTS")
    script = pathlib.Path(sys.argv[0]).stem
    return (
        pathlib.Path(named) if named else delivered_stage().parent / "journey-artifacts"
    ) / script


def main():
    """Runs the journeys of the calling file. None found is a failure, and so is one that was
    skipped."""
    ended = unittest.main(module="__main__", exit=False, verbosity=2).result
    sys.exit(0 if ended.wasSuccessful() and ended.testsRun > 0 and not ended.skipped else 1)
