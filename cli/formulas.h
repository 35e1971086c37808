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

// The options of the commands that show stimuli over a stretch of time. All times are in
// picoseconds.
struct FormulaOptions {
    std::vector<std::string> formulas, replays, names;
    std::string file;  // a recording
    std::optional<std::int64_t> start, end, at, shift;
    std::optional<TimeUnit> default_unit, time_unit;
    std::optional<TimeUnit> recording_unit;  // of the recording, if not stated in it
    std::optional<host::Radix> radix;
    bool words = false;
    bool expand = false;
    host::ColourMode colour = host::ColourMode::Auto;
};
void AddFormulaOptions(CLI::App& command, FormulaOptions& options);
// Adds the options of the commands that can show a recording as well.
void AddRecordingOptions(CLI::App& command, FormulaOptions& options);
void AddRadix(CLI::App& command, FormulaOptions& options);

struct NamedSource {
    std::string name;
    std::unique_ptr<host::Source> source;
    host::Shape shape;
    std::string type;  // empty if it follows from the values
};

// How the value of a vector is written: in a drawing, as in VHDL, and for a table.
enum class BusStyle { Digits, Literal, Plain };

// Reads the formulas and the replayed signals. Their problems are written to standard error; throws
// Failure if one has errors. An expanded vector is followed by its elements.
std::vector<NamedSource> LoadSources(const FormulaOptions& options);

// Returns the names of the files that the options make the program read.
std::vector<std::string> InputsOf(const FormulaOptions& options);

host::BusFormat BusFormatOf(const FormulaOptions& options, BusStyle style);

// Returns what a signal does in a window if it is driven with what was recorded from its source
// there. Throws Failure.
host::Trace ShowDriven(const NamedSource& named, const host::Trace& recorded,
                       host::TimeWindow window, const host::BusFormat& format);

// The type that is written after a formula's name: the number of elements of a vector, or the VHDL
// type of a scalar or of an array of scalars.
struct FormulaType {
    host::Shape shape;
    std::string type;  // a type-description string; empty if only the width is given
};
// Throws Failure if the text is not such a type.
FormulaType ReadFormulaType(const std::string& name, const std::string& text);

// The formula of a vector as stimuli take it, with values such as X"A5" or 165 as characters, and
// the problems of the formula that was written.
struct VectorText {
    VectorText(const std::string& written, const FormulaType& type, TimeUnit unit);

    std::string formula;
    std::vector<Problem> problems;
};

// Returns the problems of a formula for a signal of its type.
std::vector<Problem> CheckNamedFormula(const host::NamedFormula& named, const FormulaType& type,
                                       TimeUnit unit);

// Returns the window that the user asked for; without an end in the options it ends at
// `natural_end`. Throws Failure if it is empty.
host::TimeWindow ChooseWindow(const FormulaOptions& options, std::int64_t natural_end);
// Returns the latest of the ends that the sources suggest.
std::int64_t NaturalEnd(const FormulaOptions& options, const std::vector<NamedSource>& sources);

}  // namespace corv::cli
