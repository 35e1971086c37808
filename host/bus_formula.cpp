// Replaces values such as X"A5" or 165 in a formula by characters, which are all that stimuli read,
// and translates the problems found in the result back to what the user wrote.

#include "host/bus_formula.h"

#include <algorithm>

namespace corv::host {
namespace {

// Of too many problems the last one says so.
void Cap(std::vector<Problem>& problems) {
    if (problems.size() > kMaxFormulaProblems) {
        problems.resize(kMaxFormulaProblems);
        problems.back().severity = Problem::Severity::Error;
        problems.back().sentence = "there are more problems from here on";
    }
}

}  // namespace

BusType BusTypeOf(const KTypeInfo& type) {
    BusType bus;
    bus.width = static_cast<int>(type.GetNbOfElements());
    const KTypeInfo& element = type.GetArrayElementKTypeInfo();
    for (int i = 0; i < element.GetNbOfValues(); ++i) {
        bus.letters += element.GetValue(i, false).View();
    }
    if (bus.letters.find('Z') != std::string::npos && bus.letters.find('z') == std::string::npos) {
        bus.letters += "uxzwlh";  // as std_logic reads them
    }
    CString name = type.GetTypeIdentifier();
    name.MakeLower();
    const std::string_view text = name.View();
    const bool is_signed = text.starts_with("signed") || text.starts_with("u_signed") ||
                           text.starts_with("unresolved_signed") || text.starts_with("sfixed");
    bus.sign = is_signed ? BusType::Sign::Signed : BusType::Sign::Unsigned;
    return bus;
}

BusFormula::BusFormula(const std::string& formula, const BusType& type)
    : formula_(formula), width_(type.width) {
    std::size_t taken = 0;
    const std::vector<WordPlace> values = ValueWords(formula);
    has_values_ = !values.empty();
    for (const WordPlace place : values) {
        const std::string word = formula.substr(place.position, place.length);
        BusValue value = ReadBusValue(word, type);
        const bool refused = value.characters.empty() && !value.problem.empty();
        if (!value.problem.empty()) {
            problems_.push_back({place.position, place.length, value.problem,
                                 refused ? Problem::Severity::Error : Problem::Severity::Warning});
        }
        if (refused) {
            // any value that fits will do; it only has to cause no further problems
            value.characters.assign(static_cast<std::size_t>(type.width), '0');
        }
        if (value.characters.empty()) {
            unread_.push_back(place);
            continue;
        }
        // a value in quotes or parentheses may contain blanks, so its replacement needs quotes too
        const std::string_view quote = word[0] == '"' || word[0] == '(' ? "\"" : "";
        text_.append(formula, taken, place.position - taken);
        text_.append(quote).append(value.characters).append(quote);
        taken = place.position + place.length;
    }
    text_.append(formula, taken);
}

// The values are read here, so the library checks the words around them, and what it alone reads: a
// value, a counter, the compact notation.
std::vector<Problem> BusFormula::Check(TimeUnit default_unit) const {
    if (!has_values_) {
        return CheckVectorFormula(formula_.c_str(), width_, 1, default_unit);
    }
    std::vector<Problem> all = problems_;
    const auto add = [&](std::vector<Problem> problems, std::size_t offset) {
        for (Problem& problem : problems) {
            problem.position += offset;
            all.push_back(std::move(problem));
        }
    };
    add(CheckFormula(formula_.c_str(), default_unit), 0);
    for (const WordPlace value : unread_) {
        const std::string word = formula_.substr(value.position, value.length);
        add(CheckVectorFormula(word.c_str(), width_, 1), value.position);
    }
    std::stable_sort(all.begin(), all.end(),
                     [](const Problem& a, const Problem& b) { return a.position < b.position; });
    all.erase(std::unique(all.begin(), all.end()), all.end());
    Cap(all);
    return all;
}

}  // namespace corv::host
