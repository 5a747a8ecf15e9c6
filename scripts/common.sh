# shellcheck shell=bash
# SPDX-FileCopyrightText: 2026 The Vela authors
# SPDX-License-Identifier: MIT

# Shared by demo, test, .ci/run and other scripts: installs missing packages and builds. It is sourced, not run.

build_packages=(g++ cmake ninja-build pkg-config qtbase5-dev libexpected-dev libglib2.0-dev libmicrohttpd-dev libedit-dev)
test_packages=(curl openssl tmux) # requests, certificates, the terminal for the host's prompt

say() { printf '\n== %s\n' "$*"; }

die() {
    printf '%s: %s\n' "${0##*/}" "$*" >&2
    exit 1
}

# The packages among the arguments that are not installed.
missing_packages() {
    local package
    for package in "$@"; do
        [[ $(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null) == installed ]] || printf '%s\n' "$package"
    done
}

as_root() {
    if [[ $(id -u) == 0 ]]; then
        "$@"
    else
        command -v sudo >/dev/null || die "root or sudo is needed for: $*"
        sudo "$@"
    fi
}

# Installs the packages that are missing. Prints nothing if there are none.
install_packages() {
    local missing
    mapfile -t missing < <(missing_packages "$@")
    [[ ${#missing[@]} == 0 ]] && return
    say "Installing ${missing[*]}"
    as_root apt-get update -qq
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install -qq --no-install-recommends "${missing[@]}" \
        >/dev/null || die "the packages cannot be installed"
}

# build PRESET [TARGET...]: configures and builds. On a terminal it shows the progress in one line. Otherwise it prints
# the log only if something fails.
build() {
    local preset=$1 log
    shift
    say "Building ($preset)"
    log=$(mktemp)
    if ! cmake --preset "$preset" >"$log" 2>&1 || ! build_targets "$preset" "$log" "$@"; then
        tail -n 60 "$log"
        rm -f "$log"
        die "the build of preset $preset has failed"
    fi
    rm -f "$log"
}

build_targets() { # PRESET LOG [TARGET...]
    local preset=$1 log=$2
    shift 2
    if [[ -t 1 ]]; then
        cmake --build --preset "$preset" ${1:+--target "$@"}
    else
        cmake --build --preset "$preset" ${1:+--target "$@"} >"$log" 2>&1 && tail -n 1 "$log"
    fi
}
