#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "util/flat_index.h"

class ISignal;

namespace corv::containers {

using SignalList = std::vector<ISignal*>;

// The first signal of a name (without regard to case) in a list; null when there is none.
ISignal* FindByLooking(const SignalList& signals, std::string_view name) noexcept;

// Finds the signals of one list by name, without a look at each, as long as all of them let their
// names be watched. Finding takes no memory.
//
// The index is filled when that pays: the list is looked through until this has cost as much.
// Signals that are appended afterwards are filled in; any other change empties it.
class NameIndex {
public:
    // A shorter list is looked through faster.
    static constexpr std::size_t kFewestNames = 65;

    // A signal joins the list, anywhere.
    void Watch(ISignal& signal) noexcept;

    // The list has one signal more at its end, or is new. When memory runs out it is looked through
    // from then on.
    void Follow(const SignalList& signals) noexcept;

    // The list has changed otherwise.
    void Reset() noexcept;

    ISignal* Find(const SignalList& signals, std::string_view name) noexcept;

private:
    bool IsUsable(const SignalList& signals) const noexcept {
        return is_watching_ && index_.HasRoomFor(signals.size());
    }
    void Reserve(std::size_t count) noexcept;
    void Fill(const SignalList& signals) noexcept;
    // The place of a name in the index: that of the first signal so named, or a free one.
    std::uint32_t& EntryOf(const SignalList& signals, std::string_view name) noexcept;

    util::FlatIndex<std::uint32_t> index_;  // of places in the list + 1
    std::size_t indexed_ = 0;               // signals of the list, from its start
    std::size_t looked_at_ = 0;             // signals, since the last change
    std::uint64_t renamings_ = 0;           // when the index was filled
    bool is_watching_ = true;               // all signals of the list
};

}  // namespace corv::containers
