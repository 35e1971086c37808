// Turns the options -f and --replay into sources that can be recorded, and the options -s and -e
// into a window. It is shared by draw, events, run and value.

#include "cli/formulas.h"

#include <algorithm>
#include <charconv>
#include <cstdio>

#include "cli/command.h"
#include "cli/options.h"
#include "cli/problems.h"
#include "cli/recordings.h"
#include "corv/stimulus/time_unit.h"
#include "corv/typeinfo/type_info.h"
#include "corv/typeinfo/vhdl_type.h"
#include "corv/util/time_text.h"
#include "corv/util/time_units.h"
#include "host/bus_formula.h"
#include "host/named_formula.h"
#include "host/replay.h"
#include "host/value_type.h"
#include "host/vector_source.h"

namespace corv::cli {
namespace {

// A stimulus takes its start in the default unit, so a start between two of its units cannot be
// had.
std::int64_t StartInUnit(std::int64_t at, unsigned unit) {
    const std::int64_t start = ConvertTime(at, kPicosecond, unit);
    if (ConvertTime(start, unit, kPicosecond) != at) {
        throw Failure("--at: " + FormatTime(at) + " is not a whole number of " +
                      UnitNameFromID(unit) + ", the unit of --default-unit");
    }
    return start;
}

host::Radix RadixOf(const std::string& word) {
    return word == "bin"   ? host::Radix::Bin
           : word == "oct" ? host::Radix::Oct
           : word == "dec" ? host::Radix::Dec
                           : host::Radix::Hex;
}

TimeUnit UnitOf(const FormulaOptions& options) {
    return options.default_unit.value_or(TimeUnit::Picosecond);
}

// Appends the signal of a formula; returns false if the formula has errors. A counter does not
// become a CStimulus like the other formulas, since its values come from counting and not from a
// list.
bool LoadScalar(const FormulaOptions& options, const host::NamedFormula& named,
                const FormulaType& type, std::vector<NamedSource>& sources) {
    const auto unit = static_cast<unsigned>(UnitOf(options));
    const auto problems = CheckNamedFormula(named, type, UnitOf(options));
    if (ReportProblems(named.name, named.formula, problems, options.colour)) {
        return false;
    }
    std::unique_ptr<host::Source> source;
    if (host::IsCounter(named.formula)) {
        source = host::MakeWholeCounter(named.formula, options.at.value_or(0));
    } else {
        auto stimulus = std::make_unique<CStimulus>(unit, kPicosecond);
        if (stimulus->Create(named.formula.c_str(), StartInUnit(options.at.value_or(0), unit))) {
            source = std::make_unique<host::StimulusSource>(std::move(stimulus));
        }
    }
    if (!source) {
        throw Failure("the formula of " + named.name + " cannot be read");
    }
    sources.push_back({named.name, std::move(source), type.shape, type.type});
    return true;
}

// Does the same for a vector, and appends its elements as well if the user asked for them.
bool LoadVector(const FormulaOptions& options, const host::NamedFormula& named,
                const FormulaType& type, std::vector<NamedSource>& sources) {
    const VectorText text(named.formula, type, UnitOf(options));
    if (ReportProblems(named.name, named.formula, text.problems, options.colour)) {
        return false;
    }
    const host::VectorFormula vector{text.formula,    type.shape.width,       type.shape.words,
                                     UnitOf(options), options.at.value_or(0), !type.type.empty()};
    auto bus = host::MakeVector(vector);
    if (!bus) {
        throw Failure("the formula of " + named.name + " cannot be cut into elements");
    }
    sources.push_back({named.name, std::move(bus), type.shape, type.type});
    if (options.expand) {
        int index = vector.width;
        for (auto& element : host::MakeElements(vector)) {
            sources.push_back(
                {named.name + "(" + std::to_string(--index) + ")", std::move(element), {}, ""});
        }
    }
    return true;
}

// Returns what went wrong, with the nearest names if the recording has no such signal. The
// recording is opened again for them: after a failure there is time for it.
std::string WhyNoReplay(const std::string& file, const std::string& signal,
                        const std::string& error) {
    try {
        const host::Recording recording(file);
        return host::SelectSignals(recording.Signals(), signal).empty()
                   ? file + ": " + UnknownSignal(recording, signal)
                   : error;
    } catch (const std::runtime_error&) {
        return error;
    }
}

NamedSource LoadReplay(const FormulaOptions& options, const std::string& replay) {
    // a slice, a[7:4], contains a colon of its own
    const bool selects = replay.ends_with(']') || replay.ends_with(')');
    const std::size_t colon =
        replay.rfind(':', selects ? replay.find_last_of("[(") : std::string::npos);
    if (colon == std::string::npos || colon == 0 || colon + 1 == replay.size()) {
        throw Failure("--replay: `" + replay +
                      "` names no recording and signal; write FILE:SIGNAL");
    }
    const std::string file = replay.substr(0, colon);
    const std::string signal = replay.substr(colon + 1);
    try {
        host::Replay made = host::MakeReplay(file, signal, options.shift.value_or(0));
        return {std::move(made.name), std::move(made.source), made.shape, std::move(made.type)};
    } catch (const std::runtime_error& error) {
        throw Failure("--replay: " + WhyNoReplay(file, signal, error.what()));
    }
}

}  // namespace

void AddFormulaOptions(CLI::App& command, FormulaOptions& options) {
    command
        .add_option(
            "-f,--formula", options.formulas,
            "A formula, named f1, f2 and so on unless NAME= precedes it; of a vector of WIDTH "
            "elements after NAME:WIDTH=, of a VHDL type after NAME:TYPE=, such as "
            "v:std_logic_vector(7 downto 0)=; may be given many times")
        ->type_name("[NAME[:TYPE]=]FORMULA")
        ->allow_extra_args(false);
    command
        .add_option("--replay", options.replays,
                    "A recorded signal as a stimulus; may be given many times")
        ->type_name("FILE:SIGNAL")
        ->allow_extra_args(false);
    AddTime(command, "--shift", options.shift,
            "How much later than in their recordings replayed signals change; 0 unless given");
    AddTime(command, "-s,--start", options.start, "Where the window starts; 0 unless given");
    AddTime(
        command, "-e,--end", options.end,
        "Where the window ends. Unless given: the recording's last event, two periods after the "
        "start for a formula that repeats, an eighth after the last event for one that does "
        "not, whichever is latest");
    AddTime(command, "--at", options.at,
            "When the stimuli begin; 0 unless given. Absolute times (@) are not shifted, and those "
            "before it are dropped");
    AddTimeUnit(command, "--default-unit", options.default_unit,
                "The unit of times written without one in a formula; ps unless given");
    AddTimeUnit(command, "--time-unit", options.time_unit,
                "The unit to write times in; unless given, the largest without a fraction");
    AddRadix(command, options);
    command.add_flag("--words", options.words,
                     "Cut values of vectors into words, (red,green), instead of characters");
    command.add_flag(
        "--expand", options.expand,
        "Show the elements of vectors and arrays and the fields of records below them");
    AddColour(command, options.colour);
}

void AddRadix(CLI::App& command, FormulaOptions& options) {
    AddChoice(command, "-r,--radix", "bin|oct|dec|hex",
              "How vectors are written, those in records and arrays too; unless given hex, bin up "
              "to 4 elements, dec for signed",
              [&options](const std::string& word) { options.radix = RadixOf(word); });
}

void AddRecordingOptions(CLI::App& command, FormulaOptions& options) {
    command.add_option("FILE", options.file, "A recording to show instead of formulas or besides");
    command
        .add_option("-n,--name", options.names,
                    "The signals of the recording to show, all unless given: names, fields rec.a "
                    "or rec.*, elements a(3), slices a(7 downto 4), and patterns: * and ? stay "
                    "within a level, ** goes across, [a-f] is one of these characters and [!a-f] "
                    "another one; may be given many times")
        ->type_name("GLOB")
        ->allow_extra_args(false);
}

VectorText::VectorText(const std::string& written, const FormulaType& type, TimeUnit unit)
    : formula(written) {
    const int width = type.shape.width;
    if (type.shape.words) {
        problems = CheckVectorFormula(written.c_str(), width, 0, unit);
        return;
    }
    host::BusType bus{width, "", host::BusType::Sign::Open};
    if (!type.type.empty()) {
        bus = host::BusTypeOf(KTypeInfo(CString(type.type)));
    }
    const host::BusFormula values(written, bus);
    formula = values.Text();
    problems = values.Check(unit);
}

std::vector<Problem> CheckNamedFormula(const host::NamedFormula& named, const FormulaType& type,
                                       TimeUnit unit) {
    if (type.shape.width > 0) {
        return VectorText(named.formula, type, unit).problems;
    }
    auto problems = CheckFormula(named.formula.c_str(), unit);
    if (type.type.empty() && problems.empty()) {
        problems = host::StrayLetters(named.formula);
    }
    return problems;
}

FormulaType ReadFormulaType(const std::string& name, const std::string& text) {
    // A vector becomes one source per element; the limit keeps a mistyped width from filling the
    // memory.
    constexpr int kMaxWidth = 65536;
    if (text.empty()) {
        return {};
    }
    int width = 0;
    const auto end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, width);
    if (read.ptr == end) {
        if (read.ec != std::errc() || width < 1 || width > kMaxWidth) {
            throw Failure("the width of " + name + " has to be from 1 to " +
                          std::to_string(kMaxWidth));
        }
        return {{width, false}, ""};
    }
    CString description;
    Problem problem;
    if (!TypeFromVhdl(text.c_str(), description, &problem)) {
        throw Failure("the type of " + name + ", column " + std::to_string(problem.position + 1) +
                      ": " + problem.sentence);
    }
    const KTypeInfo type(description);
    const auto elements = type.GetNbOfElements();
    if (!type.IsSimple() || (!type.IsScalar() && elements > kMaxWidth)) {
        throw Failure("the type of " + name +
                      ": a formula drives a scalar or an array of up to 65536 scalars");
    }
    FormulaType result{{}, std::string(description.View())};
    if (!type.IsScalar()) {
        const KTypeInfo& element = type.GetArrayElementKTypeInfo();
        result.shape = {static_cast<int>(elements), element.GetKind() != KTypeInfo::KindEnum ||
                                                        element.GetValue(0).GetLength() != 1};
    }
    return result;
}

