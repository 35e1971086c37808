#include "cli/measure_text.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "cli/json.h"
#include "cli/options.h"
#include "host/fit_text.h"

namespace corv::cli {
namespace {

std::string TimeOf(const Measured& measured, std::int64_t time) {
    return TimeText(time, measured.time_unit);
}

std::string Number(double value, const char* format = "%.6g") {
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), format, value);
    return text.data();
}

// A mean, which need not be whole, in the unit of the longest.
std::string MeanOf(const Measured& measured, const find::Lengths& lengths) {
    const std::string longest = TimeOf(measured, lengths.longest);
    const std::string unit = longest.substr(longest.find_first_not_of("-.0123456789"));
    const auto size = static_cast<double>(ParseTime("1" + unit).value_or(1));
    return unit == "fs" ? Number(lengths.Mean() * 1000, "%.9g") + unit
                        : Number(lengths.Mean() / size, "%.9g") + unit;
}

// "100MHz" of a period in picoseconds.
std::string FrequencyOf(double period) {
    constexpr std::array kUnits{"Hz", "kHz", "MHz", "GHz", "THz"};
    double frequency = 1e12 / period;
    std::size_t unit = 0;
    for (; frequency >= 1000 && unit + 1 < kUnits.size(); ++unit) {
        frequency /= 1000;
    }
    return Number(frequency) + kUnits[unit];
}

using Rows = std::vector<std::vector<std::string>>;

void AddLengths(Rows& rows, const Measured& measured, const std::string& name,
                const find::Lengths& lengths) {
    if (lengths.count == 0) {
        rows.push_back({name, "0"});
        return;
    }
    rows.push_back({name, std::to_string(lengths.count), TimeOf(measured, lengths.shortest),
                    "at " + TimeOf(measured, lengths.shortest_at), MeanOf(measured, lengths),
                    TimeOf(measured, lengths.longest),
                    "at " + TimeOf(measured, lengths.longest_at)});
}

Json LengthsJson(const find::Lengths& lengths) {
    if (lengths.count == 0) {
        return {{"count", 0}};
    }
    return {{"count", lengths.count},
            {"shortest", lengths.shortest},
            {"shortest_at", lengths.shortest_at},
            {"mean", lengths.Mean()},
            {"longest", lengths.longest},
            {"longest_at", lengths.longest_at}};
}

}  // namespace

std::string AlignedRows(const std::vector<std::vector<std::string>>& rows) {
    std::vector<std::size_t> widths;
    for (const auto& row : rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t i = 0; i < row.size(); ++i) {
            widths[i] = std::max(widths[i], host::TextWidth(row[i]));
        }
    }
    std::string out;
    for (const auto& row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            out += (i > 0 ? "  " : "") + std::string(widths[i] - host::TextWidth(row[i]), ' ') +
                   row[i];
        }
        out.erase(out.find_last_not_of(' ') + 1);
        out += "\n";
    }
    return out;
}

bool IsEmpty(const Measured& measured) {
    return measured.setup_and_hold ? measured.setup_and_hold->edges == 0
           : measured.level        ? measured.level->high.count + measured.level->low.count == 0
                                   : measured.intervals->count == 0;
}

std::string MeasuredText(const Measured& measured) {
    Rows rows{{"", "count", "shortest", "", "mean", "longest", ""}};
    std::string rest;
    if (measured.setup_and_hold) {
        AddLengths(rows, measured, "setup", measured.setup_and_hold->setup);
        AddLengths(rows, measured, "hold", measured.setup_and_hold->hold);
    } else if (measured.level) {
        const find::LevelFigures& level = *measured.level;
        AddLengths(rows, measured, "period", level.periods);
        AddLengths(rows, measured, "high", level.high);
        AddLengths(rows, measured, "low", level.low);
        if (level.periods.count > 0) {
            rest += "frequency  " + FrequencyOf(level.periods.Mean()) + "\n";
            rest += "duty       " + Number(level.duty * 100, "%.4g") + "%\n";
        }
        if (level.glitches > 0) {
            rest += "glitches   " + std::to_string(level.glitches) + ", the first at " +
                    TimeOf(measured, level.first_glitch) + "\n";
        }
    } else {
        AddLengths(rows, measured, "between", *measured.intervals);
    }
    return AlignedRows(rows) + rest;
}

std::string MeasuredJson(const Measured& measured) {
    Json document{{"schema", 1}, {"condition", measured.condition}};
    if (measured.setup_and_hold) {
        document["edges"] = measured.setup_and_hold->edges;
        document["setup"] = LengthsJson(measured.setup_and_hold->setup);
        document["hold"] = LengthsJson(measured.setup_and_hold->hold);
    } else if (measured.level) {
        const find::LevelFigures& level = *measured.level;
        document["period"] = LengthsJson(level.periods);
        document["high"] = LengthsJson(level.high);
        document["low"] = LengthsJson(level.low);
        if (level.periods.count > 0) {
            document["frequency_hz"] = 1e12 / level.periods.Mean();
            document["duty"] = level.duty;
        }
        document["glitches"] = level.glitches;
    } else {
        document["between"] = LengthsJson(*measured.intervals);
    }
    return JsonLine(document);
}

}  // namespace corv::cli
