// Any bytes as an event file: as they are, and once more with checksums that fit, so that what lies
// behind them is reached too. The events that are read on, the values at a place and the answers
// about single signals must agree.

#include <bit>

#include "corv/stremo/streams.h"
#include "recording_fuzz.h"
#include "stremo/block_layout.h"
#include "stremo/checksum.h"
#include "stremo/event_file/event_file.h"
#include "stremo/format.h"

namespace {

namespace recording = corv::recording;
namespace platform = corv::platform;
using corv::fuzz::Require;
using Content = std::vector<unsigned char>;

// ---- reading ----

constexpr int kMostEvents = 20'000;

// Whether all events could be read.
bool Walk(stremo::IEventsStreamRead& reader) {
    const std::int64_t start = -1;
    std::int64_t time = -1;
    std::uint64_t value[2];
    if (!reader.Seek(&start)) {
        return false;
    }
    for (int i = 0; i < kMostEvents; ++i) {
        if (reader.Next() == -1) {
            Require(!reader.ReadValue(value));
            return true;
        }
        Require(*reader.GetCurrentTime() >= time && reader.ReadValue(value) && value[1] == 0);
        time = *reader.GetCurrentTime();
    }
    return false;
}

void AskSignal(recording::SignalReader& reader, int handle) {
    const corv::test::SignalInfo info(reader, handle);
    reader.GetSignalProperty(handle, "VBus");
    const auto cursor = reader.OpenSignal(handle);
    if (cursor == nullptr) {
        return;
    }
    std::int64_t time = -1;
    std::uint64_t value[2];
    for (int i = 0; i < 6; ++i) {
        const std::int64_t next = cursor->NextTime(time);
        Require(next == -1 || next > time);
        cursor->Value(next, value);
        time = next == -1 ? time / 2 : next;
        if (reader.Seek(&time)) {
            reader.GetCachedValue(handle, value);
            reader.Next();
        }
    }
}

void AskTree(recording::SignalReader& reader, int handle, int& budget) {
    if (--budget < 0) {
        return;
    }
    AskSignal(reader, handle);
    for (int i = 0, member = 0; budget > 0 && member != -1; ++i) {
        member = reader.GetSubSignalHandle(handle, i);
        if (member != -1) {
            AskTree(reader, member, budget);
        }
    }
}

void Read(Content content) {
    corv::test::MemoryFiles files;
    files["any.evt"] = std::move(content);
    const auto reader = corv::test::ReaderOf(recording::OpenRecording(files, "any.evt"));
    if (reader == nullptr) {
        Require(*corv::LastStreamError() != '\0');
        return;
    }
    Walk(*reader);
    int budget = 12;
    for (int i = 0; i < std::min(reader->GetSignalCount(), 6); ++i) {
        AskTree(*reader, reader->GetSignalHandle(i), budget);
    }
}

// ---- checksums that fit ----

void FixBlock(Content& file, std::size_t start, std::size_t length, std::size_t& front) {
    const auto number = [&](std::size_t at) {
        return recording::LoadNumber<std::uint32_t>(file.data() + start + at);
    };
    const auto sum = [&](std::size_t at, std::size_t size, std::size_t place) {
        const platform::Bytes bytes = platform::Bytes(file).subspan(start + at, size);
        recording::StoreNumber(file.data() + start + place, recording::Checksum(bytes, 0));
    };
    if (length < recording::kBlockHeaderSize) {
        return;
    }
    const std::size_t groups = recording::GroupCount(number(0));
    const unsigned width = recording::ColumnStartWidth(number(24));
    const std::size_t starts = recording::kBlockHeaderSize + groups * recording::kGroupSize;
    const std::size_t used = number(4);
    const std::size_t columns = starts + used * width + number(16) + number(20);
    const std::size_t order = columns + number(24);
    if (order + number(28) != length) {
        return;
    }
    const auto column = [&](std::size_t i) -> std::size_t {
        return i >= used    ? number(24)
               : width == 2 ? number(starts + 2 * i) & 0xFFFF
                            : number(starts + 4 * i);
    };
    for (std::size_t i = 0; i < groups; ++i) {
        const std::size_t group = recording::kBlockHeaderSize + i * recording::kGroupSize;
        const std::size_t before = number(group + 8);
        const auto count = static_cast<std::size_t>(std::popcount(number(group))) +
                           static_cast<std::size_t>(std::popcount(number(group + 4)));
        const std::size_t begin = column(before);
        const std::size_t end = column(before + count);
        if (begin <= end && columns + end <= order) {
            sum(columns + begin, end - begin, group + 16);
        }
    }
    if (number(28) > 8) {
        sum(order + 8, number(28) - 8, order);
    }
    front = columns;
}

Content Fix(Content file) {
    std::size_t at = recording::kFileHeaderSize;
    while (at <= file.size() && file.size() - at >= recording::kRecordHeaderSize) {
        unsigned char* const header = file.data() + at;
        const auto length = recording::LoadNumber<std::uint64_t>(header + 8);
        const std::size_t start = at + recording::kRecordHeaderSize;
        if (length > file.size() - start) {
            break;
        }
        auto checked = static_cast<std::size_t>(length);
        if (recording::LoadNumber<std::uint32_t>(header) ==
            static_cast<std::uint32_t>(recording::RecordKind::kBlock)) {
            FixBlock(file, start, checked, checked);
        }
        const platform::Bytes bytes(file);
        recording::StoreNumber(header + 16, recording::Checksum(bytes.subspan(start, checked), 0));
        recording::StoreNumber(header + 48, std::uint64_t{checked});
        recording::StoreNumber(header + 56, recording::Checksum(bytes.subspan(at, 56), at));
        at += static_cast<std::size_t>(recording::RecordSize(length));
    }
    if (file.size() >= recording::kTrailerSize) {
        const std::size_t trailer = file.size() - recording::kTrailerSize;
        const platform::Bytes bytes = platform::Bytes(file).subspan(trailer, 24);
        recording::StoreNumber(file.data() + trailer + 24, recording::Checksum(bytes, trailer));
    }
    return file;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Content content(data, data + size);
    Read(content);
    Read(Fix(content));
    return 0;
}
