# shellcheck shell=bash
# Configuring and building with a preset. Sourced by scripts that stand in the checkout's root folder.

# Configures when it was never done, or done when the checkout stood elsewhere; later changes are Ninja's business.
configure_preset() {
    local preset=$1 folder=build/$1
    if ! grep -qsxF "CMAKE_HOME_DIRECTORY:INTERNAL=$PWD" "$folder/CMakeCache.txt" || [[ ! -e $folder/build.ninja ]]; then
        cmake --fresh --preset "$preset"
    fi
}

build_preset() {
    configure_preset "$1"
    cmake --build "build/$1"
}
