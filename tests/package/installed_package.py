"""The program of the Debian package installed on this machine, as debian/tests starts it."""

import os
import pathlib
import tempfile

from layout import InstalledProgramJourney, main

FOLDER = pathlib.Path("/usr/lib/vantorelle")


class InstalledPackage(InstalledProgramJourney):
    def test_it_starts_and_lists_the_delivered_codesets(self):
        self.use(pathlib.Path("/usr/bin"), FOLDER, GSETTINGS_SCHEMA_DIR=None)


if __name__ == "__main__":
    os.environ.setdefault(
        "JOURNEY_ARTIFACTS", str(pathlib.Path(tempfile.gettempdir(), "journey-artifacts"))
    )
    main()
