#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "corv/stimulus/stimulus.h"

namespace corv::host {

// What a signal does over time, asked event by event. Times are picoseconds.
class Source {
public:
    Source() = default;
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;
    virtual ~Source() = default;

    // The first event strictly after a time, -1 when there is none.
    virtual std::int64_t NextEvent(std::int64_t time) = 0;
    // The value text at a time; nothing when there is no value yet.
    virtual std::optional<std::string> ValueAt(std::int64_t time) = 0;

    // A sensible end for a window that begins at `start`. For what does not repeat: an eighth
    // behind its last element; for what does: two periods behind `start` or the first event,
    // whichever is later, and in any case an eighth behind its last absolute element; for a
    // counter: 16 counts.
    virtual std::int64_t NaturalEnd(std::int64_t start) = 0;

    // Whether the value is that of several elements, even when it is a single character long.
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

// The sum, or the end of the range of times.
std::int64_t Later(std::int64_t time, std::int64_t by);

}  // namespace corv::host
