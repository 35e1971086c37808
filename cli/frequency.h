#pragma once

namespace corv::cli {

// The names of the frequency units, by identifier (corv/util/time_units.h).
inline constexpr const char* kFrequencyUnits[] = {"Hz", "kHz", "MHz", "GHz", "THz"};

}  // namespace corv::cli
