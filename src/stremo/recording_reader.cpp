#include "stremo/recording_reader.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <new>
#include <optional>
#include <utility>

#include "platform/guard.h"
#include "stremo/block_view.h"
#include "stremo/leaf_cursor.h"
#include "stremo/overview.h"
#include "stremo/shared_recording.h"
#include "stremo/stream_error.h"

namespace corv::recording {
namespace {

class RecordingReader final : public SignalReader {
public:
    RecordingReader(std::shared_ptr<SharedRecording> shared, Leaves interest) noexcept
        : shared_(std::move(shared)),
          recording_(&shared_->recording()),
          signals_(recording_->signals()),
          interest_(std::move(interest)) {}

    const char* GetFormatName() override { return recording_->FormatName(); }
    int GetSignalCount() override { return static_cast<int>(signals_.TopLevel().size()); }
    int GetSubSignalHandle(int parent, int index) override;
    int GetSignalHandle(int index) override { return HandleAt(signals_.TopLevel(), index); }
    void GetSignalInfo(int handle, bool& has_sub_signals, int& sub_signal_count, CString& name,
                       int& mode, std::int64_t& max_time) override;
    const char* GetSignalProperty(int handle, const char* key) override;
    const char* GetTypeString(int handle) override;

    bool Seek(const std::int64_t* time) override;
    const std::int64_t* GetCurrentTime() override { return &current_time_; }
    int Next() override;
    bool ReadValue(void* value) override;
    bool GetCachedValue(int handle, void* value) override;
    void MarkStart(const std::int64_t*) override {}

    std::unique_ptr<SignalReader> Share() noexcept override;
    void SetInterest(std::span<const int> handles) override;
    std::unique_ptr<SignalCursor> OpenSignal(int handle) noexcept override;
    std::string_view SignalName(int index) noexcept override;
    bool ReadOverview(std::span<const int> handles, std::span<const std::int64_t> borders,
                      IStreamOverview& overview) noexcept override;
    std::uint64_t EventCount() noexcept override;
    int NoteCount() noexcept override { return static_cast<int>(recording_->notes().size()); }
    const char* Note(int index) noexcept override;

private:
    // A place between events: before the first event of a moment.
    struct Place {
        std::size_t block = 0;
        std::uint32_t moment = 0;
    };

    int HandleAt(std::span<const std::uint32_t> list, int index) noexcept;
    std::uint32_t Named(int handle) const noexcept;
    std::int64_t LatestTime(std::uint32_t signal);

    bool OpenBlocks() noexcept;
    bool FindPlace(std::int64_t time);
    bool GoTo(const Place& place, std::int64_t time);
    bool LoadState(std::uint32_t channel);

    bool NextChange();
    bool LoadEvents();
    void StartAt(std::uint32_t moment) noexcept;

    const std::shared_ptr<SharedRecording> shared_;
    Recording* const recording_;
    const SignalTable& signals_;
    Leaves interest_;
    std::shared_ptr<BlockStore> blocks_;  // null until they are needed
    bool other_interest_ = false;         // the interest has changed since then
    // The signal whose handle was returned last: a handle may belong to several names.
    std::uint32_t given_ = kNone;

    // reading on
    std::int64_t current_time_ = -1;
    Place next_;           // where the events continue if none are loaded
    bool loaded_ = false;  // events_ are those of next_.block
    BlockEvents events_;
    std::uint32_t change_ = 0;      // the next one in events_
    std::uint32_t moment_end_ = 0;  // the first one of the next moment
    std::uint32_t moment_ = 0;
    std::uint32_t mask_ = 0;    // the elements of the present change that are still to come
    Channel channel_{0, 1};     // of that change
    std::uint64_t values_ = 0;  // its value; for a vector, the place of the next element's value
    std::uint64_t value_ = 0;   // of the present event
    bool has_value_ = false;

