#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace corv::stimulus {

// How the beginning of a path matches a recorded name.
struct NameMatch {
    bool exact;             // in the same case
    std::string_view rest;  // of the path, which selects members
};

// Compares a path, as a user wrote it, with the name of a recorded signal or, to continue one, of a
// member (".field" or "(3)"). Returns nullopt if the path does not begin with that name.
std::optional<NameMatch> MatchRecordedName(std::string_view path, std::string_view name,
                                           bool member) noexcept;

// Returns the part after the last separator, without selections of elements.
std::string_view LastLevel(std::string_view name) noexcept;

// Returns the name for people to read: with "." between levels unless it has names in backslashes,
// and without control characters.
std::string ShownRecordedName(std::string_view name);

}  // namespace corv::stimulus
