#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace corv::util {

// A hash table in one block of memory, at least half of it free. Its owner knows how entries are
// hashed and compared; one that equals Entry() stands for a free slot.
template <class Entry>
class FlatIndex {
public:
    bool HasRoomFor(std::size_t count) const noexcept { return 2 * count <= slots_.size(); }

    // Makes room for so many entries. Returns whether the table had to grow for that; it is empty
    // then. Throws, with the table as it was, when memory runs out.
    bool Reserve(std::size_t count) {
        if (HasRoomFor(count)) {
            return false;
        }
        slots_ = std::vector<Entry>(std::bit_ceil(2 * count));
        return true;
    }

    // Removes all entries; the room stays.
    void Clear() noexcept { std::fill(slots_.begin(), slots_.end(), Entry()); }

    // The slot of the entry with this hash that `is_it` accepts, or the free one for it. There must
    // be room for one entry more. Any number that entries differ in serves as their hash.
    template <class IsIt>
    Entry& SlotOf(std::uint64_t hash, const IsIt& is_it) noexcept {
        return slots_[PlaceOf(hash, is_it)];
    }
    template <class IsIt>
    const Entry& SlotOf(std::uint64_t hash, const IsIt& is_it) const noexcept {
        return slots_[PlaceOf(hash, is_it)];
    }

    template <class Action>
    void ForEach(const Action& action) const {
        for (const Entry& entry : slots_) {
            if (!(entry == Entry())) {
                action(entry);
            }
        }
    }

private:
    // The product's upper bits depend on all bits of the hash, so that numbers at equal distances
    // are spread too.
    template <class IsIt>
    std::size_t PlaceOf(std::uint64_t hash, const IsIt& is_it) const noexcept {
        const int shift = 64 - std::countr_zero(slots_.size());
        auto place = static_cast<std::size_t>((hash * 0x9E3779B97F4A7C15U) >> shift);
        while (!(slots_[place] == Entry()) && !is_it(slots_[place])) {
            place = (place + 1) & (slots_.size() - 1);
        }
        return place;
    }

    std::vector<Entry> slots_;  // a power of two of them
};

}  // namespace corv::util
