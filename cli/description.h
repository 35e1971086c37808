#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <string_view>
#include <vector>

// The program's arguments as plain data, read from the argument parser's own description. The help
// texts, the man page and the completions are all made from it, so that they cannot disagree.
namespace corv::cli {

struct OptionInfo {
    std::string short_name;  // "-f", may be empty
    std::string long_name;   // "--formula"; for an operand its name, "TEXT"
    std::string value;       // what follows it, "FILE"; empty for a flag
    std::string text;
    bool required = false;
    bool repeatable = false;

    // Returns the words that the value can be: those of "a|b"; none if the value is not such a
    // list.
    std::vector<std::string> Choices() const;
    bool IsFile() const { return value == "FILE"; }
    // Return whether the value is a signal of the recording among the operands, and whether it is a
    // recording with a signal after it.
    bool IsSignal() const { return value == "GLOB"; }
    bool IsRecordedSignal() const { return value == "FILE:SIGNAL"; }
    // Returns both names, "-f, --formula".
    std::string Names() const;
};

struct CommandInfo {
    std::string path;     // "corv formula check"
    std::string name;     // "check"
    std::string summary;  // one line
    std::string details;  // paragraphs, may be empty
    std::string examples;
    std::vector<OptionInfo> options;
    std::vector<OptionInfo> operands;
    std::vector<CommandInfo> commands;

    // Returns how it is called: "corv formula check [OPTION]... TEXT".
    std::string Usage() const;
};

CommandInfo Describe(const CLI::App& app);

// Returns the command and all commands under it, in their order.
std::vector<const CommandInfo*> AllCommands(const CommandInfo& program);

// Texts that the help of the program and the man page have in addition.
struct Section {
    std::string title;
    std::string text;
};
const std::vector<Section>& CommonSections();

std::string FormatHelp(const CommandInfo& command);

}  // namespace corv::cli
