// Values are coded in whichever of a few forms is shortest. The forms are chosen for what
// recordings mostly contain: bits that toggle, vectors of '0' and '1', and numbers that change by
// little.

#include "stremo/channel_code.h"

#include <algorithm>
#include <bit>

namespace corv::recording {
namespace {

bool Has(const ChannelState& state, unsigned element, unsigned count) noexcept {
    return (state.known & ElementBit(element, count)) != 0;
}

// ---- starting values ----

void WriteValue(ByteWriter& out, bool known, std::uint64_t value) {
    if (!known) {
        out.Byte(0);
    } else if (value <= kMostShortStart) {
        out.Byte(static_cast<unsigned>(value) + kStartBase);
    } else {
        const auto length = (static_cast<std::size_t>(std::bit_width(value)) + 7) / 8;
        out.Byte(kStartLength + static_cast<unsigned>(length));
        out.Number(value, length);
    }
}

// Returns whether all elements have values that differ at most in the lowest bit.
bool IsTwoValued(const ChannelState& state, unsigned count) noexcept {
    return state.known == AllElements(count) && state.values[0] <= 0xFF &&
           std::all_of(state.values, state.values + count,
                       [&](std::uint64_t value) { return (value | 1) == (state.values[0] | 1); });
}

bool FitsNibbles(const ChannelState& state, unsigned count) noexcept {
    for (unsigned i = 0; i < count; ++i) {
        if (Has(state, i, count) && state.values[i] >= kNoNibble) {
            return false;
        }
    }
    return true;
}

void WriteNibbles(ByteWriter& out, const ChannelState& state, unsigned count) {
    const auto nibble = [&](unsigned i) {
        return Has(state, i, count) ? static_cast<unsigned>(state.values[i]) : kNoNibble;
    };
    for (unsigned i = 0; i < count; i += 2) {
        out.Byte(nibble(i) | (i + 1 < count ? nibble(i + 1) << 4 : 0));
    }
}

unsigned Nibble(const unsigned char* bytes, unsigned element) noexcept {
    return (bytes[element / 2] >> (element % 2 * 4)) & 0xF;
}

bool ReadNibbles(ByteReader& in, ChannelState& state, unsigned count) noexcept {
    const unsigned char* const bytes = in.Take(NibbleBytes(count));
    for (unsigned i = 0; bytes != nullptr && i < count; ++i) {
        if (Nibble(bytes, i) != kNoNibble) {
            state.known |= ElementBit(i, count);
            state.values[i] = Nibble(bytes, i);
        }
    }
    return bytes != nullptr;
}

void WriteTwoValues(ByteWriter& out, const ChannelState& state, unsigned count) {
    std::uint32_t bits = 0;
    for (unsigned i = 0; i < count; ++i) {
        bits |= (state.values[i] & 1) != 0 ? ElementBit(i, count) : 0;
    }
    out.Byte(static_cast<unsigned>(state.values[0] | 1) - 1);
    out.Number(bits, (count + 7) / 8);
}

bool ReadTwoValues(ByteReader& in, ChannelState& state, unsigned count) noexcept {
    const unsigned base = in.Number<std::uint8_t>();
    const auto bits = static_cast<std::uint32_t>(in.Number((count + 7) / 8));
    state.known = AllElements(count);
    for (unsigned i = 0; i < count; ++i) {
        state.values[i] = base | ((bits & ElementBit(i, count)) != 0 ? 1 : 0);
    }
    return in.ok();
}

// ---- changes ----

void WriteScalarChange(ByteWriter& out, ChannelState& state, std::uint64_t first,
                       std::uint64_t value) {
    const std::uint64_t before = state.known != 0 ? state.values[0] : 0;
    const std::uint64_t step = Fold(static_cast<std::int64_t>(value - before));
    if (state.known != 0 && value == (before ^ 1)) {
        out.Variable(first | kFlip);
    } else if (VariableLength(step) <= sizeof value) {
        out.Variable(first | kStep);
        out.Variable(step);
    } else {
        out.Variable(first | kRaw);
        out.Number(value);
    }
    state.known = 1;
    state.values[0] = value;
}

// What a change does to the elements of a vector; decides in which form it is written.
struct Effect {
    bool all_flip = true;    // each has a value whose lowest bit flips
    bool all_change = true;  // none keeps its value
    std::size_t list_length;
};

Effect Apply(ChannelState& state, unsigned count, std::uint32_t mask, const std::uint64_t* values) {
    Effect effect;
    effect.list_length = VariableLength(mask);
    ForElements(mask, count, [&](unsigned i) {
        const bool known = Has(state, i, count);
        effect.all_flip = effect.all_flip && known && *values == (state.values[i] ^ 1);
        effect.all_change = effect.all_change && !(known && *values == state.values[i]);
        effect.list_length += VariableLength(*values);
        state.values[i] = *values++;
    });
    state.known |= mask;
    return effect;
}

void WriteVectorChange(ByteWriter& out, ChannelState& state, unsigned count, std::uint64_t first,
                       std::uint32_t mask, const std::uint64_t* values) {
    const Effect effect = Apply(state, count, mask, values);
    if (effect.all_flip) {
        out.Variable(first | kFlips);
        out.Variable(mask);
    } else if (effect.all_change && NibbleBytes(count) < effect.list_length &&
               FitsNibbles(state, count)) {
        out.Variable(first | kDense);
        WriteNibbles(out, state, count);
    } else {
        out.Variable(first | kList);
        out.Variable(mask);
        for (int i = 0; i < std::popcount(mask); ++i) {
            out.Variable(values[i]);
        }
    }
}

std::uint32_t ReadMask(ByteReader& in, unsigned count) noexcept {
    const std::uint64_t mask = in.Variable();
    return mask <= AllElements(count) ? static_cast<std::uint32_t>(mask) : 0;
}

// Returns the elements that the nibbles change. An element cannot lose its value.
std::uint32_t ReadDense(ByteReader& in, ChannelState& state, unsigned count) noexcept {
    const unsigned char* const bytes = in.Take(NibbleBytes(count));
    std::uint32_t mask = 0;
    for (unsigned i = 0; bytes != nullptr && i < count; ++i) {
        const unsigned value = Nibble(bytes, i);
        const bool known = Has(state, i, count);
        if (value == kNoNibble && known) {
            return 0;
        }
        if (value != kNoNibble && !(known && state.values[i] == value)) {
            mask |= ElementBit(i, count);
            state.values[i] = value;
        }
    }
    state.known |= mask;
    return mask;
}

}  // namespace

void detail::WriteLongStart(ByteWriter& out, const ChannelState& state, unsigned count) {
    if (count == 1) {
        WriteValue(out, state.known != 0, state.values[0]);
    } else if (state.known == 0) {
        out.Byte(kNoValues);
    } else if (IsTwoValued(state, count)) {
        out.Byte(kTwoValues);
        WriteTwoValues(out, state, count);
    } else if (FitsNibbles(state, count)) {
        out.Byte(kNibbles);
        WriteNibbles(out, state, count);
    } else {
        out.Byte(kEach);
        for (unsigned i = 0; i < count; ++i) {
            WriteValue(out, Has(state, i, count), state.values[i]);
        }
    }
}

bool detail::ReadVectorStart(ByteReader& in, ChannelState& state, unsigned count) noexcept {
    switch (in.Number<std::uint8_t>()) {
        case kNoValues:
            return in.ok();
        case kTwoValues:
            return ReadTwoValues(in, state, count);
        case kNibbles:
            return ReadNibbles(in, state, count);
        case kEach:
            for (unsigned i = 0; i < count; ++i) {
                ReadStartValue(in, state, i, count);
            }
            return in.ok();
        default:
            return false;
    }
}

bool SkipStart(ByteReader& in, unsigned count) noexcept {
    const unsigned first = in.Number<std::uint8_t>();
    if (count == 1) {
        in.Take(first > kStartLength ? first - kStartLength : 0);
    } else if (first == kTwoValues) {
        in.Take(1 + (count + 7) / 8);
    } else if (first == kNibbles) {
        in.Take(NibbleBytes(count));
    } else if (first == kEach) {
        for (unsigned i = 0; i < count; ++i) {
            SkipStart(in, 1);
        }
    }
    return in.ok();
}

void WriteChange(ByteWriter& out, ChannelState& state, unsigned count, std::uint32_t moments,
                 std::uint32_t mask, const std::uint64_t* values) {
    const std::uint64_t first = std::uint64_t{moments} << 2;
    if (count == 1) {
        WriteScalarChange(out, state, first, *values);
    } else {
        WriteVectorChange(out, state, count, first, mask, values);
    }
}

std::uint32_t detail::ReadVectorChange(ByteReader& in, ChannelState& state, unsigned count,
                                       unsigned kind) noexcept {
    if (kind == kDense) {
        return ReadDense(in, state, count);
    }
    const std::uint32_t mask = ReadMask(in, count);
    if (kind == kFlips) {
        ForElements(mask, count, [&](unsigned i) { state.values[i] ^= 1; });
        return (mask & ~state.known) == 0 ? mask : 0;
    }
    ForElements(mask, count, [&](unsigned i) { state.values[i] = in.Variable(); });
    state.known |= mask;
    return in.ok() && kind == kList ? mask : 0;
}

}  // namespace corv::recording
