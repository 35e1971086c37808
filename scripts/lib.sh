# shellcheck shell=bash
# Sourced by the other scripts: where the project lies, messages, builds that are quiet when all
# is well.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
jobs=${CORV_JOBS:-$(nproc)}

# Prints each argument as a line.
say() {
    printf '%s\n' "$@"
}

# Ends the script with exit code 2; the sentence says what to do about it.
fail() {
    printf '%s: error: %s\n' "${0##*/}" "$*" >&2
    exit 2
}

# Prints the comment at the top of the running script.
show_help() {
    sed -n '2,/^[^#]*$/s/^#\( \|$\)//p' "$0"
}

# Runs a command and shows what it printed only when it fails.
quietly() {
    local log status=0
    log=$(mktemp)
    "$@" >"$log" 2>&1 || status=$?
    if [ "$status" -ne 0 ]; then
        cat "$log" >&2
    fi
    rm -f "$log"
    return "$status"
}

# configure FOLDER PRESET [-D...]
configure() {
    local folder=$1 preset=$2
    shift 2
    (cd "$root" && quietly cmake --preset "$preset" -B "$folder" "$@") ||
        fail "can't configure $folder; if it comes from elsewhere, remove it: rm -rf '$folder'"
}

# build FOLDER [TARGET...]: one line of progress on a terminal, else only what fails.
build() {
    local folder=$1 targets=() command
    shift
    [ $# -eq 0 ] || targets=(--target "$@")
    command=(cmake --build "$folder" -j "$jobs" "${targets[@]}")
    if [ -t 1 ]; then
        "${command[@]}"
    else
        quietly "${command[@]}" -- --quiet
    fi || {
        printf '\n' >&2
        fail "the build in $folder failed; the messages above say where"
    }
}
