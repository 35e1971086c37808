// How a signal takes its shape from its type: a wave, or members below it.

#include <array>
#include <charconv>
#include <cstdint>
#include <string_view>
#include <utility>

#include "corv/typeinfo/type_builders.h"
#include "platform/ascii.h"
#include "platform/guard.h"
#include "signals/signal.h"
#include "signals/value_text.h"
#include "util/saturate.h"

using corv::frame::ComPtr;
using corv::signals::TypePtr;

namespace {

constexpr std::int64_t kMostMembers = 1'048'576;  // in one tree
constexpr std::int64_t kMostIndices = 256;        // of one dimension

// Standard logic classes by the name of the type; the first row that fits counts.
struct LogicClass {
    std::string_view name;
    bool is_prefix;
    std::int8_t value;
};
constexpr std::array kLogicClasses{
    LogicClass{"std_logic", false, 1},       LogicClass{"std_ulogic", false, 1},
    LogicClass{"std_logic_vector", true, 7}, LogicClass{"std_ulogic_vector", true, 7},
    LogicClass{"bit_vector", true, 6},
};

std::int8_t LogicClassOf(std::string_view type) noexcept {
    for (const LogicClass& row : kLogicClasses) {
        const std::string_view part = row.is_prefix ? type.substr(0, row.name.size()) : type;
        if (corv::platform::EqualNoCase(part, row.name)) {
            return row.value;
        }
    }
    return 0;
}

// Of the values in a wave for the type, 0 when there are no such waves.
std::uint8_t WaveSizeOf(const KTypeInfo& type) noexcept {
    switch (type.GetScalarSize()) {
        case 1:
        case 2:
        case 4:
            return 4;
        case 8:
            return 8;
        default:
            return 0;
    }
}

// All signals that a type makes below one of that type.
std::int64_t CountMembers(const KTypeInfo& type) noexcept {
    using corv::util::SaturatingAdd;
    switch (type.GetKind()) {
        case KTypeInfo::KindArray:
            return corv::util::SaturatingMultiply(
                type.GetNbOfElements(),
                SaturatingAdd(CountMembers(type.GetArrayElementKTypeInfo()), 1));
        case KTypeInfo::KindRecord: {
            std::int64_t members = type.GetNbOfFields();
            for (int i = 0; i < type.GetNbOfFields(); ++i) {
                members = SaturatingAdd(members, CountMembers(type.GetFieldKTypeInfo(i)));
            }
            return members;
        }
        default:
            return 0;
    }
}

// The name of an element, written index by index.
class ElementName {
public:
    // False when it has no room for an index more; the name is not usable then.
    bool Append(int index) noexcept {
        char* const end = text_.data() + text_.size() - 2;  // room for the end and the zero
        char* const place = text_.data() + length_;
        const auto written = std::to_chars(place, std::max(place, end), index);
        if (place >= end || written.ec != std::errc()) {
            return false;
        }
        *written.ptr = ',';
        length_ = static_cast<std::size_t>(written.ptr - text_.data()) + 1;
        return true;
    }
    std::size_t Length() const noexcept { return length_; }
    void Cut(std::size_t length) noexcept { length_ = length; }

    const char* Close() noexcept {
        const std::size_t end = length_ > 1 ? length_ - 1 : length_;
        text_[end] = ')';
        text_[end + 1] = '\0';
        return text_.data();
    }

private:
    std::array<char, 256> text_{'('};
    std::size_t length_ = 1;
};

}  // namespace

namespace corv::signals {

// Makes the members of a composite signal.
class MemberBuilder {
public:
    MemberBuilder(CSignal& parent, const TypePtr& type) noexcept : parent_(parent), type_(type) {}

    bool Build(ComPtr<ISignalContainer>& members) noexcept {
        if (FAILED(CreateSignalContainer(members_.Out(), nullptr)) ||
            !(type_->GetKind() == KTypeInfo::KindArray ? AddElements() : AddFields())) {
            return false;
        }
        members = std::move(members_);
        return true;
    }

private:
    bool AddMember(const TypePtr& type, const char* name) noexcept {
        ComPtr<ISignal> reference;
        if (FAILED(frame::CreateComObject<CSignal>(reference.Out(), &parent_))) {
            return false;
        }
        auto& member = static_cast<CSignal&>(*reference);
        const bool is_like_last = last_ != nullptr && type->IsScalar() &&
                                  last_->type_->GetTypeInfoString() == type->GetTypeInfoString();
        const HRESULT typed = is_like_last ? member.ApplyTypeOf(*last_) : member.ApplyType(type);
        last_ = &member;
        // the handle manager refuses a signal without a handle, which is no matter here
        return SUCCEEDED(typed) && member.name_.Set(name) &&
               members_->Add(&member) != E_OUTOFMEMORY;
    }

    bool AddElements() noexcept {
        element_ = PartOf(type_, type_->GetArrayElementKTypeInfo());
        return WalkDimension(0);
    }

    bool WalkDimension(int dimension) noexcept {
        if (dimension == type_->GetNbOfDimensions()) {
            const std::size_t length = name_.Length();
            const bool added = AddMember(element_, name_.Close());
            name_.Cut(length);
            return added;
        }
        int left = 0;
        int right = 0;
        KTypeInfo::EDirection direction{};
        type_->GetArrayDimensionRanges(dimension, left, right, direction);
        const std::int64_t step = right >= left ? 1 : -1;
        const std::int64_t count = (std::int64_t{right} - left) * step + 1;
        const std::size_t place = name_.Length();
        bool good = count <= kMostIndices;
        for (std::int64_t i = 0; good && i < count; ++i) {
            name_.Cut(place);
            good = name_.Append(static_cast<int>(left + i * step)) && WalkDimension(dimension + 1);
        }
        name_.Cut(place);
        return good;
    }

