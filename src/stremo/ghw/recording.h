#pragma once

#include <memory>
#include <string>

#include "platform/files.h"
#include "stremo/recording.h"

// GHW files, the recordings of the VHDL simulator GHDL, which carry every type of VHDL. Signals and
// ports have their hierarchical names with the hierarchy separator between the levels, composites
// their elements and fields below them; physical types tell their units in the property "Units".
// Times are rounded down to picoseconds.
//
// The signals are listed from the head of the file, and the changes walked over once for the last
// time; they are read when blocks are asked for, and only those of the leaves of interest are held.
namespace corv::recording {

inline constexpr char kGhwName[] = "GHW";

bool IsGhw(platform::Bytes beginning) noexcept;
std::unique_ptr<Recording> OpenGhw(const std::string& file_name,
                                   std::unique_ptr<platform::FileContent> content);

// The same with the unit that the file's times are in, 0 fs to 7 hr (corv/util/time_units.h), which
// the file itself may not tell. Other numbers leave it to the file.
std::unique_ptr<Recording> OpenGhwIn(const std::string& file_name,
                                     std::unique_ptr<platform::FileContent> content, int time_unit);

// The same for what may be another format, which is refused.
std::unique_ptr<Recording> OpenGhwContent(const std::string& file_name,
                                          std::unique_ptr<platform::FileContent> content,
                                          int time_unit);

}  // namespace corv::recording
