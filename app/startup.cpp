#include "app/startup.h"

#include <utility>

#include <cairo-ft.h>
#include <ft2build.h>
#include FT_FREETYPE_H

#include "app/application_menu.h"
#include "base/error.h"
#include "base/file_types.h"
#include "base/fs_utils.h"
#include "base/platform.h"
#include "images/resources.h"
#include "suite/temp_files.h"

namespace {

using OwnedFtFace = Owned<std::remove_pointer_t<FT_Face>, FT_Done_Face>;
using OwnedFontFace = Owned<cairo_font_face_t, cairo_font_face_destroy>;

FT_Library ft_library;
OwnedImage checkbox_off_icon_img;
OwnedImage checkbox_on_icon_img;
OwnedImage text_tab_menu_icon_img;
OwnedFontFace view_font_face;

const cairo_user_data_key_t destroy_ft_face_key = {};

bool fail_with_message(const char *message) {
  v_error_set(message);
  return false;
}

bool load_icon(OwnedImage &image, const char *entry_name) {
  image = v_resources_load_image(entry_name, VFileType::png, false);
  return image != nullptr;
}

bool open_resources() {
  if (!v_resources_open()) {
    v_error_append("Couldn't load resources.");
    return false;
  }
  return true;
}

// The FreeType face becomes user data of the cairo face, which frees it when it is destroyed.
bool make_view_font(OwnedFtFace ft_face) {
  OwnedFontFace face(cairo_ft_font_face_create_for_ft_face(ft_face.get(), 0));
  if (cairo_font_face_status(face.get()) != CAIRO_STATUS_SUCCESS) {
    return fail_with_message("Couldn't load required fonts.");
  }
  const auto done_face = [](void *data) { FT_Done_Face(static_cast<FT_Face>(data)); };
  if (cairo_font_face_set_user_data(face.get(), &destroy_ft_face_key, ft_face.get(), done_face) !=
      CAIRO_STATUS_SUCCESS) {
    // Free the cairo face before the FreeType face that it draws with.
    face.reset();
    return fail_with_message("Couldn't use required fonts.");
  }
  static_cast<void>(ft_face.release()); // the cairo face frees it from now on
  view_font_face = std::move(face);
  return true;
}

} // namespace

bool v_startup_run(GtkApplication *application) {
  if (!v_startup_init_font_library()) {
    return false;
  }
  v_startup_apply_resolution_rule(gdk_screen_get_default());
  v_application_menu_install(application);
  return v_temp_files_clean_up() && open_resources() && v_startup_load_icons() &&
         v_startup_load_view_font();
}

bool v_startup_init_font_library() {
  return FT_Init_FreeType(&ft_library) == 0 ||
         fail_with_message("Couldn't initialize the FreeType font library.");
}

void v_startup_apply_resolution_rule(GdkScreen *screen) {
  const double resolution = gdk_screen_get_resolution(screen);
  if (resolution >= 144.0) {
    gdk_screen_set_resolution(screen, resolution / 2);
  }
}

bool v_startup_load_icons() {
  return load_icon(checkbox_off_icon_img, "checkbox_off.png") &&
         load_icon(checkbox_on_icon_img, "checkbox_on.png") &&
         load_icon(text_tab_menu_icon_img, "text_tab_menu.png");
}

bool v_startup_load_view_font() {
  const OwnedText install_folder = v_platform_get_install_folder_path();
  if (!install_folder) {
    v_error_append("Couldn't find required fonts.");
    return false;
  }
  const OwnedText path =
      v_fs_utils_create_path_in_folder(install_folder.get(), "fonts", "LiberationSans-Bold.ttf");
  const OwnedText name = v_fs_utils_convert_utf8_to_osfsenc(path.get());
  if (!name) {
    return false;
  }
  OwnedFtFace ft_face;
  if (FT_New_Face(ft_library, name.get(), 0, receive(ft_face)) != 0) {
    return fail_with_message("Couldn't open required fonts.");
  }
  return make_view_font(std::move(ft_face));
}

void v_startup_release_icons() {
  checkbox_off_icon_img.reset();
  checkbox_on_icon_img.reset();
  text_tab_menu_icon_img.reset();
}

void v_startup_release_view_font() { view_font_face.reset(); }

void v_startup_release_font_library() {
  if (ft_library != nullptr) {
    FT_Done_FreeType(std::exchange(ft_library, nullptr));
  }
}

VImage *v_get_checkbox_icon_image(int on) {
  return on != 0 ? checkbox_on_icon_img.get() : checkbox_off_icon_img.get();
}

VImage *v_get_text_tab_menu_icon_image() { return text_tab_menu_icon_img.get(); }

cairo_font_face_t *v_get_view_font_face() { return view_font_face.get(); }
