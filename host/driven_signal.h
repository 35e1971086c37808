#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "corv/frame/com_ptr.h"
#include "corv/signals/signal.h"
#include "host/trace.h"

namespace corv::host {

// How the values of a source are cut into the elements of a vector.
struct Shape {
    int width = 0;       // elements; 0 for a scalar
    bool words = false;  // between the elements stands kBetweenWords; else each is a character
};
inline constexpr char kBetweenWords = '\x1f';

// Turns the characters of a vector's elements into its text.
using BusFormat = std::function<std::string(std::string_view)>;

// A signal whose wave, or whose elements' waves, hold what a source did.
class DrivenSignal {
public:
    // Makes a signal and drives it with what was recorded in a window from `start` on. The value
    // that the source brought into the window becomes an event of the last picosecond before it.
    // Without a type the values tell it.
    //
    // Throws std::runtime_error, with a sentence, when a value is none of the type.
    DrivenSignal(const Trace& recorded, std::int64_t start, Shape shape, std::string type = "");

    ISignal& Signal() const { return *signal_; }

    // What the signal does in a window, the end included, read from its waves.
    Trace Read(TimeWindow window, const BusFormat& format) const;

private:
    std::string ChooseType(const Trace& recorded);
    void Drive(const Trace& recorded, std::int64_t start);
    Trace ReadScalar(TimeWindow window) const;
    Trace ReadVector(TimeWindow window, const BusFormat& format) const;

    Shape shape_;
    std::vector<std::string> texts_;  // of values that are of no type, by their number
    frame::ComPtr<ISignal> signal_;
};

}  // namespace corv::host
