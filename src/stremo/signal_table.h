#pragma once

#include <bit>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <unordered_map>
#include <vector>

// The signals of a recording: their tree, and the way from a handle to where the changes are held.
//
// Three numberings, each from 0 without gaps:
//
//     signal    a place in the tree, depth first: composites and scalars
//     leaf      a scalar value that changes. Scalars that share a handle (names of one net) share
//               the leaf
//     channel   what changes are held by: one leaf, or up to 32 neighbouring leaves, the elements
//               of a vector, whose common change is held once. The leaves of a channel are numbered
//               one after the other; a wide vector takes several channels
//
// Handles are numbers from 0 that the host knows a signal by.
namespace corv::recording {

inline constexpr std::uint32_t kNone = 0xFFFFFFFF;
inline constexpr unsigned kMostElements = 32;
// Of composites within each other: what a loader that calls itself can stand.
inline constexpr std::size_t kMostLevels = 256;

// An element within its channel is one bit of a mask: the last element is bit 0, so that the masks
// of a vector read as the number that the vector shows.
constexpr std::uint32_t ElementBit(unsigned element, unsigned count) noexcept {
    return std::uint32_t{1} << (count - 1 - element);
}
constexpr std::uint32_t AllElements(unsigned count) noexcept {
    return 0xFFFFFFFF >> (kMostElements - count);
}

// Calls `action` with each element of a mask, in order.
template <class Action>
inline void ForElements(std::uint32_t mask, unsigned count, Action action) {
    while (mask != 0) {
        const auto bit = static_cast<unsigned>(std::bit_width(mask)) - 1;
        mask ^= std::uint32_t{1} << bit;
        action(count - 1 - bit);
    }
}

struct Signal {
    std::string_view name;
    const char* type = "";     // the type-description string; empty: not recorded
    std::int64_t latest = -1;  // the latest time that is known
    std::int32_t handle = -1;
    std::int32_t mode = 0;
    std::uint32_t parent = kNone;
    std::uint32_t members = 0;  // the first in the list of members
    std::uint32_t member_count = 0;
    std::uint32_t leaf = kNone;  // of a scalar
    bool composite = false;
    bool joins = false;  // a scalar that continues the channel of the scalar before it
};

struct Channel {
    std::uint32_t first_leaf;
    std::uint32_t count;  // of leaves, 1 to kMostElements
};

struct Property {
    std::uint32_t signal;
    std::string_view key;
    const char* value;
};

// From a handle to the number that was inserted with it first, of a signal or a leaf. Handles are
// mostly small numbers without large gaps; the others stand in a map.
class HandleIndex {
public:
    // Nothing happens when the handle is there already.
    void Insert(int handle, std::uint32_t number);
    // kNone when it is not there.
    std::uint32_t Find(int handle) const noexcept {
        const auto place = static_cast<std::size_t>(handle);
        return place < near_.size() && near_[place] != kNone ? near_[place] : FindFar(handle);
    }
    int greatest() const noexcept { return greatest_; }

private:
    std::uint32_t FindFar(int handle) const noexcept;

    std::vector<std::uint32_t> near_;
    std::unordered_map<int, std::uint32_t> far_;
    std::size_t count_ = 0;
    int greatest_ = -1;
};

// Texts that end with a zero and stay where they are.
class TextPool {
public:
    std::string_view Keep(std::string_view text);
    // Equal texts are kept once.
    const char* KeepShared(std::string_view text);

private:
    std::vector<std::unique_ptr<char[]>> blocks_;
    std::size_t used_ = 0;  // of the last block
    std::size_t room_ = 0;
    std::unordered_map<std::string_view, const char*> shared_;
};

// Made in two steps: all signals in depth-first order, then Finish.
class SignalTable {
public:
    SignalTable() = default;
    SignalTable(SignalTable&&) noexcept = default;
    SignalTable& operator=(SignalTable&&) noexcept = default;
    ~SignalTable() = default;

