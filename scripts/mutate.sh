#!/usr/bin/env bash
# Usage: scripts/mutate.sh [OPTION]... FILE...
#        scripts/mutate.sh --again LIST
#
# Says what the tests would not notice. Changes one word at a time of the named sources of library
# or host (a comparison, a sign, a constant, a result code, a statement left out), runs the tests
# with each change and prints the changes that no test has seen, then how many were seen.
#
#   --sample N     N changes a file, chosen at random (all)
#   --seed N       chooses others (1)
#   --tests FILTER the tests to run, as --gtest_filter takes them (those in the folder of tests/
#                  that mirrors the source's, and those in tests/allocation)
#   --list LIST    writes the changes and what became of them to this file
#   --again LIST   makes the changes of such a file once more, where the sources still have the line
#   --jobs N       changes that are tried at the same time (2)
#
# The sources stay as they are: a changed copy is compiled aside and linked with the rest of a
# build of its own in build/mutate. Tests that hang or want too much memory have seen the change.

set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

case ${1:-} in
    "" | -h | --help) show_help && exit ;;
esac

"$root/scripts/setup.sh" program tests
command -v python3 >/dev/null || fail "this script needs python3"
configure "$root/build/mutate" dev
build "$root/build/mutate" corv_tests
exec nice python3 "$root/scripts/mutate.py" "$@"
