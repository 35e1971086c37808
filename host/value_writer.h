#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "corv/signals/signal.h"
#include "corv/typeinfo/type_info.h"
#include "host/bus_text.h"
#include "host/physical_text.h"

namespace corv::host {

// Turns the characters of a vector's elements into its text.
using BusFormat = std::function<std::string(std::string_view, BusKind)>;

// The value of a scalar, as its wave stores it.
struct LeafValue {
    std::array<unsigned char, 8> bytes{};
    bool known = false;  // false before its first event
};

// Writes the values of a signal of any type and nesting as people read them: vectors of characters
// with a format, physical values with their units, records and other arrays as (a,b,c), and a real
// that is not a number as NaN, inf or -inf. A part without a value yet is empty; in a vector of
// characters it is a question mark.
class ValueWriter {
public:
    // The signal and the format must outlive the object.
    ValueWriter(ISignal& signal, const BusFormat& format);

    // Returns the text for the values of the signal's leaves, in their order.
    std::string Text(std::span<const LeafValue> values) const;

    // Returns whether the values are levels of logic, or vectors of them.
    bool HasLevels() const { return levels_; }

private:
    struct Part {
        const KTypeInfo* type = nullptr;
        bool characters = false;  // an array of an enumeration of single characters
        BusKind kind;             // of that vector
        PhysicalUnits units;
        std::vector<std::string> literals;  // of an enumeration
        std::vector<std::size_t> parts;     // of a composite: their places among all parts
        std::size_t count = 1;              // of an array: the number of its elements
        bool empty = false;                 // a composite without members, which counts as a leaf
    };
    using Values = std::span<const LeafValue>;

    std::size_t Add(const KTypeInfo& type, ISignal& signal);
    void AddMembers(Part& part, ISignalContainer& members);
    static void AddScalar(Part& part, ISignal& leaf);
    std::string Write(const Part& part, Values& values) const;
    std::string WriteScalar(const Part& part, const LeafValue& value) const;
    std::string WriteComposite(const Part& part, Values& values) const;
    // Stores the elements of an array of an enumeration as characters, if each of them is one.
    bool ReadCharacters(const Part& part, Values values, std::string& characters) const;

    const BusFormat& format_;
    KTypeInfo type_;
    std::vector<Part> parts_;
    bool levels_ = false;
};

// Returns the scalar signals below a signal, in order; the signal itself if it is scalar.
std::vector<ISignal*> LeavesOf(ISignal& signal);

}  // namespace corv::host
