#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "corv/containers/signal_container.h"
#include "corv/frame/com_ptr.h"
#include "corv/signals/signal.h"

// Names of signals as users write them: ".", "/" and the hierarchy separator all separate levels,
// a[3] is a(3), a[7:4] is a(7 downto 4), and case does not matter outside extended identifiers.
namespace corv::host {

// Returns the name in the form in which names are compared: "tb.u1.a(3)", in lower case.
std::string PlainName(std::string_view name);

// The same for people to read, in its own case.
std::string ShownName(std::string_view name);

// Returns whether a name is a pattern (host/name_pattern.h), which may match several signals.
bool IsPattern(std::string_view name);

struct NamedSignal {
    std::string name;  // as shown
    ISignal* signal = nullptr;
    frame::ComPtr<ISignal> slice;  // owner of `signal` if that is a slice
};

// Returns the signals of a container that a name or a pattern selects, in their order: top-level
// ones, their members by full name, and slices, a(7 downto 4), which share the waves of the
// elements. A name selects at most one signal: an exact match comes before others in another case,
// and a signal declared under the name before an element. A pattern selects whole signals, and
// members where the signal itself does not match: "rec.*", "a(*)". Brackets are read as an element
// or a slice first and, if there is none, as a set of characters.
std::vector<NamedSignal> SelectSignals(ISignalContainer& signals, const std::string& pattern);

// Returns the full names of the signals of a container and of the fields of records, without
// elements of arrays, up to a number of them.
std::vector<std::string> DeclaredNames(ISignalContainer& signals, std::size_t most);

}  // namespace corv::host
