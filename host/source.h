#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "corv/stimulus/stimulus.h"

namespace corv::host {

// Anything that can be asked, event by event, what a signal does over time. Times are picoseconds.
class Source {
public:
    Source() = default;
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;
    virtual ~Source() = default;

    // Returns the first event strictly after a time, -1 if there is none.
    virtual std::int64_t NextEvent(std::int64_t time) = 0;
    // Returns the value text at a time, nullopt if there is no value yet.
    virtual std::optional<std::string> ValueAt(std::int64_t time) = 0;

    // Returns a sensible end for a window that begins at `start`: an eighth after the last element
    // of what does not repeat; two periods after `start` or the first event, whichever is later,
    // for what repeats, and in any case an eighth after its last absolute element; 16 counts for a
    // counter.
    virtual std::int64_t NaturalEnd(std::int64_t start) = 0;

    // Returns whether the value is that of several elements, even if it is only one character long.
    virtual bool IsBus() const { return false; }
};

// One stimulus of values and times.
class StimulusSource final : public Source {
public:
    explicit StimulusSource(std::unique_ptr<CStimulus> stimulus) : stimulus_(std::move(stimulus)) {}

    std::int64_t NextEvent(std::int64_t time) override { return stimulus_->GetNextEventTime(time); }
    std::optional<std::string> ValueAt(std::int64_t time) override;
    std::int64_t NaturalEnd(std::int64_t start) override;

private:
    std::unique_ptr<CStimulus> stimulus_;
};

// Returns the sum, or the end of the range of times.
std::int64_t Later(std::int64_t time, std::int64_t by);

}  // namespace corv::host
