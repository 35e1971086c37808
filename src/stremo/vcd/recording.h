#pragma once

#include <memory>
#include <string>

#include "platform/files.h"
#include "stremo/recording.h"

// Value change dumps, the recordings that every simulator writes. Scopes become hierarchical names
// with the hierarchy separator between them, one-bit variables std_logic, those with a range or
// more bits std_logic_vector; integers, reals, texts and events have types of their own. Times are
// rounded down to picoseconds. The signals come from the declarations. The changes are read once,
// when blocks are needed, and only those of the leaves of interest are kept.
namespace corv::recording {

inline constexpr char kVcdName[] = "VCD";

bool IsVcd(platform::Bytes beginning) noexcept;
std::unique_ptr<Recording> OpenVcd(const std::string& file_name,
                                   std::unique_ptr<platform::FileContent> content);

}  // namespace corv::recording
