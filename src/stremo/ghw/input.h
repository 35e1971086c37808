#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "stremo/byte_code.h"

// What all parts of a GHW file consist of: bytes, numbers of 4 and 8 bytes in the file's byte
// order, and numbers of variable length with seven bits per byte, the low ones first, and the
// highest bit set in all bytes but the last. In signed numbers bit 6 of the last byte is the sign.
namespace corv::ghw {

using recording::Bytes;

// Reads from a file that may contain anything. What cannot be read is 0 and makes the input fail:
// it stays at that place and returns nothing more until GoTo sends it elsewhere.
class Input {
public:
    explicit Input(Bytes file) noexcept
        : file_(file), at_(file.data()), end_(file.data() + file.size()) {}

    void SetBigEndian(bool big) noexcept { big_endian_ = big; }
    void GoTo(std::size_t offset) noexcept {
        at_ = file_.data() + offset;
        end_ = file_.data() + file_.size();
        failure_ = nullptr;
        cut_ = false;
    }

    // The place as a pointer, for loops that read on their own.
    const unsigned char* at() const noexcept { return at_; }
    void MoveTo(const unsigned char* at) noexcept { at_ = at; }

    Bytes file() const noexcept { return file_; }
    std::size_t offset() const noexcept { return static_cast<std::size_t>(at_ - file_.data()); }
    std::size_t left() const noexcept { return static_cast<std::size_t>(end_ - at_); }
    bool AtEnd() const noexcept { return at_ == end_; }

    bool ok() const noexcept { return failure_ == nullptr; }
    // Returns whether it failed because the file ends.
    bool cut() const noexcept { return cut_; }
    // Returns why it failed, as a part of a sentence.
    const char* failure() const noexcept { return failure_; }
    // For callers that find nonsense. The first failure counts; the text must be static.
    void Fail(const char* why) noexcept {
        failure_ = ok() ? why : failure_;
        end_ = at_;
    }

    unsigned Byte() noexcept {
        if (at_ == end_) {
            FailAtEnd();
            return 0;
        }
        return *at_++;
    }
    std::uint64_t Unsigned() noexcept {
        if (at_ != end_ && *at_ < 0x80) [[likely]] {
            return *at_++;
        }
        return static_cast<std::uint64_t>(Long<false>());
    }
    std::int64_t Signed() noexcept {
        if (at_ != end_ && *at_ < 0x80) [[likely]] {
            const int value = *at_++;
            return value - (value << 1 & 0x80);
        }
        return Long<true>();
    }
    std::uint32_t Number32() noexcept { return Number<std::uint32_t>(); }
    // For a real number, the bits of its double.
    std::uint64_t Number64() noexcept { return Number<std::uint64_t>(); }

    // Reads these bytes if they come next; returns whether they do.
    bool Skip(std::string_view bytes) noexcept {
        const bool stands =
            left() >= bytes.size() && std::memcmp(at_, bytes.data(), bytes.size()) == 0;
        at_ += stands ? bytes.size() : 0;
        return stands;
    }

    // Returns whether the file ends within these bytes, which then is a failure.
    bool IsCutIn(std::string_view bytes) noexcept {
        if (left() >= bytes.size() || std::memcmp(at_, bytes.data(), left()) != 0) {
            return false;
        }
        FailAtEnd();
        return true;
    }

private:
    template <class T>
    T Number() noexcept {
        if (left() < sizeof(T)) {
            FailAtEnd();
            return 0;
        }
        T value = 0;
        for (unsigned i = 0; i < sizeof value; ++i) {
            value |= T{at_[i]} << 8 * (big_endian_ ? sizeof value - 1 - i : i);
        }
        at_ += sizeof value;
        return value;
    }

    template <bool kIsSigned>
    std::int64_t Long() noexcept {
        std::uint64_t value = 0;
        unsigned shift = 0;
        for (const unsigned char* at = at_; at != end_; shift += 7) {
            const std::uint64_t byte = *at++;
            // the tenth byte has only the last bit, or the sign
            if (shift == 63 && byte > 1 && !(kIsSigned && byte == 0x7F)) {
                Fail("a number has more than 64 bits");
                return 0;
            }
            value |= (byte & 0x7F) << shift;
            if (byte < 0x80) {
                at_ = at;
                const bool negative = kIsSigned && (byte & 0x40) != 0 && shift < 63;
                value |= negative ? ~std::uint64_t{0} << (shift + 7 < 63 ? shift + 7 : 63) : 0;
                return static_cast<std::int64_t>(value);
            }
        }
        FailAtEnd();
        return 0;
    }

    void FailAtEnd() noexcept {
        cut_ = cut_ || ok();
        Fail("the file ends");
    }

    Bytes file_;
    const unsigned char* at_;
    const unsigned char* end_;
    const char* failure_ = nullptr;
    bool cut_ = false;
    bool big_endian_ = false;
};

}  // namespace corv::ghw
