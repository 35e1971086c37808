#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

namespace corv::test {

// The parts between separators, without blanks at their ends.
inline std::vector<std::string> Split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, separator);) {
        part.erase(0, part.find_first_not_of(' '));
        part.erase(part.find_last_not_of(' ') + 1);
        parts.push_back(part);
    }
    return parts;
}

// A table written as text: rows end at a line's end or " ;; ", fields at "|". An underscore alone
// is an empty field.
inline std::vector<std::vector<std::string>> Table(std::string text) {
    for (std::size_t at = text.find(" ;; "); at != std::string::npos; at = text.find(" ;; ", at)) {
        text.replace(at, 4, "\n");
    }
    std::vector<std::vector<std::string>> rows;
    for (const std::string& line : Split(text, '\n')) {
        rows.push_back(Split(line, '|'));
        for (std::string& field : rows.back()) {
            field.erase(0, field == "_" ? 1 : 0);
        }
        rows.resize(rows.size() - (line.empty() ? 1 : 0));
    }
    return rows;
}

inline std::int64_t Int(const std::string& text) {
    return std::stoll(text);
}

// Whether a text has that part; a failing test prints it.
inline testing::AssertionResult Says(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos
               ? testing::AssertionSuccess()
               : testing::AssertionFailure() << '"' << part << "\" is not in: " << text;
}

}  // namespace corv::test
