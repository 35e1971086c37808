#include "stremo/signal_table.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "platform/ascii.h"

namespace corv::recording {

// ---- handles ----

void HandleIndex::Insert(int handle, std::uint32_t number) {
    // The vector may be at most eight times as large as the number of handles, so that a few huge
    // handles cannot make it allocate gigabytes.
    constexpr std::size_t kNear = 65'536;
    if (Find(handle) != kNone) {
        return;
    }
    const auto place = static_cast<std::size_t>(handle);
    if (place < std::max(kNear, 8 * count_)) {
        if (place >= near_.size()) {
            near_.resize(place + 1, kNone);
        }
        near_[place] = number;
    } else {
        far_.emplace(handle, number);
    }
    ++count_;
    greatest_ = std::max(greatest_, handle);
}

std::uint32_t HandleIndex::FindFar(int handle) const noexcept {
    if (far_.empty()) {
        return kNone;
    }
    const auto found = far_.find(handle);
    return found == far_.end() ? kNone : found->second;
}

// ---- texts ----

std::string_view TextPool::Keep(std::string_view text) {
    constexpr std::size_t kBlock = 65'536;
    if (room_ - used_ <= text.size()) {
        const std::size_t room = std::max(kBlock, text.size() + 1);
        blocks_.push_back(std::make_unique<char[]>(room));
        room_ = room;
        used_ = 0;
    }
    char* const kept = blocks_.back().get() + used_;
    std::copy(text.begin(), text.end(), kept);
    kept[text.size()] = '\0';
    used_ += text.size() + 1;
    return {kept, text.size()};
}

const char* TextPool::KeepShared(std::string_view text) {
    if (const auto found = shared_.find(text); found != shared_.end()) {
        return found->second;
    }
    const std::string_view kept = Keep(text);
    return shared_.emplace(kept, kept.data()).first->second;
}

// ---- making ----

std::uint32_t SignalTable::Add(const Signal& signal) {
    const std::uint32_t same = Find(signal.handle);
    const bool taken = same != kNone && (signal.composite || signals_[same].composite);
    if (signal.handle < -1 || taken || (signal.composite && open_.size() >= kMostLevels) ||
        signals_.size() >= static_cast<std::size_t>(std::numeric_limits<int>::max())) {
        return kNone;
    }
    const auto number = static_cast<std::uint32_t>(signals_.size());
    signals_.push_back(signal);
    if (signal.handle >= 0) {
        handles_.Insert(signal.handle, number);
    }
    Place(number);
    return number;
}

// Finds the parent of the signal that was added last: the innermost composite that still lacks
// members.
void SignalTable::Place(std::uint32_t number) {
    Signal& signal = signals_[number];
    signal.parent = kNone;
    signal.leaf = kNone;
    signal.member_count = signal.composite ? signal.member_count : 0;
    if (!open_.empty()) {
        signal.parent = open_.back().signal;
        --open_.back().missing;
    }
    if (signal.member_count > 0) {
        open_.push_back({number, signal.member_count});
    }
    while (!open_.empty() && open_.back().missing == 0) {
        open_.pop_back();
    }
}

void SignalTable::AddProperty(std::uint32_t signal, std::string_view key, const char* value) {
    properties_.push_back({signal, key, value});
}

void SignalTable::Finish() {
    GiveHandles();
    MakeMembers();
    for (std::uint32_t i = 0; i < signals_.size(); ++i) {
        if (!signals_[i].composite) {
            MakeLeaf(i);
        }
    }
    std::stable_sort(properties_.begin(), properties_.end(),
                     [](const Property& a, const Property& b) { return a.signal < b.signal; });
}

void SignalTable::GiveHandles() {
    int unused = handles_.greatest() < std::numeric_limits<int>::max() - static_cast<int>(size())
                     ? handles_.greatest() + 1
                     : 0;
    for (std::uint32_t i = 0; i < signals_.size(); ++i) {
        if (signals_[i].handle == -1) {
            while (Find(unused) != kNone) {
                ++unused;
            }
            signals_[i].handle = unused;
            handles_.Insert(unused, i);
        }
    }
}

void SignalTable::MakeMembers() {
    std::uint32_t members = 0;
    for (Signal& signal : signals_) {
        signal.members = members;
        members += signal.member_count;
    }
    members_.resize(members);
    std::vector<std::uint32_t> filled(signals_.size());
    for (std::uint32_t i = 0; i < signals_.size(); ++i) {
        const std::uint32_t parent = signals_[i].parent;
        if (parent == kNone) {
            top_level_.push_back(i);
        } else {
            members_[signals_[parent].members + filled[parent]++] = i;
        }
    }
}

void SignalTable::MakeLeaf(std::uint32_t number) {
    Signal& signal = signals_[number];
    const std::uint32_t first = Find(signal.handle);
    signal.joins = signal.joins && first == number && Joins(number);
    if (first != number) {
        signal.leaf = signals_[first].leaf;
        return;
    }
    signal.leaf = leaf_count();
    if (signal.joins) {
        ++channels_.back().count;
    } else {
        channels_.push_back({signal.leaf, 1});
    }
    handle_leaves_.Insert(signal.handle, signal.leaf);
    leaf_handles_.push_back(signal.handle);
    leaf_channels_.push_back(channel_count() - 1);
}

// Returns whether the signal before a scalar is its sibling and was the last one to receive a leaf:
// only then are their leaves consecutive.
bool SignalTable::Joins(std::uint32_t number) const noexcept {
    if (number == 0 || signals_[number].parent == kNone || channels_.empty()) {
        return false;
    }
    const Signal& before = signals_[number - 1];
    return !before.composite && before.parent == signals_[number].parent &&
           before.leaf + 1 == leaf_count() && Find(before.handle) == number - 1 &&
           channels_.back().count < kMostElements;
}

// ---- asking ----

std::span<const std::uint32_t> SignalTable::TopLevel() const noexcept {
    return top_level_;
}

std::span<const std::uint32_t> SignalTable::Members(std::uint32_t signal) const noexcept {
    return std::span(members_).subspan(signals_[signal].members, signals_[signal].member_count);
}

std::uint32_t SignalTable::Find(int handle) const noexcept {
    return handles_.Find(handle);
}

const char* SignalTable::FindProperty(std::uint32_t signal, std::string_view key) const noexcept {
    const auto begin = std::lower_bound(properties_.begin(), properties_.end(), signal,
                                        [](const Property& p, auto s) { return p.signal < s; });
    const char* value = nullptr;  // the last one written
    for (auto at = begin; at != properties_.end() && at->signal == signal; ++at) {
        value = platform::EqualNoCase(at->key, key) ? at->value : value;
    }
    return value;
}

}  // namespace corv::recording
