#include "stremo/vcd/survey.h"

#include <algorithm>
#include <string>

namespace corv::vcd {
namespace {

// The scanner's sink that looks only at texts and integers.
class Survey {
public:
    explicit Survey(Declarations& declarations)
        : declarations_(declarations), has_number_(declarations.variables.size()) {
        for (const Variable& variable : declarations.variables) {
            open_ += variable.is_open || variable.kind == Kind::kInteger ? 1 : 0;
        }
    }

    // Returns whether everything is decided.
    bool done() const noexcept { return open_ == 0; }

    void Time(std::uint64_t, const Byte*) noexcept {}
    bool Scalar(unsigned level, const Code& code);
    bool Vector(const Digits& digits, const Code& code);
    bool Real(std::string_view, const Code& code) const noexcept { return Has(code); }
    bool Port(std::string_view, const Code& code) const noexcept { return Has(code); }
    bool Text(std::string_view text, const Code& code);
    void BeginBlock(std::string_view, const Byte*) noexcept {}
    void EndBlock() noexcept {}
    void Note(Problem, const Byte*, std::string_view) noexcept {}

private:
    bool Has(const Code& code) const noexcept {
        return declarations_.codes.Find(code) != recording::kNone;
    }
    bool Value(bool is_number, const Code& code);

    Declarations& declarations_;
    std::vector<bool> has_number_;  // by variable
    std::size_t open_ = 0;          // the variables that may still change
    std::string characters_;
};

bool Survey::Scalar(unsigned level, const Code& code) {
    return Value(level == kLevel0 || level == kLevel1, code);
}

bool Survey::Vector(const Digits& digits, const Code& code) {
    return Value(digits.two_valued, code);
}

// Notes a value of an integer. Before its first number an unknown value only means that it has none
// yet; after it, the integer needs a type that can show both.
bool Survey::Value(bool is_number, const Code& code) {
    const std::uint32_t first = declarations_.codes.Find(code);
    for (std::uint32_t i = first; i != recording::kNone; i = declarations_.variables[i].next) {
        Variable& variable = declarations_.variables[i];
        if (variable.kind != Kind::kInteger) {
            continue;
        }
        if (!is_number && has_number_[i]) {
            variable.kind = Kind::kBits;
            variable.is_signed = true;
            --open_;
        }
        has_number_[i] = has_number_[i] || is_number;
    }
    return first != recording::kNone;
}

bool Survey::Text(std::string_view text, const Code& code) {
    Unescape(text, characters_);
    const auto length =
        static_cast<std::uint32_t>(std::min<std::size_t>(characters_.size(), kMostText));
    const std::uint32_t first = declarations_.codes.Find(code);
    for (std::uint32_t i = first; i != recording::kNone; i = declarations_.variables[i].next) {
        Variable& variable = declarations_.variables[i];
        if (variable.is_open && variable.width < length) {
            variable.width = length;
            open_ -= length == kMostText ? 1 : 0;
        }
    }
    return first != recording::kNone;
}

}  // namespace

void SurveyChanges(const platform::FileContent& content, const Byte* end,
                   Declarations& declarations, const Passed& passed) {
    Survey survey(declarations);
    ScanContent(
        content, survey, declarations.changes, end, [&] { return survey.done(); }, passed);
}

}  // namespace corv::vcd
