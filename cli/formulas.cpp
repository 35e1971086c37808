#include "cli/formulas.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>

#include "cli/command.h"
#include "cli/options.h"
#include "cli/output.h"
#include "corv/stimulus/time_unit.h"
#include "corv/util/time_units.h"
#include "host/diagnostic.h"
#include "host/driver.h"
#include "host/named_formula.h"
#include "host/time_text.h"

namespace corv::cli {
namespace {

// A stimulus takes its start in the default unit.
std::int64_t StartInUnit(std::int64_t at, unsigned unit) {
    const std::int64_t start = ConvertTime(at, host::kPicosecond, unit);
    if (ConvertTime(start, unit, host::kPicosecond) != at) {
        throw Failure("--at: " + host::TimeText(at) + " is not a whole number of " +
                      UnitNameFromID(unit) + ", the unit of --default-unit");
    }
    return start;
}

}  // namespace

void AddFormulaOptions(CLI::App& command, FormulaOptions& options) {
    command
        .add_option("-f,--formula", options.formulas,
                    "A formula, named f1, f2 and so on unless NAME= stands before it; may be "
                    "given many times")
        ->type_name("[NAME=]FORMULA")
        ->required()
        ->allow_extra_args(false);
    AddTime(command, "-s,--start", options.start, "Where the window starts; 0 unless given");
    AddTime(command, "-e,--end", options.end,
            "Where the window ends. Unless given: two periods behind the start for a formula that "
            "repeats, an eighth behind the last event for one that does not, whichever is latest");
    AddTime(command, "--at", options.at,
            "When the stimuli begin; 0 unless given. Times behind @ stay where they are, and those "
            "before it never come");
    AddTimeUnit(command, "--default-unit", options.default_unit,
                "The unit of times written without one in a formula; ps unless given");
    AddTimeUnit(command, "--time-unit", options.time_unit,
                "The unit to write times in; unless given, the largest without a fraction");
    AddColour(command, options.colour);
}

std::vector<NamedStimulus> LoadStimuli(const FormulaOptions& options) {
    const unsigned unit = options.default_unit.value_or(host::kPicosecond);
    const std::int64_t start = StartInUnit(options.at.value_or(0), unit);
    std::vector<NamedStimulus> stimuli;
    bool failed = false;
    for (const std::string& argument : options.formulas) {
        auto [name, formula] = host::SplitNamedFormula(argument, stimuli.size() + 1);
        formula = FormulaText(formula);
        failed |=
            ReportProblems(name, formula, CheckFormula(formula.c_str(), unit), options.colour);
        auto stimulus = std::make_unique<CStimulus>(unit, host::kPicosecond);
        if (!failed && !stimulus->Create(formula.c_str(), start)) {
            throw Failure("the formula of " + name + " cannot be read");
        }
        stimuli.push_back({std::move(name), std::move(stimulus)});
    }
    if (failed) {
        throw Failure("");
    }
    return stimuli;
}

host::TimeWindow ChooseWindow(const FormulaOptions& options,
                              const std::vector<NamedStimulus>& stimuli) {
    host::TimeWindow window{options.start.value_or(0), 0};
    for (const NamedStimulus& named : stimuli) {
        window.end = std::max(window.end, host::NaturalEnd(*named.stimulus, window.start));
    }
    window.end = options.end.value_or(window.end);
    if (window.end <= window.start) {
        throw Failure("the end " + host::TimeText(window.end) + " does not lie behind the start " +
                      host::TimeText(window.start));
    }
    return window;
}

std::string FormulaText(const std::string& argument) {
    if (argument != "-") {
        return argument;
    }
    static bool read = false;
    if (read) {
        throw Failure("standard input can be read for one formula only");
    }
    read = true;
    std::string text = ReadStandardInput();
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) {
        text.pop_back();
    }
    if (text.find('\0') != std::string::npos) {
        throw Failure("the formula on standard input holds a zero byte");
    }
    return text;
}

std::string DescribeProblems(const std::string& name, const std::string& formula,
                             const std::vector<FormulaProblem>& problems, bool colour) {
    std::string text;
    for (const FormulaProblem& problem : problems) {
        text += host::DescribeProblem(name, formula, problem, colour);
    }
    return text;
}

bool ReportProblems(const std::string& name, const std::string& formula,
                    const std::vector<FormulaProblem>& problems, host::ColourMode colour) {
    if (problems.empty()) {
        return false;
    }
    const std::string text =
        DescribeProblems(name, formula, problems, WithColour(colour, STDERR_FILENO));
    std::fwrite(text.data(), 1, text.size(), stderr);
    return std::any_of(problems.begin(), problems.end(), [](const FormulaProblem& problem) {
        return problem.severity == FormulaProblem::Severity::Error;
    });
}

}  // namespace corv::cli
