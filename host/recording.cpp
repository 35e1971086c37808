#include "host/recording.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <unordered_map>

#include "corv/stremo/stream_details.h"
#include "corv/stremo/stream_error.h"
#include "host/signal_trace.h"

namespace corv::host {
namespace {

using Value = std::array<unsigned char, 16>;
using Waves = std::unordered_map<int, ISignalWave*>;

[[noreturn]] void ThrowStreamError() {
    throw std::runtime_error(LastStreamError());
}

void Put(ISignalWave& wave, std::int64_t time, const Value& value) {
    wave.AddEvent(time, 0, value.data(), wave.GetValueSize());
}

// The waves of all leaves by handle, empty; leaves of one handle may have a wave each.
std::unordered_multimap<int, ISignalWave*> WavesOf(const std::vector<ISignal*>& signals) {
    std::unordered_multimap<int, ISignalWave*> waves;
    for (ISignal* const signal : signals) {
        for (ISignal* const leaf : LeavesOf(*signal)) {
            ISignalWave* const wave = leaf->GetWave();
            const auto [first, last] = waves.equal_range(leaf->GetHandle());
            const bool known =
                std::any_of(first, last, [&](const auto& entry) { return entry.second == wave; });
            if (wave != nullptr && leaf->GetHandle() != -1 && !known) {
                wave->Clear();
                waves.emplace(leaf->GetHandle(), wave);
            }
        }
    }
    return waves;
}

}  // namespace

Recording::Recording(const std::string& file_name)
    : reader_(stremo::CreateStreamRead(file_name.c_str())) {
    if (!reader_) {
        ThrowStreamError();
    }
    if (FAILED(CreateSignalContainer(signals_.Out(), nullptr)) ||
        FAILED(signals_->LoadFromReader(reader_.get()))) {
        throw std::runtime_error(file_name + ": its signals can't be read");
    }
}

std::int64_t Recording::LatestTime() const {
    return std::max<std::int64_t>(signals_->GetMaxTime(), 0);
}

void Recording::Load(const std::vector<ISignal*>& signals, TimeWindow window) const {
    const auto waves = WavesOf(signals);
    std::vector<int> handles;
    for (const auto& [handle, wave] : waves) {
        handles.push_back(handle);
    }
    SelectStreamSignals(*reader_, handles.data(), static_cast<int>(handles.size()));
    if (!reader_->Seek(&window.start)) {
        ThrowStreamError();
    }
    for (const auto& [handle, wave] : waves) {
        Value value{};
        if (window.start > 0 && reader_->GetCachedValue(handle, value.data())) {
            Put(*wave, window.start - 1, value);
        }
    }
    for (int handle = reader_->Next(); handle != -1 && *reader_->GetCurrentTime() <= window.end;
         handle = reader_->Next()) {
        const auto [first, last] = waves.equal_range(handle);
        Value value{};
        if (first != last && reader_->ReadValue(value.data())) {
            for (auto entry = first; entry != last; ++entry) {
                Put(*entry->second, *reader_->GetCurrentTime(), value);
            }
        }
    }
    if (*LastStreamError() != '\0') {
        ThrowStreamError();
    }
}

}  // namespace corv::host
