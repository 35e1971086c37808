#pragma once

#include <algorithm>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "corv/containers/signal_container.h"
#include "corv/cpp/error.h"
#include "corv/cpp/events.h"
#include "corv/cpp/signal.h"
#include "corv/signals/hierarchy_separator.h"
#include "corv/stremo/event_file_writer.h"
#include "corv/stremo/events_stream_read.h"
#include "corv/stremo/events_stream_write.h"
#include "corv/stremo/streams.h"
#include "corv/stremo/vcd_writer.h"

namespace corv {

// A recording of any format that the library reads. Its signals are there at once, their events are
// loaded on request. Copies refer to the same recording, and its signals keep it open. Times are
// picoseconds.
//
//     const corv::Recording run("run.ghw");
//     for (const auto& [time, value] : run.Events("tb.clk", 0, 100'000)) ...
class Recording {
public:
    // Throws Error if the file cannot be opened or is not a recording.
    explicit Recording(const std::string& file)
        : Recording(
              std::unique_ptr<stremo::IEventsStreamRead>(stremo::CreateStreamRead(file.c_str()))) {}
    // Takes a reader, such as the result of OpenGhwRecording or OpenStreamSource. Throws Error with
    // LastStreamError if that is null, and if its signals cannot be read.
    explicit Recording(std::unique_ptr<stremo::IEventsStreamRead> reader)
        : state_(std::make_shared<State>()) {
        state_->reader = std::move(reader);
        if (!state_->reader) {
            throw Error(LastStreamError());
        }
        cpp::Check(CreateSignalContainer(&state_->signals, nullptr), "the signals cannot be kept");
        if (FAILED(state_->signals->LoadFromReader(state_->reader.get()))) {
            throw Error(*LastStreamError() != '\0' ? LastStreamError()
                                                   : "the signals cannot be read");
        }
    }

    // The file's format, such as "VCD".
    std::string Format() const { return state_->reader->GetFormatName(); }
    // The latest time of all signals, 0 without any event.
    std::int64_t End() const { return std::max<std::int64_t>(state_->signals->GetMaxTime(), 0); }
    // What was repaired, assumed or lost so far, one sentence each.
    std::vector<std::string> Notes() const { return GetStreamNotes(*state_->reader); }

    // The top-level signals, in order.
    std::vector<Signal> Signals() const {
        std::vector<Signal> signals;
        ISignal* signal = nullptr;
        for (std::uint32_t i = 0; SUCCEEDED(state_->signals->GetAt(i, &signal)); ++i) {
            signals.push_back(Signal(state_, *signal));
        }
        return signals;
    }

    // Finds a signal, element or field by a name such as "tb.bus(3)" or "tb/rec.addr". ".", "/" and
    // the hierarchy separator are equivalent, and an exact match comes before one in another case.
    // The time it takes grows with the number of signals. Throws Error if there is none.
    Signal Find(std::string_view name) const {
        ISignal* found = FindIn(state_->signals, name, true);
        found = found != nullptr ? found : FindIn(state_->signals, name, false);
        if (found == nullptr) {
            throw Error("there is no signal `" + std::string(name) + "`");
        }
        return Signal(state_, *found);
    }

    // Replaces the events in the waves of signals by those from one time to another, both included,
    // in one pass over the file. A value from before `from` becomes an event 1ps before it. Throws
    // Error if the recording cannot be read on.
    void Load(const std::vector<Signal>& signals, std::int64_t from = 0,
              std::int64_t to = kEndOfTime) const {
        const Waves waves = EmptyWaves(signals);
        std::vector<int> handles;
        for (const auto& [handle, wave] : waves) {
            handles.push_back(handle);
        }
        if (handles.empty()) {
            return;  // no handles would select all
        }
        stremo::IEventsStreamRead& reader = *state_->reader;
        SelectStreamSignals(reader, handles);
        CheckRead(reader.Seek(&from));
        std::uint64_t value[2] = {};
        for (const int handle : handles) {
            if (from > 0 && reader.GetCachedValue(handle, value)) {
                Append(waves, handle, from - 1, value[0]);
            }
        }
        for (int handle = reader.Next(); handle != -1; handle = reader.Next()) {
            const std::int64_t time = *reader.GetCurrentTime();
            if (time > to) {
                return;
            }
            if (reader.ReadValue(value)) {
                Append(waves, handle, time, value[0]);
            }
        }
        CheckRead(*LastStreamError() == '\0');
    }

