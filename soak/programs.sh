# shellcheck shell=bash
# SPDX-FileCopyrightText: 2026 The Vela authors
# SPDX-License-Identifier: MIT

# Shared by the scripts in this folder: the host and the simulator, started, spoken to and ended. Sourced, never
# run. Expects `build`, the folder of the programs; `work` is a folder for as long as the script runs.

work=$(mktemp -d)
simulator_pid=
host_pid=

clean_up() {
    [[ -z $host_pid ]] || kill "$host_pid" 2>/dev/null || true
    [[ -z $simulator_pid ]] || kill "$simulator_pid" 2>/dev/null || true
    rm -rf "$work"
}
trap clean_up EXIT

# start_simulator PORT: returns once it listens, at $url.
start_simulator() {
    exec {from_simulator}< <(exec "${build:?}/simulator/vela-simulator" --port "$1" --speed 600)
    simulator_pid=$!
    read -r url <&"$from_simulator"
}

# start_host [COMMAND...]: under the command, if there is one. Prints JSON, and warnings.
start_host() {
    coproc HOST {
        exec "$@" "${build:?}/host/vela-host" --json --storage "$work/storage" --log '*.debug=false' 2>&1
    }
    host_pid=$HOST_PID
    exec {from_host}<&"${HOST[0]}" {to_host}>&"${HOST[1]}"
}

# await REGEX SECONDS: reads on until a line of the host matches, and shows it.
await() {
    local line end=$((SECONDS + $2))
    while ((SECONDS < end)) && IFS= read -r -t "$2" line <&"$from_host"; do
        [[ $line =~ $1 ]] && printf '  %3d s  %.100s\n' "$SECONDS" "$line" && return
    done
    return 1
}

# tell COMMAND...: gives a command to the host, and waits until it has been executed well.
tell() {
    printf '  %s\n' "$*"
    printf '%s\n' "$*" >&"$to_host"
    await "\"answer\":\"$1\".*\"ok\":true" 120 || die "the host does not execute: $*"
}
