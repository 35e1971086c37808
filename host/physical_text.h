#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Values of physical types, which are stored as numbers of their primary unit, as texts with units:
// a `time` of 103375000000 is "103375ns".
namespace corv::host {

struct PhysicalUnit {
    std::string name;
    std::int64_t size;  // in the primary unit
    bool operator==(const PhysicalUnit&) const = default;
};
using PhysicalUnits = std::vector<PhysicalUnit>;  // the primary one first, rising

// The units of a type by its name, those of time in femtoseconds; empty for any other type.
PhysicalUnits UnitsOfType(std::string_view type_name);

// Reads "ohm = 1, kohm = 1000", the property "Units" of recorded signals; empty when it is none.
PhysicalUnits ReadUnits(std::string_view text);

// The number in the largest unit in which it is whole, 0 in the primary one. Nothing for a number
// that is not whole or passes 64 bits, and without units.
std::optional<std::string> PhysicalText(double number, const PhysicalUnits& units);

// Reads "103375ns", "103375 ns" and "1.5us" as a number of the primary unit. Nothing when it is no
// such text or not whole.
std::optional<std::int64_t> ReadPhysical(std::string_view text, const PhysicalUnits& units);

}  // namespace corv::host
