#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "corv/platform/export.h"

namespace corv {

// What is wrong at one place of a formula.
struct FormulaProblem {
    enum class Severity {
        Error,    // CStimulus::Create refuses the formula, or misreads what is written
        Warning,  // the formula is read as written, but hardly as it was meant
    };

    std::size_t position;  // of the first byte, from 0
    std::size_t length;    // in bytes; 0 points at the end of the text
    Severity severity;
    std::string sentence;  // what is wrong and what would be right, without a full stop
};

// The maximum number of problems that are listed. If there are more, errors are kept first, and the
// last problem says that there are more; it is an error if any errors were left out.
inline constexpr std::size_t kMaxFormulaProblems = 100;

// Reads a formula as CStimulus::Create does, with a start time of 0, and lists what is wrong with
// it in the order of the text. `default_unit` is the unit of times written without one, in the
// identifiers of time_units.h. An empty list means that the formula is fine; null counts as an
// empty formula. If memory runs out, the list ends with an error "out of memory".
//
// Besides everything that Create refuses, it reports values that never take effect (their time is
// taken by another value, is before the pattern or past its repetition), a value at the end that
// has no time, misspelt units and parameters, white space that is not a blank, cut fractions, times
// out of range, and values of the compact notation that last 0. The formula is not evaluated and a
// notation is not unrolled, so the time for a check is proportional to the length of the text.
//
//     for (const corv::FormulaProblem& p : corv::CheckFormula("0 0, 1 10xs", 1))
//         ...   // position 9, length 2: "unknown unit `xs`; did you mean `ns`?"
CORV_API std::vector<FormulaProblem> CheckFormula(const char* formula,
                                                  std::uint32_t default_unit = 1) noexcept;

// The same for the formula of a vector, as CFormulaParser::Run reads it with this width and split
// mode: counters of any type are accepted, and every value has to fit the width. A number with more
// bits than the vector is a warning, as is a list with too few or too many words.
CORV_API std::vector<FormulaProblem> CheckVectorFormula(const char* formula, int width,
                                                        int split_mode,
                                                        std::uint32_t default_unit = 1) noexcept;

}  // namespace corv
