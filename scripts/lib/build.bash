# shellcheck shell=bash
# Configuring and building with a preset. Sourced by scripts whose working
# folder is the checkout's root.

# Configures a new build folder, or one of a checkout that was moved since. Ninja detects all other
# changes.
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
