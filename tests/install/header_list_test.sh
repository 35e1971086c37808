#!/usr/bin/env bash
# Usage: header_list_test.sh INCLUDE-FOLDER
#
# corv.h includes every public header, once each.

set -euo pipefail
cd "$1"
diff <(find corv -name '*.h' ! -path corv/corv.h | LC_ALL=C sort) \
    <(sed -n 's/^#include "\(.*\)"$/\1/p' corv/corv.h | LC_ALL=C sort)
