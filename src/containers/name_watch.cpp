#include "containers/name_watch.h"

#include "frame/com_class.h"
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
    static const void* const own_class = frame::ClassOf(CSignal(nullptr));
    if (frame::ClassOf(signal) != own_class) {
        return false;
    }
    static_cast<CSignal&>(signal).WatchName();
    return true;
}

}  // namespace corv::containers
