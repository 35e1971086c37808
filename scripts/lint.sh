#!/usr/bin/env bash
# Usage: scripts/lint.sh [FILE]...
#
# Runs clang-tidy with the list of .clang-tidy over the sources of library, host and program, or
# over the named sources, and shellcheck over the scripts. Prints nothing and ends with 0 when all
# is clean, with 1 otherwise. What was clean and has not changed since is not looked at again (see
# scripts/lint_source.sh).

set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

case ${1:-} in
    -h | --help) show_help && exit ;;
esac

"$root/scripts/setup.sh" program tests checks
configure "$root/build/clang" clang

status=0
if [ $# -gt 0 ]; then
    sources=("$@")
else
    cd "$root"
    mapfile -t sources < <(find src host cli -name '*.cpp' | sort)
    shellcheck -x -P SCRIPTDIR scripts/*.sh .ci/run tests/install/*.sh || status=1
fi

printf '%s\0' "${sources[@]}" |
    xargs -0 -n 1 -P "$jobs" "$root/scripts/lint_source.sh" 2>&1 |
    { grep -v '^[0-9]* warnings\? generated\.$' || true; } || status=1
exit "$status"
