// Any text as a formula: it is read, checked, walked and written back, and the four must agree.

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <string>
#include <string_view>

#include "corv/corv.h"

namespace {

void Require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

// What stands after the word for the notation; all of a text without it.
const char* NotationOf(const std::string& text) {
    constexpr std::string_view kMark = "/vesk";
    const auto mark = std::search(
        text.begin(), text.end(), kMark.begin(), kMark.end(),
        [](char a, char b) { return std::tolower(static_cast<unsigned char>(a)) == b; });
    const auto begin = static_cast<std::size_t>(mark - text.begin());
    return text.c_str() + (mark == text.end() ? 0 : begin + kMark.size());
}

// Whether the counts after groups multiply to more than a short run can hold: 200 bytes of groups
// within groups make 88 MB of normal form.
bool IsLong(std::string_view text) {
    constexpr double kMost = 1e5;
    double elements = static_cast<double>(text.size());
    for (std::size_t at = text.find(')'); at != text.npos; at = text.find(')', at + 1)) {
        const std::size_t from = std::min(text.find_first_not_of(" \t\n", at + 1), text.size());
        double count = 0;
        for (std::size_t i = from; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i) {
            count = count * 10 + (text[i] - '0');
        }
        elements *= std::max(count, 1.0);
    }
    return elements > kMost;
}

// The events of a stimulus rise strictly. A value is left over at each of them.
void Walk(const CStimulus& stimulus) {
    std::int64_t time = -1;
    for (int i = 0; i < 50; ++i) {
        const std::int64_t next = stimulus.GetNextEventTime(time);
        if (next == -1) {
            return;
        }
        CString value;
        Require(next > time && stimulus.GetValue(next, value) == 1 && !value.IsEmpty());
        time = next;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    if (!CheckVeskMaxRepeatCount(NotationOf(text), 20) || IsLong(text)) {
        return 0;  // long notations are read like short ones, only for longer
    }
    CStimulus stimulus;
    const bool created = stimulus.Create(text.c_str(), 0) == 1;
    const auto problems = corv::CheckFormula(text.c_str());
    const bool has_error =
        std::any_of(problems.begin(), problems.end(), [](const corv::FormulaProblem& p) {
            return p.severity == corv::FormulaProblem::Severity::Error;
        });
    Require(created || has_error);
    Walk(stimulus);
    CString once;
    CString twice;
    stimulus.GenerateFormula(once);
    stimulus.GenerateFormula(twice);
    Require(once == twice);
    if (created && problems.empty()) {
        CStimulus again;
        Require(again.Create(once, 0) == 1);
        again.GenerateFormula(twice);
        Require(once == twice);
    }
    return 0;
}
