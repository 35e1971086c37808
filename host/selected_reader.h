#pragma once

#include <string>
#include <vector>

#include "corv/stremo/events_stream_read.h"
#include "host/recording.h"
#include "host/signal_name.h"

namespace corv::host {

// Shows only certain signals of a recording's reader, each at the top level under its full name,
// with everything below it.
class SelectedReader final : public stremo::IEventsStreamRead {
public:
    // The recording must outlive it. There must be no slices among the signals, since these are not
    // signals of the recording.
    SelectedReader(const Recording& recording, const std::vector<NamedSignal>& signals);

    const char* GetFormatName() override { return reader_.GetFormatName(); }
    int GetSignalCount() override { return static_cast<int>(selected_.size()); }
    int GetSubSignalHandle(int parent, int index) override;
    int GetSignalHandle(int index) override;
    void GetSignalInfo(int handle, bool& has_sub_signals, int& sub_signal_count, CString& name,
                       int& mode, std::int64_t& max_time) override;
    const char* GetSignalProperty(int handle, const char* key) override {
        return reader_.GetSignalProperty(handle, key);
    }
    const char* GetTypeString(int handle) override { return reader_.GetTypeString(handle); }
    bool Seek(const std::int64_t* time) override { return reader_.Seek(time); }
    const std::int64_t* GetCurrentTime() override { return reader_.GetCurrentTime(); }
    int Next() override { return reader_.Next(); }
    bool ReadValue(void* value) override { return reader_.ReadValue(value); }
    bool GetCachedValue(int handle, void* value) override {
        return reader_.GetCachedValue(handle, value);
    }
    void MarkStart(const std::int64_t* time) override { reader_.MarkStart(time); }

    // The scalars of all selected signals.
    const std::vector<int>& leaves() const { return leaves_; }

private:
    struct Selected {
        std::string name;       // the full one
        std::vector<int> path;  // the index at the top level, then those of the sub-signals
    };

    stremo::IEventsStreamRead& reader_;
    std::vector<Selected> selected_;
    std::vector<int> leaves_;
    const Selected* given_ = nullptr;  // whose handle was returned last
};

}  // namespace corv::host
