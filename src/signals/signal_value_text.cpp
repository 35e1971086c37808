// The texts of a signal's values.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "corv/frame/com_ptr.h"
#include "frame/com_class.h"
#include "signals/signal.h"
#include "signals/value_text.h"
#include "tree/nesting.h"
#include "typeinfo/type_access.h"
#include "typeinfo/value_text.h"
#include "waves/find_together.h"
#include "waves/signal_wave.h"

using corv::frame::ClassOf;
using corv::signals::SharedValueTexts;
using corv::signals::ValueTextPass;
using corv::signals::ValueTexts;
using corv::typeinfo::TypeAccess;

namespace {

constexpr int kScalarRadix = 10;
constexpr int kArrayRadix = 2;

// The largest value of a wave, and of a scalar.
using ScalarBytes = std::array<unsigned char, 8>;

// The value as the scalar's type has it: a wave's value may be longer or shorter than that.
ScalarBytes Widened(const void* value, std::size_t size) noexcept {
    ScalarBytes bytes{};
    std::memcpy(bytes.data(), value, std::min(size, bytes.size()));
    return bytes;
}

// The value of an array of scalars, taken together from its leaves in the library's buffer.
class ArrayValue {
public:
    ArrayValue(const KTypeInfo& type, ValueTexts& texts) noexcept
        : values_(texts.values),
          count_(TypeAccess::ViewOf(type).ElementCount()),
          size_(TypeAccess::ViewOf(type).Element().ScalarSize()) {}

