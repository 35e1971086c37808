#pragma once

#include "corv/stimulus/event_files.h"

namespace corv::stimulus {

// Remembers a file that a custom formula named; names of registered streams are no files.
void RememberEventFile(const char* name) noexcept;

// Deletes the files that are remembered, in the order in which they were, unless deletion is
// switched off; they are forgotten in either case.
void DeleteEventFiles() noexcept;

}  // namespace corv::stimulus
