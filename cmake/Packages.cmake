# All third-party libraries. Each layer names those that it may use.
find_package(PkgConfig REQUIRED)
pkg_check_modules(GLIB REQUIRED IMPORTED_TARGET glib-2.0>=2.74)
pkg_check_modules(LIBXML2 REQUIRED IMPORTED_TARGET libxml-2.0>=2.9.14)
pkg_check_modules(LIBXSLT REQUIRED IMPORTED_TARGET libxslt)
pkg_check_modules(LIBZIP REQUIRED IMPORTED_TARGET libzip)
pkg_check_modules(LIBPNG REQUIRED IMPORTED_TARGET libpng)
pkg_check_modules(LIBJPEG REQUIRED IMPORTED_TARGET libjpeg)
pkg_check_modules(LIBRSVG REQUIRED IMPORTED_TARGET librsvg-2.0)
pkg_check_modules(GOBJECT REQUIRED IMPORTED_TARGET gobject-2.0)
pkg_check_modules(GMODULE REQUIRED IMPORTED_TARGET gmodule-no-export-2.0)
pkg_check_modules(FREETYPE REQUIRED IMPORTED_TARGET freetype2)
pkg_check_modules(CAIRO REQUIRED IMPORTED_TARGET cairo cairo-ft)
pkg_check_modules(GTK REQUIRED IMPORTED_TARGET gtk+-3.0>=3.24)
pkg_check_modules(GSPELL REQUIRED IMPORTED_TARGET gspell-1)
if(APPLE)
  pkg_check_modules(GTK_MAC_INTEGRATION REQUIRED IMPORTED_TARGET gtk-mac-integration-gtk3)
endif()

# librsvg is loaded at run time (images/svg_library.h); the build needs only its headers. The older of
# its two interfaces returns the exact size and does not need a viewport.
add_library(vantorelle_svg_headers INTERFACE)
target_compile_definitions(vantorelle_svg_headers INTERFACE RSVG_DISABLE_DEPRECATION_WARNINGS)
target_include_directories(vantorelle_svg_headers SYSTEM INTERFACE ${LIBRSVG_INCLUDE_DIRS})
