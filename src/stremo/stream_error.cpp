#include "stremo/stream_error.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace corv::recording {
namespace {

constexpr std::size_t kMostCharacters = 1023;

struct StreamError {
    char text[kMostCharacters + 1];
    std::size_t length;
};

thread_local StreamError error = {{}, 0};

void Add(std::string_view text) noexcept {
    const std::size_t length = std::min(text.size(), kMostCharacters - error.length);
    std::copy_n(text.begin(), length, error.text + error.length);
    error.length += length;
    error.text[error.length] = '\0';
}

// The end of a long path is more useful than its beginning.
void AddFile(std::string_view file) noexcept {
    constexpr std::size_t kMost = 700;
    if (file.size() > kMost) {
        Add("...");
        file.remove_prefix(file.size() - kMost);
    }
    Add(file);
    Add(file.empty() ? "" : ": ");
}

}  // namespace

void ClearError() noexcept {
    error.length = 0;
    error.text[0] = '\0';
}

void SetError(std::string_view file, std::string_view what) noexcept {
    ClearError();
    AddFile(file);
    Add(what);
}

void SetError(std::string_view file, std::uint64_t offset, std::string_view what) noexcept {
    char place[32];
    std::snprintf(place, sizeof place, "byte %llu: ", static_cast<unsigned long long>(offset));
    ClearError();
    AddFile(file);
    Add(place);
    Add(what);
}

}  // namespace corv::recording

namespace corv {

const char* LastStreamError() noexcept {
    return recording::error.text;
}

}  // namespace corv
