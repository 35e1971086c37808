#!/usr/bin/env bash
# Usage: pkg_config_test.sh COMPILER PKG-CONFIG LIBDIR SOURCE PROGRAM
#
# Builds and runs a host with no more than what corv.pc in LIBDIR says, wherever the prefix lies:
# with the shared library, then with the archive alone.

set -euo pipefail
compiler=$1 pkg_config=$2 libdir=$3 source=$4 program=$5

export PKG_CONFIG_LIBDIR=$libdir/pkgconfig
read -ra flags <<<"$("$pkg_config" --cflags --libs corv)"
"$compiler" -std=c++20 "$source" -o "$program" "${flags[@]}"
LD_LIBRARY_PATH=$libdir "$program"

read -ra flags <<<"$("$pkg_config" --static --cflags --libs corv)"
"$compiler" -std=c++20 "$source" -o "$program" "${flags[@]/#-lcorv/-l:libcorv.a}"
LD_LIBRARY_PATH='' "$program"
