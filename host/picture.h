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

// What a picture of waveforms shows, whatever draws it: lanes of segments of time.
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

// How a class is drawn: as a line at the bottom, the middle or the top, a filled box over the
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

// Returns a value text as it is shown. One of the nine values of std_logic, in either case and with
// or without quotes, becomes its upper-case letter; anything else is a bus value with its text
// unchanged.
ShownValue Classify(std::string_view value_text);

// Returns the value of a bus as it is shown: a bus value with its text, or the class of Z, X or U
// if all its characters are that letter.
ShownValue ClassifyBus(std::string_view value_text);

struct Segment {
    std::int64_t from;  // picoseconds
    std::int64_t to;
    ShownValue value;
};

// A trace laid out for a picture. Segments follow one another without a gap, from the window's
// start to its end; neighbours differ.
struct Lane {
    std::string name;
    bool binary = false;  // one digit per bit; hexadecimal digits would take less room
    std::vector<Segment> segments;
};

// Returns a lane for drawing on the grid. A column with two or more changes, or one that touches a
// crowded stretch, shows Activity from border to border, and so do adjacent columns with a change,
// up to the first without one. Changes elsewhere keep their exact time. After the column of the
// last known time the lane is empty.
Lane LayOut(const Trace& trace, const TimeGrid& grid);

// Returns a binary lane with its values in hexadecimal digits; nullopt if these cannot express all
// of them.
std::optional<Lane> InHex(const Lane& lane);

// What one column of a lane shows: a segment and, on an edge, the segment that ends there.
struct Cell {
    const Segment* segment;
    const Segment* before = nullptr;
};

// Returns the lane's columns on the grid that it was laid out for. Where the first value or
// Activity begins, or Activity ends, there is no edge: the column shows the segment itself.
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
