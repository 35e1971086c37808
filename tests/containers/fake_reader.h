#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "corv/platform/cstring.h"
#include "corv/stremo/events_stream_read.h"

namespace corv::test {

// A recording without events, made of what a test puts into it. It may claim to have more signals
// than it has.
class FakeReader final : public stremo::IEventsStreamRead {
public:
    struct Signal {
        std::string name;
        const char* type = nullptr;
        std::int64_t max_time = 0;
        std::vector<int> members;
    };

    const char* GetFormatName() override { return "fake"; }
    int GetSignalCount() override { return static_cast<int>(top.size()) + more_signals; }
    int GetSubSignalHandle(int parent, int index) override {
        return At(signals[parent].members, index);
    }
    int GetSignalHandle(int index) override { return At(top, index); }
    // The mode is the handle, unless there is one for all; a signal without members gives a number
    // of them that does not count.
    void GetSignalInfo(int handle, bool& has_members, int& count, CString& name, int& mode,
                       std::int64_t& max_time) override {
        const Signal& signal = signals[handle];
        has_members = !signal.members.empty();
        count = has_members ? static_cast<int>(signal.members.size()) + more_members : 5;
        name = signal.name.c_str();
        mode = one_mode != 0 ? one_mode : handle;
        max_time = signal.max_time;
    }
    const char* GetSignalProperty(int handle, const char* key) override {
        const auto property = properties.find({handle, key});
        return property != properties.end() ? property->second.c_str() : nullptr;
    }
    const char* GetTypeString(int handle) override { return signals[handle].type; }
    bool Seek(const std::int64_t*) override { return false; }
    const std::int64_t* GetCurrentTime() override { return nullptr; }
    int Next() override { return -1; }
    bool ReadValue(void*) override { return false; }
    bool GetCachedValue(int, void*) override { return false; }
    void MarkStart(const std::int64_t*) override {}

    std::vector<int> top;
    std::map<int, Signal> signals;                                  // by handle
    std::map<std::pair<int, std::string>, std::string> properties;  // by handle and key
    int one_mode = 0;
    int more_signals = 0;
    int more_members = 0;

private:
    static int At(const std::vector<int>& handles, int index) {
        const auto place = static_cast<std::size_t>(index);
        return place < handles.size() ? handles[place] : -1;
    }
};

}  // namespace corv::test
