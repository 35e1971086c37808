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
    bool words = false;  // between the elements stands kBetweenWords; else each is a character
};
inline constexpr char kBetweenWords = '\x1f';
inline constexpr char kNotDriven = '\x1e';  // an element that has no value yet

// The texts of the elements of a value, one of a scalar.
std::vector<std::string> Elements(const std::string& value, Shape shape);

using LeafBytes = std::array<unsigned char, 8>;  // a stored value, filled up with zeros

// A signal whose wave, or whose elements' waves, hold what a source did.
class DrivenSignal {
public:
    // Makes a signal and drives it with what was recorded in a window from `start` on. The value
    // that the source brought into the window becomes an event of the last picosecond before it.
    // Without a type the values tell it.
    //
    // Throws std::runtime_error, with a sentence, when a value is none of the type.
    DrivenSignal(const Trace& recorded, std::int64_t start, Shape shape,
                 const std::string& type = "");

    // A signal that is not driven. Without a type the texts of its elements' values tell it.
    DrivenSignal(const std::set<std::string>& elements, Shape shape, std::string type);

    // What turns values of the source, in order of time, into the events of the leaves that change
    // and hands them to `put`: the leaf's number, the time and the stored value. It throws
    // std::runtime_error when a value is none of the type. The signal must outlive it.
    using Put = std::function<void(std::size_t leaf, std::int64_t time, const LeafBytes& value)>;
    using Drive = std::function<void(std::int64_t time, const std::string& value)>;
    Drive Driver(Put put) const;

    ISignal& Signal() const { return *signal_; }
    // Whether the values are of no type, so that the signal has numbers in their place.
    bool HasOwnTexts() const { return !texts_.empty(); }

    // What the signal does in a window, the end included, read from its waves.
    Trace Read(TimeWindow window, const BusFormat& format) const;

private:
    std::string ChooseType(const std::set<std::string>& elements);

    Shape shape_;
    bool typed_;                      // by the caller
    std::vector<std::string> texts_;  // of values that are of no type, by their number
    frame::ComPtr<ISignal> signal_;
};

}  // namespace corv::host
