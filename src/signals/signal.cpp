#include "signals/signal.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

#include "corv/frame/com_ptr.h"
#include "platform/ascii.h"
#include "signals/loads.h"
#include "tree/members.h"
#include "tree/renamings.h"
#include "util/fields.h"

using corv::frame::ComPtr;
using corv::platform::EqualNoCase;

namespace {

constexpr int kTopMode = 6;

// A chain of parents that leads back to itself ends here.
constexpr int kMostParents = 1 << 20;

// The radix of each display mode; any other mode has the first one.
constexpr std::array<int, 5> kRadixes{1, 2, 8, 10, 16};

std::string_view NameOf(ISignal& signal) noexcept {
    const char* const name = signal.GetName();
    return name != nullptr ? name : "";
}

}  // namespace

int CSignal::IntegerProperty(const char* key, int without) const noexcept {
    int value = without;
    properties_.GetInteger(key, value);
    return value;
}

const char* CSignal::GetName() noexcept {
    const char* const name = name_.Get();
    return name != nullptr ? name : properties_.Get("Name");
}
void CSignal::SetName(const char* name) noexcept {
    StoreName("Name", name);
}

// A name whose key is spelt otherwise stands in the map, which keeps the spelling.
bool CSignal::StoreName(const char* key, const char* name) noexcept {
    const bool is_apart = name_.Get() != nullptr ||
                          (std::strcmp(key, "Name") == 0 && properties_.Get("Name") == nullptr);
    const bool is_stored =
        is_apart ? name_.Set(name != nullptr ? name : "") : properties_.Set(key, name);
    if (is_name_watched_) {
        corv::tree::CountRenaming();
    }
    return is_stored;
}

const char* CSignal::GetTypeInfo() noexcept {
    return properties_.Get("Type Info");
}

int CSignal::GetMode() noexcept {
    ISignal* signal = this;
    for (int i = 0; signal != nullptr && i < kMostParents; ++i, signal = signal->GetParent()) {
        if (const char* const mode = signal->GetProperty("Mode")) {
            return corv::util::LeadingInt(mode);
        }
    }
    return kTopMode;
}
void CSignal::SetMode(int mode) noexcept {
    properties_.SetInteger("Mode", mode);
}

// The property stands in the map when something else has put it there; else it is written when it
// is asked for.
void CSignal::SetHandle(int handle) noexcept {
    handle_ = handle;
    int stored = 0;
    if (handle == -1) {
        properties_.Erase("Handle");
    } else if (properties_.GetInteger("Handle", stored) && stored != handle) {
        properties_.SetInteger("Handle", handle);
    }
}

int CSignal::GetColor() noexcept {
    return IntegerProperty("Color", 0);
}
void CSignal::SetColor(int color) noexcept {
    properties_.SetInteger("Color", color);
}

const char* CSignal::GetStimulator() noexcept {
    return properties_.Get("Stimulator");
}
void CSignal::SetStimulator(const char* text) noexcept {
    properties_.Set("Stimulator", text);
}

int CSignal::GetDisplayMode() noexcept {
    return IntegerProperty("Display Mode", 0);
}
HRESULT CSignal::SetDisplayMode(int mode) noexcept {
    if (mode == 0 && std_logic_class_ == 0) {
        return E_INVALIDARG;
    }
    properties_.SetInteger("Display Mode", mode);
    return S_OK;
}
int CSignal::GetDisplayRadix() noexcept {
    const auto mode = static_cast<std::size_t>(GetDisplayMode());
    return mode < kRadixes.size() ? kRadixes[mode] : kRadixes[0];
}

