#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "corv/frame/com_ptr.h"
#include "corv/frame/interface_ids.h"
#include "corv/signals/byte_stream.h"
#include "corv/signals/signal.h"
#include "frame/com_object.h"

namespace corv::test {

// The least that a container needs of a signal: a name, a handle, a parent, and a real wave or a
// real container of members, or neither. Objects are counted while they live.
class FakeSignal final : public frame::ComObject<FakeSignal, ISignal, IID_ISignal> {
public:
    explicit FakeSignal(const char* name) {
        SetName(name);
        ++living_;
    }
    ~FakeSignal() { --living_; }

    static inline int Living() { return living_; }

    const char* CORV_CALL GetName() override { return name_ ? name_->c_str() : nullptr; }
    void CORV_CALL SetName(const char* name) override {
        name_ = name != nullptr ? std::optional<std::string>(name) : std::nullopt;
    }
    int CORV_CALL GetHandle() override { return handle_; }
    void CORV_CALL SetHandle(int handle) override { handle_ = handle; }
    ISignal* CORV_CALL GetParent() override { return parent_; }
    void CORV_CALL SetParent(ISignal* parent) override { parent_ = parent; }
    ISignalContainer* CORV_CALL GetSubSignals() override { return members_.get(); }
    HRESULT CORV_CALL EnumSubSignals(ISignalEnumerator** enumerator) override {
        return members_ ? members_->EnumSignals(enumerator) : E_FAIL;
    }
    ISignalWave* CORV_CALL GetWave() override { return wave_.get(); }
    HRESULT CORV_CALL SetWave(ISignalWave* wave) override {
        if (wave == nullptr && owns_wave_) {
            return S_OK;
        }
        owns_wave_ = wave == nullptr;
        if (wave != nullptr) {
            wave_ = frame::ComPtr<ISignalWave>::Share(wave);
            return S_OK;
        }
        return CreateSignalWave(4, wave_.Out());
    }
    bool CORV_CALL OwnsWave() override { return owns_wave_; }
    // No properties, then the members.
    HRESULT CORV_CALL Save(IByteStream* stream) override {
        const unsigned char zeros[4] = {};
        const HRESULT result = stream->Write(zeros, members_ ? 2 : 4);
        return FAILED(result) || !members_ ? result : members_->Save(stream);
    }

    // What is done to the signal by the one who makes it.
    void MakeLeaf(int handle) {
        handle_ = handle;
        CreateSignalWave(4, wave_.Out());
    }
    ISignalContainer& MakeComposite() {
        CreateSignalContainer(members_.Out(), nullptr);
        return *members_;
    }
    void TakeMembers(ISignalContainer* members) {
        members_ = frame::ComPtr<ISignalContainer>::Share(members);
    }

    // Of no use to a container.
    HRESULT CORV_CALL GetFullName(char*, std::uint32_t) override { return E_NOTIMPL; }
    const char* CORV_CALL GetTypeInfo() override { return nullptr; }
    HRESULT CORV_CALL SetTypeInfo(const char*) override { return E_NOTIMPL; }
    int CORV_CALL GetStdLogicClass() override { return 0; }
    HRESULT CORV_CALL GetTypeName(char*, std::uint32_t) override { return E_NOTIMPL; }
    std::uint32_t CORV_CALL GetWaveValueSize() override { return 0; }
    int CORV_CALL GetMode() override { return 0; }
    void CORV_CALL SetMode(int) override {}
    int CORV_CALL GetColor() override { return 0; }
    void CORV_CALL SetColor(int) override {}
    const char* CORV_CALL GetStimulator() override { return nullptr; }
    void CORV_CALL SetStimulator(const char*) override {}
    int CORV_CALL GetDisplayMode() override { return 0; }
    HRESULT CORV_CALL SetDisplayMode(int) override { return E_NOTIMPL; }
    int CORV_CALL GetDisplayRadix() override { return 0; }
    void CORV_CALL Reserved1() override {}
    void CORV_CALL SetValueTextFlag(bool) override {}
    const char* CORV_CALL GetEventText(IWaveEvent*) override { return nullptr; }
    const char* CORV_CALL GetValueTextAt(std::int64_t, std::uint32_t) override { return nullptr; }
    int CORV_CALL Reserved2(int) override { return 0; }
    const char* CORV_CALL GetProperty(const char*) override { return nullptr; }
    void CORV_CALL SetProperty(const char*, const char*) override {}
    HRESULT CORV_CALL GetStimulatorInfo(int*, int*, char*, std::uint32_t) override {
        return E_NOTIMPL;
    }
    void CORV_CALL SetStimulatorInfo(int, int, const char*) override {}
    int CORV_CALL GetHotKey() override { return 0; }
    void CORV_CALL SetHotKey(int) override {}
    bool CORV_CALL GetSpareFlag() override { return false; }
    HRESULT CORV_CALL EnumEvents(IWaveEventEnumerator**) override { return E_NOTIMPL; }
    HRESULT CORV_CALL GetBusEventIterator(IBusEventIterator**) override { return E_NOTIMPL; }
    HRESULT CORV_CALL TextToValue(const char*, void*, std::uint32_t) override { return E_NOTIMPL; }
    HRESULT CORV_CALL Load(IByteStream*, ISignalContainer*, ISignal*) override { return E_NOTIMPL; }
    HRESULT CORV_CALL LoadFromReader(stremo::IEventsStreamRead*, ISignalContainer*, ISignal*,
                                     int) override {
        return E_NOTIMPL;
    }
    HRESULT CORV_CALL WriteToWriter(IEventsStreamWrite*, int) override { return E_NOTIMPL; }
    const char* CORV_CALL GetValueText() override { return nullptr; }
    std::int64_t CORV_CALL GetMaxTime() override { return 0; }

private:
    static inline int living_ = 0;

    std::optional<std::string> name_;
    int handle_ = -1;
    ISignal* parent_ = nullptr;
    bool owns_wave_ = true;
    frame::ComPtr<ISignalWave> wave_;
    frame::ComPtr<ISignalContainer> members_;
};

using FakePtr = frame::ComPtr<FakeSignal>;

// Signals with one reference, the caller's.
inline FakePtr NewFake(const char* name) {
    return FakePtr::Share(new FakeSignal(name));
}
inline FakePtr NewLeaf(const char* name, int handle = -1) {
    FakePtr signal = NewFake(name);
    signal->MakeLeaf(handle);
    return signal;
}
inline FakePtr NewComposite(const char* name) {
    FakePtr signal = NewFake(name);
    signal->MakeComposite();
    return signal;
}

}  // namespace corv::test
