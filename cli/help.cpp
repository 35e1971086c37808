#include <algorithm>
#include <memory>
#include <sstream>

#include "cli/command.h"
#include "cli/description.h"
#include "cli/output.h"
#include "cli/suggestion.h"
#include "corv/util/time_text.h"

namespace corv::cli {
namespace {

constexpr std::size_t kWidth = 80;
constexpr std::size_t kTextColumn = 26;

// Fills words into lines that begin at `indent`; the first line begins at `column`. A text in
// backticks is not broken.
std::string Fill(const std::string& text, std::size_t column, std::size_t indent) {
    std::string out;
    std::istringstream words(text);
    bool first = true;
    for (std::string word, more; words >> word; first = false) {
        while (std::count(word.begin(), word.end(), '`') % 2 != 0 && words >> more) {
            word += " " + more;
        }
        if (!first && column + 1 + word.size() > kWidth) {
            out += "\n" + std::string(indent, ' ');
            column = indent;
        } else if (!first) {
            out += ' ';
            ++column;
        }
        out += word;
        column += word.size();
    }
    return out + "\n";
}

std::string Entry(const std::string& head, const std::string& text) {
    std::string line = "  " + head;
    if (line.size() + 2 > kTextColumn) {
        line += "\n" + std::string(kTextColumn, ' ');
    } else {
        line.resize(kTextColumn, ' ');
    }
    return line + Fill(text, kTextColumn, kTextColumn);
}

// Calls `take` with each line of the text.
template <class Take>
void ForEachLine(std::string_view text, Take take) {
    std::istringstream lines{std::string(text)};
    for (std::string line; std::getline(lines, line);) {
        take(line);
    }
}

std::string Heading(std::string_view title) {
    return "\n" + std::string(title) + ":\n";
}

std::string Options(const CommandInfo& command) {
    std::string out;
    for (const OptionInfo& operand : command.operands) {
        out += Entry(operand.long_name, operand.text);
    }
    for (const OptionInfo& option : command.options) {
        const std::string names = (option.short_name.empty() ? "    " : "") + option.Names();
        out += Entry(names + (option.value.empty() ? "" : " ") + option.value, option.text);
    }
    return out;
}

std::vector<std::string> NamesOf(const std::vector<CommandInfo>& commands) {
    std::vector<std::string> names;
    for (const CommandInfo& command : commands) {
        names.push_back(command.name);
    }
    return names;
}

// Returns the command that the words lead to; throws Failure.
const CommandInfo& Find(const CommandInfo& program, const std::vector<std::string>& words) {
    const CommandInfo* found = &program;
    for (const std::string& word : words) {
        const auto next = std::find_if(found->commands.begin(), found->commands.end(),
                                       [&](const CommandInfo& c) { return c.name == word; });
        if (next == found->commands.end()) {
            throw Failure("unknown command `" + word + "`" +
                          Suggestion(word, NamesOf(found->commands)));
        }
        found = &*next;
    }
    return *found;
}

}  // namespace

const std::vector<Section>& CommonSections() {
    static const std::vector<Section> sections{
        {"Formulas",
         "A formula is a list of values, each with the time from which it holds: `0 0, 1 10ns`.\n"
         "`-r 20ns` in it repeats the whole with that period, `@100ns` is a time that takes no "
         "part "
         "in the repetition, `/vesk` introduces the compact notation of values and durations.\n"
         "Values of vectors, `NAME:8=` or of a type, are written as VHDL does, `X\"A5\"`, "
         "`O\"17\"`, "
         "`B\"1010\"`, `16#A5#` or `(others => '0')`, as `0xA5`, as decimal numbers, `165` or "
         "`-3`, "
         "or letter by letter, `01XZ`. Letters of std_logic, exactly as many as the vector has "
         "elements, are always its letters: `1010` is 10 for four elements and the decimal number "
         "for twelve. Bits missing in front are zeros; a value that does not fit is refused.\n"
         "A time is a number and a unit, `10ns`, `10 ns` or `1.5us`; the units are " +
             Listed(TimeUnitNames()) +
             ". A number alone counts picoseconds.\n"
             "Where a formula is expected, `-` reads it from standard input."},
        {"Exit status",
         "0 when the command did its work, also with notes or warnings; 1 when `corv formula "
         "check`, `corv sti` or `corv states` found problems or `corv find` found nothing; 2 when "
         "the command could not do its "
         "work."},
        {"Environment",
         "CORV_COLORS (auto, always or never) and NO_COLOR decide about colours where --color does "
         "not. COLUMNS is the width of drawings where --width is not given."},
    };
    return sections;
}

std::string FormatHelp(const CommandInfo& command) {
    std::string out = Fill(command.path + ": " + command.summary, 0, 0);
    out += "\n" + Fill("Usage: " + command.Usage(), 0, 4);
    ForEachLine(command.details, [&](const std::string& line) { out += "\n" + Fill(line, 0, 0); });
    if (!command.commands.empty()) {
        out += Heading("Commands");
        for (const CommandInfo& inner : command.commands) {
            out += Entry(inner.name, inner.summary);
        }
    }
    out += Heading("Options") + Options(command);
    if (command.path == command.name) {
        for (const Section& section : CommonSections()) {
            out += Heading(section.title);
            ForEachLine(section.text,
                        [&](const std::string& line) { out += "  " + Fill(line, 2, 2); });
        }
    }
    if (!command.examples.empty()) {
        out += Heading("Examples");
        ForEachLine(command.examples, [&](const std::string& line) { out += "  " + line + "\n"; });
    }
    return out;
}

void AddHelp(CLI::App& program, Action& chosen) {
    std::string names;
    for (const std::string& name : NamesOf(Describe(program).commands)) {
        names += (names.empty() ? "" : "|") + name;
    }
    CLI::App* command = program.add_subcommand("help", "show the help of a command");
    auto words = std::make_shared<std::vector<std::string>>();
    command
        ->add_option("COMMAND", *words,
                     "The command, such as draw or formula check; the program "
                     "unless given")
        ->type_name(names);
    command->footer("corv help draw\ncorv help formula check");
    command->callback([&chosen, &program, words] {
        chosen = [&program, words] {
            const CommandInfo described = Describe(program);
            WriteOutput("", FormatHelp(Find(described, *words)));
            return kFine;
        };
    });
}

}  // namespace corv::cli
