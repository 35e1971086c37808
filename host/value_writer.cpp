#include "host/value_writer.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "host/fit_text.h"

namespace corv::host {
namespace {

constexpr char kNoValue = '?';  // replaces the character of an element without a value

void AddLeaves(ISignal& signal, std::vector<ISignal*>& leaves) {
    ISignalContainer* const members = signal.GetSubSignals();
    if (members == nullptr) {
        leaves.push_back(&signal);
        return;
    }
    ISignal* member = nullptr;
    for (std::uint32_t i = 0; SUCCEEDED(members->GetAt(i, &member)); ++i) {
        AddLeaves(*member, leaves);
    }
}

// Returns whether each literal of an enumeration is one character.
bool IsCharacters(const KTypeInfo& type) {
    bool characters = type.GetKind() == KTypeInfo::KindEnum;
    for (int i = 0; characters && i < type.GetNbOfValues(); ++i) {
        characters = type.GetValue(i, false).GetLength() == 1;
    }
    return characters;
}

// Returns whether the values are levels of logic.
bool IsLevel(const KTypeInfo& type) {
    constexpr std::string_view kLevels = "UX01ZWLH-";
    bool level = type.GetKind() == KTypeInfo::KindEnum;
    for (int i = 0; level && i < type.GetNbOfValues(); ++i) {
        const CString literal = type.GetValue(i, true);
        level = literal.GetLength() == 3 && literal.GetAt(0) == '\'' &&
                kLevels.find(literal.GetAt(1)) != std::string_view::npos;
    }
    return level;
}

// Returns an enumeration's literal as it is shown. In an extended identifier, a no-break space
// replaces a blank, which type descriptions cannot have there.
std::string LiteralText(const KTypeInfo& type, int position) {
    const CString written = type.GetValue(position, false);
    std::string text(written.View());
    if (text.size() > 1 && text[0] == '\'') {
        text += '\'';
    } else if (text[0] == '\\') {
        std::replace(text.begin(), text.end(), '\xA0', ' ');
    }
    return text;
}

// Returns the character of 1 and '1'; 0 for other literals.
char CharacterOf(const std::string& literal) {
    const bool quoted = literal.size() == 3 && literal[0] == '\'';
    return quoted ? literal[1] : literal.size() == 1 ? literal[0] : '\0';
}

// Returns the smallest index of a dimension.
int LowestIndex(const KTypeInfo& array) {
    int left = 0;
    int right = 0;
    KTypeInfo::EDirection direction = KTypeInfo::To;
    array.GetArrayDimensionRanges(0, left, right, direction);
    return std::min(left, right);
}

template <class Number>
Number As(const LeafValue& value) {
    Number number{};
    std::memcpy(&number, value.bytes.data(), sizeof number);
    return number;
}

std::string_view NotFinite(double number) {
    return std::isnan(number) ? "NaN" : number < 0 ? "-inf" : "inf";
}

}  // namespace

std::vector<ISignal*> LeavesOf(ISignal& signal) {
    std::vector<ISignal*> leaves;
    AddLeaves(signal, leaves);
    return leaves;
}

ValueWriter::ValueWriter(ISignal& signal, const BusFormat& format)
    : format_(format), type_(CString(signal.GetTypeInfo())) {
    Add(type_, signal);
    levels_ = IsLevel(parts_.front().characters ? type_.GetArrayElementKTypeInfo() : type_);
}

// Adds a type with its parts. They are prepared once, so that writing each value only walks this
// list.
std::size_t ValueWriter::Add(const KTypeInfo& type, ISignal& signal) {
    const std::size_t place = parts_.size();
    parts_.emplace_back();
    Part part;
    part.type = &type;
    if (type.IsScalar()) {
        AddScalar(part, signal);
    } else if (ISignalContainer* const members = signal.GetSubSignals()) {
        AddMembers(part, *members);
    } else {
        part.empty = true;
    }
    parts_[place] = std::move(part);
    return place;
}

void ValueWriter::AddMembers(Part& part, ISignalContainer& members) {
    const bool array = part.type->GetKind() == KTypeInfo::KindArray;
    const KTypeInfo& element = part.type->GetArrayElementKTypeInfo();
    const int fields = array ? 1 : part.type->GetNbOfFields();
    ISignal* member = nullptr;
    for (int i = 0; i < fields && SUCCEEDED(members.GetAt(static_cast<std::uint32_t>(i), &member));
         ++i) {
        part.parts.push_back(Add(array ? element : part.type->GetFieldKTypeInfo(i), *member));
    }
    if (array) {
        part.count = part.parts.empty() ? 0 : static_cast<std::size_t>(members.GetCount());
        part.characters = IsCharacters(element);
        part.kind = BusKindOf(part.type->GetTypeIdentifier().View(), LowestIndex(*part.type));
    }
}

void ValueWriter::AddScalar(Part& part, ISignal& leaf) {
    const KTypeInfo& type = *part.type;
    for (int i = 0; i < type.GetNbOfValues(); ++i) {
        part.literals.push_back(LiteralText(type, i));
    }
    if (type.GetKind() != KTypeInfo::KindEnum) {
        const char* const units = leaf.GetProperty("Units");
        part.units = ReadUnits(units != nullptr ? units : "");
        part.units = part.units.empty() ? UnitsOfType(type.GetTypeIdentifier().View()) : part.units;
    }
}

std::string ValueWriter::Text(std::span<const LeafValue> values) const {
    return FromLatin1(Write(parts_.front(), values));
}

std::string ValueWriter::Write(const Part& part, Values& values) const {
    if (!part.type->IsScalar() && !part.empty) {
        return WriteComposite(part, values);
    }
    if (values.empty()) {
        return {};
    }
    const LeafValue value = values.front();
    values = values.subspan(1);
    return value.known && !part.empty ? WriteScalar(part, value) : std::string();
}

std::string ValueWriter::WriteScalar(const Part& part, const LeafValue& value) const {
    if (part.type->GetKind() == KTypeInfo::KindEnum) {
        const auto position = As<std::uint32_t>(value);
        return position < part.literals.size() ? part.literals[position] : std::string();
    }
    const bool real = part.type->GetKind() == KTypeInfo::KindFloat;
    const double number = real ? As<double>(value) : As<std::int32_t>(value);
    if (!std::isfinite(number)) {
        return std::string(NotFinite(number));
    }
    if (auto text = PhysicalText(number, part.units)) {
        return *text;
    }
    std::string text(part.type->GetValueString(value.bytes.data(), 10, 0, -1).View());
    return part.units.empty() ? text : text + part.units.front().name;
}

bool ValueWriter::ReadCharacters(const Part& part, Values values, std::string& characters) const {
    const Part& element = parts_[part.parts.front()];
    for (const LeafValue& value : values.first(std::min(part.count, values.size()))) {
        const auto position = As<std::uint32_t>(value);
        const char c = !value.known ? kNoValue
                       : position < element.literals.size()
                           ? CharacterOf(element.literals[position])
                           : '\0';
        if (c == '\0') {
            return false;
        }
        characters += c;
    }
    return true;
}

std::string ValueWriter::WriteComposite(const Part& part, Values& values) const {
    const bool array = part.type->GetKind() == KTypeInfo::KindArray;
    std::string text;
    if (array && !part.parts.empty() && !parts_[part.parts.front()].literals.empty() &&
        ReadCharacters(part, values, text)) {
        values = values.subspan(std::min(part.count, values.size()));
        return part.characters ? format_(text, part.kind) : text;
    }
    text = "(";
    for (std::size_t i = 0; i < (array ? part.count : part.parts.size()); ++i) {
        text += i > 0 ? "," : "";
        text += Write(parts_[part.parts[array ? 0 : i]], values);
    }
    return text + ")";
}

}  // namespace corv::host
