#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "util/fields.h"

// Counter formulas, and the texts that refer to a wire of a registered counter
// (docs/formats/counters.md).
//
//     formula   = "\counter" "\TYPE\" int "\DIR\" int "\RADIX\" int "\START\" text "\INC\" text
//                 "\PERIOD\" time "\REV\" int
//     reference = "\counter\wire\" int "\handle\" int
//
// Words are separated by runs of "\"; a leading one may be missing. Case does not matter. Anything
// after the last value is ignored.
namespace corv::stimulators {

enum class CounterKey { Type, Dir, Radix, Start, Inc, Period, Rev };
inline constexpr std::array<std::string_view, 7> kCounterKeys{"TYPE", "DIR",    "RADIX", "START",
                                                              "INC",  "PERIOD", "REV"};

class CounterReader {
public:
    explicit CounterReader(std::string_view text) noexcept
        : text_(text), fields_(text, '\\'), at_(text.substr(0, 0)) {}

    // Reads the word "counter" at the front.
    bool Begin() noexcept { return ReadWord("counter"); }
    // Reads a key and returns its value; nullopt if either is missing or the key is a different
    // one.
    std::optional<std::string_view> Value(CounterKey key) noexcept {
        return Value(kCounterKeys[static_cast<std::size_t>(key)]);
    }
    std::optional<std::string_view> Value(std::string_view key) noexcept;

    // Returns where reading stopped: the last word read, empty at the end of the text.
    std::string_view At() const noexcept { return at_; }

private:
    bool ReadWord(std::string_view expected) noexcept;
    std::optional<std::string_view> Next() noexcept;

    std::string_view text_;
    util::FieldReader fields_;
    std::string_view at_;
};

// How much of a period, and of a starting value or increment, is read, including the terminating
// zero: the texts are read into buffers of these sizes.
inline constexpr std::size_t kPeriodRoom = 1000;
inline constexpr std::size_t kNumberRoom = 1024;
// Returns the period in picoseconds, nullopt if the text is not a time.
std::optional<std::int64_t> ReadCountPeriod(std::string_view text) noexcept;
std::optional<std::int64_t> ReadCountNumber(std::string_view text, int radix) noexcept;

struct CounterReference {
    int wire;
    int handle;
};
std::optional<CounterReference> ReadCounterReference(std::string_view text) noexcept;
std::string WriteCounterReference(CounterReference reference);

struct CounterFields {
    int type;
    int dir;
    int radix;
    std::string_view start;
    std::string_view increment;
    std::string_view period;
    bool reverse;
};
std::string WriteCounterText(const CounterFields& fields);

}  // namespace corv::stimulators