    // ---- making. Texts must live as long as the table; Keep makes them do.

    // A copy of a text that ends with a zero and lives as long as the table. Equal texts that were
    // kept with KeepShared (types) are one.
    std::string_view Keep(std::string_view text) { return texts_.Keep(text); }
    const char* KeepShared(std::string_view text) { return texts_.KeepShared(text); }

    // Adds the next signal: `name`, `type`, `latest`, `handle`, `mode`, `composite`,
    // `member_count` and `joins` count, the table sets the rest. After a composite its members
    // follow. Handle -1 asks for an unused one. A scalar whose handle an earlier scalar has is
    // another name of the same leaf. A scalar joins when it and the scalar before it are members of
    // one composite and have leaves of their own; the table begins a new channel after 32 elements.
    // Gives the signal's number; kNone, with nothing added, when the handle is below -1, when it is
    // taken and one of the two is a composite, and past kMostLevels.
    std::uint32_t Add(const Signal& signal);
    void SetType(std::uint32_t signal, const char* type) noexcept { signals_[signal].type = type; }
    // Before Finish.
    void SetJoins(std::uint32_t signal, bool joins) noexcept { signals_[signal].joins = joins; }
    void AddProperty(std::uint32_t signal, std::string_view key, const char* value);
    void SetLatest(std::uint32_t signal, std::int64_t time) noexcept {
        signals_[signal].latest = time;
    }

    // Whether every composite has all its members.
    bool whole() const noexcept { return open_.empty(); }
    // Gives out handles, leaves and channels and makes the lists of members. The signals must be
    // whole; none may be added any more.
    void Finish();

    // ---- asking

    std::size_t size() const noexcept { return signals_.size(); }
    const Signal& operator[](std::uint32_t signal) const noexcept { return signals_[signal]; }
    const std::vector<Property>& properties() const noexcept { return properties_; }

    // After Finish.
    std::span<const std::uint32_t> TopLevel() const noexcept;
    std::span<const std::uint32_t> Members(std::uint32_t signal) const noexcept;
    // The first signal of a handle, kNone when there is none. Before Finish too.
    std::uint32_t Find(int handle) const noexcept;
    // The value of a property, null when there is none.
    const char* FindProperty(std::uint32_t signal, std::string_view key) const noexcept;
    // The leaf of a scalar's handle; kNone for composites and unknown handles.
    std::uint32_t FindLeaf(int handle) const noexcept { return handle_leaves_.Find(handle); }

    std::uint32_t leaf_count() const noexcept {
        return static_cast<std::uint32_t>(leaf_handles_.size());
    }
    std::uint32_t channel_count() const noexcept {
        return static_cast<std::uint32_t>(channels_.size());
    }
    int LeafHandle(std::uint32_t leaf) const noexcept { return leaf_handles_[leaf]; }
    std::uint32_t LeafChannel(std::uint32_t leaf) const noexcept { return leaf_channels_[leaf]; }
    const Channel& channel(std::uint32_t number) const noexcept { return channels_[number]; }

private:
    struct OpenComposite {
        std::uint32_t signal;
        std::uint32_t missing;  // members that have not been added
    };
    void Place(std::uint32_t number);
    void GiveHandles();
    void MakeMembers();
    void MakeLeaves();
    bool Joins(std::uint32_t number) const noexcept;
    void MakeLeaf(std::uint32_t number);

    std::vector<Signal> signals_;
    std::vector<Property> properties_;  // by signal after Finish
    HandleIndex handles_;
    std::vector<OpenComposite> open_;  // the composites around the next signal

    std::vector<std::uint32_t> top_level_;
    std::vector<std::uint32_t> members_;  // of all composites
    HandleIndex handle_leaves_;
    std::vector<int> leaf_handles_;
    std::vector<std::uint32_t> leaf_channels_;
    std::vector<Channel> channels_;
    TextPool texts_;
};

}  // namespace corv::recording
