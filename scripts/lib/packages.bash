# shellcheck shell=bash
# Lists and installs what the scripts need. Sourced by scripts whose working folder is the checkout.

# One line per package: its purpose and its name, which is the same in Debian 12 and Debian 13.
readonly package_table="
build   g++
build   cmake
build   ninja-build
build   pkgconf
build   librsvg2-bin
build   fonts-liberation
build   libgtk-3-dev
build   libgspell-1-dev
build   libxml2-dev
build   libxslt1-dev
build   libzip-dev
build   libpng-dev
build   libjpeg-dev
build   librsvg2-dev
build   libfreetype-dev
run     adwaita-icon-theme
run     fonts-dejavu-core
run     librsvg2-common
run     libgtk-3-bin
run     mount
run     python3
run     at-spi2-core
run     dbus
run     hunspell-en-gb
run     hunspell-en-us
run     hunspell-sv
run     hunspell-de-de
run     hunspell-fr
run     hunspell-es
run     hunspell-nl
test    libgtest-dev
test    libgmock-dev
test    locales
test    xvfb
test    openbox
test    weston
test    dbus
test    at-spi2-core
test    libglib2.0-bin
test    python3
test    python3-gi
test    gir1.2-atspi-2.0
test    x11-utils
test    xdotool
test    xclip
test    imagemagick
test    valgrind
test    appstream
test    desktop-file-utils
test    flatpak-builder
test    icnsutils
test    mandoc
test    shared-mime-info
test    strace
test    chromium
test    chromium-driver
check   clang-tidy
check   clang-format
check   cppcheck
check   shellcheck
check   black
check   pylint
check   python3-gi
coverage gcovr
coverage python3
fuzz    clang
fuzz    libclang-rt-dev
fuzz    libgtest-dev
fuzz    libgmock-dev
package build-essential
package debhelper
package dpkg-dev
package file
package lintian
package debootstrap
test    raptor2-utils
test    hunspell
test    hunspell-es
test    hunspell-nl
mutate  ccache
mutate  lld
mutate  python3-clang
test    python3-clang
check   python3-clang
bench   libbenchmark-dev
bench   python3
"

# One line per program: its purpose and its name. The libraries are those of cmake/Packages.cmake.
readonly program_table="
build   c++
build   cmake
build   fc-match
build   ninja
build   pkg-config
build   rsvg-convert
run     broadwayd
run     gtk-query-settings
run     mount
run     python3
run     setpriv
run     unshare
test    Xvfb
test    openbox
test    weston
test    dbus-daemon
test    glib-compile-schemas
test    gio
test    localedef
test    python3
test    xprop
test    xdotool
test    xclip
test    convert
test    valgrind
test    appstreamcli
test    desktop-file-validate
test    flatpak-builder
test    png2icns
test    mandoc
test    update-mime-database
test    strace
test    rapper
test    chromedriver
test    hunspell
check   clang-tidy
check   clang-format
check   cppcheck
check   shellcheck
coverage gcovr
coverage python3
fuzz    clang++
mutate  ccache
mutate  ld.lld
package dh
package dpkg-buildpackage
package lintian
package debootstrap
bench   python3
"

# The pkg-config modules and Python modules that only other purposes than the build need.
readonly module_table="
test    gmock
test    gtest
fuzz    gmock
fuzz    gtest
bench   benchmark
"
readonly python_module_table="
test    clang.cindex
test    gi.repository.Atspi
check   clang.cindex
check   gi.repository.Atspi
mutate  clang.cindex
"

# Prints the names in the table for the purposes, each only once.
names_for() {
    local table=$1 purpose name wanted
    while read -r purpose name; do
        for wanted in "${@:2}"; do
            [[ $purpose == "$wanted" ]] && echo "$name"
        done
    done <<<"$table" | sort -u
}

packages_for() {
    names_for "$package_table" "$@"
}

# Prints the packages that are not installed.
missing_packages() {
    local installed
    # dpkg-query fails for unknown names, which are then missing.
    installed=$(dpkg-query --show --showformat '${db:Status-Status} ${Package}\n' -- "$@" 2>/dev/null |
        sed -n 's/^installed //p' | sort -u) || true
    comm -23 <(printf '%s\n' "$@" | sort -u) <(echo "$installed")
}

# Prints the pkg-config modules that the build requires, with their versions, one per line.
required_modules() {
    sed -nE 's/^pkg_check_modules\([A-Z0-9_]+ REQUIRED IMPORTED_TARGET ([^)]*)\)$/\1/p' cmake/Packages.cmake |
        tr ' ' '\n' | sed 's/>=/ >= /'
}

# Succeeds when fontconfig finds the font that the build includes in the program.
has_view_font() {
    [[ $(fc-match --format='%{file}' "Liberation Sans:bold" 2>/dev/null) == */LiberationSans-Bold.ttf ]]
}

# Prints the missing programs and modules for the purposes, and the font. Without pkg-config all modules count as
# missing, and without fc-match the font.
missing_tools() {
    local tool module
    while read -r tool; do
        command -v "$tool" >/dev/null || echo "program $tool"
    done < <(names_for "$program_table" "$@")
    while read -r module; do
        pkg-config --exists "$module" 2>/dev/null || echo "pkg-config module $module"
    done < <(
        required_modules
        names_for "$module_table" "$@"
    )
    while read -r module; do
        /usr/bin/python3 -c "import $module" 2>/dev/null || echo "Python module $module"
    done < <(names_for "$python_module_table" "$@")
    has_view_font || echo "font LiberationSans-Bold.ttf"
}

# For distributions without Debian packages: ends the script with a list and status 1 when anything is
# missing.
ensure_tools() {
    local missing
    missing=$(missing_tools "$@")
    [[ -z $missing ]] && return 0
    echo "Without apt-get nothing can be installed from here. These are missing:" >&2
    echo "$missing" >&2
    exit 1
}

# Installs the missing packages for the purposes; does not use the network when none is missing. For a
# user who may not install packages, prints the command to run and ends the script with status 1.
ensure_packages() {
    local wanted missing command as_root=()
    if ! command -v apt-get >/dev/null; then
        ensure_tools "$@"
        return 0
    fi
    mapfile -t wanted < <(packages_for "$@")
    mapfile -t missing < <(missing_packages "${wanted[@]}")
    ((${#missing[@]} == 0)) && return 0

    command="apt-get update && apt-get install -y --no-install-recommends ${missing[*]}"
    if ((EUID != 0)); then
        if ! may_use_sudo; then
            echo "Some Debian packages are missing. Have them installed with this line, then start again:" >&2
            echo "su -c '$command'" >&2
            exit 1
        fi
        as_root=(sudo)
    fi
    echo "Installing ${missing[*]}"
    "${as_root[@]}" apt-get update
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "${missing[@]}" </dev/null
}

# Succeeds when sudo needs no password or can ask for it on a terminal.
may_use_sudo() {
    command -v sudo >/dev/null || return 1
    sudo -n true 2>/dev/null && return 0
    [[ -t 0 && -t 2 ]] && sudo -v
}
