#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace corv::stimulus {

// How the beginning of a path reads as a recorded name.
struct NameMatch {
    bool exact;             // in the same case
    std::string_view rest;  // of the path, which selects members
};

// Compares a path, as somebody wrote it, with the name of a recorded signal or, where it continues
// one, of a member, ".field" or "(3)". Nothing when it does not begin with that.
std::optional<NameMatch> MatchRecordedName(std::string_view path, std::string_view name,
                                           bool member) noexcept;

// What stands behind the last separator, without selections of elements.
std::string_view LastLevel(std::string_view name) noexcept;

// The name for people to read: "." between levels unless it has names in backslashes, no control
// characters.
std::string ShownRecordedName(std::string_view name);

}  // namespace corv::stimulus
