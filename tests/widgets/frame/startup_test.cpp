#include "app/startup.h"

#include <string>

#include <cairo-ft.h>
#include <gtest/gtest.h>

#include "base/error.h"
#include "images/resources.h"
#include "startup_fixture.h"
#include "support/fake_platform.h"
#include "support/files.h"

namespace {

class Startup : public StartupFixture {
protected:
  bool load_view_font() {
    EXPECT_TRUE(v_startup_init_font_library()) << v_error_get();
    return v_startup_load_view_font();
  }
};

} // namespace

// ---- The resolution -----------------------------------------------------------------------------

TEST_F(Startup, HalvesAResolutionOf144OrMore) {
  const struct {
    double before;
    double after;
  } cases[] = {{144.0, 72.0}, {143.9, 143.9}, {96.0, 96.0}, {145.0, 72.5}, {288.0, 144.0}};
  GdkScreen *screen = gdk_screen_get_default();
  const double resolution = gdk_screen_get_resolution(screen);
  for (const auto &[before, after] : cases) {
    gdk_screen_set_resolution(screen, before);
    v_startup_apply_resolution_rule(screen);
    EXPECT_DOUBLE_EQ(gdk_screen_get_resolution(screen), after);
  }
  // The resolution is not known.
  gdk_screen_set_resolution(screen, -1);
  v_startup_apply_resolution_rule(screen);
  EXPECT_DOUBLE_EQ(gdk_screen_get_resolution(screen), -1);
  gdk_screen_set_resolution(screen, resolution);
}

// ---- Icons --------------------------------------------------------------------------------------

TEST_F(Startup, KeepsTheIconsUntilTheyAreReleased) {
  EXPECT_EQ(v_get_checkbox_icon_image(0), nullptr);
  EXPECT_EQ(v_get_checkbox_icon_image(1), nullptr);
  EXPECT_EQ(v_get_text_tab_menu_icon_image(), nullptr);
  ASSERT_TRUE(v_resources_open()) << v_error_get();
  ASSERT_TRUE(v_startup_load_icons()) << v_error_get();
  EXPECT_NE(v_get_checkbox_icon_image(0), nullptr);
  EXPECT_NE(v_get_text_tab_menu_icon_image(), nullptr);
  EXPECT_NE(v_get_checkbox_icon_image(1), v_get_checkbox_icon_image(0));
  EXPECT_EQ(v_get_checkbox_icon_image(-2), v_get_checkbox_icon_image(1));
  v_startup_release_icons();
  EXPECT_EQ(v_get_checkbox_icon_image(0), nullptr);
  EXPECT_EQ(v_get_checkbox_icon_image(1), nullptr);
  EXPECT_EQ(v_get_text_tab_menu_icon_image(), nullptr);
}

// ---- The view font ------------------------------------------------------------------------------

TEST_F(Startup, KeepsTheViewFontUntilItIsReleased) {
  EXPECT_EQ(v_get_view_font_face(), nullptr);
  system.install_font();
  ASSERT_TRUE(load_view_font()) << v_error_get();
  ASSERT_NE(v_get_view_font_face(), nullptr);
  EXPECT_EQ(cairo_font_face_get_type(v_get_view_font_face()), CAIRO_FONT_TYPE_FT);
  v_startup_release_view_font();
  EXPECT_EQ(v_get_view_font_face(), nullptr);
}

// Drawing code may hold a reference.
TEST_F(Startup, AReferencedViewFontOutlivesItsRelease) {
  system.install_font();
  ASSERT_TRUE(load_view_font()) << v_error_get();
  cairo_font_face_t *face = cairo_font_face_reference(v_get_view_font_face());
  v_startup_release_view_font();
  cairo_surface_t *surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 50, 50);
  cairo_t *cairo = cairo_create(surface);
  cairo_set_font_face(cairo, face);
  cairo_text_extents_t extents;
  cairo_text_extents(cairo, "M", &extents);
  EXPECT_GT(extents.width, 0);
  EXPECT_EQ(cairo_status(cairo), CAIRO_STATUS_SUCCESS);
  cairo_destroy(cairo);
  cairo_surface_destroy(surface);
  cairo_font_face_destroy(face);
}

TEST_F(Startup, ReportsOnlyTheMissingFont) {
  v_error_set("From before.");
  EXPECT_FALSE(load_view_font());
  EXPECT_STREQ(v_error_get(), "Couldn't open required fonts.");
  EXPECT_EQ(v_get_view_font_face(), nullptr);
}

TEST_F(Startup, RefusesAFileThatIsNotAFont) {
  make_folder(system.install_folder / "fonts");
  write_file(system.install_folder / "fonts/LiberationSans-Bold.ttf", "no font");
  EXPECT_FALSE(load_view_font());
  EXPECT_STREQ(v_error_get(), "Couldn't open required fonts.");
  EXPECT_EQ(v_get_view_font_face(), nullptr);
}

TEST_F(Startup, FindsNoFontsWhenTheInstallFolderIsUnknown) {
  fake_platform.install_folder.reset();
  EXPECT_FALSE(load_view_font());
  EXPECT_STREQ(v_error_get(),
               "Couldn't find required fonts.\n\nError getting exe path from system.");
  EXPECT_EQ(v_get_view_font_face(), nullptr);
}

TEST_F(Startup, AnInstallFolderMayHaveAnyName) {
  const std::string folder = system.install_folder / "100%s \u00e5";
  make_folder(folder);
  fake_platform.install_folder = folder;
  make_folder(folder + "/fonts");
  write_file(folder + "/fonts/LiberationSans-Bold.ttf", read_file(system.font_path()));
  EXPECT_TRUE(load_view_font()) << v_error_get();
}

// ---- Release ------------------------------------------------------------------------------------

TEST_F(Startup, ReleasesNothingWhenNothingIsLoaded) {
  for (int i = 0; i < 2; i++) {
    v_startup_release_icons();
    v_startup_release_view_font();
    v_startup_release_font_library();
  }
  EXPECT_TRUE(v_startup_init_font_library());
  v_startup_release_font_library();
  v_startup_release_font_library();
}
