// Reads the values that users write for a vector: bits, VHDL and Verilog literals, C prefixes and
// numbers. Several forms look alike, so their order decides, and a doubtful reading comes with a
// remark.

#include "host/bus_value.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <optional>
#include <vector>

#include "host/name_symbols.h"

namespace corv::host {
namespace {

constexpr std::string_view kLogicLetters = "UX01ZWLH-uxzwlh";

int DigitValue(char c) {
    c = LowerCase(c);
    return c >= '0' && c <= '9' ? c - '0' : c >= 'a' && c <= 'z' ? c - 'a' + 10 : 99;
}

// The meaning of a text: bits, or a number without a certain width.
struct Reading {
    std::string bits;  // the most significant first; a number has no leading zeros
    bool number = false;
    bool decimal = false;
    bool negative = false;
    std::size_t each = 1;  // bits per digit
};

std::string WithoutUnderscores(std::string_view text) {
    std::string digits(text);
    digits.erase(std::remove(digits.begin(), digits.end(), '_'), digits.end());
    return digits;
}

// Returns the number's bits, nullopt if a character is not bits per digit, at least. A number that
// is certainly too wide for `width` becomes just one bit wider than that, so that a text of a
// million digits is not multiplied out.
std::optional<std::string> NumberBits(std::string_view text, int radix, int width) {
    std::string digits = WithoutUnderscores(text);
    if (digits.empty() ||
        std::any_of(digits.begin(), digits.end(), [&](char c) { return DigitValue(c) >= radix; })) {
        return std::nullopt;
    }
    digits.erase(0, std::min(digits.find_first_not_of('0'), digits.size()));
    const std::size_t least = radix >= 16 ? 4 : radix >= 8 ? 3 : radix >= 4 ? 2 : 1;  // a digit
    if (digits.size() * least > static_cast<std::size_t>(width) + least) {
        return std::string(static_cast<std::size_t>(width) + 1, '1');
    }
    // long multiplication, since vectors can have 65,536 bits
    std::vector<std::uint32_t> words;  // the least significant first
    for (const char digit : digits) {
        std::uint64_t carry = static_cast<std::uint64_t>(DigitValue(digit));
        for (std::uint32_t& word : words) {
            carry += std::uint64_t{word} * static_cast<std::uint64_t>(radix);
            word = static_cast<std::uint32_t>(carry);
            carry >>= 32;
        }
        if (carry != 0) {
            words.push_back(static_cast<std::uint32_t>(carry));
        }
    }
    std::string bits;
    for (auto word = words.rbegin(); word != words.rend(); ++word) {
        for (int bit = 31; bit >= 0; --bit) {
            bits += (*word >> bit & 1U) != 0 ? '1' : '0';
        }
    }
    return bits.substr(std::min(bits.find('1'), bits.size()));
}

std::optional<Reading> ReadNumber(std::string_view digits, int radix, int width) {
    if (auto bits = NumberBits(digits, radix, width)) {
        return Reading{std::move(*bits), true, radix == 10, false, 1};
    }
    return std::nullopt;
}

// Returns the radix that a letter denotes, 0 for other letters.
int RadixOf(char letter) {
    switch (LowerCase(letter)) {
        case 'b':
            return 2;
        case 'o':
            return 8;
        case 'd':
            return 10;
        case 'x':
        case 'h':
            return 16;
        default:
            return 0;
    }
}

// Returns the bits of a bit string's digits; letters that are not digits fill all bits of their
// digit.
std::optional<Reading> ReadBitString(std::string_view text, int radix) {
    Reading reading;
    reading.each = radix == 16 ? 4 : radix == 8 ? 3 : 1;
    for (const char c : WithoutUnderscores(text)) {
        const int value = DigitValue(c);
        if (value < radix) {
            for (std::size_t bit = reading.each; bit-- > 0;) {
                reading.bits += (value >> bit & 1) != 0 ? '1' : '0';
            }
        } else if (kLogicLetters.find(c) != std::string_view::npos) {
            reading.bits.append(reading.each, c);
        } else {
            return std::nullopt;
        }
    }
    return reading.bits.empty() ? std::nullopt : std::optional(reading);
}

// X"A5", 8UX"A5".
std::optional<Reading> ReadLiteral(std::string_view word, int width) {
    const std::size_t quote = word.find('"');
    if (quote == std::string_view::npos || quote == 0 || word.size() < quote + 2 ||
        !word.ends_with('"')) {
        return std::nullopt;
    }
    const std::string_view text = word.substr(quote + 1, word.size() - quote - 2);
    std::string_view prefix = word.substr(0, quote);
    // VHDL has only X for hexadecimal bit strings
    const int radix = LowerCase(prefix.back()) == 'h' ? 0 : RadixOf(prefix.back());
    prefix.remove_suffix(1);
    const bool sign = !prefix.empty() && (LowerCase(prefix.back()) == 's');
    if (sign || (!prefix.empty() && LowerCase(prefix.back()) == 'u')) {
        prefix.remove_suffix(1);
    }
    std::size_t size = 0;
    const auto read = std::from_chars(prefix.data(), prefix.data() + prefix.size(), size);
    if (radix == 0 || (!prefix.empty() && read.ptr != prefix.data() + prefix.size()) ||
        (!prefix.empty() && (size == 0 || size > static_cast<std::size_t>(width) + 4))) {
        return std::nullopt;
    }
    auto reading = radix == 10 ? ReadNumber(text, 10, width) : ReadBitString(text, radix);
    if (reading && size > reading->bits.size()) {
        const char fill = sign && !reading->number ? reading->bits[0] : '0';
        reading->bits.insert(0, size - reading->bits.size(), fill);
        reading->number = false;
    }
    return reading;
}

// 0xA5, 16#A5#, 8'hA5.
std::optional<Reading> ReadPrefixed(std::string_view word, int width) {
    const std::size_t hash = word.find('#');
    const std::size_t tick = word.find('\'');
    if (hash != std::string_view::npos) {
        int radix = 0;
        const auto read = std::from_chars(word.data(), word.data() + hash, radix);
        std::string_view digits = word.substr(hash + 1);
        digits.remove_suffix(digits.ends_with('#') ? 1 : 0);
        return read.ptr == word.data() + hash && radix >= 2 && radix <= 36
                   ? ReadNumber(digits, radix, width)
                   : std::nullopt;
    }
    if (tick != std::string_view::npos && tick + 1 < word.size() && !word.ends_with('\'') &&
        word.substr(0, tick).find_first_not_of("0123456789") == std::string_view::npos) {
        const int radix = RadixOf(word[tick + 1]);
        return radix > 0 ? ReadNumber(word.substr(tick + 2), radix, width) : std::nullopt;
    }
    const int radix = word.size() > 2 && word[0] == '0' ? RadixOf(word[1]) : 0;
    return radix > 0 && radix != 10 && LowerCase(word[1]) != 'h'
               ? ReadNumber(word.substr(2), radix, width)
               : std::nullopt;
}

std::optional<Reading> ReadDecimal(std::string_view word, int width) {
    const bool negative = word.starts_with('-');
    auto reading = ReadNumber(word.substr(negative ? 1 : 0), 10, width);
    if (reading) {
        reading->negative = negative && !reading->bits.empty();
    }
    return reading;
}

// Returns the letter that (others => '0') names.
std::optional<char> ReadOthers(std::string_view word) {
    std::string text;
    std::copy_if(word.begin(), word.end(), std::back_inserter(text),
                 [](char c) { return c != ' ' && c != '\t' && c != '\n'; });
    std::string lower = text;
    std::transform(lower.begin(), lower.end(), lower.begin(), LowerCase);
    // the letter is the only one of the 13 characters that varies
    return lower.size() == 13 && lower.starts_with("(others=>'") && lower.ends_with("')")
               ? std::optional(text[10])
               : std::nullopt;
}

// Returns whether the whole text is in quotes of one kind.
bool IsQuoted(std::string_view word) {
    return word.size() >= 2 && (word[0] == '"' || word[0] == '\'') && word.back() == word[0];
}

bool IsBits(std::string_view text) {
    return !text.empty() && text.find_first_not_of("01") == std::string_view::npos;
}

// Reads one value for a vector of a certain type.
class Reader {
public:
    Reader(std::string_view word, const BusType& type) : word_(word), type_(type) {}

