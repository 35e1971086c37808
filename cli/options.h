#pragma once

#include <CLI/CLI.hpp>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "corv/util/time_text.h"
#include "host/colour.h"

// The options that several commands share. A value that cannot be used is refused while the
// arguments are parsed, with a sentence that says what would be accepted. If an option is given
// twice, the last one counts.
namespace corv::cli {

// Accepts one word of a list, "ps|ns".
CLI::Validator OneOf(const std::string& words);

// Adds an option with a value. `take` stores the value and returns a complaint about it, or an
// empty text.
void AddValue(CLI::App& command, const std::string& names, const std::string& value,
              const std::string& text, std::function<std::string(const std::string&)> take);
// Adds an option with one word of a list, "up|down"; any other word is refused.
void AddChoice(CLI::App& command, const std::string& names, const std::string& words,
               const std::string& text, std::function<void(const std::string&)> take);
// Adds the operand TEXT, which the command requires.
void AddTextOperand(CLI::App& command, std::string& target, const std::string& text);
void AddText(CLI::App& command, const std::string& names, const std::string& value,
             std::string& target, const std::string& text);
void AddTime(CLI::App& command, const std::string& names, std::optional<std::int64_t>& target,
             const std::string& text);
void AddNumber(CLI::App& command, const std::string& names, int from, int to,
               std::optional<int>& target, const std::string& text);
void AddTimeUnit(CLI::App& command, const std::string& names, std::optional<TimeUnit>& target,
                 const std::string& text);
// Adds the option for the unit of a GHW file's times, which the file itself states only if it
// contains the type TIME.
void AddRecordingUnit(CLI::App& command, std::optional<TimeUnit>& target);
void AddColour(CLI::App& command, host::ColourMode& target);

// The unit of whole-number times, for functions that take a unit as a number.
inline constexpr auto kPicosecond = static_cast<unsigned>(TimeUnit::Picosecond);

// Writes a time in a unit; without one, in the largest unit that needs no fraction.
std::string TimeText(std::int64_t time, std::optional<TimeUnit> unit);

// Returns whether to write colours to a stream; throws Failure if CORV_COLORS cannot be used.
bool WithColour(host::ColourMode asked, int file_descriptor);

}  // namespace corv::cli
