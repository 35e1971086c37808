#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "corv/containers/signal_container.h"
#include "corv/frame/com_ptr.h"
#include "corv/signals/signal.h"
#include "corv/stremo/events_stream_read.h"

namespace corv::stimulus {

// Finds a signal of a recording by its name and loads it, with all that is declared together with
// it, into a new container. The hierarchy separator, "." and "/" are equivalent between levels, and
// so are square and round brackets. Of several names that differ in case an exact match comes
// first, and a signal declared under the name before an element of another one. A scalar is found
// even if a selection follows its name, as FindSignal does. Returns null, with the container that
// was made, if there is no such signal or something fails.
ISignal* FindRecordedSignal(stremo::IEventsStreamRead& reader, const char* name,
                            frame::ComPtr<ISignalContainer>& container) noexcept;

// Loads only the scalar of a handle. Returns null as above.
ISignal* LoadRecordedScalar(stremo::IEventsStreamRead& reader, int handle,
                            frame::ComPtr<ISignalContainer>& container) noexcept;

// Up to three names, ready to be shown, of signals whose last level is that of the name or similar
// to it (`like` is true), or else the name of the first signal.
struct SuggestedSignals {
    std::vector<std::string> names;
    bool like = false;
};
SuggestedSignals SuggestSignals(stremo::IEventsStreamRead& reader, std::string_view name);

}  // namespace corv::stimulus
