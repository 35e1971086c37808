// Reads a type in VHDL notation, such as `std_logic_vector(7 downto 0)` or a record, into a tree of
// VhdlType. The grammar is that of a subtype indication or the body of a type declaration; the
// known names are those of the standard packages (named_types.h).

#include "typeinfo/vhdl_type_text.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "typeinfo/named_types.h"
#include "typeinfo/vhdl_cursor.h"
#include "typeinfo/vhdl_range.h"
#include "util/quote.h"
#include "util/suggest.h"

namespace corv::typeinfo {
namespace {

using util::DidYouMean;
using util::Quote;

const IndexNeeds kArrayIndex{{"integer", {kLowestIndex, kLastIndex, KTypeInfo::To, true}},
                             "a range of whole numbers, such as `0 to 3` or `natural range <>`",
                             true};

// Reads by recursive descent and stops at the first problem, which the cursor keeps. Types are made
// in a deque, so pointers to them stay valid while more are added.
class VhdlReader {
public:
    VhdlReader(std::string_view text, VhdlTypes& out) : cursor_(text, out.problem), out_(out) {}

    void ReadWhole();

private:
    const VhdlType* ReadType(int level);
    const VhdlType* ReadEnumeration();
    bool ReadLiteral(VhdlType& type);
    const VhdlType* ReadArray(int level);
    const VhdlType* ReadRecord(int level);
    bool ReadFields(VhdlType& type, std::vector<std::string_view>& names, int level);
    const VhdlType* ReadNamed(int level);
    const VhdlType* ReadSubtype(const NamedSubtype& row, std::string_view name);
    const VhdlType* ReadScalar(const NamedScalar& row, std::string_view name);
    const VhdlType* ReadNamedArray(const NamedArray& row, std::string_view name, int level);
    const VhdlType* Fail(std::string_view place, std::string sentence) {
        cursor_.Fail(place, std::move(sentence));
        return nullptr;
    }
    const VhdlType* FailAtNext(std::string_view expected) {
        cursor_.FailAtNext(expected);
        return nullptr;
    }

    VhdlType& Make(KTypeInfo::EKind kind);
    const VhdlType* Ready(std::string_view type);

