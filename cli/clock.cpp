#include "corv/stimulators/clock.h"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <memory>

#include "cli/command.h"
#include "cli/json.h"
#include "cli/options.h"
#include "cli/output.h"
#include "cli/suggestion.h"
#include "corv/stimulus/stim_iterator.h"
#include "corv/stimulus/stimulus.h"
#include "corv/util/time_text.h"
#include "corv/util/time_units.h"

namespace corv::cli {
namespace {

// A positive number with the identifier of its unit, of time or of frequency.
struct Rate {
    double value = 0;
    unsigned unit = 0;
};

struct ClockOptions {
    std::optional<Rate> period, frequency;
    std::optional<std::int64_t> offset;
    std::optional<int> duty;
    bool low = false;
    bool json = false;
    bool formula_only = false;
};

std::string Lower(std::string text) {
    for (char& c : text) {
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return text;
}

// Reads "100MHz" or "1.5 GHz"; a number alone is in Hz. Returns a complaint or an empty text.
std::string ReadFrequency(const std::string& text, std::optional<Rate>& frequency) {
    Rate rate;
    const char* const end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, rate.value, std::chars_format::fixed);
    if (read.ec != std::errc() || !std::isfinite(rate.value)) {
        return "`" + text + "` is not a frequency; expected a number and a unit, such as 100MHz";
    }
    const std::string_view rest(read.ptr, static_cast<std::size_t>(end - read.ptr));
    const std::string unit(rest.substr(std::min(rest.find_first_not_of(' '), rest.size())));
    const std::vector<std::string> names(FrequencyUnitNames().begin(), FrequencyUnitNames().end());
    while (!unit.empty() && rate.unit < names.size() && Lower(names[rate.unit]) != Lower(unit)) {
        ++rate.unit;
    }
    if (rate.unit == names.size()) {
        return "unknown unit `" + unit + "`; expected " + Alternatives(names) +
               Suggestion(unit, names);
    }
    frequency = rate;
    return rate.value > 0 ? "" : "the frequency must be above 0";
}

// A period may be finer than a picosecond until the formula is made.
std::string ReadPeriod(const std::string& text, std::optional<Rate>& period) {
    std::string closed = text;
    std::erase_if(closed, [](char c) {
        return std::string_view(" \t\r\n").find(c) != std::string_view::npos;
    });
    double number = 0;
    int unit = -1;
    if (!TextToTime(closed.c_str(), &number, &unit)) {
        Problem problem;
        ParseTime(text, &problem);
        return problem.sentence;
    }
    period = Rate{number, unit < 0 ? kPicosecond : static_cast<unsigned>(unit)};
    return number > 0 ? "" : "the period must be above 0";
}

CClock MakeClock(const ClockOptions& options) {
    const Rate rate = options.period ? *options.period : *options.frequency;
    CClock clock;
    clock.SetRateValue(rate.value);
    clock.SetRateUnit(static_cast<std::uint8_t>(rate.unit));
    clock.SetRateType(options.period.has_value());
    clock.SetRateOffset(options.offset.value_or(0));
    clock.SetRateCycle(static_cast<std::uint8_t>(options.duty.value_or(50)));
    clock.SetStartLow(options.low);
    return clock;
}

// Returns the period in picoseconds before it is cut to a whole number.
double ExactPeriod(const CClock& clock) {
    return clock.GetRateType() ? ChangeTime(clock.GetRateValue(), clock.GetRateUnit(), 1)
                               : PeriodFromFreq(clock.GetRateValue(), clock.GetRateUnit(), 1);
}

std::string Picoseconds(double value) {
    std::array<char, 32> text;
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::general, 9);
    return std::string(text.data(), end.ptr) + "ps";
}

// A difference below one part in 10^9 is the rounding of the double, not a cut fraction.
void WarnIfCut(const std::string& what, double exact, std::int64_t kept) {
    if (std::abs(exact - static_cast<double>(kept)) > 1e-9 * std::max(exact, 1.0)) {
        WriteMessage("warning", what + " of " + Picoseconds(exact) + " is cut to " +
                                    std::to_string(kept) + "ps");
    }
}

// Compares the times in the formula with those that were asked for.
void CheckEdges(const CClock& clock, const std::string& formula) {
    CStimulus stimulus;
    stimulus.Create(formula.c_str(), 0);
    CStimIterator elements(&stimulus);
    const CSimpleStimulus* first = elements.Next();
    const CSimpleStimulus* second = first ? elements.Next() : nullptr;
    const std::int64_t period = stimulus.GetRepeatRate();
    const std::int64_t pulse = second ? second->GetTime() : 0;
    const double exact = ExactPeriod(clock);
    if (pulse <= 0 || pulse >= period) {
        throw Failure("a period of " + Picoseconds(exact) + " has no room for a pulse of " +
                      std::to_string(clock.GetRateCycle()) + " %; whole picoseconds count");
    }
    WarnIfCut("the period", exact, period);
    WarnIfCut("the first pulse", exact * clock.GetRateCycle() / 100, pulse);
}

// Warns about what the record cannot keep: it has six decimals for the rate and 32 bits for the
// offset.
void CheckRecord(const CClock& clock, const CString& record) {
    CClock read;
    read.StreamIn(record);
    if (read.GetRateValue() != clock.GetRateValue()) {
        WriteMessage("warning", "the record keeps six decimals of the rate only");
    }
    if (read.GetRateOffset() != clock.GetRateOffset()) {
        WriteMessage("warning", "the record cannot keep the offset; it holds up to 2147483647ps");
    }
}

int RunClock(const ClockOptions& options) {
    if (options.period.has_value() == options.frequency.has_value()) {
        throw Failure("either --period or --freq is needed, and not both");
    }
    const CClock clock = MakeClock(options);
    if (!(ExactPeriod(clock) < static_cast<double>(kMaxTime))) {
        throw Failure("the period is longer than a time can be");
    }
    CString formula;
    CString record;
    clock.GenerateFormula(formula, kPicosecond, nullptr);
    clock.StreamOut(record);
    const std::string text(formula.View());
    CheckEdges(clock, text);
    if (options.formula_only) {
        WriteOutput("", text + "\n");
        return kFine;
    }
    CheckRecord(clock, record);
    const std::string settings(record.View());
    WriteOutput("", options.json
                        ? JsonLine({{"schema", 1}, {"record", settings}, {"formula", text}})
                        : "record   " + settings + "\nformula  " + text + "\n");
    return kFine;
}

}  // namespace

