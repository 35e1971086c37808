#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace corv::find {

// Rising times, each kept as its distance from the one before in as few bytes as that takes: the
// edges of a clock take two or three bytes each.
class TimeList {
public:
    // Not before the last one.
    void Add(std::int64_t time) {
        auto left = static_cast<std::uint64_t>(time - last_);
        last_ = time;
        for (; left >= 0x80; left >>= 7) {
            bytes_.push_back(static_cast<unsigned char>(left | 0x80));
        }
        bytes_.push_back(static_cast<unsigned char>(left));
    }

    // Reads a list from its beginning, which must outlive the object and stay as it is.
    class Cursor {
    public:
        explicit Cursor(const TimeList& list) : list_(list) {}

        // -1 at the end.
        std::int64_t Next() {
            if (at_ == list_.bytes_.size()) {
                return -1;
            }
            std::uint64_t distance = 0;
            for (int shift = 0;; shift += 7) {
                const unsigned char byte = list_.bytes_[at_++];
                distance |= std::uint64_t{byte & 0x7FU} << shift;
                if (byte < 0x80) {
                    break;
                }
            }
            time_ += static_cast<std::int64_t>(distance);
            return time_;
        }

    private:
        const TimeList& list_;
        std::size_t at_ = 0;
        std::int64_t time_ = 0;
    };

private:
    std::vector<unsigned char> bytes_;
    std::int64_t last_ = 0;
};

}  // namespace corv::find
