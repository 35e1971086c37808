#include "host/fit_text.h"

#include <algorithm>

namespace corv::host {
namespace {

constexpr std::string_view kReplacement = "\uFFFD";

struct LeadByte {
    unsigned mask, bits;
    std::size_t length;
    unsigned smallest;  // the first code point that needs this length
};
constexpr LeadByte kLeadBytes[] = {
    {0x80, 0x00, 1, 0x20}, {0xE0, 0xC0, 2, 0xA0}, {0xF0, 0xE0, 3, 0x800}, {0xF8, 0xF0, 4, 0x10000}};

// The length of the printable character at the front of the text, 0 when there is none.
std::size_t CharacterLength(std::string_view text) {
    const auto byte = [&](std::size_t i) {
        return static_cast<unsigned>(static_cast<unsigned char>(text[i]));
    };
    for (const LeadByte& lead : kLeadBytes) {
        if ((byte(0) & lead.mask) != lead.bits || lead.length > text.size()) {
            continue;
        }
        unsigned code = byte(0) & ~lead.mask;
        for (std::size_t i = 1; i < lead.length; ++i) {
            if ((byte(i) & 0xC0) != 0x80) {
                return 0;
            }
            code = code << 6 | (byte(i) & 0x3F);
        }
        const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
        const bool printable = code != 0x7F && code != 0xFFFE && code != 0xFFFF;
        return code >= lead.smallest && code <= 0x10FFFF && !surrogate && printable ? lead.length
                                                                                    : 0;
    }
    return 0;
}

// Calls `take` with each character.
template <class Take>
void ForEachCharacter(std::string_view text, Take take) {
    while (!text.empty()) {
        const std::size_t length = CharacterLength(text);
        take(length == 0 ? kReplacement : text.substr(0, length));
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
}

}  // namespace

std::vector<std::string> Characters(std::string_view text) {
    std::vector<std::string> characters;
    ForEachCharacter(text, [&](std::string_view c) { characters.emplace_back(c); });
    return characters;
}

std::string FromLatin1(std::string_view text) {
    std::string out;
    while (!text.empty()) {
        const std::size_t length = std::max<std::size_t>(CharacterLength(text), 1);
        const auto byte = static_cast<unsigned char>(text[0]);
        if (length == 1 && byte >= 0xA0) {
            out += static_cast<char>(0xC0 | byte >> 6);
            out += static_cast<char>(0x80 | (byte & 0x3F));
        } else {
            out += text.substr(0, length);
        }
        text.remove_prefix(length);
    }
    return out;
}

std::string FromVhdl(std::string_view text) {
    std::string shown(text);
    bool in_string = false;
    bool in_identifier = false;
    for (std::size_t i = 0; i < shown.size(); ++i) {
        const bool quoted =
            i > 0 && i + 1 < shown.size() && shown[i - 1] == '\'' && shown[i + 1] == '\'';
        in_string ^= shown[i] == '"' && !in_identifier && !quoted;
        in_identifier ^= shown[i] == '\\' && !in_string && !quoted;
        shown[i] = in_identifier && shown[i] == '\xA0' ? ' ' : shown[i];
    }
    return FromLatin1(shown);
}

std::string CleanText(std::string_view text) {
    std::string clean;
    ForEachCharacter(text, [&](std::string_view c) { clean += c; });
    return clean;
}

std::size_t TextWidth(std::string_view text) {
    std::size_t width = 0;
    ForEachCharacter(text, [&](std::string_view) { ++width; });
    return width;
}

std::string FitText(std::string_view text, std::size_t width, std::string_view ellipsis) {
    const std::vector<std::string> characters = Characters(text);
    const std::size_t dots = TextWidth(ellipsis);
    std::string result;
    if (characters.size() <= width) {
        return CleanText(text);
    }
    if (width < dots + 2) {
        return result;
    }
    const std::size_t tail = (width - dots) / 2;
    const std::size_t head = width - dots - tail;
    for (std::size_t i = 0; i < head; ++i) {
        result += characters[i];
    }
    result += ellipsis;
    for (std::size_t i = characters.size() - tail; i < characters.size(); ++i) {
        result += characters[i];
    }
    return result;
}

}  // namespace corv::host
