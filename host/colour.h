#pragma once

#include <optional>
#include <string_view>

namespace corv::host {

enum class ColourMode { Auto, Always, Never };

// "auto", "always" or "never".
std::optional<ColourMode> ReadColourMode(std::string_view text);

// Returns whether to write colours to a stream. The user's choice decides; otherwise CORV_COLORS
// (auto, always, never), then NO_COLOR (set and not empty: no), then whether the stream is a
// terminal that can show them. Returns nullopt if CORV_COLORS is any other word.
std::optional<bool> UseColour(ColourMode asked, int file_descriptor);

// Returns the columns to draw in: COLUMNS, else the terminal's width, else 80.
int DrawingWidth(int file_descriptor);

}  // namespace corv::host
