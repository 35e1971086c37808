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

void Put(ISignalWave& wave, std::int64_t time, const Value& value) {
    wave.AddEvent(time, 0, value.data(), wave.GetValueSize());
}

// The units of a physical type, which signals don't take over from their recording themselves.
void TakeUnits(stremo::IEventsStreamRead& reader, ISignal& leaf) {
    constexpr const char* kUnits = "Units";
    if (const char* const units = reader.GetSignalProperty(leaf.GetHandle(), kUnits)) {
        leaf.SetProperty(kUnits, units);
    }
}

// The waves of all leaves by handle, empty; leaves of one handle may have a wave each.
std::unordered_multimap<int, ISignalWave*> WavesOf(stremo::IEventsStreamRead& reader,
                                                   const std::vector<ISignal*>& signals) {
    std::unordered_multimap<int, ISignalWave*> waves;
    for (ISignal* const signal : signals) {
        for (ISignal* const leaf : LeavesOf(*signal)) {
            TakeUnits(reader, *leaf);
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

Recording::Recording(const std::string& file_name, const OpenOptions& options)
    : file_name_(file_name), stream_(OpenStream(file_name, options)) {
    if (FAILED(CreateSignalContainer(signals_.Out(), nullptr)) ||
        FAILED(signals_->LoadFromReader(&Reader()))) {
        throw std::runtime_error(file_name + ": its signals can't be read");
    }
}

std::vector<std::string> Recording::Notes() const {
    std::vector<std::string> notes = stream_.notes;
    for (int i = 0; i < CountStreamNotes(Reader()); ++i) {
        notes.emplace_back(GetStreamNote(Reader(), i));
    }
    return notes;
}

std::string Recording::Problem() const {
    std::string problem = LastStreamError();
    if (!stream_.unpacked.empty() && problem.starts_with(stream_.unpacked)) {
        problem.replace(0, stream_.unpacked.size(), file_name_);
    }
    return problem;
}

std::int64_t Recording::LatestTime() const {
    return std::max<std::int64_t>(signals_->GetMaxTime(), 0);
}

void Recording::Load(const std::vector<ISignal*>& signals, TimeWindow window) const {
    const auto waves = WavesOf(Reader(), signals);
    std::vector<int> handles;
    for (const auto& [handle, wave] : waves) {
        handles.push_back(handle);
    }
    SelectStreamSignals(Reader(), handles.data(), static_cast<int>(handles.size()));
    if (!Reader().Seek(&window.start)) {
        throw std::runtime_error(Problem());
    }
    for (const auto& [handle, wave] : waves) {
        Value value{};
        if (window.start > 0 && Reader().GetCachedValue(handle, value.data())) {
            Put(*wave, window.start - 1, value);
        }
    }
    for (int handle = Reader().Next(); handle != -1 && *Reader().GetCurrentTime() <= window.end;
         handle = Reader().Next()) {
        const auto [first, last] = waves.equal_range(handle);
        Value value{};
        if (first != last && Reader().ReadValue(value.data())) {
            for (auto entry = first; entry != last; ++entry) {
                Put(*entry->second, *Reader().GetCurrentTime(), value);
            }
        }
    }
    if (*LastStreamError() != '\0') {
        throw std::runtime_error(Problem());
    }
}

}  // namespace corv::host