    VhdlCursor cursor_;
    VhdlTypes& out_;
    std::vector<const VhdlType*> ready_;
};

VhdlType& VhdlReader::Make(KTypeInfo::EKind kind) {
    VhdlType& type = out_.types.emplace_back();
    type.kind = kind;
    return type;
}

// Types with a ready string are made once each: a record of a thousand std_logic fields has one.
// They are told apart by the address of their row in the tables.
const VhdlType* VhdlReader::Ready(std::string_view type) {
    const auto made = std::find_if(ready_.begin(), ready_.end(), [type](const VhdlType* other) {
        return other->ready.data() == type.data();
    });
    if (made != ready_.end()) {
        return *made;
    }
    VhdlType& ready = Make(KTypeInfo::KindNone);
    ready.ready = type;
    ready_.push_back(&ready);
    return &ready;
}

void VhdlReader::ReadWhole() {
    if (cursor_.Text().size() > kMaxTextLength) {
        cursor_.Fail(cursor_.Text(), "the text is longer than 16 MiB");
        return;
    }
    if (cursor_.Next().kind == WordKind::End) {
        cursor_.Fail(
            cursor_.Text(),
            "the text contains no type; write one, such as `std_logic_vector(7 downto 0)`");
        return;
    }
    const VhdlType* const type = ReadType(1);
    if (!type) {
        return;
    }
    // a type copied from a declaration ends in a semicolon
    cursor_.Skip(";");
    if (cursor_.Next().kind != WordKind::End) {
        cursor_.FailAtNext("nothing more after the type");
        return;
    }
    out_.whole = type;
}

const VhdlType* VhdlReader::ReadType(int level) {
    const Word& next = cursor_.Next();
    if (level > kMaxNesting) {
        return Fail(next.text, "types nest deeper than 64 levels from here on");
    }
    if (cursor_.Skip("(")) {
        return ReadEnumeration();
    }
    if (cursor_.Skip("array")) {
        return ReadArray(level);
    }
    if (cursor_.Skip("record")) {
        return ReadRecord(level);
    }
    if (next.kind == WordKind::Extended || (next.kind == WordKind::Name && IsIdentifier(next))) {
        return ReadNamed(level);
    }
    return FailAtNext("a type, such as `std_logic` or `integer range 0 to 15`");
}

// ---- enumerations ----

const VhdlType* VhdlReader::ReadEnumeration() {
    VhdlType& type = Make(KTypeInfo::KindEnum);
    do {
        if (!ReadLiteral(type)) {
            return nullptr;
        }
    } while (cursor_.Skip(","));
    if (!cursor_.Expect(")", " or `,` after the literal")) {
        return nullptr;
    }
    if (const std::string_view* repeated = FindRepeated(type.literals)) {
        // the kept text of a character literal lacks its second apostrophe, the message shows it
        const std::size_t rest = repeated->starts_with('\'') ? 1 : 0;
        const std::string_view literal(repeated->data(), repeated->size() + rest);
        return Fail(literal, "the literal " + Quote(literal) + " appears twice");
    }
    return &type;
}

bool VhdlReader::ReadLiteral(VhdlType& type) {
    const Word& next = cursor_.Next();
    if (next.kind == WordKind::Character) {
        type.literals.push_back(next.text.substr(0, 2));
    } else if (IsIdentifier(next)) {
        type.literals.push_back(next.text);
        type.words = true;
    } else if (next.kind == WordKind::Extended) {
        return cursor_.Fail(next.text, "a literal cannot have a blank in its name");
    } else {
        return cursor_.FailAtNext("a literal, such as `idle` or `'0'`");
    }
    cursor_.Take();
    return true;
}

// ---- arrays and records ----

const VhdlType* VhdlReader::ReadArray(int level) {
    VhdlType& type = Make(KTypeInfo::KindArray);
    if (!cursor_.Expect("(", " after `array`")) {
        return nullptr;
    }
    do {
        const std::string_view place = cursor_.Next().text;
        if (!ReadIndex(cursor_, kArrayIndex, type.ranges.emplace_back())) {
            return nullptr;
        }
        if (type.ranges.back().constrained != type.ranges.front().constrained) {
            return Fail(place, "an array has `<>` in all of its dimensions or in none");
        }
    } while (cursor_.Skip(","));
    if (!cursor_.Expect(")", " or `,` after the range") ||
        !cursor_.Expect("of", " and the type of the elements")) {
        return nullptr;
    }
    type.element = ReadType(level + 1);
    return type.element ? &type : nullptr;
}

const VhdlType* VhdlReader::ReadRecord(int level) {
    VhdlType& type = Make(KTypeInfo::KindRecord);
    std::vector<std::string_view> names;
    if (cursor_.Next().Is("end")) {
        return Fail(cursor_.Next().text, "a record has at least one field");
    }
    while (!cursor_.Skip("end")) {
        if (!ReadFields(type, names, level)) {
            return nullptr;
        }
    }
    if (const std::string_view* repeated = FindRepeated(names)) {
        return Fail(*repeated, "the field " + Quote(*repeated) + " appears twice");
    }
    if (!cursor_.Expect("record", " after `end`")) {
        return nullptr;
    }
    // `end record name` is the only place where the name of a record can be written
    if (cursor_.Next().kind == WordKind::Extended || IsIdentifier(cursor_.Next())) {
        type.name = cursor_.Take();
    }
    return &type;
}

bool VhdlReader::ReadFields(VhdlType& type, std::vector<std::string_view>& names, int level) {
    const std::size_t first = names.size();
    do {
        const Word& next = cursor_.Next();
        if (next.kind == WordKind::Extended && !IsIdentifier(next)) {
            return cursor_.Fail(next.text, "a field cannot have a blank in its name");
        }
        if (!IsIdentifier(next)) {
            return cursor_.FailAtNext(names.size() == first ? "a field or `end record`"
                                                            : "the name of a field");
        }
        names.push_back(cursor_.Take());
    } while (cursor_.Skip(","));
    if (!cursor_.Expect(":", " and the type of the field")) {
        return false;
    }
    const VhdlType* const field = ReadType(level + 1);
    for (std::size_t i = first; field && i < names.size(); ++i) {
        type.fields.push_back({names[i], field});
    }
    return field && cursor_.Expect(";", " after the field");
}

// ---- named types ----

const VhdlType* VhdlReader::ReadNamed(int level) {
    std::string_view name;
    if (!TakePrefixedName(cursor_, name)) {
        return nullptr;
    }
    // `resolved std_ulogic` is how the standard package itself defines std_logic
    if (platform::EqualNoCase(name, "resolved")) {
        if (!cursor_.Expect("std_ulogic", " after `resolved`")) {
            return nullptr;
        }
        name = "std_logic";
    }
    if (const NamedSubtype* row = FindNamedSubtype(name)) {
        return ReadSubtype(*row, name);
    }
    if (const NamedScalar* row = FindNamedScalar(name)) {
        return ReadScalar(*row, name);
    }
    if (const NamedArray* row = FindNamedArray(name)) {
        return ReadNamedArray(*row, name, level);
    }
    return Fail(name, "unknown type " + Quote(name) +
                          DidYouMean(NearestTypeName(name),
                                     "; write a type such as `std_logic_vector(7 downto 0)`, an "
                                     "enumeration in parentheses, an array or a record"));
}

// Reads the name of a subtype: a scalar if its row has no bounds, else an array with these bounds.
const VhdlType* VhdlReader::ReadSubtype(const NamedSubtype& row, std::string_view name) {
    if (row.left == row.right) {
        return ReadScalar(*FindNamedScalar(row.base), name);
    }
    VhdlType& type = Make(KTypeInfo::KindArray);
    const NamedArray& array = *FindNamedArray(row.base);
    type.name = array.name;
    type.element = Ready(FindNamedScalar(array.element)->text);
    type.ranges.push_back({row.left, row.right, KTypeInfo::Downto, true});
    return &type;
}

const VhdlType* VhdlReader::ReadScalar(const NamedScalar& row, std::string_view name) {
    const std::string_view place = cursor_.Next().text;
    if (cursor_.Next().Is("(")) {
        const bool is_number = row.text[0] == 'i' || row.text[0] == 'f';
        const NamedArray* const array =
            is_number ? nullptr : FindNamedArray(std::string(row.name) + "_vector");
        return Fail(name, Quote(name) + " takes no range in parentheses" +
                              DidYouMean(array ? array->name : std::string_view(),
                                         is_number ? "; write it after `range`" : ""));
    }
    if (!cursor_.Skip("range")) {
        return Ready(row.text);
    }
    bool read = false;
    VhdlType& type = Make(KTypeInfo::KindNone);
    type.name = row.name;
    if (row.text[0] == 'i') {
        type.kind = KTypeInfo::KindInteger;
        const Limits<std::int32_t> limits{row.name, RangeOf<std::int32_t>(row)};
        read = ReadRange(cursor_, limits, type.ranges.emplace_back());
    } else if (row.text[0] == 'f') {
        type.kind = KTypeInfo::KindFloat;
        const Limits<double> limits{row.name, RangeOf<double>(row), IsTime(row)};
        read = ReadRange(cursor_, limits, type.real_range);
    } else {
        cursor_.Fail(place,
                     "only ranges of numbers can be read; " + Quote(name) + " is an enumeration");
    }
    return read ? &type : nullptr;
}

const VhdlType* VhdlReader::ReadNamedArray(const NamedArray& row, std::string_view name,
                                           int level) {
    if (cursor_.Next().Is("range")) {
        return Fail(cursor_.Next().text, "the range of " + Quote(name) +
                                             " is written in parentheses, as in " +
                                             Quote(std::string(name) + "(7 downto 1)"));
    }
    // the element is one level deeper, although ReadType is not called for it
    if (level + 1 > kMaxNesting) {
        return Fail(name, "types nest deeper than 64 levels from here on");
    }
    bool constrained = cursor_.Skip("(");
    if (constrained && cursor_.Skip("open")) {
        constrained = false;
        if (!cursor_.Expect(")", " after `open`")) {
            return nullptr;
        }
    }
    if (!constrained && !row.unlimited.empty()) {
        return Ready(row.unlimited);
    }
    VhdlType& type = Make(KTypeInfo::KindArray);
    type.name = row.name;
    type.element = Ready(FindNamedScalar(row.element)->text);
    IndexRange& range = type.ranges.emplace_back();
    range = {row.first_index, kLastIndex, KTypeInfo::To, false};
    if (!constrained) {
        return &type;
    }
    const Limits<std::int32_t> limits{IndexTypeName(row.first_index), range};
    range.constrained = true;
    const IndexNeeds needs{limits, "a number as the bound"};
    return ReadIndex(cursor_, needs, range) && cursor_.Expect(")", " after the range") ? &type
                                                                                       : nullptr;
}

}  // namespace

VhdlTypes ReadVhdlType(std::string_view text) {
    VhdlTypes out;
    VhdlReader(text, out).ReadWhole();
    return out;
}

}  // namespace corv::typeinfo
