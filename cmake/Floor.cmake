# vantorelle_add_floor(<library>
#   FOLDER   <folder of the sources, from the root>
#   HEADERS  <headers that other folders may include>
#   SOURCES  <sources>
#   USES     <libraries of the floors below, as far as their headers are needed>
#   PACKAGES <imported packages>)
#
# A floor is a static library. Its headers are included from the root ("base/error.h"), but the
# root itself is on no include path: each floor gets a folder with links to its own headers, and
# only a floor that names it under USES, directly or through another floor, has that folder on the
# include path. A header of a higher floor, or one that is not listed, is therefore not found.
function(vantorelle_add_floor library)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "FOLDER" "HEADERS;SOURCES;USES;PACKAGES")
  set(include_root ${PROJECT_BINARY_DIR}/include/${library})
  file(MAKE_DIRECTORY ${include_root}/${arg_FOLDER})
  foreach(header IN LISTS arg_HEADERS)
    file(CREATE_LINK
      ${PROJECT_SOURCE_DIR}/${arg_FOLDER}/${header} ${include_root}/${arg_FOLDER}/${header} SYMBOLIC)
  endforeach()
  list(TRANSFORM arg_SOURCES PREPEND ${PROJECT_SOURCE_DIR}/${arg_FOLDER}/ OUTPUT_VARIABLE sources)
  add_library(${library} STATIC ${sources})
  target_include_directories(${library} PUBLIC ${include_root})
  target_link_libraries(${library}
    PUBLIC ${arg_USES} ${arg_PACKAGES}
    PRIVATE vantorelle_flags)
endfunction()
