#include "host/replay.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <utility>
#include <vector>

#include "corv/stremo/stream_details.h"
#include "corv/stremo/stream_registry.h"
#include "host/recording.h"
#include "host/signal_name.h"
#include "host/signal_trace.h"
#include "host/vector_source.h"

namespace corv::host {
namespace {

// A time of at least -1, later or earlier.
std::int64_t Moved(std::int64_t time, std::int64_t by) {
    return by >= 0 ? Later(time, by) : time + by;
}

// The stimulus of a recorded signal, later by a shift.
class ReplaySource final : public Source {
public:
    ReplaySource(std::unique_ptr<CStimulus> stimulus, std::int64_t shift, std::int64_t last)
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

    std::unique_ptr<CStimulus> stimulus_;
    std::int64_t shift_;
    std::int64_t last_;
};

// The stimuli of all elements read the one recording, which is open until the end.
std::string Register(const std::shared_ptr<Recording>& recording) {
    static int number = 0;
    const std::string name = "corv:replay:" + std::to_string(++number);
    stremo::RegisterStream(name.c_str(), [recording] { return ShareStream(recording->Reader()); });
    return name;
}

std::string NameOf(ISignal& signal) {
    std::array<char, 4096> name{};
    signal.GetFullName(name.data(), name.size());
    return name.data();
}

}  // namespace

Replay MakeReplay(const std::string& file_name, const std::string& signal, std::int64_t shift,
                  const OpenOptions& options) {
    const auto recording = std::make_shared<Recording>(file_name, options);
    const auto selected = SelectSignals(recording->Signals(), signal);
    if (selected.size() != 1 || selected[0].slice) {
        throw std::runtime_error(file_name + " has no signal `" + signal + "`");
    }
    ISignal& recorded = *selected[0].signal;
    const std::vector<ISignal*> leaves = LeavesOf(recorded);
    std::vector<int> handles;
    for (ISignal* const leaf : leaves) {
        handles.push_back(leaf->GetHandle());
    }
    SelectStreamSignals(recording->Reader(), handles.data(), static_cast<int>(handles.size()));
    const std::string stream = Register(recording);
    std::vector<std::unique_ptr<Source>> sources;
    for (ISignal* const leaf : leaves) {
        auto stimulus = std::make_unique<CStimulus>();
        const std::string formula = "/custom " + stream + ", " + NameOf(*leaf);
        if (stimulus->Create(formula.c_str(), 0) == 0) {
            throw std::runtime_error(file_name + ": the signal `" + NameOf(*leaf) +
                                     "` can't be replayed");
        }
        sources.push_back(
            std::make_unique<ReplaySource>(std::move(stimulus), shift, recording->LatestTime()));
    }
    Replay replay{selected[0].name, nullptr, {}, recorded.GetTypeInfo()};
    if (recorded.GetSubSignals() == nullptr) {
        replay.source = std::move(sources.at(0));
    } else {
        replay.shape = {static_cast<int>(sources.size()), true};
        replay.source = JoinSources(std::move(sources));
    }
    return replay;
}

}  // namespace corv::host
