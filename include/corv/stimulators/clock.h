#pragma once

#include <cstdint>

#include "corv/platform/cstring.h"
#include "corv/platform/export.h"

// The settings of a clock stimulator, which convert to the one-line record that a host stores and
// to the formula that CStimulus reads (docs/formats/clocks.md). No setting is checked for its
// range.
class CORV_API CClock {
public:
    // A frequency of 10 kHz with a duty cycle of 50 %, starting high at time 0.
    CClock() noexcept = default;
    CClock(const CClock&) noexcept = default;
    CClock& operator=(const CClock&) noexcept = default;
    virtual ~CClock();

    // The frequency or the period, in the rate unit.
    double GetRateValue() const noexcept { return rate_value_; }
    void SetRateValue(double value) noexcept { rate_value_ = value; }
    // The unit of the rate. For a period, a time unit of time_units.h; for a frequency, 0 Hz, 1
    // kHz, 2 MHz, 3 GHz, 4 THz.
    std::uint8_t GetRateUnit() const noexcept { return rate_unit_; }
    void SetRateUnit(std::uint8_t unit) noexcept { rate_unit_ = unit; }
    // True: the rate is a period; false: a frequency.
    bool GetRateType() const noexcept { return rate_type_; }
    void SetRateType(bool is_period) noexcept { rate_type_ = is_period; }
    // The time of the first edge, in the unit in which the formula is asked for.
    std::int64_t GetRateOffset() const noexcept { return rate_offset_; }
    void SetRateOffset(std::int64_t offset) noexcept { rate_offset_ = offset; }
    // The share of the period spent at the starting level, in percent.
    std::uint8_t GetRateCycle() const noexcept { return rate_cycle_; }
    void SetRateCycle(std::uint8_t percent) noexcept { rate_cycle_ = percent; }
    // True: the clock starts at 0; false: at 1.
    bool IsStartLow() const noexcept { return start_low_; }
    void SetStartLow(bool low) noexcept { start_low_ = low; }

    // Writes the settings record: rate value with six decimals, rate unit, rate type, the low 32
    // bits of the offset, rate cycle, start low: "10.000000;1;0;0;50;0". The text is empty if out
    // of memory.
    void StreamOut(CString& record) const noexcept;

    // Reads a settings record. Returns false for a null record and for one with fewer than six
    // fields; the fields before the missing one have been set by then. Runs of ";" count as one;
    // further fields are ignored.
    bool StreamIn(const char* record) noexcept;

    // Writes the clock's formula with its times in the unit, truncated: "1 0, 0 50 -r 100". If
    // `offset` is not null, it receives the offset and the pattern starts at 0; otherwise the
    // offset is part of the text. Always returns true; the text is empty if out of memory.
    bool GenerateFormula(CString& out, std::uint8_t target_unit,
                         std::int64_t* offset) const noexcept;

private:
    double rate_value_ = 10.0;
    std::uint8_t rate_unit_ = 1;
    bool rate_type_ = false;
    std::int64_t rate_offset_ = 0;
    std::uint8_t rate_cycle_ = 50;
    bool start_low_ = false;
};
