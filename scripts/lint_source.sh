#!/usr/bin/env bash
# Usage: scripts/lint_source.sh FILE
#
# Runs clang-tidy over one source, unless it was clean before and nothing has changed since that
# could change the verdict: the rules, the source and what it includes, comments among them. What
# was clean is remembered in the folder corv/lint of the user's cache. scripts/lint.sh calls this
# for each source, with the build in build/clang configured.

set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

case ${1:-} in
    "" | -h | --help) show_help && exit ;;
esac

cache=${XDG_CACHE_HOME:-$HOME/.cache}/corv/lint
cd "$root"
key=$({
    clang-tidy --version
    cat .clang-tidy CMakeLists.txt src/CMakeLists.txt
    printf '%s\n' "$1"
    clang++ -std=c++20 -Iinclude -Isrc -I. -E -CC "$1" 2>/dev/null || true
} | sha256sum | cut -d ' ' -f 1)

if [ ! -e "$cache/$key" ]; then
    clang-tidy --quiet -p build/clang "$1"
    mkdir -p "$cache"
    touch "$cache/$key"
fi
