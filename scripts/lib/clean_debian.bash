# shellcheck shell=bash
# Installs a minimal Debian in a folder. Sourced after packages.bash and build.bash.

as_root=()

# Only root may set up another Debian; other users need sudo. Without it the script ends with status 1.
become_able_to_set_up() {
    ((EUID == 0)) && return 0
    if ! may_use_sudo; then
        echo "Only root, or a user of sudo, can set up another Debian in a folder." >&2
        exit 1
    fi
    as_root=(sudo)
}

# Prints the suite of this machine's Debian, such as "bookworm".
own_suite() (
    # shellcheck source=/dev/null
    source /etc/os-release
    echo "$VERSION_CODENAME"
)

# Prints the suite, or ends the script with status 1 when the program does not support it.
supported_suite() {
    case $1 in
    bookworm | trixie) echo "$1" ;;
    *)
        echo "There is no suite \"$1\" here, but bookworm (Debian 12) and trixie (Debian 13)." >&2
        return 1
        ;;
    esac
}

# Sets up the Debian of that suite in the folder. Its packages start no services, and its files need not survive a crash.
set_up_debian() {
    local suite=$1 root=$2
    echo "Setting up a clean Debian ($suite)"
    if ! "${as_root[@]}" debootstrap --variant=minbase "$suite" "$root" >"$root.log" 2>&1; then
        cat "$root.log"
        return 1
    fi
    "${as_root[@]}" tee "$root/etc/dpkg/dpkg.cfg.d/fast" <<<"force-unsafe-io" >/dev/null
    "${as_root[@]}" tee "$root/usr/sbin/policy-rc.d" <<<$'#!/bin/sh\nexit 101' >/dev/null
    "${as_root[@]}" chmod +x "$root/usr/sbin/policy-rc.d"
    # An installer writes this file; no package has it.
    "${as_root[@]}" tee "$root/etc/hosts" <<<$'127.0.0.1 localhost\n::1 localhost' >/dev/null
}

# The checkout's path in such a Debian.
readonly checkout_inside=/srv/vantorelle

# Copies the checkout without build products into the Debian in the folder.
copy_checkout() {
    local root=$1
    "${as_root[@]}" mkdir -p "$root$checkout_inside"
    archive_checkout | "${as_root[@]}" tar --extract --no-same-owner --directory "$root$checkout_inside"
}

# Runs a command of the checkout's copy in the Debian in the folder, with its own environment and
# terminals. Its root is the root of a mount namespace, not only of the process, so that programs that create namespaces,
# and /proc, work as on a real machine.
run_inside() {
    # shellcheck disable=SC2016 # expanded by the sh that is started
    local enter='mount --bind "$1" "$1" && cd "$1" && mount -t proc proc proc &&
        mount -t devpts devpts dev/pts && shift && pivot_root . . && umount --lazy . && exec chroot . "$@"'
    "${as_root[@]}" unshare --mount sh -c "$enter" sh "$1" \
        env -i --chdir="$checkout_inside" PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root \
        LC_ALL=C.UTF-8 "${@:2}"
}
