#include "signals/bus_event_iterator.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <new>
#include <numeric>
#include <utility>

#include "corv/signals/signal.h"
#include "platform/guard.h"
#include "tree/nesting.h"
#include "waves/wave_event_enumerator.h"

using corv::frame::ComPtr;

namespace {

constexpr std::int64_t kNoTime = -1;
constexpr std::int64_t kLastKey = std::numeric_limits<std::int64_t>::max();

// The tree serves the next step when at most one leaf in so many has changed at this one.
constexpr std::size_t kTreePart = 8;

}  // namespace

// ---- the leaves ----

HRESULT CBusEventIterator::CollectLeaves() noexcept {
    return corv::platform::Guarded(E_OUTOFMEMORY, [&] {
        const HRESULT result = Collect(*bus_->GetSubSignals(), 1);
        keys_.resize(enumerators_.size());
        tree_.Reserve(enumerators_.size());
        return result;
    });
}

HRESULT CBusEventIterator::Collect(ISignalContainer& members, int depth) {
    ComPtr<ISignalEnumerator> signals;
    if (depth > corv::tree::kMostNesting || FAILED(members.EnumSignals(signals.Out()))) {
        return E_FAIL;
    }
    ISignal* member = nullptr;
    while (signals->Next(1, &member, nullptr) == S_OK) {
        HRESULT result = S_OK;
        if (member->GetWave() != nullptr) {
            result = AddLeaf(*member);
        } else if (ISignalContainer* const parts = member->GetSubSignals()) {
            result = Collect(*parts, depth + 1);
        } else if (member->GetWaveValueSize() != 0) {
            return E_FAIL;  // it can't be made now
        }
        if (FAILED(result)) {
            return result;
        }
    }
    return S_OK;
}

HRESULT CBusEventIterator::AddLeaf(ISignal& leaf) {
    ComPtr<IWaveEventEnumerator> events;
    if (FAILED(leaf.EnumEvents(events.Out()))) {
        return E_FAIL;
    }
    makers_.push_back(MakerOf(*events));
    enumerators_.push_back(std::move(events));
    events_.push_back(nullptr);
    value_sizes_.push_back(leaf.GetWaveValueSize());
    return S_OK;
}

CBusEventIterator::Maker CBusEventIterator::MakerOf(IWaveEventEnumerator& events) noexcept {
    return CWaveEventEnumerator32::FromOwn(events) != nullptr   ? Maker::kOwn32
           : CWaveEventEnumerator64::FromOwn(events) != nullptr ? Maker::kOwn64
                                                                : Maker::kOther;
}

// ---- stepping ----

CBusEventIterator::Key CBusEventIterator::KeyOf(std::int64_t time) noexcept {
    return time == kNoTime ? kLastKey : time - (time >= 0 ? 1 : 0);
}

std::int64_t CBusEventIterator::TimeOf(Key key) noexcept {
    return key == kLastKey ? kNoTime : key + (key >= -1 ? 1 : 0);
}

// Without events in one of the leaves there are none at all.
void CBusEventIterator::ReadKeys() noexcept {
    const bool has_events =
        std::all_of(enumerators_.begin(), enumerators_.end(),
                    [](const auto& events) { return events->HasEvents() != 0; });
    for (std::size_t leaf = 0; leaf < keys_.size(); ++leaf) {
        keys_[leaf] = has_events ? KeyOf(enumerators_[leaf]->CurrentTime()) : kLastKey;
    }
    has_keys_ = true;
    has_tree_ = false;
}

CBusEventIterator::Key CBusEventIterator::SmallestKey() const noexcept {
    if (has_tree_) {
        return tree_.Top().key;
    }
    // in four rows, so that comparisons don't wait for each other
    Key smallest[4] = {kLastKey, kLastKey, kLastKey, kLastKey};
    std::size_t leaf = 0;
    for (; leaf + 4 <= keys_.size(); leaf += 4) {
        for (std::size_t row = 0; row < 4; ++row) {
            smallest[row] = std::min(smallest[row], keys_[leaf + row]);
        }
    }
    for (; leaf < keys_.size(); ++leaf) {
        smallest[0] = std::min(smallest[0], keys_[leaf]);
    }
    return std::min(std::min(smallest[0], smallest[1]), std::min(smallest[2], smallest[3]));
}

inline CBusEventIterator::Key CBusEventIterator::Advance(std::size_t leaf) noexcept {
    IWaveEventEnumerator& events = *enumerators_[leaf];
    std::int64_t next;
    if (makers_[leaf] == Maker::kOwn32) {
        next = static_cast<CWaveEventEnumerator32&>(events).Take(&events_[leaf]);
    } else if (makers_[leaf] == Maker::kOwn64) {
        next = static_cast<CWaveEventEnumerator64&>(events).Take(&events_[leaf]);
    } else {
        events.Next(1, &events_[leaf], nullptr);
        next = events.CurrentTime();
    }
    return keys_[leaf] = KeyOf(next);
}

void CBusEventIterator::AdvanceInTree(Key key) noexcept {
    std::size_t moved = 0;
    bool in_order = true;
    do {
        const std::size_t leaf = tree_.Top().index;
        const Key next = Advance(leaf);
        // a leaf with more events for this time, or earlier ones, waits for the next step
        const bool waits = next <= key;
        tree_.ReplaceTop(waits ? kLastKey : next);
        in_order = in_order && !waits;
        ++moved;
    } while (tree_.Top().key == key);
    has_tree_ = in_order && moved <= keys_.size() / kTreePart;
}

