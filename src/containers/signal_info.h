#pragma once

#include <cstdint>

#include "corv/platform/cstring.h"
#include "corv/stremo/events_stream_read.h"

namespace corv::containers {

// What a recording says of a signal.
struct SignalInfo {
    SignalInfo(stremo::IEventsStreamRead& reader, int handle) {
        bool has_members = false;
        reader.GetSignalInfo(handle, has_members, member_count, name, mode, max_time);
        member_count = has_members ? member_count : 0;
        type = reader.GetTypeString(handle);
    }

    int member_count = 0;
    CString name;
    int mode = 0;
    std::int64_t max_time = 0;
    const char* type;  // null: none
};

}  // namespace corv::containers
