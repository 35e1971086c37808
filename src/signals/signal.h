#pragma once

#include <cstdint>

#include "corv/frame/com_ptr.h"
#include "corv/frame/interface_ids.h"
#include "corv/signals/property_map.h"
#include "corv/signals/signal.h"
#include "corv/typeinfo/type_info.h"
#include "frame/com_object.h"
#include "signals/short_text.h"
#include "signals/type_cache.h"
#include "tree/listings.h"

namespace corv::signals {

class MemberBuilder;

}  // namespace corv::signals

// The one implementation of signals. Its operations stand by subject in signal.cpp (properties,
// waves, members), signal_type.cpp, signal_stimulator.cpp, signal_value_text.cpp and
// signal_persistence.cpp.
//
// Once a type has been applied a signal has a wave or members, never both. The parent is not
// counted; the members' container holds the references to the members.
//
// A design has millions of signals that are never looked at, and so a signal makes late what it
// can: its own wave when that is asked for. What differs from signal to signal, the name and the
// handle, stands beside the map of properties, so that the maps of many signals are one.
class CSignal final : public corv::frame::ComObject<CSignal, ISignal, IID_ISignal> {
public:
    explicit CSignal(ISignal* parent) noexcept : parent_(parent) {}

    const char* CORV_CALL GetName() noexcept override;
    void CORV_CALL SetName(const char* name) noexcept override;
    HRESULT CORV_CALL GetFullName(char* buffer, std::uint32_t size) noexcept override;
    const char* CORV_CALL GetTypeInfo() noexcept override;
    HRESULT CORV_CALL SetTypeInfo(const char* type) noexcept override;
    int CORV_CALL GetStdLogicClass() noexcept override { return std_logic_class_; }
    HRESULT CORV_CALL GetTypeName(char* buffer, std::uint32_t size) noexcept override;
    std::uint32_t CORV_CALL GetWaveValueSize() noexcept override {
        return wave_ ? wave_->GetValueSize() : late_wave_size_;
    }
    int CORV_CALL GetMode() noexcept override;
    void CORV_CALL SetMode(int mode) noexcept override;
    int CORV_CALL GetHandle() noexcept override { return handle_; }
    void CORV_CALL SetHandle(int handle) noexcept override;
    int CORV_CALL GetColor() noexcept override;
    void CORV_CALL SetColor(int color) noexcept override;
    const char* CORV_CALL GetStimulator() noexcept override;
    void CORV_CALL SetStimulator(const char* text) noexcept override;
    int CORV_CALL GetDisplayMode() noexcept override;
    HRESULT CORV_CALL SetDisplayMode(int mode) noexcept override;
    int CORV_CALL GetDisplayRadix() noexcept override;
    HRESULT CORV_CALL SetWave(ISignalWave* wave) noexcept override;
    bool CORV_CALL OwnsWave() noexcept override { return !external_wave_; }
    void CORV_CALL Reserved1() noexcept override {}
    void CORV_CALL SetValueTextFlag(bool quoted) noexcept override;
    const char* CORV_CALL GetEventText(IWaveEvent* event) noexcept override;
    const char* CORV_CALL GetValueTextAt(std::int64_t time, std::uint32_t mode) noexcept override;
    int CORV_CALL Reserved2(int) noexcept override { return 0; }
    const char* CORV_CALL GetProperty(const char* key) noexcept override;
    void CORV_CALL SetProperty(const char* key, const char* value) noexcept override;
    HRESULT CORV_CALL GetStimulatorInfo(int* type, int* strength, char* formula,
                                        std::uint32_t size) noexcept override;
    void CORV_CALL SetStimulatorInfo(int type, int strength, const char* text) noexcept override;
    int CORV_CALL GetHotKey() noexcept override;
    void CORV_CALL SetHotKey(int key) noexcept override;
    bool CORV_CALL GetSpareFlag() noexcept override { return spare_flag_; }
    ISignal* CORV_CALL GetParent() noexcept override { return parent_; }
    ISignalContainer* CORV_CALL GetSubSignals() noexcept override { return members_.get(); }
    ISignalWave* CORV_CALL GetWave() noexcept override {
        return wave_ ? wave_.get() : MakeLateWave();
    }
    HRESULT CORV_CALL EnumSubSignals(ISignalEnumerator** enumerator) noexcept override;
    HRESULT CORV_CALL EnumEvents(IWaveEventEnumerator** enumerator) noexcept override;
    HRESULT CORV_CALL GetBusEventIterator(IBusEventIterator** iterator) noexcept override;
    HRESULT CORV_CALL TextToValue(const char* text, void* buffer,
                                  std::uint32_t size) noexcept override;
    HRESULT CORV_CALL Load(IByteStream* stream, ISignalContainer* owner,
                           ISignal* parent) noexcept override;
    HRESULT CORV_CALL Save(IByteStream* stream) noexcept override;
    HRESULT CORV_CALL LoadFromReader(stremo::IEventsStreamRead* reader, ISignalContainer* owner,
                                     ISignal* parent, int member_count) noexcept override;
    HRESULT CORV_CALL WriteToWriter(IEventsStreamWrite* writer, int index) noexcept override;
    const char* CORV_CALL GetValueText() noexcept override;
    void CORV_CALL SetParent(ISignal* parent) noexcept override { parent_ = parent; }
    std::int64_t CORV_CALL GetMaxTime() noexcept override;

