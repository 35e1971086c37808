#include "tests/support/failing_alloc.h"

#include <cstdlib>
#include <new>

namespace {

struct Countdown {
    long left = 0;  // 0: not armed
    bool sticky = false;
    bool failed = false;
};

thread_local Countdown countdown;

bool MustFail() noexcept {
    if (countdown.left == 0) {
        return false;
    }
    if (countdown.left > 1) {
        --countdown.left;
        return false;
    }
    countdown.left = countdown.sticky ? 1 : 0;
    countdown.failed = true;
    return true;
}

void* Allocate(std::size_t size) noexcept {
    return MustFail() ? nullptr : std::malloc(size > 0 ? size : 1);
}

}  // namespace

// Arrays and aligned blocks are left to the default, which stands on these or on its own pair.
void* operator new(std::size_t size) {
    if (void* block = Allocate(size)) {
        return block;
    }
    throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return Allocate(size);
}
void operator delete(void* block) noexcept {
    std::free(block);
}
void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}
void operator delete(void* block, const std::nothrow_t&) noexcept {
    std::free(block);
}

namespace corv::test {

void ArmFailingAlloc(long nth, bool sticky) noexcept {
    countdown = {nth, sticky, false};
}

bool DisarmFailingAlloc() noexcept {
    countdown.left = 0;
    return countdown.failed;
}

}  // namespace corv::test
