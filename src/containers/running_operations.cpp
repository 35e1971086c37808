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

NameIndex* ReaderLoad::IndexOf(const void* container) {
    const auto level = static_cast<std::size_t>(depth_);
    if (names_.size() <= level) {
        names_.resize(level + 1);
    }
    Names& names = names_[level];
    if (names.container != container) {
        names.container = container;
        names.index.Reset();
    }
    return &names.index;
}

void ReaderLoad::ForgetIndexOf(const void* container) noexcept {
    for (Names& names : names_) {
        names.container = names.container == container ? nullptr : names.container;
    }
}

}  // namespace corv::containers
