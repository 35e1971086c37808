#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "host/picture.h"

namespace corv::host {

struct TerminalStyle {
    std::size_t name_width = 0;  // of the name column, see TerminalNameWidth
    bool ascii = false;          // 7-bit characters only, instead of box-drawing ones in UTF-8
    bool colour = false;         // with escape sequences of the 256 colours
    bool compact = false;        // without an empty line between two lanes
};

// Columns between the name column and the waveforms.
inline constexpr std::size_t kTerminalGap = 2;

// The name column's width for a drawing of `width` columns: what the names need, a third at most.
std::size_t TerminalNameWidth(const std::vector<std::string>& names, std::size_t width);

// Draws a picture whose grid has a column for each terminal column right of the names, as lines of
// text. Every lane takes one line, with an empty one above it unless it is compact; a 1 is a
// bar then, so that it stands off from the line above. The time ruler is on top and repeated.
std::string DrawTerminal(const Picture& picture, const TerminalStyle& style);

}  // namespace corv::host
