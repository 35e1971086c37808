#pragma once

#include <cstdint>

#include "stremo/block_layout.h"
#include "stremo/byte_code.h"

// The values of one channel in a block: those at its start, and the changes of its column.
namespace corv::recording {

inline void WriteStart(ByteWriter& out, const ChannelState& state, unsigned count);
// Returns false if the bytes are malformed.
inline bool ReadStart(ByteReader& in, ChannelState& state, unsigned count) noexcept;
bool SkipStart(ByteReader& in, unsigned count) noexcept;

// Writes a change that comes `moments` moments after the previous one in the column: the elements
// of the mask take the values, in their order. Updates the state.
void WriteChange(ByteWriter& out, ChannelState& state, unsigned count, std::uint32_t moments,
                 std::uint32_t mask, const std::uint64_t* values);

namespace detail {
void WriteLongStart(ByteWriter& out, const ChannelState& state, unsigned count);
void ReadStartValue(ByteReader& in, ChannelState& state, unsigned element, unsigned count) noexcept;
bool ReadVectorStart(ByteReader& in, ChannelState& state, unsigned count) noexcept;
std::uint32_t ReadVectorChange(ByteReader& in, ChannelState& state, unsigned count,
                               unsigned kind) noexcept;
}  // namespace detail

inline void WriteStart(ByteWriter& out, const ChannelState& state, unsigned count) {
    if (count == 1 && state.known == 0) {
        out.Byte(0);
    } else if (count == 1 && state.values[0] <= kMostShortStart) {
        out.Byte(static_cast<unsigned>(state.values[0]) + kStartBase);
    } else {
        detail::WriteLongStart(out, state, count);
    }
}

inline bool ReadStart(ByteReader& in, ChannelState& state, unsigned count) noexcept {
    state.known = 0;
    if (count != 1) {
        return detail::ReadVectorStart(in, state, count);
    }
    detail::ReadStartValue(in, state, 0, 1);
    return in.ok();
}

inline void detail::ReadStartValue(ByteReader& in, ChannelState& state, unsigned element,
                                   unsigned count) noexcept {
    const auto first = in.Number<std::uint8_t>();
    state.known |= first != 0 ? ElementBit(element, count) : 0;
    if (first > kStartLength) {
        state.values[element] = in.Number(first - kStartLength);
    } else {
        state.values[element] = first != 0 ? first - kStartBase : 0;
    }
}

// Reads a change of the kind, updates the state and returns the elements that have an event; 0 if
// the bytes are malformed.
inline std::uint32_t ReadChange(ByteReader& in, ChannelState& state, unsigned count,
                                unsigned kind) noexcept {
    if (count != 1) {
        return detail::ReadVectorChange(in, state, count, kind);
    }
    if (kind == kFlip) {
        state.values[0] ^= 1;
        return state.known;
    }
    if (kind == kStep) {
        state.values[0] += static_cast<std::uint64_t>(Unfold(in.Variable()));
    } else {
        state.values[0] = in.Number<std::uint64_t>();
    }
    state.known = 1;
    return in.ok() && kind <= kRaw ? 1 : 0;
}

// Reads the changes of a column, updates the state and calls `action(moment, mask)` after each. It
// stops before the first change at the moment `end` or later. Returns false if there is such a
// change in a column that is read as a whole, if the bytes are malformed, and if the action returns
// false.
template <class Action>
bool ReadColumn(ByteReader column, ChannelState& state, unsigned count, std::uint32_t end,
                bool whole, Action action) {
    std::uint64_t moment = 0;
    while (!column.AtEnd()) {
        const std::uint64_t first = column.Variable();
        moment += first >> 2;
        if (moment >= end) {
            return !whole;
        }
        const std::uint32_t mask =
            ReadChange(column, state, count, static_cast<unsigned>(first & 3));
        if (mask == 0 || !action(static_cast<std::uint32_t>(moment), mask)) {
            return false;
        }
    }
    return column.ok();
}

}  // namespace corv::recording
