// The texts of a signal's values.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "signals/signal.h"
#include "signals/value_text.h"
#include "tree/nesting.h"
#include "typeinfo/type_access.h"
#include "typeinfo/value_text.h"

using corv::signals::SharedValueTexts;
using corv::signals::ValueTextPass;
using corv::signals::ValueTexts;
using corv::typeinfo::TypeAccess;

namespace {

constexpr int kScalarRadix = 10;
constexpr int kArrayRadix = 2;

// The largest value of a wave, and of a scalar. A shorter one is followed by zeros.
using ScalarBytes = std::array<unsigned char, 8>;

// The value of an array of scalars, taken together from its leaves in the library's buffer.
class ArrayValue {
public:
    ArrayValue(const KTypeInfo& type, ValueTexts& texts) noexcept
        : values_(texts.values),
          count_(TypeAccess::ViewOf(type).ElementCount()),
          size_(TypeAccess::ViewOf(type).Element().ScalarSize()) {}

    // Takes the next leaf's value, as long as its wave has it; false when it passes the end of the
    // buffer, which counts the values as the waves have them.
    bool Add(const ScalarBytes& bytes, std::size_t size) noexcept {
        wave_bytes_ += size;
        if (wave_bytes_ > values_.size() || values_.size() - end_ < size_) {
            return false;
        }
        if (taken_ < count_) {
            std::memcpy(values_.data() + end_, bytes.data(), size_);
            end_ += size_;
            ++taken_;
        }
        return true;
    }

    // Whether all elements have been taken.
    bool IsWhole() const noexcept { return taken_ == count_; }

private:
    std::array<unsigned char, corv::signals::kValueBufferSize>& values_;
    std::int64_t count_;
    std::size_t size_;
    std::int64_t taken_ = 0;
    std::size_t end_ = 0;
    std::size_t wave_bytes_ = 0;
};

const char* WriteArray(CSignal& signal, const ArrayValue& value) noexcept {
    ValueTexts& texts = SharedValueTexts();
    return value.IsWhole() ? texts.WriteValue(*signal.Type(), texts.values.data(),
                                              {kArrayRadix, signal.HasQuotedTexts()})
                           : nullptr;
}

// Calls an action with the wave, or null, of each leaf, depth first, until the action returns
// false. Returns whether it never did and all members could be had.
template <class Action>
bool ForEachWave(ISignalContainer& members, int depth, const Action& action) noexcept {
    const int count = members.GetCount();
    bool good = depth <= corv::tree::kMostNesting;
    for (int i = 0; good && i < count; ++i) {
        ISignal* member = nullptr;
        if (FAILED(members.GetAt(static_cast<std::uint32_t>(i), &member))) {
            return false;
        }
        ISignalContainer* const parts = member->GetSubSignals();
        good =
            parts != nullptr ? ForEachWave(*parts, depth + 1, action) : action(member->GetWave());
    }
    return good;
}

// A leaf without a wave has no part in the text. With FindAt one leaf has to change at the time,
// and the others have the values that they had by then.
const char* ArrayTextAt(CSignal& bus, std::int64_t time, std::uint32_t mode) noexcept {
    ISignalContainer* const members = bus.GetSubSignals();
    ArrayValue value(*bus.Type(), SharedValueTexts());
    bool has_change = mode != FindAt;
    const bool good =
        members != nullptr && ForEachWave(*members, 1, [&](ISignalWave* wave) {
            IWaveEvent* event = nullptr;
            if (wave == nullptr) {
                return true;
            }
            if (FAILED(wave->FindEvent(time, mode == FindAt ? FindAtOrBefore : mode, &event))) {
                return false;
            }
            has_change = has_change || event->GetTime() == time;
            ScalarBytes bytes{};
            const std::uint32_t size = event->GetValue(bytes.data(), bytes.size());
            return size > 0 && value.Add(bytes, size);
        });
    return good && has_change ? WriteArray(bus, value) : nullptr;
}

// Unlike at a time, a leaf without a wave leaves the array without a value.
const char* FirstArrayText(CSignal& bus) noexcept {
    ISignalContainer* const members = bus.GetSubSignals();
    ArrayValue value(*bus.Type(), SharedValueTexts());
    const bool good = members != nullptr && ForEachWave(*members, 1, [&](ISignalWave* wave) {
                          ScalarBytes bytes{};
                          return wave != nullptr &&
                                 SUCCEEDED(wave->GetEventValue(0, bytes.data(), bytes.size())) &&
                                 value.Add(bytes, wave->GetValueSize());
                      });
    return good ? WriteArray(bus, value) : nullptr;
}

// ---- scalars ----

// The value as the scalar's type has it: a wave's value may be longer or shorter than that.
ScalarBytes Widened(const void* value, std::size_t size) noexcept {
    ScalarBytes bytes{};
    std::memcpy(bytes.data(), value, std::min(size, bytes.size()));
    return bytes;
}

const char* ScalarTextAt(CSignal& signal, std::int64_t time, std::uint32_t mode) noexcept {
    constexpr unsigned kMarked = 1;
    constexpr unsigned kOverwritten = 2;
    ISignalWave* const wave = signal.GetWave();
    IWaveEvent* event = nullptr;
    const bool found = wave != nullptr && SUCCEEDED(wave->FindEvent(time, mode, &event));
    return found && (event->GetFlags() & (kMarked | kOverwritten)) != kMarked
               ? signal.GetEventText(event)
               : nullptr;
}

const char* WriteScalar(const CSignal& signal, const void* value, std::size_t size) noexcept {
    const ScalarBytes bytes = Widened(value, size);
    return SharedValueTexts().WriteValue(*signal.Type(), bytes.data(),
                                         {kScalarRadix, signal.HasQuotedTexts()});
}

const char* FirstScalarText(CSignal& signal) noexcept {
    ISignalWave* const wave = signal.GetWave();
    auto& values = SharedValueTexts().values;
    return wave != nullptr && SUCCEEDED(wave->GetEventValue(
                                  0, values.data(), static_cast<std::uint32_t>(values.size())))
               ? WriteScalar(signal, values.data(), wave->GetValueSize())
               : nullptr;
}

// ---- other composites ----

// Moves behind a member's text, written from a place on or, by a signal of somebody else's,
// elsewhere. One without a text leaves nothing behind.
void TakeMemberText(ValueTexts& texts, std::size_t place, const char* text) noexcept {
    texts.position = place;
    if (text == nullptr) {
        texts.Rewind(place);
    } else if (text == texts.Here()) {
        texts.MoveToEnd();
    } else {
        texts.Append(text);
    }
}

// The members' texts in parentheses. `text_of` gives a member's or null.
template <class TextOf>
const char* WriteMembers(ISignalContainer* members, TextOf text_of) noexcept {
    const int count = members != nullptr ? members->GetCount() : 0;
    if (count == 0) {
        return nullptr;
    }
    ValueTexts& texts = SharedValueTexts();
    const char* const start = texts.Here();
    for (int i = 0; i < count && texts.Append(i == 0 ? "(" : ","); ++i) {
        ISignal* member = nullptr;
        if (FAILED(members->GetAt(static_cast<std::uint32_t>(i), &member))) {
            return nullptr;
        }
        const std::size_t place = texts.position;
        TakeMemberText(texts, place, text_of(*member));
    }
    texts.Append(")");
    return start;
}

const char* MembersTextAt(CSignal& signal, std::int64_t time, std::uint32_t mode) noexcept {
    bool any = false;
    const char* const text = WriteMembers(signal.GetSubSignals(), [&](ISignal& member) {
        const char* const part = member.GetValueTextAt(time, mode);
        any = any || part != nullptr;
        return part;
    });
    return any || mode != FindAt ? text : nullptr;
}

}  // namespace

