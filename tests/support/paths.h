// Where the tests find what the build made and what lies beside them. The paths are compiled into
// one file only, so that every other test compiles the same in any folder.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

namespace corv::test {

// The folder `tests` of the sources.
std::string TestFolder();
// The bytes of a file, which must be there.
inline std::string FileText(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    EXPECT_TRUE(file.is_open()) << name;
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// What the build made: the program, the shared library, a module that uses it, and the library that
// stands for the host simulator's base library.
std::string ProgramFile();
std::string SharedLibraryFile();
std::string GuestFile();
std::string BaseLibraryFile();

}  // namespace corv::test
