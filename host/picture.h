#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/palette.h"
#include "host/time_grid.h"
#include "host/trace.h"

// What a picture of waveforms shows, whatever it is drawn with: lanes of segments of time.
namespace corv::host {

enum class ValueClass {
    None,  // no value yet
    Low,
    High,
    HighZ,
    WeakLow,
    WeakHigh,
    Unknown,  // X and U
    WeakUnknown,
    DontCare,
    Bus,       // any other value
    Activity,  // not a value: several changes closer together than the picture can show
};

// Where a class is drawn: a line at the bottom, the middle or the top, a filled box over the
// lane's whole height, two rails with a text between them, or nothing.
enum class Level { Nothing, Bottom, Middle, Top, Box, Rails };

struct ClassRow {
    Level level;
    Ink ink;
};

// In the order of ValueClass.
inline constexpr std::array<ClassRow, 11> kClasses{{
    {Level::Nothing, Ink::Muted},
    {Level::Bottom, Ink::Strong},
    {Level::Top, Ink::Strong},
    {Level::Middle, Ink::HighZ},
    {Level::Bottom, Ink::Weak},
    {Level::Top, Ink::Weak},
    {Level::Box, Ink::Unknown},
    {Level::Box, Ink::Weak},
    {Level::Box, Ink::DontCare},
    {Level::Rails, Ink::Bus},
    {Level::Box, Ink::Activity},
}};
static_assert(kClasses.size() == static_cast<std::size_t>(ValueClass::Activity) + 1);

constexpr const ClassRow& RowOf(ValueClass c) {
    return kClasses[static_cast<std::size_t>(c)];
}

struct ShownValue {
    ValueClass value_class = ValueClass::None;
    std::string text;

    bool operator==(const ShownValue&) const = default;
};

// A value text as shown. One of the nine values of std_logic, in either case and with or without
// quotes, becomes its upper-case letter; anything else is a bus value with its text as it is.
ShownValue Classify(std::string_view value_text);

// The value of a bus as shown: a bus value with its text, or what it is when all of its characters
// are Z, or X or U.
ShownValue ClassifyBus(std::string_view value_text);

struct Segment {
    std::int64_t from;  // picoseconds
    std::int64_t to;
    ShownValue value;
};

// Segments follow one another without a gap, from the window's start to its end; neighbours differ.
struct Lane {
    std::string name;
    bool binary = false;  // the values are bits, a digit for each; hexadecimal ones take less room
    std::vector<Segment> segments;
};

// A lane for drawing on the grid. A column with two or more changes and one that touches a crowded
// stretch show Activity from border to border, and so do the columns beside it that have a change,
// up to the first without one; changes elsewhere keep their exact time. After the
// column of the last time that something is known of the lane is empty.
Lane LayOut(const Trace& trace, const TimeGrid& grid);

// A binary lane with its values in hexadecimal digits; nothing when these don't tell all of them.
std::optional<Lane> InHex(const Lane& lane);

// What one column of a lane shows: the segment, and on an edge the segment that ends there.
struct Cell {
    const Segment* segment;
    const Segment* before = nullptr;
};

// The lane's columns on the grid that it was laid out for. Where a first value or Activity begins
// or Activity ends there is no edge: the column shows the segment itself.
std::vector<Cell> CellsOf(const Lane& lane, const TimeGrid& grid);

struct Tick {
    std::int64_t time;
    std::string label;
};

struct Picture {
    std::string title;  // may be empty
    TimeGrid grid;
    std::vector<Tick> ticks;
    std::vector<Lane> lanes;
};

}  // namespace corv::host
