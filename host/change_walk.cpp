#include "host/change_walk.h"

#include <array>
#include <cstring>
#include <stdexcept>

#include "corv/stremo/streams.h"

namespace corv::host {

ChangeWalk::ChangeWalk(const Recording& recording, const std::vector<ISignal*>& signals,
                       TimeWindow window)
    : recording_(recording), window_(window), is_changed_(signals.size()) {
    std::vector<int> handles;
    for (std::size_t i = 0; i < signals.size(); ++i) {
        begins_.push_back(values_.size());
        recording.TakeUnits(*signals[i]);
        for (ISignal* const leaf : LeavesOf(*signals[i])) {
            const int handle = leaf->GetHandle();
            AddLeaf(handle, i);
            if (handle >= 0) {
                handles.push_back(handle);
            }
        }
    }
    begins_.push_back(values_.size());
    ReadFirstValues(handles);
    MoveOn();
}

void ChangeWalk::AddLeaf(int handle, std::size_t signal) {
    const std::size_t place = values_.size();
    values_.emplace_back();
    if (handle < 0) {
        return;
    }
    const auto at = static_cast<std::size_t>(handle);
    if (first_leaf_.size() <= at) {
        first_leaf_.resize(at + 1, -1);
    }
    leaves_.push_back({signal, place, first_leaf_[at]});
    first_leaf_[at] = static_cast<std::int32_t>(leaves_.size() - 1);
}

void ChangeWalk::ReadFirstValues(const std::vector<int>& handles) {
    stremo::IEventsStreamRead& reader = recording_.Reader();
    SelectStreamSignals(reader, handles);
    if (!reader.Seek(&window_.start)) {
        throw std::runtime_error(recording_.Problem());
    }
    for (const int handle : handles) {
        std::array<unsigned char, 16> value{};
        if (window_.start > 0 && reader.GetCachedValue(handle, value.data())) {
            Take(handle, value.data());
        }
    }
    changed_.clear();
    is_changed_.assign(is_changed_.size(), false);
}

void ChangeWalk::Take(int handle, const void* value) {
    const auto at = static_cast<std::size_t>(handle);
    std::int32_t leaf = handle >= 0 && at < first_leaf_.size() ? first_leaf_[at] : -1;
    while (leaf >= 0) {
        const Leaf& taken = leaves_[static_cast<std::size_t>(leaf)];
        LeafValue& stored = values_[taken.place];
        std::memcpy(stored.bytes.data(), value, stored.bytes.size());
        stored.known = true;
        if (!is_changed_[taken.signal]) {
            is_changed_[taken.signal] = true;
            changed_.push_back(taken.signal);
        }
        leaf = taken.next;
    }
}

void ChangeWalk::MoveOn() {
    next_ = recording_.Reader().Next();
    if (next_ == -1 && *LastStreamError() != '\0') {
        throw std::runtime_error(recording_.Problem());
    }
}

bool ChangeWalk::Next() {
    stremo::IEventsStreamRead& reader = recording_.Reader();
    for (const std::size_t signal : changed_) {
        is_changed_[signal] = false;
    }
    changed_.clear();
    while (next_ != -1 && changed_.empty()) {
        time_ = *reader.GetCurrentTime();
        if (time_ > window_.end) {
            next_ = -1;
            break;
        }
        for (; next_ != -1 && *reader.GetCurrentTime() == time_; MoveOn()) {
            std::array<unsigned char, 16> value{};
            if (reader.ReadValue(value.data())) {
                Take(next_, value.data());
            }
        }
    }
    return !changed_.empty();
}

std::span<const LeafValue> ChangeWalk::Values(std::size_t signal) const {
    return std::span(values_).subspan(begins_[signal], begins_[signal + 1] - begins_[signal]);
}

}  // namespace corv::host
