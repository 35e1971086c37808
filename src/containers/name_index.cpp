#include "containers/name_index.h"

#include <algorithm>

#include "corv/signals/signal.h"
#include "platform/ascii.h"
#include "platform/guard.h"
#include "signals/signal.h"
#include "tree/renamings.h"

namespace corv::containers {
namespace {

bool IsNamed(ISignal& signal, std::string_view text) noexcept {
    const char* name = signal.GetName();
    if (name == nullptr) {
        return false;
    }
    for (const char c : text) {
        if (platform::Lower(*name) != platform::Lower(c)) {
            return false;
        }
        ++name;
    }
    return *name == '\0';
}

std::uint64_t Hash(std::string_view name) noexcept {
    std::uint64_t hash = 0xCBF29CE484222325U;
    for (const char c : name) {
        hash = (hash ^ static_cast<unsigned char>(platform::Lower(c))) * 0x100000001B3U;
    }
    return hash;
}

// Lets a signal count the changes of its name from now on. False when it is of another make than
// this library's and can't.
bool WatchName(ISignal& signal) noexcept {
    CSignal* const own = CSignal::FromOwn(signal);
    if (own != nullptr) {
        own->WatchName();
    }
    return own != nullptr;
}

}  // namespace

ISignal* FindByLooking(const SignalList& signals, std::string_view name) noexcept {
    const auto found = std::find_if(signals.begin(), signals.end(),
                                    [&](ISignal* signal) { return IsNamed(*signal, name); });
    return found != signals.end() ? *found : nullptr;
}

void NameIndex::Watch(ISignal& signal) noexcept {
    is_watching_ = WatchName(signal) && is_watching_;
}

void NameIndex::Follow(const SignalList& signals) noexcept {
    if (is_watching_) {
        Reserve(signals.size());
    }
}

void NameIndex::Reserve(std::size_t count) noexcept {
    platform::Done([&] { indexed_ = index_.Reserve(count) ? 0 : indexed_; });
}

void NameIndex::Reset() noexcept {
    indexed_ = 0;
    looked_at_ = 0;
}

ISignal* NameIndex::Find(const SignalList& signals, std::string_view name) noexcept {
    if (renamings_ != tree::Renamings()) {
        renamings_ = tree::Renamings();
        Reset();
    }
    if (!IsUsable(signals) || (indexed_ == 0 && looked_at_ < signals.size())) {
        looked_at_ += signals.size();
        return FindByLooking(signals, name);
    }
    Fill(signals);
    const std::uint32_t place = EntryOf(signals, name);
    return place != 0 ? signals[place - 1] : nullptr;
}

void NameIndex::Fill(const SignalList& signals) noexcept {
    if (indexed_ == 0) {
        index_.Clear();
    }
    for (; indexed_ < signals.size(); ++indexed_) {
        if (const char* const name = signals[indexed_]->GetName()) {
            std::uint32_t& entry = EntryOf(signals, name);
            entry = entry == 0 ? static_cast<std::uint32_t>(indexed_ + 1) : entry;
        }
    }
}

std::uint32_t& NameIndex::EntryOf(const SignalList& signals, std::string_view name) noexcept {
    return index_.SlotOf(Hash(name),
                         [&](std::uint32_t place) { return IsNamed(*signals[place - 1], name); });
}

}  // namespace corv::containers
