// Replaces values such as X"A5" or 165 in a formula by characters, which are all that stimuli read,
// and translates the problems found in the result back to what the user wrote.

#include "host/bus_formula.h"

#include <algorithm>

#include "host/formula_words.h"

namespace corv::host {
namespace {

constexpr std::size_t kMostQuoted = 40;  // characters of a word that a sentence quotes

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

BusFormula::BusFormula(const std::string& formula, const BusType& type) {
    std::size_t taken = 0;
    for (const WordPlace place : ValueWords(formula)) {
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
        if (value.characters.empty() || value.characters == word) {
            continue;
        }
        // a value in quotes or parentheses may contain blanks, so its replacement needs quotes too
        const std::string_view quote = word[0] == '"' || word[0] == '(' ? "\"" : "";
        std::string characters(quote);
        characters.append(value.characters).append(quote);
        text_.append(formula, taken, place.position - taken);
        taken = place.position + place.length;
        replaced_.push_back({text_.size(), word, characters.size(), place.position});
        text_ += characters;
    }
    text_.append(formula, taken);
}

std::size_t BusFormula::PositionOf(std::size_t at) const {
    const auto behind =
        std::upper_bound(replaced_.begin(), replaced_.end(), at,
                         [](std::size_t place, const Replaced& r) { return place < r.at; });
    if (behind == replaced_.begin()) {
        return at;
    }
    const Replaced& last = *(behind - 1);
    return at < last.at + last.length
               ? last.position
               : last.position + last.written.size() + at - last.at - last.length;
}

// Translates a problem of the converted text back to the formula: its place, and any value that its
// sentence quotes.
void BusFormula::MoveBack(Problem& problem) const {
    const std::size_t begin = PositionOf(problem.position);
    const std::size_t end = problem.position + problem.length;
    for (const Replaced& replaced : replaced_) {
        const std::string quoted =
            "`" + text_.substr(replaced.at, std::min(replaced.length, kMostQuoted));
        if (replaced.at < problem.position || replaced.at >= end) {
            continue;
        }
        const std::size_t found = problem.sentence.find(quoted);
        if (found != std::string::npos) {
            const std::size_t close = problem.sentence.find('`', found + 1);
            problem.sentence.replace(found + 1, close - found - 1, replaced.written);
        }
    }
    const auto inside = std::find_if(replaced_.begin(), replaced_.end(), [&](const Replaced& r) {
        return r.at < end && end <= r.at + r.length;
    });
    problem.length = inside != replaced_.end() ? inside->position + inside->written.size() - begin
                                               : PositionOf(end) - begin;
    problem.position = begin;
}

std::vector<Problem> BusFormula::Problems(std::vector<Problem> of_text) const {
    std::vector<Problem> all = problems_;
    for (Problem& problem : of_text) {
        MoveBack(problem);
        all.push_back(std::move(problem));
    }
    std::stable_sort(all.begin(), all.end(),
                     [](const Problem& a, const Problem& b) { return a.position < b.position; });
    if (all.size() > kMaxFormulaProblems) {
        all.resize(kMaxFormulaProblems);
        all.back().severity = Problem::Severity::Error;
        all.back().sentence = "there are more problems from here on";
    }
    return all;
}

}  // namespace corv::host
