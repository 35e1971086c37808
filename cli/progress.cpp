#include "cli/progress.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <utility>

#include "host/fit_text.h"

namespace corv::cli {
namespace {

using Seconds = std::chrono::duration<double>;

// Work that is done sooner shows no line, and a line that changes more often cannot be read.
constexpr Seconds kPatience{0.5};
constexpr Seconds kBetween{0.1};

// Writes a number of bytes as "1.2 GB", with at most three digits.
std::string Bytes(double count) {
    constexpr std::array<const char*, 5> kUnits{"B", "kB", "MB", "GB", "TB"};
    std::size_t unit = 0;
    for (; count >= 999.5 && unit + 1 < kUnits.size(); ++unit) {
        count /= 1000;
    }
    char text[32];
    std::snprintf(text, sizeof text, unit > 0 && count < 9.95 ? "%.1f %s" : "%.0f %s", count,
                  kUnits[unit]);
    return text;
}

// Writes a duration as "12 s", "3 min 20 s" or "2 h 5 min".
std::string Duration(double seconds) {
    const auto whole = static_cast<long>(std::ceil(seconds));
    if (whole < 60) {
        return std::to_string(whole) + " s";
    }
    return whole < 3600
               ? std::to_string(whole / 60) + " min " + std::to_string(whole % 60) + " s"
               : std::to_string(whole / 3600) + " h " + std::to_string(whole / 60 % 60) + " min";
}

}  // namespace

Progress::Progress(const std::string& work)
    : work_(host::CleanText(work)), on_terminal_(isatty(STDERR_FILENO) != 0) {}

void Progress::Clear() {
    if (std::exchange(is_shown_, false)) {
        std::fputs("\r\033[K", stderr);
    }
}

void Progress::Tell(double done, double all, bool in_bytes) {
    const Clock::time_point now = Clock::now();
    const Seconds passed = now - start_;
    if (!on_terminal_ || passed < kPatience || now - shown_ < kBetween || all <= 0) {
        return;
    }
    const double part = std::clamp(done / all, 0.0, 1.0);
    std::string line = work_;
    line += in_bytes ? "  " + Bytes(done) + " of " + Bytes(all) : "";
    line += "  " + std::to_string(static_cast<int>(100 * part)) + " %";
    // the first percent is too short to estimate the rest from
    line += part > 0.01 ? "  " + Duration(passed.count() * (1 - part) / part) + " left" : "";
    std::fprintf(stderr, "\r\033[K%s", line.c_str());
    std::fflush(stderr);
    shown_ = now;
    is_shown_ = true;
}

}  // namespace corv::cli
