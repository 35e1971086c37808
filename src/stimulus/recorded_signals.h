#pragma once

#include "corv/containers/signal_container.h"
#include "corv/frame/com_ptr.h"
#include "corv/signals/signal.h"
#include "corv/stremo/events_stream_read.h"

namespace corv::stimulus {

// Loads the signals of a recording into a new container and finds one there by its name, as
// FindSignal does; a signal whose own name has "(" or "." in it, as those inside of generate
// statements have, is found by that too. Null, with the container that was made, when something
// fails.
ISignal* FindRecordedSignal(stremo::IEventsStreamRead& reader, const char* name,
                            frame::ComPtr<ISignalContainer>& container) noexcept;

}  // namespace corv::stimulus
