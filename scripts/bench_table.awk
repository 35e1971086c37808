# Makes a table of the medians in a report of Google Benchmark, which stands behind the list of its
# benchmarks' names and gives the order. A name with "/corv" in it and the one with "/plain"
# instead are one row.

function nanoseconds(value, unit) {
    return value * (unit == "s" ? 1e9 : unit == "ms" ? 1e6 : unit == "us" ? 1e3 : 1)
}
function ratio(row) {
    return row in base ? sprintf("%.2f", nanoseconds(mine[row], mine_unit[row]) / \
                                         nanoseconds(base[row], base_unit[row])) : ""
}
{
    row = $1
    kind = sub(/_median$/, "", row) ? "median" : sub(/_cv$/, "", row) ? "cv" : NF == 1 ? "name" : ""
    is_base = sub(/\/plain/, "", row)
    sub(/\/corv/, "", row)
}
kind == "name" && !is_base && row !~ /^---/ {
    rows[++count] = row
    if (length(row) > width) width = length(row)
}
kind == "median" && is_base {
    base[row] = $4
    base_unit[row] = $5
}
kind == "median" && !is_base {
    mine[row] = $4
    mine_unit[row] = $5
    for (i = 7; i <= NF; ++i) rates[row] = rates[row] "  " $i
}
kind == "cv" && !is_base { spread[row] = $4 " " $5 }
END {
    layout = "%-" width "s  %14s  %14s  %6s  %8s%s\n"
    for (i = 1; i <= count; ++i) {
        row = rows[i]
        if (!(row in mine)) continue
        if (!ran++) printf layout, "benchmark", "corv", "baseline", "ratio", "spread", ""
        printf layout, row, mine[row] " " mine_unit[row],
            row in base ? base[row] " " base_unit[row] : "", ratio(row), spread[row], rates[row]
    }
    if (!ran) {
        print "no benchmark ran"
        exit 1
    }
}
