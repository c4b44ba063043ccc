#!/usr/bin/python3
"""scripts/run on a distribution without Debian's packages, and in a checkout that is read-only."""

import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest

SOURCE = pathlib.Path(__file__).resolve().parents[2]
NOBODY = 65534
# Programs that the scripts themselves call.
BASIC_PROGRAMS = ("bash", "cat", "dirname", "env", "grep", "mkdir", "realpath", "sed", "sort", "tr")
# Programs that build and run the program. pkg-config knows every module but two.
TOOLS = (
    "broadwayd",
    "c++",
    "cmake",
    "gtk-query-settings",
    "mount",
    "ninja",
    "python3",
    "rsvg-convert",
    "setpriv",
    "unshare",
)
PKG_CONFIG = """#!/bin/bash
for module in "$@"; do
    [[ $module == libzip || $module == "libxml-2.0 >= 2.9.14" ]] && exit 1
done
exit 0
"""


class Refusal(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="scripts.")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.folder.chmod(0o755)
        self.checkout = self.folder / "checkout"
        self.checkout.mkdir()
        shutil.copytree(SOURCE / "scripts", self.checkout / "scripts")
        shutil.copytree(SOURCE / "cmake", self.checkout / "cmake")
        self.path = os.environ["PATH"]

    def use_other_distribution(self, without=()):
        """One that has the programs but not apt-get."""
        programs = self.folder / "programs"
        programs.mkdir()
        for name in BASIC_PROGRAMS:
            (programs / name).symlink_to(shutil.which(name))
        for name in set(TOOLS) - set(without):
            self.write_program(programs / name, "#!/bin/sh\nexit 0\n")
        if "pkg-config" not in without:
            self.write_program(programs / "pkg-config", PKG_CONFIG)
        if "fc-match" not in without:
            self.find_font("LiberationSans-Bold.ttf")
        self.path = str(programs)

    def find_font(self, name):
        """fontconfig has an answer for every font, perhaps with another."""
        self.write_program(
            self.folder / "programs" / "fc-match", f"#!/bin/bash\nprintf %s /fonts/{name}\n"
        )

    @staticmethod
    def write_program(path, text):
        path.write_text(text)
        path.chmod(0o755)

    def run_script(self, user=None, script="run", folder="/", **environment):
        options = {"user": user, "group": user, "extra_groups": []} if user else {}
        return subprocess.run(
            (self.checkout / "scripts" / script,),
            env={"PATH": self.path, "HOME": str(self.folder), **environment},
            cwd=folder,
            stdin=subprocess.DEVNULL,
            capture_output=True,
            text=True,
            check=False,
            timeout=60,
            **options,
        )

    def expect_list(self, *missing):
        ended = self.run_script()
        self.assertEqual(ended.stdout, "")
        introduction, *names = ended.stderr.splitlines()
        self.assertEqual(
            introduction, "Without apt-get nothing can be installed from here. These are missing:"
        )
        self.assertEqual(names, list(missing))
        self.assertEqual(ended.returncode, 1)

    def test_another_distribution_gets_one_list_of_all_that_is_missing(self):
        self.use_other_distribution(without=("cmake", "broadwayd"))
        self.expect_list(
            "program broadwayd",
            "program cmake",
            "pkg-config module libxml-2.0 >= 2.9.14",
            "pkg-config module libzip",
        )

    def test_the_font_is_missing_where_fontconfig_finds_another(self):
        self.use_other_distribution()
        self.write_program(self.folder / "programs" / "pkg-config", "#!/bin/sh\nexit 0\n")
        self.find_font("DejaVuSans-Bold.ttf")
        self.expect_list("font LiberationSans-Bold.ttf")

    def test_without_fontconfig_it_and_the_font_are_missing(self):
        self.use_other_distribution(without=("fc-match",))
        self.write_program(self.folder / "programs" / "pkg-config", "#!/bin/sh\nexit 0\n")
        self.expect_list("program fc-match", "font LiberationSans-Bold.ttf")

    def test_without_pkg_config_it_and_every_module_are_missing(self):
        self.use_other_distribution(without=("pkg-config",))
        modules = (
            "cairo",
            "cairo-ft",
            "freetype2",
            "glib-2.0 >= 2.74",
            "gtk+-3.0 >= 3.24",
            "librsvg-2.0",
            "libzip",
        )
        ended = self.run_script()
        self.assertEqual(ended.returncode, 1)
        self.assertEqual(ended.stderr.splitlines()[1], "program pkg-config")
        for module in modules:
            self.assertIn(f"pkg-config module {module}\n", ended.stderr)

    def test_the_tests_need_modules_of_their_own(self):
        self.use_other_distribution()
        self.write_program(
            self.folder / "programs" / "pkg-config", "#!/bin/bash\n[[ $2 != gmock ]]\n"
        )
        # Hides the module of this machine.
        (self.folder / "gi.py").write_text("raise ImportError\n")
        ended = self.run_script(script="test", PYTHONPATH=str(self.folder))
        self.assertEqual(ended.returncode, 1)
        modules = [line for line in ended.stderr.splitlines() if "module" in line]
        self.assertEqual(modules, ["pkg-config module gmock", "Python module gi.repository.Atspi"])

    def test_a_read_only_checkout_gets_one_sentence(self):
        self.protect_checkout()
        ended = self.run_script(NOBODY if os.geteuid() == 0 else None)
        self.assertEqual(ended.stdout, "")
        self.assertEqual(
            ended.stderr,
            f"{self.checkout}/build cannot be written: "
            "name another folder to build in with VANTORELLE_BUILD.\n",
        )
        self.assertEqual(ended.returncode, 1)

    def test_all_output_is_in_a_build_folder_elsewhere(self):
        self.use_other_distribution()
        self.write_program(self.folder / "programs" / "pkg-config", "#!/bin/sh\nexit 0\n")
        self.write_program(self.folder / "programs" / "cmake", '#!/bin/bash\necho "cmake $*"\n')
        elsewhere = self.folder / "elsewhere"
        elsewhere.mkdir()
        elsewhere.chmod(0o777)
        program = elsewhere / "release" / "stage" / "vantorelle-remark-codesets-manager"
        program.parent.mkdir(parents=True)
        self.write_program(program, '#!/bin/sh\necho "started"\n')
        self.protect_checkout()
        # A display that the toolkit's query, which does nothing here, finds usable.
        ended = self.run_script(
            NOBODY if os.geteuid() == 0 else None,
            folder=self.folder,
            VANTORELLE_BUILD="elsewhere",
            DISPLAY=":0",
        )
        self.assertEqual(ended.stderr, "")
        self.assertEqual(
            ended.stdout.splitlines(),
            [
                f"cmake --fresh --preset release -B {elsewhere}/release",
                f"cmake --build {elsewhere}/release",
                "started",
            ],
        )
        self.assertEqual(ended.returncode, 0)

    def protect_checkout(self):
        self.checkout.chmod(0o555)
        self.addCleanup(self.checkout.chmod, 0o755)


if __name__ == "__main__":
    unittest.main(verbosity=2)
