#include "stimulus/vector_value.h"

#include <bit>
#include <cstdint>
#include <new>

#include "corv/util/dec_converter.h"
#include "stimulus/formula_text.h"
#include "util/words.h"

namespace corv::stimulus {
namespace {

constexpr util::Pairs kQuotesFirst{"\"'([{", "\"')]}"};
constexpr std::string_view kBlanksAndComma = " \n\t,";

std::string ToBits(std::int64_t number, int width) {
    CString bits;
    if (c_decConverter().MakeBin(static_cast<std::uint64_t>(number), width, bits) == 0) {
        throw std::bad_alloc();
    }
    return std::string(bits.View());
}

// Returns how many bits a number needs, in two's complement if it is written with a minus sign.
int BitsNeeded(std::string_view text, std::int64_t number) noexcept {
    constexpr int kBits = 64;
    if (text.find('-') == std::string_view::npos) {
        return kBits - std::countl_zero(static_cast<std::uint64_t>(number));
    }
    const auto pattern = static_cast<std::uint64_t>(number < 0 ? ~number : number);
    return kBits - std::countl_zero(pattern) + 1;
}

}  // namespace

std::optional<VectorValue> VectorValue::Read(std::string_view word, VectorShape shape) {
    VectorValue value;
    if (shape.InWords()) {
        word = util::TrimEnds(word, kBlanksAndComma);
    }
    value.text_ = util::StripPair(word, kQuotesFirst);
    if (value.text_.empty()) {
        return std::nullopt;
    }
    if (IsParameter(value.text_)) {
        value.kind_ = Kind::Repeat;
        return value;
    }
    // A number in any radix first; digits without a mark only as binary, since "10" of width 2 is
    // two characters.
    const CString text(value.text_);
    std::int64_t number = 0;
    if (c_decConverter().Convert(text, &number) != 0 ||
        (!shape.InWords() && shape.width >= 0 && c_decConverter().Convert(text, 2, &number) != 0)) {
        value.bits_ = ToBits(number, shape.width);
        const int needed = BitsNeeded(value.text_, number);
        value.bits_of_cut_number_ = needed > shape.width ? needed : 0;
    } else if (shape.InWords()) {
        value.kind_ = Kind::Words;
        return value;
    } else if (static_cast<std::int64_t>(value.text_.size()) != shape.width) {
        return std::nullopt;
    }
    if (!shape.InWords() && word[0] == '"') {
        value.kind_ = Kind::QuotedCharacters;
    }
    return value;
}

std::size_t VectorValue::CountWords() const noexcept {
    std::size_t words = 0;
    std::string_view rest = kind_ == Kind::Words ? text_ : std::string_view();
    while (!util::TakeWord(rest, kQuotesFirst, kBlanksAndComma).empty()) {
        ++words;
    }
    return words;
}

bool VectorValue::AppendNext(std::string& out) {
    const std::string_view text = Text();
    if (kind_ == Kind::Repeat) {
        out += text;
        return true;
    }
    if (kind_ == Kind::Words) {
        std::string_view rest = text.substr(at_);
        const std::string_view word = util::TakeWord(rest, kQuotesFirst, kBlanksAndComma);
        at_ = text.size() - rest.size();
        out += word;
        return !word.empty();
    }
    if (at_ == text.size()) {
        return false;
    }
    const std::string_view quote = kind_ == Kind::QuotedCharacters ? "'" : "";
    out += quote;
    out += text[at_++];
    out += quote;
    return true;
}

}  // namespace corv::stimulus
