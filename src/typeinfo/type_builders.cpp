#include "corv/typeinfo/type_builders.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include "platform/guard.h"
#include "typeinfo/named_types.h"
#include "typeinfo/type_text.h"

namespace {

using corv::typeinfo::IndexRange;

constexpr std::size_t kMaxArrayName = 259;

// Delivers a finished string by the rules of the builders' buffer.
HRESULT Deliver(std::string_view text, char* buffer, std::uint32_t* size) noexcept {
    if (text.size() >= std::numeric_limits<std::uint32_t>::max()) {
        return E_OUTOFMEMORY;
    }
    const auto needed = static_cast<std::uint32_t>(text.size() + 1);
    if (!buffer) {
        *size = needed;
        return S_OK;
    }
    if (needed > *size) {
        return E_INVALIDARG;
    }
    std::memcpy(buffer, text.data(), text.size());
    buffer[text.size()] = '\0';
    return S_OK;
}

IndexRange RangeOf(const TArrayRange& range) noexcept {
    return {range.left, range.right, range.left < range.right ? KTypeInfo::To : KTypeInfo::Downto,
            true};
}

std::string EnumText(std::string_view name, const std::vector<std::string_view>& literals) {
    std::string out;
    if (std::all_of(literals.begin(), literals.end(),
                    [](std::string_view literal) { return literal.size() == 1; })) {
        std::string characters;
        for (const std::string_view literal : literals) {
            characters += literal;
        }
        corv::typeinfo::AppendCharacterEnum(out, name, characters);
    } else {
        corv::typeinfo::AppendWordEnum(out, name, literals);
    }
    return out;
}

}  // namespace

void TEnumValue::Set(const char* text) noexcept {
    if (!text) {
        text_.reset();
        return;
    }
    const std::size_t length = std::strlen(text);
    if (!text_ || std::strlen(text_.get()) < length) {
        text_.reset();
        text_.reset(new (std::nothrow) char[length + 1]);
    }
    if (text_) {
        std::memmove(text_.get(), text, length + 1);  // it may be a part of the own text
    }
}

int TEnumValue::GetLen() const noexcept {
    return text_ ? static_cast<int>(std::strlen(text_.get())) : 0;
}

HRESULT CreateStdTypeInfo(int index, char* buffer, std::uint32_t* size) noexcept {
    const auto& types = corv::typeinfo::kStandardTypes;
    if (!size || index < 0 || static_cast<std::size_t>(index) >= types.size()) {
        return E_INVALIDARG;
    }
    return Deliver(types[static_cast<std::size_t>(index)], buffer, size);
}

HRESULT CreateArrayTypeInfo(const char* name, const TArrayRange* ranges, std::uint32_t count,
                            const char* element, char* buffer, std::uint32_t* size) noexcept {
    if (!name || !ranges || !element || !size) {
        return E_INVALIDARG;
    }
    return corv::platform::Guarded(E_OUTOFMEMORY, [&] {
        std::vector<IndexRange> bounds(count);
        std::transform(ranges, ranges + count, bounds.begin(), RangeOf);
        const std::string full_name = corv::typeinfo::ConstrainedName(name, bounds);
        if (full_name.size() > kMaxArrayName) {
            return E_INVALIDARG;
        }
        std::string out;
        corv::typeinfo::AppendArrayHead(out, full_name, bounds);
        out += element;
        return Deliver(out, buffer, size);
    });
}

HRESULT CreateRecordTypeInfo(const char* name, const TRecordField* fields, std::uint32_t count,
                             char* buffer, std::uint32_t* size) noexcept {
    if (!name || !fields || !size ||
        !std::all_of(fields, fields + count, [](const TRecordField& field) {
            return field.GetFieldName() && field.GetTypeInfo();
        })) {
        return E_INVALIDARG;
    }
    return corv::platform::Guarded(E_OUTOFMEMORY, [&] {
        std::string out;
        corv::typeinfo::AppendRecordHead(out, name, count);
        for (const TRecordField* field = fields; field != fields + count; ++field) {
            out += field == fields ? "" : " ";
            out += field->GetFieldName();
            out += ' ';
            out += field->GetTypeInfo();
        }
        return Deliver(out, buffer, size);
    });
}

HRESULT CreateEnumTypeInfo(const char* name, const TEnumValue* literals, std::uint32_t count,
                           char* buffer, std::uint32_t* size) noexcept {
    if (!name || !literals || !size ||
        !std::all_of(literals, literals + count,
                     [](const TEnumValue& literal) { return literal.Get() != nullptr; })) {
        return E_INVALIDARG;
    }
    return corv::platform::Guarded(E_OUTOFMEMORY, [&] {
        std::vector<std::string_view> texts(count);
        std::transform(literals, literals + count, texts.begin(),
                       [](const TEnumValue& literal) { return literal.Get(); });
        return Deliver(EnumText(name, texts), buffer, size);
    });
}
