#include <sstream>

#include "cli/command.h"
#include "cli/description.h"
#include "cli/output.h"
#include "corv/version.h"

namespace corv::cli {
namespace {

// Escapes a text for troff, in which a backslash, a hyphen and a dot at the start of a line have
// other meanings.
std::string Escape(std::string_view text) {
    std::string out;
    for (const char c : text) {
        if (c == '\\') {
            out += "\\e";
        } else if (c == '-') {
            out += "\\-";
        } else if ((c == '.' || c == '\'') && (out.empty() || out.back() == '\n')) {
            out += std::string("\\&") + c;
        } else if (c == '\'') {
            out += "\\(aq";
        } else if (c == '`') {
            out += "\\(ga";
        } else {
            out += c;
        }
    }
    return out;
}

std::string Paragraphs(std::string_view text) {
    std::string out;
    std::istringstream lines{std::string(text)};
    for (std::string line; std::getline(lines, line);) {
        out += (out.empty() ? "" : ".PP\n") + Escape(line) + "\n";
    }
    return out;
}

std::string Item(const std::string& names, const std::string& value, const std::string& text) {
    return ".TP\n\\fB" + Escape(names) + "\\fR" +
           (value.empty() ? "" : " \\fI" + Escape(value) + "\\fR") + "\n" + Escape(text) + "\n";
}

std::string Literally(const std::string& text) {
    return text.empty() ? "" : ".PP\n.nf\n" + Escape(text) + "\n.fi\n";
}

std::string OptionEntries(const CommandInfo& command) {
    std::string out;
    for (const OptionInfo& operand : command.operands) {
        out += Item(operand.long_name, "", operand.text);
    }
    for (const OptionInfo& option : command.options) {
        out += Item(option.Names(), option.value, option.text);
    }
    return out;
}

std::string Upper(std::string_view text) {
    std::string out;
    for (const char c : text) {
        out += c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    }
    return out;
}

std::string ManPage(const CommandInfo& program) {
    std::string out = ".TH CORV 1 \"\" \"corv " + Escape(Version()) + "\" \"User Commands\"\n";
    out += ".SH NAME\ncorv \\- " + Escape(program.summary) + "\n.SH SYNOPSIS\n";
    const std::vector<const CommandInfo*> all = AllCommands(program);
    for (const CommandInfo* command : all) {
        if (command->commands.empty()) {
            out += (command == all[1] ? "" : ".br\n") + Escape(command->Usage()) + "\n";
        }
    }
    out += ".SH OPTIONS\n" + OptionEntries(program) + ".SH COMMANDS\n";
    for (const CommandInfo* command : all) {
        if (command != &program && command->commands.empty()) {
            const std::string summary =
                Upper(command->summary.substr(0, 1)) + command->summary.substr(1);
            out += ".SS " + Escape(command->path) + "\n" +
                   Paragraphs(summary + ".\n" + command->details) + OptionEntries(*command) +
                   Literally(command->examples);
        }
    }
    for (const Section& section : CommonSections()) {
        out += ".SH " + Upper(section.title) + "\n" + Paragraphs(section.text);
    }
    return out + ".SH EXAMPLES\n" + Literally(program.examples).substr(sizeof ".PP");
}

}  // namespace

void AddMan(CLI::App& program, Action& chosen) {
    CLI::App* command = program.add_subcommand("man", "write the manual page");
    command->footer("corv man | man -l -");
    command->callback([&chosen, &program] {
        chosen = [&program] {
            WriteOutput("", ManPage(Describe(program)));
            return kFine;
        };
    });
}

}  // namespace corv::cli
