#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "stremo/ghw/input.h"
#include "stremo/ghw/notes.h"
#include "stremo/ghw/strings.h"

namespace corv::ghw {

inline constexpr std::uint32_t kNoType = 0;               // the place of a type that cannot be used
inline constexpr std::uint64_t kMostMembers = 1'048'576;  // below one signal

enum class Kind : unsigned char {
    kNone,  // not to be used
    kEnumeration,
    kInteger,
    kWideInteger,  // of 64 bits
    kReal,
    kPhysical,
    kWidePhysical,  // of 64 bits
    kArray,
    kRecord,
};

// The bounds of a scalar type or of one dimension, as written.
struct Bounds {
    std::int64_t left = 0;  // for real numbers the bits of the double, also in `right`
    std::int64_t right = 0;
    bool downto = false;
    Kind kind = Kind::kNone;  // kNone: unbounded

    std::uint64_t Length() const noexcept;
};

struct Dimension {
    std::uint32_t index;  // the type of the index
    Bounds bounds;
};
struct Field {
    std::string_view name;
    std::uint32_t type;
};
struct Unit {
    std::string_view name;
    std::int64_t value;
};

// Types are identified by their place in a list. Subtypes are types of their own, with everything
// that they inherit from their base; so are elements and fields to which a subtype adds bounds.
struct Type {
    Kind kind = Kind::kNone;
    bool bounded = true;  // every array in it has bounds
    std::uint32_t levels = 1;
    std::uint32_t root = kNoType;  // the type that it is a subtype of
    std::string_view name;         // for an array, its name without bounds
    std::uint32_t first = 0;       // of the literals, units, dimensions or fields,
    std::uint32_t count = 0;       // and their number
    std::uint32_t element = kNoType;
    Bounds bounds;              // of a scalar
    std::uint64_t leaves = 1;   // scalars that it consists of, saturated at 2^64 - 1
    std::uint64_t members = 0;  // signals below a signal of this type

    bool IsScalar() const noexcept { return kind < Kind::kArray; }
};

class Types {
public:
    // The oldest files have no units.
    Types(const Strings& strings, bool has_units, Notes& notes)
        : strings_(strings), notes_(notes), has_units_(has_units) {}

    // Read the sections of types and of well-known types after their tags. Failures are recorded in
    // the input; what was read stays.
    void Read(Input& in);
    void ReadWellKnown(Input& in);

    // Reads the number of a type and returns its place; kNoType, with a note, if there is no such
    // type.
    std::uint32_t ReadNumber(Input& in) const;
    // Reads a value of a scalar type of this kind; for a real number, its bits.
    static std::int64_t ReadValue(Input& in, Kind kind) noexcept;

    // The number of types that have a number in the file.
    std::size_t count() const noexcept { return numbers_.size(); }
    // The number of places, including place 0, which is kNoType.
    std::uint32_t size() const noexcept { return static_cast<std::uint32_t>(types_.size()); }
    const Type& operator[](std::uint32_t type) const noexcept { return types_[type]; }
    std::string_view Literal(const Type& type, std::uint32_t position) const noexcept {
        return literals_[type.first + position];
    }
    const Unit& UnitOf(const Type& type, std::uint32_t index) const noexcept {
        return units_[type.first + index];
    }
    const Dimension& DimensionOf(const Type& type, std::uint32_t index) const noexcept {
        return dimensions_[type.first + index];
    }
    const Field& FieldOf(const Type& type, std::uint32_t index) const noexcept {
        return fields_[type.first + index];
    }

    // The type time, kNoType without one, and the place of its definition in the file.
    std::uint32_t time() const noexcept { return time_; }
    std::size_t time_offset() const noexcept { return time_offset_; }
    // The nine-value type of logic, kNoType without one.
    std::uint32_t nine_values() const noexcept { return nine_values_; }

private:
    void ReadType(unsigned kind, Input& in);
    void ReadLiterals(Input& in, Type& type);
    void ReadUnits(Input& in, Type& type);
    void ReadArray(Input& in, Type& type);
    void ReadRecord(Input& in, Type& type);
    void ReadScalarSubtype(Input& in, Type& type);
    void ReadSubtype(Input& in, Type& type, bool bounds);
    void FindTime(std::uint32_t place, std::size_t offset) noexcept;

    static Bounds ReadBounds(Input& in) noexcept;
    Type Bounded(Input& in, std::uint32_t place);
    void BoundArray(Input& in, Type& type);
    void BoundRecord(Input& in, Type& type);
    std::uint32_t BoundedPart(Input& in, std::uint32_t place);
    bool HasRoom(Input& in, std::size_t parts) noexcept;
    std::uint32_t Keep(const Type& type);

    void Measure(Type& type, std::size_t offset);
    void MeasureArray(Type& type) const noexcept;
    void MeasureRecord(Type& type) const noexcept;

    const Strings& strings_;
    Notes& notes_;
    const bool has_units_;
    std::vector<Type> types_{Type()};
    std::vector<std::uint32_t> numbers_;  // by number in the file: the type's place
    std::vector<std::string_view> literals_;
    std::vector<Unit> units_;
    std::vector<Dimension> dimensions_;
    std::vector<Field> fields_;
    std::uint32_t time_ = kNoType;
    std::size_t time_offset_ = 0;
    std::uint32_t nine_values_ = kNoType;
};

}  // namespace corv::ghw
