# One set of compiler flags for everything that is ours.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

add_library(vantorelle_flags INTERFACE)
target_compile_options(vantorelle_flags INTERFACE -Wall -Wextra -Wshadow -Wconversion)
if(VANTORELLE_WERROR)
  target_compile_options(vantorelle_flags INTERFACE -Werror)
endif()
# GtkTable and GtkAlignment are what the windows are laid out with.
target_compile_definitions(vantorelle_flags INTERFACE GDK_DISABLE_DEPRECATION_WARNINGS)

if(VANTORELLE_SANITIZE)
  target_compile_options(vantorelle_flags INTERFACE
    -fsanitize=${VANTORELLE_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(vantorelle_flags INTERFACE -fsanitize=${VANTORELLE_SANITIZE})
endif()
if(VANTORELLE_FUZZ)
  if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    message(FATAL_ERROR "VANTORELLE_FUZZ needs clang: the fuzzing engine comes with it")
  endif()
  # What the engine is led by; only the harnesses link the engine itself.
  target_compile_options(vantorelle_flags INTERFACE -fsanitize=fuzzer-no-link)
  target_link_options(vantorelle_flags INTERFACE -fsanitize=fuzzer-no-link)
endif()
if(VANTORELLE_COVERAGE)
  target_compile_options(vantorelle_flags INTERFACE --coverage -O0)
  target_link_options(vantorelle_flags INTERFACE --coverage)
endif()
