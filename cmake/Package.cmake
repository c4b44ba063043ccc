# The Debian package, made by `cpack -G DEB` from an installation.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME ${PROJECT_NAME})
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "The Vantorelle developers <developers@vantorelle.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "editor for the remark codes of condition reports")
set(CPACK_PACKAGE_DESCRIPTION
"Whoever writes condition reports on paintings, works on paper, ceramics or
other objects notes the same things again and again: flaking paint, foxing, a
chipped rim. This program keeps the short codes for such remarks, with a
description of each in as many languages as are needed, and brings ready sets
of codes with the established terms of eight fields of conservation.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
# Independent of the builder's umask.
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION editors)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE https://vantorelle.org/)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The toolkit only recommends the loader of its SVG symbols, but the program needs it. No tool
# detects that the program loads the SVG library at run time. Where the fonts of fonts-liberation
# are the only ones, the toolkit's "Sans" is a monospaced font.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "fonts-dejavu-core, fonts-liberation, librsvg2-2, librsvg2-common")
string(JOIN ", " CPACK_DEBIAN_PACKAGE_RECOMMENDS
  hunspell-en-gb hunspell-en-us hunspell-sv hunspell-de-de hunspell-fr hunspell-es hunspell-nl)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/data/debian/tree.cmake)
include(CPack)
