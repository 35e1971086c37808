#include "host/colour.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <charconv>
#include <cstdlib>

namespace corv::host {
namespace {

constexpr int kDefaultWidth = 80;

std::string_view Environment(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

}  // namespace

std::optional<ColourMode> ReadColourMode(std::string_view text) {
    if (text == "auto") {
        return ColourMode::Auto;
    }
    if (text == "always") {
        return ColourMode::Always;
    }
    return text == "never" ? std::optional(ColourMode::Never) : std::nullopt;
}

std::optional<bool> UseColour(ColourMode asked, int file_descriptor) {
    const std::string_view wish = Environment("CORV_COLORS");
    if (asked == ColourMode::Auto && !wish.empty()) {
        const auto mode = ReadColourMode(wish);
        if (!mode) {
            return std::nullopt;
        }
        asked = *mode;
    }
    if (asked != ColourMode::Auto) {
        return asked == ColourMode::Always;
    }
    return Environment("NO_COLOR").empty() && isatty(file_descriptor) != 0 &&
           Environment("TERM") != "dumb";
}

int DrawingWidth(int file_descriptor) {
    const std::string_view columns = Environment("COLUMNS");
    int width = 0;
    std::from_chars(columns.data(), columns.data() + columns.size(), width);
    winsize size{};
    if (width <= 0 && ioctl(file_descriptor, TIOCGWINSZ, &size) == 0) {
        width = size.ws_col;
    }
    return width > 0 ? width : kDefaultWidth;
}

}  // namespace corv::host
