#pragma once

#include "corv/stremo/events_stream_write.h"
#include "tests/support/test.h"

namespace corv::test {

// Notes what it is given; refuses what comes after so many calls.
class FakeWriter final : public IEventsStreamWrite {
public:
    bool Close() override { return true; }
    bool IsReady() override { return is_ready; }
    bool WriteTypeInfo(int, const char*) override { return true; }
    bool WriteScalarSignal(int handle, const char* name, int parent, int index, int mode,
                           const std::int64_t* max_time) override {
        return Note(name + ("=" + std::to_string(handle)), parent, index, mode, *max_time);
    }
    bool WriteCompositeSignal(int handle, std::uint32_t count, const char* name, int parent,
                              int index, int mode, const std::int64_t* max_time) override {
        handles += std::to_string(handle) + " ";
        return Note(name + ("x" + std::to_string(count)), parent, index, mode, *max_time);
    }
    bool WriteEvent(int, const std::int64_t*, const void*, unsigned) override { return true; }
    bool WriteProperty(int handle, const char* key, const char* value) override {
        text += key + ("(" + std::to_string(handle)) + ")=" + value + " ";
        return --allowed >= 0;
    }

    bool is_ready = true;
    int allowed = 9;
    std::string text;     // the signals: names, handles or counts of members, indices; properties
    std::string details;  // parent, mode and latest time of each signal
    std::string handles;  // of the composites

private:
    bool Note(const std::string& signal, int parent, int index, int mode, std::int64_t max_time) {
        text += signal + "@" + std::to_string(index) + " ";
        details += std::to_string(parent) + "," + std::to_string(mode) + "," +
                   std::to_string(max_time) + " ";
        return --allowed >= 0;
    }
};

}  // namespace corv::test
