#include "stremo/progress.h"

#include <utility>

#include "corv/stremo/streams.h"
#include "platform/guard.h"
#include "platform/immortal.h"

namespace corv {
namespace {

StreamProgress& HostsFunction() noexcept {
    static platform::Immortal<StreamProgress> function;
    return *function;
}

}  // namespace

void SetStreamProgress(StreamProgress progress) noexcept {
    HostsFunction() = std::move(progress);
}

void recording::TellProgress(std::uint64_t done, std::uint64_t all) noexcept {
    if (HostsFunction()) {
        platform::Done([&] { HostsFunction()(done, all); });
    }
}

void recording::ResetProgress() noexcept {
    HostsFunction() = nullptr;
}

}  // namespace corv
