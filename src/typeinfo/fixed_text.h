#pragma once

#include <cstddef>
#include <cstring>
#include <exception>
#include <string_view>

namespace corv::typeinfo {

// Thrown if a fixed text has no room, where a std::string would throw if out of memory.
class TextIsFull final : public std::exception {
public:
    const char* what() const noexcept override { return "text is full"; }
};

// A text in a caller's buffer, for the writers of value texts. It has those operations of
// std::string that they use, with the same meaning. It never writes past the end of the buffer and
// does not terminate the text with a zero.
class FixedText {
public:
    FixedText(char* place, std::size_t capacity) noexcept : place_(place), capacity_(capacity) {}

    std::size_t size() const noexcept { return size_; }
    char* data() noexcept { return place_; }

    void resize(std::size_t size) {
        if (size > capacity_) {
            throw TextIsFull();
        }
        if (size > size_) {
            std::memset(place_ + size_, 0, size - size_);
        }
        size_ = size;
    }
    FixedText& operator+=(char c) {
        const std::size_t at = size_;
        resize(at + 1);
        place_[at] = c;
        return *this;
    }
    FixedText& operator+=(std::string_view text) {
        const std::size_t at = size_;
        if (text.size() > capacity_ - at) {
            throw TextIsFull();
        }
        text.copy(place_ + at, text.size());
        size_ = at + text.size();
        return *this;
    }
    FixedText& append(const char* first, const char* last) {
        return *this += std::string_view(first, static_cast<std::size_t>(last - first));
    }

private:
    char* place_;
    std::size_t size_ = 0;
    std::size_t capacity_;
};

}  // namespace corv::typeinfo
