#include "corv/library/library.h"

#include "corv/stimulators/counter.h"
#include "platform/address_range.h"
#include "signals/type_cache.h"
#include "signals/value_text.h"
#include "stimulus/event_files.h"
#include "stremo/progress.h"
#include "stremo/stream_registry.h"
#include "util/hierarchy_separator.h"

namespace corv {
namespace {

int attached = 0;

// Releases what the areas keep in addition to the objects of the host. Kept memory is returned
// last, after everything that may have used it.
void ReleaseState() noexcept {
    stimulus::DeleteEventFiles();
    recording::ResetStreams();
    recording::ResetProgress();
    ResetCounters();
    util::ResetHierarchySeparator();
    signals::ResetTypeCache();
    signals::ResetValueTexts();
    platform::AddressRange::ReleaseKept();
}

}  // namespace

void Attach() noexcept {
    if (attached++ == 0) {
        util::ReadHierarchySeparator();
    }
}

void Detach() noexcept {
    if (attached > 0 && --attached == 0) {
        ReleaseState();
    }
}

}  // namespace corv
