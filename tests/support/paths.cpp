#include "tests/support/paths.h"

namespace corv::test {

std::string TestFolder() {
    return CORV_TEST_FOLDER;
}

std::string ProgramFile() {
    return CORV_PROGRAM;
}

std::string SharedLibraryFile() {
    return CORV_SHARED_LIBRARY;
}

std::string GuestFile() {
    return CORV_GUEST;
}

std::string BaseLibraryFile() {
    return CORV_BASE_LIBRARY;
}

}  // namespace corv::test
