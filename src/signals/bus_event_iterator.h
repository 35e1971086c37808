#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "corv/frame/com_ptr.h"
#include "corv/frame/interface_ids.h"
#include "corv/signals/bus_event_iterator.h"
#include "corv/waves/wave_event_enumerator.h"
#include "frame/com_object.h"
#include "signals/loser_tree.h"

class CBusEventIterator;
class ISignalContainer;

// The bus event of an iterator; it answers from the iterator's fields.
class CBusEvent final : public IBusEvent {
public:
    explicit CBusEvent(const CBusEventIterator& iterator) noexcept : iterator_(iterator) {}

    std::int64_t GetTime() noexcept override;
    int GetCount() noexcept override;
    std::uint32_t GetValueSize(std::uint32_t leaf) noexcept override;
    std::uint32_t GetValue(std::uint32_t leaf, void* buffer, std::uint32_t size) noexcept override;
    const void* GetValueData(std::uint32_t leaf) noexcept override;
    std::uint8_t GetFlags() noexcept override;
    int GetValueCount() noexcept override { return GetCount(); }

private:
    // A leaf's current event; null without one and for an index outside.
    IWaveEvent* EventOf(std::uint32_t leaf) const noexcept;

    const CBusEventIterator& iterator_;
};

// Merges the events of a bus's leaves.
//
// The next time of each leaf is remembered as a key, so that finding the earliest one asks no
// enumerator. While few leaves change at a time it is the top of a tree over the keys; after a step
// in which many have changed, as with a clock, it is looked for in all keys, which is faster then.
class CBusEventIterator final
    : public corv::frame::ComObject<CBusEventIterator, IBusEventIterator, IID_IBusEventIterator> {
public:
    explicit CBusEventIterator(ISignal* bus) noexcept : bus_(bus) {}

    // Takes the leaves of the bus. E_FAIL when a container or a leaf can't be enumerated or the
    // members nest too deep, E_OUTOFMEMORY; the iterator is of no use then.
    HRESULT CollectLeaves() noexcept;

    IBusEvent* CORV_CALL GetEvent() noexcept override { return &event_; }
    HRESULT CORV_CALL Next() noexcept override;
    void CORV_CALL Reset() noexcept override;
    HRESULT CORV_CALL Seek(std::int64_t time, std::uint32_t mode) noexcept override;
    std::uint32_t CORV_CALL GetSize() noexcept override;

private:
    friend class CBusEvent;

    // Who made a leaf's enumerator; the library's own ones take their steps without virtual calls.
    enum class Maker : unsigned char { kOther, kOwn32, kOwn64 };

    // Keys are times in their order, but for -1, no time, which comes last.
    using Key = std::int64_t;
    static Key KeyOf(std::int64_t time) noexcept;
    static std::int64_t TimeOf(Key key) noexcept;

    HRESULT Collect(ISignalContainer& members, int depth);
    HRESULT AddLeaf(ISignal& leaf);
    static Maker MakerOf(IWaveEventEnumerator& events) noexcept;

    void TakeCurrent(std::size_t leaf) noexcept;
    bool IsAt(std::size_t leaf, std::int64_t time) noexcept;

    void ReadKeys() noexcept;
    Key SmallestKey() const noexcept;
    // Lets a leaf take its next event; gives its new key.
    Key Advance(std::size_t leaf) noexcept;
    // Let all leaves with the key take their events.
    void AdvanceInTree(Key key) noexcept;
    void AdvanceInAll(Key key) noexcept;

    ISignal* bus_;
    std::int64_t time_ = -1;
    std::vector<corv::frame::ComPtr<IWaveEventEnumerator>> enumerators_;
    std::vector<IWaveEvent*> events_;
    std::vector<std::uint32_t> value_sizes_;
    CBusEvent event_{*this};

    std::vector<Maker> makers_;
    std::vector<Key> keys_;
    corv::signals::LoserTree tree_;
    bool has_keys_ = false;
    bool has_tree_ = false;  // and the tree is over the keys
};
