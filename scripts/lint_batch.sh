#!/usr/bin/env bash
# Usage: scripts/lint_batch.sh FILE...
#
# Runs clang-tidy over sources of one folder. Nearly all of its time goes into the headers that each
# source includes, so the sources are looked at as one unit; those whose local names clash with the
# others' make a unit of their own. A source that was clean before is left out unless something has
# changed since that could change the verdict: the rules, the source and what it includes, comments
# among them. What was clean is remembered in the folder corv/lint of the user's cache.
# scripts/lint.sh calls this for each folder, with the build in build/tidy configured.

set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

case ${1:-} in
    "" | -h | --help) show_help && exit ;;
esac

cache=${XDG_CACHE_HOME:-$HOME/.cache}/corv/lint
cd "$root"
mkdir -p "$cache" build/tidy/lint
folder=$(mktemp -d "$root/build/tidy/lint/XXXXXX")
trap 'rm -rf "$folder"' EXIT

# A unit includes sources on purpose, and one may declare what another one defines.
checks=-bugprone-suspicious-include,-readability-redundant-declaration
case $1 in
    src/* | host/* | cli/*) ;;
    # The analyzer follows each assertion of a test both ways, which takes most of the time and finds
    # little that the tests under the sanitizers miss.
    *) checks+=",-clang-analyzer-*" ;;
esac
options=(--quiet --checks="$checks"
    --header-filter="^$root/(include/corv|src|host|cli|tests|bench|fuzz|examples)/")

# key FILE: stands for everything that the verdict depends on.
key() {
    {
        clang-tidy --version
        cat .clang-tidy CMakePresets.json cmake/CorvTargets.cmake scripts/lint_batch.sh
        printf '%s\n' "$1"
        clang++ -std=c++20 -Iinclude -Isrc -I. -Ibench -E -CC "$1" || true
    } 2>/dev/null | sha256sum | cut -d ' ' -f 1
}

# unit FILE...: makes one source of them, compiled as the first of them is.
unit() {
    local source command
    source=$folder/unit.cpp
    printf "#include \"$root/%s\"\n" "$@" >"$source"
    command=$(grep -m 1 -F -- " -c $root/$1\"" build/tidy/compile_commands.json) || return 1
    printf '[{ "directory": "%s",\n%s\n"file": "%s" }]\n' "$root/build/tidy" \
        "${command//"$root/$1"/"$source"}" "$source" >"$folder/compile_commands.json"
}

# clashing FILE...: those of them that the compiler complains about when they are one unit.
clashing() {
    local complaints
    complaints=$(clang-tidy --quiet --checks='-*,cert-flp30-c' --extra-arg=-ferror-limit=0 \
        -p "$folder" "$folder/unit.cpp" 2>/dev/null) || true
    for source in "$@"; do
        if grep -q "^$root/$source:.* error: " <<<"$complaints"; then
            printf '%s\n' "$source"
        fi
    done
}

# lint FILE...: in as few units as their names allow.
lint() {
    local status=0 clash rest
    if [ $# -eq 1 ]; then
        clang-tidy "${options[@]}" -p build/tidy "$1"
        return
    fi
    if ! unit "$@"; then
        lint "$1" || status=1
        lint "${@:2}" || status=1
        return "$status"
    fi
    mapfile -t clash < <(clashing "$@")
    if [ ${#clash[@]} -eq 0 ]; then
        # names of one source hide those of another here, which they never meet
        clang-tidy "${options[@]}" --extra-arg=-Wno-shadow -p "$folder" "$folder/unit.cpp"
    elif [ ${#clash[@]} -eq $# ]; then
        for source in "$@"; do
            lint "$source" || status=1
        done
        return "$status"
    else
        mapfile -t rest < <(printf '%s\n' "$@" | grep -vxF "$(printf '%s\n' "${clash[@]}")")
        lint "${rest[@]}" || status=1
        lint "${clash[@]}" || status=1
        return "$status"
    fi
}

sources=() keys=()
for source in "$@"; do
    name=$(key "$source")
    if [ ! -e "$cache/$name" ]; then
        sources+=("$source")
        keys+=("$cache/$name")
    fi
done
if [ ${#sources[@]} -gt 0 ]; then
    lint "${sources[@]}"
    touch "${keys[@]}"
fi
