#pragma once

#include <array>
#include <charconv>
#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>

#include "corv/frame/com_ptr.h"
#include "corv/signals/signal.h"

namespace corv::containers {

class HandleManager;

// The name of an element: "(3)".
class IndexName {
public:
    explicit IndexName(std::int64_t index) noexcept {
        *std::to_chars(text_.data() + 1, text_.data() + text_.size() - 2, index).ptr = ')';
    }
    const char* Text() const noexcept { return text_.data(); }

    // The index of a name that is written just so.
    static std::optional<std::int64_t> Read(std::string_view name) noexcept {
        int index = 0;
        if (!name.empty()) {
            std::from_chars(name.data() + 1, name.data() + name.size(), index);
        }
        return name == IndexName(index).Text() ? std::optional<std::int64_t>(index) : std::nullopt;
    }

private:
    std::array<char, std::numeric_limits<std::int64_t>::digits10 + 6> text_{'('};
};

// The elements of an array that a container makes when it is asked for one: they differ in nothing
// but their indices and handles, which go up or down by one.
struct LateMembers {
    std::int64_t IndexAt(int place) const noexcept { return index + std::int64_t{place} * step; }

    frame::ComPtr<ISignal> first;      // which the others are like; a CSignal
    HandleManager* manager = nullptr;  // lists the handles; null when it has forgotten them
    int handle = 0;                    // the first one's
    int count = 0;
    std::int64_t index = 0;
    int step = 0;
};

}  // namespace corv::containers