    // Forms with a mark come first, since they can be nothing else. Characters that fit exactly are
    // taken as such before digits are tried, so that 0101 for four bits means bits and not a
    // number.
    BusValue Read() const {
        const auto width = static_cast<std::size_t>(type_.width);
        if (auto reading = ReadLiteral(word_, type_.width)) {
            return Fit(*reading);
        }
        if (auto reading = ReadPrefixed(word_, type_.width)) {
            return Fit(*reading);
        }
        if (const auto letter = ReadOthers(word_)) {
            return Checked(std::string(width, *letter));
        }
        const bool quoted = IsQuoted(word_);
        const std::string_view text = quoted ? word_.substr(1, word_.size() - 2) : word_;
        const bool exact = text.size() == width;
        if (exact && (quoted || text.find_first_not_of(Letters()) == std::string_view::npos)) {
            return Checked(std::string(text));
        }
        if (IsBits(text) && (quoted || text[0] == '0') && text != "0") {
            return Fit(*ReadBitString(text, 2));
        }
        if (const auto reading = quoted ? std::nullopt : ReadDecimal(text, type_.width)) {
            BusValue value = Fit(*reading);
            if (value.problem.empty() && IsBits(text) && text.size() > 1) {
                value.problem = Quoted() + " is taken as a decimal number" + WriteBits(text);
            }
            return value;
        }
        return exact                                       ? Checked(std::string(text))
               : word_.find('#') != std::string_view::npos ? BusValue()
                                                           : Refuse(text, quoted);
    }

private:
    std::string_view Letters() const {
        return type_.letters.empty() ? kLogicLetters : std::string_view(type_.letters);
    }
    std::string Quoted() const {
        constexpr std::size_t kMost = 40;
        return "`" + std::string(word_.substr(0, kMost)) + (word_.size() > kMost ? "...`" : "`");
    }
    std::string Bits() const {
        return std::to_string(type_.width) + (type_.width == 1 ? " bit" : " bits");
    }

