// Start-ups in which a library fails: one message reports it, and nothing half-loaded remains.

#include <set>
#include <string>
#include <vector>

#include <cairo-ft.h>
#include <dirent.h>
#include <dlfcn.h>
#include <ft2build.h>
#include FT_FREETYPE_H
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <libxslt/xslt.h>
#include <zip.h>

#include "app/application.h"
#include "base/fs_utils.h"
#include "fake_tool.h"
#include "gui/owned_objects.h"
#include "startup_fixture.h"

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::StartsWith;
using testing::UnorderedElementsAre;

namespace {

// Controls the replaced library functions below while it exists. They only change calls of the
// start-up: the toolkit draws with the same libraries.
class Libraries {
public:
  Libraries() { current = this; }
  ~Libraries() { current = nullptr; }
  Libraries(const Libraries &) = delete;
  Libraries &operator=(const Libraries &) = delete;

  // Records the call; true when it must fail. Each failing call fails once.
  static bool fails(const std::string &call) {
    note(call);
    return current != nullptr && current->failing_calls.erase(call) > 0;
  }
  static void note(const std::string &call) {
    if (current != nullptr) {
      current->calls.push_back(call);
    }
  }
  static bool is_view_font(const cairo_font_face_t *face) {
    return current != nullptr && face == current->font_face;
  }

  // Null outside a test and in other threads; the toolkit searches for fonts in its own thread.
  static thread_local Libraries *current;

