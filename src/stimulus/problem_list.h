#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "corv/stimulus/check_formula.h"

namespace corv::stimulus {

// Collects the problems of one formula in the order in which they are found. Errors and warnings
// are kept separately, so that many warnings cannot displace an error.
class ProblemList {
public:
    struct Place {
        std::size_t position;
        std::size_t length;
    };

    explicit ProblemList(std::string_view formula) : formula_(formula) {}

    // Returns where a word, or the text from one word to the end of another, is in the formula. The
    // words must be views of it.
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

    // Returns the problems in the order of the text. If there are more than kMaxFormulaProblems,
    // errors are kept first, and the last problem says that there are more; it is an error if
    // errors were left out.
    std::vector<FormulaProblem> Take();

private:
    using Problems = std::vector<FormulaProblem>;

    // One more than can be listed is kept, to know that there are more.
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
