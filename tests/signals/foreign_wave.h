#pragma once

#include "corv/frame/com_ptr.h"
#include "corv/frame/interface_ids.h"
#include "corv/waves/signal_wave.h"
#include "frame/com_object.h"
#include "tests/support/test.h"

namespace corv::test {

// An enumerator of somebody else's: it passes everything on.
class ForeignEnumerator final
    : public frame::ComObject<ForeignEnumerator, IWaveEventEnumerator, IID_IWaveEventEnumerator> {
public:
    ForeignEnumerator(frame::ComPtr<IWaveEventEnumerator> inner, int& living)
        : inner_(std::move(inner)), living_(living) {
        ++living_;
    }
    ~ForeignEnumerator() { --living_; }

    HRESULT CORV_CALL Current(IWaveEvent** event) override { return inner_->Current(event); }
    HRESULT CORV_CALL Next(std::uint32_t count, IWaveEvent** events,
                           std::uint32_t* delivered) override {
        return inner_->Next(count, events, delivered);
    }
    HRESULT CORV_CALL Reset() override { return inner_->Reset(); }
    int CORV_CALL IsNotFirst() override { return inner_->IsNotFirst(); }
    int CORV_CALL IsNotLast() override { return inner_->IsNotLast(); }
    int CORV_CALL HasEvents() override { return inner_->HasEvents(); }
    std::int64_t CORV_CALL CurrentTime() override { return inner_->CurrentTime(); }
    HRESULT CORV_CALL Seek(std::int64_t time, std::uint32_t mode) override {
        return inner_->Seek(time, mode);
    }

private:
    frame::ComPtr<IWaveEventEnumerator> inner_;
    int& living_;
};

// A wave of somebody else's, over one of the library's. Counts its enumerators; can refuse them.
class ForeignWave final : public frame::ComObject<ForeignWave, ISignalWave, IID_ISignalWave> {
public:
    explicit ForeignWave(std::uint32_t size) { CreateSignalWave(size, inner_.Out()); }

    HRESULT CORV_CALL AddEvent(std::int64_t time, std::uint32_t stamp, const void* value,
                               std::uint32_t size) override {
        return inner_->AddEvent(time, stamp, value, size);
    }
    HRESULT CORV_CALL AddMarkedEvent(std::int64_t time, std::uint32_t stamp, const void* value,
                                     std::uint32_t size) override {
        return inner_->AddMarkedEvent(time, stamp, value, size);
    }
    HRESULT CORV_CALL InsertEvent(std::int64_t, const void*, std::uint32_t) override {
        return E_NOTIMPL;
    }
    HRESULT CORV_CALL AddPendingEvent(std::int64_t time, const void* value,
                                      std::uint32_t size) override {
        return inner_->AddPendingEvent(time, value, size);
    }
    HRESULT CORV_CALL CommitPendingEvents() override { return inner_->CommitPendingEvents(); }
    HRESULT CORV_CALL ClearPendingEvents() override { return inner_->ClearPendingEvents(); }
    HRESULT CORV_CALL Clear() override { return inner_->Clear(); }
    HRESULT CORV_CALL CreateEnumerator(IWaveEventEnumerator** enumerator) override {
        frame::ComPtr<IWaveEventEnumerator> inner;
        if (refuses || FAILED(inner_->CreateEnumerator(inner.Out()))) {
            return E_OUTOFMEMORY;
        }
        return frame::CreateComObject<ForeignEnumerator>(enumerator, std::move(inner), enumerators);
    }
    HRESULT CORV_CALL FindEvent(std::int64_t time, std::uint32_t mode,
                                IWaveEvent** event) override {
        return inner_->FindEvent(time, mode, event);
    }
    HRESULT CORV_CALL RemoveEvent(std::int64_t time) override { return inner_->RemoveEvent(time); }
    HRESULT CORV_CALL RemoveEvents(std::int64_t from, std::int64_t to) override {
        return inner_->RemoveEvents(from, to);
    }
    std::uint32_t CORV_CALL GetEventCount() override { return inner_->GetEventCount(); }
    std::uint32_t CORV_CALL GetValueSize() override { return inner_->GetValueSize(); }
    std::int64_t CORV_CALL GetFirstTime() override { return inner_->GetFirstTime(); }
    std::int64_t CORV_CALL GetLastTime() override { return inner_->GetLastTime(); }
    HRESULT CORV_CALL GetEventValue(std::uint32_t index, void* buffer,
                                    std::uint32_t size) override {
        return inner_->GetEventValue(index, buffer, size);
    }

    int enumerators = 0;
    bool refuses = false;

private:
    frame::ComPtr<ISignalWave> inner_;
};

inline frame::ComPtr<ISignalWave> MakeForeignWave(std::uint32_t size) {
    frame::ComPtr<ISignalWave> wave;
    frame::CreateComObject<ForeignWave>(wave.Out(), size);
    return wave;
}

}  // namespace corv::test
