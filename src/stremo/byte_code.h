#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <type_traits>
#include <vector>

#include "platform/files.h"

// Numbers in the bytes of recordings: little-endian numbers of fixed width, and numbers of variable
// length with seven bits per byte, the low ones first, and the highest bit set in all bytes but the
// last (300 is AC 02). Signed numbers are folded first: 0, -1, 1, -2 become 0, 1, 2, 3.
namespace corv::recording {

using platform::Bytes;

template <class T>
inline T LoadNumber(const unsigned char* bytes) noexcept {
    static_assert(std::is_unsigned_v<T>);
    T value;
    if constexpr (std::endian::native == std::endian::little) {
        std::memcpy(&value, bytes, sizeof value);
    } else {
        value = 0;
        for (std::size_t i = 0; i < sizeof value; ++i) {
            value = static_cast<T>(value | static_cast<T>(T{bytes[i]} << (8 * i)));
        }
    }
    return value;
}

template <class T>
inline void StoreNumber(unsigned char* bytes, T value) noexcept {
    static_assert(std::is_unsigned_v<T>);
    if constexpr (std::endian::native == std::endian::little) {
        std::memcpy(bytes, &value, sizeof value);
    } else {
        for (std::size_t i = 0; i < sizeof value; ++i) {
            bytes[i] = static_cast<unsigned char>(value >> (8 * i));
        }
    }
}

// Stores a value as readers deliver it: 16 bytes, those after the number zero.
inline void StoreValue(void* buffer, std::uint64_t value) noexcept {
    auto* const bytes = static_cast<unsigned char*>(buffer);
    StoreNumber(bytes, value);
    std::memset(bytes + sizeof value, 0, 16 - sizeof value);
}

constexpr std::uint64_t Fold(std::int64_t value) noexcept {
    return (static_cast<std::uint64_t>(value) << 1) ^ static_cast<std::uint64_t>(value >> 63);
}
constexpr std::int64_t Unfold(std::uint64_t folded) noexcept {
    return static_cast<std::int64_t>((folded >> 1) ^ (0 - (folded & 1)));
}

// Returns the number of bytes of a number of variable length, 1 to 10.
constexpr std::size_t VariableLength(std::uint64_t value) noexcept {
    return (static_cast<std::size_t>(std::bit_width(value | 1)) + 6) / 7;
}

// Writes a number of variable length, which takes at most 10 bytes, and returns its end.
inline unsigned char* StoreVariable(unsigned char* to, std::uint64_t value) noexcept {
    for (; value >= 0x80; value >>= 7) {
        *to++ = static_cast<unsigned char>(value | 0x80);
    }
    *to++ = static_cast<unsigned char>(value);
    return to;
}

// Appends to bytes.
class ByteWriter {
public:
    explicit ByteWriter(std::vector<unsigned char>& bytes) noexcept : bytes_(bytes) {}

    void Byte(unsigned value) { bytes_.push_back(static_cast<unsigned char>(value)); }
    template <class T>
    void Number(T value) {
        bytes_.resize(bytes_.size() + sizeof value);
        StoreNumber(bytes_.data() + bytes_.size() - sizeof value, value);
    }
    // The low bytes of a number.
    void Number(std::uint64_t value, std::size_t width) {
        Number(value);
        bytes_.resize(bytes_.size() - sizeof value + width);
    }
    void Variable(std::uint64_t value) {
        for (; value >= 0x80; value >>= 7) {
            Byte(static_cast<unsigned>(value & 0x7F) | 0x80);
        }
        Byte(static_cast<unsigned>(value));
    }
    void Text(std::string_view text) { bytes_.insert(bytes_.end(), text.begin(), text.end()); }
    std::size_t size() const noexcept { return bytes_.size(); }

private:
    std::vector<unsigned char>& bytes_;
};

// Reads from bytes that may contain anything: past the end every number is 0 and ok() is false, so
// callers check once after reading several numbers.
class ByteReader {
public:
    ByteReader() noexcept = default;
    explicit ByteReader(Bytes bytes) noexcept
        : at_(bytes.data()), end_(bytes.data() + bytes.size()) {}

    // Returns a reader without bytes that is not ok.
    static ByteReader Failed() noexcept {
        ByteReader reader;
        reader.ok_ = false;
        return reader;
    }

    bool ok() const noexcept { return ok_; }
    bool AtEnd() const noexcept { return at_ == end_; }
    std::size_t left() const noexcept { return static_cast<std::size_t>(end_ - at_); }

    template <class T>
    T Number() noexcept {
        const unsigned char* const bytes = Take(sizeof(T));
        return bytes != nullptr ? LoadNumber<T>(bytes) : T{0};
    }
    // Of 0 to 8 bytes.
    std::uint64_t Number(std::size_t width) noexcept {
        unsigned char bytes[8] = {};
        if (const unsigned char* const taken = Take(width)) {
            std::memcpy(bytes, taken, width);
        }
        return LoadNumber<std::uint64_t>(bytes);
    }
    std::uint64_t Variable() noexcept {
        if (left() >= 2) [[likely]] {
            // One byte or two without a branch, since the processor cannot predict which it is.
            const std::uint32_t bytes = LoadNumber<std::uint16_t>(at_);
            const std::uint32_t more = bytes >> 7 & 1;
            if ((more & bytes >> 15) == 0) [[likely]] {
                at_ += 1 + more;
                return (bytes & 0x7F) | (bytes >> 1 & 0x3F80 & (0 - more));
            }
        }
        return LongVariable();
    }
    // Takes a part of the bytes; returns null if there are fewer.
    const unsigned char* Take(std::size_t count) noexcept {
        if (count > left()) {
            Fail();
            return nullptr;
        }
        const unsigned char* const taken = at_;
        at_ += count;
        return taken;
    }
    std::string_view Text(std::size_t length) noexcept {
        const unsigned char* const text = Take(length);
        return text != nullptr ? std::string_view(reinterpret_cast<const char*>(text), length)
                               : std::string_view();
    }
    // For callers that find the numbers meaningless.
    void Fail() noexcept {
        ok_ = false;
        at_ = end_;
    }

private:
    std::uint64_t LongVariable() noexcept {
        std::uint64_t value = 0;
        for (unsigned shift = 0; at_ != end_; shift += 7) {
            const std::uint64_t byte = *at_++;
            if (shift == 63 && byte > 1) {
                break;  // more than 64 bits
            }
            value |= (byte & 0x7F) << shift;
            if (byte < 0x80) {
                return value;
            }
        }
        Fail();
        return 0;
    }

    const unsigned char* at_ = nullptr;
    const unsigned char* end_ = nullptr;
    bool ok_ = true;
};

}  // namespace corv::recording
