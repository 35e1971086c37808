#include "host/diagnostic.h"

#include <algorithm>
#include <vector>

#include "host/fit_text.h"

namespace corv::host {
namespace {

constexpr std::size_t kBefore = 36;  // characters shown before the place
constexpr std::size_t kWidth = 76;   // characters shown at most
constexpr std::size_t kBytes = 4;    // of the longest character

bool InsideCharacter(std::string_view text, std::size_t at) {
    return at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80;
}

std::string Coloured(bool colour, std::string_view code, std::string_view text) {
    return colour ? "\x1b[" + std::string(code) + "m" + std::string(text) + "\x1b[m"
                  : std::string(text);
}

// Returns characters as they are shown. Tabs are kept, since they move the mark below by just as
// much.
std::vector<std::string> Shown(std::string_view text) {
    std::vector<std::string> shown;
    while (!text.empty()) {
        const std::size_t tab = std::min(text.find('\t'), text.size());
        for (std::string& character : Characters(text.substr(0, tab))) {
            shown.push_back(std::move(character));
        }
        if (tab < text.size()) {
            shown.emplace_back("\t");
        }
        text.remove_prefix(std::min(tab + 1, text.size()));
    }
    return shown;
}

// Returns the line around a place, cut if it is long, and the mark below it.
std::string Excerpt(std::string_view line, std::size_t at, std::size_t length, bool colour) {
    std::size_t from = at - std::min(at, kBefore * kBytes);
    std::size_t to = std::min(line.size(), at + kWidth * kBytes);
    for (; InsideCharacter(line, from) && from < at; ++from) {
    }
    for (; InsideCharacter(line, to); ++to) {
    }
    std::vector<std::string> before = Shown(line.substr(from, at - from));
    std::vector<std::string> after = Shown(line.substr(at, to - at));
    const std::size_t marked = Shown(line.substr(at, std::min(length, to - at))).size();
    const bool cut_front =
        from > 0 || (before.size() > kBefore && before.size() + after.size() > kWidth);
    if (cut_front && before.size() > kBefore) {
        before.erase(before.begin(), before.end() - static_cast<std::ptrdiff_t>(kBefore));
    }
    const bool cut_back = to < line.size() || before.size() + after.size() > kWidth;
    if (cut_back) {
        after.resize(std::min(after.size(), kWidth - before.size()));
    }
    std::string text = cut_front ? "…" : "";
    std::string mark = cut_front ? " " : "";
    for (const std::string& character : before) {
        text += character;
        mark += character == "\t" ? "\t" : " ";
    }
    for (const std::string& character : after) {
        text += character;
    }
    const std::size_t tildes =
        std::clamp<std::size_t>(marked, 1, std::max<std::size_t>(after.size(), 1)) - 1;
    return text + (cut_back ? "…\n" : "\n") + mark +
           Coloured(colour, "1;32", "^" + std::string(tildes, '~')) + "\n";
}

}  // namespace

TextPlace PlaceOf(std::string_view text, std::size_t position) {
    position = std::min(position, text.size());
    const std::string_view before = text.substr(0, position);
    const std::size_t newline = before.rfind('\n');
    const std::size_t begin = newline == std::string_view::npos ? 0 : newline + 1;
    const std::size_t end = std::min(text.find('\n', position), text.size());
    return {1 + static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n')),
            1 + position - begin, text.substr(begin, end - begin)};
}

std::string DescribeProblem(std::string_view source, std::string_view text, const Problem& problem,
                            bool colour) {
    const TextPlace place = PlaceOf(text, problem.position);
    const bool error = problem.severity == Problem::Severity::Error;
    const std::string where = CleanText(source) + ":" + std::to_string(place.line) + ":" +
                              std::to_string(place.column) + ":";
    return Coloured(colour, "1", where) + " " +
           Coloured(colour, error ? "1;31" : "1;35", error ? "error:" : "warning:") + " " +
           CleanText(problem.sentence) + "\n" +
           Excerpt(place.line_text, place.column - 1, problem.length, colour);
}

}  // namespace corv::host
