#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <queue>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "corv/stremo/events_stream_read.h"
#include "host/driven_signal.h"
#include "host/source.h"
#include "host/trace.h"

namespace corv::host {

// A source as a signal of a recording.
struct SourceSignal {
    std::string name;
    Source* source = nullptr;
    Shape shape;
    std::string type;                // empty: the values tell it
    std::set<std::string> elements;  // the texts of values that tell it
};

// What sources do in a window, the end included, read as a recording that is made as it is read:
// nothing of it is kept. A value that a source brings into the window is an event of the last
// picosecond before it.
class SourceReader final : public stremo::IEventsStreamRead {
public:
    // The sources must outlive it. Throws std::runtime_error when a type can't be told.
    SourceReader(const std::vector<SourceSignal>& signals, TimeWindow window);

    // Why the last Next went no further; empty at the end.
    const std::string& Problem() const { return problem_; }

    const char* GetFormatName() override { return "formulas"; }
    int GetSignalCount() override { return static_cast<int>(tops_.size()); }
    int GetSubSignalHandle(int parent, int index) override;
    int GetSignalHandle(int index) override;
    void GetSignalInfo(int handle, bool& has_sub_signals, int& sub_signal_count, CString& name,
                       int& mode, std::int64_t& max_time) override;
    const char* GetSignalProperty(int, const char*) override { return nullptr; }
    const char* GetTypeString(int handle) override;
    // Goes to the window's start, from which on its events come, or to a time before it.
    bool Seek(const std::int64_t* time) override;
    const std::int64_t* GetCurrentTime() override { return &time_; }
    int Next() override;
    bool ReadValue(void* value) override;
    bool GetCachedValue(int handle, void* value) override;
    void MarkStart(const std::int64_t*) override {}

private:
    struct Top {
        Source* source;
        std::unique_ptr<DrivenSignal> driven;
        int handle;
        std::vector<int> leaves;
        DrivenSignal::Drive drive;
    };
    struct Event {
        int handle;
        LeafBytes value;
    };
    using Turn = std::pair<std::int64_t, std::size_t>;  // a time and the number of a source

    void Number(ISignal& signal);
    bool IsHandle(int handle) const {
        return handle >= 0 && static_cast<std::size_t>(handle) < signals_.size();
    }
    void Begin(Top& top);
    void Wait(std::size_t number, std::int64_t time);
    void TakeTurn();

    const TimeWindow window_;
    std::vector<Top> tops_;
    std::vector<ISignal*> signals_;  // by handle
    std::priority_queue<Turn, std::vector<Turn>, std::greater<>> turns_;
    std::vector<Event> events_;  // of one time
    std::size_t given_ = 0;      // of them
    std::vector<Event> cached_;
    std::int64_t time_ = -1;
    std::int64_t latest_ = 0;
    std::string problem_;
};

}  // namespace corv::host
