#include "stimulus/check_custom_formula.h"

#include <algorithm>
#include <memory>

#include "corv/stremo/stream_error.h"
#include "stimulus/custom_formula.h"
#include "stimulus/recorded_name.h"
#include "stimulus/recorded_signals.h"
#include "typeinfo/wording.h"

namespace corv::stimulus {
namespace {

// File names may contain control characters, which must not reach a terminal.
std::string Printable(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
    return text;
}

// Returns "; did you mean `a`, `b` or `c`?", or what the recording has instead.
std::string Suggest(stremo::IEventsStreamRead& reader, std::string_view name) {
    const SuggestedSignals suggested = SuggestSignals(reader, name);
    std::string list;
    for (std::size_t i = 0; i < suggested.names.size(); ++i) {
        const bool last = i + 1 == suggested.names.size();
        list += (i == 0 ? "`" : last ? " or `" : ", `") + suggested.names[i] + "`";
    }
    return list.empty()     ? "; it has no signals"
           : suggested.like ? "; did you mean " + list + "?"
                            : "; one that it has is " + list;
}

// Checks that a formula for one stimulus names a signal without members, and one for a vector a
// signal with members.
std::optional<CustomProblem> CheckShape(ISignal& signal, std::string_view place, bool alone) {
    ISignalContainer* const members = signal.GetSubSignals();
    if (alone == (members == nullptr)) {
        return std::nullopt;
    }
    if (!alone) {
        return CustomProblem{place, typeinfo::Quote(place) +
                                        " is a single signal; the elements of a vector take "
                                        "theirs from a recorded vector or record"};
    }
    ISignal* member = nullptr;
    const char* const name = SUCCEEDED(members->GetAt(0, &member)) ? member->GetName() : nullptr;
    return CustomProblem{
        place,
        typeinfo::Quote(place) +
            " has members and no value of its own, so nothing is replayed; "
            "name one of them" +
            (name != nullptr ? ", such as `" + std::string(place) + ShownRecordedName(name) + "`"
                             : ""),
        true};
}

}  // namespace

std::optional<CustomProblem> CheckCustomFormula(std::string_view formula, bool alone) {
    const auto places = FindCustomParts(formula);
    const auto parts = ReadCustomFormula(formula);
    if (!parts) {
        return CustomProblem{formula,
                             "a custom formula names a recording and a signal in it, such as "
                             "`/custom run.evt, top.clk`"};
    }
    const std::unique_ptr<stremo::IEventsStreamRead> reader(
        stremo::CreateStreamRead(parts->file.c_str()));
    if (!reader) {
        return CustomProblem{places->file, Printable(LastStreamError())};
    }
    frame::ComPtr<ISignalContainer> signals;
    ISignal* const signal = FindRecordedSignal(*reader, parts->signal.c_str(), signals);
    if (signal == nullptr) {
        return CustomProblem{places->signal,
                             "the recording " + typeinfo::Quote(places->file) + " has no signal " +
                                 typeinfo::Quote(places->signal) + Suggest(*reader, parts->signal)};
    }
    return CheckShape(*signal, places->signal, alone);
}

}  // namespace corv::stimulus
