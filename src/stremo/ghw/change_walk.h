#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

#include "stremo/ghw/changes.h"

namespace corv::ghw {

inline constexpr std::string_view kSnapshotTag("SNP", 4);
inline constexpr std::string_view kSnapshotEnd("ESN", 4);
inline constexpr std::string_view kCyclesTag("CYC", 4);
inline constexpr std::string_view kCyclesEnd("ECY", 4);
inline constexpr std::string_view kHierarchyEnd("EOH", 4);
inline constexpr std::string_view kDirectoryTag("DIR", 4);
inline constexpr std::string_view kTailTag("TAI", 4);

// Reads the sections of values and passes them to a sink. It is a template, since its inner loop
// handles tens of millions of values a second:
//
//     void Time(std::int64_t time, std::size_t offset)    the time of the values that follow
//     void Value(Input& in, std::size_t rank)             reads the value of a net
//     bool Byte(std::size_t rank, unsigned value)         takes a value of one byte, if it can; a
//                                                         value that is refused goes to Value
//     void Forget()                                       the values since Time are void
template <class Sink>
class ChangeWalk {
public:
    // With null, nothing is noted.
    ChangeWalk(const ChangeSource& source, Sink& sink, Notes* notes)
        : source_(source),
          sink_(sink),
          notes_(notes),
          in_(source.file),
          most_list_(kMostValue * source.nets.size() + kPart / 4) {
        in_.SetBigEndian(source.big_endian);
        in_.GoTo(source.offset);
    }

    void Walk() {
        while (ReadSection()) {
        }
        if (!finished_ && notes_ != nullptr) {
            notes_->Add(in_.offset(), Ending());
        }
        Pass(source_.file.size());
    }

    // The latest time for which all values were read, -1 if there is none, and where the last of
    // these values ends.
    std::int64_t whole_time() const noexcept { return whole_time_; }
    std::size_t whole_end() const noexcept { return whole_end_; }

private:
    static constexpr std::size_t kNowhere = std::numeric_limits<std::size_t>::max();
    static constexpr std::size_t kPart = std::size_t{1} << 22;
    static constexpr std::size_t kMostValue = 20;  // the most bytes of a distance and a value

    void Pass(std::size_t offset) {
        source_.passed(source_.file.subspan(passed_, offset - passed_));
        passed_ = offset;
    }
    // Brings the bytes of a list that begins here and what surrounds it into memory. The longest
    // possible list is brought, so that reading it need not check for the end of a part.
    void Bring() {
        if (in_.left() > 0 && in_.offset() + most_list_ > brought_) [[unlikely]] {
            const std::size_t offset = in_.offset();
            brought_ = std::min(source_.file.size(), offset + kPart + most_list_);
            source_.content.BringPart(offset, brought_ - offset);
            brought_ = brought_ == source_.file.size() ? kNowhere : brought_;
        }
    }

    void Note(std::size_t offset, std::string_view sentence) {
        if (notes_ != nullptr) {
            notes_->Add(offset, sentence);
        }
    }

    std::string Ending() const {
        std::string text = in_.ok() ? "the recording has no end" : in_.failure();
        text += "; the last complete time is ";
        text += whole_time_ < 0 ? "none" : std::to_string(whole_time_) + " ";
        text += whole_time_ < 0 ? "" : source_.time_scale.unit_name();
        return text;
    }

    // Returns false at the end of what can be read.
    bool ReadSection() {
        Bring();
        if (in_.Skip(kSnapshotTag)) {
            ReadSnapshot();
        } else if (in_.Skip(kCyclesTag)) {
            ReadCycles();
        } else if (in_.Skip(kDirectoryTag)) {
            finished_ = true;
            CheckTail();
            return false;
        } else if (!in_.Skip(kHierarchyEnd)) {
            return in_.left() >= kDirectoryTag.size() && FindSection();
        }
        return in_.ok();
    }

    // A finished file ends with a mark and eight bytes.
    void CheckTail() {
        constexpr std::size_t kSize = 12;
        const std::size_t offset = source_.file.size() - std::min(source_.file.size(), kSize);
        if (Find(kTailTag, offset) != offset) {
            Note(source_.file.size(), "the file ends in its directory; it has all values");
        }
    }

    // The mark at this place is damaged. After the snapshot these must be the cycles; otherwise
    // reading continues at the next section that can be found.
    bool FindSection() {
        constexpr std::string_view kSnapshot("SNP\0\0\0\0", 8);
        const std::size_t offset = in_.offset();
        const std::size_t next = std::min(Find(kSnapshot, offset), FindCycles(offset));
        brought_ = 0;
        if (!behind_snapshot_ && next == kNowhere) {
            in_.Fail("what stands here is no section that is known");
            return false;
        }
        Note(offset, "the mark of a section is damaged");
        in_.GoTo(behind_snapshot_ ? offset + kCyclesTag.size() : next);
        if (behind_snapshot_) {
            ReadCycles();
        }
        return in_.ok();
    }

