# shellcheck shell=bash
# Configures and builds with a preset. Sourced by scripts whose working folder is the checkout's
# root.

# Each preset is built in a sub-folder of that name. A read-only checkout needs another folder, whose
# path is relative to the folder that the script was started in.
if [[ -n ${VANTORELLE_BUILD:-} ]]; then
    VANTORELLE_BUILD=$(cd "$OLDPWD" && realpath -m "$VANTORELLE_BUILD")
    export VANTORELLE_BUILD
fi
readonly build_folder=${VANTORELLE_BUILD:-$PWD/build}

# Ends the script with status 1 when nothing can be written to the build folder.
ensure_build_folder() {
    if ! mkdir -p "$build_folder" 2>/dev/null || [[ ! -w $build_folder ]]; then
        echo "$build_folder cannot be written: name another folder to build in with VANTORELLE_BUILD." >&2
        exit 1
    fi
}

# Configures a new build folder, or one whose checkout was moved since. Ninja detects all other
# changes.
configure_preset() {
    local preset=$1 folder=$build_folder/$1
    ensure_build_folder
    if ! grep -qsxF "CMAKE_HOME_DIRECTORY:INTERNAL=$PWD" "$folder/CMakeCache.txt" || [[ ! -e $folder/build.ninja ]]; then
        cmake --fresh --preset "$preset" -B "$folder"
    fi
}

build_preset() {
    configure_preset "$1"
    cmake --build "$build_folder/$1"
}

# Writes the checkout without build products to standard output, as a tar archive. The arguments are
# options for tar.
archive_checkout() {
    tar --create --exclude=./.git --exclude=./build --exclude="./$(realpath --relative-to=. "$build_folder")" \
        --exclude=__pycache__ "$@" .
}
