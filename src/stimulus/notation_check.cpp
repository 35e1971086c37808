// Checks a formula in the compact notation. Everything about the unrolled formula (its length, its
// last time, its first character) is calculated from the tree, since a few letters can unroll to
// millions of values.

#include <array>
#include <string>

#include "stimulus/formula_check.h"
#include "stimulus/formula_text.h"
#include "stimulus/vesk_formula.h"
#include "util/quote.h"
#include "util/words.h"

namespace corv::stimulus {
namespace {

using Place = ProblemList::Place;

struct FaultRow {
    VeskFault fault;
    std::string_view sentence;
};

constexpr std::array<FaultRow, 13> kFaults{{
    {VeskFault::UnmatchedParenthesis, "no closing parenthesis for this one"},
    {VeskFault::UnmatchedBracket, "no closing bracket for this one"},
    {VeskFault::NothingAfterGroup,
     "the text ends after this group; write its repeat count, such as `)3`"},
    {VeskFault::NothingAfterValue,
     "the text ends after this value; write how long it lasts, such as `10NS`"},
    {VeskFault::NothingAfterPoint,
     "the text ends after this point; write the digits of the fraction"},
    {VeskFault::NestedTooDeep, "groups nest deeper than 256 levels from here on"},
    {VeskFault::NoDuration,
     "this value has no duration directly after it and is left out; write one, such as `10NS`"},
    {VeskFault::NotHexadecimal,
     "the text in brackets is not a hexadecimal number; the value is left out"},
    {VeskFault::TooLong,
     "the duration of this value is past the range of 9.2e18ps; the value is left out"},
    {VeskFault::GroupDropped, "this group cannot be read and is left out"},
    {VeskFault::GroupWithoutCount,
     "the group that ends here has no repeat count and contributes nothing; write one, such as "
     "`)1`"},
    {VeskFault::NoValue,
     "this character cannot be a value, since it would begin a quoted word or end an element"},
    {VeskFault::NoLength,
     "this value lasts 0; write the value and then its duration, such as `110NS` for 1 during "
     "10ns"},
}};
static_assert([] {
    for (std::size_t i = 0; i < kFaults.size(); ++i) {
        if (static_cast<std::size_t>(kFaults[i].fault) != i) {
            return false;
        }
    }
    return true;
}());

// Returns whether the formulas of all elements exceed the limit of splitting. Their length is
// estimated with the length of the last time, which most times share.
bool IsTooLongToSplit(const CVeskFormula& notation, int width) {
    constexpr double kMostBytes = double{1U << 30};
    constexpr double kValueBlankAndComma = 3;
    const double digits = static_cast<double>(std::to_string(notation.LastStart()).size());
    return static_cast<double>(notation.CountEntries()) * width * (digits + kValueBlankAndComma) >
           kMostBytes;
}

void CheckVectorValues(const CVeskFormula& notation, VectorShape shape, Place text,
                       ProblemList& problems) {
    notation.ForEachValue([&](const CVeskValue& value) {
        std::string written;
        value.AppendText(written);
        CheckVectorValue(written, shape, {text.position + value.Position(), 1}, problems);
    });
    if (IsTooLongToSplit(notation, shape.width)) {
        problems.Error(text, "the notation unrolls to more than 1 GiB of text for " +
                                 std::to_string(shape.width) +
                                 " elements; lower its repeat counts");
    }
}

void CheckFront(std::string_view formula, std::string_view text, ProblemList& problems) {
    constexpr std::string_view kMark = "/vesk";
    const std::string_view before =
        formula.substr(0, static_cast<std::size_t>(text.data() - formula.data()));
    const std::size_t mark = FindNotation(formula);
    if (before.find_first_not_of(" \t\n") < mark) {
        problems.Warn(problems.PlaceOf(util::TrimEnds(before.substr(0, mark), " \t\n")),
                      "the text before `" + std::string(kMark) + "` is ignored; remove it");
    }
}

}  // namespace

void CheckNotation(std::string_view formula, const CheckedAs& as, ProblemList& problems) {
    const std::string_view text = NotationText(formula);
    const Place place = problems.PlaceOf(text);
    CheckFront(formula, text, problems);
    CVeskFormula notation;
    const bool read = notation.Parse(text);
    for (const VeskProblem& problem : notation.Problems()) {
        const Place at{place.position + problem.position, problem.length};
        std::string sentence(kFaults[static_cast<std::size_t>(problem.fault)].sentence);
        if (problem.fault == VeskFault::NoLength) {
            problems.Warn(at, std::move(sentence));
        } else {
            problems.Error(at, std::move(sentence));
        }
    }
    if (!read) {
        return;
    }
    if (notation.IsEmpty()) {
        problems.Error(place,
                       "the notation holds no value; write values with their durations, "
                       "such as `010NS110NS`");
    } else if (notation.CountEntries() > CVeskFormula::kMaxEntries) {
        problems.Error(place,
                       "the notation unrolls to more than 16777216 values; lower its "
                       "repeat counts");
    } else if (!notation.FitsRange()) {
        problems.Error(place, "the notation runs past the range of 9.2e18ps");
    } else if (!problems.HasErrors() && !notation.StartsWithValue()) {
        problems.Error(place, "the notation begins with a group that holds no value");
    } else if (as.vector) {
        CheckVectorValues(notation, *as.vector, place, problems);
    }
}

}  // namespace corv::stimulus
