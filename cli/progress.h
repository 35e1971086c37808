#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace corv::cli {

// A line on standard error that tells how far long work has come: what it is, the part that is
// done, the time that is left. It appears on a terminal, after half a second, and goes when the
// work is done.
class Progress {
public:
    explicit Progress(const std::string& work);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress() { Clear(); }

    // How much is done of how much; in bytes, these are told as well.
    void Tell(double done, double all, bool in_bytes = false);

    // Takes the line away.
    void Clear();

private:
    using Clock = std::chrono::steady_clock;

    const std::string work_;
    const bool on_terminal_;
    const Clock::time_point start_ = Clock::now();
    Clock::time_point shown_ = start_;
    bool is_shown_ = false;
};

}  // namespace corv::cli
