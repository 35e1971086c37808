#pragma once

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "platform/files.h"
#include "stremo/vcd/codes.h"
#include "stremo/vcd/notes.h"
#include "stremo/vcd/time.h"
#include "stremo/vcd/values.h"

namespace corv::vcd {

// Reads the changes of a file word by word and passes them to a sink:
//
//     void Time(std::uint64_t, const Byte* at)
//     bool Scalar(unsigned level, Code)     these five return false if the code is not
//     bool Vector(Digits, Code)             declared
//     bool Real(std::string_view, Code)
//     bool Text(std::string_view, Code)
//     bool Port(std::string_view, Code)
//     void BeginBlock(std::string_view, const Byte* at)    $dumpvars and the like
//     void EndBlock()
//     void Note(Problem, const Byte* at, std::string_view detail)
template <class Sink>
class Scanner {
public:
    Scanner(Sink& sink, const Byte* begin) noexcept : sink_(sink), at_(begin) {}

    // Reads the words that begin before `stop`, from bytes up to `end`. `last` means that no more
    // bytes follow; otherwise a text that has not ended is continued by the next call.
    void ReadTo(const Byte* stop, const Byte* end, bool last) {
        end_ = end;
        last_ = last;
        const Byte* at = in_text_ ? ReadText(at_) : at_;
        while (at < stop) {
            const unsigned lead = LevelOf(*at);
            if (lead < kLevels.size()) [[likely]] {
                at = ReadScalar(at, lead);
            } else if (lead == kLeadBlank) {
                ++at;
            } else if (lead == kLeadVector) {
                at = ReadVector(at);
            } else {
                at = ReadOther(at, lead);
            }
        }
        at_ = at;
    }
    const Byte* at() const noexcept { return at_; }

private:
    const Byte* ReadScalar(const Byte* at, unsigned level) {
        const Code code = ReadCode(at + 1, end_);
        if (code.length == 0) {
            sink_.Note(Problem::kNoCode, at, vcd::Text(at, at + 1));
        } else if (!sink_.Scalar(level, code)) {
            sink_.Note(Problem::kUndeclared, at, code.text());
        }
        return code.at + code.length;
    }

    const Byte* ReadVector(const Byte* at) {
        const Digits digits = ReadDigits(at + 1, end_);
        const Byte* const digits_end = digits.at + digits.count;
        const Byte* next = digits_end;
        if (end_ - next > 1 && !IsBlank(next[1])) [[likely]] {
            ++next;
        } else {
            next = SkipBlanks(next, end_);
        }
        const Code code = ReadCode(next, end_);
        return Tell(at, code, digits_end, sink_.Vector(digits, code));
    }

    const Byte* ReadOther(const Byte* at, unsigned lead) {
        switch (lead) {
            case kLeadTime:
                return ReadTime(at);
            case kLeadCommand:
                return ReadCommand(at);
            case kLeadReal:
            case kLeadText:
            case kLeadPort:
                return ReadValue(at, lead);
            default:
                return Leave(at);
        }
    }

    // Reads a real number, a text or the state of a port.
    const Byte* ReadValue(const Byte* at, unsigned lead) {
        const Byte* const value_end = WordEnd(at, end_);
        const std::string_view value = vcd::Text(at + 1, value_end);
        const Byte* next = value_end;
        if (lead == kLeadPort) {  // the strengths
            NextWord(next, end_);
            NextWord(next, end_);
        }
        const Code code = ReadCode(SkipBlanks(next, end_), end_);
        const bool declared = lead == kLeadReal   ? sink_.Real(value, code)
                              : lead == kLeadText ? sink_.Text(value, code)
                                                  : sink_.Port(value, code);
        return Tell(at, code, value_end, declared);
    }

