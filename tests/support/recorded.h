// What tests and fuzz entries read recordings with: files in memory, and one walk of a reader. It
// stands without the test framework, which the fuzz entries are built without.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "corv/typeinfo/type_info.h"
#include "platform/files.h"
#include "stremo/byte_code.h"
#include "stremo/recording_reader.h"
#include "stremo/signal_cursor.h"

namespace corv::test {

// ---- files in memory ----

// Bytes in a block of their own, so that reading past the end is found.
class HeldContent final : public platform::FileContent {
public:
    template <class Text>
    explicit HeldContent(const Text& bytes) : bytes_(bytes.begin(), bytes.end()) {}
    platform::Bytes bytes() const noexcept override { return bytes_; }

private:
    std::vector<unsigned char> bytes_;
};

// Files of which writing can fail.
class MemoryFiles final : public platform::Files {
public:
    using Content = std::vector<unsigned char>;

    Opened<platform::FileContent> Open(const std::string& name) override {
        const auto found = files_.find(name);
        if (found == files_.end()) {
            return {nullptr, "there is no such file"};
        }
        return {std::make_unique<HeldContent>(found->second), nullptr};
    }
    Opened<platform::FileOutput> Create(const std::string& name) override {
        return {std::make_unique<Output>(*this, files_[name] = {}), nullptr};
    }

    Content& operator[](const std::string& name) { return files_[name]; }
    // The disk takes that many bytes more, of all files together; part of a write too.
    void LimitRoom(std::size_t bytes) { room_ = bytes; }
    void FailOnClose() { fail_on_close_ = true; }

private:
    class Output final : public platform::FileOutput {
    public:
        Output(MemoryFiles& files, Content& content) : files_(files), content_(content) {}
        const char* Append(platform::Bytes bytes) noexcept override {
            const platform::Bytes taken = bytes.first(std::min(bytes.size(), files_.room_));
            content_.insert(content_.end(), taken.begin(), taken.end());
            files_.room_ -= taken.size();
            return taken.size() < bytes.size() ? "the disk is full" : nullptr;
        }
        const char* Close() noexcept override {
            return files_.fail_on_close_ ? "the disk cannot be read or written" : nullptr;
        }

    private:
        MemoryFiles& files_;
        Content& content_;
    };

    std::map<std::string, Content> files_;
    std::size_t room_ = static_cast<std::size_t>(-1);
    bool fail_on_close_ = false;
};

// ---- readers ----

// A reader of what was opened; null for null.
inline std::unique_ptr<recording::SignalReader> ReaderOf(
    std::unique_ptr<recording::Recording> opened) {
    return opened != nullptr ? recording::MakeReader(std::move(opened)) : nullptr;
}

// What a reader says of a signal.
struct SignalInfo {
    SignalInfo(stremo::IEventsStreamRead& reader, int handle) {
        CString text;
        reader.GetSignalInfo(handle, composite, members, text, mode, latest);
        name = text.View();
        type = reader.GetTypeString(handle);
    }

    bool composite = false;
    int members = 0;
    std::string name;
    int mode = 0;
    std::int64_t latest = 0;
    std::string type;
};

// Calls `action(time, handle, value)` for each event from the start on. False when one can't be
// read, when the time goes back, and when a value has more than 8 bytes.
template <class Action>
bool ForEachEvent(stremo::IEventsStreamRead& reader, Action action) {
    const std::int64_t start = 0;
    bool is_sound = reader.Seek(&start);
    std::int64_t before = 0;
    for (int handle = 0; is_sound && (handle = reader.Next()) != -1;) {
        unsigned char value[16] = {};
        const std::int64_t time = *reader.GetCurrentTime();
        is_sound = reader.ReadValue(value) && time >= before &&
                   recording::LoadNumber<std::uint64_t>(value + 8) == 0;
        before = time;
        action(time, handle, recording::LoadNumber<std::uint64_t>(value));
    }
    return is_sound;
}

struct RecordedSignal {
    std::string Text(std::uint64_t value, unsigned option) const {
        unsigned char bytes[16] = {};
        recording::StoreNumber(bytes, value);
        return std::string(kind->GetValueString(bytes, 10, option, -1).View());
    }
    bool IsCharacter() const { return kind->GetTypeIdentifier() == CString("character"); }

    SignalInfo info;
    std::string path;  // the names of all above and its own
    int handle;
    const KTypeInfo* kind;
    std::size_t end;                                               // behind the last signal below
    std::vector<std::pair<std::int64_t, std::uint64_t>> events{};  // of a scalar
};

// All signals of a reader, each before its members, and all their events.
class Recorded {
public:
    explicit Recorded(stremo::IEventsStreamRead& reader) {
        for (int i = 0; i < reader.GetSignalCount(); ++i) {
            Add(reader, reader.GetSignalHandle(i), "");
        }
        std::map<int, std::vector<std::size_t>> scalars;
        for (std::size_t i = 0; i < signals.size(); ++i) {
            if (!signals[i].info.composite) {
                scalars[signals[i].handle].push_back(i);
            }
        }
        is_sound = ForEachEvent(reader, [&](std::int64_t time, int handle, std::uint64_t value) {
            ++events;
            for (const std::size_t scalar : scalars[handle]) {
                signals[scalar].events.emplace_back(time, value);
            }
        });
    }

    // Calls `action(time, values)` for each time at which a scalar of the signal changes, with what
    // all of them have then, in their order.
    template <class Action>
    void ForEachMoment(std::size_t signal, Action action) const {
        std::map<std::int64_t, std::vector<std::pair<std::size_t, std::uint64_t>>> moments;
        std::vector<std::optional<std::uint64_t>> values;
        for (std::size_t i = signal; i < signals[signal].end; ++i) {
            for (const auto& [time, value] : signals[i].events) {
                moments[time].emplace_back(values.size(), value);
            }
            values.resize(values.size() + (signals[i].info.composite ? 0 : 1));
        }
        for (const auto& [time, changes] : moments) {
            for (const auto& [scalar, value] : changes) {
                values[scalar] = value;
            }
            action(time, values);
        }
    }

    std::vector<RecordedSignal> signals;
    int events = 0;
    bool is_sound = false;

private:
    // Types are few and parsed once.
    static const KTypeInfo* KindOf(const std::string& text) {
        static std::map<std::string, std::unique_ptr<KTypeInfo>> kinds;
        std::unique_ptr<KTypeInfo>& kind = kinds[text];
        kind = kind != nullptr ? std::move(kind) : std::make_unique<KTypeInfo>(CString(text));
        return kind.get();
    }
    void Add(stremo::IEventsStreamRead& reader, int handle, const std::string& above) {
        const std::size_t own = signals.size();
        const SignalInfo info(reader, handle);
        signals.push_back({info, above + info.name, handle, KindOf(info.type), 0});
        for (int i = 0; i < (info.composite ? info.members : 0); ++i) {
            Add(reader, reader.GetSubSignalHandle(handle, i), above + info.name);
        }
        signals[own].end = signals.size();
    }
};

inline std::string NoteText(recording::SignalReader& reader) {
    std::string text;
    for (int i = 0; i < reader.NoteCount(); ++i) {
        text += std::string(i > 0 ? " / " : "") + reader.Note(i);
    }
    return text;
}

}  // namespace corv::test
