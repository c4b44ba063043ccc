# shellcheck shell=bash
# The Debian packages that the scripts need, and how they get them. Sourced, not run.

# One line per package: what it is needed for, and its name.
readonly package_table="
build   g++
build   cmake
build   ninja-build
build   pkg-config
build   zip
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
fuzz    libclang-rt-14-dev
fuzz    libgtest-dev
fuzz    libgmock-dev
package dpkg-dev
package file
package lintian
package debootstrap
test    hunspell
test    hunspell-es
test    hunspell-nl
bench   libbenchmark-dev
bench   python3
"

# Prints the packages for the purposes, each once.
packages_for() {
    local purpose package wanted
    while read -r purpose package; do
        for wanted in "$@"; do
            [[ $purpose == "$wanted" ]] && echo "$package"
        done
    done <<<"$package_table" | sort -u
}

# Prints those of the packages that are not installed.
missing_packages() {
    local installed
    # dpkg-query fails for unknown names, which are then missing.
    installed=$(dpkg-query --show --showformat '${db:Status-Status} ${Package}\n' -- "$@" 2>/dev/null |
        sed -n 's/^installed //p' | sort -u) || true
    comm -23 <(printf '%s\n' "$@" | sort -u) <(echo "$installed")
}

# Installs the missing packages for the purposes; uses no network when none is missing. A user
# without the right to install gets the command to run, and the script ends with status 1.
ensure_packages() {
    local wanted missing command as_root=()
    mapfile -t wanted < <(packages_for "$@")
    mapfile -t missing < <(missing_packages "${wanted[@]}")
    ((${#missing[@]} == 0)) && return 0

    command="apt-get update && apt-get install -y --no-install-recommends ${missing[*]}"
    if ((EUID != 0)); then
        if ! command -v apt-get >/dev/null || ! may_use_sudo; then
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

# True when sudo needs no password, or can ask for it because somebody sits at the terminal.
may_use_sudo() {
    command -v sudo >/dev/null || return 1
    sudo -n true 2>/dev/null && return 0
    [[ -t 0 && -t 2 ]] && sudo -v
}
