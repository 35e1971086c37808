#!/usr/bin/env bash
# Usage: scripts/lint.sh [FILE]...
#
# Runs clang-tidy with the list of .clang-tidy over the named sources; without any over all of them,
# and looks at the scripts with shellcheck as well. Prints nothing and ends with 0 when all is clean,
# with 1 otherwise. What was clean and has not changed since is not looked at again (see
# scripts/lint_batch.sh).

set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

case ${1:-} in
    -h | --help) show_help && exit ;;
esac

"$root/scripts/setup.sh" program tests bench checks
configure "$root/build/tidy" tidy

# batches: reads sources, in order of their folders, and writes lines of up to 12 of one folder.
batches() {
    awk '{
        folder = $0
        sub(/[^\/]*$/, "", folder)
        printf "%s%s", NR == 1 ? "" : folder == last && ++count < 12 ? " " : "\n", $0
        if (folder != last || count == 12) count = 0
        last = folder
    }
    END { print "" }'
}

cd "$root"
status=0
if [ $# -gt 0 ]; then
    sources=("$@")
else
    mapfile -t sources < <(find cli host src bench tests fuzz examples -name '*.cpp' \
        -printf '%h %p\n' | sort | cut -d ' ' -f 2)
    shellcheck -x -P SCRIPTDIR scripts/*.sh .ci/run tests/install/*.sh || status=1
fi

printf '%s\n' "${sources[@]}" | batches |
    xargs -L 1 -P "$jobs" "$root/scripts/lint_batch.sh" 2>&1 |
    { grep -v '^[0-9]* warnings\? generated\.$' || true; } || status=1
exit "$status"
