#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "util/flat_index.h"

namespace corv::containers {

// Handles, none negative, in the order in which they were added, each once. Handles that ascend are
// known to be new without a look; a list of others gets an index when it is long.
class HandleList {
public:
    // Appends a handle unless it is there. Throws, with the list as it was, when memory runs out.
    void Add(int handle);
    void Clear() noexcept;

    std::size_t Count() const noexcept { return handles_.size(); }
    // -1 past the end.
    int At(std::size_t index) const noexcept {
        return index < handles_.size() ? handles_[index] : -1;
    }

private:
    bool Contains(int handle);
    void FillIndex();
    std::uint32_t& EntryOf(int handle) noexcept;

    std::vector<int> handles_;
    util::FlatIndex<std::uint32_t> index_;  // of handles + 1
    std::size_t indexed_ = 0;               // handles in the index, from the list's start
    int highest_ = -1;
};

}  // namespace corv::containers
