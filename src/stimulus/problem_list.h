#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "corv/stimulus/check_formula.h"

namespace corv::stimulus {

// The problems of one formula while they are found, in any order.
class ProblemList {
public:
    struct Place {
        std::size_t position;
        std::size_t length;
    };

    explicit ProblemList(std::string_view formula) : formula_(formula) {}

    // Where a word, or the text from one word to the end of another, stands in the formula.
    Place PlaceOf(std::string_view first, std::string_view last) const noexcept {
        const auto begin = static_cast<std::size_t>(first.data() - formula_.data());
        const auto end = static_cast<std::size_t>(last.data() - formula_.data()) + last.size();
        return {begin, end - begin};
    }
    Place PlaceOf(std::string_view word) const noexcept { return PlaceOf(word, word); }
    Place Whole() const noexcept { return {0, formula_.size()}; }

    void Error(Place place, std::string sentence) {
        Add(errors_, place, FormulaProblem::Severity::Error, std::move(sentence));
    }
    void Warn(Place place, std::string sentence) {
        Add(warnings_, place, FormulaProblem::Severity::Warning, std::move(sentence));
    }
    bool HasErrors() const noexcept { return !errors_.empty(); }

    // The problems in the order of the text. Of more than kMaxFormulaProblems the errors are kept
    // first; the last problem then says that there are more, as an error if some of these are.
    std::vector<FormulaProblem> Take();

private:
    using Problems = std::vector<FormulaProblem>;

    // One more than is listed is kept, to tell that there are more.
    static void Add(Problems& problems, Place place, FormulaProblem::Severity severity,
                    std::string sentence) {
        if (problems.size() <= kMaxFormulaProblems) {
            problems.push_back({place.position, place.length, severity, std::move(sentence)});
        }
    }

    std::string_view formula_;
    Problems errors_;
    Problems warnings_;
};

}  // namespace corv::stimulus
