#include "host/find/value.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace corv::find {
namespace {

using Kind = Value::Kind;

constexpr std::size_t kNumberBits = 64;

char Level(char c) {
    return c == 'L' ? '0' : c == 'H' ? '1' : c;
}

// Bits filled up on the left to a width, a negative number by its sign.
std::string Widened(const Value& value, std::size_t width) {
    const bool fills_sign = value.is_signed && !value.text.empty();
    const char fill = fills_sign ? value.text.front() : '0';
    return std::string(width - std::min(width, value.text.size()), fill) + value.text;
}

// A whole number as signed bits; nothing of any other one.
Value BitsOf(double number) {
    Value bits{Kind::Bits, "", true, 0};
    constexpr double kLimit = 9.2e18;
    if (std::floor(number) != number || std::abs(number) > kLimit) {
        return {};
    }
    auto left = static_cast<std::uint64_t>(static_cast<std::int64_t>(number));
    for (std::size_t i = 0; i < kNumberBits; ++i, left >>= 1) {
        bits.text.insert(bits.text.begin(), (left & 1) != 0 ? '1' : '0');
    }
    return bits;
}

// The bits as text whose alphabetical order is that of the numbers; empty when a bit is unknown.
std::string Sortable(const Value& value, std::size_t width) {
    std::string bits = Widened(value, width);
    for (char& c : bits) {
        c = Level(c);
    }
    if (bits.find_first_not_of("01") != std::string::npos) {
        return {};
    }
    bits.front() = bits.front() == '0' ? '1' : '0';  // negative ones come first
    return bits;
}

// The order of two values of a kind; none of them holds for numbers that are not comparable.
template <class T>
bool InOrder(const T& left, Relation relation, const T& right) {
    switch (relation) {
        case Relation::Less:
            return left < right;
        case Relation::LessOrEqual:
            return left <= right;
        case Relation::Greater:
            return left > right;
        case Relation::GreaterOrEqual:
            return left >= right;
        case Relation::NotEqual:
            return left != right;
        default:
            return left == right;
    }
}

bool Matches(const std::string& left, const std::string& right) {
    const auto matches = [](char a, char b) {
        const bool known = a == '-' || b == '-' || (Level(a) == Level(b));
        return known && (a == '-' || b == '-' || Level(a) == '0' || Level(a) == '1');
    };
    return std::equal(left.begin(), left.end(), right.begin(), right.end(), matches);
}

bool BitsHold(const Value& left, Relation relation, const Value& right) {
    const std::size_t width = std::max(left.text.size(), right.text.size());
    switch (relation) {
        case Relation::Equal:
        case Relation::NotEqual:
            return (Widened(left, width) == Widened(right, width)) == (relation == Relation::Equal);
        case Relation::Matching:
            return Matches(Widened(left, width), Widened(right, width));
        default: {
            const std::string a = Sortable(left, width + 1);
            const std::string b = Sortable(right, width + 1);
            return !a.empty() && !b.empty() && InOrder(a, relation, b);
        }
    }
}

bool TextsHold(const Value& left, Relation relation, const Value& right) {
    const bool placed = left.number >= 0 && right.number >= 0 && relation != Relation::Equal &&
                        relation != Relation::NotEqual && relation != Relation::Matching;
    return placed ? InOrder(left.number, relation, right.number)
                  : InOrder(left.text, relation, right.text);
}

}  // namespace

bool Holds(const Value& left, Relation relation, const Value& right) {
    if (left.kind == Kind::None || right.kind == Kind::None) {
        return false;
    }
    if (left.kind == Kind::Text || right.kind == Kind::Text) {
        return left.kind == right.kind && TextsHold(left, relation, right);
    }
    if (left.kind == Kind::Number && right.kind == Kind::Number) {
        const bool is_number = !std::isnan(left.number) && !std::isnan(right.number);
        return is_number && InOrder(left.number, relation, right.number);
    }
    const Value a = left.kind == Kind::Number ? BitsOf(left.number) : left;
    const Value b = right.kind == Kind::Number ? BitsOf(right.number) : right;
    return a.kind != Kind::None && b.kind != Kind::None && BitsHold(a, relation, b);
}

}  // namespace corv::find
