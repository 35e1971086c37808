#pragma once

#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "corv/typeinfo/vhdl_type.h"
#include "typeinfo/type_text.h"
#include "typeinfo/type_tree.h"

// The grammar of VHDL subtype indications, with its reader and writer.
//
//     text        = type [ ";" ]
//     type        = enumeration | array | record | named
//     enumeration = "(" literal { "," literal } ")"
//     literal     = identifier | "'" character "'"
//     array       = "array" "(" index { "," index } ")" "of" type    all constrained or none
//     record      = "record" field { field } "end" "record" [ identifier ]
//     field       = identifier { "," identifier } ":" type ";"
//     named       = { identifier "." } ( name | number | name "(" ( index | "open" ) ")" )
//
// The names are those of named_types.h; a range in parentheses may follow those of arrays. Index,
// number and range are in vhdl_range.h, the words in vhdl_words.h.
namespace corv::typeinfo {

struct VhdlType;

struct VhdlField {
    std::string_view name;
    const VhdlType* type;
};

// A type that has been read, as views of the text and of the tables.
struct VhdlType {
    KTypeInfo::EKind kind = KTypeInfo::KindNone;
    std::string_view ready;  // the description if it is known; nothing else counts then
    std::string_view name;
    bool words = false;
    std::vector<std::string_view> literals;  // in the form of a word list; without `words` as 'c'
    std::vector<IndexRange> ranges;          // of an integer or array
    RealRange real_range;
    const VhdlType* element = nullptr;
    std::vector<VhdlField> fields;
};

// The types of one text, which may share element and field types.
struct VhdlTypes {
    std::deque<VhdlType> types;
    const VhdlType* whole = nullptr;  // null if the text cannot be read
    TypeProblem problem{};            // why not
};

// The reader, in vhdl_type_text.cpp.
VhdlTypes ReadVhdlType(std::string_view text);

// The writer, in vhdl_type_writer.cpp: appends a type. Returns false for one that the grammar
// cannot express.
bool AppendVhdlType(std::string& out, TypeView type);

}  // namespace corv::typeinfo
