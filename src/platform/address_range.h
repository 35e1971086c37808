#pragma once

#include <cstddef>
#include <utility>

namespace corv::platform {

// A run of addresses that is set aside at once and gets its memory piece by piece, from the front:
// what lies in it never moves while it grows, and pages that are not touched cost nothing. Where
// the system offers no such thing every range is empty.
//
// A range that is not needed any more can be kept with its memory for the next owner: new pages
// cost more than filling them. Ranges may be used on several threads, each one on one at a time.
class AddressRange {
public:
    // Below this many bytes a block of the heap serves better.
    static constexpr std::size_t kWorthwhile = std::size_t{128} << 10;
    // The most memory that kept ranges hold in all: while others are in use and when none is.
    static constexpr std::size_t kMostKeptBytes = std::size_t{32} << 20;
    static constexpr std::size_t kMostLeftBytes = std::size_t{4} << 20;

    // Sets aside `wanted` bytes, or `least` when ranges have many addresses already or the process
    // has few, or up to twice as many; none of them usable yet (or some, in a kept range). Empty
    // when the system has no more addresses to give, enough ranges are in use, or they would have
    // more than half of the addresses that the process is limited to.
    static AddressRange Reserve(std::size_t least, std::size_t wanted) noexcept;

    // Keeps a range that is not in use any more for a later Reserve, unless enough memory is kept
    // already. Its content is lost.
    static void Keep(AddressRange range) noexcept;
    // Gives the kept ranges back to the system.
    static void ReleaseKept() noexcept;

    AddressRange() noexcept = default;
    AddressRange(AddressRange&& other) noexcept
        : data_(std::exchange(other.data_, nullptr)),
          reserved_(std::exchange(other.reserved_, 0)),
          usable_(std::exchange(other.usable_, 0)) {}
    AddressRange& operator=(AddressRange&& other) noexcept {
        std::swap(data_, other.data_);
        std::swap(reserved_, other.reserved_);
        std::swap(usable_, other.usable_);
        return *this;
    }
    ~AddressRange();

    explicit operator bool() const noexcept { return data_ != nullptr; }
    void* data() const noexcept { return data_; }
    std::size_t reserved() const noexcept { return reserved_; }
    // The bytes at the front that may be read and written.
    std::size_t usable() const noexcept { return usable_; }

    // Makes the first `bytes` usable, at most reserved(). False, with nothing changed, when memory
    // runs out.
    bool Commit(std::size_t bytes) noexcept;

    // Gives the memory behind the first `used` bytes back. It stays usable; its content is lost.
    void Trim(std::size_t used) noexcept;

private:
    static AddressRange Map(std::size_t bytes) noexcept;

    AddressRange(void* data, std::size_t reserved, std::size_t usable) noexcept
        : data_(data), reserved_(reserved), usable_(usable) {}

    void* data_ = nullptr;
    std::size_t reserved_ = 0;
    std::size_t usable_ = 0;
};

}  // namespace corv::platform
