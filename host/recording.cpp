#include "host/recording.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <new>
#include <stdexcept>
#include <unordered_map>

#include "corv/stremo/stream_overview.h"
#include "corv/stremo/streams.h"
#include "host/signal_trace.h"

namespace corv::host {
namespace {

using Value = std::array<unsigned char, 16>;

// Takes over the units of a physical type, which signals do not load from their recording
// themselves.
void TakeUnitsOf(stremo::IEventsStreamRead& reader, ISignal& leaf) {
    constexpr const char* kUnits = "Units";
    if (const char* const units = reader.GetSignalProperty(leaf.GetHandle(), kUnits)) {
        leaf.SetProperty(kUnits, units);
    }
}

}  // namespace

// The waves of leaves by handle; leaves with the same handle may have a wave each.
class Recording::Waves final : public IStreamOverview {
public:
    // Empties the waves.
    Waves(stremo::IEventsStreamRead& reader, const std::vector<ISignal*>& signals) {
        for (ISignal* const signal : signals) {
            for (ISignal* const leaf : LeavesOf(*signal)) {
                TakeUnitsOf(reader, *leaf);
                AddLeaf(*leaf);
            }
        }
    }

    const std::vector<int>& Handles() const { return handles_; }

    void Take(int handle, std::int64_t time, const void* value) override {
        const auto [first, last] = waves_.equal_range(handle);
        for (auto entry = first; entry != last; ++entry) {
            ISignalWave& wave = *entry->second;
            failed_ |= FAILED(wave.AddEvent(time, 0, value, wave.GetValueSize()));
        }
    }
    bool Has(int handle) const { return waves_.count(handle) != 0; }
    bool Failed() const { return failed_; }

private:
    void AddLeaf(ISignal& leaf) {
        ISignalWave* const wave = leaf.GetWave();
        if (wave == nullptr && leaf.GetWaveValueSize() != 0) {
            throw std::bad_alloc();
        }
        const int handle = leaf.GetHandle();
        const auto [first, last] = waves_.equal_range(handle);
        const bool known =
            std::any_of(first, last, [&](const auto& entry) { return entry.second == wave; });
        if (wave == nullptr || handle == -1 || known) {
            return;
        }
        if (first == last) {
            handles_.push_back(handle);
        }
        wave->Clear();
        waves_.emplace(handle, wave);
    }

    std::unordered_multimap<int, ISignalWave*> waves_;
    std::vector<int> handles_;
    bool failed_ = false;  // memory has run out
};

Recording::Recording(const std::string& file_name, const OpenOptions& options)
    : file_name_(file_name), stream_(OpenStream(file_name, options)) {
    if (FAILED(CreateSignalContainer(signals_.Out(), nullptr)) ||
        FAILED(signals_->LoadFromReader(&Reader()))) {
        const std::string why = Problem();
        throw std::runtime_error(file_name + ": its signals cannot be read" +
                                 (why.empty() ? "" : ": " + why));
    }
}

std::vector<std::string> Recording::Notes() const {
    std::vector<std::string> notes = stream_.notes;
    std::ranges::move(GetStreamNotes(Reader()), std::back_inserter(notes));
    return notes;
}

std::string Recording::Problem() const {
    return LastStreamError();
}

void Recording::TakeUnits(ISignal& signal) const {
    for (ISignal* const leaf : LeavesOf(signal)) {
        TakeUnitsOf(Reader(), *leaf);
    }
}

std::int64_t Recording::LatestTime() const {
    return std::max<std::int64_t>(signals_->GetMaxTime(), 0);
}

// The values that the leaves have before a window become events at the last picosecond before it,
// so that a trace finds them in the waves like any other.
void Recording::LoadBefore(Waves& waves, std::int64_t start) const {
    const std::vector<int>& handles = waves.Handles();
    SelectStreamSignals(Reader(), handles);
    if (!Reader().Seek(&start)) {
        throw std::runtime_error(Problem());
    }
    for (const int handle : handles) {
        Value value{};
        if (start > 0 && Reader().GetCachedValue(handle, value.data())) {
            waves.Take(handle, start - 1, value.data());
        }
    }
}

void Recording::Load(const std::vector<ISignal*>& signals, TimeWindow window,
                     std::size_t most) const {
    Waves waves(Reader(), signals);
    LoadBefore(waves, window.start);
    std::size_t times = 0;
    std::int64_t last = -1;
    for (int handle = Reader().Next(); handle != -1; handle = Reader().Next()) {
        const std::int64_t time = *Reader().GetCurrentTime();
        Value value{};
        if (time > window.end) {
            break;
        }
        if (!waves.Has(handle) || !Reader().ReadValue(value.data())) {
            continue;
        }
        if (time != last && times++ > most) {
            break;
        }
        last = time;
        waves.Take(handle, time, value.data());
    }
    CheckLoaded(waves);
}

void Recording::LoadForGrid(const std::vector<ISignal*>& signals, const TimeGrid& grid) const {
    Waves waves(Reader(), signals);
    LoadBefore(waves, grid.Window().start);
    std::vector<std::int64_t> borders;
    for (std::int64_t column = 0; column <= grid.Columns(); ++column) {
        borders.push_back(grid.First(column));
    }
    const bool read = ReadStreamOverview(Reader(), waves.Handles(), borders, waves);
    CheckLoaded(waves);
    if (!read) {
        Load(signals, grid.Window(), kAllTimes);
    }
}

void Recording::CheckLoaded(const Waves& waves) const {
    if (*LastStreamError() != '\0') {
        throw std::runtime_error(Problem());
    }
    if (waves.Failed()) {
        throw std::bad_alloc();
    }
}

}  // namespace corv::host
