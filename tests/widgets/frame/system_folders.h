#pragma once
// The folders of the fake system; they exist and are empty.

#include <string>

#include "support/fake_platform.h"
#include "support/files.h"

class SystemFolders {
public:
  SystemFolders() {
    fake_platform.install_folder = install_folder.path();
    fake_platform.temp_files_folder = temp_files_folder.path();
  }

  static std::string font_path() { return VANTORELLE_VIEW_FONT; }

  // Installs the font, which start-up needs beside the executable.
  void install_font() const {
    make_folder(install_folder / "fonts");
    write_file(install_folder / "fonts/LiberationSans-Bold.ttf", read_file(font_path()));
  }

  FakePlatformReset reset_platform;
  TemporaryFolder install_folder;
  TemporaryFolder temp_files_folder;
};
