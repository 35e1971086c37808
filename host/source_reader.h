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
    std::string type;                // empty: inferred from the values
    std::set<std::string> elements;  // the texts of values from which it is inferred
};

// Presents what sources do in a window, the end included, as a recording that is made while it is
// read: nothing of it is kept. So the writers of recordings can write formulas of any length. A
// value that a source has before the window is an event at the last picosecond before it.
class SourceReader final : public stremo::IEventsStreamRead {
public:
    // The sources must outlive it. Throws std::runtime_error if a type cannot be inferred.
    SourceReader(const std::vector<SourceSignal>& signals, TimeWindow window);

    // Why the last Next stopped; empty at the end.
    const std::string& Problem() const { return problem_; }

    const char* GetFormatName() override { return "formulas"; }
    int GetSignalCount() override { return static_cast<int>(tops_.size()); }
    int GetSubSignalHandle(int parent, int index) override;
    int GetSignalHandle(int index) override;
    void GetSignalInfo(int handle, bool& has_sub_signals, int& sub_signal_count, CString& name,
                       int& mode, std::int64_t& max_time) override;
    const char* GetSignalProperty(int, const char*) override { return nullptr; }
    const char* GetTypeString(int handle) override;
    // Moves to the window's start, where its events begin, or to a time before it.
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
    std::vector<Event> events_;  // those at one time
    std::size_t given_ = 0;      // how many of them were returned
    std::vector<Event> cached_;
    std::int64_t time_ = -1;
    std::int64_t latest_ = 0;
    std::string problem_;
};

}  // namespace corv::host
