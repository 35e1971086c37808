#!/usr/bin/env bash
# Usage: scripts/fuzz.sh [--seconds N] [--seed N] [ENTRY]...
#
# Builds the fuzz entries with libFuzzer and the sanitizers and runs each, or the named ones, from
# its corpus on, for ten seconds or as many as given; with a seed, always on the same inputs. What an
# entry finds worth keeping lies in build/fuzz/found/ENTRY afterwards and is where the next run goes
# on; an input that fails lies in build/fuzz/failed/. The entries are the files fuzz/*_fuzz.cpp:
#
#   scripts/fuzz.sh --seconds 600 vcd_fuzz
#
# One that failed fails again with: build/fuzz/fuzz/corv_ENTRY FILE

set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

seconds=10
seed=0 # another one each time
while [ $# -gt 0 ]; do
    case $1 in
        -h | --help) show_help && exit ;;
        --seconds) seconds=${2:?"--seconds needs a number"} && shift 2 ;;
        --seed) seed=${2:?"--seed needs a number"} && shift 2 ;;
        -*) fail "unknown option '$1'" ;;
        *) break ;;
    esac
done
entries=()
for source in "$root"/fuzz/*_fuzz.cpp; do
    entries+=("$(basename "$source" .cpp)")
done
for entry in "$@"; do
    [ -e "$root/fuzz/$entry.cpp" ] || fail "unknown entry '$entry'; the entries are ${entries[*]}"
done
if [ $# -gt 0 ]; then
    entries=("$@")
fi

"$root/scripts/setup.sh" program tests checks
configure "$root/build/fuzz" fuzz
build "$root/build/fuzz" "${entries[@]/#/corv_}"

# run ENTRY: what it prints is of interest only when it fails.
run() {
    local found=$root/build/fuzz/found/$1
    mkdir -p "$found" "$root/build/fuzz/failed"
    quietly "$root/build/fuzz/fuzz/corv_$1" -max_total_time="$seconds" -seed="$seed" -timeout=20 -rss_limit_mb=4096 \
        -artifact_prefix="$root/build/fuzz/failed/$1-" "$found" "$root/fuzz/corpus/$1" ||
        fail "$1 failed; the input that did it is the newest file in build/fuzz/failed"
}
export -f run quietly fail
export root seconds seed
# shellcheck disable=SC2016
printf '%s\n' "${entries[@]}" | xargs -n 1 -P "$jobs" bash -c 'run "$1"' "$0"
