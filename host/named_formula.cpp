#include "host/named_formula.h"

namespace corv::host {
namespace {

constexpr std::string_view kNoName = " \t\r\n,\"'";

// Where the name at the front of the text ends: at its "=", or npos when there is no name.
std::size_t NameEnd(std::string_view text) {
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '=') {
            return at;
        }
        if (text[at] == '\\') {
            at = text.find('\\', at + 1);
        }
        if (at == std::string_view::npos || kNoName.find(text[at]) != std::string_view::npos) {
            break;
        }
    }
    return std::string_view::npos;
}

}  // namespace

NamedFormula SplitNamedFormula(std::string_view text, std::size_t number) {
    const std::size_t end = NameEnd(text);
    NamedFormula result;
    result.formula = end == std::string_view::npos ? text : text.substr(end + 1);
    result.name = end == std::string_view::npos ? "" : text.substr(0, end);
    const std::size_t digits = result.name.find_last_not_of("0123456789");
    if (digits != std::string::npos && result.name[digits] == ':') {
        result.width = result.name.substr(digits + 1);
        result.name.erase(digits);
    }
    if (result.name.empty()) {
        result.name = "f" + std::to_string(number);
    }
    return result;
}

}  // namespace corv::host
