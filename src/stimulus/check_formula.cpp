// Checks a formula by its kind. The checks use the readers that CStimulus uses, so what they accept
// and what evaluation sees cannot drift apart.

#include "corv/stimulus/check_formula.h"

#include <optional>
#include <string_view>

#include "corv/stimulus/formula_parser.h"
#include "platform/guard.h"
#include "stimulators/counter_check.h"
#include "stimulus/check_custom_formula.h"
#include "stimulus/formula_check.h"
#include "stimulus/formula_text.h"

namespace corv {
namespace {

using stimulus::CheckedAs;
using stimulus::FormulaKind;
using stimulus::ProblemList;

void CheckKind(std::string_view formula, const CheckedAs& as, ProblemList& problems) {
    switch (stimulus::FindFormulaKind(formula)) {
        case FormulaKind::Ordinary:
            stimulus::CheckOrdinary(formula, as, problems);
            break;
        case FormulaKind::Notation:
            stimulus::CheckNotation(formula, as, problems);
            break;
        case FormulaKind::Counter:
            if (auto problem = stimulators::CheckCounter(formula, !as.vector)) {
                problems.Error(problems.PlaceOf(problem->place), std::move(problem->sentence));
            }
            break;
        case FormulaKind::Custom:
            if (auto problem = stimulus::CheckCustomFormula(formula, !as.vector)) {
                const auto place = problems.PlaceOf(problem->place);
                problem->warning ? problems.Warn(place, std::move(problem->sentence))
                                 : problems.Error(place, std::move(problem->sentence));
            }
            break;
    }
}

std::vector<FormulaProblem> Check(std::string_view formula, const CheckedAs& as) {
    ProblemList problems(formula);
    if (formula.empty()) {
        problems.Error(problems.Whole(),
                       "the formula is empty; write values with their times, such as "
                       "`0 0, 1 10ns`");
    } else if (as.vector && as.vector->width > kMaxVectorWidth) {
        problems.Error(problems.Whole(),
                       "a vector has at most " + std::to_string(kMaxVectorWidth) + " elements");
    } else {
        CheckKind(formula, as, problems);
    }
    return problems.Take();
}

std::vector<FormulaProblem> CheckGuarded(const char* formula, const CheckedAs& as) noexcept {
    std::vector<FormulaProblem> problems;
    if (!platform::Done([&] { problems = Check(formula ? formula : "", as); })) {
        // this sentence is short enough for std::string not to allocate memory
        platform::Done([&] {
            problems.push_back({0, 0, FormulaProblem::Severity::Error, "out of memory"});
        });
    }
    return problems;
}

}  // namespace

std::vector<FormulaProblem> CheckFormula(const char* formula, std::uint32_t default_unit) noexcept {
    return CheckGuarded(formula, {default_unit, std::nullopt});
}

std::vector<FormulaProblem> CheckVectorFormula(const char* formula, int width, int split_mode,
                                               std::uint32_t default_unit) noexcept {
    return CheckGuarded(formula, {default_unit, stimulus::VectorShape{width, split_mode}});
}

}  // namespace corv