    // Gives a new signal the type and the properties of another one that is new and a scalar.
    // E_OUTOFMEMORY.
    HRESULT ApplyTypeOf(const CSignal& scalar) noexcept;

    // Makes a new signal like another one without members, but for its name and handle. False
    // without memory for the name.
    bool BecomeLike(const CSignal& other, const char* name, int handle) noexcept;

    // Whether the signal has a wave that is still to be made.
    bool HasLateWave() const noexcept { return late_wave_size_ != 0; }
    // Whether the signal has a wave, also one that is still to be made.
    bool HasWave() const noexcept { return wave_ || late_wave_size_ != 0; }

    // All properties but the name and the handle.
    const CPropertyMap& Properties() const noexcept { return properties_; }
    // Gives a new signal the properties of another one, which are the same until either changes.
    void ShareProperties(const CPropertyMap& properties) noexcept { properties_ = properties; }

    // The handle managers that list the signal.
    corv::tree::Listings& Listed() noexcept { return listings_; }

    // From now on each change of the name is counted, see tree/renamings.h.
    void WatchName() noexcept { is_name_watched_ = true; }

    // The type in its parsed form, null without one.
    const KTypeInfo* Type() const noexcept { return type_.get(); }
    // Whether value texts show literals in quotes.
    bool HasQuotedTexts() const noexcept { return value_text_flag_; }

private:
    friend class corv::signals::MemberBuilder;

    int IntegerProperty(const char* key, int without) const noexcept;
    // The operations of the map for any key. False when memory runs out.
    bool StoreProperty(const char* key, const char* value) noexcept;
    bool StoreName(const char* key, const char* name) noexcept;
    // Calls an action with each property, in order, until it gives false; gives whether none did.
    template <class Action>
    bool ForEachProperty(const Action& action) const noexcept;
    bool HasHandleApart() const noexcept;
    std::size_t CountProperties() const noexcept;
    bool CanBeLoaded() const noexcept;
    bool WriteProperties(IByteStream& stream) const noexcept;
    HRESULT ReadProperties(IByteStream& stream) noexcept;

    // Gives the signal a type, with the wave or members that it makes. E_FAIL or E_OUTOFMEMORY,
    // with nothing changed, when they can't be made.
    HRESULT ApplyType(const corv::signals::TypePtr& type) noexcept;
    // Lets the signal have a wave for values of a scalar type; its own serves on when it has their
    // size. False when there are no such waves.
    bool PlanWave(const KTypeInfo& type) noexcept;
    // Null for a signal without a wave and when memory runs out.
    ISignalWave* MakeLateWave() noexcept;
    void DropWave() noexcept;
    // Stores a type with what follows from its name.
    void SetType(const corv::signals::TypePtr& type) noexcept;
    // What loading does once the properties and members have been read.
    HRESULT FinishLoading(ISignalContainer& owner, ISignal* parent) noexcept;
    // The wave of the first signal that the owner's handle manager lists under the handle, null
    // when there is no such signal. E_OUTOFMEMORY.
    HRESULT FindSharedWave(ISignalContainer& owner,
                           corv::frame::ComPtr<ISignalWave>& wave) const noexcept;
    void TakeMembers(corv::frame::ComPtr<ISignalContainer> members) noexcept;
    void StoreFormula(const char* formula, int type, int strength) noexcept;

    corv::signals::TypePtr type_;
    bool external_wave_ = false;
    std::int8_t std_logic_class_ = 0;
    bool value_text_flag_ = false;
    bool spare_flag_ = false;
    CPropertyMap properties_;
    corv::frame::ComPtr<ISignalWave> wave_;
    int handle_ = -1;
    ISignal* parent_;
    corv::frame::ComPtr<ISignalContainer> members_;
    corv::signals::ShortText name_;    // unless the map has it
    std::uint8_t late_wave_size_ = 0;  // of the values in the wave that is still to be made
    bool is_name_watched_ = false;
    bool is_descending_ = false;  // an operation is being passed on to the members
    corv::tree::Listings listings_;
};

static_assert(sizeof(CSignal) <= 17 * sizeof(void*));
