#pragma once

#include <cstddef>
#include <vector>

#include "containers/scalar_data.h"
#include "corv/frame/com_ptr.h"

namespace corv::containers {

// Scalars in ascending order of their handles, at most one for each handle.
//
// There are two lists in that order: the main one, and a short one of scalars that arrived when the
// main one had gone past their handles. A scalar that is removed from the main list leaves a gap.
// So scalars come and go in any order without moving a long list each time. The short list is
// merged in and the gaps are closed before a scalar is asked for by its place.
class OrderedScalars {
public:
    using Ptr = frame::ComPtr<ScalarData>;

    OrderedScalars() noexcept = default;
    OrderedScalars(const OrderedScalars&) = delete;
    OrderedScalars& operator=(const OrderedScalars&) = delete;
    ~OrderedScalars() { Clear(); }

    // Throws when there is no memory for the first few.
    void Reserve();

    // Null when there is none.
    ScalarData* Find(int handle) const noexcept;
    // Takes a scalar whose handle is not there. Throws, with nothing changed, without memory.
    void Insert(int handle, Ptr scalar);
    // Releases the scalar of a handle.
    void Remove(int handle) noexcept;
    void Clear() noexcept;

    std::size_t Count() const noexcept { return main_.size() - gaps_ + late_.size(); }
    // Null past the end.
    ScalarData* At(std::size_t index) noexcept;

private:
    struct Slot {
        int handle;
        ScalarData* scalar;  // counted; null in a gap
    };
    using Slots = std::vector<Slot>;

    static bool IsBefore(const Slot& a, const Slot& b) noexcept { return a.handle < b.handle; }
    // The slot of a handle, the list's end when there is none.
    template <class List>
    static auto SlotOf(List& slots, int handle) noexcept;
    void MakeRoom();
    void Combine() noexcept;

    Slots main_;  // with room for the late ones
    Slots late_;
    std::size_t gaps_ = 0;
};

}  // namespace corv::containers
