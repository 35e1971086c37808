#!/usr/bin/env bash
# Usage: scripts/coverage.sh [CTEST-ARGUMENT]...
#
# Builds everything with clang's coverage, runs the tests, or those that the arguments for ctest
# choose, and prints for each folder how many lines and branches of the sources they reach. The
# same by file and line lies in build/coverage/report/index.html afterwards.

set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

case ${1:-} in
    -h | --help) show_help && exit ;;
esac

folder=$root/build/coverage
"$root/scripts/setup.sh" program tests checks
configure "$folder" coverage
build "$folder"
rm -rf "$folder/profiles"
# %m: one file for each binary, to which its runs add
(cd "$root" && LLVM_PROFILE_FILE=$folder/profiles/%4m.profraw \
    quietly ctest --preset coverage --no-tests=error -j "$jobs" "$@") ||
    say "Some tests failed; the table shows what ran." >&2

llvm-profdata merge -sparse "$folder"/profiles/*.profraw -o "$folder/corv.profdata"
what=("$folder/tests/corv_tests" -object "$folder/cli/corv"
    -instr-profile="$folder/corv.profdata" -ignore-filename-regex="$root/(tests|build)/|^/usr/")
llvm-cov show "${what[@]}" -format=html -output-dir="$folder/report" >/dev/null
llvm-cov export "${what[@]}" -summary-only -format=lcov |
    awk -F : -v root="$root/" '
        $1 == "SF" {
            row = substr($2, length(root) + 1)
            sub(/\/[^\/]*$/, "", row)
            files[row]++
            files["all"]++
        }
        $1 ~ /^(LF|LH|BRF|BRH)$/ {
            sum[row, $1] += $2
            sum["all", $1] += $2
        }
        function share(hit, found) { return found > 0 ? sprintf("%.1f %%", 100 * hit / found) : "" }
        function line(row) {
            return sprintf("%-28s %5d %7d %8s %8s", row, files[row], sum[row, "LF"],
                share(sum[row, "LH"], sum[row, "LF"]), share(sum[row, "BRH"], sum[row, "BRF"]))
        }
        END {
            printf "%-28s %5s %7s %8s %8s\n", "folder", "files", "lines", "reached", "branches"
            fflush()
            for (row in files) if (row != "all") print line(row) | "sort"
            close("sort")
            print line("all")
        }'
