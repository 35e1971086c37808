#include "stimulus/recorded_signals.h"

#include <cstdint>
#include <string_view>

#include "platform/ascii.h"

namespace corv::stimulus {
namespace {

// What FindSignal takes for selections belongs to the name of a signal here: gen(0)\u\bus(3) is the
// member (3) of gen(0)\u\bus.
ISignal* FindByOwnName(ISignalContainer& signals, std::string_view path) noexcept {
    ISignal* signal = nullptr;
    for (std::uint32_t i = 0; SUCCEEDED(signals.GetAt(i, &signal)); ++i) {
        const char* const own_name = signal->GetName();
        const std::string_view name = own_name != nullptr ? own_name : "";
        if (name.empty() || !platform::EqualNoCase(path.substr(0, name.size()), name)) {
            continue;
        }
        const std::string_view rest = path.substr(name.size());
        if (rest.empty()) {
            return signal;
        }
        ISignalContainer* const members = signal->GetSubSignals();
        if (members != nullptr && SUCCEEDED(members->FindSignal(rest.data(), &signal))) {
            return signal;
        }
    }
    return nullptr;
}

}  // namespace

ISignal* FindRecordedSignal(stremo::IEventsStreamRead& reader, const char* name,
                            frame::ComPtr<ISignalContainer>& container) noexcept {
    if (name == nullptr || FAILED(CreateSignalContainer(container.Out(), nullptr)) ||
        FAILED(container->LoadFromReader(&reader))) {
        return nullptr;
    }
    ISignal* signal = nullptr;
    return SUCCEEDED(container->FindSignal(name, &signal)) ? signal
                                                           : FindByOwnName(*container, name);
}

}  // namespace corv::stimulus
