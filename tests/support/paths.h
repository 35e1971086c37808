// Where the tests find what the build made and what lies beside them. The paths are compiled into
// one file only, so that every other test compiles the same in any folder.
#pragma once

#include <string>

namespace corv::test {

// The folder `tests` of the sources.
std::string TestFolder();

// What the build made: the program, the shared library, a module that uses it, and the library that
// stands for the host simulator's base library.
std::string ProgramFile();
std::string SharedLibraryFile();
std::string GuestFile();
std::string BaseLibraryFile();

}  // namespace corv::test
