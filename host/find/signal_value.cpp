#include "host/find/signal_value.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstring>

#include "host/bus_formula.h"
#include "host/bus_value.h"

namespace corv::find {
namespace {

using Kind = Value::Kind;

constexpr std::size_t kCharacters = 256;  // of the type character
constexpr std::string_view kLogic = "UX01ZWLH-";

std::string Lower(std::string_view text) {
    std::string lower(text);
    for (char& c : lower) {
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return lower;
}

// A literal of an enumeration as it is compared: a character as it is, without quotes, an
// identifier in lower case.
std::string Compared(std::string_view literal) {
    if (literal.size() == 3 && literal.front() == '\'' && literal.back() == '\'') {
        return std::string(literal.substr(1, 1));
    }
    std::string text = literal.starts_with('\\') ? std::string(literal) : Lower(literal);
    // the no-break space stands for a blank, which descriptions of types can't have there
    std::replace(text.begin(), text.end(), '\xA0', ' ');
    return text;
}

bool AreCharacters(const std::vector<std::string>& literals) {
    return !literals.empty() && std::all_of(literals.begin(), literals.end(),
                                            [](const auto& text) { return text.size() == 1; });
}

bool AreLogic(const std::vector<std::string>& literals) {
    return AreCharacters(literals) &&
           std::all_of(literals.begin(), literals.end(), [](const auto& text) {
               return kLogic.find(text.front()) != std::string_view::npos;
           });
}

// The literals of a list of many words, "idle, run or done".
std::string Listed(const std::vector<std::string>& words) {
    constexpr std::size_t kMost = 8;
    std::string text;
    for (std::size_t i = 0; i < std::min(words.size(), kMost); ++i) {
        text += i == 0 ? "" : i + 1 == words.size() ? " or " : ", ";
        text += words[i];
    }
    return text + (words.size() > kMost ? ", ..." : "");
}

template <class Number>
Number As(const host::LeafValue& value) {
    Number number{};
    std::memcpy(&number, value.bytes.data(), sizeof number);
    return number;
}

// 31, -3, 1.5e3; all of the text.
bool ReadDecimal(std::string_view text, double& number) {
    text.remove_prefix(text.starts_with('+') ? 1 : 0);
    const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
    return read.ec == std::errc() && read.ptr == text.data() + text.size();
}

// 16#1F#, 0x1F, x"1F" and the like, of 64 bits at most.
bool ReadBased(std::string_view text, double& number) {
    constexpr int kWidth = 64;
    const host::BusValue value =
        host::ReadBusValue(text, {kWidth, "01", host::BusType::Sign::Unsigned});
    if (!value.problem.empty() || value.characters.size() != kWidth) {
        return false;
    }
    std::uint64_t bits = 0;
    for (const char c : value.characters) {
        bits = bits << 1 | (c == '1' ? 1U : 0U);
    }
    number = static_cast<double>(bits);
    return true;
}

}  // namespace

SignalValue::SignalValue(ISignal& signal, std::string name)
    : name_(std::move(name)), type_(CString(signal.GetTypeInfo())) {
    ReadType(type_, signal);
}

void SignalValue::ReadType(const KTypeInfo& type, ISignal& signal) {
    const bool is_array = type.GetKind() == KTypeInfo::KindArray;
    const KTypeInfo& scalar = is_array ? type.GetArrayElementKTypeInfo() : type;
    is_scalar_ = type.IsScalar();
    for (int i = 0; i < scalar.GetNbOfValues(); ++i) {
        literals_.push_back(Compared(scalar.GetValue(i, true).View()));
    }
    if (literals_.size() == kCharacters) {  // some of whose literals are names: nul, del
        for (std::size_t i = 0; i < kCharacters; ++i) {
            literals_[i] = static_cast<char>(i);
        }
    }
    if (is_array ? type.GetNbOfDimensions() != 1 || !AreCharacters(literals_) : !is_scalar_) {
        return;
    }
    if (!literals_.empty()) {
        kind_ = AreLogic(literals_) ? Kind::Bits : Kind::Text;
        const bool boolean = literals_ == std::vector<std::string>{"false", "true"};
        is_condition_ = is_scalar_ && (kind_ == Kind::Bits || boolean);
        is_signed_ = is_array && host::BusTypeOf(type).sign == host::BusType::Sign::Signed;
        return;
    }
    kind_ = Kind::Number;
    is_real_ = type.GetKind() == KTypeInfo::KindFloat;
    const char* const units = signal.GetProperty("Units");
    units_ = host::ReadUnits(units != nullptr ? units : "");
    units_ = units_.empty() ? host::UnitsOfType(type.GetTypeIdentifier().View()) : units_;
}

bool SignalValue::HasLiteral(std::string_view text) const {
    return kind_ != Kind::None && is_scalar_ &&
           std::find(literals_.begin(), literals_.end(), Compared(text)) != literals_.end();
}

Value SignalValue::Read(std::span<const host::LeafValue> leaves) const {
    Value value{kind_, "", is_signed_, 0};
    for (const host::LeafValue& leaf : leaves) {
        if (!leaf.known) {
            return {};
        }
        if (kind_ == Kind::Number) {
            value.number = is_real_ ? As<double>(leaf) : As<std::int32_t>(leaf);
            return value;
        }
        const auto position = As<std::uint32_t>(leaf);
        if (position >= literals_.size()) {
            return {};
        }
        value.text += literals_[position];
        value.number = kind_ == Kind::Text && is_scalar_ ? position : -1;
    }
    return value;
}

bool SignalValue::IsTrue(const Value& value) {
    return value.text == "1" || value.text == "H" || value.text == "true";
}

bool SignalValue::IsUnknown(const Value& value) {
    return value.text.find_first_not_of("01LH") != std::string::npos;
}

Value SignalValue::Literal(std::string_view text, std::string& problem) const {
    switch (kind_) {
        case Kind::Bits:
            return BitsLiteral(text, problem);
        case Kind::Number:
            return NumberLiteral(text, problem);
        case Kind::Text:
            return TextLiteral(text, problem);
        default:
            problem = name_ + " is a record or an array; compare one of its parts";
            return {};
    }
}

Value SignalValue::BitsLiteral(std::string_view text, std::string& problem) const {
    const bool quoted = text.size() == 3 && text.front() == '\'';
    const std::string word(quoted ? text.substr(1, 1) : text);
    host::BusType bus{1, "", host::BusType::Sign::Open};
    if (is_scalar_) {
        for (const std::string& literal : literals_) {
            bus.letters += literal;
        }
    } else {
        bus = host::BusTypeOf(type_);
        bus.letters += '-';  // for ?=
    }
    host::BusValue value = host::ReadBusValue(word, bus);
    if (value.characters.empty() && value.problem.empty()) {
        value.characters = word;
    }
    for (char& c : value.characters) {
        const std::size_t at = std::string_view("uxzwlh").find(c);
        c = at != std::string_view::npos ? "UXZWLH"[at] : c;
    }
    const bool fits = static_cast<int>(value.characters.size()) == bus.width &&
                      value.characters.find_first_not_of(kLogic) == std::string::npos;
    // a number such as 10 is a decimal one here, without a warning that it looks like bits
    const bool is_decimal = word.find_first_not_of("0123456789") == std::string::npos;
    if (!fits || (!value.problem.empty() && !is_decimal)) {
        problem = !value.problem.empty()
                      ? value.problem
                      : "`" + std::string(text) + "` is not a value of " + name_ + ", which has " +
                            std::to_string(bus.width) + (bus.width == 1 ? " bit" : " bits");
        return {};
    }
    return {Kind::Bits, std::move(value.characters), is_signed_, 0};
}

Value SignalValue::NumberLiteral(std::string_view text, std::string& problem) const {
    Value value{Kind::Number, "", false, 0};
    if (!units_.empty()) {
        if (const auto number = host::ReadPhysical(text, units_)) {
            value.number = static_cast<double>(*number);
            return value;
        }
        problem = "`" + std::string(text) + "` is not a value of " + name_ +
                  "; write a number with a unit, such as 10" + units_.back().name;
        return {};
    }
    if (ReadDecimal(text, value.number) || ReadBased(text, value.number)) {
        return value;
    }
    problem = "`" + std::string(text) + "` is not a number, which " + name_ + " is";
    return {};
}

Value SignalValue::TextLiteral(std::string_view text, std::string& problem) const {
    if (!is_scalar_) {
        if (text.size() >= 2 && text.front() == '"') {
            return {Kind::Text, std::string(text.substr(1, text.size() - 2)), false, -1};
        }
        problem = name_ + " is a text; write it in quotes, \"" + std::string(text) + "\"";
        return {};
    }
    const auto found = std::find(literals_.begin(), literals_.end(), Compared(text));
    if (found != literals_.end()) {
        return {Kind::Text, *found, false, static_cast<double>(found - literals_.begin())};
    }
    problem = "`" + std::string(text) + "` is not a value of " + name_ + "; expected " +
              Listed(literals_);
    return {};
}

}  // namespace corv::find
