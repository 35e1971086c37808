#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

class ISignal;

namespace corv::containers {

// Whether a zero-terminated name and a text are equal without regard to case.
bool IsNamed(const char* name, std::string_view text) noexcept;

// Finds signals of a list by name without a look at each. It serves while the list only grows at
// its end and names stay; after any other change it is reset.
class NameIndex {
public:
    // The first signal of that name, null when there is none. The list is the one that was given
    // since the last reset, with what was appended. Throws when memory runs out.
    ISignal* Find(const std::vector<ISignal*>& signals, std::string_view name);
    void Reset() noexcept;

private:
    // The slot of a name: the one of the first signal of that name, or the free one for it.
    std::size_t FindSlot(const std::vector<ISignal*>& signals,
                         std::string_view name) const noexcept;
    void Append(const std::vector<ISignal*>& signals, std::size_t place) noexcept;
    void Grow(const std::vector<ISignal*>& signals);

    std::vector<std::uint32_t> slots_;  // a power of two of them: place in the list + 1, 0 is free
    std::size_t indexed_ = 0;           // signals of the list, at most half the slots
};

}  // namespace corv::containers
