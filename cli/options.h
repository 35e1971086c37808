#pragma once

#include <CLI/CLI.hpp>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "host/colour.h"

// The options that several commands spell alike. A value that can't be used is refused while the
// arguments are parsed, with a sentence that says what would do. Given twice, the last one counts.
namespace corv::cli {

// What stands behind an option that takes one word of a list: "ps|ns".
CLI::Validator OneOf(const std::string& words);

// An option with a value. `take` stores it and gives a complaint about it, or an empty text.
void AddValue(CLI::App& command, const std::string& names, const std::string& value,
              const std::string& text, std::function<std::string(const std::string&)> take);
// An option with one word of a list, "up|down"; any other word is refused.
void AddChoice(CLI::App& command, const std::string& names, const std::string& words,
               const std::string& text, std::function<void(const std::string&)> take);
// The operand TEXT, which the command can't do without.
void AddTextOperand(CLI::App& command, std::string& target, const std::string& text);
void AddText(CLI::App& command, const std::string& names, const std::string& value,
             std::string& target, const std::string& text);
void AddTime(CLI::App& command, const std::string& names, std::optional<std::int64_t>& target,
             const std::string& text);
void AddNumber(CLI::App& command, const std::string& names, int from, int to,
               std::optional<int>& target, const std::string& text);
void AddTimeUnit(CLI::App& command, const std::string& names, std::optional<unsigned>& target,
                 const std::string& text);
// The unit that a GHW file's times are in, which the file tells by its types only.
void AddRecordingUnit(CLI::App& command, std::optional<unsigned>& target);
void AddColour(CLI::App& command, host::ColourMode& target);

// Whether to write colours to a stream; throws Failure when CORV_COLORS can't be used.
bool WithColour(host::ColourMode asked, int file_descriptor);

}  // namespace corv::cli
