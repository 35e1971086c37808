#include "typeinfo/vhdl_range.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <type_traits>

#include "typeinfo/number_text.h"
#include "typeinfo/scalar_text.h"
#include "util/quote.h"
#include "util/time_text.h"

namespace corv::typeinfo {
namespace {

using util::Quote;

// Takes a number with its sign, without the blank that may be between them.
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
    // a based literal has two of them
    const bool is_closed = std::count(text->begin(), text->end(), '#') != 1;
    const auto number = is_closed ? ReadInteger(*text) : std::nullopt;
    const bool digits_only = text->find_first_not_of("+-0123456789_") == std::string::npos;
    if (!number && !digits_only) {
        return cursor.Fail(place, Quote(place) + (is_closed ? " is no whole number within 32 bits"
                                                            : " has no closing `#`"));
    }
    bound = number.value_or(0);
    return number || cursor.Fail(place, Quote(place) + " is not a value of " + Quote(limits.name));
}

// Takes the time unit of a number, which is the next word or the end of the number itself; returns
// -1 without one.
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
                           Quote(place) + " has no time unit; write one after it, such as `ns`");
    }
    const auto number = ReadReal(*text);
    if (!number) {
        const bool is_based = text->find('#') != std::string::npos;
        return cursor.Fail(place, Quote(place) + (is_based ? " is a based literal; write the bound "
                                                             "of a real in decimal"
                                                           : " is not a number in the range of a "
                                                             "double"));
    }
    bound = *number * static_cast<double>(util::kFemtoseconds[static_cast<unsigned>(unit)]);
    return true;
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

// Appends a time in the largest unit that leaves no fraction. The check multiplies back, since a
// quotient may be rounded to a whole number.
void AppendTime(std::string& out, double femtoseconds) {
    std::size_t unit = femtoseconds != 0 ? util::kTimeUnits.size() : 1;
    double count = 0;
    do {
        --unit;
        count = femtoseconds / static_cast<double>(util::kFemtoseconds[unit]);
    } while (unit > 0 && (count != std::trunc(count) ||
                          count * static_cast<double>(util::kFemtoseconds[unit]) != femtoseconds));
    AppendReal(out, count);
    out.append(" ").append(util::kTimeUnits[unit].name);
}

void AppendBound(std::string& out, double bound, bool is_time) {
    if (is_time) {
        AppendTime(out, bound);
        return;
    }
    const std::size_t begin = out.size();
    AppendReal(out, bound);
    // VHDL requires a point in a real literal
    if (out.find('.', begin) == std::string::npos) {
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

// Appends a number type: by its name alone if it is exactly the known type, otherwise as a range of
// that type or of the kind's first one (integer or real).
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
    const bool is_left_in = IsWithin(range.left, limits.range);
    const bool is_right_in = IsWithin(range.right, limits.range);
    if (is_to ? range.left > range.right : range.left < range.right) {
        const std::string_view place = Span(left, right);
        return cursor.Fail(place,
                           "the range " + Quote(place) + " is empty; " +
                               (!is_left_in || !is_right_in ? "only ranges with a value can be read"
                                : is_to                     ? "write it with `downto`"
                                                            : "write it with `to`"));
    }
    const std::string_view place = is_left_in ? right : left;
    return (is_left_in && is_right_in) ||
           cursor.Fail(place, Quote(place) + " is not a value of " + Quote(limits.name));
}

bool TakePrefixedName(VhdlCursor& cursor, std::string_view& name) {
    name = cursor.Take();
    while (cursor.Skip(".")) {
        const Word& next = cursor.Next();
        if (next.kind != WordKind::Extended && !IsIdentifier(next)) {
            return cursor.FailAtNext("a name after `.`");
        }
        name = cursor.Take();
    }
    return true;
}

bool ReadIndex(VhdlCursor& cursor, const IndexNeeds& needs, IndexRange& range) {
    if (cursor.Next().kind != WordKind::Name) {
        return ReadRange(cursor, needs.limits, range);
    }
    std::string_view name;
    if (!TakePrefixedName(cursor, name)) {
        return false;
    }
    const NamedScalar* const row = FindNamedScalar(name);
    if (!row || row->text[0] != 'i') {
        return cursor.Fail(name,
                           "expected " + std::string(needs.expected) + ", found " + Quote(name));
    }
    const Limits<std::int32_t> own{row->name, RangeOf<std::int32_t>(*row)};
    if (cursor.Skip("range")) {
        if (needs.may_be_open && cursor.Skip("<>")) {
            range = own.range;
            range.constrained = false;
            return true;
        }
        const bool is_narrower = own.range.left > needs.limits.range.left;
        return ReadRange(cursor, is_narrower ? own : needs.limits, range);
    }
    range = own.range;
    return IsWithin(range.left, needs.limits.range) ||
           cursor.Fail(name, Quote(name) + " has values outside " + Quote(needs.limits.name));
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