    // Loads the events of one signal, as Load does, and returns them.
    auto Events(const Signal& signal, std::int64_t from = 0, std::int64_t to = kEndOfTime) const {
        Load({signal}, from, to);
        return signal.Events(from, to);
    }
    auto Events(std::string_view name, std::int64_t from = 0, std::int64_t to = kEndOfTime) const {
        return Events(Find(name), from, to);
    }

    // Writes the recording, or a part of it, as an event file or a VCD file. Throws Error.
    void WriteEventFile(const std::string& file, const EventFileOptions& options = {}) const {
        CheckRead(corv::WriteEventFile(*state_->reader, file.c_str(), options));
    }
    void WriteVcd(const std::string& file, const VcdOptions& options = {}) const {
        CheckRead(corv::WriteVcd(*state_->reader, file.c_str(), options));
    }

    // The object below, for the C-style operations.
    stremo::IEventsStreamRead& Reader() const noexcept { return *state_->reader; }

private:
    struct State {
        State() = default;
        State(const State&) = delete;
        State& operator=(const State&) = delete;
        ~State() {
            if (signals != nullptr) {
                signals->Release();
            }
        }
        std::unique_ptr<stremo::IEventsStreamRead> reader;
        ISignalContainer* signals = nullptr;
    };
    // By handle; scalars that share a handle may have different waves.
    using Waves = std::map<int, std::vector<ISignalWave*>>;

    static bool IsAlike(char a, char b, bool exact) {
        const auto normal = [&](char c) {
            const bool level = c == '.' || c == '/' || c == HierarchySeparator();
            return level ? '.' : !exact && c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
        };
        return normal(a) == normal(b);
    }

    // The names of members continue the name of the whole.
    static ISignal* FindIn(ISignalContainer* list, std::string_view name, bool exact) {
        ISignal* signal = nullptr;
        for (std::uint32_t i = 0; list != nullptr && SUCCEEDED(list->GetAt(i, &signal)); ++i) {
            const char* const text = signal->GetName();
            const std::string_view own = text != nullptr ? text : "";
            const bool fits = !own.empty() && own.size() <= name.size() &&
                              std::equal(own.begin(), own.end(), name.begin(),
                                         [&](char a, char b) { return IsAlike(a, b, exact); });
            if (fits && own.size() == name.size()) {
                return signal;
            }
            if (ISignal* const member =
                    fits ? FindIn(signal->GetSubSignals(), name.substr(own.size()), exact)
                         : nullptr) {
                return member;
            }
        }
        return nullptr;
    }

    static void CheckRead(bool done) {
        if (!done) {
            throw Error(*LastStreamError() != '\0' ? LastStreamError()
                                                   : "the recording cannot be read");
        }
    }

    static Waves EmptyWaves(const std::vector<Signal>& signals) {
        Waves waves;
        for (const Signal& signal : signals) {
            for (const Signal& leaf : signal.Leaves()) {
                ISignalWave* const wave = leaf.Get().GetWave();
                const int handle = leaf.Get().GetHandle();
                if (wave != nullptr && handle != -1) {
                    wave->Clear();
                    std::vector<ISignalWave*>& same = waves[handle];
                    if (std::find(same.begin(), same.end(), wave) == same.end()) {
                        same.push_back(wave);
                    }
                }
            }
        }
        return waves;
    }

    static void Append(const Waves& waves, int handle, std::int64_t time, std::uint64_t value) {
        if (const auto found = waves.find(handle); found != waves.end()) {
            for (ISignalWave* const wave : found->second) {
                cpp::Check(wave->AddEvent(time, 0, &value, sizeof value),
                           "the event cannot be kept");
            }
        }
    }

    std::shared_ptr<State> state_;
};

}  // namespace corv
