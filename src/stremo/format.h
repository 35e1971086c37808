#pragma once

#include <memory>
#include <span>
#include <string>

#include "platform/files.h"
#include "stremo/recording.h"

// The formats of recordings. A format is a class derived from Recording, a function that opens it
// and a row of the table in format.cpp. It is recognised by the first bytes of the file, never by
// its name.
namespace corv::recording {

struct Format {
    const char* name;  // as returned by FormatName
    // Whether a file that begins with these bytes (at most kTellingBytes) is of this format. The
    // first row that accepts is taken, so formats that are hard to recognise come last.
    bool (*recognises)(platform::Bytes beginning) noexcept;
    // Reads what is needed to list the signals. Returns null, with the stream error set, if the
    // file is not of this format after all or nothing in it is usable. May throw std::bad_alloc.
    std::unique_ptr<Recording> (*open)(const std::string& file_name,
                                       std::unique_ptr<platform::FileContent> content);
};

inline constexpr std::size_t kTellingBytes = 4096;

std::span<const Format> Formats() noexcept;

// Opens a content as a recording of any format. Returns null, with the stream error set, if it is
// not one.
std::unique_ptr<Recording> OpenContent(const std::string& name,
                                       std::unique_ptr<platform::FileContent> content);

// The same for a file.
std::unique_ptr<Recording> OpenRecording(platform::Files& files, const std::string& file_name);

}  // namespace corv::recording
