# shellcheck shell=bash
# Shows a GTK program in a web browser on this machine, through the toolkit's own display server. Sourced, not run.
#
# The server requires no authentication, and its socket for programs is an abstract one, which has no
# permissions. So server and program run in a network namespace, and browsers reach the server
# through a gateway (browser_gateway.py).

browser_library=$(dirname "$(realpath "${BASH_SOURCE[0]}")")
readonly browser_library
readonly server_start_seconds=10

session_folder=
is_enclosed=1

# Runs the command and returns its exit status. The server and the gateway end with it, and all three end with this
# script, however it ends.
run_in_browser() {
    local status=0
    trap end_browser EXIT
    trap 'exit 129' HUP
    trap 'exit 130' INT
    trap 'exit 143' TERM
    check_enclosure || exit 1
    find_session_bus
    make_session_folder
    setpriv --pdeathsig TERM /usr/bin/python3 -I "$browser_library/browser_gateway.py" "$session_folder" </dev/null &
    # shellcheck disable=SC2016 # expanded by the bash that is started
    enclosed setpriv --pdeathsig TERM bash -c 'source "$1" && show_program "${@:2}"' bash \
        "$browser_library/browser.bash" "$session_folder" "$@" <&0 &
    wait -n || status=$?
    exit "$status"
}

# Replaces this process with the command, in a namespace where no other user can reach its abstract
# sockets. The namespace also has its own /dev/shm, which is removed with its last process: a killed
# program leaves its drawings there.
enclosed() {
    # shellcheck disable=SC2016 # expanded by the sh that is started
    local enter='mount -t tmpfs -o mode=0700,nosuid,nodev tmpfs /dev/shm && exec "$@"'
    if ((!is_enclosed)); then
        exec "$@"
    elif ((EUID == 0)); then
        exec unshare --net --mount sh -c "$enter" sh "$@"
    fi
    # Only root can mount, even in a namespace; afterwards the program gets the user's own id again.
    exec unshare --map-root-user --net --mount sh -c "$enter" sh \
        unshare --map-user="$EUID" --map-group="$(id -g)" "$@"
}

# Some systems forbid namespaces. If the user is root, the system is a container, and its other users
# are trusted; an ordinary user must confirm that there are no other users.
check_enclosure() {
    local reason
    reason=$( (enclosed true) 2>&1) && return 0
    echo "Other users of this machine cannot be kept from the program's display here: ${reason##*$'\n'}" >&2
    if ((EUID != 0)) && [[ -z ${VANTORELLE_SOLE_USER:-} ]]; then
        echo "If this machine has no other user, set VANTORELLE_SOLE_USER=1 and start again." >&2
        return 1
    fi
    is_enclosed=0
}

# Sets the address of the session bus in the runtime folder, because the program gets another folder.
# Without a session bus there is no accessibility bus.
find_session_bus() {
    if [[ -z ${DBUS_SESSION_BUS_ADDRESS:-} && -S ${XDG_RUNTIME_DIR:-}/bus ]]; then
        export DBUS_SESSION_BUS_ADDRESS=unix:path=$XDG_RUNTIME_DIR/bus
    fi
    [[ -n ${DBUS_SESSION_BUS_ADDRESS:-} ]] || export NO_AT_BRIDGE=1
}

# A folder that only the user can enter.
make_session_folder() {
    local parent=${XDG_RUNTIME_DIR:-}
    [[ -d $parent && -O $parent && -w $parent ]] || parent=${TMPDIR:-/tmp}
    session_folder=$(mktemp -d "$parent/vantorelle.XXXXXXXXXX")
}

# Replaces this process with the command, on a separate display whose server ends with it. The folder
# is the runtime folder of both.
show_program() {
    export XDG_RUNTIME_DIR=$1 GDK_BACKEND=broadway BROADWAY_DISPLAY=:0
    setpriv --pdeathsig TERM broadwayd --unixsocket "$1/page" "$BROADWAY_DISPLAY" </dev/null >/dev/null 2>&1 &
    if ! server_is_ready $!; then
        echo "The toolkit's display server, broadwayd, did not start." >&2
        exit 1
    fi
    exec env -u DISPLAY -u WAYLAND_DISPLAY --default-signal=INT,QUIT "${@:2}"
}

server_is_ready() {
    local tries
    for ((tries = 0; tries < server_start_seconds * 20; ++tries)); do
        kill -0 "$1" 2>/dev/null || return 1
        grep -qsF "$XDG_RUNTIME_DIR/broadway1.socket" /proc/net/unix && return 0
        sleep 0.05
    done
    return 1
}

end_browser() {
    local job
    trap - EXIT
    trap '' HUP INT TERM
    for job in $(jobs -pr); do
        kill -TERM "$job" 2>/dev/null || true
        wait "$job" 2>/dev/null || true
    done
    [[ -n $session_folder ]] && rm -rf "$session_folder"
    return 0
}
