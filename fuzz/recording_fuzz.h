#pragma once

#include <cstddef>
#include <cstdlib>

#include "../tests/support/recorded.h"

// What the entries that read recordings share.
namespace corv::fuzz {

inline void Require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

inline constexpr std::size_t kMostBytes = std::size_t{1} << 16;  // that are worth their time

// Opens bytes as a format does; null when it refuses them.
using OpenFormat = std::unique_ptr<recording::Recording> (*)(
    const std::string& file_name, std::unique_ptr<platform::FileContent> content);
inline std::unique_ptr<recording::SignalReader> Open(OpenFormat open,
                                                     const std::vector<unsigned char>& bytes) {
    return test::ReaderOf(open("fuzz", std::make_unique<test::HeldContent>(bytes)));
}

// Reads all events and calls `action(time, handle, value)` for each. The notes must say something.
template <class Action>
void ReadEvents(recording::SignalReader& reader, Action action) {
    Require(test::ForEachEvent(reader, action));
    for (int i = 0; i < reader.NoteCount(); ++i) {
        Require(*reader.Note(i) != '\0');
    }
}

}  // namespace corv::fuzz
