#include "containers/name_watch.h"

#include <atomic>

#include "signals/signal.h"

namespace corv::containers {
namespace {

constinit std::atomic<std::uint64_t> renamings = 0;

}  // namespace

std::uint64_t Renamings() noexcept {
    return renamings.load(std::memory_order_relaxed);
}

void CountRenaming() noexcept {
    renamings.fetch_add(1, std::memory_order_relaxed);
}

bool WatchName(ISignal& signal) noexcept {
    CSignal* const own = CSignal::FromOwn(signal);
    if (own != nullptr) {
        own->WatchName();
    }
    return own != nullptr;
}

}  // namespace corv::containers
