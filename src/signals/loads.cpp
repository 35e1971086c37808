#include "signals/loads.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "frame/com_object.h"
#include "signals/signal.h"
#include "stremo/stream_error.h"

namespace corv::signals {
namespace {

constexpr std::uint32_t kStdLogic = 1;  // the number of the standard type

}  // namespace

HRESULT StdLogicMaker::Make(ISignal** signal) noexcept {
    HRESULT result = first_ ? S_OK : CreateStdSignal(kStdLogic, nullptr, first_.Out());
    frame::ComPtr<ISignal> made;
    result = SUCCEEDED(result) ? frame::CreateComObject<CSignal>(made.Out(), nullptr) : result;
    if (SUCCEEDED(result)) {
        result = static_cast<CSignal&>(*made).ApplyTypeOf(static_cast<CSignal&>(*first_));
    }
    if (SUCCEEDED(result) && properties_.GetCount() > 0) {
        static_cast<CSignal&>(*made).ShareProperties(properties_);
    }
    *signal = SUCCEEDED(result) ? made.Detach() : nullptr;
    return result;
}

void StdLogicMaker::ContinueFrom(ISignal& signal) noexcept {
    properties_ = static_cast<CSignal&>(signal).Properties();
}

LoadStream::LoadStream(IByteStream& stream) noexcept
    : stream_(stream), outer_(std::exchange(tree::Running().load, this)) {}

bool LoadStream::SkipEmptyList() noexcept {
    std::array<unsigned char, 2> count{};
    if (FAILED(Read(count.data(), count.size())) || count == decltype(count){}) {
        return true;
    }
    read_ahead_ = count;
    return false;
}

HRESULT CORV_CALL LoadStream::Read(void* buffer, std::uint32_t length) {
    if (read_ahead_ && length == read_ahead_->size()) {
        std::memcpy(buffer, read_ahead_->data(), length);
        read_ahead_.reset();
        return S_OK;
    }
    const HRESULT result = stream_.Read(buffer, length);
    bytes_read_ += SUCCEEDED(result) ? length : 0;
    return result;
}

HRESULT CORV_CALL LoadStream::Write(const void* buffer, std::uint32_t length) {
    return stream_.Write(buffer, length);
}

ReaderLoad::ReaderLoad(stremo::IEventsStreamRead& reader) noexcept
    : reader_(reader), outer_(std::exchange(tree::Running().reader_load, this)) {}

bool ReaderLoad::Enter(int depth, int handle) noexcept {
    const auto end = way_.begin() + depth;
    const char* const problem = depth == tree::kMostNesting ? "signals are nested too deep"
                                : std::find(way_.begin(), end, handle) != end
                                    ? "a signal is a member of itself"
                                : signals_ == kMostSignals ? "there are too many signals"
                                                           : nullptr;
    if (problem != nullptr) {
        Refuse(problem);
        return false;
    }
    *end = handle;
    ++signals_;
    return true;
}

void ReaderLoad::Refuse(const char* why) noexcept {
    if (!is_refused_) {
        recording::SetError("", why);
    }
    is_refused_ = true;
}

}  // namespace corv::signals