void CBusEventIterator::AdvanceInAll(Key key) noexcept {
    constexpr std::size_t kGroup = 8;  // looked through without a branch
    std::size_t moved = 0;
    for (std::size_t first = 0; first < keys_.size(); first += kGroup) {
        const std::size_t count = std::min(kGroup, keys_.size() - first);
        unsigned due = 0;
        for (std::size_t i = 0; i < count; ++i) {
            due |= static_cast<unsigned>(keys_[first + i] == key) << i;
        }
        for (; due != 0; due &= due - 1, ++moved) {
            Advance(first + static_cast<std::size_t>(std::countr_zero(due)));
        }
    }
    if (moved <= keys_.size() / kTreePart) {
        tree_.Build(keys_.data());
        has_tree_ = true;
    }
}

HRESULT CORV_CALL CBusEventIterator::Next() noexcept {
    if (!has_keys_) {
        ReadKeys();
    }
    const Key key = SmallestKey();
    time_ = TimeOf(key);
    if (key == kLastKey) {
        has_keys_ = false;  // there may be more by the next time
        return S_FALSE;
    }
    if (has_tree_) {
        AdvanceInTree(key);
    } else {
        AdvanceInAll(key);
    }
    return S_OK;
}

// ---- placing ----

void CBusEventIterator::TakeCurrent(std::size_t leaf) noexcept {
    IWaveEvent* event = nullptr;
    events_[leaf] = SUCCEEDED(enumerators_[leaf]->Current(&event)) ? event : nullptr;
}

bool CBusEventIterator::IsAt(std::size_t leaf, std::int64_t time) noexcept {
    TakeCurrent(leaf);
    return events_[leaf] != nullptr && events_[leaf]->GetTime() == time;
}

void CORV_CALL CBusEventIterator::Reset() noexcept {
    for (std::size_t leaf = 0; leaf < enumerators_.size(); ++leaf) {
        enumerators_[leaf]->Reset();
        TakeCurrent(leaf);
    }
    time_ = kNoTime;
    has_keys_ = false;
}

HRESULT CORV_CALL CBusEventIterator::Seek(std::int64_t time, std::uint32_t mode) noexcept {
    const std::uint32_t leaf_mode = mode == FindAt ? FindAtOrBefore : mode;
    bool exact = mode != FindAt;
    HRESULT result = S_OK;
    for (std::size_t leaf = 0; leaf < enumerators_.size() && !FAILED(result); ++leaf) {
        result = enumerators_[leaf]->Seek(time, leaf_mode);
        exact = exact || (!FAILED(result) && IsAt(leaf, time));
    }
    for (std::size_t leaf = 0; leaf < enumerators_.size(); ++leaf) {
        TakeCurrent(leaf);
    }
    has_keys_ = false;
    return FAILED(result) ? result : exact ? S_OK : E_FAIL;
}

std::uint32_t CORV_CALL CBusEventIterator::GetSize() noexcept {
    return std::accumulate(value_sizes_.begin(), value_sizes_.end(), std::uint32_t{0});
}

// ---- the bus event ----

IWaveEvent* CBusEvent::EventOf(std::uint32_t leaf) const noexcept {
    return leaf < iterator_.events_.size() ? iterator_.events_[leaf] : nullptr;
}

std::int64_t CBusEvent::GetTime() noexcept {
    return iterator_.time_;
}

int CBusEvent::GetCount() noexcept {
    return static_cast<int>(iterator_.events_.size());
}

std::uint32_t CBusEvent::GetValueSize(std::uint32_t leaf) noexcept {
    return leaf < iterator_.value_sizes_.size() ? iterator_.value_sizes_[leaf] : 0;
}

std::uint32_t CBusEvent::GetValue(std::uint32_t leaf, void* buffer, std::uint32_t size) noexcept {
    IWaveEvent* const event = EventOf(leaf);
    return event != nullptr ? event->GetValue(buffer, size) : 0;
}

const void* CBusEvent::GetValueData(std::uint32_t leaf) noexcept {
    IWaveEvent* const event = EventOf(leaf);
    return event != nullptr ? event->GetValueData() : nullptr;
}

std::uint8_t CBusEvent::GetFlags() noexcept {
    constexpr std::uint8_t kMarked = 1;
    constexpr std::uint8_t kOverwritten = 2;
    std::uint8_t marked = kMarked;
    std::uint8_t overwritten = 0;
    for (IWaveEvent* const event : iterator_.events_) {
        if (event != nullptr && event->GetTime() == iterator_.time_) {
            marked &= event->GetFlags();
            overwritten |= event->GetFlags();
        }
    }
    return static_cast<std::uint8_t>(marked | (overwritten & kOverwritten));
}

HRESULT CreateBusEventIterator(ISignal* bus, IBusEventIterator** iterator) noexcept {
    if (bus->GetSubSignals() == nullptr) {
        return E_INVALIDARG;
    }
    CBusEventIterator* const made = new (std::nothrow) CBusEventIterator(bus);
    if (made == nullptr) {
        return E_OUTOFMEMORY;
    }
    const ComPtr<IBusEventIterator> counted(made->NewReference());
    const HRESULT collected = made->CollectLeaves();
    if (FAILED(collected)) {
        return collected;
    }
    return made->QueryInterface(IID_IBusEventIterator, reinterpret_cast<void**>(iterator));
}
