#pragma once

#include <memory>
#include <string>

#include "platform/files.h"
#include "stremo/recording.h"

// GHW files, the recordings of the VHDL simulator GHDL, which carry every type of VHDL. Signals and
// ports have their hierarchical names with the hierarchy separator between the levels, composites
// their elements and fields below them; the units of physical types are in the property "Units".
// Times are rounded down to picoseconds.
//
// Opening reads the signals from the front of the file and walks over the changes once to find the
// last time. The changes are read when blocks are needed, and only those of the leaves of interest
// are kept.
namespace corv::recording {

inline constexpr char kGhwName[] = "GHW";

bool IsGhw(platform::Bytes beginning) noexcept;
std::unique_ptr<Recording> OpenGhw(const std::string& file_name,
                                   std::unique_ptr<platform::FileContent> content);

// The same with a given unit of the file's times, 0 fs to 7 hr (corv/util/time_units.h), which the
// file itself may not state. Other numbers leave the unit to the file.
std::unique_ptr<Recording> OpenGhwIn(const std::string& file_name,
                                     std::unique_ptr<platform::FileContent> content, int time_unit);

// The same for a content that may have another format, which is refused.
std::unique_ptr<Recording> OpenGhwContent(const std::string& file_name,
                                          std::unique_ptr<platform::FileContent> content,
                                          int time_unit);

}  // namespace corv::recording
