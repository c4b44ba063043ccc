#pragma once
// Start-up steps on the fake system; everything that they load is released at the end.

#include <gtest/gtest.h>

#include "app/startup.h"
#include "base/error.h"
#include "images/resources.h"
#include "system_folders.h"

class StartupFixture : public testing::Test {
protected:
  ~StartupFixture() override {
    v_startup_release_icons();
    v_startup_release_view_font();
    v_resources_clean_up();
    v_startup_release_font_library();
    v_error_clear();
  }

  SystemFolders system;
};
