#pragma once

#include <cstddef>
#include <string>

namespace corv {

// What is wrong at one place of a text: a formula, a type or a time.
struct Problem {
    enum class Severity {
        Error,    // the text is refused or misread
        Warning,  // the text is read as written, but hardly as it was meant
    };

    std::size_t position = 0;  // of the first byte, from 0
    std::size_t length = 0;    // in bytes; 0 points at the end of the text
    std::string sentence;      // what is wrong and what would be right, without a full stop
    Severity severity = Severity::Error;

    bool operator==(const Problem&) const = default;
};

}  // namespace corv
