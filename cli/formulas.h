#pragma once

#include <CLI/CLI.hpp>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "corv/stimulus/check_formula.h"
#include "corv/stimulus/stimulus.h"
#include "host/colour.h"
#include "host/trace.h"

namespace corv::cli {

// The options of the commands that show stimuli over a stretch of time.
struct FormulaOptions {
    std::vector<std::string> formulas;
    std::optional<std::int64_t> start, end, at;
    std::optional<unsigned> default_unit, time_unit;
    host::ColourMode colour = host::ColourMode::Auto;
};
void AddFormulaOptions(CLI::App& command, FormulaOptions& options);

struct NamedStimulus {
    std::string name;
    std::unique_ptr<CStimulus> stimulus;
};

// Reads the formulas. Their problems go to standard error; throws Failure when one has errors.
std::vector<NamedStimulus> LoadStimuli(const FormulaOptions& options);

// The window that the user asked for, or a sensible one; throws Failure when it is empty.
host::TimeWindow ChooseWindow(const FormulaOptions& options,
                              const std::vector<NamedStimulus>& stimuli);

// A formula's text: the argument, or standard input for "-", without line ends behind it. Standard
// input can be read once. Throws Failure, also for a zero byte: it would end the text early.
std::string FormulaText(const std::string& argument);

// The problems as text; the name stands before each place.
std::string DescribeProblems(const std::string& name, const std::string& formula,
                             const std::vector<FormulaProblem>& problems, bool colour);

// Writes the problems to standard error; true when there is an error among them.
bool ReportProblems(const std::string& name, const std::string& formula,
                    const std::vector<FormulaProblem>& problems, host::ColourMode colour);

}  // namespace corv::cli
