#pragma once

#include <system_error>

#include "tests/support/test.h"

// Tests that run other programs, which may not be installed.
namespace corv::test {

inline bool HasProgram(const std::string& name) {
    return std::system(("command -v " + name + " >/dev/null 2>&1").c_str()) == 0;
}

// A folder for the files of a test, which go with it.
class TemporaryFolder {
public:
    TemporaryFolder()
        : path_(std::filesystem::temp_directory_path() /
                ("corv_" + std::to_string(std::random_device()()))) {
        std::filesystem::create_directory(path_);
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    std::string Path(const std::string& name) const { return (path_ / name).string(); }

    // Runs shell commands in the folder; whether they end well.
    bool Run(const std::string& commands) const {
        const std::string line = "cd '" + path_.string() + "' && { " + commands + "; } >> log 2>&1";
        return std::system(line.c_str()) == 0;
    }
    // What they have printed.
    std::string Log() const {
        std::ifstream file(path_ / "log");
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }

private:
    std::filesystem::path path_;
};

}  // namespace corv::test
