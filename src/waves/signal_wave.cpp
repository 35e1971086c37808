#include "waves/signal_wave.h"

template class corv::waves::SignalWave<std::uint32_t>;
template class corv::waves::SignalWave<std::uint64_t>;

HRESULT CreateSignalWave(std::uint32_t wave_type, ISignalWave** wave) noexcept {
    switch (wave_type) {
        case 1:
        case 2:
        case 4:
            return corv::frame::CreateComObject<CSignalWave32>(wave);
        case 8:
            return corv::frame::CreateComObject<CSignalWave64>(wave);
        default:
            return E_OUTOFMEMORY;
    }
}
