#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "corv/platform/cstring.h"
#include "corv/stremo/events_stream_read.h"
#include "corv/typeinfo/type_info.h"
#include "platform/files.h"
#include "stremo/recording_reader.h"
#include "stremo/signal_cursor.h"

// What the tests of all formats read with.
namespace corv::test {

class HeldContent final : public platform::FileContent {
public:
    // Bytes in a block of their own, so that reading past the end is found.
    explicit HeldContent(const std::string& bytes) : bytes_(bytes.begin(), bytes.end()) {}
    platform::Bytes bytes() const noexcept override { return bytes_; }

private:
    std::vector<unsigned char> bytes_;
};

// A reader of what was opened; null for null.
inline std::unique_ptr<recording::SignalReader> ReaderOf(
    std::unique_ptr<recording::Recording> opened) {
    return opened != nullptr ? recording::MakeReader(std::move(opened)) : nullptr;
}

// What a reader says of a signal, whose type must be one.
struct SignalInfo {
    SignalInfo(stremo::IEventsStreamRead& reader, int handle) {
        CString text;
        int mode = 0;
        reader.GetSignalInfo(handle, composite, members, text, mode, latest);
        name = text.View();
        type = reader.GetTypeString(handle);
    }

    bool composite = false;
    int members = 0;
    std::string name;
    std::int64_t latest = 0;
    std::string type;
};

}  // namespace corv::test
