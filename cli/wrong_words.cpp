// Guesses what the user meant by a word that the argument parser cannot place. A cut formula has to
// be found before parsing: its words would be taken for operands, and -r 10ns for the radix.

#include "cli/wrong_words.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <string_view>

#include "cli/suggestion.h"
#include "corv/util/time_units.h"

namespace corv::cli {
namespace {

constexpr std::array<std::string_view, 8> kTimeOptions{"-s",   "--start", "-e",       "--end",
                                                       "--at", "--shift", "--period", "--offset"};

bool IsFile(const std::string& name) {
    std::error_code error;
    return !name.empty() && std::filesystem::exists(name, error);
}

// Returns the number at the start of a word; empty if there is none.
std::string_view NumberOf(std::string_view word) {
    return word.substr(0, std::min(word.find_first_not_of("0123456789."), word.size()));
}

bool IsUnit(std::string_view word) {
    return UnitIDFromName(std::string(word).c_str()) >= 0;
}

// Returns whether the word can be the second one of a formula: "5", "5ns", "@5ns,".
bool IsTime(std::string_view word) {
    word.remove_prefix(word.starts_with('@') ? 1 : 0);
    word.remove_suffix(word.ends_with(',') ? 1 : 0);
    const std::size_t digits = NumberOf(word).size();
    return digits > 0 && (digits == word.size() || IsUnit(word.substr(digits)));
}

// Joins the words that seem to belong to one formula, from the first one on, and puts them in
// quotes. The formula ends at the next option, but -r with a time is part of it.
std::string QuotedFormula(std::span<const char* const> words) {
    std::string formula = words.empty() ? "" : words[0];
    for (std::size_t i = 1; i < words.size(); ++i) {
        const std::string_view word = words[i];
        const bool period =
            (word == "-r" || word == "-repeat") && i + 1 < words.size() && IsTime(words[i + 1]);
        if (word.starts_with("-") && word.size() > 1 && !period) {
            break;
        }
        formula.append(" ").append(word);
    }
    const char* const quote = formula.find('\'') == std::string::npos ? "'" : "\"";
    return quote + formula + quote;
}

bool HasOption(const CommandInfo& command, std::string_view name) {
    return std::any_of(command.options.begin(), command.options.end(),
                       [&](const OptionInfo& option) {
                           return option.long_name == name && !option.value.empty();
                       });
}

// Returns where a word belongs; empty if that cannot be guessed.
std::string PlaceOf(const CommandInfo& command, const std::string& word, const std::string& file) {
    const bool formulas = HasOption(command, "--formula");
    const bool names = HasOption(command, "--name");
    if (word == "help") {
        return "; `" + command.path + " --help` shows the help";
    }
    if (IsFile(word) && names && !file.empty()) {
        return IsFile(file) ? "; one recording is read at a time"
                            : "; there is no file `" + file + "`, and a signal goes after -n";
    }
    if (IsFile(word) && formulas) {
        return "; a recorded signal goes after --replay, as " + word +
               ":SIGNAL, and `corv convert` writes a recording in another format";
    }
    if (formulas && (!names || word.find_first_of(" ,=") != std::string::npos)) {
        return "; a formula goes after -f";
    }
    return names ? "; a signal goes after -n" : "";
}

}  // namespace

std::string CutIntoWords(std::span<const char* const> arguments) {
    for (std::size_t i = 1; i + 2 < arguments.size(); ++i) {
        const std::string_view option = arguments[i];
        const std::string first = arguments[i + 1];
        const std::string second = arguments[i + 2];
        if (option == "--") {
            break;
        }
        const bool takes_time =
            std::find(kTimeOptions.begin(), kTimeOptions.end(), option) != kTimeOptions.end();
        if (takes_time && NumberOf(first).size() == first.size() && IsUnit(second)) {
            return std::string(option) + ": `" + first + " " + second + "` is two words; write " +
                   first + second + ", or '" + first + " " + second + "' in quotes";
        }
        if ((option == "-f" || option == "--formula") && first.find(' ') == std::string::npos &&
            IsTime(second)) {
            return std::string(option) + " takes one word; write the formula in quotes, " +
                   std::string(option) + " " + QuotedFormula(arguments.subspan(i + 1));
        }
    }
    return {};
}

std::string UnknownWord(const CommandInfo& command, const std::string& word,
                        const std::string& file) {
    std::vector<std::string> names;
    for (const CommandInfo& inner : command.commands) {
        names.push_back(inner.name);
    }
    return names.empty() ? "unexpected `" + word + "`" + PlaceOf(command, word, file)
                         : "unknown command `" + word + "`" + Suggestion(word, names);
}

}  // namespace corv::cli
