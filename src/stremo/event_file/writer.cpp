// Writes an event file as events arrive. The list of signals has to be complete before the first
// block, since blocks refer to signals by number.

#include "stremo/event_file/writer.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <utility>

#include "platform/guard.h"
#include "stremo/block_builder.h"
#include "stremo/byte_code.h"
#include "stremo/event_file/output.h"
#include "stremo/stream_error.h"

namespace corv::recording {
namespace {

// Returns a value of 1 to 16 bytes as a number, nullopt if it does not fit into 64 bits.
std::optional<std::uint64_t> LoadValue(const void* value, unsigned size) noexcept {
    const auto* const bytes = static_cast<const unsigned char*>(value);
    switch (size) {
        case 1:
            return *bytes;
        case 4:
            return LoadNumber<std::uint32_t>(bytes);
        case 8:
            return LoadNumber<std::uint64_t>(bytes);
        default:
            break;
    }
    unsigned char whole[16] = {};
    if (size == 0 || size > sizeof whole) {
        return std::nullopt;
    }
    std::copy_n(bytes, size, whole);
    return LoadNumber<std::uint64_t>(whole + 8) == 0
               ? std::optional(LoadNumber<std::uint64_t>(whole))
               : std::nullopt;
}

// The writer first collects the signals; the first event, or the end, writes them and begins the
// blocks. An invalid argument is refused and changes nothing; after a failure of disk or memory
// nothing more is accepted.
class EventFileWriter final : public IEventsStreamWrite {
public:
    EventFileWriter(std::string file_name, std::unique_ptr<platform::FileOutput> output,
                    std::size_t block_changes) noexcept
        : output_(std::move(file_name), std::move(output)), block_changes_(block_changes) {}
    EventFileWriter(const EventFileWriter&) = delete;
    EventFileWriter& operator=(const EventFileWriter&) = delete;
    ~EventFileWriter() override { EventFileWriter::Close(); }

    bool Close() override;
    bool IsReady() override { return !closed_ && !failed_; }
    bool WriteTypeInfo(int handle, const char* type) override;
    bool WriteScalarSignal(int handle, const char* name, int parent, int index, int mode,
                           const std::int64_t* max_time) override;
    bool WriteCompositeSignal(int handle, std::uint32_t member_count, const char* name, int parent,
                              int index, int mode, const std::int64_t* max_time) override;
    bool WriteEvent(int handle, const std::int64_t* time, const void* value,
                    unsigned size) override;
    bool WriteProperty(int handle, const char* key, const char* value) override;

private:
    template <class Work>
    bool Do(Work work) noexcept;
    bool Refuse(const char* why) noexcept;
    bool TakesSignals() noexcept;
    bool AddSignal(Signal signal, const char* name, const std::int64_t* max_time);
    std::uint32_t FindSignal(int handle) const noexcept;
    bool Begin();
    void JoinElements() noexcept;
    bool Event(std::uint32_t leaf, std::int64_t time, std::uint64_t value);
    bool End();

