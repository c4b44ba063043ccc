# shellcheck shell=bash
# Shows a GTK program in a web browser of this machine, through the toolkit's own display server. Sourced, not run.

readonly first_browser_port=8085
readonly browser_ports=200
readonly server_start_seconds=10

server_pid=
program_pid=
private_runtime=

# Runs the command and returns its exit status. The server ends with it, and both end with this script, however it ends.
run_in_browser() {
    local port status=0
    trap end_browser EXIT
    trap 'exit 129' HUP
    trap 'exit 130' INT
    trap 'exit 143' TERM
    ensure_runtime_folder
    start_server || exit 1
    echo "Open http://127.0.0.1:$port/ in a web browser."
    # Without a session bus there is no accessibility bus to look for.
    [[ -n ${DBUS_SESSION_BUS_ADDRESS:-} || -S $XDG_RUNTIME_DIR/bus ]] || export NO_AT_BRIDGE=1
    GDK_BACKEND=broadway BROADWAY_DISPLAY=":$port" setpriv --pdeathsig TERM \
        env -u DISPLAY -u WAYLAND_DISPLAY --default-signal=INT,QUIT "$@" <&0 &
    program_pid=$!
    wait "$program_pid" || status=$?
    program_pid=
    exit "$status"
}

# The server and the program meet in this folder.
ensure_runtime_folder() {
    [[ -n ${XDG_RUNTIME_DIR:-} && -d $XDG_RUNTIME_DIR && -w $XDG_RUNTIME_DIR ]] && return 0
    private_runtime=$(mktemp -d)
    export XDG_RUNTIME_DIR=$private_runtime
}

# Starts the server on the first free port, which is left in $port. The display has the port's number: what is free as a
# port of this machine is free as a display too.
start_server() {
    for ((port = first_browser_port; port < first_browser_port + browser_ports; ++port)); do
        port_is_taken "$port" && continue
        setpriv --pdeathsig TERM broadwayd --address 127.0.0.1 --port "$port" ":$port" </dev/null >/dev/null 2>&1 &
        server_pid=$!
        server_is_ready && return 0
        end_process "$server_pid"
        server_pid=
    done
    echo "No free port was found from $first_browser_port on." >&2
    return 1
}

port_is_taken() {
    (exec 3<>"/dev/tcp/127.0.0.1/$1") 2>/dev/null
}

server_is_ready() {
    local tries
    for ((tries = 0; tries < server_start_seconds * 20; ++tries)); do
        kill -0 "$server_pid" 2>/dev/null || return 1
        grep -qsF "$XDG_RUNTIME_DIR/broadway$((port + 1)).socket" /proc/net/unix && server_has_port && return 0
        sleep 0.05
    done
    return 1
}

# Whether the listening socket is the server's own. Another session that starts at this moment may have been faster, and
# a server that finds its port taken lives on for a while.
server_has_port() {
    local sockets
    sockets=$(awk -v port="$(printf ':%04X' "$port")" \
        '$4 == "0A" && substr($2, length($2) - 4) == port { print "socket:[" $10 "]" }' /proc/net/tcp)
    [[ -n $sockets ]] && readlink "/proc/$server_pid/fd/"* 2>/dev/null | grep -xF "$sockets" >/dev/null
}

end_process() {
    kill -TERM "$1" 2>/dev/null || true
    wait "$1" 2>/dev/null || true
}

end_browser() {
    trap - EXIT
    trap '' HUP INT TERM
    [[ -n $program_pid ]] && end_process "$program_pid"
    [[ -n $server_pid ]] && end_process "$server_pid"
    [[ -n $private_runtime ]] && rm -rf "$private_runtime"
    return 0
}
