#include "tree/running_operations.h"

namespace corv::tree {
namespace {

constinit thread_local RunningOperations running;

}  // namespace

RunningOperations& Running() noexcept {
    return running;
}

}  // namespace corv::tree
