#include "stremo/ghw/changes.h"

#include <algorithm>
#include <bit>
#include <unordered_map>
#include <vector>

#include "stremo/block_builder.h"
#include "stremo/ghw/change_walk.h"

namespace corv::ghw {
namespace {

using recording::BlockBuilder;
using recording::Channel;
using recording::kNone;

// Twice the usual size. The cost of starting a block is paid while a user waits for the file to
// open, and a search in memory does not have to read its block from a file.
std::size_t BlockSize(const recording::SignalTable& signals) noexcept {
    return std::clamp(std::size_t{4} * signals.channel_count(), std::size_t{8192},
                      std::size_t{1} << 22);
}

// Skips all values.
class Passer {
public:
    explicit Passer(const ChangeSource& source) {
        kinds_.reserve(source.nets.size());
        for (std::size_t i = 0; i < source.nets.size(); ++i) {
            kinds_.push_back(source.nets[i].kind);
        }
    }

    bool Byte(std::size_t rank, unsigned) const noexcept {
        return kinds_[rank] == Kind::kEnumeration;
    }

    void Time(std::int64_t, std::size_t) const noexcept {}
    void Value(Input& in, std::size_t rank) const noexcept { Types::ReadValue(in, kinds_[rank]); }
    void Forget() const noexcept {}

private:
    std::vector<Kind> kinds_;
};

// Passes the changes to a builder, moment by moment. What happens to a channel at a moment is
// collected as a mask of the elements whose lowest bit flips, which covers nearly all changes; a
// value that changes and returns within the moment leaves nothing. Other elements are listed.
class Changes {
public:
    Changes(const ChangeSource& source, const recording::SignalTable& signals,
            std::span<const std::uint32_t> leaves, recording::BlockSink& blocks,
            recording::Notes& notes);

    void Time(std::int64_t time, std::size_t offset);
    bool Byte(std::size_t rank, unsigned value);
    void Value(Input& in, std::size_t rank);
    void Forget();

    // Returns false if the blocks could not be kept.
    bool Finish() {
        TellMoment();
        return builder_.Flush() && kept_;
    }

private:
    // A net of an enumeration, by rank. For other nets `literals` is 0, so that a byte never fits.
    struct Position {
        std::uint32_t channel;  // for nets of no interest, an extra one after the last
        std::uint32_t bit = 0;  // of the element
        std::uint16_t literals = 0;
        std::uint8_t value = 0;  // the latest
        bool known = false;      // whether it has one
    };
    // What the present moment does to a channel.
    struct Gathered {
        std::uint32_t flips = 0;   // the elements whose lowest bit flips
        std::uint32_t others = 0;  // those that are listed
        bool waits = false;        // in waiting_
    };
    // An element that changes in another way, with what it was before the moment.
    struct Other {
        std::uint32_t rank;
        std::uint8_t value;
        bool known;
    };
    // A net of numbers.
    struct Number {
        std::uint32_t channel = kNone;
        bool known = false;
        bool waits = false;
        std::uint64_t value = 0;  // as last passed on
        std::uint64_t next = 0;   // at the present moment
    };

    void AddNet(std::size_t rank, const std::vector<bool>& wanted);
    void TakeOther(std::size_t rank, std::uint8_t value);
    void TakeNumber(std::size_t rank, std::uint64_t value);
    void TellMoment();
    void TellNumbers();
    void TellElements(std::uint32_t number);

    const ChangeSource& source_;
    const recording::SignalTable& signals_;
    recording::Notes& notes_;
    BlockBuilder builder_;
    bool kept_ = true;

