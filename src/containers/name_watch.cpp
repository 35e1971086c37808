#include "containers/name_watch.h"

#include "signals/signal.h"

namespace corv::containers {
namespace {

constinit std::uint64_t renamings = 0;

}  // namespace

std::uint64_t Renamings() noexcept {
    return renamings;
}

void CountRenaming() noexcept {
    ++renamings;
}

bool WatchName(ISignal& signal) noexcept {
    CSignal* const own = CSignal::FromOwn(signal);
    if (own != nullptr) {
        own->WatchName();
    }
    return own != nullptr;
}

}  // namespace corv::containers
