#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "corv/signals/signal.h"
#include "host/trace.h"

namespace corv::host {

// Turns the characters of a vector's elements into its text.
using BusFormat = std::function<std::string(std::string_view)>;

// The scalar signals below one, in order; the signal itself when it is scalar.
std::vector<ISignal*> LeavesOf(ISignal& signal);

// What a signal does in a window, the end included, read from its waves. A vector whose elements
// are single characters is written through `format`, any other value as its value text.
Trace ReadTrace(ISignal& signal, TimeWindow window, const BusFormat& format);

// The same with texts made otherwise: of an event of a scalar signal, of the leaves of a composite.
Trace ReadScalarTrace(ISignal& signal, TimeWindow window,
                      const std::function<std::string(IWaveEvent&)>& text_of);
Trace ReadBusTrace(ISignal& signal, TimeWindow window,
                   const std::function<std::string(IBusEvent&)>& text_of);

}  // namespace corv::host
