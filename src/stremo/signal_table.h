#pragma once

#include <bit>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <unordered_map>
#include <vector>

// The signals of a recording: their tree, and the way from a handle to where its changes are.
//
// Three numberings, each from 0 without gaps:
//
//     signal    a place in the tree, depth first: composites and scalars
//     leaf      a scalar value that changes. Scalars that share a handle (names of one net) share
//               the leaf
//     channel   what changes are grouped by: one leaf, or up to 32 neighbouring leaves, the
//               elements of a vector, whose common change is stored once. The leaves of a channel
//               have consecutive numbers; a wide vector takes several channels
//
// Handles are numbers from 0 by which the host knows a signal.
namespace corv::recording {

inline constexpr std::uint32_t kNone = 0xFFFFFFFF;
inline constexpr unsigned kMostElements = 32;
// The maximum nesting of composites, since loaders are recursive.
inline constexpr std::size_t kMostLevels = 256;

// An element within its channel is one bit of a mask. The last element is bit 0, so that the mask
// of a vector reads as the number that the vector shows.
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
    const char* type = "";     // the type-description string; empty if not recorded
    std::int64_t latest = -1;  // the latest known time
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

// Maps a handle to the number of a signal or leaf that was inserted with it first. Handles are
// mostly small numbers without large gaps, for which a vector is fastest; the others are in a map.
class HandleIndex {
public:
    // Does nothing if the handle is already there.
    void Insert(int handle, std::uint32_t number);
    // Returns kNone if it is not there.
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

// Zero-terminated texts whose addresses do not change. Blocks of memory for many texts are much
// cheaper than one allocation for each name.
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

// The table is made in two steps: first all signals are added in depth-first order, then Finish is
// called.
class SignalTable {
public:
    SignalTable() = default;
    SignalTable(SignalTable&&) noexcept = default;
    SignalTable& operator=(SignalTable&&) noexcept = default;
    ~SignalTable() = default;

    // ---- making. Texts must live as long as the table; Keep makes them do.

    // Return a zero-terminated copy of a text that lives as long as the table. KeepShared keeps
    // equal texts (types) once.
    std::string_view Keep(std::string_view text) { return texts_.Keep(text); }
    const char* KeepShared(std::string_view text) { return texts_.KeepShared(text); }

    // Adds the next signal and returns its number. Of `signal`, `name`, `type`, `latest`, `handle`,
    // `mode`, `composite`, `member_count` and `joins` are used; the table sets the rest. The
    // members of a composite must follow it. Handle -1 requests an unused one. A scalar with the
    // handle of an earlier scalar is another name of the same leaf. A scalar joins if it and the
    // scalar before it are members of one composite and have leaves of their own; the table begins
    // a new channel after 32 elements. Returns kNone, with nothing added, if the handle is below
    // -1, if it is taken and one of the two signals is a composite, and past kMostLevels.
    std::uint32_t Add(const Signal& signal);
    void SetType(std::uint32_t signal, const char* type) noexcept { signals_[signal].type = type; }
    // Must be called before Finish.
    void SetJoins(std::uint32_t signal, bool joins) noexcept { signals_[signal].joins = joins; }
    void AddProperty(std::uint32_t signal, std::string_view key, const char* value);
    void SetLatest(std::uint32_t signal, std::int64_t time) noexcept {
        signals_[signal].latest = time;
    }

    // Returns whether every composite has all its members.
    bool whole() const noexcept { return open_.empty(); }
    // Assigns handles, leaves and channels and makes the lists of members. All composites must be
    // whole; no signals may be added afterwards.
    void Finish();

    // ---- asking

    std::size_t size() const noexcept { return signals_.size(); }
    const Signal& operator[](std::uint32_t signal) const noexcept { return signals_[signal]; }
    const std::vector<Property>& properties() const noexcept { return properties_; }

    // After Finish.
    std::span<const std::uint32_t> TopLevel() const noexcept;
    std::span<const std::uint32_t> Members(std::uint32_t signal) const noexcept;
    // Returns the first signal of a handle, kNone if there is none. Works before Finish, too.
    std::uint32_t Find(int handle) const noexcept;
    // Returns the value of a property, null if there is none.
    const char* FindProperty(std::uint32_t signal, std::string_view key) const noexcept;
    // Returns the leaf of a scalar's handle, kNone for composites and unknown handles.
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
        std::uint32_t missing;  // members that have not been added yet
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
