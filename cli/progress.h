#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace corv::cli {

// A line on standard error that shows how far long work has come: what it is, how much of it is
// done, and the time left. It appears on a terminal only, after half a second, and disappears when
// the work is done.
class Progress {
public:
    explicit Progress(const std::string& work);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress() { Clear(); }

    // Shows that `done` of `all` is done; if they are bytes, both are shown as well.
    void Tell(double done, double all, bool in_bytes = false);

    // Removes the line.
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
