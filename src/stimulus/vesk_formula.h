#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "corv/platform/cstring.h"
#include "corv/stimulus/time_unit.h"

// The compact notation of gate-level waveforms, read into a tree and written as an ordinary
// formula.
//
//     notation = { value | group } [ "/CLK" anything ]
//     group    = "(" { value | group } ")" digits
//     value    = ( character | "[" hexadecimal "]" ) duration
//     duration = digits [ "." digits ] [ unit of two letters ]
//
// Letters count as upper case; white space is allowed only between items. A value or group that
// cannot be read is left out; VeskFault lists what makes the whole text unreadable.

// What is wrong at one place of a notation text.
enum class VeskFault {
    UnmatchedParenthesis,  // from here on the text is unreadable
    UnmatchedBracket,
    NothingAfterGroup,
    NothingAfterValue,
    NothingAfterPoint,
    NestedTooDeep,
    NoDuration,  // from here on: left out or without effect
    NotHexadecimal,
    TooLong,
    GroupDropped,
    GroupWithoutCount,
    NoValue,   // a formula would read the character as a quote or a separator
    NoLength,  // the value is kept, but lasts 0
};

// Returns whether the fault makes the whole text, or the group that it is in, unreadable.
constexpr bool IsFatal(VeskFault fault) noexcept {
    return fault <= VeskFault::NestedTooDeep;
}

struct VeskProblem {
    VeskFault fault;
    std::size_t position;  // in the text passed to Parse
    std::size_t length;
};

class CVeskValue;

// How long a node lasts, and how the text that it writes begins. Calculated without unrolling.
struct VeskExtent {
    enum class Front { Nothing, Comma, Value };

    std::int64_t length = 0;       // picoseconds, saturating
    std::int64_t last_start = -1;  // of the value that starts last; -1 without values
    Front front = Front::Nothing;
};

class CVeskNode {
public:
    CVeskNode() = default;
    CVeskNode(const CVeskNode&) = delete;
    CVeskNode& operator=(const CVeskNode&) = delete;
    virtual ~CVeskNode() = default;

    // Appends the node's elements, the first at the running time (in picoseconds), and advances
    // that time. Returns false if a value would start past the range of times.
    virtual bool WriteFormula(std::string& out, std::int64_t& running_time) const = 0;
    // Returns whether no group in the node repeats more often.
    virtual bool CheckMaxRepeat(std::uint32_t maximum) const noexcept = 0;
    // Returns how many entries between commas the node writes, saturating.
    virtual std::uint64_t CountEntries() const noexcept = 0;
    virtual VeskExtent Measure() const noexcept = 0;
    // Calls back for every value of the text, in its order, without unrolling.
    virtual void ForEachValue(const std::function<void(const CVeskValue&)>& visit) const = 0;
};

class CVeskValue final : public CVeskNode {
public:
    CVeskValue(std::uint32_t value, TTimeUnit<std::int64_t> duration, bool hexadecimal,
               std::size_t position) noexcept
        : value_(value), duration_(duration), hexadecimal_(hexadecimal), position_(position) {}

    // Appends the value as the ordinary formula has it.
    void AppendText(std::string& out) const;
    // Where the value is in the text that was parsed.
    std::size_t Position() const noexcept { return position_; }

    bool WriteFormula(std::string& out, std::int64_t& running_time) const override;
    bool CheckMaxRepeat(std::uint32_t) const noexcept override { return true; }
    std::uint64_t CountEntries() const noexcept override { return 1; }
    VeskExtent Measure() const noexcept override {
        return {duration_.GetTime(), 0, VeskExtent::Front::Value};
    }
    void ForEachValue(const std::function<void(const CVeskValue&)>& visit) const override {
        visit(*this);
    }

private:
    std::uint32_t value_;  // a character's code, or a number
    TTimeUnit<std::int64_t> duration_;
    bool hexadecimal_;  // the value is a number
    std::size_t position_;
};

class CVeskGroup final : public CVeskNode {
public:
    void Append(std::unique_ptr<CVeskNode> child) { children_.push_back(std::move(child)); }
    void SetRepeatCount(std::uint32_t count) noexcept { repeat_count_ = count; }
    bool IsEmpty() const noexcept { return children_.empty(); }

    bool WriteFormula(std::string& out, std::int64_t& running_time) const override;
    bool CheckMaxRepeat(std::uint32_t maximum) const noexcept override;
    std::uint64_t CountEntries() const noexcept override;
    VeskExtent Measure() const noexcept override;
    void ForEachValue(const std::function<void(const CVeskValue&)>& visit) const override;

private:
    std::vector<std::unique_ptr<CVeskNode>> children_;  // in text order
    std::uint32_t repeat_count_ = 1;
};

class CVeskFormula {
public:
    // A text that unrolls to more entries than this is not converted (2^24, about 200 MB of
    // formula).
    static constexpr std::uint64_t kMaxEntries = 16'777'216;
    // Nor is a text that nests more groups than this; parsing and writing are recursive.
    static constexpr int kMaxDepth = 256;
    static constexpr std::size_t kMaxProblems = 100;

    // Reads a text; null counts as empty. Returns false if it is unreadable.
    bool Parse(const char* text) { return Parse(std::string_view(text ? text : "")); }
    bool Parse(std::string_view text);

    // Writes the ordinary formula. Returns false, with `out` empty, before the first Parse, for a
    // text without any item, and for one that unrolls too far or runs past the range of times.
    bool Convert(CString& out) const;

    bool CheckMaxRepeat(std::uint32_t maximum) const noexcept {
        return root_ && root_->CheckMaxRepeat(maximum);
    }

    // Return whether Convert's formula stays within the range of times, and whether it begins with
    // a value, both without writing it.
    bool FitsRange() const noexcept;
    bool StartsWithValue() const noexcept {
        return root_ && root_->Measure().front == VeskExtent::Front::Value;
    }
    // Returns the time at which the last value starts, in picoseconds; 0 without values.
    std::int64_t LastStart() const noexcept {
        return root_ ? std::max<std::int64_t>(root_->Measure().last_start, 0) : 0;
    }
    void ForEachValue(const std::function<void(const CVeskValue&)>& visit) const {
        if (root_) {
            root_->ForEachValue(visit);
        }
    }

    // Returns the problems that the last Parse found, at most kMaxProblems.
    const std::vector<VeskProblem>& Problems() const noexcept { return problems_; }
    // Returns whether no item of the last text could be read.
    bool IsEmpty() const noexcept { return !root_ || root_->IsEmpty(); }
    std::uint64_t CountEntries() const noexcept { return root_ ? root_->CountEntries() : 0; }

private:
    class Parser;

    std::unique_ptr<CVeskGroup> root_;
    bool clock_ = false;  // the whole pattern repeats
    bool too_deep_ = false;
    std::vector<VeskProblem> problems_;
};
