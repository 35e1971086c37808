#include "host/source_reader.h"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace corv::host {

SourceReader::SourceReader(const std::vector<SourceSignal>& signals, TimeWindow window)
    : window_(window) {
    for (const SourceSignal& signal : signals) {
        Top top{signal.source, nullptr, static_cast<int>(signals_.size()), {}, {}};
        top.driven = std::make_unique<DrivenSignal>(signal.elements, signal.shape, signal.type);
        if (top.driven->HasOwnTexts()) {
            throw std::runtime_error("the values of " + signal.name +
                                     " are of no type by themselves; write one behind the name, "
                                     "such as " +
                                     signal.name + ":integer=");
        }
        top.driven->Signal().SetName(signal.name.c_str());
        Number(top.driven->Signal());
        for (ISignal* const leaf : LeavesOf(top.driven->Signal())) {
            top.leaves.push_back(leaf->GetHandle());
        }
        tops_.push_back(std::move(top));
    }
}

// Numbers the signals depth first, the order in which they are written.
void SourceReader::Number(ISignal& signal) {
    signal.SetHandle(static_cast<int>(signals_.size()));
    signals_.push_back(&signal);
    ISignalContainer* const members = signal.GetSubSignals();
    ISignal* member = nullptr;
    for (std::uint32_t i = 0; members != nullptr && SUCCEEDED(members->GetAt(i, &member)); ++i) {
        Number(*member);
    }
}

// ---- signals ----

int SourceReader::GetSignalHandle(int index) {
    return index >= 0 && index < GetSignalCount() ? tops_[static_cast<std::size_t>(index)].handle
                                                  : -1;
}

int SourceReader::GetSubSignalHandle(int parent, int index) {
    ISignalContainer* const members =
        IsHandle(parent) ? signals_[static_cast<std::size_t>(parent)]->GetSubSignals() : nullptr;
    ISignal* member = nullptr;
    return members != nullptr && index >= 0 &&
                   SUCCEEDED(members->GetAt(static_cast<std::uint32_t>(index), &member))
               ? member->GetHandle()
               : -1;
}

void SourceReader::GetSignalInfo(int handle, bool& has_sub_signals, int& sub_signal_count,
                                 CString& name, int& mode, std::int64_t& max_time) {
    ISignal* const signal = IsHandle(handle) ? signals_[static_cast<std::size_t>(handle)] : nullptr;
    ISignalContainer* const members = signal != nullptr ? signal->GetSubSignals() : nullptr;
    has_sub_signals = members != nullptr;
    sub_signal_count = members != nullptr ? static_cast<int>(members->GetCount()) : 0;
    name = signal != nullptr ? signal->GetName() : "";
    mode = signal != nullptr ? signal->GetMode() : 0;
    max_time = signal != nullptr ? latest_ : -1;
}

const char* SourceReader::GetTypeString(int handle) {
    return IsHandle(handle) ? signals_[static_cast<std::size_t>(handle)]->GetTypeInfo() : nullptr;
}

// ---- events ----

bool SourceReader::Seek(const std::int64_t* time) {
    turns_ = {};
    events_.clear();
    given_ = 0;
    cached_.clear();
    problem_.clear();
    time_ = window_.start - 1;
    try {
        for (std::size_t i = 0; i < tops_.size(); ++i) {
            Begin(tops_[i]);
            Wait(i, time_);
        }
    } catch (const std::runtime_error& error) {
        problem_ = error.what();
        return false;
    }
    if (*time >= window_.start) {
        cached_.swap(events_);
    }
    return *time <= window_.start;
}

void SourceReader::Begin(Top& top) {
    top.drive =
        top.driven->Driver([this, &top](std::size_t leaf, std::int64_t, const LeafBytes& value) {
            events_.push_back({top.leaves[leaf], value});
        });
    if (const auto value =
            window_.start > 0 ? top.source->ValueAt(window_.start - 1) : std::nullopt) {
        top.drive(window_.start - 1, *value);
    }
}

// Queues a source for its next event.
void SourceReader::Wait(std::size_t number, std::int64_t time) {
    const std::int64_t next = tops_[number].source->NextEvent(time);
    if (next >= 0 && next <= window_.end) {
        turns_.emplace(next, number);
    }
}

int SourceReader::Next() {
    try {
        while (given_ == events_.size() && !turns_.empty()) {
            TakeTurn();
        }
    } catch (const std::runtime_error& error) {
        problem_ = error.what();
        turns_ = {};
        events_.clear();
        given_ = 0;
    }
    if (given_ == events_.size()) {
        return -1;
    }
    latest_ = std::max(latest_, time_);
    return events_[given_++].handle;
}

void SourceReader::TakeTurn() {
    events_.clear();
    given_ = 0;
    const Turn turn = turns_.top();
    turns_.pop();
    time_ = turn.first;
    const Top& top = tops_[turn.second];
    if (const auto value = top.source->ValueAt(time_)) {
        top.drive(time_, *value);
    }
    Wait(turn.second, time_);
}

bool SourceReader::ReadValue(void* value) {
    if (given_ == 0) {
        return false;
    }
    std::array<unsigned char, 16> bytes{};
    const LeafBytes& event = events_[given_ - 1].value;
    std::copy(event.begin(), event.end(), bytes.begin());
    std::copy(bytes.begin(), bytes.end(), static_cast<unsigned char*>(value));
    return true;
}

bool SourceReader::GetCachedValue(int handle, void* value) {
    const auto found = std::find_if(cached_.begin(), cached_.end(),
                                    [&](const Event& event) { return event.handle == handle; });
    if (found == cached_.end()) {
        return false;
    }
    auto* const bytes = static_cast<unsigned char*>(value);
    std::fill_n(std::copy(found->value.begin(), found->value.end(), bytes), 8, 0);
    return true;
}

}  // namespace corv::host