  // Names of functions, with the argument of those that open something. A failed call is removed.
  std::set<std::string> failing_calls;
  std::vector<std::string> calls; // by start-up and shutdown, of the functions below
  // The faces of the view font, null before they exist. Only compared, never dereferenced.
  FT_Face ft_face = nullptr;
  cairo_font_face_t *font_face = nullptr;
  std::vector<std::string> ended; // freed faces, in order
};

thread_local Libraries *Libraries::current;

// The library's function that ours replaces.
template <typename Function>
Function *next(const char *name) {
  return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

const cairo_user_data_key_t watch_key = {};

void note_end_of_font_face(void *) {
  if (Libraries::current != nullptr) {
    Libraries::current->ended.emplace_back("cairo face");
  }
}

} // namespace

FT_Error FT_Init_FreeType(FT_Library *library) {
  return Libraries::fails("FT_Init_FreeType")
             ? FT_Err_Out_Of_Memory
             : next<decltype(FT_Init_FreeType)>("FT_Init_FreeType")(library);
}

FT_Error FT_Done_Face(FT_Face face) {
  if (Libraries *libraries = Libraries::current;
      libraries != nullptr && face == libraries->ft_face) {
    libraries->ended.emplace_back("FreeType face");
    Libraries::note("FT_Done_Face");
  }
  return next<decltype(FT_Done_Face)>("FT_Done_Face")(face);
}

FT_Error FT_New_Face(FT_Library library, const char *path, FT_Long index, FT_Face *face) {
  Libraries::note("FT_New_Face");
  return next<decltype(FT_New_Face)>("FT_New_Face")(library, path, index, face);
}

FT_Error FT_Done_FreeType(FT_Library library) {
  Libraries::note("FT_Done_FreeType");
  return next<decltype(FT_Done_FreeType)>("FT_Done_FreeType")(library);
}

void gdk_screen_set_resolution(GdkScreen *screen, double resolution) {
  Libraries::note("gdk_screen_set_resolution");
  next<decltype(gdk_screen_set_resolution)>("gdk_screen_set_resolution")(screen, resolution);
}

void gtk_application_set_app_menu(GtkApplication *application, GMenuModel *menu) {
  Libraries::note("gtk_application_set_app_menu");
  next<decltype(gtk_application_set_app_menu)>("gtk_application_set_app_menu")(application, menu);
}

DIR *opendir(const char *name) {
  if (fake_platform.temp_files_folder == name) {
    Libraries::note("opendir");
  }
  return next<decltype(opendir)>("opendir")(name);
}

// Replaces the program's only call of the library, which is then not linked: there is no next one.
void xsltCleanupGlobals() { Libraries::note("xsltCleanupGlobals"); }

void xmlCleanupParser() {
  Libraries::note("xmlCleanupParser");
  next<decltype(xmlCleanupParser)>("xmlCleanupParser")();
}

void zip_discard(zip_t *archive) {
  Libraries::note("zip_discard");
  next<decltype(zip_discard)>("zip_discard")(archive);
}

// The linker redirects the program's call to the wrapped function.
void real_file_dialog_clean_up() __asm__("__real__Z22v_file_dialog_clean_upv");
void wrapped_file_dialog_clean_up() __asm__("__wrap__Z22v_file_dialog_clean_upv");

void wrapped_file_dialog_clean_up() {
  Libraries::note("v_file_dialog_clean_up");
  real_file_dialog_clean_up();
}

zip_t *zip_open_from_source(zip_source_t *source, int flags, zip_error_t *error) {
  if (Libraries::fails("zip_open_from_source")) {
    zip_error_set(error, ZIP_ER_NOZIP, 0);
    return nullptr;
  }
  return next<decltype(zip_open_from_source)>("zip_open_from_source")(source, flags, error);
}

zip_file_t *zip_fopen(zip_t *archive, const char *name, zip_flags_t flags) {
  const bool fails = Libraries::fails(std::string("zip_fopen ") + name);
  return next<decltype(zip_fopen)>("zip_fopen")(archive, fails ? "missing" : name, flags);
}

cairo_font_face_t *cairo_ft_font_face_create_for_ft_face(FT_Face ft_face, int load_flags) {
  cairo_font_face_t *face =
      Libraries::fails("cairo_ft_font_face_create_for_ft_face")
          ? cairo_toy_font_face_create(nullptr, CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL)
          : next<decltype(cairo_ft_font_face_create_for_ft_face)>(
                "cairo_ft_font_face_create_for_ft_face")(ft_face, load_flags);
  if (Libraries *libraries = Libraries::current) {
    libraries->ft_face = ft_face;
    cairo_font_face_set_user_data(face, &watch_key, libraries, note_end_of_font_face);
    libraries->font_face = face;
  }
  return face;
}

cairo_status_t cairo_font_face_set_user_data(cairo_font_face_t *face,
                                             const cairo_user_data_key_t *key, void *data,
                                             cairo_destroy_func_t destroy) {
  return Libraries::is_view_font(face) && Libraries::fails("cairo_font_face_set_user_data")
             ? CAIRO_STATUS_NO_MEMORY
             : next<decltype(cairo_font_face_set_user_data)>("cairo_font_face_set_user_data")(
                   face, key, data, destroy);
}

namespace {

struct Failure {
  const char *failing_call;
  const char *message;
  std::size_t loaded_icon_count;   // before the failure
  std::vector<const char *> ended; // faces that the failure frees
};

void PrintTo(const Failure &failure, std::ostream *stream) { *stream << failure.failing_call; }

constexpr const char *icon_message =
    "Could not load image resource.\n\nCould not load PNG.\n\n"
    "Opening compressed input file failed.\n\nCould not open compressed file.\n\nNo such file";

// One for all tests: the desktop refuses a second application with the same id.
GtkApplication *application() {
  static const OwnedObject<GtkApplication> registered = [] {
    OwnedObject<GtkApplication> made(gtk_application_new(fake_tool_id, G_APPLICATION_NON_UNIQUE));
    EXPECT_TRUE(g_application_register(G_APPLICATION(made.get()), nullptr, nullptr));
    return made;
  }();
  return registered.get();
}

class FailingStartup : public StartupFixture {
protected:
  FailingStartup() {
    // An older message must not become part of a new one.
    v_error_set("From before.");
    system.install_font();
  }

