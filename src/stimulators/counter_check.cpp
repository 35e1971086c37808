// Checks a counter formula with the reader that registration uses, in the order of its keys, and
// reports the first problem.

#include "stimulators/counter_check.h"

#include "corv/stimulators/counter.h"
#include "stimulators/counter_text.h"
#include "util/fields.h"
#include "util/quote.h"

namespace corv::stimulators {
namespace {

using util::Quote;

std::optional<CounterProblem> CheckReference(std::string_view formula, CounterReference reference) {
    const CCounterState* counter = FindCounter(reference.handle);
    if (!counter) {
        return CounterProblem{formula, "no counter is registered under the handle " +
                                           std::to_string(reference.handle)};
    }
    if (reference.wire < 0 || static_cast<unsigned>(reference.wire) >= counter->GetWidth()) {
        return CounterProblem{formula, "the counter " + std::to_string(reference.handle) +
                                           " has no wire " + std::to_string(reference.wire) +
                                           "; its wires are 0 to " +
                                           std::to_string(counter->GetWidth() - 1)};
    }
    return std::nullopt;
}

std::optional<CounterProblem> CheckNumber(std::string_view text, int radix) {
    if (ReadCountNumber(text, radix)) {
        return std::nullopt;
    }
    return CounterProblem{text, Quote(text) + " is not a number in radix " + std::to_string(radix)};
}

std::optional<CounterProblem> CheckPeriod(std::string_view text) {
    const auto period = ReadCountPeriod(text);
    if (!period) {
        return CounterProblem{text, Quote(text) +
                                        " is not a time; write the count period as a "
                                        "number with an optional unit, such as `10ns`"};
    }
    if (*period < 1) {
        return CounterProblem{text, "the count period has to be 1 ps or longer"};
    }
    return std::nullopt;
}

std::optional<CounterProblem> CheckType(std::string_view text, bool alone) {
    const int type = util::LeadingInt(text);
    if (alone && type != CCounterStimulusInfo::Binary) {
        return CounterProblem{text,
                              "only a binary counter (TYPE 1) can drive a signal as a whole; "
                              "others drive the wires of a vector"};
    }
    if (type < CCounterStimulusInfo::Binary || type > CCounterStimulusInfo::OneCold) {
        return CounterProblem{text, "there is no counter of type " + std::to_string(type) +
                                        "; the types are 1 binary, 2 Gray, 3 Johnson, 4 one-hot "
                                        "and 5 one-cold"};
    }
    return std::nullopt;
}

std::optional<CounterProblem> CheckValue(CounterKey key, std::string_view value, int radix,
                                         bool alone) {
    switch (key) {
        case CounterKey::Type:
            return CheckType(value, alone);
        case CounterKey::Radix:
            if (util::LeadingInt(value) < 2 || util::LeadingInt(value) > 16) {
                return CounterProblem{value, "the radix has to be from 2 to 16"};
            }
            return std::nullopt;
        case CounterKey::Start:
        case CounterKey::Inc:
            return CheckNumber(value, radix);
        case CounterKey::Period:
            return CheckPeriod(value);
        case CounterKey::Dir:
        case CounterKey::Rev:
            break;
    }
    return std::nullopt;
}

}  // namespace

std::optional<CounterProblem> CheckCounter(std::string_view formula, bool alone) {
    if (const auto reference = ReadCounterReference(formula)) {
        if (alone) {
            return CheckReference(formula, *reference);
        }
        return CounterProblem{formula, "a reference to a wire drives one signal, not a vector"};
    }
    CounterReader reader(formula);
    if (!reader.Begin()) {
        return CounterProblem{reader.At(), "a counter formula begins with `\\counter\\TYPE\\`"};
    }
    int radix = 0;
    for (std::size_t i = 0; i < kCounterKeys.size(); ++i) {
        const auto key = static_cast<CounterKey>(i);
        const auto value = reader.Value(key);
        if (!value) {
            return CounterProblem{reader.At(), "the key " + Quote(kCounterKeys[i]) +
                                                   " and its value are expected here"};
        }
        // the radix precedes the numbers that are written in it
        radix = key == CounterKey::Radix ? util::LeadingInt(*value) : radix;
        if (auto problem = CheckValue(key, *value, radix, alone)) {
            return problem;
        }
    }
    return std::nullopt;
}

}  // namespace corv::stimulators
