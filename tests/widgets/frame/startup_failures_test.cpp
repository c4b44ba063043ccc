// Start-ups that a library fails: told of in one message, with nothing half done left behind.

#include <string>
#include <vector>

#include <cairo-ft.h>
#include <dlfcn.h>
#include <ft2build.h>
#include FT_FREETYPE_H
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zip.h>

#include "base/fs_utils.h"
#include "fake_tool.h"
#include "gui/owned_objects.h"
#include "startup_fixture.h"

using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::StartsWith;
using testing::UnorderedElementsAre;

namespace {

// What the functions below do instead of the libraries', as long as it lives. They do it for the
// start-up alone: the toolkit draws with the same libraries.
class Libraries {
public:
  Libraries() { current = this; }
  ~Libraries() { current = nullptr; }
  Libraries(const Libraries &) = delete;
  Libraries &operator=(const Libraries &) = delete;

  // Whether this call is the one that is to fail.
  static bool fails(const std::string &call) {
    if (current == nullptr || current->failing_call != call) {
      return false;
    }
    current->failing_call.clear();
    return true;
  }
  static bool is_view_font(const cairo_font_face_t *face) {
    return current != nullptr && face == current->font_face;
  }

  // Null outside and for other threads; the toolkit looks for fonts in one of its own.
  static thread_local Libraries *current;

  // A function, and what it is to open if it opens something. "" once it has failed.
  std::string failing_call;
  // The view font's, once there are any. Only compared, never dereferenced.
  FT_Face ft_face = nullptr;
  cairo_font_face_t *font_face = nullptr;
  std::vector<std::string> ended; // which of the two, in their order
};

thread_local Libraries *Libraries::current;

// The function that stands behind ours.
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
  }
  return next<decltype(FT_Done_Face)>("FT_Done_Face")(face);
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
  std::size_t loaded_icon_count;   // before it
  std::vector<const char *> ended; // of the view font, by it
};

void PrintTo(const Failure &failure, std::ostream *stream) { *stream << failure.failing_call; }

constexpr const char *icon_message =
    "Could not load image resource.\n\nCould not load PNG.\n\n"
    "Opening compressed input file failed.\n\nCould not open compressed file.\n\nNo such file";

// One for all tests: the desktop takes no second one of the name.
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
    // No message is a sequel to what was told before.
    v_error_set("From before.");
    system.install_font();
  }

  static bool run() { return v_startup_run(application()); }

  // Of the icons, in the order in which they are loaded, the first ones and no others are there.
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

class ToldStartupFailures : public testing::TestWithParam<Failure> {};

} // namespace

TEST_P(StartupFailures, EndTheStartUp) {
  libraries.failing_call = GetParam().failing_call;
  EXPECT_FALSE(run());
  EXPECT_EQ(libraries.failing_call, "") << "was never called";
  EXPECT_STREQ(v_error_get(), GetParam().message);
  expect_icons(GetParam().loaded_icon_count);
  EXPECT_EQ(v_get_view_font_face(), nullptr);
  EXPECT_THAT(libraries.ended, ElementsAreArray(GetParam().ended));
}

TEST_P(ToldStartupFailures, AtTheActivation) {
  in_own_process([](const SystemFolders &system, GuiScript &script) {
    system.install_font();
    Libraries libraries;
    libraries.failing_call = GetParam().failing_call;
    expect_failed_start(script, std::string("Startup failed.\n\n") + GetParam().message);
    EXPECT_EQ(libraries.failing_call, "") << "was never called";
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
    // The cairo face goes before the face that it draws with.
    {"cairo_font_face_set_user_data",
     "Couldn't use required fonts.",
     3,
     {"cairo face", "FreeType face"}},
};

INSTANTIATE_TEST_SUITE_P(Startup, StartupFailures, testing::ValuesIn(failures));
INSTANTIATE_TEST_SUITE_P(Startup, ToldStartupFailures, testing::ValuesIn(failures));

// As much as a start-up that does not fail loads, and the faces as long as it lasts.
TEST_F(FailingStartup, SucceedsWithoutAFailure) {
  EXPECT_TRUE(run()) << v_error_get();
  expect_icons(3);
  EXPECT_EQ(v_get_view_font_face(), libraries.font_face);
  EXPECT_THAT(libraries.ended, IsEmpty());
  v_startup_release_view_font();
  EXPECT_EQ(v_get_view_font_face(), nullptr);
  EXPECT_THAT(libraries.ended, UnorderedElementsAre("cairo face", "FreeType face"));
}

TEST_F(FailingStartup, DoesNothingMoreAfterTheFirstFailure) {
  const std::string stale_file = system.temp_files_folder / "vantorelle-999999.123.out";
  write_file(stale_file, "printed");
  libraries.failing_call = "FT_Init_FreeType";
  EXPECT_FALSE(run());
  EXPECT_TRUE(path_exists(stale_file));
}

// The words are those of the conversion.
TEST_F(FailingStartup, EndsAtAFontPathThatNoFileNameCanBe) {
  fake_platform.install_folder = "/tmp/\xff";
  EXPECT_FALSE(run());
  EXPECT_THAT(v_error_get(), StartsWith("Could not use filename.\n\nGError 1: "));
  const std::string message = v_error_get();
  EXPECT_EQ(v_fs_utils_convert_utf8_to_osfsenc("/tmp/\xff/fonts/LiberationSans-Bold.ttf"), nullptr);
  EXPECT_EQ(message, v_error_get());
  expect_icons(3);
  EXPECT_EQ(v_get_view_font_face(), nullptr);
}
