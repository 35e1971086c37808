#pragma once

#include "corv/stimulus/event_files.h"

namespace corv::stimulus {

// Remembers a file that a custom formula has named. Names of registered streams are not files.
void RememberEventFile(const char* name) noexcept;

// Deletes the remembered files in the order in which they were named, unless deletion is switched
// off. They are forgotten in either case.
void DeleteEventFiles() noexcept;

}  // namespace corv::stimulus