const char* CSignal::GetProperty(const char* key) noexcept {
    if (key != nullptr && EqualNoCase(key, "Name")) {
        return GetName();
    }
    const char* const value = properties_.Get(key);
    if (value != nullptr || key == nullptr || handle_ == -1 || !EqualNoCase(key, "Handle")) {
        return value;
    }
    properties_.SetInteger("Handle", handle_);
    return properties_.Get(key);
}
void CSignal::SetProperty(const char* key, const char* value) noexcept {
    StoreProperty(key, value);
    if (key != nullptr && std::strcmp(key, "Handle") == 0) {
        handle_ = IntegerProperty("Handle", handle_);
    }
}
bool CSignal::StoreProperty(const char* key, const char* value) noexcept {
    if (key != nullptr && EqualNoCase(key, "Name")) {
        return StoreName(key, value);
    }
    if (key != nullptr && EqualNoCase(key, "Handle")) {
        GetProperty(key);  // its first spelling stays
    }
    return properties_.Set(key, value);
}

std::int64_t CSignal::GetMaxTime() noexcept {
    std::int64_t time = 0;
    properties_.GetInteger64("MaxTime", time);
    return time;
}

// The names are written from the last one back, so that the chain of parents is walked without a
// list of it.
HRESULT CSignal::GetFullName(char* buffer, std::uint32_t size) noexcept {
    if (buffer == nullptr || size == 0) {
        return E_INVALIDARG;
    }
    std::size_t length = 0;
    ISignal* signal = this;
    for (int i = 0; signal != nullptr && i < kMostParents; ++i, signal = signal->GetParent()) {
        length += NameOf(*signal).size();
    }
    buffer[0] = '\0';
    if (signal != nullptr) {
        return E_OUTOFMEMORY;  // no end of parents
    }
    HRESULT result = S_OK;
    signal = this;
    for (; length + 2 > size && signal != nullptr; signal = signal->GetParent()) {
        const char* const name = signal->GetName();
        result = name != nullptr ? E_OUTOFMEMORY : result;
        length -= name != nullptr ? std::strlen(name) : 0;
    }
    buffer[length] = '\0';
    for (; signal != nullptr; signal = signal->GetParent()) {
        const std::string_view name = NameOf(*signal);
        length -= name.size();
        name.copy(buffer + length, name.size());
    }
    return result;
}

HRESULT CSignal::GetTypeName(char* buffer, std::uint32_t size) noexcept {
    const CString name = type_ ? type_->GetTypeIdentifier() : CString();
    if (name.IsEmpty()) {
        return E_FAIL;
    }
    const std::string_view text = name.View();
    if (buffer == nullptr || text.size() >= size) {
        return E_OUTOFMEMORY;
    }
    buffer[text.copy(buffer, text.size())] = '\0';
    return S_OK;
}

HRESULT CSignal::SetWave(ISignalWave* wave) noexcept {
    if (members_ || !HasWave()) {
        return E_FAIL;
    }
    if (wave != nullptr) {
        wave_ = ComPtr<ISignalWave>::Share(wave);
        late_wave_size_ = 0;
        external_wave_ = true;
        return S_OK;
    }
    if (external_wave_) {
        ComPtr<ISignalWave> own;
        const HRESULT result = CreateSignalWave(wave_->GetValueSize(), own.Out());
        if (FAILED(result)) {
            return result;
        }
        wave_ = std::move(own);
        external_wave_ = false;
    }
    return S_OK;
}

void CSignal::SetValueTextFlag(bool quoted) noexcept {
    value_text_flag_ = quoted;
    const corv::tree::Descent descent(is_descending_);
    if (descent.IsAllowed()) {
        corv::tree::ForEachMember(members_.get(),
                                  [&](ISignal& member) { member.SetValueTextFlag(quoted); });
    }
}

HRESULT CSignal::EnumSubSignals(ISignalEnumerator** enumerator) noexcept {
    return members_ ? members_->EnumSignals(enumerator) : E_FAIL;
}
HRESULT CSignal::EnumEvents(IWaveEventEnumerator** enumerator) noexcept {
    ISignalWave* const wave = GetWave();
    return wave != nullptr ? wave->CreateEnumerator(enumerator)
           : HasWave()     ? E_OUTOFMEMORY
                           : E_FAIL;
}
HRESULT CSignal::GetBusEventIterator(IBusEventIterator** iterator) noexcept {
    return members_ ? CreateBusEventIterator(this, iterator) : E_FAIL;
}
