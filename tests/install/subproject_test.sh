#!/usr/bin/env bash
# Usage: subproject_test.sh CMAKE SOURCE CONSUMER FOLDER CMAKE-ARGUMENT...
#
# As a folder of another project corv imposes nothing on it: no warning is an error, and nothing is
# installed.

set -euo pipefail
cmake=$1 source=$2 consumer=$3 folder=$4
shift 4

rm -rf "$folder"
"$cmake" -S "$consumer" -B "$folder" -DCORV_SOURCE="$source" -DCMAKE_EXPORT_COMPILE_COMMANDS=ON "$@"
if grep -m 1 -e -Werror "$folder/compile_commands.json"; then
    echo "compiled with -Werror"
    exit 1
fi
"$cmake" --install "$folder" --prefix "$folder/prefix"
if [ -e "$folder/prefix" ]; then
    find "$folder/prefix"
    echo "installed into the project's prefix"
    exit 1
fi
