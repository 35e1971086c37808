#include "host/named_formula.h"

namespace corv::host {
namespace {

constexpr std::string_view kNoName = " \t\r\n,\"'";

// Returns where the name at the front of the text ends: at its "=" or at the ":" of its type; npos
// if there is no name.
std::size_t NameEnd(std::string_view text) {
    if (text.starts_with('(')) {
        return std::string_view::npos;
    }
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '=' || text[at] == ':') {
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

// Returns where a type ends: at the first "=" outside quotes.
std::size_t TypeEnd(std::string_view text, std::size_t from) {
    bool quoted = false;
    for (std::size_t at = from; at < text.size(); ++at) {
        quoted ^= text[at] == '\'';
        if (text[at] == '=' && !quoted) {
            return at;
        }
    }
    return std::string_view::npos;
}

}  // namespace

NamedFormula SplitNamedFormula(std::string_view text, std::size_t number) {
    const std::size_t end = NameEnd(text);
    const bool typed = end != std::string_view::npos && text[end] == ':';
    const std::size_t equals = typed ? TypeEnd(text, end) : end;
    NamedFormula result;
    if (equals == std::string_view::npos) {
        result.formula = text;
    } else {
        result.formula = text.substr(equals + 1);
        result.name = text.substr(0, end);
        result.type = typed ? text.substr(end + 1, equals - end - 1) : "";
    }
    if (result.name.empty()) {
        result.name = "f" + std::to_string(number);
    }
    return result;
}

}  // namespace corv::host
