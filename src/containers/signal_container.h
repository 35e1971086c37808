#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "containers/late_members.h"
#include "containers/name_index.h"
#include "corv/containers/signal_container.h"
#include "corv/frame/com_ptr.h"
#include "corv/frame/interface_ids.h"
#include "frame/com_object.h"
#include "signals/loads.h"

class CSignal;

namespace corv::containers {

// The operations stand by subject in signal_container.cpp (the list), signal_tree.cpp (handles and
// the way down the tree) and tree_persistence.cpp.
class SignalContainer final
    : public frame::ComObject<SignalContainer, ISignalContainer, IID_ISignalContainer> {
public:
    explicit SignalContainer(frame::ComPtr<IHandleManager> manager) noexcept
        : manager_(std::move(manager)) {}
    ~SignalContainer() { Clear(); }

    HRESULT CORV_CALL Insert(ISignal* signal, ISignal* before) noexcept override;
    HRESULT CORV_CALL Add(ISignal* signal) noexcept override;
    HRESULT CORV_CALL Remove(ISignal* signal) noexcept override;
    HRESULT CORV_CALL Replace(ISignal* old_signal, ISignal* new_signal) noexcept override;
    HRESULT CORV_CALL NewStdSignal(std::uint32_t index, ISignal** signal) noexcept override;
    HRESULT CORV_CALL NewSignal(const char* type, ISignal** signal) noexcept override;
    void CORV_CALL RemoveAll() noexcept override;
    int CORV_CALL GetCount() noexcept override {
        return late_ ? late_->count : static_cast<int>(signals_.size());
    }
    HRESULT CORV_CALL AssignHandles(const char* path, const int* handles,
                                    int count) noexcept override;
    HRESULT CORV_CALL FindSignal(const char* path, ISignal** signal) noexcept override;
    HRESULT CORV_CALL EnumSignals(ISignalEnumerator** enumerator) noexcept override;
    HRESULT CORV_CALL GetAt(std::uint32_t index, ISignal** signal) noexcept override;
    HRESULT CORV_CALL GetHandleManager(IHandleManager** manager) noexcept override;
    HRESULT CORV_CALL SetHandleManager(IHandleManager* manager) noexcept override;
    HRESULT CORV_CALL Load(IByteStream* stream, ISignal* parent) noexcept override;
    HRESULT CORV_CALL Save(IByteStream* stream) noexcept override;
    HRESULT CORV_CALL LoadFromReader(stremo::IEventsStreamRead* reader) noexcept override;
    HRESULT CORV_CALL WriteToWriter(IEventsStreamWrite* writer) noexcept override;
    // Without an out, which signals that load their members pass here, the signal may be made when
    // it is asked for.
    HRESULT CORV_CALL CreateFromReader(stremo::IEventsStreamRead* reader, ISignal* parent,
                                       int index, ISignal** signal) noexcept override;
    std::int64_t CORV_CALL GetMaxTime() noexcept override { return max_time_; }

    // The list, for its enumerators.
    const SignalList& Signals() const noexcept { return signals_; }

    // Makes the members that are still to be made. False, with nothing changed, without memory.
    bool MakeAll() noexcept { return !late_ || MakeMembers(); }
    bool IsLate() const noexcept { return late_ != nullptr; }
    // Takes the members that are still to be made out of a handle manager; null: of any.
    void LeaveLate(const HandleManager* manager) noexcept;
    // The manager that lists members to be made has forgotten them.
    void ForgetLate() noexcept;

private:
    // A signal has joined the list; the list has changed otherwise.
    void NoteJoined(ISignal& signal) noexcept;
    void NoteChange() noexcept;

    HRESULT Put(std::size_t place, ISignal& signal) noexcept;
    void TakeOut(std::size_t place) noexcept;
    void Clear() noexcept;
    bool HoldsManagerAlone() noexcept;
    void Unregister(ISignal& signal) noexcept;

    ISignal* FindNamed(std::string_view name) const noexcept;

    bool AddLate(stremo::IEventsStreamRead& reader, ISignal& parent, int place);
    bool BeginLate(CSignal& first, std::int64_t next_index);
    bool MakeMembers() noexcept;
    std::vector<frame::ComPtr<ISignal>> MakeLate() const;

    HRESULT SaveSignals(IByteStream& stream) noexcept;
    HRESULT LoadSignals(signals::LoadStream& stream, ISignal* parent) noexcept;
    bool LoadSignal(signals::LoadStream& stream, ISignal* parent) noexcept;
    HRESULT LoadAll(signals::ReaderLoad& load, stremo::IEventsStreamRead& reader);
    HRESULT LoadOne(signals::ReaderLoad& load, stremo::IEventsStreamRead& reader, ISignal* parent,
                    int index, ISignal** signal);

    std::int64_t max_time_ = 0;
    SignalList signals_;  // each with a reference
    frame::ComPtr<IHandleManager> manager_;
    std::uint64_t passed_on_ = 0;        // the last passing on of a handle manager that came by
    std::unique_ptr<LateMembers> late_;  // the list is empty then
    std::unique_ptr<NameIndex> names_;   // of a list that is long enough, unless memory ran out
};

}  // namespace corv::containers
