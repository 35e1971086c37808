#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/json.h"
#include "corv/stimulus/check_formula.h"
#include "host/colour.h"

// Texts that commands read, and what is wrong with them.
namespace corv::cli {

// A text: the argument, or standard input for "-", without line ends behind it. Standard input can
// be read once. Throws Failure, also for a zero byte: it would end the text early. `what` names the
// text in its sentence, "formula".
std::string TextOperand(const std::string& argument, const std::string& what);

// Collects problems, up to as many as are listed.
class ProblemList {
public:
    // The part of a text at a place: what was found there, a warning unless it is an error.
    void Add(std::size_t position, std::size_t length, std::string sentence,
             FormulaProblem::Severity severity = FormulaProblem::Severity::Warning);
    std::vector<FormulaProblem> Take() { return std::move(problems_); }

private:
    std::vector<FormulaProblem> problems_;
};

// Parts between separators, runs of which count as one: where each begins, and its text.
struct TextPart {
    std::size_t position;
    std::string_view text;
};
std::vector<TextPart> SplitText(std::string_view text, char separator);

// The text without white space in front.
std::string_view SkipBlanks(std::string_view text);

// The problems as text; the name stands before each place.
std::string DescribeProblems(const std::string& name, const std::string& text,
                             const std::vector<FormulaProblem>& problems, bool colour);

// Writes the problems to standard error; true when there is an error among them.
bool ReportProblems(const std::string& name, const std::string& text,
                    const std::vector<FormulaProblem>& problems, host::ColourMode colour);

// Appends the members that tell of the problems: whether some were left out, and the list.
void AppendProblems(Json& document, const std::string& text,
                    const std::vector<FormulaProblem>& problems);

}  // namespace corv::cli
