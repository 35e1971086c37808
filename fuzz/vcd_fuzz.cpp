// Any bytes as a VCD file. What is read must keep order and stay within what was declared; written
// and read again it must be the same signals with the same events.

#include "recording_fuzz.h"
#include "stremo/vcd/recording.h"
#include "stremo/vcd/writer.h"

namespace {

using corv::fuzz::Open;
using corv::fuzz::Require;
using corv::recording::OpenVcd;
using corv::recording::SignalReader;

// The last value of each scalar at each time.
using Events = std::map<std::pair<std::int64_t, int>, std::uint64_t>;

Events ReadAll(SignalReader& reader) {
    Events events;
    corv::fuzz::ReadEvents(reader, [&](std::int64_t time, int handle, std::uint64_t value) {
        events[{time, handle}] = value;
    });
    return events;
}

// Whether the reader has signals that a VCD file can't be written with: arrays without elements.
bool HasEmptyArrays(SignalReader& reader) {
    for (int i = 0; i < reader.GetSignalCount(); ++i) {
        const corv::test::SignalInfo info(reader, reader.GetSignalHandle(i));
        if (info.composite && info.members == 0) {
            return true;
        }
    }
    return false;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::vector<unsigned char> bytes(data, data + size);
    corv::recording::IsVcd(bytes);
    const std::unique_ptr<SignalReader> reader =
        size < corv::fuzz::kMostBytes ? Open(OpenVcd, bytes) : nullptr;
    if (reader == nullptr) {
        return 0;
    }
    ReadAll(*reader);
    corv::test::MemoryFiles files;
    Require(corv::vcd::WriteVcd(*reader, files, "out.vcd", {}));
    const std::unique_ptr<SignalReader> written = Open(OpenVcd, files["out.vcd"]);
    Require(written != nullptr);
    const Events events = ReadAll(*written);
    Require(corv::vcd::WriteVcd(*written, files, "again.vcd", {}));
    // names may have been repaired the first time, no more the second
    const std::unique_ptr<SignalReader> rewritten = Open(OpenVcd, files["again.vcd"]);
    Require(rewritten != nullptr && !HasEmptyArrays(*rewritten));
    Require(ReadAll(*rewritten) == events);
    return 0;
}
