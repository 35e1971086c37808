#include "host/replay.h"

#include <algorithm>
#include <new>
#include <stdexcept>
#include <utility>
#include <vector>

#include "corv/stimulus/custom_stimulus.h"
#include "corv/stremo/streams.h"
#include "corv/typeinfo/type_info.h"
#include "host/recording.h"
#include "host/signal_name.h"
#include "host/signal_trace.h"
#include "host/vector_source.h"

namespace corv::host {
namespace {

// Moves a time of at least -1 later or earlier.
std::int64_t Moved(std::int64_t time, std::int64_t by) {
    return by >= 0 ? Later(time, by) : time + by;
}

// The stimulus of a recorded signal, delayed by a shift.
class ReplaySource final : public Source {
public:
    ReplaySource(std::unique_ptr<CCustomStimulus> stimulus, std::int64_t shift, std::int64_t last)
        : stimulus_(std::move(stimulus)), shift_(shift), last_(last) {}

    std::int64_t NextEvent(std::int64_t time) override {
        const std::int64_t recorded = Moved(std::max(time, kBefore), -shift_);
        const std::int64_t next = stimulus_->GetNextEventTime(std::max(recorded, kBefore));
        return next < 0 ? -1 : Moved(next, shift_);
    }

    std::optional<std::string> ValueAt(std::int64_t time) override {
        CString value;
        if (time < 0 || time < shift_ || stimulus_->GetValue(time - shift_, value) == 0) {
            return std::nullopt;
        }
        return std::string(value.View());
    }

    std::int64_t NaturalEnd(std::int64_t start) override {
        return std::max(Later(std::max<std::int64_t>(last_, 0), std::max<std::int64_t>(shift_, 0)),
                        start + 1);
    }

private:
    static constexpr std::int64_t kBefore = -1;

    std::unique_ptr<CCustomStimulus> stimulus_;
    std::int64_t shift_;
    std::int64_t last_;
};

// Makes the source of one scalar. All sources of a replay share what is read from the recording. An
// array without elements, which is not a scalar, and a signal without values in the recording have
// no events.
std::unique_ptr<Source> MakeLeaf(const Recording& recording, ISignal& leaf, std::int64_t shift) {
    auto stimulus = std::make_unique<CCustomStimulus>();
    const int handle = leaf.GetHandle();
    const KTypeInfo type{CString(leaf.GetTypeInfo())};
    const bool scalar =
        type.GetKind() != KTypeInfo::KindArray && type.GetKind() != KTypeInfo::KindRecord;
    if (scalar && handle != -1 &&
        stimulus->CreateFrom(ShareStream(recording.Reader()), handle) == 0) {
        throw std::bad_alloc();
    }
    return std::make_unique<ReplaySource>(std::move(stimulus), shift, recording.LatestTime());
}

// Selects all leaves first, so that reading the file once serves all of them.
std::vector<std::unique_ptr<Source>> MakeLeaves(const Recording& recording, ISignal& signal,
                                                std::int64_t shift) {
    const std::vector<ISignal*> leaves = LeavesOf(signal);
    std::vector<int> handles;
    for (ISignal* const leaf : leaves) {
        handles.push_back(leaf->GetHandle());
    }
    SelectStreamSignals(recording.Reader(), handles);
    std::vector<std::unique_ptr<Source>> sources;
    for (ISignal* const leaf : leaves) {
        sources.push_back(MakeLeaf(recording, *leaf, shift));
    }
    return sources;
}

NamedSignal SelectOne(const Recording& recording, const std::string& file_name,
                      const std::string& signal) {
    auto selected = SelectSignals(recording.Signals(), signal);
    if (selected.empty()) {
        throw std::runtime_error(file_name + " has no signal `" + signal + "`");
    }
    if (selected.size() > 1) {
        throw std::runtime_error("`" + signal + "` names " + std::to_string(selected.size()) +
                                 " signals of " + file_name + "; name one signal, such as `" +
                                 selected[0].name + "`");
    }
    return std::move(selected[0]);
}

}  // namespace

Replay MakeReplay(const std::string& file_name, const std::string& signal, std::int64_t shift,
                  const OpenOptions& options) {
    const Recording recording(file_name, options);
    const NamedSignal selected = SelectOne(recording, file_name, signal);
    auto sources = MakeLeaves(recording, *selected.signal, shift);
    Replay replay{selected.name, nullptr, {}, selected.signal->GetTypeInfo()};
    if (selected.signal->GetSubSignals() == nullptr) {
        replay.source = std::move(sources.at(0));
    } else {
        replay.shape = {static_cast<int>(sources.size()), true};
        replay.source = JoinSources(std::move(sources));
    }
    return replay;
}

}  // namespace corv::host
