#!/usr/bin/env bash
# Usage: scripts/format.sh [--check]
#
# Formats all sources and headers as .clang-format says. With --check it changes nothing, lists
# the places that would change and ends with 1 when there are any.

set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

check=no
case ${1:-} in
    -h | --help) show_help && exit ;;
    --check) check=yes ;;
    "") ;;
    *) fail "unknown argument '$1'; see scripts/format.sh --help" ;;
esac

# Runs clang-format with the given options over every source and header.
format_all() {
    find . \( -name .git -o -name build -o -name install \) -prune -o \
        -type f \( -name '*.h' -o -name '*.cpp' \) -print0 | xargs -0 -r clang-format "$@"
}

command -v clang-format >/dev/null || "$root/scripts/setup.sh" checks
cd "$root"
if [ "$check" = no ]; then
    format_all -i
elif ! places=$(format_all --dry-run -Werror 2>&1); then
    { grep ': error: ' || cat; } <<<"$places" | sed 's/^\.\///' >&2
    say "The lines above are not formatted; this does it: scripts/format.sh" >&2
    exit 1
fi
