#pragma once

#include <array>
#include <cstring>
#include <new>
#include <string_view>

namespace corv::signals {

// A text with its terminating zero, or none at all. A short one lies within the object, which has
// no alignment of its own; so a name takes a signal no block of the heap.
class ShortText {
public:
    ShortText() noexcept { bytes_.back() = kNone; }
    ShortText(const ShortText&) = delete;
    ShortText& operator=(const ShortText&) = delete;
    ~ShortText() { Free(); }

    // Null when there is none. The pointer is valid until the next Set.
    const char* Get() const noexcept {
        return bytes_.back() == kNone ? nullptr : bytes_.back() == kApart ? Block() : bytes_.data();
    }

    // The text may be the present one or a part of it. False, with nothing changed, when memory
    // runs out.
    bool Set(std::string_view text) noexcept {
        if (text.size() < kRoom) {
            std::array<char, kRoom> copy{};
            text.copy(copy.data(), text.size());
            Free();
            std::memcpy(bytes_.data(), copy.data(), kRoom);
            bytes_.back() = kWithin;
            return true;
        }
        char* const block = static_cast<char*>(::operator new(text.size() + 1, std::nothrow));
        if (block == nullptr) {
            return false;
        }
        block[text.copy(block, text.size())] = '\0';
        Free();
        std::memcpy(bytes_.data(), &block, sizeof block);
        bytes_.back() = kApart;
        return true;
    }

private:
    static constexpr std::size_t kRoom = 12;  // with the zero
    static constexpr char kWithin = 0;
    static constexpr char kApart = 1;
    static constexpr char kNone = 2;

    char* Block() const noexcept {
        char* block = nullptr;
        std::memcpy(&block, bytes_.data(), sizeof block);
        return block;
    }
    void Free() noexcept {
        if (bytes_.back() == kApart) {
            ::operator delete(Block());
        }
    }

    std::array<char, kRoom + 1> bytes_{};  // a short text or the address of a block; its kind
};

}  // namespace corv::signals
