#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "corv/cpp/error.h"
#include "corv/cpp/events.h"
#include "corv/platform/cstring.h"
#include "corv/stimulus/check_formula.h"
#include "corv/stimulus/stimulus.h"

namespace corv {

// What a formula does: which value it has at a time, and when it changes. Times are picoseconds.
//
//     const corv::Stimulus reset("'1' 0, '0' 35ns");
//     for (const auto& [time, value] : reset.Events(0, 100'000)) ...
class Stimulus {
    struct Source {
        std::optional<std::int64_t> Next(std::int64_t time) const {
            const std::int64_t next = stimulus->GetNextEventTime(time);
            return next != -1 ? std::optional(next) : std::nullopt;
        }
        Event At(std::int64_t time) const {
            CString value;
            stimulus->GetValue(time, value);
            return {time, std::string(value.View())};
        }
        const CStimulus* stimulus = nullptr;
    };

public:
    // Reads a formula (corv/stimulus/stimulus.h) that begins at `start`. Throws Error, with the
    // place, for everything that CheckFormula reports as an error. It is stricter than CStimulus,
    // which reads some faulty formulas as something else than is written.
    explicit Stimulus(std::string_view formula, std::int64_t start = 0) {
        const std::string text(formula);
        for (const auto& problem : CheckFormula(text.c_str())) {
            if (problem.severity == std::decay_t<decltype(problem)>::Severity::Error) {
                throw Error(problem.sentence, problem.position, problem.length);
            }
        }
        if (stimulus_->Create(text.c_str(), start) == 0) {
            throw Error("`" + text + "` is not a formula");
        }
    }

    // A clock: 0 at `start`, 1 after half a period, and so on. Throws Error for a period below 2ps.
    static Stimulus Clock(std::int64_t period, std::int64_t start = 0) {
        if (period < 2) {
            throw Error("the period of a clock must be at least 2ps");
        }
        return Stimulus("0 0, 1 " + std::to_string(period / 2) + " -r " + std::to_string(period),
                        start);
    }

    // The value at a time, nullopt before the first one.
    std::optional<std::string> ValueAt(std::int64_t time) const {
        CString value;
        return stimulus_->GetValue(time, value) != 0 ? std::optional<std::string>(value.View())
                                                     : std::nullopt;
    }

    // The time of the first event after a time, nullopt after the last one.
    std::optional<std::int64_t> NextEvent(std::int64_t time) const {
        return Source{stimulus_.get()}.Next(time);
    }

    // The events from one time to another, both included. A formula that repeats has no end.
    EventView<Source> Events(std::int64_t from = 0, std::int64_t to = kEndOfTime) const {
        return {Source{stimulus_.get()}, from, to};
    }

    // The formula in normal form, empty for counters and recorded signals.
    std::string Formula() const {
        CString formula;
        stimulus_->GenerateFormula(formula);
        return std::string(formula.View());
    }

    // The object below, for the C-style operations.
    CStimulus& Get() const noexcept { return *stimulus_; }

private:
    std::unique_ptr<CStimulus> stimulus_ = std::make_unique<CStimulus>();
};

}  // namespace corv
