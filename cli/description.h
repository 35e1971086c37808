#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <string_view>
#include <vector>

// The program's arguments as plain data, read from the argument parser's own description: the one
// source of the help texts, the man page and the completions.
namespace corv::cli {

struct OptionInfo {
    std::string short_name;  // "-f", may be empty
    std::string long_name;   // "--formula"; of an operand its name, "TEXT"
    std::string value;       // what stands behind it, "FILE"; empty for a flag
    std::string text;
    bool required = false;
    bool repeatable = false;

    // The words that the value is one of: value "a|b" names them, any other value names none.
    std::vector<std::string> Choices() const;
    bool IsFile() const { return value == "FILE"; }
    // A signal of the recording among the operands, and one behind its recording.
    bool IsSignal() const { return value == "GLOB"; }
    bool IsRecordedSignal() const { return value == "FILE:SIGNAL"; }
    // Both names, "-f, --formula".
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

    // How it is called: "corv formula check [OPTION]... TEXT".
    std::string Usage() const;
};

CommandInfo Describe(const CLI::App& app);

// The command and all commands under it, in their order.
std::vector<const CommandInfo*> AllCommands(const CommandInfo& program);

// What the help of the program and the man page tell besides.
struct Section {
    std::string_view title;
    std::string_view text;
};
const std::vector<Section>& CommonSections();

std::string FormatHelp(const CommandInfo& command);

}  // namespace corv::cli
