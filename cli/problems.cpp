#include "cli/problems.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>

#include "cli/command.h"
#include "cli/options.h"
#include "cli/output.h"
#include "host/diagnostic.h"

namespace corv::cli {

std::string TextOperand(const std::string& argument, const std::string& what) {
    if (argument != "-") {
        return argument;
    }
    static bool read = false;
    if (read) {
        throw Failure("standard input can be read for one " + what + " only");
    }
    read = true;
    std::string text = ReadStandardInput();
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) {
        text.pop_back();
    }
    if (text.find('\0') != std::string::npos) {
        throw Failure("the " + what + " on standard input holds a zero byte");
    }
    return text;
}

void CappedProblems::Add(std::size_t position, std::size_t length, std::string sentence,
                         Problem::Severity severity) {
    if (problems_.size() < kMaxFormulaProblems) {
        problems_.push_back({position, length, std::move(sentence), severity});
    } else {
        problems_.back().sentence = "there are more problems from here on";
    }
}

std::vector<TextPart> SplitText(std::string_view text, char separator) {
    std::vector<TextPart> parts;
    for (std::size_t at = text.find_first_not_of(separator); at != std::string_view::npos;) {
        const std::size_t end = std::min(text.find(separator, at), text.size());
        parts.push_back({at, text.substr(at, end - at)});
        at = text.find_first_not_of(separator, end);
    }
    return parts;
}

std::string_view SkipBlanks(std::string_view text) {
    return text.substr(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
}

std::string DescribeProblems(const std::string& name, const std::string& text,
                             const std::vector<Problem>& problems, bool colour) {
    std::string described;
    for (const Problem& problem : problems) {
        described += host::DescribeProblem(name, text, problem, colour);
    }
    return described;
}

bool ReportProblems(const std::string& name, const std::string& text,
                    const std::vector<Problem>& problems, host::ColourMode colour) {
    if (problems.empty()) {
        return false;
    }
    const std::string described =
        DescribeProblems(name, text, problems, WithColour(colour, STDERR_FILENO));
    std::fwrite(described.data(), 1, described.size(), stderr);
    return std::any_of(problems.begin(), problems.end(), [](const Problem& problem) {
        return problem.severity == Problem::Severity::Error;
    });
}

void AppendProblems(Json& document, const std::string& text, const std::vector<Problem>& problems) {
    Json list = Json::array();
    for (const Problem& problem : problems) {
        const host::TextPlace place = host::PlaceOf(text, problem.position);
        const bool error = problem.severity == Problem::Severity::Error;
        list.push_back({{"severity", error ? "error" : "warning"},
                        {"position", problem.position},
                        {"length", problem.length},
                        {"line", place.line},
                        {"column", place.column},
                        {"sentence", problem.sentence}});
    }
    document["truncated"] = problems.size() >= kMaxFormulaProblems;
    document["problems"] = std::move(list);
}

}  // namespace corv::cli
