#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/picture.h"

namespace corv::host {

struct SvgStyle {
    std::int64_t width = 1000;      // of the whole picture, in pixels
    std::int64_t name_columns = 0;  // of the name column, in characters, see SvgNameColumns
};

// Pixels that changes must lie apart to be drawn one by one: a column of the lanes' grid.
inline constexpr std::int64_t kSvgColumn = 3;

// Pixels that one character of the axis takes.
inline constexpr std::int64_t kSvgLabelWidth = 7;

// The name column for these names: what they need, a third of the picture at most.
std::int64_t SvgNameColumns(const std::vector<std::string>& names, std::int64_t width);

// The pixels left for the waveforms: the columns of the axis' grid.
std::int64_t SvgPlotWidth(const SvgStyle& style);

// Draws a picture as one SVG document that needs nothing else. It follows the reader's choice of a
// light or a dark ground. Edges stand at their exact times.
std::string DrawSvg(const Picture& picture, const SvgStyle& style);

}  // namespace corv::host
