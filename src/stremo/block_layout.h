#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "stremo/signal_table.h"

// The content of a block, shared by the builder and the view. It is described byte for byte in
// docs/formats/event-file.md.
//
//     header | groups | column starts | moments | starting values | columns | order
//
// A moment is a time at which something changes, numbered within the block. A column contains the
// changes of one channel. A group is 64 channels. Everything before the columns is the block's
// front, which is checked as a whole; the columns of each group and the order have checksums of
// their own, so that a question about one signal checks only what it reads.
namespace corv::recording {

inline constexpr std::size_t kBlockHeaderSize = 32;  // eight numbers of 4 bytes
inline constexpr std::size_t kGroupSize = 24;
inline constexpr std::uint32_t kGroupChannels = 64;

constexpr std::uint32_t GroupCount(std::uint32_t channels) noexcept {
    return channels / kGroupChannels + (channels % kGroupChannels != 0 ? 1 : 0);
}

// Returns the number of bytes of each start of a column.
constexpr unsigned ColumnStartWidth(std::size_t columns_length) noexcept {
    return columns_length <= 0xFFFF ? 2 : 4;
}

// The two low bits of a change's first number.
enum ScalarChange : unsigned { kFlip = 0, kStep = 1, kRaw = 2 };
enum VectorChange : unsigned { kFlips = 0, kList = 1, kDense = 2 };

// The first byte of a vector's starting values.
enum VectorStart : unsigned { kNoValues = 0, kTwoValues = 1, kNibbles = 2, kEach = 3 };

// The first byte of a scalar's starting value: 0 means no value, 1 to 247 are the values 0 to 246,
// and 248 to 255 mean that 1 to 8 bytes follow.
inline constexpr unsigned kStartBase = 1;
inline constexpr unsigned kMostShortStart = 246;
inline constexpr unsigned kStartLength = 247;

// Elements in four bits each: the value, or 15 for none. Nine values of std_logic leave room.
inline constexpr unsigned kNoNibble = 15;
constexpr std::size_t NibbleBytes(unsigned count) noexcept {
    return (count + 1) / 2;
}

// The values of a channel's elements at some point of a block.
struct ChannelState {
    std::uint32_t known = 0;  // those that have a value
    std::uint64_t values[kMostElements] = {};
};

// The parts of a block being made, in their order.
struct BlockParts {
    std::vector<unsigned char> groups;
    std::vector<unsigned char> column_starts;
    std::vector<unsigned char> moments;
    std::vector<unsigned char> starting_values;
    std::vector<unsigned char> columns;
    std::vector<unsigned char> order;
    std::vector<unsigned char> whole;
    std::size_t front = 0;  // the length of everything before the columns
};

}  // namespace corv::recording
