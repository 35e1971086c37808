#pragma once

#include <optional>
#include <string_view>

namespace corv::host {

enum class ColourMode { Auto, Always, Never };

// "auto", "always" or "never".
std::optional<ColourMode> ReadColourMode(std::string_view text);

// Whether to write colours to a stream. What the user asked for decides; failing that CORV_COLORS
// (auto, always, never), then NO_COLOR (set and not empty: no), then whether the stream is a
// terminal that can show them. Nothing when CORV_COLORS holds another word.
std::optional<bool> UseColour(ColourMode asked, int file_descriptor);

// The columns to draw in: COLUMNS, then the terminal's width, then 80.
int DrawingWidth(int file_descriptor);

}  // namespace corv::host
