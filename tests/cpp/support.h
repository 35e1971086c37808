#pragma once

#include "corv/cpp/error.h"
#include "tests/support/test.h"

namespace corv::test {

// All events of a range.
template <class View>
auto List(const View& view) {
    return std::vector(view.begin(), view.end());
}

// What the work throws, empty when it throws nothing.
template <class Work>
std::string Thrown(Work work) {
    try {
        work();
        return "";
    } catch (const Error& error) {
        return error.what();
    }
}

}  // namespace corv::test
