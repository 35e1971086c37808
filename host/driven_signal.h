#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "corv/frame/com_ptr.h"
#include "corv/signals/signal.h"
#include "host/signal_trace.h"
#include "host/trace.h"

namespace corv::host {

// How the values of a source are cut into the elements of a vector.
struct Shape {
    int width = 0;       // elements; 0 for a scalar
    bool words = false;  // elements are separated by kBetweenWords; else each is a character
};
inline constexpr char kBetweenWords = '\x1f';
inline constexpr char kNotDriven = '\x1e';  // an element that has no value yet

// Returns the texts of the elements of a value; a scalar has one.
std::vector<std::string> Elements(const std::string& value, Shape shape);

using LeafBytes = std::array<unsigned char, 8>;  // a stored value, padded with zeros

// A signal whose wave, or whose elements' waves, contain what a source did. Because formulas go
// through a signal, their values are checked and spelt like recorded ones.
class DrivenSignal {
public:
    // Makes a signal and drives it with what was recorded in a window from `start` on. The value
    // that the source has before the window becomes an event at the last picosecond before it.
    // Without a type, the type is inferred from the values.
    //
    // Throws std::runtime_error, with a sentence, if a value is not a value of the type.
    DrivenSignal(const Trace& recorded, std::int64_t start, Shape shape,
                 const std::string& type = "");

    // Makes a signal that is not driven. Without a type, the type is inferred from the texts of its
    // elements' values.
    DrivenSignal(const std::set<std::string>& elements, Shape shape, std::string type);

    // Returns a function that turns values of the source, in order of time, into events of those
    // leaves that change and passes them to `put`: the leaf's number, the time and the stored
    // value. It throws std::runtime_error if a value is not a value of the type. The signal must
    // outlive it.
    using Put = std::function<void(std::size_t leaf, std::int64_t time, const LeafBytes& value)>;
    using Drive = std::function<void(std::int64_t time, const std::string& value)>;
    Drive Driver(Put put) const;

    ISignal& Signal() const { return *signal_; }
    // Returns whether the values have no common type, so that the signal has numbers in their
    // place.
    bool HasOwnTexts() const { return !texts_.empty(); }

    // Returns what the signal does in a window, the end included, read from its waves.
    Trace Read(TimeWindow window, const BusFormat& format) const;

private:
    std::string ChooseType(const std::set<std::string>& elements);

    Shape shape_;
    bool typed_;                      // by the caller
    std::vector<std::string> texts_;  // of values without a common type, by their number
    frame::ComPtr<ISignal> signal_;
};

}  // namespace corv::host