    EventFileOutput output_;
    const std::size_t block_changes_;
    SignalTable signals_;
    std::optional<BlockBuilder> blocks_;  // none before the first event
    std::uint32_t unnamed_ = kNone;       // the signal of handle -1 that came last
    bool failed_ = false;
    bool closed_ = false;
};

// Does work after which, if out of memory, the writer has failed for good.
template <class Work>
bool EventFileWriter::Do(Work work) noexcept {
    bool done = false;
    if (!platform::Done([&] { done = work(); })) {
        SetError(output_.file_name(), "out of memory");
        failed_ = true;
    }
    return done;
}

bool EventFileWriter::Refuse(const char* why) noexcept {
    SetError(output_.file_name(), why);
    return false;
}

// ---- signals ----

bool EventFileWriter::TakesSignals() noexcept {
    if (!IsReady()) {
        return closed_ ? Refuse("the file has been closed") : false;
    }
    ClearError();
    return !blocks_ || Refuse("signals are written before the first event");
}

// Returns the signal written last with the handle, -1 included.
std::uint32_t EventFileWriter::FindSignal(int handle) const noexcept {
    if (handle == -1) {
        return unnamed_;
    }
    // Types and properties usually follow their signal, so the last signal is tried before the
    // search.
    const auto last = static_cast<std::uint32_t>(signals_.size()) - 1;
    return signals_.size() > 0 && signals_[last].handle == handle ? last : signals_.Find(handle);
}

bool EventFileWriter::AddSignal(Signal signal, const char* name, const std::int64_t* max_time) {
    return TakesSignals() && Do([&] {
               signal.name = signals_.Keep(name != nullptr ? name : "");
               signal.latest = max_time != nullptr ? *max_time : -1;
               const std::uint32_t number = signals_.Add(signal);
               if (number == kNone) {
                   return Refuse("the handle is taken or not one, or signals are nested too deep");
               }
               unnamed_ = signal.handle == -1 ? number : unnamed_;
               return true;
           });
}

bool EventFileWriter::WriteScalarSignal(int handle, const char* name, int, int, int mode,
                                        const std::int64_t* max_time) {
    Signal signal;
    signal.handle = handle;
    signal.mode = mode;
    return AddSignal(signal, name, max_time);
}

bool EventFileWriter::WriteCompositeSignal(int handle, std::uint32_t member_count, const char* name,
                                           int, int, int mode, const std::int64_t* max_time) {
    Signal signal;
    signal.handle = handle;
    signal.mode = mode;
    signal.composite = true;
    signal.member_count = member_count;
    return AddSignal(signal, name, max_time);
}

bool EventFileWriter::WriteTypeInfo(int handle, const char* type) {
    return TakesSignals() && Do([&] {
               const std::uint32_t signal = FindSignal(handle);
               if (signal == kNone || type == nullptr) {
                   return Refuse("a type is given for a signal that was not written");
               }
               signals_.SetType(signal, signals_.KeepShared(type));
               return true;
           });
}

bool EventFileWriter::WriteProperty(int handle, const char* key, const char* value) {
    return TakesSignals() && Do([&] {
               const std::uint32_t signal = FindSignal(handle);
               if (signal == kNone || key == nullptr || value == nullptr) {
                   return Refuse("a property is given for a signal that was not written");
               }
               signals_.AddProperty(signal, signals_.Keep(key), signals_.Keep(value).data());
               return true;
           });
}

// ---- events ----

// Elements of arrays of enumerations tend to change together and have small values, so they share
// channels. Signals without a type are treated alike.
void EventFileWriter::JoinElements() noexcept {
    for (std::uint32_t i = 0; i < signals_.size(); ++i) {
        const Signal& signal = signals_[i];
        const bool enumeration = *signal.type == '\0' || *signal.type == 'e';
        signals_.SetJoins(i, signal.name.starts_with('(') && enumeration);
    }
}

bool EventFileWriter::Begin() {
    if (blocks_) {
        return true;
    }
    if (!signals_.whole()) {
        return Refuse("a composite signal has fewer members than were announced");
    }
    JoinElements();
    signals_.Finish();
    failed_ = !output_.PutSignals(signals_);
    blocks_.emplace(signals_, output_, EventOrder::kAsWritten, block_changes_);
    return !failed_;
}

bool EventFileWriter::Event(std::uint32_t leaf, std::int64_t time, std::uint64_t value) {
    blocks_->SetTime(time);
    failed_ = !blocks_->Set(leaf, value);
    return !failed_;
}

bool EventFileWriter::WriteEvent(int handle, const std::int64_t* time, const void* value,
                                 unsigned size) {
    if (!IsReady()) {
        return closed_ ? Refuse("the file has been closed") : false;
    }
    const std::optional<std::uint64_t> number =
        value != nullptr ? LoadValue(value, size) : std::nullopt;
    if (!number || time == nullptr) {
        return Refuse("an event has no value of 1 to 8 bytes or no time");
    }
    if (*time < (blocks_ ? blocks_->time() : 0)) {
        return Refuse("the time of an event is below 0 or before that of the last one");
    }
    if (!blocks_ && !Do([&] { return Begin(); })) {
        return false;
    }
    const std::uint32_t leaf = signals_.FindLeaf(handle);
    if (leaf == kNone) {
        return Refuse("an event's handle is not that of a scalar signal");
    }
    return Do([&] { return Event(leaf, *time, *number); });
}

// ---- the end ----

bool EventFileWriter::Close() {
    if (!closed_) {
        const bool ended = IsReady() && Do([&] { return End(); });
        closed_ = true;
        failed_ = !ended;
        failed_ = !output_.Close() || failed_;
    }
    return !failed_;
}

bool EventFileWriter::End() {
    if (!Begin() || !blocks_->Flush()) {
        return false;
    }
    // members follow their composite, so going backwards passes each time on to all levels above
    for (auto i = static_cast<std::uint32_t>(signals_.size()); i-- > 0;) {
        const Signal& signal = signals_[i];
        const std::int64_t written = signal.composite ? -1 : blocks_->Latest(signal.leaf);
        signals_.SetLatest(i, std::max(signal.latest, written));
        if (signal.parent != kNone) {
            signals_.SetLatest(signal.parent,
                               std::max(signal.latest, signals_[signal.parent].latest));
        }
    }
    return output_.PutEnd(signals_);
}

}  // namespace

std::unique_ptr<IEventsStreamWrite> MakeEventFileWriter(
    std::string file_name, std::unique_ptr<platform::FileOutput> output,
    std::size_t block_changes) {
    return std::make_unique<EventFileWriter>(std::move(file_name), std::move(output),
                                             block_changes);
}

}  // namespace corv::recording

namespace stremo {

IEventsStreamWrite* CreateStreamWrite(const char* file_name) noexcept {
    using corv::recording::MakeEventFileWriter;
    using corv::recording::SetError;
    corv::recording::ClearError();
    IEventsStreamWrite* writer = nullptr;
    const bool done = corv::platform::Done([&] {
        const std::string name = file_name != nullptr ? file_name : "";
        auto created = corv::platform::SystemFiles().Create(name);
        if (created.file == nullptr) {
            SetError(name, created.failure);
            return;
        }
        writer = MakeEventFileWriter(name, std::move(created.file)).release();
    });
    if (!done) {
        SetError(file_name, "out of memory");
    }
    return writer;
}

}  // namespace stremo
