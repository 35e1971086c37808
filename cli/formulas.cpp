#include "cli/formulas.h"

#include <algorithm>
#include <charconv>
#include <cstdio>

#include "cli/command.h"
#include "cli/options.h"
#include "cli/problems.h"
#include "corv/stimulus/time_unit.h"
#include "corv/typeinfo/type_info.h"
#include "corv/typeinfo/vhdl_type.h"
#include "corv/util/time_units.h"
#include "host/named_formula.h"
#include "host/replay.h"
#include "host/time_text.h"
#include "host/vector_source.h"

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

host::Radix RadixOf(const std::string& word) {
    return word == "bin"   ? host::Radix::Bin
           : word == "oct" ? host::Radix::Oct
           : word == "dec" ? host::Radix::Dec
                           : host::Radix::Hex;
}

unsigned UnitOf(const FormulaOptions& options) {
    return options.default_unit.value_or(host::kPicosecond);
}

// Appends the signal of a formula; false when the formula has errors.
bool LoadScalar(const FormulaOptions& options, const host::NamedFormula& named,
                const FormulaType& type, std::vector<NamedSource>& sources) {
    const unsigned unit = UnitOf(options);
    const auto problems = CheckFormula(named.formula.c_str(), unit);
    if (ReportProblems(named.name, named.formula, problems, options.colour)) {
        return false;
    }
    std::unique_ptr<host::Source> source;
    if (host::IsCounter(named.formula)) {
        source = host::MakeWholeCounter(named.formula, options.at.value_or(0));
    } else {
        auto stimulus = std::make_unique<CStimulus>(unit, host::kPicosecond);
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

// The same for a vector, with its elements where they are asked for.
bool LoadVector(const FormulaOptions& options, const host::NamedFormula& named,
                const FormulaType& type, std::vector<NamedSource>& sources) {
    const host::VectorFormula vector{named.formula,   type.shape.width,       type.shape.words,
                                     UnitOf(options), options.at.value_or(0), !type.type.empty()};
    const auto problems =
        CheckVectorFormula(named.formula.c_str(), vector.width, vector.words ? 0 : 1, vector.unit);
    if (ReportProblems(named.name, named.formula, problems, options.colour)) {
        return false;
    }
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

NamedSource LoadReplay(const FormulaOptions& options, const std::string& replay) {
    const std::size_t colon = replay.rfind(':');
    if (colon == std::string::npos || colon == 0 || colon + 1 == replay.size()) {
        throw Failure("--replay: `" + replay +
                      "` names no recording and signal; write FILE:SIGNAL");
    }
    try {
        host::Replay made = host::MakeReplay(replay.substr(0, colon), replay.substr(colon + 1),
                                             options.shift.value_or(0));
        return {std::move(made.name), std::move(made.source), made.shape, std::move(made.type)};
    } catch (const std::runtime_error& error) {
        throw Failure("--replay: " + std::string(error.what()));
    }
}

}  // namespace

void AddFormulaOptions(CLI::App& command, FormulaOptions& options) {
    command
        .add_option(
            "-f,--formula", options.formulas,
            "A formula, named f1, f2 and so on unless NAME= stands before it; of a vector of WIDTH "
            "elements behind NAME:WIDTH=, of a VHDL type behind NAME:TYPE=, such as "
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
                    "The signals of the recording to show, all unless given: names, elements "
                    "a(3), slices a(7 downto 4), * within a level and ** across; may be given many "
                    "times")
        ->type_name("GLOB")
        ->allow_extra_args(false);
}

FormulaType ReadFormulaType(const std::string& name, const std::string& text) {
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
    TypeProblem problem;
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
        throw Failure("the end " + host::TimeText(window.end) + " does not lie behind the start " +
                      host::TimeText(window.start));
    }
    return window;
}

}  // namespace corv::cli
