#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "corv/typeinfo/type_info.h"

// The grammar of type-description strings with its reader and writer. Worked examples are in
// docs/formats/type-descriptions.md.
//
//     type        = "e" name enumeration | "i" name range | "f" name range | "a" name array
//                 | "r" name record
//     name        = "#" length "#" characters | characters " "
//     enumeration = "c" count " " { character } | "s" count " " { literal " " }
//     literal     = "'" character | characters
//     range       = "r" ( "i" | "r" ) ( "c" | "u" ) ( "t" | "d" ) bound " " bound
//     array       = count " " [ range { " " range } ] " " type
//     record      = count " " [ field { " " field } ]
//     field       = characters " " type
//
// Characters run to the next blank; those of a name in the first form are counted. A literal that
// begins with an apostrophe consists of it and one further character, whatever that is. Integer
// types and arrays have ranges of integers ("i"), floating-point types have ranges of reals ("r").
namespace corv::typeinfo {

inline constexpr std::size_t kMaxTextLength = std::size_t{16} << 20;
inline constexpr int kMaxNesting = 64;

template <class Bound>
struct Range {
    Bound left = 0;
    Bound right = 0;
    KTypeInfo::EDirection direction = KTypeInfo::To;
    bool constrained = true;
};
using IndexRange = Range<std::int32_t>;
using RealRange = Range<double>;

// The beginning of a type: everything up to its ranges, literal words, fields or element.
struct TypeHead {
    KTypeInfo::EKind kind = KTypeInfo::KindNone;
    const char* begin = nullptr;
    std::string_view name;
    std::uint32_t count = 0;      // literals, dimensions or fields
    bool words = false;           // the literals follow as words
    std::string_view characters;  // the literals otherwise
};

// Receives a type in the order of its text: its head; its literal words, its range or the ranges of
// its dimensions; an element as a type, a field as its name and a type; its end. One reader serves
// checking, counting and building through this interface.
class TypeSink {
public:
    virtual void OnType(const TypeHead& head) = 0;
    virtual void OnWord(std::string_view literal) = 0;
    virtual void OnRange(const IndexRange& range) = 0;
    virtual void OnRange(const RealRange& range) = 0;
    virtual void OnField(std::string_view name) = 0;
    virtual void OnEnd(const char* end) = 0;

protected:
    ~TypeSink() = default;
};

// Reads a text that is one type. Returns false for anything else; the sink has received a part of
// it by then.
bool ReadTypeText(std::string_view text, TypeSink& sink);

// The writer appends types. The head of an array must be followed by its element, the head of a
// record by its fields, with a blank before all but the first. Names are written in the counted
// form.
void AppendCharacterEnum(std::string& out, std::string_view name, std::string_view characters);
void AppendWordEnum(std::string& out, std::string_view name,
                    std::span<const std::string_view> literals);
void AppendInteger(std::string& out, std::string_view name, const IndexRange& range);
void AppendFloat(std::string& out, std::string_view name, const RealRange& range);
void AppendArrayHead(std::string& out, std::string_view name, std::span<const IndexRange> ranges);
void AppendRecordHead(std::string& out, std::string_view name, std::size_t fields);

// The name of an array with its constraint: "bus(7 downto 0,1 to 2)".
std::string ConstrainedName(std::string_view name, std::span<const IndexRange> ranges);

}  // namespace corv::typeinfo
