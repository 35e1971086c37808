#!/usr/bin/env bash
# Usage: scripts/bench.sh [BENCHMARK-ARGUMENT]...
#
# Installs what is missing, builds the benchmarks optimised, runs each seven times, interleaved at
# random, and prints the medians of the processor time: corv's, that of the hand-written baseline
# beside it, how many times the baseline corv takes, the spread of corv's seven runs, its rates.
# The full report lies in build/release/bench/report.json afterwards. Further arguments go to the
# benchmarks:
#
#   scripts/bench.sh --benchmark_filter=^wave/
#
# A benchmark is called area/job/corv, its baseline area/job/plain.

set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

case ${1:-} in
    -h | --help) show_help && exit ;;
esac

"$root/scripts/setup.sh" program tests bench
configure "$root/build/release" release
build "$root/build/release" corv_bench

bench=$root/build/release/bench
{
    "$bench/corv_bench" --benchmark_list_tests=true "$@"
    "$bench/corv_bench" --benchmark_repetitions=7 --benchmark_enable_random_interleaving=true \
        --benchmark_display_aggregates_only=true --benchmark_color=false \
        --benchmark_out="$bench/report.json" --benchmark_out_format=json "$@"
} | awk -f "$root/scripts/bench_table.awk"