const char* CSignal::GetEventText(IWaveEvent* event) noexcept {
    if (!type_ || !type_->IsScalar() || !HasWave() || event == nullptr) {
        return nullptr;
    }
    const void* const value = event->GetValueData();
    return value != nullptr ? WriteScalar(*this, value, GetWaveValueSize()) : nullptr;
}

const char* CSignal::GetValueTextAt(std::int64_t time, std::uint32_t mode) noexcept {
    if (!type_) {
        return nullptr;
    }
    ValueTexts& texts = SharedValueTexts();
    ValueTextPass pass(texts);
    const bool is_scalar = type_->IsScalar();
    const char* const text = is_scalar           ? ScalarTextAt(*this, time, mode)
                             : type_->IsSimple() ? ArrayTextAt(*this, time, mode)
                                                 : MembersTextAt(*this, time, mode);
    if (text != nullptr && type_->IsSimple()) {
        texts.MoveToEnd();
    }
    return pass.Result(text);
}

const char* CSignal::GetValueText() noexcept {
    if (!type_) {
        return nullptr;
    }
    ValueTextPass pass(SharedValueTexts());
    return pass.Result(type_->IsScalar()   ? FirstScalarText(*this)
                       : type_->IsSimple() ? FirstArrayText(*this)
                                           : WriteMembers(members_.get(), [](ISignal& member) {
                                                 return member.GetValueText();
                                             }));
}

HRESULT CSignal::TextToValue(const char* text, void* buffer, std::uint32_t size) noexcept {
    const std::string_view value = text != nullptr ? text : "";
    ScalarBytes bytes;
    if (!type_ || !type_->IsScalar() ||
        !corv::typeinfo::ReadValue(TypeAccess::ViewOf(*type_), value, bytes.data())) {
        return E_FAIL;
    }
    const auto length = static_cast<std::size_t>(type_->GetSimpleSize());
    if (length > size || buffer == nullptr) {
        return E_INVALIDARG;
    }
    std::memcpy(buffer, bytes.data(), length);
    return S_OK;
}
