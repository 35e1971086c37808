#pragma once

#include <optional>
#include <string>
#include <vector>

#include "corv/util/time_text.h"
#include "host/find/measure.h"

namespace corv::cli {

// Rows of words in columns, two blanks apart; numbers and times stand on the right.
std::string AlignedRows(const std::vector<std::vector<std::string>>& rows);

// What was measured of a condition; one of the three is there.
struct Measured {
    std::string condition;
    std::optional<TimeUnit> time_unit;
    std::optional<find::LevelFigures> level;
    std::optional<find::Lengths> intervals;
    std::optional<find::SetupAndHold> setup_and_hold;
};

// Whether nothing could be measured.
bool IsEmpty(const Measured& measured);
std::string MeasuredText(const Measured& measured);
std::string MeasuredJson(const Measured& measured);

}  // namespace corv::cli
