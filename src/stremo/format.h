#pragma once

#include <memory>
#include <span>
#include <string>

#include "platform/files.h"
#include "stremo/recording.h"

// The formats of recordings. A format is one class derived from Recording, one function that opens
// it and one row of the table in format.cpp; it is told by the first bytes of the file, never by
// its name.
namespace corv::recording {

struct Format {
    const char* name;  // as FormatName gives it
    // Whether a file that begins with these bytes (at most kTellingBytes of them) is one. The first
    // row that says so is taken; formats with a weak mark stand at the end.
    bool (*recognises)(platform::Bytes beginning) noexcept;
    // Reads what is needed to list the signals. Null with the stream error set when the file is
    // none after all, or nothing in it is whole. May throw std::bad_alloc.
    std::unique_ptr<Recording> (*open)(const std::string& file_name,
                                       std::unique_ptr<platform::FileContent> content);
};

inline constexpr std::size_t kTellingBytes = 4096;

std::span<const Format> Formats() noexcept;

// Opens a content as a recording of any format; null with the stream error set when it is none.
std::unique_ptr<Recording> OpenContent(const std::string& name,
                                       std::unique_ptr<platform::FileContent> content);

// The same for a file.
std::unique_ptr<Recording> OpenRecording(platform::Files& files, const std::string& file_name);

}  // namespace corv::recording
