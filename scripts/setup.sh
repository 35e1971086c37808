#!/usr/bin/env bash
# Usage: scripts/setup.sh [program|tests|bench|checks|all]...
#
# Installs what building corv needs and this machine lacks, as Debian packages: for the program,
# for the tests, for the benchmarks, for the checks that contributions pass. Without a name: all.
# Does nothing when nothing is missing. As another user than root it asks sudo.
# On a system other than Debian 12 or later it installs nothing: it lists what is missing and
# ends with 2.

set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

# The packages of each group, one a line, with what shows on a system without Debian's packages
# that it has them: a command that is there, a header that the compiler finds, or a library that
# clang links programs with.
declare -A packages=(
    [program]="
        g++                 command c++
        cmake               command cmake
        ninja-build         command ninja
        libcli11-dev        header CLI/CLI.hpp
        nlohmann-json3-dev  header nlohmann/json.hpp
        zlib1g-dev          header zlib.h"
    [tests]="
        libgtest-dev        header gtest/gtest.h
        pkgconf             command pkg-config
        binutils            command nm
        ghdl                command ghdl
        gtkwave             command vcd2fst
        zsh                 command zsh
        fish                command fish"
    [bench]="
        libbenchmark-dev    header benchmark/benchmark.h"
    [checks]="
        clang               command clang++
        clang-format        command clang-format
        clang-tidy          command clang-tidy
        libclang-rt-dev     runtime fuzzer
        llvm                command llvm-cov
        shellcheck          command shellcheck
        ccache              command ccache"
)

is_debian() {
    command -v apt-get >/dev/null && command -v dpkg-query >/dev/null || return 1
    local ID="" VERSION_ID=12
    . /etc/os-release
    [ "$ID" = debian ] && [ "${VERSION_ID%%.*}" -ge 12 ]
}

# installed PACKAGE
installed() {
    dpkg-query -W -f='${db:Status-Status}\n' "$1" 2>/dev/null | grep -qx installed
}

# found command|header|runtime NAME
found() {
    if [ "$1" = command ]; then
        command -v "$2" >/dev/null
    elif [ "$1" = runtime ]; then
        compgen -G "$(clang++ -print-runtime-dir 2>/dev/null)/libclang_rt.$2*" >/dev/null
    else
        c++ -std=c++20 -fsyntax-only -include "$2" -x c++ /dev/null 2>/dev/null
    fi
}

install_packages() {
    local as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null ||
            fail "sudo is not there; run this as root: apt-get install --no-install-recommends $*"
        as_root=(sudo)
        say "Installing with sudo: $*"
        sudo -v || fail "sudo did not allow it; have these packages installed: $*"
    else
        say "Installing: $*"
    fi
    as_root+=(env DEBIAN_FRONTEND=noninteractive apt-get -q -o DPkg::Lock::Timeout=120)
    quietly "${as_root[@]}" update ||
        fail "apt-get update failed; check the network and /etc/apt, then run this again"
    quietly "${as_root[@]}" install -y --no-install-recommends "$@" ||
        fail "apt-get could not install all of: $*"
}

groups=()
for name in "${@:-all}"; do
    case $name in
        -h | --help) show_help && exit ;;
        program | tests | bench | checks) groups+=("$name") ;;
        all) groups+=(program tests bench checks) ;;
        *) fail "unknown group '$name'; the groups are program, tests, bench, checks and all" ;;
    esac
done

debian=no
! is_debian || debian=yes
missing=()
for group in "${groups[@]}"; do
    while read -r package kind name; do
        if [ -z "$package" ]; then
            continue
        elif [ "$debian" = yes ]; then
            installed "$package" || missing+=("$package")
        else
            found "$kind" "$name" || missing+=("$package (the $kind $name)")
        fi
    done <<<"${packages[$group]}"
done

if [ ${#missing[@]} -eq 0 ]; then
    exit 0
elif [ "$debian" = yes ]; then
    install_packages "${missing[@]}"
else
    printf '  %s\n' "${missing[@]}"
    fail "this is not Debian 12 or later; install what the packages above hold, then run this again"
fi
