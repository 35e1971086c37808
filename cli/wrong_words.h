#pragma once

#include <span>
#include <string>

#include "cli/description.h"

// Sentences about words on the command line that are in the wrong place.
namespace corv::cli {

// Returns a sentence about a time or a formula that the shell has cut into words because quotes
// were missing: -e 10 ns, -f 0 0, 1 5ns. Returns an empty text if there is none.
std::string CutIntoWords(std::span<const char* const> arguments);

// Returns a sentence about a word that the command does not take, and says where it belongs. `file`
// is the recording on the command line, if any.
std::string UnknownWord(const CommandInfo& command, const std::string& word,
                        const std::string& file);

}  // namespace corv::cli
