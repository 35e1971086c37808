#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "corv/containers/signal_container.h"
#include "corv/frame/com_ptr.h"
#include "corv/signals/signal.h"

// Names of signals as users write them: ".", "/" and the hierarchy separator all stand between
// levels, a[3] is a(3), a[7:4] is a(7 downto 4), and case does not matter outside extended
// identifiers.
namespace corv::host {

// The name in the one form in which names are compared: "tb.u1.a(3)", in lower case.
std::string PlainName(std::string_view name);

// The same for people to read, in its own case.
std::string ShownName(std::string_view name);

// Whether a plain name fits a pattern: "*" stands for anything within a level, where the index of
// an element is a level of its own, "**" for anything.
bool FitsGlob(std::string_view name, std::string_view pattern);

struct NamedSignal {
    std::string name;  // as shown
    ISignal* signal = nullptr;
    frame::ComPtr<ISignal> slice;  // what `signal` is then
};

// The signals of a container that a pattern names: top-level ones, their members by full name, and
// slices, a(7 downto 4), which share the waves of the elements. Without "*" there is one at most.
std::vector<NamedSignal> SelectSignals(ISignalContainer& signals, const std::string& pattern);

// The full names of all signals, members included, up to a number of them.
std::vector<std::string> AllNames(ISignalContainer& signals, std::size_t most);

}  // namespace corv::host
