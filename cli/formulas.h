#pragma once

#include <CLI/CLI.hpp>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "corv/stimulus/check_formula.h"
#include "host/bus_text.h"
#include "host/colour.h"
#include "host/driven_signal.h"
#include "host/source.h"
#include "host/trace.h"

namespace corv::cli {

// The options of the commands that show stimuli over a stretch of time.
struct FormulaOptions {
    std::vector<std::string> formulas;
    std::optional<std::int64_t> start, end, at;
    std::optional<unsigned> default_unit, time_unit;
    std::optional<host::Radix> radix;
    bool words = false;
    bool expand = false;
    host::ColourMode colour = host::ColourMode::Auto;
};
void AddFormulaOptions(CLI::App& command, FormulaOptions& options);

struct NamedSource {
    std::string name;
    std::unique_ptr<host::Source> source;
    host::Shape shape;
};

// How the value of a vector is written: in a drawing, and as VHDL writes it.
enum class BusStyle { Digits, Literal };

// Reads the formulas. Their problems go to standard error; throws Failure when one has errors.
// Expanded vectors are followed by their elements.
std::vector<NamedSource> LoadSources(const FormulaOptions& options);

host::BusFormat BusFormatOf(const FormulaOptions& options, BusStyle style);

// What a signal does in a window that is driven with what was recorded from the source there.
// Throws Failure.
host::Trace ShowDriven(const NamedSource& named, const host::Trace& recorded,
                       host::TimeWindow window, const host::BusFormat& format);

// The number of elements of a vector from its text; throws Failure.
int VectorWidth(const std::string& name, const std::string& text);

// The window that the user asked for, or a sensible one; throws Failure when it is empty.
host::TimeWindow ChooseWindow(const FormulaOptions& options,
                              const std::vector<NamedSource>& sources);

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
