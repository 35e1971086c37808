#!/usr/bin/env bash
# Usage: scripts/test.sh [--preset dev|release|asan|clang] [CTEST-ARGUMENT]...
#
# Installs what is missing, builds corv and runs all its tests. Further arguments go to ctest:
#
#   scripts/test.sh -R stimulus          the tests with "stimulus" in their names
#   scripts/test.sh --preset asan        all tests, with the sanitizers
#   scripts/test.sh --rerun-failed       what failed last time
#
# CORV_JOBS is the number of jobs; by default all processors work.

set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

preset=dev
case ${1:-} in
    -h | --help) show_help && exit ;;
    --preset=*) preset=${1#*=} && shift ;;
    --preset) preset=${2:?"--preset needs a name"} && shift 2 ;;
esac
case $preset in
    dev | asan) groups=(program tests) ;;
    release) groups=(program tests bench) ;;
    clang) groups=(program tests checks) ;;
    *) fail "unknown preset '$preset'; the presets are dev, release, asan and clang" ;;
esac

"$root/scripts/setup.sh" "${groups[@]}"
configure "$root/build/$preset" "$preset"
build "$root/build/$preset"
cd "$root"
exec ctest --preset "$preset" --no-tests=error -j "$jobs" "$@"
