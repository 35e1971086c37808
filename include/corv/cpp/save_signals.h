#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <queue>
#include <string>
#include <utility>
#include <vector>

#include "corv/cpp/error.h"
#include "corv/cpp/signal.h"
#include "corv/cpp/wave.h"
#include "corv/stremo/events_stream_write.h"
#include "corv/stremo/streams.h"

namespace corv {
namespace cpp {

// Writes signals and the events of their waves to an event file.
class SignalWriter {
public:
    explicit SignalWriter(const std::string& file)
        : writer_(stremo::CreateStreamWrite(file.c_str())) {
        Check(writer_ != nullptr);
    }

    void WriteSignal(const Signal& signal, int parent, int index) {
        const std::vector<Signal> members = signal.Members();
        const bool composite = signal.Get().GetSubSignals() != nullptr;
        const int handle = composite ? next_++ : HandleOf(signal);
        const std::string name = signal.Name();
        const int mode = signal.Get().GetMode();
        Check(composite
                  ? writer_->WriteCompositeSignal(handle,
                                                  static_cast<std::uint32_t>(members.size()),
                                                  name.c_str(), parent, index, mode, nullptr)
                  : writer_->WriteScalarSignal(handle, name.c_str(), parent, index, mode, nullptr));
        if (const char* const type = signal.Get().GetTypeInfo()) {
            Check(writer_->WriteTypeInfo(handle, type));
        }
        for (std::size_t i = 0; i < members.size(); ++i) {
            WriteSignal(members[i], handle, static_cast<int>(i));
        }
    }

    // Writes the events of all waves in order of time and closes the file.
    void WriteEvents() {
        using Turn = std::pair<std::int64_t, std::size_t>;  // a time and the number of a wave
        std::priority_queue<Turn, std::vector<Turn>, std::greater<>> turns;
        const auto wait = [&](std::size_t number, std::optional<WaveEvent> event) {
            if (event) {
                turns.emplace(event->time, number);
            }
        };
        for (std::size_t i = 0; i < waves_.size(); ++i) {
            wait(i, waves_[i].second.Find(-1, FindAfter));
        }
        while (!turns.empty()) {
            const auto [time, number] = turns.top();
            turns.pop();
            const auto& [handle, wave] = waves_[number];
            const std::uint64_t value = wave.Find(time)->value;
            Check(writer_->WriteEvent(handle, &time, &value, sizeof value));
            wait(number, wave.Find(time, FindAfter));
        }
        Check(writer_->Close());
    }

private:
    static void Check(bool written) {
        if (!written) {
            throw Error(LastStreamError());
        }
    }

    // Signals that share a wave share a handle.
    int HandleOf(const Signal& leaf) {
        ISignalWave* const wave = leaf.Get().GetWave();
        const auto [found, is_new] = handles_.emplace(wave, next_);
        if (wave == nullptr || is_new) {
            found->second = next_++;
        }
        if (wave != nullptr && is_new) {
            waves_.emplace_back(found->second, leaf.GetWave());
        }
        return found->second;
    }

    std::unique_ptr<IEventsStreamWrite> writer_;
    std::map<ISignalWave*, int> handles_;
    std::vector<std::pair<int, Wave>> waves_;
    int next_ = 0;
};

}  // namespace cpp

// Writes signals with their types, modes and all events of their waves as an event file. Signals
// that share a wave share a handle in it. Throws Error if the file cannot be written.
//
//     corv::SaveSignals("run.evt", {clock, bus});
inline void SaveSignals(const std::string& file, const std::vector<Signal>& signals) {
    cpp::SignalWriter writer(file);
    for (std::size_t i = 0; i < signals.size(); ++i) {
        writer.WriteSignal(signals[i], -1, static_cast<int>(i));
    }
    writer.WriteEvents();
}

}  // namespace corv