    // Returns where to go on after a value and its code. An unknown code that reads as a time or a
    // command is one, and the code of the value is missing.
    const Byte* Tell(const Byte* at, const Code& code, const Byte* value_end, bool declared) {
        if (declared) [[likely]] {
            return code.at + code.length;
        }
        if (code.length == 0 || IsTimeWord(code.text()) || code.text() == "$end" ||
            FindCommand(code.text()) != nullptr) {
            if (code.length != 0) {
                sink_.Note(Problem::kNoCode, at, vcd::Text(at, value_end));
            } else {
                sink_.Note(Problem::kCut, at, {});
            }
            return code.at;
        }
        sink_.Note(Problem::kUndeclared, at, code.text());
        return code.at + code.length;
    }

    const Byte* ReadTime(const Byte* at) {
        std::uint64_t time = 0;
        const Byte* p = at + 1;
        constexpr std::ptrdiff_t kSafeDigits = 19;
        for (; p != end_ && p - at <= kSafeDigits && IsDigit(*p); ++p) {
            time = time * 10 + (*p - '0');
        }
        if (p == at + 1 || (p != end_ && !IsBlank(*p))) {
            return ReadLongTime(at);
        }
        sink_.Time(time, at);
        return p;
    }

    const Byte* ReadLongTime(const Byte* at) {
        const Byte* const end = WordEnd(at, end_);
        const std::string_view word = vcd::Text(at, end);
        if (!IsTimeWord(word)) {
            return Leave(at);
        }
        const auto time = ReadDecimal(word.substr(1));
        if (!time) {
            sink_.Note(Problem::kLateTime, at, word);
        }
        sink_.Time(time.value_or(~std::uint64_t{0}), at);
        return end;
    }

    const Byte* ReadCommand(const Byte* at) {
        const Byte* end = WordEnd(at, end_);
        const std::string_view word = vcd::Text(at, end);
        const Command* const command = FindCommand(word);
        if (word == "$end") {
            sink_.EndBlock();
        } else if (command == nullptr) {
            return Leave(at);
        } else if (command->begins_changes) {
            sink_.BeginBlock(word, at);
        } else {
            if (command->declares) {
                sink_.Note(Problem::kNonsense, at, word);
            }
            return ReadText(end);
        }
        return end;
    }

    const Byte* ReadText(const Byte* at) {
        const Byte* const begin = at;
        const CommandText text = ReadToEnd(at, end_);
        if (text.whole && !text.ended) {
            sink_.Note(Problem::kMissingEnd, begin, {});
        }
        in_text_ = !text.whole && !last_;
        return at;
    }

    const Byte* Leave(const Byte* at) {
        const Byte* const end = WordEnd(at, end_);
        sink_.Note(Problem::kNonsense, at, vcd::Text(at, end));
        return end;
    }

    Sink& sink_;
    const Byte* at_;
    const Byte* end_ = nullptr;
    bool last_ = false;
    bool in_text_ = false;
};

// How many bytes are brought for a part of a scan, and after it: a change that is longer than the
// latter is cut.
inline constexpr std::size_t kScanPart = std::size_t{1} << 22;
inline constexpr std::size_t kScanRest = std::size_t{1} << 20;

// Scans the content from an offset up to `end`, part by part, until `done()`. `passed` is called
// with each part that has been scanned, which is released after that.
template <class Sink, class Done, class Passed>
void ScanContent(const platform::FileContent& content, Sink& sink, std::size_t offset,
                 const Byte* end, Done done, Passed passed) {
    const Byte* const begin = content.bytes().data();
    Scanner scanner(sink, begin + offset);
    while (scanner.at() < end && !done()) {
        const Byte* const from = scanner.at();
        const auto left = static_cast<std::size_t>(end - from);
        const std::size_t part = std::min(left, kScanPart);
        const std::size_t whole = std::min(left, kScanPart + kScanRest);
        content.Bring({from, whole});
        scanner.ReadTo(from + part, from + whole, whole == left);
        passed(platform::Bytes(from, scanner.at()));
        content.Forget({from, scanner.at()});
    }
}

}  // namespace corv::vcd
