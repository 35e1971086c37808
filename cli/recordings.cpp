#include "cli/recordings.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>

#include "cli/command.h"
#include "cli/output.h"
#include "cli/progress.h"
#include "corv/stremo/streams.h"
#include "corv/typeinfo/type_info.h"
#include "host/driver.h"
#include "host/fit_text.h"

namespace corv::cli {
namespace {

template <class Work>
auto OrFailure(Work work) {
    try {
        return work();
    } catch (const std::runtime_error& error) {
        throw Failure(error.what());
    }
}

// A recording may be read through several times; each time starts with a new estimate.
void ShowProgressOf(const std::string& work) {
    SetStreamProgress([work, progress = std::shared_ptr<Progress>()](std::uint64_t done,
                                                                     std::uint64_t all) mutable {
        progress = progress ? progress : std::make_shared<Progress>(work);
        progress->Tell(static_cast<double>(done), static_cast<double>(all), true);
        if (done >= all) {
            progress = nullptr;
        }
    });
}

bool IsVector(ISignal& signal) {
    const KTypeInfo type{CString(signal.GetTypeInfo())};
    return type.GetKind() == KTypeInfo::KindArray && type.IsSimple();
}

// Adds a signal and its members. A vector inside another signal is not taken apart: a memory would
// become a line per bit.
void AddExpanded(host::NamedSignal signal, bool outermost, std::vector<host::NamedSignal>& all) {
    ISignal& whole = *signal.signal;
    const std::string name = signal.name;
    all.push_back(std::move(signal));
    ISignalContainer* const members = whole.GetSubSignals();
    if (members == nullptr || (!outermost && IsVector(whole))) {
        return;
    }
    ISignal* member = nullptr;
    for (std::uint32_t i = 0; SUCCEEDED(members->GetAt(i, &member)); ++i) {
        const std::string part = host::ShownName(member->GetName());
        AddExpanded({name + (part.starts_with('(') ? "" : ".") + part, member, {}}, false, all);
    }
}

}  // namespace

std::unique_ptr<host::Recording> OpenRecording(const std::string& file_name,
                                               std::optional<TimeUnit> time_unit) {
    ShowProgressOf("reading " + file_name);
    host::OpenOptions options{time_unit,
                              [&, progress = std::make_shared<Progress>("unpacking " + file_name)](
                                  double part) { progress->Tell(part, 1); }};
    try {
        return std::make_unique<host::Recording>(file_name, options);
    } catch (const std::runtime_error& error) {
        const bool formula = file_name.find(' ') != std::string::npos &&
                             !std::filesystem::exists(std::filesystem::path(file_name));
        throw Failure(error.what() + std::string(formula ? "; a formula goes after -f" : ""));
    }
}

Shown::Shown(const FormulaOptions& options, BusStyle listed)
    : options_(options), listed_(listed), sources_(LoadSources(options)) {
    if (!options.file.empty()) {
        recording_ = OpenRecording(options.file, options.recording_unit);
        for (host::NamedSignal& named : SelectNamed(*recording_, options.names)) {
            if (options.expand) {
                AddExpanded(std::move(named), true, selected_);
            } else {
                selected_.push_back(std::move(named));
            }
        }
    }
    if (selected_.empty() && sources_.empty()) {
        throw Failure(recording_ ? options.file + " has no signals"
                                 : "nothing to show; name a recording or give a formula with -f");
    }
}

std::vector<std::string> Shown::Names() const {
    std::vector<std::string> names;
    for (const host::NamedSignal& signal : selected_) {
        names.push_back(signal.name);
    }
    for (const NamedSource& named : sources_) {
        names.push_back(named.name);
    }
    return names;
}

host::TimeWindow Shown::Window() const {
    const std::int64_t start = options_.start.value_or(0);
    std::int64_t end = NaturalEnd(options_, sources_);
    if (recording_) {
        end = std::max({end, recording_->LatestTime(), start + 1});
    }
    return ChooseWindow(options_, end);
}

void Shown::TellNotes() const {
    auto notes = notes_told_ ? std::vector<std::string>() : recording_->Notes();
    notes_told_ = true;
    // an assumption is worth a note in `corv info`, not in every drawing
    std::erase_if(notes, [](const std::string& note) { return note.ends_with(" assumed"); });
    if (!notes.empty()) {
        const std::size_t more = notes.size() - 1;
        WriteMessage(
            "note", options_.file + ": " + notes.front() +
                        (more == 0 ? "" : "; `corv info` lists " + std::to_string(more) + " more"));
    }
}

std::optional<std::int64_t> Shown::RecordingEnd() const {
    const std::int64_t end = selected_.empty() ? -1 : recording_->Signals().GetMaxTime();
    return end < 0 ? std::nullopt : std::optional(end);
}

std::vector<ISignal*> Shown::Signals() const {
    std::vector<ISignal*> signals;
    for (const host::NamedSignal& named : selected_) {
        signals.push_back(named.signal);
    }
    return signals;
}

std::vector<host::Trace> Shown::Recorded(host::TimeWindow window, BusStyle style,
                                         std::size_t most) const {
    std::vector<host::Trace> traces;
    if (selected_.empty()) {
        return traces;
    }
    TellNotes();
    const auto end = RecordingEnd();
    const host::BusFormat format = BusFormatOf(options_, style);
    for (const host::NamedSignal& named : selected_) {
        traces.push_back(host::ReadTrace(*named.signal, window, format, most));
        traces.back().name = named.name;
        traces.back().known_until = end;
    }
    return traces;
}

std::vector<host::Trace> Shown::Events(host::TimeWindow window, std::size_t max) const {
    if (!selected_.empty()) {
        OrFailure([&] { return recording_->Load(Signals(), window, max); });
    }
    std::vector<host::Trace> traces = Recorded(window, listed_, max);
    const host::BusFormat format = BusFormatOf(options_, listed_);
    for (const NamedSource& named : sources_) {
        const host::Trace recorded = host::RecordEvents(*named.source, window, max);
        traces.push_back(ShowDriven(named, recorded, window, format));
    }
    return traces;
}

std::vector<host::Trace> Shown::ForGrid(const host::TimeGrid& grid) const {
    const host::TimeWindow window = grid.Window();
    if (!selected_.empty()) {
        OrFailure([&] { return recording_->LoadForGrid(Signals(), grid); });
    }
    std::vector<host::Trace> traces = Recorded(window, BusStyle::Digits, host::kAllChanges);
    const host::BusFormat format = BusFormatOf(options_, BusStyle::Digits);
    for (const NamedSource& named : sources_) {
        const host::Trace recorded = host::RecordForGrid(*named.source, grid);
        traces.push_back(ShowDriven(named, recorded, window, format));
    }
    return traces;
}

}  // namespace corv::cli
