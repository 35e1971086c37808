#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/json.h"
#include "corv/stimulus/check_formula.h"
#include "host/colour.h"

// The texts that commands read, and the problems found in them.
namespace corv::cli {

// Returns the argument, or for "-" standard input without the line ends at its end. Standard input
// can be read once. Throws Failure, also for a zero byte, since that would end the text early in
// the library. `what` names the text in the sentence, "formula".
std::string TextOperand(const std::string& argument, const std::string& what);

// Collects problems up to the number that is listed, kMaxFormulaProblems.
class CappedProblems {
public:
    // Adds what was found in a part of the text; it is a warning unless the severity says
    // otherwise.
    void Add(std::size_t position, std::size_t length, std::string sentence,
             Problem::Severity severity = Problem::Severity::Warning);
    std::vector<Problem> Take() { return std::move(problems_); }

private:
    std::vector<Problem> problems_;
};

// A part of a text between separators: where it begins, and its text.
struct TextPart {
    std::size_t position;
    std::string_view text;
};
std::vector<TextPart> SplitText(std::string_view text, char separator);

// Returns the text without its leading white space.
std::string_view SkipBlanks(std::string_view text);

// Returns the problems as text, with the name before each place.
std::string DescribeProblems(const std::string& name, const std::string& text,
                             const std::vector<Problem>& problems, bool colour);

// Writes the problems to standard error and returns whether there is an error among them.
bool ReportProblems(const std::string& name, const std::string& text,
                    const std::vector<Problem>& problems, host::ColourMode colour);

// Appends the members "truncated", whether some problems were left out, and "problems", the list.
void AppendProblems(Json& document, const std::string& text, const std::vector<Problem>& problems);

}  // namespace corv::cli
