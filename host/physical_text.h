#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Values of physical types as texts with units. They are stored as numbers of their primary unit: a
// `time` of 103375000000 is "103375ns".
namespace corv::host {

struct PhysicalUnit {
    std::string name;
    std::int64_t size;  // in the primary unit
    bool operator==(const PhysicalUnit&) const = default;
};
using PhysicalUnits = std::vector<PhysicalUnit>;  // the primary one first, rising

// Returns the units of a type by its name: those of time in femtoseconds, none for any other type.
PhysicalUnits UnitsOfType(std::string_view type_name);

// Reads "ohm = 1, kohm = 1000", the property "Units" of recorded signals; empty if it is not of
// that form.
PhysicalUnits ReadUnits(std::string_view text);

// Returns the number in the largest unit in which it is whole, 0 in the primary unit. Returns
// nullopt for a number that is not whole or exceeds 64 bits, and without units.
std::optional<std::string> PhysicalText(double number, const PhysicalUnits& units);

// Reads "103375ns", "103375 ns" and "1.5us" as a number of the primary unit. Returns nullopt for
// other texts and if the result is not whole.
std::optional<std::int64_t> ReadPhysical(std::string_view text, const PhysicalUnits& units);

}  // namespace corv::host
