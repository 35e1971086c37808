// Trees in byte streams (docs/formats/signal-tree.md) and recordings. A list of signals in a byte
// stream is their count and the signals, each with its members; what a signal writes of itself is
// in signal_persistence.cpp.

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <limits>

#include "containers/signal_container.h"
#include "containers/signal_info.h"
#include "corv/platform/cstring.h"
#include "corv/signals/signal.h"
#include "corv/stremo/events_stream_read.h"
#include "corv/stremo/events_stream_write.h"
#include "platform/guard.h"
#include "tree/save_check.h"
#include "tree/stream_number.h"

using corv::frame::ComPtr;
using stremo::IEventsStreamRead;

namespace corv::containers {
namespace {

constexpr std::size_t kMostSaved = std::numeric_limits<std::uint16_t>::max();

bool IsText(const char* text, const char* wanted) noexcept {
    return text != nullptr && std::strcmp(text, wanted) == 0;
}

// False when it could not be stored.
bool Store(ISignal& signal, const char* key, const char* value) noexcept {
    if (IsText(signal.GetProperty(key), value)) {
        return true;
    }
    signal.SetProperty(key, value);
    return IsText(signal.GetProperty(key), value);
}

template <class Number>
bool StoreNumber(ISignal& signal, const char* key, Number number) noexcept {
    std::array<char, 24> text{};
    std::to_chars(text.data(), text.data() + text.size() - 1, number);
    return Store(signal, key, text.data());
}

// False when a property could not be stored.
bool Describe(ISignal& signal, int handle, const SignalInfo& info) noexcept {
    signal.SetHandle(handle);
    return Store(signal, "Name", info.name) && StoreNumber(signal, "Mode", info.mode) &&
           StoreNumber(signal, "MaxTime", info.max_time) && Store(signal, "Type Info", info.type);
}

}  // namespace

HRESULT CORV_CALL SignalContainer::Save(IByteStream* stream) noexcept {
    const bool is_outermost = tree::Running().save_depth == 0;
    const tree::Level level(tree::Running().save_depth);
    if (stream == nullptr || !level.IsAllowed()) {
        return E_FAIL;
    }
    if (!MakeAll()) {
        return E_OUTOFMEMORY;
    }
    const HRESULT checked = is_outermost ? SaveSignals(tree::SaveCheck::Get()) : S_OK;
    return SUCCEEDED(checked) ? SaveSignals(*stream) : checked;
}

HRESULT SignalContainer::SaveSignals(IByteStream& stream) noexcept {
    HRESULT result =
        signals_.size() <= kMostSaved ? tree::WriteNumber(stream, signals_.size()) : E_FAIL;
    for (std::size_t i = 0; SUCCEEDED(result) && i < signals_.size(); ++i) {
        result = signals_[i]->Save(&stream);
    }
    return result;
}

HRESULT CORV_CALL SignalContainer::Load(IByteStream* stream, ISignal* parent) noexcept {
    if (stream == nullptr) {
        return E_FAIL;
    }
    signals::LoadStream* const running = tree::Running().load;
    if (running == stream) {
        return LoadSignals(*running, parent);
    }
    signals::LoadStream load(*stream);
    return LoadSignals(load, parent);
}

HRESULT SignalContainer::LoadSignals(signals::LoadStream& stream, ISignal* parent) noexcept {
    std::size_t count = 0;
    if (const HRESULT result = tree::ReadNumber(stream, count); FAILED(result)) {
        return result;
    }
    if (count == 0) {
        return E_FAIL;
    }
    const tree::Level level(stream.Depth());
    if (!level.IsAllowed()) {
        stream.GiveUp();
        return E_FAIL;
    }
    max_time_ = 0;
    for (std::size_t i = 0; i < count && LoadSignal(stream, parent); ++i) {
    }
    return stream.HasGivenUp() ? E_FAIL : S_OK;
}

// False when nothing is left to read. Where memory runs out in a record its rest stays unread, and
// what follows would not be read as what it is: the load ends.
bool SignalContainer::LoadSignal(signals::LoadStream& stream, ISignal* parent) noexcept {
    ComPtr<ISignal> signal;
    const std::uint64_t place = stream.BytesRead();
    const HRESULT result = FAILED(stream.Signals().Make(signal.Out()))
                               ? E_OUTOFMEMORY
                               : signal->Load(&stream, this, parent);
    if (result == E_OUTOFMEMORY) {
        stream.GiveUp();
    }
    if (FAILED(result)) {
        return stream.BytesRead() > place && !stream.HasGivenUp();
    }
    max_time_ = std::max(max_time_, signal.Detach()->GetMaxTime());
    return !stream.HasGivenUp();
}

HRESULT CORV_CALL SignalContainer::LoadFromReader(IEventsStreamRead* reader) noexcept {
    if (reader == nullptr) {
        return E_FAIL;
    }
    signals::ReaderLoad load(*reader);
    const HRESULT result = platform::Guarded(E_OUTOFMEMORY, [&] { return LoadAll(load, *reader); });
    if (result == E_OUTOFMEMORY) {
        load.Refuse("out of memory");
    }
    return SUCCEEDED(result) ? S_OK : E_FAIL;
}

HRESULT SignalContainer::LoadAll(signals::ReaderLoad& load, IEventsStreamRead& reader) {
    const int count = reader.GetSignalCount();
    for (int i = 0; i < count; ++i) {
        ISignal* signal = nullptr;
        if (FAILED(LoadOne(load, reader, nullptr, i, &signal))) {
            return E_FAIL;
        }
        max_time_ = std::max(max_time_, signal->GetMaxTime());
    }
    return S_OK;
}

HRESULT CORV_CALL SignalContainer::CreateFromReader(IEventsStreamRead* reader, ISignal* parent,
                                                    int index, ISignal** signal) noexcept {
    ISignal* unnamed = nullptr;
    ISignal** const made = signal != nullptr ? signal : &unnamed;
    *made = nullptr;
    if (reader == nullptr) {
        return E_FAIL;
    }
    const bool may_be_late = signal == nullptr && parent != nullptr;
    if (may_be_late && platform::Guarded(false, [&] { return AddLate(*reader, *parent, index); })) {
        return S_OK;
    }
    const auto load_in = [&](signals::ReaderLoad& load) {
        return platform::Guarded(E_FAIL,
                                 [&] { return LoadOne(load, *reader, parent, index, made); });
    };
    signals::ReaderLoad* const running = tree::Running().reader_load;
    if (running != nullptr && running->IsOf(*reader)) {
        return load_in(*running);
    }
    signals::ReaderLoad load(*reader);
    return load_in(load);
}

HRESULT SignalContainer::LoadOne(signals::ReaderLoad& load, IEventsStreamRead& reader,
                                 ISignal* parent, int index, ISignal** signal) {
    const tree::Level level(load.Depth());
    const int handle = parent != nullptr ? reader.GetSubSignalHandle(parent->GetHandle(), index)
                                         : reader.GetSignalHandle(index);
    if (handle == -1) {
        load.Refuse("a signal is missing");
        return E_FAIL;
    }
    if (!load.Enter(load.Depth() - 1, handle)) {
        return E_FAIL;
    }
    const SignalInfo info(reader, handle);
    if (info.type == nullptr) {
        load.Refuse("a signal has no type");
        return E_FAIL;
    }
    ComPtr<ISignal> made;
    if (FAILED(load.Signals().Make(made.Out())) || !Describe(*made, handle, info) ||
        FAILED(made->LoadFromReader(&reader, this, parent, info.member_count))) {
        load.Refuse("out of memory");
        return E_FAIL;
    }
    if (info.member_count == 0) {
        load.Signals().ContinueFrom(*made);
    }
    *signal = made.Detach();
    return S_OK;
}

HRESULT CORV_CALL SignalContainer::WriteToWriter(IEventsStreamWrite* writer) noexcept {
    if (writer == nullptr || !MakeAll()) {
        return E_FAIL;
    }
    const std::size_t count = writer->IsReady() ? signals_.size() : 0;
    HRESULT result = S_OK;
    for (std::size_t i = 0; SUCCEEDED(result) && i < std::min(count, signals_.size()); ++i) {
        result = signals_[i]->WriteToWriter(writer, -1);
    }
    return result;
}

}  // namespace corv::containers
