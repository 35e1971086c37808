// The stimulator that a signal carries, in its properties.

#include <cstring>
#include <utility>

#include "corv/stimulus/stim_iterator.h"
#include "corv/stimulus/stimulus.h"
#include "signals/loads.h"
#include "signals/signal.h"
#include "tree/members.h"

namespace {

// "Stimulator Type"; the first two are formulas.
enum StimulatorType : int { kNone = -1, kFormula = 0, kOtherFormula = 1, kHotKey = 2, kClock = 3 };

bool SetOrErase(CPropertyMap& properties, const char* key, int value) noexcept {
    return value == -1 ? properties.Erase(key) : properties.SetInteger(key, value);
}

// The formula as stimuli write it: empty for one that has no elements of its own. False when it
// can't be read and when memory runs out.
bool NormalForm(const char* formula, CString& normal) noexcept {
    CStimulus stimulus(1, 1);
    if (stimulus.Create(formula, 0) == 0) {
        return false;
    }
    stimulus.GenerateFormula(normal);
    return !normal.IsEmpty() || stimulus.IsCustom() || CStimIterator(&stimulus).Next() == nullptr;
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

// The text may be one of the signal's own, the hot key's too: that one is erased after all else.
void CSignal::SetStimulatorInfo(int type, int strength, const char* text) noexcept {
    const bool is_none = type == kNone || text == nullptr || *text == '\0';
    if (is_none) {
        StoreFormula("", kNone, -1);
    } else if (type == kFormula || type == kOtherFormula) {
        CString normal;
        if (NormalForm(text, normal)) {
            StoreFormula(normal, type, strength);
        }
    } else if (type == kClock) {
        properties_.Set("Stimulator Clock", text);
        properties_.SetInteger("Stimulator Type", kClock);
        properties_.SetInteger("Stimulator Strength", strength);
    }
    if (type == kHotKey && !is_none) {
        SetHotKey(static_cast<signed char>(*text));
    } else {
        properties_.Erase("Hot-Key");
    }
}

// All three change or, when memory runs out, none.
void CSignal::StoreFormula(const char* formula, int type, int strength) noexcept {
    CPropertyMap changed = properties_;
    const bool is_stored = *formula != '\0' ? changed.Set("Stimulator Formula", formula)
                                            : changed.Erase("Stimulator Formula");
    if (is_stored && SetOrErase(changed, "Stimulator Type", type) &&
        SetOrErase(changed, "Stimulator Strength", strength)) {
        properties_ = std::move(changed);
    }
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
    const corv::tree::Descent descent(is_descending_);
    if (descent.IsAllowed()) {
        corv::tree::ForEachMember(members_.get(), [&](ISignal& member) { member.SetHotKey(key); });
    }
}