void AddClock(CLI::App& program, Action& chosen) {
    CLI::App* command = program.add_subcommand(
        "clock",
        "make the settings record and the formula of a clock\n"
        "The formula's times are whole picoseconds; a warning tells when something was cut off "
        "for that.");
    auto options = std::make_shared<ClockOptions>();
    AddValue(*command, "--period", "TIME", "How long a period lasts",
             [options = options.get()](const std::string& word) {
                 return ReadPeriod(word, options->period);
             });
    AddValue(*command, "--freq", "FREQUENCY",
             "How many periods come in a second; the units are " + Listed(FrequencyUnitNames()),
             [options = options.get()](const std::string& word) {
                 return ReadFrequency(word, options->frequency);
             });
    AddNumber(*command, "--duty", 1, 99, options->duty,
              "Percent of the period at the level it starts with; 50 unless given");
    AddTime(*command, "--offset", options->offset, "When the first period begins; 0 unless given");
    command->add_flag("--low", options->low, "Start with 0 instead of 1");
    command->add_flag("--formula", options->formula_only, "Write the formula alone");
    command->add_flag("--json", options->json, "Write JSON");
    command->footer(
        "corv clock --freq 100MHz\n"
        "corv clock --period 8ns --duty 25 --offset 2ns --low --json\n"
        "corv draw -f clk=\"$(corv clock --freq 133MHz --formula)\"");
    command->callback([&chosen, options] { chosen = [options] { return RunClock(*options); }; });
}

}  // namespace corv::cli
