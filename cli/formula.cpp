#include <unistd.h>

#include <memory>

#include "cli/command.h"
#include "cli/formulas.h"
#include "cli/json.h"
#include "cli/options.h"
#include "cli/output.h"
#include "cli/problems.h"
#include "corv/stimulus/check_formula.h"
#include "corv/stimulus/formula_parser.h"
#include "corv/stimulus/stimulus.h"
#include "host/named_formula.h"

namespace corv::cli {
namespace {

constexpr const char* kName = "formula";  // in messages

struct TextOptions {
    std::string text;
    std::optional<TimeUnit> default_unit;
    host::ColourMode colour = host::ColourMode::Auto;
    std::optional<int> width;
    bool words = false;
    bool json = false;
    bool quiet = false;

    int SplitMode() const { return words ? 0 : 1; }
    TimeUnit Unit() const { return default_unit.value_or(TimeUnit::Picosecond); }
};

// A formula with what may precede it, as -f takes it.
struct Operand {
    explicit Operand(const TextOptions& options)
        : text(TextOperand(options.text, kName)), named(host::SplitNamedFormula(text, 1)) {}

    std::string Prefix() const { return text.substr(0, text.size() - named.formula.size()); }

    // Returns the problems with their places in the whole text.
    std::vector<Problem> Check(TimeUnit unit) const {
        auto problems = CheckNamedFormula(named, ReadFormulaType(named.name, named.type), unit);
        for (Problem& problem : problems) {
            problem.position += Prefix().size();
        }
        return problems;
    }

    std::string text;
    host::NamedFormula named;
};

int RunNormal(const TextOptions& options) {
    const Operand operand(options);
    const std::string& formula = operand.named.formula;
    if (ReportProblems(kName, operand.text, operand.Check(options.Unit()), options.colour)) {
        return kFailed;
    }
    CStimulus stimulus(static_cast<unsigned>(options.Unit()), kPicosecond);
    if (!stimulus.Create(formula.c_str(), 0)) {
        throw Failure("the formula cannot be read");
    }
    CString normal;
    stimulus.GenerateFormula(normal);
    const std::string text = operand.Prefix() + std::string(normal.View());
    WriteOutput("", options.json ? JsonLine({{"schema", 1}, {"formula", text}}) : text + "\n");
    return kFine;
}

int RunCheck(const TextOptions& options) {
    const Operand operand(options);
    const auto problems = operand.Check(options.Unit());
    if (options.json) {
        Json document = {{"schema", 1}};
        AppendProblems(document, operand.text, problems);
        WriteOutput("", JsonLine(document));
    } else if (!options.quiet) {
        const bool colour = WithColour(options.colour, STDOUT_FILENO);
        WriteOutput("", DescribeProblems(kName, operand.text, problems, colour));
    }
    return problems.empty() ? kFine : kFound;
}

int RunSplit(const TextOptions& options) {
    const std::string formula = TextOperand(options.text, kName);
    const VectorText vector(formula, {{*options.width, options.words}, ""}, TimeUnit::Picosecond);
    if (ReportProblems(kName, formula, vector.problems, options.colour)) {
        return kFailed;
    }
    CStringArray list;
    if (!CFormulaParser().Run(vector.formula.c_str(), list, *options.width, options.SplitMode())) {
        throw Failure("the formula cannot be cut into elements");
    }
    std::string lines;
    Json formulas = Json::array();
    for (int i = 0; i < list.GetSize(); ++i) {
        lines += std::string(list[i].View()) + "\n";
        formulas.push_back(std::string(list[i].View()));
    }
    WriteOutput(
        "", options.json ? JsonLine({{"schema", 1}, {"formulas", std::move(formulas)}}) : lines);
    return kFine;
}

CLI::App* AddTextCommand(CLI::App& formula, const std::string& name, const std::string& summary,
                         TextOptions& options, bool with_unit = true) {
    CLI::App* command = formula.add_subcommand(name, summary);
    AddTextOperand(*command, options.text, "The formula, or - for standard input");
    if (with_unit) {
        AddTimeUnit(*command, "--default-unit", options.default_unit,
                    "The unit of times written without one; ps unless given");
    }
    AddColour(*command, options.colour);
    command->add_flag("--json", options.json, "Write JSON");
    return command;
}

}  // namespace

void AddFormula(CLI::App& program, Action& chosen) {
    CLI::App* formula = program.add_subcommand("formula", "check formulas and bring them to form");
    formula->footer("corv formula check '0 0, 1 10ns'\ncorv formula normal '0 0, 1 1.5ns -r 3ns'");

    auto normal = std::make_shared<TextOptions>();
    CLI::App* command = AddTextCommand(
        *formula, "normal",
        "write a formula in its normal form\n"
        "In the normal form the times are whole picoseconds and the compact notation is unrolled.",
        *normal);
    command->footer("corv formula normal '0 0, 1 1.5ns -r 3ns'");
    command->callback([&chosen, normal] { chosen = [normal] { return RunNormal(*normal); }; });

    auto check = std::make_shared<TextOptions>();
    command = AddTextCommand(*formula, "check",
                             "tell what is wrong with a formula\n"
                             "Writes every problem with its place. As after -f, NAME= may stand in "
                             "front, or NAME:TYPE= for the formula of a vector or of a VHDL type. "
                             "A text that begins with - goes after --.",
                             *check);
    command->add_flag("-q,--quiet", check->quiet, "Write nothing, only give the exit status");
    command->footer(
        "corv formula check '0 0, 1 10ns'\n"
        "corv formula check 'bus:8=X\"A5\" 0, 255 10ns'\n"
        "corv formula check --json - < formula.txt");
    command->callback([&chosen, check] { chosen = [check] { return RunCheck(*check); }; });

    auto split = std::make_shared<TextOptions>();
    command = AddTextCommand(
        *formula, "split",
        "cut the formula of a vector into one per element\n"
        "Writes a formula a line, that of the most significant element first. A counter's elements "
        "refer to the counter; the references hold within one process.",
        *split, false);
    AddNumber(*command, "-w,--width", 1, 65536, split->width, "The number of elements");
    command->get_option("--width")->required();
    command->add_flag("--words", split->words,
                      "Cut values into words, (red,green), instead of characters");
    command->footer(
        "corv formula split -w 4 '\"01XZ\" 0, 16#F 10ns'\n"
        "corv formula split -w 2 --words '(red,green) 0, (blue,red) 5ns'");
    command->callback([&chosen, split] { chosen = [split] { return RunSplit(*split); }; });
}

}  // namespace corv::cli
