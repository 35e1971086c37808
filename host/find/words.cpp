#include "host/find/words.h"

#include <algorithm>
#include <array>

namespace corv::find {
namespace {

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}
bool IsLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == '$' ||
           static_cast<unsigned char>(c) >= 0x80;
}
bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}
char Lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// 3, 7:4, 7 downto 4, 1,2
bool IsIndex(std::string_view text) {
    std::string index(text);
    for (const std::string_view word : {"downto", "to"}) {
        if (const std::size_t at = index.find(word); at != std::string::npos) {
            index.replace(at, word.size(), ":");
        }
    }
    return index.find_first_not_of(" 0123456789:,-") == std::string::npos &&
           index.find_first_of("0123456789") != std::string::npos;
}

class WordReader {
public:
    explicit WordReader(std::string_view text) : text_(text) {}

    Word Read() {
        while (IsBlank(At(0))) {
            ++at_;
        }
        const std::size_t from = at_;
        const Word::Kind kind = ReadKind();
        return {kind, from, text_.substr(from, at_ - from)};
    }

private:
    char At(std::size_t ahead) const {
        return at_ + ahead < text_.size() ? text_[at_ + ahead] : '\0';
    }

    Word::Kind ReadKind() {
        const char c = At(0);
        if (at_ == text_.size()) {
            return Word::Kind::End;
        }
        if (IsDigit(c) || ((c == '-' || c == '+') && IsDigit(At(1)))) {
            return ReadNumber();
        }
        if (c == '"' || c == '\'') {
            ReadQuoted();
            return Word::Kind::Literal;
        }
        if (IsLetter(c) || c == '\\') {
            return ReadName();
        }
        return ReadSign();
    }

    // Digits with all that belongs to them: 1.5e-3, 0x1F, 16#1F#, 8'hA5, 4X"5", a unit, which may
    // stand after a blank.
    Word::Kind ReadNumber() {
        ++at_;
        while (IsDigit(At(0)) || IsLetter(At(0)) || At(0) == '#' || At(0) == '.' ||
               (At(0) == '\'' && IsLetter(At(1))) ||
               ((At(0) == '-' || At(0) == '+') && Lower(text_[at_ - 1]) == 'e' && IsDigit(At(1)))) {
            ++at_;
        }
        if (At(0) == '"') {
            ReadQuoted();
        }
        const std::size_t end = at_;
        while (At(0) == ' ') {
            ++at_;
        }
        const std::size_t unit = at_;
        while (IsLetter(At(0))) {
            ++at_;
        }
        constexpr std::array kUnits{"fs", "ps", "ns", "us", "ms", "s", "sec", "min", "hr"};
        const std::string_view word = text_.substr(unit, at_ - unit);
        at_ = std::find(kUnits.begin(), kUnits.end(), word) != kUnits.end() ? at_ : end;
        return Word::Kind::Literal;
    }

    void ReadQuoted() {
        const std::size_t from = at_;
        const char quote = At(0);
        const std::size_t end = text_.find(quote, at_ + (quote == '\'' ? 2 : 1));
        if (end == std::string_view::npos) {
            throw Refusal(from, text_.size() - from,
                          std::string("the closing ") + quote + " is missing");
        }
        at_ = end + 1;
    }

    Word::Kind ReadName() {
        while (true) {
            if (At(0) == '\\') {
                ReadExtended();
            } else {
                while (IsLetter(At(0)) || IsDigit(At(0))) {
                    ++at_;
                }
            }
            if (At(0) == '"') {
                ReadQuoted();
                return Word::Kind::Literal;
            }
            ReadIndices();
            const bool goes_on = At(0) == '.' || At(0) == '/' || At(0) == '\\';
            if (!goes_on || !(IsLetter(At(1)) || At(1) == '\\' || At(0) == '\\')) {
                return Word::Kind::Name;
            }
            at_ += At(0) == '\\' ? 0U : 1U;
        }
    }

    void ReadExtended() {
        const std::size_t from = at_;
        const std::size_t end = text_.find('\\', at_ + 1);
        if (end == std::string_view::npos) {
            throw Refusal(from, text_.size() - from, "the closing \\ of the name is missing");
        }
        at_ = end + 1;
    }

    // (3), (7 downto 4), [7:4] and several of them, right after a name.
    void ReadIndices() {
        while (At(0) == '(' || At(0) == '[') {
            const std::size_t end = text_.find(At(0) == '(' ? ')' : ']', at_);
            if (end == std::string_view::npos || !IsIndex(text_.substr(at_ + 1, end - at_ - 1))) {
                return;
            }
            at_ = end + 1;
        }
    }

    Word::Kind ReadSign() {
        constexpr std::array<std::string_view, 10> kSigns{
            "?=", "/=", "!=", "<=", ">=", "==", "=", "<", ">", "("};
        for (const std::string_view sign : kSigns) {
            if (text_.substr(at_).starts_with(sign)) {
                at_ += sign.size();
                return Word::Kind::Sign;
            }
        }
        if (At(0) != ')') {
            throw Refusal(at_, 1, std::string("`") + At(0) + "` means nothing here");
        }
        ++at_;
        return Word::Kind::Sign;
    }

    std::string_view text_;
    std::size_t at_ = 0;
};

}  // namespace

bool Word::Is(std::string_view wanted) const {
    return (kind == Kind::Name || kind == Kind::Sign) &&
           std::equal(text.begin(), text.end(), wanted.begin(), wanted.end(),
                      [](char a, char b) { return Lower(a) == b; });
}

std::vector<Word> ReadWords(std::string_view text) {
    std::vector<Word> words;
    WordReader reader(text);
    do {
        words.push_back(reader.Read());
    } while (words.back().kind != Word::Kind::End);
    return words;
}

}  // namespace corv::find
