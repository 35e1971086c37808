#!/usr/bin/env bash
# Usage: exports_test.sh LIBRARY INCLUDE-FOLDER
#
# The shared library exports what the public headers mark with CORV_API and nothing else: each
# exported symbol is a marked function or variable, or belongs to a marked class; each marked
# function and variable is exported.

set -euo pipefail
library=$1 include=$2
here=$(dirname "${BASH_SOURCE[0]}")

marked=$(find "$include" -name '*.h' ! -name export.h -print0 | sort -z |
    xargs -0 awk -f "$here/marked.awk")
exported=$(paste -d ' ' \
    <(nm -D --defined-only "$library" | awk '{ print $2, $3 }') \
    <(nm -DC --defined-only "$library" | cut -d ' ' -f 3-))
if [ -z "$marked" ] || [ -z "$exported" ]; then
    echo "no marked declarations in $include, or no symbols in $library"
    exit 1
fi
awk -f "$here/compare.awk" <(printf '%s\n' "$marked") <(printf '%s\n' "$exported")
