#include "containers/running_operations.h"

#include <utility>

namespace corv::containers {
namespace {

constexpr int kMostSignals = 1'048'576;  // of one load from a recording

constinit RunningOperations running;

}  // namespace

RunningOperations& Running() noexcept {
    return running;
}

LoadStream::LoadStream(IByteStream& stream) noexcept
    : stream_(stream), outer_(std::exchange(running.load, this)) {}

HRESULT CORV_CALL LoadStream::Read(void* buffer, std::uint32_t length) {
    const HRESULT result = stream_.Read(buffer, length);
    bytes_read_ += SUCCEEDED(result) ? length : 0;
    return result;
}

HRESULT CORV_CALL LoadStream::Write(const void* buffer, std::uint32_t length) {
    return stream_.Write(buffer, length);
}

ReaderLoad::ReaderLoad(stremo::IEventsStreamRead& reader) noexcept
    : reader_(reader), outer_(std::exchange(running.reader_load, this)) {}

bool ReaderLoad::CountSignal() noexcept {
    signals_ += signals_ <= kMostSignals ? 1 : 0;
    return signals_ <= kMostSignals;
}

}  // namespace corv::containers
