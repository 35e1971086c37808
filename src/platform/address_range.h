#pragma once

#include <cstddef>
#include <utility>

namespace corv::platform {

// A run of addresses that is reserved at once and receives its memory piece by piece, from the
// front: its content never moves while it grows, and pages that are not touched cost nothing. Where
// the system does not support this, every range is empty.
//
// A range that is no longer needed can be kept with its memory for the next owner, since new pages
// cost more than filling them. Ranges may be used on several threads, each range on one thread at a
// time.
class AddressRange {
public:
    // Below this size a block of the heap is better.
    static constexpr std::size_t kWorthwhile = std::size_t{128} << 10;
    // The limits for the memory of all kept ranges together: while other ranges are in use, and
    // when none is.
    static constexpr std::size_t kMostKeptBytes = std::size_t{32} << 20;
    static constexpr std::size_t kMostLeftBytes = std::size_t{4} << 20;

    // Reserves `wanted` bytes, or `least` if the ranges already have many addresses or the process
    // has few, rounded up to at most twice as many. None of them are usable yet, except in a kept
    // range. The result is empty if the system has no more addresses, if too many ranges are in
    // use, or if the ranges would take more than half of the addresses that the process may have.
    static AddressRange Reserve(std::size_t least, std::size_t wanted) noexcept;

    // Keeps a range that is no longer in use for a later Reserve, unless enough memory is already
    // kept. Its content is lost.
    static void Keep(AddressRange range) noexcept;
    // Returns the kept ranges to the system.
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

    // Makes the first `bytes` usable, at most reserved(). Returns false, with nothing changed, if
    // out of memory.
    bool Commit(std::size_t bytes) noexcept;

    // Returns the memory after the first `used` bytes to the system. It stays usable; its content
    // is lost.
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
