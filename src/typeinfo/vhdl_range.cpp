#include "typeinfo/vhdl_range.h"

#include <algorithm>
#include <optional>
#include <type_traits>

#include "typeinfo/number_text.h"
#include "typeinfo/scalar_text.h"
#include "typeinfo/wording.h"
#include "util/time_text.h"

namespace corv::typeinfo {
namespace {

// A number with its sign, without the blank that may stand between them.
std::optional<std::string> TakeNumber(VhdlCursor& cursor, std::string_view& place) {
    const std::string_view sign = cursor.Next().text;
    std::string number;
    if (cursor.Next().Is("-") || cursor.Next().Is("+")) {
        number = cursor.Take();
    }
    if (cursor.Next().kind != WordKind::Number) {
        cursor.FailAtNext("a number as the bound");
        return std::nullopt;
    }
    const std::string_view digits = cursor.Take();
    place = Span(sign, digits);
    return number.append(digits);
}

bool ReadBound(VhdlCursor& cursor, const Limits<std::int32_t>& limits, std::int32_t& bound,
               std::string_view& place) {
    const auto text = TakeNumber(cursor, place);
    if (!text) {
        return false;
    }
    const auto number = ReadInteger(*text);
    const bool digits_only = text->find_first_not_of("+-0123456789_") == std::string::npos;
    if (!number && !digits_only) {
        return cursor.Fail(place, Quote(place) + " is no whole number within 32 bits");
    }
    if (!number || !IsWithin(*number, limits.range)) {
        return cursor.Fail(place, Quote(place) + " is no value of " + Quote(limits.name));
    }
    bound = *number;
    return true;
}

// Takes the time unit of a number, the next word or what the number ends with; -1 without one.
int TakeUnit(VhdlCursor& cursor, std::string& number, std::string_view& place) {
    const Word& next = cursor.Next();
    const int unit = next.kind == WordKind::Name ? util::FindTimeUnit(next.text) : -1;
    if (unit >= 0) {
        place = Span(place, cursor.Take());
        return unit;
    }
    const std::size_t length = number.find_last_of("0123456789") + 1;
    const int suffix = util::FindTimeUnit(std::string_view(number).substr(length));
    number.resize(length);
    return suffix;
}

bool ReadBound(VhdlCursor& cursor, const Limits<double>& limits, double& bound,
               std::string_view& place) {
    auto text = TakeNumber(cursor, place);
    if (!text) {
        return false;
    }
    const int unit = limits.times ? TakeUnit(cursor, *text, place) : 0;
    if (unit < 0) {
        return cursor.Fail(place,
                           Quote(place) + " has no time unit; write one behind it, such as `ns`");
    }
    const auto number = ReadReal(*text);
    if (!number) {
        return cursor.Fail(place, Quote(place) + " is no number in the range of a double");
    }
    bound = *number * static_cast<double>(util::kFemtoseconds[static_cast<unsigned>(unit)]);
    return IsWithin(bound, limits.range) ||
           cursor.Fail(place, Quote(place) + " is no value of " + Quote(limits.name));
}

bool ReadDirection(VhdlCursor& cursor, KTypeInfo::EDirection& direction) {
    if (cursor.Skip("to")) {
        direction = KTypeInfo::To;
        return true;
    }
    direction = KTypeInfo::Downto;
    return cursor.Skip("downto") ||
           cursor.FailAtNext("`to` or `downto` between the bounds", "downto");
}

// ---- writing ----

void AppendBound(std::string& out, std::int32_t bound, bool) {
    AppendInteger(out, bound, 10);
}

void AppendBound(std::string& out, double bound, bool is_time) {
    const std::size_t begin = out.size();
    AppendReal(out, bound);
    if (is_time) {
        out += " fs";
    } else if (out.find('.', begin) == std::string::npos) {
        out.insert(std::min(out.find('e', begin), out.size()), ".0");
    }
}

template <class Bound>
void AppendRange(std::string& out, const Range<Bound>& range, bool is_time = false) {
    const bool is_to =
        range.left == range.right ? range.direction == KTypeInfo::To : range.left < range.right;
    AppendBound(out, range.left, is_time);
    out += is_to ? " to " : " downto ";
    AppendBound(out, range.right, is_time);
}

// A number type: by its name when it is known, else as a range of it, or of the kind's first type.
template <class Bound>
void AppendNumber(std::string& out, TypeView type, const Range<Bound>& range,
                  std::string_view first_name) {
    const NamedScalar* const first = FindNamedScalar(first_name);
    const NamedScalar* row = FindNamedScalar(type.Name());
    if (!row || row->text[0] != first->text[0]) {
        row = first;
    }
    const Range<Bound> base = RangeOf<Bound>(*row);
    if (!IsWithin(range.left, base) || !IsWithin(range.right, base)) {
        row = first;
    }
    out += row->name;
    if (type.Body() != row->Body()) {
        out += " range ";
        AppendRange(out, range, IsTime(*row));
    }
}

}  // namespace

bool IsTime(const NamedScalar& row) noexcept {
    return row.name == "time" || row.name == "delay_length";
}

template <class Bound>
Range<Bound> RangeOf(const NamedScalar& row) {
    const auto tree = ReadTree(row.text);
    if constexpr (std::is_same_v<Bound, double>) {
        return TypeView(*tree).FloatRange();
    } else {
        return TypeView(*tree).RangeAt(0);
    }
}

template <class Bound>
bool ReadRange(VhdlCursor& cursor, const Limits<Bound>& limits, Range<Bound>& range) {
    std::string_view left;
    std::string_view right;
    if (!ReadBound(cursor, limits, range.left, left) || !ReadDirection(cursor, range.direction) ||
        !ReadBound(cursor, limits, range.right, right)) {
        return false;
    }
    const bool is_to = range.direction == KTypeInfo::To;
    const bool empty = is_to ? range.left > range.right : range.left < range.right;
    return !empty || cursor.Fail(Span(left, right), "the range " + Quote(Span(left, right)) +
                                                        " holds no value; write it with " +
                                                        (is_to ? "`downto`" : "`to`"));
}

bool ReadIndex(VhdlCursor& cursor, IndexRange& range) {
    const bool has_type = cursor.Next().kind == WordKind::Name;
    const NamedScalar* const row =
        FindNamedScalar(has_type ? cursor.Next().text : std::string_view("integer"));
    if (!row || row->text[0] != 'i') {
        return cursor.FailAtNext(
            "a range of whole numbers, such as `0 to 3` or `natural range <>`");
    }
    if (has_type) {
        cursor.Take();
        if (!cursor.Expect("range", " behind the index type")) {
            return false;
        }
    }
    const Limits<std::int32_t> limits{row->name, RangeOf<std::int32_t>(*row)};
    if (has_type && cursor.Skip("<>")) {
        range = limits.range;
        range.constrained = false;
        return true;
    }
    return ReadRange(cursor, limits, range);
}

void AppendIndex(std::string& out, const IndexRange& range) {
    if (range.constrained) {
        AppendRange(out, range);
        return;
    }
    out += IndexTypeName(std::min(range.left, range.right));
    out += " range <>";
}

void AppendNumberType(std::string& out, TypeView type) {
    if (type.Kind() == KTypeInfo::KindInteger) {
        AppendNumber(out, type, type.RangeAt(0), "integer");
    } else {
        AppendNumber(out, type, type.FloatRange(), "real");
    }
}

std::string_view IndexTypeName(std::int32_t first_index) noexcept {
    return first_index == 1 ? "positive" : first_index >= 0 ? "natural" : "integer";
}

template IndexRange RangeOf<std::int32_t>(const NamedScalar&);
template RealRange RangeOf<double>(const NamedScalar&);
template bool ReadRange(VhdlCursor&, const Limits<std::int32_t>&, IndexRange&);
template bool ReadRange(VhdlCursor&, const Limits<double>&, RealRange&);

}  // namespace corv::typeinfo
