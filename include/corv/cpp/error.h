#pragma once

#include <cstddef>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>

#include "corv/platform/result.h"

namespace corv {

// The exception that the classes of corv/cpp throw for every failure; what() is one sentence
// without a full stop that can be shown to users. Besides it they throw only std::bad_alloc, if out
// of memory.
class Error : public std::runtime_error {
public:
    explicit Error(const std::string& what) : std::runtime_error(what) {}
    Error(const std::string& what, std::size_t position, std::size_t length)
        : std::runtime_error(what), position_(position), length_(length) {}

    // Where the text that was read is wrong, in bytes from 0; nullopt if the error has no place. A
    // length of 0 points at the end of the text.
    std::optional<std::size_t> Position() const noexcept { return position_; }
    std::size_t Length() const noexcept { return length_; }

private:
    std::optional<std::size_t> position_;
    std::size_t length_ = 0;
};

namespace cpp {

// Throws for a failed result.
inline void Check(HRESULT result, const char* what) {
    if (result == E_OUTOFMEMORY) {
        throw std::bad_alloc();
    }
    if (FAILED(result)) {
        throw Error(what);
    }
}

}  // namespace cpp
}  // namespace corv