std::vector<NamedSource> LoadSources(const FormulaOptions& options) {
    std::vector<NamedSource> sources;
    bool failed = false;
    std::size_t number = 0;
    for (const std::string& argument : options.formulas) {
        auto named = host::SplitNamedFormula(argument, ++number);
        named.formula = TextOperand(named.formula, "formula");
        FormulaType type = ReadFormulaType(named.name, named.type);
        type.shape.words |= options.words && type.shape.width > 0;
        failed |= !(type.shape.width == 0 ? LoadScalar(options, named, type, sources)
                                          : LoadVector(options, named, type, sources));
    }
    for (const std::string& replay : options.replays) {
        sources.push_back(LoadReplay(options, replay));
    }
    if (failed) {
        throw Failure("");
    }
    return sources;
}

namespace {

// Returns FILE of "/custom FILE, SIGNAL"; empty for any other formula. A file's name may contain
// commas, so the last comma is the one that ends it.
std::string CustomFile(const std::string& formula) {
    constexpr std::string_view kWord = "/custom";
    CString lower(formula);
    lower.MakeLower();
    const int at = lower.Find(kWord.data());
    const std::size_t comma = formula.rfind(',');
    const std::size_t begin =
        at < 0 ? std::string::npos
               : formula.find_first_not_of(" \t", static_cast<std::size_t>(at) + kWord.size());
    if (comma == std::string::npos || begin == std::string::npos || begin >= comma) {
        return {};
    }
    const std::size_t last = formula.find_last_not_of(" \t", comma - 1);
    return formula.substr(begin, last + 1 - begin);
}

}  // namespace

