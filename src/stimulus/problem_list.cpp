#include "stimulus/problem_list.h"

#include <algorithm>
#include <iterator>

namespace corv::stimulus {
namespace {

void SortByPlace(std::vector<Problem>& problems) {
    std::stable_sort(problems.begin(), problems.end(),
                     [](const Problem& a, const Problem& b) { return a.position < b.position; });
}

}  // namespace

std::vector<Problem> ProblemList::Take() {
    SortByPlace(warnings_);
    Problems all = std::move(errors_);
    const std::size_t errors = all.size();
    std::move(warnings_.begin(), warnings_.end(), std::back_inserter(all));
    if (all.size() <= kMaxFormulaProblems) {
        SortByPlace(all);
        return all;
    }
    all.resize(kMaxFormulaProblems - 1);
    SortByPlace(all);
    const std::size_t from = all.back().position;
    all.push_back(
        {from, formula_.size() - from, "there are more problems than are listed",
         errors >= kMaxFormulaProblems ? Problem::Severity::Error : Problem::Severity::Warning});
    return all;
}

}  // namespace corv::stimulus
