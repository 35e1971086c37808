#pragma once

#include "corv/containers/signal_container.h"
#include "corv/frame/com_ptr.h"
#include "corv/signals/signal.h"
#include "corv/stremo/events_stream_read.h"

namespace corv::stimulus {

// Loads the signals of a recording into a new container and finds one there by its name. Null, with
// the container that was made, when something fails.
inline ISignal* FindRecordedSignal(stremo::IEventsStreamRead& reader, const char* name,
                                   frame::ComPtr<ISignalContainer>& container) noexcept {
    ISignal* signal = nullptr;
    const bool found = SUCCEEDED(CreateSignalContainer(container.Out(), nullptr)) &&
                       SUCCEEDED(container->LoadFromReader(&reader)) &&
                       SUCCEEDED(container->FindSignal(name, &signal));
    return found ? signal : nullptr;
}

}  // namespace corv::stimulus