  // A start-up that fails ends the program, so what an earlier one has opened is released first.
  static bool run() {
    v_startup_release_font_library();
    return v_startup_run(application());
  }

  // Expects that exactly the first `count` icons are loaded.
  static void expect_icons(std::size_t count) {
    const VImage *icons[] = {v_get_checkbox_icon_image(0), v_get_checkbox_icon_image(1),
                             v_get_text_tab_menu_icon_image()};
    for (std::size_t i = 0; i < std::size(icons); i++) {
      EXPECT_EQ(icons[i] != nullptr, i < count) << i;
    }
  }

  Libraries libraries;
};

class StartupFailures : public FailingStartup, public testing::WithParamInterface<Failure> {};

class ReportedStartupFailures : public testing::TestWithParam<Failure> {};

} // namespace

TEST_P(StartupFailures, StopTheStartUp) {
  libraries.failing_calls = {GetParam().failing_call};
  EXPECT_FALSE(run());
  EXPECT_THAT(libraries.failing_calls, IsEmpty()) << "calls that were never made";
  EXPECT_STREQ(v_error_get(), GetParam().message);
  expect_icons(GetParam().loaded_icon_count);
  EXPECT_EQ(v_get_view_font_face(), nullptr);
  EXPECT_THAT(libraries.ended, ElementsAreArray(GetParam().ended));
}

TEST_P(ReportedStartupFailures, AreShownAtTheActivation) {
  in_own_process([](const SystemFolders &system, GuiScript &script) {
    system.install_font();
    Libraries libraries;
    libraries.failing_calls = {GetParam().failing_call};
    expect_failed_start(script, std::string("Startup failed.\n\n") + GetParam().message);
    EXPECT_THAT(libraries.failing_calls, IsEmpty()) << "calls that were never made";
  });
}

const Failure failures[] = {
    {"FT_Init_FreeType", "Couldn't initialize the FreeType font library.", 0, {}},
    {"zip_open_from_source", "Couldn't load resources.\n\nNot a zip archive", 0, {}},
    {"zip_fopen checkbox_off.png", icon_message, 0, {}},
    {"zip_fopen checkbox_on.png", icon_message, 1, {}},
    {"zip_fopen text_tab_menu.png", icon_message, 2, {}},
    {"cairo_ft_font_face_create_for_ft_face",
     "Couldn't load required fonts.",
     3,
     {"FreeType face"}},
    // The cairo face is freed before the FreeType face that it draws with.
    {"cairo_font_face_set_user_data",
     "Couldn't use required fonts.",
     3,
     {"cairo face", "FreeType face"}},
};

INSTANTIATE_TEST_SUITE_P(Startup, StartupFailures, testing::ValuesIn(failures));
INSTANTIATE_TEST_SUITE_P(Startup, ReportedStartupFailures, testing::ValuesIn(failures));

// A start-up without a failure loads everything and keeps the faces until they are released.
TEST_F(FailingStartup, SucceedsWithoutAFailure) {
  EXPECT_TRUE(run()) << v_error_get();
  expect_icons(3);
  EXPECT_EQ(v_get_view_font_face(), libraries.font_face);
  EXPECT_THAT(libraries.ended, IsEmpty());
  v_startup_release_view_font();
  EXPECT_EQ(v_get_view_font_face(), nullptr);
  EXPECT_THAT(libraries.ended, UnorderedElementsAre("cairo face", "FreeType face"));
}

TEST_F(FailingStartup, RunsItsStepsInOrder) {
  GdkScreen *screen = gdk_screen_get_default();
  const double resolution = gdk_screen_get_resolution(screen);
  gdk_screen_set_resolution(screen, 288);
  libraries.calls.clear();
  EXPECT_TRUE(run()) << v_error_get();
  EXPECT_THAT(
      libraries.calls,
      ElementsAre("FT_Init_FreeType", "gdk_screen_set_resolution", "gtk_application_set_app_menu",
                  "opendir", "zip_open_from_source", "zip_fopen checkbox_off.png",
                  "zip_fopen checkbox_on.png", "zip_fopen text_tab_menu.png", "FT_New_Face",
                  "cairo_ft_font_face_create_for_ft_face", "cairo_font_face_set_user_data"));
  gdk_screen_set_resolution(screen, resolution);
}

// The order of the steps decides which of several failures is reported.
TEST_F(FailingStartup, ReportsTheFirstOfSeveralFailures) {
  const char *const icons[] = {"checkbox_off.png", "checkbox_on.png", "text_tab_menu.png"};
  libraries.failing_calls = {"FT_Init_FreeType", "zip_open_from_source"};
  for (const char *icon : icons) {
    libraries.failing_calls.insert(std::string("zip_fopen ") + icon);
  }
  fake_platform.temp_files_folder = system.temp_files_folder / "missing";
  ASSERT_EQ(unlink((system.install_folder / "fonts/LiberationSans-Bold.ttf").c_str()), 0);

  EXPECT_FALSE(run());
  EXPECT_STREQ(v_error_get(), "Couldn't initialize the FreeType font library.");
  v_error_clear();
  EXPECT_FALSE(run());
  EXPECT_THAT(v_error_get(), StartsWith("Couldn't clean up temp files.\n\n"));
  fake_platform.temp_files_folder = system.temp_files_folder.path();
  EXPECT_FALSE(run());
  EXPECT_STREQ(v_error_get(), "Couldn't load resources.\n\nNot a zip archive");
  for (std::size_t i = 0; i < std::size(icons); i++) {
    EXPECT_FALSE(run());
    EXPECT_STREQ(v_error_get(), icon_message);
    expect_icons(i);
  }
  EXPECT_FALSE(run());
  EXPECT_STREQ(v_error_get(), "Couldn't open required fonts.");
  EXPECT_THAT(libraries.failing_calls, IsEmpty());
}

TEST_F(FailingStartup, TheShutdownRunsItsStepsInOrder) {
  EXPECT_TRUE(run()) << v_error_get();
  static const cairo_user_data_key_t icon_key = {};
  for (VImage *icon : {v_get_checkbox_icon_image(0), v_get_checkbox_icon_image(1),
                       v_get_text_tab_menu_icon_image()}) {
    cairo_surface_set_user_data(icon->surface.get(), &icon_key, icon,
                                [](void *) { Libraries::note("icon"); });
  }
  libraries.calls.clear();
  app_shutdown_callback(nullptr, nullptr);
  EXPECT_THAT(libraries.calls,
              ElementsAre("icon", "icon", "icon", "FT_Done_Face", "v_file_dialog_clean_up",
                          "zip_discard", "FT_Done_FreeType", "xsltCleanupGlobals",
                          "xmlCleanupParser"));
}

TEST_F(FailingStartup, DoesNothingMoreAfterTheFirstFailure) {
  const std::string stale_file = system.temp_files_folder / "vantorelle-999999.123.out";
  write_file(stale_file, "printed");
  libraries.failing_calls = {"FT_Init_FreeType"};
  EXPECT_FALSE(run());
  EXPECT_TRUE(path_exists(stale_file));
}

// The message is that of the path's conversion.
TEST_F(FailingStartup, StopsWhenTheFontPathCannotBeConverted) {
  fake_platform.install_folder = "/tmp/\xff";
  EXPECT_FALSE(run());
  EXPECT_THAT(v_error_get(), StartsWith("Could not use filename.\n\nGError 1: "));
  const std::string message = v_error_get();
  EXPECT_EQ(v_fs_utils_convert_utf8_to_osfsenc("/tmp/\xff/fonts/LiberationSans-Bold.ttf"), nullptr);
  EXPECT_EQ(message, v_error_get());
  expect_icons(3);
  EXPECT_EQ(v_get_view_font_face(), nullptr);
}