std::vector<std::string> InputsOf(const FormulaOptions& options) {
    std::vector<std::string> inputs;
    for (const std::string& formula : options.formulas) {
        if (std::string file = CustomFile(formula); !file.empty()) {
            inputs.push_back(std::move(file));
        }
    }
    if (!options.file.empty()) {
        inputs.push_back(options.file);
    }
    for (const std::string& replay : options.replays) {
        inputs.push_back(replay.substr(0, replay.rfind(':')));
    }
    return inputs;
}

host::Trace ShowDriven(const NamedSource& named, const host::Trace& recorded,
                       host::TimeWindow window, const host::BusFormat& format) {
    try {
        const host::DrivenSignal driven(recorded, window.start, named.shape, named.type);
        host::Trace trace = driven.Read(window, format);
        trace.crowded = recorded.crowded;
        trace.truncated = recorded.truncated;
        trace.name = named.name;
        return trace;
    } catch (const std::runtime_error& error) {
        throw Failure(named.name + ": " + error.what());
    }
}

host::BusFormat BusFormatOf(const FormulaOptions& options, BusStyle style) {
    return [radix = options.radix, style](std::string_view characters, host::BusKind kind) {
        const host::Radix usual = kind.is_signed && kind.fraction == 0 ? host::Radix::Dec
                                  : characters.size() > 4              ? host::Radix::Hex
                                                                       : host::Radix::Bin;
        const host::Radix used = radix.value_or(usual);
        return style == BusStyle::Digits    ? host::BusDigits(characters, used, kind)
               : style == BusStyle::Literal ? host::BusLiteral(characters, used, kind)
                                            : host::BusPlain(characters, used, kind);
    };
}

std::int64_t NaturalEnd(const FormulaOptions& options, const std::vector<NamedSource>& sources) {
    std::int64_t end = 0;
    for (const NamedSource& named : sources) {
        end = std::max(end, named.source->NaturalEnd(options.start.value_or(0)));
    }
    return end;
}

host::TimeWindow ChooseWindow(const FormulaOptions& options, std::int64_t natural_end) {
    const host::TimeWindow window{options.start.value_or(0), options.end.value_or(natural_end)};
    if (window.end <= window.start) {
        throw Failure("the end " + FormatTime(window.end) + " is not after the start " +
                      FormatTime(window.start));
    }
    return window;
}

}  // namespace corv::cli
