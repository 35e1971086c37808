#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/picture.h"

namespace corv::host {

struct SvgStyle {
    std::int64_t width = 1000;      // of the whole picture, in pixels
    std::int64_t name_columns = 0;  // of the name column, in characters; see SvgNameColumns
};

// The number of pixels between changes that are drawn individually: a column of the lanes' grid.
inline constexpr std::int64_t kSvgColumn = 3;

// The width of one character of the axis, in pixels.
inline constexpr std::int64_t kSvgLabelWidth = 7;

// Returns the width of the name column for these names: what they need, at most a third of the
// picture.
std::int64_t SvgNameColumns(const std::vector<std::string>& names, std::int64_t width);

// Returns the pixels left for the waveforms: the columns of the axis' grid.
std::int64_t SvgPlotWidth(const SvgStyle& style);

// Draws a picture as a self-contained SVG document. It follows the reader's choice of a light or
// dark background. Edges are at their exact times.
std::string DrawSvg(const Picture& picture, const SvgStyle& style);

}  // namespace corv::host
