#pragma once

#include <cstddef>
#include <functional>
#include <limits>
#include <span>
#include <string>

#include "corv/signals/signal.h"
#include "host/trace.h"
#include "host/value_writer.h"

namespace corv::host {

inline constexpr std::size_t kAllChanges = std::numeric_limits<std::size_t>::max();

// Returns what a signal does in a window, the end included, read from the waves of its leaves.
// After the first `most` changes the trace is truncated. A vector whose elements are single
// characters is written with `format`.
Trace ReadTrace(ISignal& signal, TimeWindow window, const BusFormat& format,
                std::size_t most = kAllChanges);

// As above, with caller-supplied formatting of the values of the signal's leaves.
Trace ReadTrace(ISignal& signal, TimeWindow window,
                const std::function<std::string(std::span<const LeafValue>)>& text_of,
                std::size_t most = kAllChanges);

}  // namespace corv::host