    // Takes the next leaf's value; false when it passes the end of the buffer, which counts the
    // values as the waves have them.
    bool Add(const void* value, std::size_t size) noexcept {
        wave_bytes_ += size;
        if (wave_bytes_ > values_.size() || values_.size() - end_ < size_) {
            return false;
        }
        if (taken_ < count_) {
            const ScalarBytes bytes = Widened(value, size);
            for (std::size_t i = 0; i < size_; ++i) {
                values_[end_ + i] = bytes[i];
            }
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

// ---- an array's value at a time ----

enum class Gathered { kAll, kNone, kNotOurs };

// Gathers the values at a time from leaves that are the library's own, as a bus event iterator that
// is placed there has them, but without making one and the enumerators it needs. It gives up, with
// kNotOurs, at a signal or wave of somebody else's.
class OwnLeaves {
public:
    OwnLeaves(const CSignal& bus, std::int64_t time, std::uint32_t mode, ArrayValue& value) noexcept
        : signal_class_(ClassOf(bus)), time_(time), mode_(mode), value_(value) {}

    Gathered Gather(ISignalContainer& members) noexcept {
        const Gathered gathered = GatherMembers(members, 1);
        if (gathered != Gathered::kAll) {
            return gathered;
        }
        const bool all = group32_.count > 0 ? Search(group32_) : Search(group64_);
        return all && (mode_ != FindAt || has_change_) ? Gathered::kAll : Gathered::kNone;
    }

private:
    // Waves whose lists are searched next, in the order of their leaves.
    template <class Value>
    struct Group {
        std::array<corv::waves::Timeline<corv::waves::WaveEvent<Value>>*,
                   corv::waves::kMostTogether>
            lists;
        std::size_t count = 0;
    };

    Gathered GatherMembers(ISignalContainer& members, int depth) noexcept {
        const int count = members.GetCount();
        Gathered gathered = depth > corv::tree::kMostNesting ? Gathered::kNone : Gathered::kAll;
        for (int i = 0; gathered == Gathered::kAll && i < count; ++i) {
            ISignal* member = nullptr;
            if (FAILED(members.GetAt(static_cast<std::uint32_t>(i), &member)) ||
                ClassOf(*member) != signal_class_) {
                return Gathered::kNotOurs;
            }
            auto& own = static_cast<CSignal&>(*member);
            if (ISignalWave* const wave = own.GetWave()) {
                gathered = GatherWave(*wave);
            } else if (ISignalContainer* const parts = own.GetSubSignals()) {
                gathered = GatherMembers(*parts, depth + 1);
            }
        }
        return gathered;
    }

    Gathered GatherWave(ISignalWave& wave) noexcept {
        const void* const wave_class = ClassOf(wave);
        if (wave_class != wave32_class_ && wave_class != wave64_class_) {
            return Gathered::kNotOurs;
        }
        const bool good = wave_class == wave32_class_ ? Join(group32_, wave, group64_)
                                                      : Join(group64_, wave, group32_);
        return good ? Gathered::kAll : Gathered::kNone;
    }

    // False when a leaf has no event for the mode, or the values pass the end of the buffer.
    template <class Value, class Other>
    bool Join(Group<Value>& group, ISignalWave& wave, Group<Other>& before) noexcept {
        if (before.count > 0 && !Search(before)) {
            return false;
        }
        group.lists[group.count++] = &static_cast<corv::waves::SignalWave<Value>&>(wave).List();
        return group.count < group.lists.size() || Search(group);
    }
    template <class Value>
    bool Search(Group<Value>& group) noexcept {
        std::array<std::size_t, corv::waves::kMostTogether> found;
        corv::waves::FindTogether(group.lists.data(), group.count, time_,
                                  mode_ == FindAt ? FindAtOrBefore : mode_, found.data());
        bool good = true;
        for (std::size_t i = 0; good && i < group.count; ++i) {
            auto& events = *group.lists[i];
            good = found[i] < events.size();
            if (good) {
                corv::waves::WaveEvent<Value>& event = events[found[i]];
                has_change_ = has_change_ || event.Time() == time_;
                good = value_.Add(event.GetValueData(), sizeof(Value));
            }
        }
        group.count = 0;
        return good;
    }

    const void* signal_class_;
    const void* wave32_class_ = ClassOf(CSignalWave32());
    const void* wave64_class_ = ClassOf(CSignalWave64());
    std::int64_t time_;
    std::uint32_t mode_;
    bool has_change_ = false;  // whether a leaf has an event at exactly the time
    Group<std::uint32_t> group32_;
    Group<std::uint64_t> group64_;  // one of the two is empty
    ArrayValue& value_;
};

bool GatherWithIterator(CSignal& bus, std::int64_t time, std::uint32_t mode,
                        ArrayValue& value) noexcept {
    corv::frame::ComPtr<IBusEventIterator> events;
    if (FAILED(bus.GetBusEventIterator(events.Out())) || FAILED(events->Seek(time, mode)) ||
        events->GetSize() > corv::signals::kValueBufferSize) {
        return false;
    }
    IBusEvent& event = *events->GetEvent();
    const auto count = static_cast<std::uint32_t>(event.GetValueCount());
    for (std::uint32_t leaf = 0; leaf < count; ++leaf) {
        ScalarBytes bytes;
        const std::uint32_t size = event.GetValue(leaf, bytes.data(), bytes.size());
        if (size == 0 || !value.Add(bytes.data(), size)) {
            return false;
        }
    }
    return true;
}

const char* ArrayTextAt(CSignal& bus, std::int64_t time, std::uint32_t mode) noexcept {
    ISignalContainer* const members = bus.GetSubSignals();
    if (members == nullptr) {
        return nullptr;
    }
    ArrayValue own(*bus.Type(), SharedValueTexts());
    const Gathered gathered = OwnLeaves(bus, time, mode, own).Gather(*members);
    if (gathered != Gathered::kNotOurs) {
        return gathered == Gathered::kAll ? WriteArray(bus, own) : nullptr;
    }
    ArrayValue value(*bus.Type(), SharedValueTexts());
    return GatherWithIterator(bus, time, mode, value) ? WriteArray(bus, value) : nullptr;
}

// ---- an array's current value ----

// Takes the first events' values of all leaves; false when one has none.
bool GatherFirst(ISignalContainer& members, int depth, ArrayValue& value) noexcept {
    const int count = members.GetCount();
    bool good = depth <= corv::tree::kMostNesting;
    for (int i = 0; good && i < count; ++i) {
        ISignal* member = nullptr;
        if (FAILED(members.GetAt(static_cast<std::uint32_t>(i), &member))) {
            return false;
        }
        ScalarBytes bytes;
        ISignalWave* const wave = member->GetWave();
        if (ISignalContainer* const parts = member->GetSubSignals()) {
            good = GatherFirst(*parts, depth + 1, value);
        } else {
            good = wave != nullptr &&
                   SUCCEEDED(wave->GetEventValue(0, bytes.data(), bytes.size())) &&
                   value.Add(bytes.data(), wave->GetValueSize());
        }
    }
    return good;
}

const char* FirstArrayText(CSignal& bus) noexcept {
    ISignalContainer* const members = bus.GetSubSignals();
    ArrayValue value(*bus.Type(), SharedValueTexts());
    return members != nullptr && GatherFirst(*members, 1, value) ? WriteArray(bus, value) : nullptr;
}

// ---- scalars ----

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