    // Returns where these bytes are, from a place on, searching part by part.
    std::size_t Find(std::string_view bytes, std::size_t from) {
        const Bytes file = source_.file;
        while (file.size() - from >= bytes.size()) {
            const std::size_t size = std::min(kPart, file.size() - from);
            const Bytes part = source_.content.BringPart(from, size).first(size);
            const auto found = std::search(part.begin(), part.end(), bytes.begin(), bytes.end());
            source_.content.Forget(part);
            if (found != part.end()) {
                return from + static_cast<std::size_t>(found - part.begin());
            }
            from += size == kPart ? size - bytes.size() + 1 : size;
        }
        return kNowhere;
    }
    // Finds the mark of the cycles after the end of a snapshot.
    std::size_t FindCycles(std::size_t from) {
        const std::size_t found = Find(std::string_view("ESN\0CYC", 8), from);
        return found == kNowhere ? kNowhere : found + kSnapshotEnd.size();
    }

    void ReadSnapshot() {
        const std::size_t begin = in_.offset();
        in_.Number32();
        SetTime(static_cast<std::int64_t>(in_.Number64()), begin);
        for (std::size_t i = 0; i < source_.nets.size() && in_.ok(); ++i) {
            sink_.Value(in_, i);
        }
        if (!in_.cut() && !in_.Skip(kSnapshotEnd) && !in_.IsCutIn(kSnapshotEnd)) {
            Resume(begin);
        }
        behind_snapshot_ = in_.ok();
        TimeIsWhole();
    }

    // The values of the snapshot do not match the nets. If no net is missing, the values of the
    // cycles can still be assigned; a snapshot after other values is damage that ends the
    // recording.
    void Resume(std::size_t begin) {
        const std::size_t cycles = FindCycles(begin);
        brought_ = 0;
        sink_.Forget();
        in_.GoTo(begin);
        if (whole_time_ >= 0 || !source_.nets.dense() || cycles == kNowhere) {
            in_.Fail("the values of the snapshot do not fit the signals");
            return;
        }
        Note(begin,
             "the values of the snapshot do not fit the signals; they are left out, and "
             "others may be wrong");
        in_.GoTo(cycles);
    }

    void ReadCycles() {
        behind_snapshot_ = false;
        Bring();
        SetTime(static_cast<std::int64_t>(in_.Number64()), in_.offset() - 8);
        while (in_.ok() && ReadList()) {
            TimeIsWhole();
            const std::size_t offset = in_.offset();
            const std::int64_t step = in_.Signed();
            if (!in_.ok()) {
                return;
            }
            if (step == -1) {
                EndCycles();
                return;
            }
            if (step < 0 || step > std::numeric_limits<std::int64_t>::max() - time_) {
                in_.GoTo(offset);
                in_.Fail("the time goes back");
                return;
            }
            SetTime(time_ + step, offset);
            if (offset - passed_ >= kPart) [[unlikely]] {
                Pass(offset);
            }
            Bring();
        }
    }

    void EndCycles() {
        if (!in_.Skip(kCyclesEnd)) {
            in_.Fail("the changes end without their mark");
        }
    }

    // Reads the changes of one time: pairs of a distance and a value, ended by the distance 0. A
    // distance counts ranks from the previous net of the list, so ranks rise; the first counts from
    // 0, so that rank 1 is the first net. Nearly all values are single bytes, which the fast path
    // handles. Returns false if the list is not complete.
    bool ReadList() {
        const std::size_t nets = source_.nets.size();
        std::size_t rank = 0;  // of the last net, counting from 1
        const unsigned char* at = in_.at();
        const unsigned char* const last =
            in_.at() + in_.left() - std::min<std::size_t>(in_.left(), 2);
        for (;;) {
            if (at < last) [[likely]] {
                // A distance of one byte or two without a branch, since the processor cannot
                // predict which it is. `distance - 1 < nets - rank` also rejects 0, by wrapping
                // around.
                const std::size_t more = *at >> 7;
                const std::size_t distance =
                    (*at & 0x7FU) | (std::size_t{at[1]} << 7 & (0 - more) & 0x3FFF);
                if (*at == 0) {
                    in_.MoveTo(at + 1);
                    return true;
                }
                if ((at[1] >> 7 & more) == 0 && distance - 1 < nets - rank &&
                    sink_.Byte(rank + distance - 1, at[1 + more])) [[likely]] {
                    rank += distance;
                    at += 2 + more;
                    continue;
                }
            }
            in_.MoveTo(at);
            const std::uint64_t distance = in_.Unsigned();
            if (distance == 0) {
                return in_.ok();
            }
            if (distance > nets - rank) {
                in_.Fail("a value is of a signal that is not there");
                return false;
            }
            rank += static_cast<std::size_t>(distance);
            sink_.Value(in_, rank - 1);
            if (!in_.ok()) [[unlikely]] {
                return false;
            }
            at = in_.at();
        }
    }

    void SetTime(std::int64_t time, std::size_t offset) {
        if (!in_.ok()) {
            return;
        }
        if (time < time_) {
            Note(offset, "the time goes back; the latest one is taken");
        }
        time_ = std::max(time, time_);
        sink_.Time(time_, offset);
    }

    void TimeIsWhole() noexcept {
        if (in_.ok()) {
            whole_time_ = time_;
            whole_end_ = in_.offset();
        }
    }

    const ChangeSource& source_;
    Sink& sink_;
    Notes* const notes_;
    Input in_;
    std::int64_t time_ = 0;
    std::int64_t whole_time_ = -1;
    std::size_t whole_end_ = 0;
    std::size_t passed_ = 0;
    const std::size_t most_list_;  // bytes of the longest list of values with what surrounds it
    std::size_t brought_ = 0;
    bool behind_snapshot_ = false;
    bool finished_ = false;
};

}  // namespace corv::ghw
