#!/usr/bin/env bash
# Usage: scripts/bench_files.sh [MEGABYTES]
#
# Makes a recording of that size (100), reads it with corv and, when they are installed, with
# GTKWave's tools in the same minutes, one thread each, and prints the medians of five runs: seconds
# of processor time, megabytes per second, the most memory. The last line reads one signal only.

set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

case ${1:-} in
    -h | --help) show_help && exit ;;
esac

megabytes=${1:-100}
bench=$root/build/release/bench
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
input=$folder/input.vcd
display=() # what a command that opens windows runs under

# measure NAME COMMAND...: a line of the table; the command's own time only.
measure() {
    local name=$1 times=()
    shift
    for _ in 1 2 3 4 5; do
        # shellcheck disable=SC2016
        LOG=$folder/log "${display[@]}" bash -c \
            'TIMEFORMAT="%U %S"; { time "$@" >"$LOG" 2>&1; } 2>"$LOG.time"' measure "$@"
        times+=("$(awk '{ print $1 + $2 }' "$folder/log.time")")
    done
    printf '%s\n' "${times[@]}" | sort -n | awk -v name="$name" -v mb="$megabytes" \
        'NR == 3 { printf "%-24s %8.2f s %8.0f MB/s\n", name, $1, mb / ($1 > 0 ? $1 : 0.001) }'
}

configure "$root/build/release" release
build "$root/build/release" corv_make_vcd corv_load_recording
"$bench/corv_make_vcd" "$megabytes" "$input"

measure "corv" "$bench/corv_load_recording" "$input"
say "  $(cat "$folder/log")"
if command -v vcd2fst >/dev/null; then
    measure "vcd2fst" vcd2fst "$input" "$folder/out.fst"
fi
if command -v gtkwave >/dev/null && command -v xvfb-run >/dev/null; then
    display=(xvfb-run -a)
    measure "gtkwave -x" gtkwave -x "$input"
    display=()
fi
measure "corv, one signal" "$bench/corv_load_recording" "$input" bit7
say "  $(cat "$folder/log")"
