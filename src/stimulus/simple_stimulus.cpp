#include "corv/stimulus/simple_stimulus.h"

#include "platform/guard.h"
#include "stimulus/formula_text.h"

// One element of a formula. Its time stays as it was written, number and unit, until the formula is
// written in normal form.
CSimpleStimulus::CSimpleStimulus() noexcept : time_(0) {}

CSimpleStimulus::~CSimpleStimulus() = default;

int CSimpleStimulus::Create(const char* value, const TTimeUnit<std::int64_t>& time,
                            int absolute) noexcept {
    if (!corv::platform::Done([&] { value_ = CString(value); })) {
        return 0;
    }
    time_ = time;
    absolute_ = absolute;
    return !value_.IsEmpty() && GetTime() >= 0 ? 1 : 0;
}

void CSimpleStimulus::GetValue(CString& value) const noexcept {
    corv::platform::Done([&] { value = value_; });
}

void CSimpleStimulus::GenerateFormula(CString& out) const noexcept {
    const bool written = corv::platform::Done([&] {
        std::string text;
        if (include_time_) {
            corv::stimulus::AppendElement(text, value_.View(), absolute_ != 0, time_.value,
                                          corv::stimulus::WrittenUnit(time_));
        } else {
            text = value_.View();
        }
        out = CString(std::move(text));
    });
    if (!written) {
        out.Empty();
    }
}