    // the place of the last Seek, and the values of the channel that was last asked for there
    Place cached_;
    std::uint32_t state_channel_ = kNone;
    ChannelState state_;
};

// ---- signals ----

int RecordingReader::HandleAt(std::span<const std::uint32_t> list, int index) noexcept {
    if (index < 0 || static_cast<std::size_t>(index) >= list.size()) {
        return -1;
    }
    given_ = list[static_cast<std::size_t>(index)];
    return signals_[given_].handle;
}

int RecordingReader::GetSubSignalHandle(int parent, int index) {
    const std::uint32_t signal = signals_.Find(parent);
    return signal == kNone ? -1 : HandleAt(signals_.Members(signal), index);
}

// Returns the signal that a question about a handle means.
std::uint32_t RecordingReader::Named(int handle) const noexcept {
    return given_ != kNone && signals_[given_].handle == handle ? given_ : signals_.Find(handle);
}

void RecordingReader::GetSignalInfo(int handle, bool& has_sub_signals, int& sub_signal_count,
                                    CString& name, int& mode, std::int64_t& max_time) {
    const std::uint32_t number = Named(handle);
    const Signal signal = number != kNone ? signals_[number] : Signal();
    has_sub_signals = signal.composite;
    sub_signal_count = static_cast<int>(signal.member_count);
    mode = signal.mode;
    max_time = number != kNone ? LatestTime(number) : -1;
    if (!platform::Done([&] { name = CString(signal.name); })) {
        name.Empty();
    }
}

const char* RecordingReader::GetSignalProperty(int handle, const char* key) {
    const std::uint32_t signal = Named(handle);
    return signal == kNone || key == nullptr ? nullptr : signals_.FindProperty(signal, key);
}

const char* RecordingReader::GetTypeString(int handle) {
    const std::uint32_t signal = Named(handle);
    return signal == kNone ? nullptr : signals_[signal].type;
}

// The latest time of a composite is that of its members.
std::int64_t RecordingReader::LatestTime(std::uint32_t signal) {
    std::int64_t latest = signals_[signal].latest;
    if (recording_->KnowsLatestTimes()) {
        return latest;
    }
    for (const std::uint32_t member : signals_.Members(signal)) {
        latest = std::max(latest, LatestTime(member));
    }
    if (!signals_[signal].composite) {
        if (const auto cursor = OpenSignal(signals_[signal].handle)) {
            latest = std::max(latest, cursor->LastTime());
        }
    }
    return latest;
}

// ---- blocks ----

void RecordingReader::SetInterest(std::span<const int> handles) {
    platform::Done([&] {
        Leaves leaves;
        for (const int handle : handles) {
            if (const std::uint32_t leaf = signals_.FindLeaf(handle); leaf != kNone) {
                leaves.push_back(leaf);
            }
        }
        std::sort(leaves.begin(), leaves.end());
        leaves.erase(std::unique(leaves.begin(), leaves.end()), leaves.end());
        shared_->Announce(leaves);
        interest_ = std::move(leaves);
        other_interest_ = true;
    });
}

bool RecordingReader::OpenBlocks() noexcept {
    ClearError();
    if (blocks_ == nullptr) {
        blocks_ = shared_->Blocks(interest_);
        other_interest_ = false;
    }
    return blocks_ != nullptr;
}

bool RecordingReader::ReadOverview(std::span<const int> handles,
                                   std::span<const std::int64_t> borders,
                                   IStreamOverview& overview) noexcept {
    return OpenBlocks() && platform::Guarded(false, [&] {
               return recording::ReadOverview(*blocks_, signals_, handles, borders, overview);
           });
}

// A position is an index into the blocks in which it was found, so a new interest, which brings
// other blocks, takes effect only here.
bool RecordingReader::Seek(const std::int64_t* time) {
    if (other_interest_) {
        blocks_ = nullptr;
        loaded_ = false;
    }
    return time != nullptr && OpenBlocks() &&
           platform::Guarded(false, [&] { return FindPlace(*time); });
}

bool RecordingReader::FindPlace(std::int64_t time) {
    const std::optional<std::size_t> block = blocks_->FindFrom(time);
    if (!block) {
        return false;
    }
    Place place{*block, 0};
    std::int64_t before = -1;
    if (place.block < blocks_->Count()) {
        const std::optional<BlockView> view = OpenBlock(*blocks_, place.block, signals_);
        if (!view) {
            return false;
        }
        place.moment = view->FindMoment(time);
        if (place.moment > 0) {
            return GoTo(place, view->MomentTime(place.moment - 1));
        }
    } else if (!blocks_->EndsThere()) {
        blocks_->BlameEnd();
        return false;
    }
    if (place.block > 0) {
        const std::optional<BlockHead> head = blocks_->Head(place.block - 1);
        if (!head) {
            return false;
        }
        before = head->last_time;
    }
    return GoTo(place, before);
}

bool RecordingReader::GoTo(const Place& place, std::int64_t time) {
    loaded_ = loaded_ && place.block == next_.block;
    next_ = cached_ = place;
    state_channel_ = kNone;
    mask_ = 0;
    has_value_ = false;
    current_time_ = time;
    if (loaded_) {
        StartAt(place.moment);
    }
    return true;
}

// ---- values and events ----

// Sets state_ to the values of a channel at the place of the last Seek. After the last block they
// are the values at the end of that block.
bool RecordingReader::LoadState(std::uint32_t channel) {
    state_channel_ = kNone;
    const bool behind = cached_.block >= blocks_->Count();
    if (behind && cached_.block == 0) {
        blocks_->BlameEnd();
        return false;
    }
    const std::size_t block = behind ? cached_.block - 1 : cached_.block;
    const std::optional<BlockView> view = OpenBlock(*blocks_, block, signals_);
    if (!view || !view->StartOf(channel, state_)) {
        return false;
    }
    const unsigned count = signals_.channel(channel).count;
    const std::uint32_t end = behind ? view->moments() : cached_.moment;
    if (ReadColumn(view->ColumnOf(channel), state_, count, end, behind,
                   [](std::uint32_t, std::uint32_t) { return true; })) {
        state_channel_ = channel;
    } else {
        blocks_->Blame(block);
    }
    return state_channel_ == channel;
}

bool RecordingReader::GetCachedValue(int handle, void* value) {
    const std::uint32_t leaf = signals_.FindLeaf(handle);
    if (leaf == kNone || value == nullptr || !OpenBlocks()) {
        return false;
    }
    const std::uint32_t number = signals_.LeafChannel(leaf);
    if (number != state_channel_ && !platform::Guarded(false, [&] { return LoadState(number); })) {
        return false;
    }
    const Channel& channel = signals_.channel(number);
    const std::uint32_t element = leaf - channel.first_leaf;
    StoreValue(value, state_.values[element]);
    return (state_.known & ElementBit(element, channel.count)) != 0;
}

int RecordingReader::Next() {
    if (mask_ == 0 && !NextChange()) {
        has_value_ = false;
        return -1;
    }
    const auto bit = static_cast<unsigned>(std::bit_width(mask_)) - 1;
    mask_ ^= std::uint32_t{1} << bit;
    value_ = channel_.count == 1 ? values_ : events_.ElementValue(values_++);
    has_value_ = true;
    return signals_.LeafHandle(channel_.first_leaf + channel_.count - 1 - bit);
}

bool RecordingReader::NextChange() {
    while (!loaded_ || change_ >= events_.size()) {
        if (loaded_) {
            next_ = {next_.block + 1, 0};
            loaded_ = false;
        }
        if (!OpenBlocks() || !platform::Guarded(false, [&] { return LoadEvents(); })) {
            return false;
        }
    }
    if (change_ >= moment_end_) {
        ++moment_;
        moment_end_ = events_.Begin(moment_ + 1);
        current_time_ = events_.Time(moment_);
    }
    const BlockEvents::Change& change = events_[change_++];
    mask_ = change.mask;
    values_ = change.value;
    channel_ = signals_.channel(change.channel);
    return true;
}

bool RecordingReader::LoadEvents() {
    if (next_.block >= blocks_->Count()) {
        blocks_->BlameEnd();
        return false;
    }
    const std::optional<BlockView> view = OpenBlock(*blocks_, next_.block, signals_);
    if (!view) {
        return false;
    }
    if (!events_.Read(*view, signals_)) {
        blocks_->Blame(next_.block);
        return false;
    }
    loaded_ = true;
    StartAt(next_.moment);
    return true;
}

// Makes the first change of a moment in the loaded block the next one.
void RecordingReader::StartAt(std::uint32_t moment) noexcept {
    change_ = moment_end_ = events_.Begin(moment);
    moment_ = moment - 1;
}

bool RecordingReader::ReadValue(void* value) {
    if (has_value_ && value != nullptr) {
        StoreValue(value, value_);
    }
    return has_value_ && value != nullptr;
}

// ---- operations of SignalReader ----

std::unique_ptr<SignalReader> RecordingReader::Share() noexcept {
    return platform::Guarded<std::unique_ptr<SignalReader>>(
        nullptr, [&] { return std::make_unique<RecordingReader>(shared_, interest_); });
}

std::unique_ptr<SignalCursor> RecordingReader::OpenSignal(int handle) noexcept {
    const std::uint32_t leaf = signals_.FindLeaf(handle);
    if (leaf == kNone) {
        return nullptr;
    }
    ClearError();
    return platform::Guarded<std::unique_ptr<SignalCursor>>(
        nullptr, [&]() -> std::unique_ptr<SignalCursor> {
            auto blocks = shared_->Blocks(interest_.empty() ? Leaves() : Leaves{leaf});
            return blocks ? std::make_unique<LeafCursor>(std::move(blocks), signals_, leaf)
                          : nullptr;
        });
}

std::string_view RecordingReader::SignalName(int index) noexcept {
    const auto list = signals_.TopLevel();
    return index >= 0 && static_cast<std::size_t>(index) < list.size()
               ? signals_[list[static_cast<std::size_t>(index)]].name
               : std::string_view();
}

std::uint64_t RecordingReader::EventCount() noexcept {
    return OpenBlocks() ? blocks_->EventCount() : 0;
}

const char* RecordingReader::Note(int index) noexcept {
    return index >= 0 && index < NoteCount()
               ? recording_->notes()[static_cast<std::size_t>(index)].c_str()
               : nullptr;
}

}  // namespace

std::unique_ptr<SignalReader> MakeReader(std::unique_ptr<Recording> recording) {
    return std::make_unique<RecordingReader>(
        std::make_shared<SharedRecording>(std::move(recording)), Leaves());
}

SignalReader* OwnReader(stremo::IEventsStreamRead* reader) noexcept {
    return dynamic_cast<SignalReader*>(reader);
}

}  // namespace corv::recording
