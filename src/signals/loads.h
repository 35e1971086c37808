#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "corv/containers/signal_container.h"
#include "corv/frame/com_ptr.h"
#include "corv/signals/byte_stream.h"
#include "corv/signals/property_map.h"
#include "corv/signals/signal.h"
#include "tree/running_operations.h"

namespace stremo {
class IEventsStreamRead;
}

namespace corv::signals {

// What the event streams keep of a signal besides its place and type.
inline constexpr std::array<const char*, 2> kStreamProperties{"Stimulator", "VBus"};

// Makes the std_logic signals that loaded ones begin as: the first in full, the others like it.
class StdLogicMaker {
public:
    // As CreateStdSignal.
    HRESULT Make(ISignal** signal) noexcept;

    // The signals that are made from now on begin with the properties of one that was made here:
    // what they have in common is kept once.
    void ContinueFrom(ISignal& signal) noexcept;

private:
    frame::ComPtr<ISignal> first_;
    CPropertyMap properties_;  // of the signal to continue from
};

// A load from a byte stream, from the outermost container's on, for as long as it lives. It is the
// stream that the signals read from, so that it knows how far they came.
class LoadStream final : public IByteStream {
public:
    explicit LoadStream(IByteStream& stream) noexcept;
    LoadStream(const LoadStream&) = delete;
    LoadStream& operator=(const LoadStream&) = delete;
    ~LoadStream() { tree::Running().load = outer_; }

    // Not counted: the load outlives all use of it.
    HRESULT CORV_CALL QueryInterface(const GUID&, void**) noexcept override {
        return E_NOINTERFACE;
    }
    std::uint32_t CORV_CALL AddRef() noexcept override { return 1; }
    std::uint32_t CORV_CALL Release() noexcept override { return 1; }
    HRESULT CORV_CALL Read(void* buffer, std::uint32_t length) override;
    HRESULT CORV_CALL Write(const void* buffer, std::uint32_t length) override;

    std::uint64_t BytesRead() const noexcept { return bytes_read_; }
    int& Depth() noexcept { return depth_; }
    // Once members were nested too deep or memory ran out the place in the stream means nothing:
    // all containers end.
    void GiveUp() noexcept { given_up_ = true; }
    bool HasGivenUp() const noexcept { return given_up_; }

    StdLogicMaker& Signals() noexcept { return signals_; }

    // Reads ahead whether a signal's list of members, which comes next in the stream, is empty or
    // can't be read; if neither, the list is left to be loaded.
    bool SkipEmptyList() noexcept;

private:
    IByteStream& stream_;
    LoadStream* const outer_;
    StdLogicMaker signals_;
    std::uint64_t bytes_read_ = 0;
    int depth_ = 0;
    bool given_up_ = false;
    std::optional<std::array<unsigned char, 2>> read_ahead_;  // a list's count
};

// A load from a recording, from the outermost operation on, for as long as it lives.
class ReaderLoad {
public:
    explicit ReaderLoad(stremo::IEventsStreamRead& reader) noexcept;
    ReaderLoad(const ReaderLoad&) = delete;
    ReaderLoad& operator=(const ReaderLoad&) = delete;
    ~ReaderLoad() { tree::Running().reader_load = outer_; }

    bool IsOf(const stremo::IEventsStreamRead& reader) const noexcept {
        return &reader == &reader_;
    }
    // What a recording may have at most, members counted: more than memory holds, so that only a
    // reader without end comes to it.
    static constexpr int kMostSignals = 1 << 26;

    // A signal with that many others around it comes next. False when it must not be loaded.
    bool Enter(int depth, int handle) noexcept;
    // Tells by LastStreamError why the load fails; the first reason counts.
    void Refuse(const char* why) noexcept;
    int& Depth() noexcept { return depth_; }
    StdLogicMaker& Signals() noexcept { return maker_; }

private:
    stremo::IEventsStreamRead& reader_;
    ReaderLoad* const outer_;
    StdLogicMaker maker_;
    int depth_ = 0;
    int signals_ = 0;
    bool is_refused_ = false;
    std::array<int, tree::kMostNesting> way_{};  // the handles of the signals that are loaded
};

}  // namespace corv::signals