    std::vector<Position> positions_;
    std::vector<std::uint32_t> ranks_;    // by leaf
    std::vector<Gathered> gathered_;      // by channel, and an extra one
    std::vector<std::uint32_t> waiting_;  // channels; has room for all, and an extra one
    std::size_t waiting_count_ = 0;
    std::vector<Other> others_;
    std::unordered_map<std::size_t, Number> numbers_;  // by rank
    std::vector<std::size_t> waiting_numbers_;
};

Changes::Changes(const ChangeSource& source, const recording::SignalTable& signals,
                 std::span<const std::uint32_t> leaves, recording::BlockSink& blocks,
                 recording::Notes& notes)
    : source_(source),
      signals_(signals),
      notes_(notes),
      builder_(signals, blocks, recording::EventOrder::kBySignal, BlockSize(signals)),
      positions_(source.nets.size(), Position{signals.channel_count()}),
      ranks_(signals.leaf_count()),
      gathered_(signals.channel_count() + std::size_t{1}),
      waiting_(signals.channel_count() + std::size_t{1}) {
    std::vector<bool> wanted(signals.leaf_count(), leaves.empty());
    for (const std::uint32_t leaf : leaves) {
        wanted[leaf] = true;
    }
    // The extra channel always waits, so its nets never enter the list: nets of no interest take
    // the same branch-free path as the others.
    gathered_.back().waits = true;
    for (std::size_t i = 0; i < positions_.size(); ++i) {
        AddNet(i, wanted);
    }
}

void Changes::AddNet(std::size_t rank, const std::vector<bool>& wanted) {
    const Net& net = source_.nets[rank];
    Position& position = positions_[rank];
    position.literals = net.kind == Kind::kEnumeration ? net.literals : std::uint16_t{0};
    // signals that were left out have no leaf
    const std::uint32_t leaf = signals_.FindLeaf(static_cast<int>(net.number));
    if (leaf == kNone || !wanted[leaf]) {
        return;
    }
    const std::uint32_t number = signals_.LeafChannel(leaf);
    if (net.kind == Kind::kEnumeration) {
        const Channel& channel = signals_.channel(number);
        position.channel = number;
        position.bit = recording::ElementBit(leaf - channel.first_leaf, channel.count);
        ranks_[leaf] = static_cast<std::uint32_t>(rank);
    } else {
        numbers_[rank].channel = number;
    }
}

void Changes::Time(std::int64_t time, std::size_t offset) {
    if (!source_.time_scale.IsExact(time)) {
        notes_.Add(offset, "a time is not a whole number of picoseconds; it is rounded down");
    }
    const std::int64_t picoseconds = source_.time_scale.ToPicoseconds(time);
    if (picoseconds != builder_.time()) {
        TellMoment();
        builder_.SetTime(picoseconds);
    }
}

// Voids the values of a snapshot, before which no net has a value.
void Changes::Forget() {
    for (Position& position : positions_) {
        position.known = false;
    }
    for (std::size_t i = 0; i < waiting_count_; ++i) {
        gathered_[waiting_[i]] = {};
    }
    for (const std::size_t rank : waiting_numbers_) {
        numbers_[rank].waits = false;
    }
    waiting_count_ = 0;
    others_.clear();
    waiting_numbers_.clear();
}

// ---- values ----

inline bool Changes::Byte(std::size_t rank, unsigned value) {
    Position& position = positions_[rank];
    if (value >= position.literals) [[unlikely]] {
        return false;
    }
    Gathered& gathered = gathered_[position.channel];
    // Always stored, but counted only if the channel does not wait yet: an addition instead of a
    // branch.
    waiting_[waiting_count_] = position.channel;
    waiting_count_ += gathered.waits ? 0 : 1;
    gathered.waits = true;
    const unsigned change = position.value ^ value;
    if (change > 1 || !position.known || (gathered.others & position.bit) != 0) [[unlikely]] {
        TakeOther(rank, static_cast<std::uint8_t>(value));
        return true;
    }
    gathered.flips ^= position.bit & (0 - change);
    position.value = static_cast<std::uint8_t>(value);
    return true;
}

void Changes::TakeOther(std::size_t rank, std::uint8_t value) {
    Position& position = positions_[rank];
    Gathered& gathered = gathered_[position.channel];
    if ((gathered.others & position.bit) == 0 && position.bit != 0) {
        const bool flipped = (gathered.flips & position.bit) != 0;
        others_.push_back({static_cast<std::uint32_t>(rank),
                           static_cast<std::uint8_t>(position.value ^ (flipped ? 1 : 0)),
                           position.known});
        gathered.others |= position.bit;
        gathered.flips &= ~position.bit;
    }
    position.value = value;
    position.known = true;
}

void Changes::Value(Input& in, std::size_t rank) {
    const std::size_t offset = in.offset();
    const Net& net = source_.nets[rank];
    const std::int64_t value = Types::ReadValue(in, net.kind);
    const auto none = [&] { notes_.Add(offset, "a value is not of its type; it is left out"); };
    if (!in.ok()) {
        return;
    }
    switch (net.kind) {
        case Kind::kEnumeration:
            if (!Byte(rank, static_cast<unsigned>(value))) {
                none();
            }
            break;
        case Kind::kReal:
            TakeNumber(rank, static_cast<std::uint64_t>(value));
            break;
        case Kind::kWideInteger:
        case Kind::kWidePhysical: {
            bool exact = true;
            TakeNumber(rank, std::bit_cast<std::uint64_t>(ToReal(value, net.scale, exact)));
            if (!exact && numbers_.contains(rank)) {
                notes_.Add(offset, "a value of 64 bits has lost digits as a real number");
            }
            break;
        }
        default:
            static_cast<std::int32_t>(value) == value
                ? TakeNumber(rank, static_cast<std::uint32_t>(value))
                : none();
    }
}

void Changes::TakeNumber(std::size_t rank, std::uint64_t value) {
    const auto found = numbers_.find(rank);
    if (found == numbers_.end()) {
        return;
    }
    Number& number = found->second;
    number.next = value;
    if (!number.waits) {
        number.waits = true;
        waiting_numbers_.push_back(rank);
    }
}

// ---- telling ----

void Changes::TellMoment() {
    // Listed elements that are back at their previous value are not changes.
    for (const Other& other : others_) {
        const Position& position = positions_[other.rank];
        if (other.known && other.value == position.value) {
            gathered_[position.channel].others &= ~position.bit;
        }
    }
    for (std::size_t i = 0; i < waiting_count_; ++i) {
        const std::uint32_t channel = waiting_[i];
        Gathered& gathered = gathered_[channel];
        if (gathered.others != 0) [[unlikely]] {
            TellElements(channel);
        } else if (gathered.flips != 0 && kept_) {
            kept_ = builder_.Toggle(channel, gathered.flips);
        }
        gathered = {};
    }
    waiting_count_ = 0;
    others_.clear();
    TellNumbers();
}

// Passes on the elements of a channel of which some do more than flip.
void Changes::TellElements(std::uint32_t number) {
    const Gathered& gathered = gathered_[number];
    const Channel& channel = signals_.channel(number);
    std::uint64_t values[recording::kMostElements];
    std::uint64_t* value = values;
    const std::uint32_t mask = gathered.flips | gathered.others;
    for (unsigned i = 0; i < channel.count; ++i) {
        if ((mask & recording::ElementBit(i, channel.count)) != 0) {
            *value++ = positions_[ranks_[channel.first_leaf + i]].value;
        }
    }
    kept_ = kept_ && builder_.SetElements(number, mask, values);
}

void Changes::TellNumbers() {
    for (const std::size_t rank : waiting_numbers_) {
        Number& number = numbers_[rank];
        number.waits = false;
        if (kept_ && (!number.known || number.value != number.next)) {
            kept_ = builder_.SetElements(number.channel, 1, &number.next);
        }
        number.value = number.next;
        number.known = true;
    }
    waiting_numbers_.clear();
}

}  // namespace

WholeValues FindWholeValues(const ChangeSource& source, recording::Notes& notes) {
    Passer passer(source);
    ChangeWalk walk(source, passer, &notes);
    walk.Walk();
    const std::int64_t time = walk.whole_time();
    return {time < 0 ? -1 : source.time_scale.ToPicoseconds(time), walk.whole_end()};
}

bool ReadChanges(const ChangeSource& source, const recording::SignalTable& signals,
                 std::span<const std::uint32_t> leaves, recording::BlockSink& blocks,
                 recording::Notes& notes) {
    Changes changes(source, signals, leaves, blocks, notes);
    ChangeWalk(source, changes, nullptr).Walk();
    return changes.Finish();
}

}  // namespace corv::ghw
