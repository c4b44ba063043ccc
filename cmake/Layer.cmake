# vantorelle_add_layer(<library>
#   FOLDER   <folder of the sources, from the root>
#   HEADERS  <headers that other folders may include>
#   SOURCES  <sources>
#   USES     <libraries of lower layers whose headers it includes>
#   PACKAGES <imported packages>)
#
# A layer is a static library. Its headers are included relative to the root ("base/error.h"), but
# the root itself is on no include path: each layer gets a folder with links to its listed headers,
# and that folder is on the include path only of layers that name it under USES, directly or through
# another layer. A header of a higher layer, or one that is not listed, is therefore not found.
function(vantorelle_add_layer library)
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
