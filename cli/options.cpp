#include "cli/options.h"

#include <algorithm>
#include <cctype>
#include <charconv>

#include "cli/command.h"
#include "cli/description.h"
#include "cli/suggestion.h"
#include "corv/util/time_units.h"

namespace corv::cli {
namespace {

constexpr const char* kColourModes = "auto|always|never";

std::vector<std::string> Words(const std::string& words) {
    OptionInfo option;
    option.value = words;
    return option.Choices();
}

std::string UnitWords() {
    std::string words;
    for (const std::string_view unit : TimeUnitNames()) {
        words.append(words.empty() ? "" : "|").append(unit);
    }
    return words;
}

std::string NotOneOf(const std::string& word, const std::string& words) {
    return "`" + word + "` is not " + Alternatives(Words(words)) + Suggestion(word, Words(words));
}

}  // namespace

CLI::Validator OneOf(const std::string& words) {
    return CLI::Validator(
        [words](std::string& word) {
            const auto list = Words(words);
            return std::find(list.begin(), list.end(), word) == list.end() ? NotOneOf(word, words)
                                                                           : std::string();
        },
        "");
}

void AddValue(CLI::App& command, const std::string& names, const std::string& value,
              const std::string& text, std::function<std::string(const std::string&)> take) {
    command
        .add_option_function<std::string>(
            names, [](const std::string&) {}, text)
        ->type_name(value)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast)
        ->check(
            CLI::Validator([take = std::move(take)](std::string& word) { return take(word); }, ""));
}

void AddChoice(CLI::App& command, const std::string& names, const std::string& words,
               const std::string& text, std::function<void(const std::string&)> take) {
    AddValue(command, names, words, text, [words, take = std::move(take)](const std::string& word) {
        const auto list = Words(words);
        if (std::find(list.begin(), list.end(), word) == list.end()) {
            return NotOneOf(word, words);
        }
        take(word);
        return std::string();
    });
}

void AddTextOperand(CLI::App& command, std::string& target, const std::string& text) {
    command.add_option("TEXT", target, text)->required()->type_name("");
}

void AddText(CLI::App& command, const std::string& names, const std::string& value,
             std::string& target, const std::string& text) {
    AddValue(command, names, value, text, [&target](const std::string& word) {
        target = word;
        return std::string();
    });
}

void AddTime(CLI::App& command, const std::string& names, std::optional<std::int64_t>& target,
             const std::string& text) {
    AddValue(command, names, "TIME", text, [&target](const std::string& word) {
        Problem problem;
        target = ParseTime(word, &problem);
        return target && *target < 0 ? "`" + word + "` is negative; times start at 0"
                                     : problem.sentence;
    });
}

void AddNumber(CLI::App& command, const std::string& names, int from, int to,
               std::optional<int>& target, const std::string& text) {
    AddValue(command, names, "N", text, [&target, from, to](const std::string& word) {
        int number = 0;
        const auto end = word.data() + word.size();
        const auto read = std::from_chars(word.data(), end, number);
        target = number;
        return read.ptr == end && read.ec == std::errc() && number >= from && number <= to
                   ? std::string()
                   : "`" + word + "` is not a whole number from " + std::to_string(from) + " to " +
                         std::to_string(to);
    });
}

void AddTimeUnit(CLI::App& command, const std::string& names, std::optional<TimeUnit>& target,
                 const std::string& text) {
    AddValue(command, names, UnitWords(), text, [&target](const std::string& word) {
        const int unit = UnitIDFromName(word.c_str());
        target = static_cast<TimeUnit>(std::max(unit, 0));
        return unit < 0 ? NotOneOf(word, UnitWords()) : std::string();
    });
}

void AddRecordingUnit(CLI::App& command, std::optional<TimeUnit>& target) {
    AddTimeUnit(command, "--time-unit", target,
                "The unit that the times of a GHW file are in; unless given, it is found by the "
                "type time");
}

void AddColour(CLI::App& command, host::ColourMode& target) {
    AddValue(command, "--color", kColourModes, "When to write colours",
             [&target](const std::string& word) {
                 const auto mode = host::ReadColourMode(word);
                 target = mode.value_or(host::ColourMode::Auto);
                 return mode ? std::string() : NotOneOf(word, kColourModes);
             });
}

std::string TimeText(std::int64_t time, std::optional<TimeUnit> unit) {
    return unit ? FormatTime(time, *unit) : FormatTime(time);
}

bool WithColour(host::ColourMode asked, int file_descriptor) {
    const std::optional<bool> colour = host::UseColour(asked, file_descriptor);
    if (!colour) {
        const char* const word = std::getenv("CORV_COLORS");
        throw Failure("CORV_COLORS: " + NotOneOf(word ? word : "", kColourModes));
    }
    return *colour;
}

}  // namespace corv::cli