    bool AddFields() noexcept {
        for (int i = 0; i < type_->GetNbOfFields(); ++i) {
            const CString field = type_->GetFieldName(i);
            const CString name = platform::Guarded(CString(), [&] { return CString(".") + field; });
            if (name.IsEmpty() || !AddMember(PartOf(type_, type_->GetFieldKTypeInfo(i)), name)) {
                return false;
            }
        }
        return true;
    }

    CSignal& parent_;
    const TypePtr& type_;
    TypePtr element_;
    CSignal* last_ = nullptr;  // the member that was made last
    ComPtr<ISignalContainer> members_;
    ElementName name_;
};

}  // namespace corv::signals

HRESULT CSignal::SetTypeInfo(const char* text) noexcept {
    TypePtr type;
    const HRESULT found = corv::signals::FindType(text != nullptr ? text : "", type);
    if (found == E_INVALIDARG) {
        return found;
    }
    if (type_ && type && type_->GetTypeInfoString().View() == type->GetTypeInfoString().View()) {
        return S_OK;
    }
    std_logic_class_ = 0;
    if (FAILED(found)) {
        return found;
    }
    return CountMembers(*type) <= kMostMembers ? ApplyType(type) : E_FAIL;
}

HRESULT CSignal::ApplyType(const TypePtr& type) noexcept {
    ComPtr<ISignalContainer> members;
    const bool is_scalar = type->IsScalar();
    if (is_scalar ? WaveSizeOf(*type) == 0
                  : !corv::signals::MemberBuilder(*this, type).Build(members)) {
        return E_FAIL;
    }
    const CString& text = type->GetTypeInfoString();
    if (text.IsEmpty() || !properties_.Set("Type Info", text)) {
        return E_OUTOFMEMORY;
    }
    if (is_scalar) {
        PlanWave(*type);
    } else {
        DropWave();
    }
    members_ = std::move(members);
    SetType(type);
    SetDisplayMode(std_logic_class_ != 0 ? 0 : members_ ? 4 : 3);
    if (!HasWave()) {
        SetHandle(-1);
    }
    return S_OK;
}

// Members mostly have the type of the one before; its texts are copied instead of made again.
HRESULT CSignal::ApplyTypeOf(const CSignal& scalar) noexcept {
    if (!PlanWave(*scalar.type_)) {
        return E_OUTOFMEMORY;
    }
    properties_ = scalar.properties_;
    type_ = scalar.type_;
    std_logic_class_ = scalar.std_logic_class_;
    return S_OK;
}

bool CSignal::BecomeLike(const CSignal& other, const char* name, int handle) noexcept {
    parent_ = other.parent_;
    handle_ = handle;
    return SUCCEEDED(ApplyTypeOf(other)) && name_.Set(name);
}

// The wave that the signal has serves on when its values have the size of the type's. That is so
// for 4 and 8 bytes alone: values of 1 and 2 bytes are kept in 4.
bool CSignal::PlanWave(const KTypeInfo& type) noexcept {
    const std::uint8_t size = WaveSizeOf(type);
    const bool serves =
        !members_ && GetWaveValueSize() == static_cast<std::uint32_t>(type.GetScalarSize());
    if (size != 0 && !serves) {
        DropWave();
        late_wave_size_ = size;
    }
    return size != 0;
}

void CSignal::DropWave() noexcept {
    wave_ = {};
    external_wave_ = false;
    late_wave_size_ = 0;
}

ISignalWave* CSignal::MakeLateWave() noexcept {
    if (late_wave_size_ != 0 && SUCCEEDED(CreateSignalWave(late_wave_size_, wave_.Out()))) {
        late_wave_size_ = 0;
    }
    return wave_.get();
}

void CSignal::SetType(const TypePtr& type) noexcept {
    type_ = type;
    const CString name = type_->GetTypeIdentifier();
    if (!name.IsEmpty() && name.View().size() < corv::signals::kTextBufferSize) {
        std_logic_class_ = LogicClassOf(name.View());
    }
    spare_flag_ = false;
}

HRESULT CreateSignal(const char* type, ISignal* parent, ISignal** signal) noexcept {
    *signal = nullptr;
    ComPtr<ISignal> made;
    const HRESULT result = corv::frame::CreateComObject<CSignal>(made.Out(), parent);
    if (FAILED(result)) {
        return result;
    }
    if (type != nullptr && *type != '\0' && FAILED(made->SetTypeInfo(type))) {
        return E_FAIL;
    }
    *signal = made.Detach();
    return S_OK;
}

HRESULT CreateStdSignal(std::uint32_t index, ISignal* parent, ISignal** signal) noexcept {
    std::array<char, 2048> type{};
    std::uint32_t size = type.size();
    if (index > INT32_MAX ||
        FAILED(CreateStdTypeInfo(static_cast<int>(index), type.data(), &size))) {
        *signal = nullptr;
        return E_INVALIDARG;
    }
    return CreateSignal(type.data(), parent, signal);
}
