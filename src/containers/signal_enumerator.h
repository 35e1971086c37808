#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "containers/signal_container.h"
#include "corv/containers/signal_enumerator.h"
#include "corv/frame/interface_ids.h"
#include "frame/com_object.h"

namespace corv::containers {

// The position is an index, so that it means something after any change of the list; past the last
// signal it means the end.
class SignalEnumerator final
    : public frame::ComObject<SignalEnumerator, ISignalEnumerator, IID_ISignalEnumerator> {
public:
    // Stands on the first signal. The container must outlive the enumerator.
    explicit SignalEnumerator(const SignalContainer& container) noexcept : container_(&container) {}

    HRESULT CORV_CALL Next(std::uint32_t count, ISignal** signals,
                           std::uint32_t* delivered) noexcept override {
        const auto& list = container_->Signals();
        const std::size_t from = std::min(position_, list.size());
        const std::size_t taken = std::min<std::size_t>(count, list.size() - from);
        std::copy_n(list.data() + from, taken, signals);
        position_ = from + taken;
        if (delivered != nullptr) {
            *delivered = static_cast<std::uint32_t>(taken);
        }
        return taken > 0 ? S_OK : S_FALSE;
    }

    void CORV_CALL Reset() noexcept override { position_ = 0; }

private:
    const SignalContainer* container_;
    std::size_t position_ = 0;
};

}  // namespace corv::containers
