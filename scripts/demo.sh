#!/usr/bin/env bash
# Usage: scripts/demo.sh
#
# Installs what is missing, builds the program corv and draws a bus access with it, from formulas
# as a user would type them: a clock, a reset, a data line that changes hands, its words and a
# strobe. The drawing appears in the terminal and as demo.svg in the project's folder.

set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

case ${1:-} in
    "") ;;
    -h | --help) show_help && exit ;;
    *) fail "unknown argument '$1'; see scripts/demo.sh --help" ;;
esac

"$root/scripts/setup.sh" program
configure "$root/build/demo" release -DCORV_BUILD_TESTS=OFF -DCORV_BUILD_BENCHMARKS=OFF
build "$root/build/demo" corv_program
corv=$root/build/demo/cli/corv

# The clock is given in MHz; the program makes the formula of it that the drawing takes.
clock=$("$corv" clock --freq 100MHz --formula)
say "100 MHz as a formula: $clock" ""

"$corv" draw \
    -f "clk=$clock" \
    -f 'reset=1 0, 0 @35ns' \
    -f 'dq=U 0, Z 20ns, 1 50ns, 0 70ns, 1 90ns, Z 110ns, X 125ns, H 130ns, 0 150ns, L 170ns' \
    -f 'data=idle 0, 3C 50ns, A5 80ns, idle 110ns, 7E 150ns' \
    -f 'strobe=/vesk 140NS(010NS110NS)4Z80NS' \
    -e 200ns -o - --svg "$root/demo.svg"

say "" "Look at dq, which changes hands: unknown (U) at first, driven from 50 ns on, released at 110 ns," \
    "in conflict (X) at 125 ns, then weakly high, driven low, and weakly low. clk, data and strobe" \
    "show a repeated formula, a bus with words, and the compact notation." \
    "" "Wrote $root/demo.svg; it opens in a browser. More to try: $corv help"
