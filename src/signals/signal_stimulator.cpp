// The stimulator that a signal carries, in its properties.

#include <cstring>

#include "containers/running_operations.h"
#include "corv/stimulus/stimulus.h"
#include "platform/guard.h"
#include "signals/members.h"
#include "signals/signal.h"

namespace {

// "Stimulator Type"; the first two are formulas.
enum StimulatorType : int { kNone = -1, kFormula = 0, kOtherFormula = 1, kHotKey = 2, kClock = 3 };

void SetOrErase(CPropertyMap& properties, const char* key, int value) noexcept {
    if (value == -1) {
        properties.Erase(key);
    } else {
        properties.SetInteger(key, value);
    }
}

}  // namespace

HRESULT CSignal::GetStimulatorInfo(int* type, int* strength, char* formula,
                                   std::uint32_t size) noexcept {
    if (type != nullptr) {
        *type = IntegerProperty("Stimulator Type", -1);
    }
    if (strength != nullptr) {
        *strength = IntegerProperty("Stimulator Strength", -1);
    }
    if (formula == nullptr) {
        return S_OK;
    }
    const char* const stored = properties_.Get("Stimulator Formula");
    const char* const text = stored != nullptr ? stored : "";
    const std::size_t needed = std::strlen(text) + 1;
    if (needed > size) {
        return E_OUTOFMEMORY;
    }
    std::memcpy(formula, text, needed);
    return S_OK;
}

void CSignal::SetStimulatorInfo(int type, int strength, const char* text) noexcept {
    properties_.Erase("Hot-Key");
    if (type == kNone || text == nullptr || *text == '\0') {
        StoreFormula("", kNone, -1);
        return;
    }
    switch (type) {
        case kFormula:
        case kOtherFormula: {
            CStimulus stimulus(1, 1);
            CString normal;
            if (stimulus.Create(text, 0) != 0) {
                stimulus.GenerateFormula(normal);
                StoreFormula(normal, type, strength);
            }
            break;
        }
        case kHotKey:
            SetHotKey(static_cast<signed char>(*text));
            break;
        case kClock:
            properties_.Set("Stimulator Clock", text);
            properties_.SetInteger("Stimulator Type", kClock);
            properties_.SetInteger("Stimulator Strength", strength);
            break;
        default:
            break;
    }
}

void CSignal::StoreFormula(const char* formula, int type, int strength) noexcept {
    if (*formula == '\0') {
        properties_.Erase("Stimulator Formula");
    } else {
        properties_.Set("Stimulator Formula", formula);
    }
    SetOrErase(properties_, "Stimulator Type", type);
    SetOrErase(properties_, "Stimulator Strength", strength);
}

int CSignal::GetHotKey() noexcept {
    return IntegerProperty("Hot-Key", 0);
}

void CSignal::SetHotKey(int key) noexcept {
    if (key == 0) {
        properties_.Erase("Hot-Key");
    } else {
        properties_.SetInteger("Hot-Key", key);
    }
    properties_.SetInteger("Stimulator Type", kHotKey);
    properties_.Erase("Stimulator Formula");
    properties_.Erase("Stimulator Clock");
    const corv::containers::Descent descent(is_descending_);
    if (descent.IsAllowed()) {
        corv::signals::ForEachMember(members_.get(),
                                     [&](ISignal& member) { member.SetHotKey(key); });
    }
}
