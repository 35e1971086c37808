#include "host/selected_reader.h"

#include <algorithm>
#include <array>
#include <unordered_map>
#include <unordered_set>

#include "host/signal_trace.h"

namespace corv::host {
namespace {

std::string FullName(ISignal& signal) {
    std::array<char, 10'240> name{};
    signal.GetFullName(name.data(), name.size());
    return name.data();
}

int IndexIn(ISignalContainer& container, const ISignal* signal) {
    ISignal* member = nullptr;
    for (int i = 0; SUCCEEDED(container.GetAt(static_cast<std::uint32_t>(i), &member)); ++i) {
        if (member == signal) {
            return i;
        }
    }
    return -1;
}

// Returns whether a signal comes with another selected one anyway.
bool StandsBelow(ISignal& signal, const std::unordered_set<const ISignal*>& signals) {
    for (ISignal* at = signal.GetParent(); at != nullptr; at = at->GetParent()) {
        if (signals.count(at) != 0) {
            return true;
        }
    }
    return false;
}

}  // namespace

SelectedReader::SelectedReader(const Recording& recording, const std::vector<NamedSignal>& signals)
    : reader_(recording.Reader()) {
    std::unordered_map<const ISignal*, int> top_level;
    ISignal* signal = nullptr;
    for (std::uint32_t i = 0; SUCCEEDED(recording.Signals().GetAt(i, &signal)); ++i) {
        top_level.emplace(signal, static_cast<int>(i));
    }
    std::unordered_set<const ISignal*> wanted;
    for (const NamedSignal& named : signals) {
        wanted.insert(named.signal);
    }
    std::unordered_set<const ISignal*> taken;
    for (const NamedSignal& named : signals) {
        if (!taken.insert(named.signal).second || StandsBelow(*named.signal, wanted)) {
            continue;
        }
        Selected selected{FullName(*named.signal), {}};
        ISignal* at = named.signal;
        for (; at->GetParent() != nullptr; at = at->GetParent()) {
            selected.path.push_back(IndexIn(*at->GetParent()->GetSubSignals(), at));
        }
        selected.path.push_back(top_level.at(at));
        std::reverse(selected.path.begin(), selected.path.end());
        selected_.push_back(std::move(selected));
        for (ISignal* const leaf : LeavesOf(*named.signal)) {
            leaves_.push_back(leaf->GetHandle());
        }
    }
    std::sort(leaves_.begin(), leaves_.end());
    leaves_.erase(std::unique(leaves_.begin(), leaves_.end()), leaves_.end());
}

int SelectedReader::GetSignalHandle(int index) {
    given_ = nullptr;
    if (index < 0 || static_cast<std::size_t>(index) >= selected_.size()) {
        return -1;
    }
    given_ = &selected_[static_cast<std::size_t>(index)];
    int handle = reader_.GetSignalHandle(given_->path.front());
    for (auto step = given_->path.begin() + 1; step != given_->path.end(); ++step) {
        handle = reader_.GetSubSignalHandle(handle, *step);
    }
    return handle;
}

int SelectedReader::GetSubSignalHandle(int parent, int index) {
    given_ = nullptr;
    return reader_.GetSubSignalHandle(parent, index);
}

void SelectedReader::GetSignalInfo(int handle, bool& has_sub_signals, int& sub_signal_count,
                                   CString& name, int& mode, std::int64_t& max_time) {
    reader_.GetSignalInfo(handle, has_sub_signals, sub_signal_count, name, mode, max_time);
    if (given_ != nullptr) {
        name = given_->name.c_str();
    }
}

}  // namespace corv::host
