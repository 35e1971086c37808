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
// it, into a new container. The hierarchy separator, "." and "/" are alike between levels, square
// brackets are round ones. Of several names in different case the one that is written exactly so
// comes first, and what is declared by a name before an element of another signal. A scalar is
// found too when a selection follows its name, as FindSignal does. Null, with the container that
// was made, when there is none and when something fails.
ISignal* FindRecordedSignal(stremo::IEventsStreamRead& reader, const char* name,
                            frame::ComPtr<ISignalContainer>& container) noexcept;

// Loads the scalar of a handle alone. Null as above.
ISignal* LoadRecordedScalar(stremo::IEventsStreamRead& reader, int handle,
                            frame::ComPtr<ISignalContainer>& container) noexcept;

// The names, ready to be shown, of a few signals whose last level is the name's or like it; of the
// first signal when there are none. `like` tells which of these.
struct SuggestedSignals {
    std::vector<std::string> names;
    bool like = false;
};
SuggestedSignals SuggestSignals(stremo::IEventsStreamRead& reader, std::string_view name);

}  // namespace corv::stimulus
