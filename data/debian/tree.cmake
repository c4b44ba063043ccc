# Run by CPack on the installed tree before it is packed: changes that Debian requires to a manual
# installation.
set(root ${CPACK_TEMPORARY_DIRECTORY}${CPACK_PACKAGING_INSTALL_PREFIX})
set(documents ${root}/share/doc/${CPACK_PACKAGE_NAME})
set(overrides ${root}/share/lintian/overrides)

# The package depends on the package of the view font, so its own copy and its licence are removed.
set(font LiberationSans-Bold.ttf)
file(REMOVE_RECURSE ${root}/lib/vantorelle/fonts)
file(MAKE_DIRECTORY ${root}/lib/vantorelle/fonts)
file(CREATE_LINK
  ../../../share/fonts/truetype/liberation/${font} ${root}/lib/vantorelle/fonts/${font} SYMBOLIC)

file(MAKE_DIRECTORY ${overrides})
file(COPY_FILE ${CMAKE_CURRENT_LIST_DIR}/lintian-overrides ${overrides}/${CPACK_PACKAGE_NAME})
file(COPY_FILE ${CMAKE_CURRENT_LIST_DIR}/copyright ${documents}/copyright)
file(COPY_FILE ${CMAKE_CURRENT_LIST_DIR}/changelog ${documents}/changelog.Debian)
file(REMOVE ${documents}/LICENSE)

file(GLOB compressed ${root}/share/man/man1/*.1 ${documents}/changelog ${documents}/changelog.Debian)
execute_process(COMMAND gzip -9n ${compressed} COMMAND_ERROR_IS_FATAL ANY)

# Permissions of folders and copies made here, independent of the builder's umask.
execute_process(COMMAND chmod -R u=rwX,go=rX ${root} COMMAND_ERROR_IS_FATAL ANY)
