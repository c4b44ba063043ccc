"""The packages that the scripts install are those that the Debian package names."""

import pathlib
import re
import subprocess
import unittest

SOURCE = pathlib.Path(__file__).resolve().parents[2]


def packages_for(purpose):
    """The packages that the scripts install for the purpose."""
    command = f"source scripts/lib/packages.bash; packages_for {purpose}"
    return set(
        subprocess.run(
            ("bash", "-euc", command), cwd=SOURCE, stdout=subprocess.PIPE, text=True, check=True
        ).stdout.split()
    )


def packages_in(field):
    """The packages that debian/control lists in the field, without substituted variables."""
    control = (SOURCE / "debian" / "control").read_text()
    (value,) = re.findall(rf"^{field}:\n((?: .*\n)+)", control, re.MULTILINE)
    return {line.split()[0].rstrip(",") for line in value.splitlines() if "${" not in line}


class Packages(unittest.TestCase):
    def test_the_package_is_built_with_what_the_program_is_built_with(self):
        # Debian has a compiler wherever packages are built.
        compiler, tools = {"g++"}, {"debhelper-compat"}
        self.assertEqual(packages_in("Build-Depends") - tools, packages_for("build") - compiler)

    def test_a_dictionary_of_the_program_is_recommended_by_the_package(self):
        dictionaries = {name for name in packages_for("run") if name.startswith("hunspell-")}
        self.assertGreater(len(dictionaries), 0)
        self.assertEqual(packages_in("Recommends"), dictionaries)

    def test_the_package_brings_the_fonts_and_symbols_that_the_program_is_started_with(self):
        brought = packages_in("Depends")
        self.assertLessEqual(
            {"fonts-dejavu-core", "librsvg2-common"}, packages_for("run") & brought
        )
        self.assertLessEqual({"fonts-liberation"}, packages_for("build") & brought)


if __name__ == "__main__":
    unittest.main(verbosity=2)
