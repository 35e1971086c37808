#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "host/picture.h"

namespace corv::host {

struct TerminalStyle {
    std::size_t name_width = 0;  // of the name column; see TerminalNameWidth
    bool ascii = false;          // only 7-bit characters instead of box-drawing ones in UTF-8
    bool colour = false;         // with escape sequences for the 256 colours
    bool compact = false;        // without an empty line between two lanes
};

// Columns between the name column and the waveforms.
inline constexpr std::size_t kTerminalGap = 2;

// Returns the name column's width for a drawing of `width` columns: what the names need, at most a
// third.
std::size_t TerminalNameWidth(const std::vector<std::string>& names, std::size_t width);

// Draws a picture, whose grid has a column for each terminal column to the right of the names, as
// lines of text. Every lane takes one line, with an empty one above it. Compact drawings have no
// empty lines; a 1 is then drawn as a bar, to set it apart from the line above. The time ruler is
// at the top and is repeated.
std::string DrawTerminal(const Picture& picture, const TerminalStyle& style);

}  // namespace corv::host