    BusValue Refuse(std::string_view text, bool quoted) const {
        const bool hex = NumberBits(text, 16, type_.width).has_value();
        if (quoted || text.size() > 40) {
            return {"", Quoted() + " has " + std::to_string(text.size()) + " characters for " +
                            Bits() +
                            (hex && !IsBits(text) && text.size() < 40
                                 ? "; did you mean `X\"" + std::string(text) + "\"`?"
                                 : "")};
        }
        return {"", Quoted() + " is not a value of " + Bits() +
                        (hex ? "; did you mean `X\"" + std::string(text) + "\"`?"
                             : "; write them as \"01XZ\", X\"A5\" or a number")};
    }

    // Returns the characters if all of them are letters of the type.
    BusValue Checked(std::string characters, std::string problem = "") const {
        const std::size_t odd = characters.find_first_not_of(Letters());
        if (odd == std::string::npos) {
            return {std::move(characters), std::move(problem)};
        }
        const std::string sentence = "`" + characters.substr(odd, 1) + "` in " + Quoted() +
                                     " is not a value of " +
                                     (type_.letters.empty() ? "std_logic" : "the elements");
        const bool mixed = characters.find_first_of("01") != std::string::npos;
        return type_.letters.empty() ? BusValue{std::move(characters), mixed ? sentence : ""}
                                     : BusValue{"", sentence};
    }

    BusValue Fit(const Reading& reading) const {
        if (reading.negative) {
            return Negative(reading.bits);
        }
        const auto width = static_cast<std::size_t>(type_.width);
        std::string bits = reading.bits;
        const std::size_t cut = bits.size() - std::min(bits.size(), width);
        if (bits.substr(0, cut).find_first_not_of('0') != std::string::npos) {
            return {"", Quoted() + " does not fit " + Bits() + Largest(reading)};
        }
        bits.erase(0, cut);
        const std::size_t filled = width - bits.size();
        bits.insert(0, filled, '0');
        return Checked(std::move(bits), Remark(reading, cut, filled));
    }

    std::string Largest(const Reading& reading) const {
        if (reading.decimal && IsBits(word_)) {
            return " as a decimal number" + WriteBits(word_);
        }
        return reading.decimal && type_.width < 32
                   ? ", which count up to " + std::to_string((std::int64_t{1} << type_.width) - 1)
                   : "";
    }

    // Suggests how to write digits that look like bits but were read as a decimal number.
    std::string WriteBits(std::string_view digits) const {
        const auto width = static_cast<std::size_t>(type_.width);
        const std::size_t filled = width <= 40 ? width - std::min(digits.size(), width) : 0;
        return "; write bits as " + std::string(filled == 0 ? "b\"" : "\"") +
               std::string(filled, '0') + std::string(digits) + "\"";
    }

    // Says what was changed, if the form implies a number of bits.
    std::string Remark(const Reading& reading, std::size_t cut, std::size_t filled) const {
        const auto width = static_cast<std::size_t>(type_.width);
        if (reading.number) {
            return reading.decimal && type_.sign == BusType::Sign::Signed &&
                           reading.bits.size() == width
                       ? Quoted() + " is past the numbers of signed " + Bits() +
                             " and reads as a negative one"
                       : "";
        }
        const std::string had = Quoted() + " has " + std::to_string(reading.bits.size()) +
                                " bits for " + std::to_string(width);
        return filled > 0            ? had + "; leading zeros are added"
               : cut >= reading.each ? had + "; leading zeros are dropped"
                                     : "";
    }

    BusValue Negative(std::string bits) const {
        const auto width = static_cast<std::size_t>(type_.width);
        if (type_.sign == BusType::Sign::Unsigned) {
            return {"", Quoted() + " is negative, and the vector is not signed"};
        }
        const bool lowest = bits.size() == width && bits.find('1', 1) == std::string::npos;
        if (bits.size() >= width && !lowest) {
            return {"", Quoted() + " does not fit " + Bits() + " with a sign"};
        }
        bits.insert(0, width - bits.size(), '0');
        const std::size_t last = bits.rfind('1');  // two's complement: invert the bits before it
        for (std::size_t i = 0; i < last; ++i) {
            bits[i] = bits[i] == '0' ? '1' : '0';
        }
        return Checked(std::move(bits));
    }

    std::string_view word_;
    const BusType& type_;
};

}  // namespace

BusValue ReadBusValue(std::string_view word, const BusType& type) {
    return Reader(word, type).Read();
}

}  // namespace corv::host
