#include "tree/renamings.h"

#include <atomic>

namespace corv::tree {
namespace {

constinit std::atomic<std::uint64_t> renamings = 0;

}  // namespace

std::uint64_t Renamings() noexcept {
    return renamings.load(std::memory_order_relaxed);
}

void CountRenaming() noexcept {
    renamings.fetch_add(1, std::memory_order_relaxed);
}

}  // namespace corv::tree
