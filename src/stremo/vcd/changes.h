#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "stremo/block_builder.h"
#include "stremo/vcd/declarations.h"
#include "stremo/vcd/scanner.h"

namespace corv::vcd {

// Called with each part of a file that has been read.
using Passed = std::function<void(Bytes)>;

// The scanner's sink that puts the changes of a file into blocks. Values that a variable already
// has are dropped.
class Changes {
public:
    // `leaves` are those of interest, in rising order; an empty list means all.
    Changes(const platform::FileContent& content, const Declarations& declarations,
            const recording::SignalTable& signals, std::span<const std::uint32_t> leaves,
            recording::BlockSink& blocks, Notes& notes);

    // Reads all changes up to `end`. Returns false if the blocks could not be kept.
    bool Read(const Byte* end, const Passed& passed);

    // The latest time of the file in picoseconds, -1 if there is none.
    std::int64_t latest() const noexcept { return latest_; }

    // The operations of a scanner's sink.
    void Time(std::uint64_t time, const Byte* at);
    bool Scalar(unsigned level, const Code& code);
    bool Vector(const Digits& digits, const Code& code);
    bool Real(std::string_view text, const Code& code);
    bool Text(std::string_view text, const Code& code);
    bool Port(std::string_view states, const Code& code);
    void BeginBlock(std::string_view word, const Byte* at);
    void EndBlock() noexcept { block_ = nullptr; }
    void Note(Problem problem, const Byte* at, std::string_view detail) {
        notes_.Add(problem, static_cast<std::size_t>(at - file_.data()), detail);
    }

private:
    // A variable with its value.
    struct Target {
        Kind kind;
        bool wanted;
        bool known = false;  // of numbers
        std::uint32_t width;
        std::uint32_t leaf;
        std::uint32_t channel;
        std::uint32_t next;
        unsigned level = kNoLevel;  // of a scalar of bits
        std::uint64_t number = 0;   // an integer or the bits of a real
    };
    // The levels of a vector's elements, by channel: the bits of those that are 0 or 1, and the
    // mask of the others, whose levels are in levels_. A vector of 0 and 1 is then compared with
    // its new value by a single XOR.
    struct Held {
        std::uint32_t bits = 0;
        std::uint32_t others = 0;
    };

    void MakeTargets(const Declarations& declarations, std::span<const std::uint32_t> leaves);
    template <class Action>
    bool ForTargets(const Code& code, Action action);
    void SetLevel(Target& target, unsigned level);
    void SetDigits(Target& target, const Digits& digits);
    void SetVector(Target& target, const Digits& digits);
    void SetPlain(std::uint32_t channel, std::uint32_t bits);
    void SetLevels(std::uint32_t channel, const unsigned char* levels);
    void SetInteger(Target& target, const Digits& digits);
    void SetNumber(Target& target, std::uint64_t number);
    void SetText(Target& target, std::string_view text);
    void SpreadDigits(const Digits& digits, std::uint32_t width);
    void Trigger(const Target& target, const Digits& digits);
    void WrongKind(std::string_view value);
    void ReadLastWord(const Byte* end);
    void CountZeros(Bytes part) noexcept;

    const platform::FileContent& content_;
    const Bytes file_;
    const recording::SignalTable& signals_;
    Notes& notes_;
    const Codes& codes_;
    const TimeScale time_scale_;
    const std::size_t first_change_;
    recording::BlockBuilder builder_;

    std::vector<Target> targets_;
    std::vector<Held> held_;             // by channel
    std::vector<unsigned char> levels_;  // by leaf; for texts, the characters
    std::vector<bool> wanted_;           // by channel
    std::vector<unsigned char> spread_;  // the levels of a value's digits
    std::string characters_;             // of a text

    std::uint64_t time_ = 0;
    std::int64_t latest_ = -1;
    const Byte* block_ = nullptr;  // where the present block of values begins
    const Byte* off_ = nullptr;    // where the recording was switched off
    std::int64_t off_time_ = 0;
    std::uint64_t zeros_ = 0;  // bytes
    std::size_t first_zero_ = 0;
    bool block_over_ = false;  // the block contains a time
    bool kept_ = true;
};

}  // namespace corv::vcd
