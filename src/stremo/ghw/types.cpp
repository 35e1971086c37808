#include "stremo/ghw/types.h"

#include <algorithm>
#include <limits>

#include "util/saturate.h"

namespace corv::ghw {
namespace {

constexpr std::uint64_t kTooMany = std::numeric_limits<std::uint64_t>::max();
constexpr std::uint32_t kMostLevels = 64;

std::uint64_t Add(std::uint64_t a, std::uint64_t b) noexcept {
    return a > kTooMany - b ? kTooMany : a + b;
}

// The meaning of a kind byte of the file.
enum FileKind : unsigned {
    kTwoValues = 22,
    kEnumeration8 = 23,
    kInteger32 = 25,
    kInteger64 = 26,
    kReal64 = 27,
    kPhysical32 = 28,
    kPhysical64 = 29,
    kOpenArray = 31,
    kRecord = 32,
    kScalarSubtype = 34,
    kArraySubtype = 35,
    kOpenArraySubtype = 37,
    kRecordSubtype = 38,
    kOpenRecordSubtype = 39,
};

Kind ScalarKind(unsigned kind) noexcept {
    switch (kind) {
        case kTwoValues:
        case kEnumeration8:
            return Kind::kEnumeration;
        case kInteger32:
            return Kind::kInteger;
        case kInteger64:
            return Kind::kWideInteger;
        case kReal64:
            return Kind::kReal;
        case kPhysical32:
            return Kind::kPhysical;
        case kPhysical64:
            return Kind::kWidePhysical;
        default:
            return Kind::kNone;
    }
}

}  // namespace

std::uint64_t Bounds::Length() const noexcept {
    const std::int64_t low = downto ? right : left;
    const std::int64_t high = downto ? left : right;
    return low > high ? 0
                      : Add(static_cast<std::uint64_t>(high) - static_cast<std::uint64_t>(low), 1);
}

// ---- the sections ----

void Types::Read(Input& in) {
    const std::size_t begin = in.offset();
    const std::uint32_t count = in.Number32();
    while (in.ok()) {
        const unsigned kind = in.Byte();
        if (kind == 0) {
            break;
        }
        ReadType(kind, in);
    }
    if (in.ok() && numbers_.size() != count) {
        notes_.Add(begin, "the number of types is wrong");
    }
}

void Types::ReadType(unsigned kind, Input& in) {
    const std::size_t offset = in.offset() - 1;
    Type type;
    type.name = strings_.ReadName(in, notes_);
    type.kind = ScalarKind(kind);
    switch (kind) {
        case kTwoValues:
        case kEnumeration8:
            ReadLiterals(in, type);
            break;
        case kInteger32:
        case kInteger64:
        case kReal64:
            break;
        case kPhysical32:
        case kPhysical64:
            ReadUnits(in, type);
            break;
        case kOpenArray:
            ReadArray(in, type);
            break;
        case kRecord:
            ReadRecord(in, type);
            break;
        case kScalarSubtype:
            ReadScalarSubtype(in, type);
            break;
        case kArraySubtype:
        case kRecordSubtype:
            ReadSubtype(in, type, true);
            break;
        case kOpenArraySubtype:
        case kOpenRecordSubtype:
            ReadSubtype(in, type, false);
            break;
        default:
            in.Fail("a type is of an unknown kind");
    }
    if (in.ok()) {
        Measure(type, offset);
        numbers_.push_back(Keep(type));
        FindTime(numbers_.back(), offset);
    }
}

// Recognises the type time by its name and units. Other types may have the name, but not its
// primary unit.
void Types::FindTime(std::uint32_t place, std::size_t offset) noexcept {
    const Type& type = types_[place];
    if (time_ == kNoType && type.kind == Kind::kWidePhysical && type.root == place &&
        type.name == "time" && (type.count == 0 || UnitOf(type, 0).name == "fs")) {
        time_ = place;
        time_offset_ = offset;
    }
}

void Types::ReadWellKnown(Input& in) {
    constexpr unsigned kNineValues = 3;
    constexpr std::string_view kLetters = "UX01ZWLH-";
    while (in.ok()) {
        const unsigned which = in.Byte();
        if (which == 0) {
            break;
        }
        const std::size_t offset = in.offset();
        const std::uint32_t place = ReadNumber(in);
        const Type& type = types_[place];
        if (which != kNineValues || !in.ok()) {
            continue;
        }
        if (type.kind == Kind::kEnumeration && type.count == kLetters.size()) {
            nine_values_ = type.root;
        } else {
            notes_.Add(offset, "the type that is said to have the nine values of logic has not");
        }
    }
}

std::uint32_t Types::ReadNumber(Input& in) const {
    const std::size_t offset = in.offset();
    const std::uint64_t number = in.Unsigned();
    if (in.ok() && (number == 0 || number > numbers_.size())) {
        notes_.Add(offset, "a type is referred to that does not stand before");
        return kNoType;
    }
    return in.ok() ? numbers_[static_cast<std::size_t>(number) - 1] : kNoType;
}

std::int64_t Types::ReadValue(Input& in, Kind kind) noexcept {
    switch (kind) {
        case Kind::kEnumeration:
            return in.Byte();
        case Kind::kReal:
            return static_cast<std::int64_t>(in.Number64());
        default:
            return in.Signed();
    }
}

// ---- types ----

void Types::ReadLiterals(Input& in, Type& type) {
    type.first = static_cast<std::uint32_t>(literals_.size());
    for (std::uint64_t left = in.Unsigned(); left > 0 && in.ok(); --left) {
        literals_.push_back(strings_.ReadName(in, notes_));
    }
    type.count = static_cast<std::uint32_t>(literals_.size()) - type.first;
}

void Types::ReadUnits(Input& in, Type& type) {
    type.first = static_cast<std::uint32_t>(units_.size());
    for (std::uint64_t left = has_units_ ? in.Unsigned() : 0; left > 0 && in.ok(); --left) {
        const std::string_view name = strings_.ReadName(in, notes_);
        units_.push_back({name, in.Signed()});
    }
    type.count = static_cast<std::uint32_t>(units_.size()) - type.first;
}

void Types::ReadArray(Input& in, Type& type) {
    type.kind = Kind::kArray;
    type.bounded = false;
    type.element = ReadNumber(in);
    type.first = static_cast<std::uint32_t>(dimensions_.size());
    const std::uint64_t count = in.Unsigned();
    if (count == 0) {
        in.Fail("an array has no dimensions");
    }
    for (std::uint64_t left = count; left > 0 && in.ok(); --left) {
        dimensions_.push_back({ReadNumber(in), {}});
    }
    type.count = static_cast<std::uint32_t>(dimensions_.size()) - type.first;
}

void Types::ReadRecord(Input& in, Type& type) {
    type.kind = Kind::kRecord;
    type.first = static_cast<std::uint32_t>(fields_.size());
    for (std::uint64_t left = in.Unsigned(); left > 0 && in.ok(); --left) {
        const std::string_view name = strings_.ReadName(in, notes_);
        fields_.push_back({name, ReadNumber(in)});
    }
    type.count = static_cast<std::uint32_t>(fields_.size()) - type.first;
}

void Types::ReadScalarSubtype(Input& in, Type& type) {
    const std::string_view name = type.name;
    type = types_[ReadNumber(in)];
    type.kind = type.IsScalar() ? type.kind : Kind::kNone;
    type.name = name.empty() ? type.name : name;
    const std::size_t offset = in.offset();
    const Bounds bounds = ReadBounds(in);
    if (bounds.kind == type.kind) {
        type.bounds = bounds;
    } else if (in.ok()) {
        notes_.Add(offset, "the range of a type is of another kind than its base; it is left out");
    }
}

// Reads a subtype of an array or record, which adds bounds to parts that have none in the declared
// type, or only a name.
void Types::ReadSubtype(Input& in, Type& type, bool bounds) {
    const std::string_view name = type.name;
    const Type base = types_[ReadNumber(in)];
    if (in.ok() && base.kind < Kind::kArray) {
        in.Fail("a type is a part of one that is neither array nor record");
        return;
    }
    type = bounds ? Bounded(in, base.root) : base;
    type.bounded = bounds || (base.bounded && base.kind == Kind::kRecord);
    // the name of the unconstrained array, "std_logic_vector", is more useful than that of its
    // subtype
    const bool keeps = name.empty() || (bounds && base.kind == Kind::kArray);
    type.name = keeps ? base.name : name;
}

// ---- bounds ----

Bounds Types::ReadBounds(Input& in) noexcept {
    Bounds bounds;
    const unsigned kind = in.Byte();
    bounds.kind = ScalarKind(kind & 0x7F);
    bounds.downto = (kind & 0x80) != 0;
    if (bounds.kind == Kind::kNone) {
        in.Fail("a range is of an unknown kind");
    }
    bounds.left = ReadValue(in, bounds.kind);
    bounds.right = ReadValue(in, bounds.kind);
    return bounds;
}

// Returns the type with bounds read from the input for every part that has none.
Type Types::Bounded(Input& in, std::uint32_t place) {
    Type type = types_[place];
    if (!HasRoom(in, type.count)) {
        return {};
    }
    if (type.kind == Kind::kArray) {
        BoundArray(in, type);
    } else {
        BoundRecord(in, type);
    }
    return type;
}

void Types::BoundArray(Input& in, Type& type) {
    const auto first = static_cast<std::uint32_t>(dimensions_.size());
    for (std::uint32_t i = 0; i < type.count && in.ok(); ++i) {
        const std::uint32_t index = DimensionOf(type, i).index;
        const Bounds bounds = ReadBounds(in);
        if (bounds.kind == Kind::kReal) {
            in.Fail("the bounds of an array are real numbers");
        }
        dimensions_.push_back({index, bounds});
    }
    type.first = first;
    type.bounded = true;
    type.element = in.ok() ? BoundedPart(in, type.element) : type.element;
}

void Types::BoundRecord(Input& in, Type& type) {
    const auto begin = fields_.begin() + type.first;
    std::vector<Field> fields(begin, begin + type.count);
    for (Field& field : fields) {
        field.type = in.ok() ? BoundedPart(in, field.type) : field.type;
    }
    type.first = static_cast<std::uint32_t>(fields_.size());
    fields_.insert(fields_.end(), fields.begin(), fields.end());
}

std::uint32_t Types::BoundedPart(Input& in, std::uint32_t place) {
    if (types_[place].bounded) {
        return place;
    }
    const std::size_t offset = in.offset();
    Type type = Bounded(in, types_[place].root);
    if (!in.ok()) {
        return kNoType;
    }
    type.name = types_[place].name;
    Measure(type, offset);
    return Keep(type);
}

// Limits the parts of all types together, since a few bytes can make a copy of a long list of
// fields.
bool Types::HasRoom(Input& in, std::size_t parts) noexcept {
    constexpr std::size_t kMostParts = std::size_t{1} << 23;
    if (parts > kMostParts - std::min(kMostParts, fields_.size() + dimensions_.size())) {
        in.Fail("the types have too many parts");
    }
    return in.ok();
}

std::uint32_t Types::Keep(const Type& type) {
    const std::uint32_t place = size();
    types_.push_back(type);
    if (type.root == kNoType) {
        types_.back().root = place;
    }
    return place;
}

// ---- sizes ----

void Types::Measure(Type& type, std::size_t offset) {
    if (type.kind == Kind::kArray) {
        MeasureArray(type);
    } else if (type.kind == Kind::kRecord) {
        MeasureRecord(type);
    }
    if (type.levels > kMostLevels) {
        notes_.Add(offset, "a type is nested too deeply");
        type.kind = Kind::kNone;
    }
}

void Types::MeasureArray(Type& type) const noexcept {
    const Type& element = types_[type.element];
    type.kind = element.kind == Kind::kNone ? Kind::kNone : type.kind;
    type.levels = element.levels + 1;
    std::uint64_t length = 1;
    for (std::uint32_t i = 0; i < type.count; ++i) {
        const Bounds& bounds = DimensionOf(type, i).bounds;
        length = bounds.Length() == 0 ? 0 : util::SaturatingMultiply(length, bounds.Length());
    }
    type.leaves = util::SaturatingMultiply(length, element.leaves);
    type.members = util::SaturatingMultiply(length, Add(element.members, 1));
}

void Types::MeasureRecord(Type& type) const noexcept {
    type.levels = 1;
    type.leaves = 0;
    type.members = type.count;
    type.bounded = true;
    for (std::uint32_t i = 0; i < type.count; ++i) {
        const Type& field = types_[FieldOf(type, i).type];
        type.kind = field.kind == Kind::kNone ? Kind::kNone : type.kind;
        type.levels = std::max(type.levels, field.levels + 1);
        type.leaves = Add(type.leaves, field.leaves);
        type.members = Add(type.members, field.members);
        type.bounded = type.bounded && field.bounded;
    }
}

}  // namespace corv::ghw
