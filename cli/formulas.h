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
#include "host/named_formula.h"
#include "host/source.h"
#include "host/trace.h"

namespace corv::cli {

// The options of the commands that show stimuli over a stretch of time.
struct FormulaOptions {
    std::vector<std::string> formulas, replays, names;
    std::string file;  // a recording
    std::optional<std::int64_t> start, end, at, shift;
    std::optional<unsigned> default_unit, time_unit;
    std::optional<unsigned> recording_unit;  // of the recording's times, if it is not told
    std::optional<host::Radix> radix;
    bool words = false;
    bool expand = false;
    host::ColourMode colour = host::ColourMode::Auto;
};
void AddFormulaOptions(CLI::App& command, FormulaOptions& options);
// Those of the commands that show a recording besides.
void AddRecordingOptions(CLI::App& command, FormulaOptions& options);
void AddRadix(CLI::App& command, FormulaOptions& options);

struct NamedSource {
    std::string name;
    std::unique_ptr<host::Source> source;
    host::Shape shape;
    std::string type;  // empty: the values tell it
};

// How the value of a vector is written: in a drawing, as VHDL writes it, and for a table.
enum class BusStyle { Digits, Literal, Plain };

// Reads the formulas and the replayed signals. Their problems go to standard error; throws Failure
// when one has errors. Expanded vectors are followed by their elements.
std::vector<NamedSource> LoadSources(const FormulaOptions& options);

// The files that are read.
std::vector<std::string> InputsOf(const FormulaOptions& options);

host::BusFormat BusFormatOf(const FormulaOptions& options, BusStyle style);

// What a signal does in a window that is driven with what was recorded from the source there.
// Throws Failure.
host::Trace ShowDriven(const NamedSource& named, const host::Trace& recorded,
                       host::TimeWindow window, const host::BusFormat& format);

// What stands behind a formula's name: the number of elements of a vector, or a VHDL type of a
// scalar or an array of scalars. Throws Failure.
struct FormulaType {
    host::Shape shape;
    std::string type;  // a type-description string, empty when only the width was told
};
FormulaType ReadFormulaType(const std::string& name, const std::string& text);

// The formula of a vector as stimuli take it, with values such as X"A5" or 165 as characters, and
// what is wrong with it as it was written.
struct VectorText {
    VectorText(const std::string& written, const FormulaType& type, unsigned unit);

    std::string formula;
    std::vector<FormulaProblem> problems;
};

// What is wrong with a formula for a signal of its type.
std::vector<FormulaProblem> CheckNamedFormula(const host::NamedFormula& named,
                                              const FormulaType& type, unsigned unit);

// The window that the user asked for, or else one from the start to `natural_end`; throws Failure
// when it is empty.
host::TimeWindow ChooseWindow(const FormulaOptions& options, std::int64_t natural_end);
// The latest sensible end of the sources.
std::int64_t NaturalEnd(const FormulaOptions& options, const std::vector<NamedSource>& sources);

}  // namespace corv::cli
