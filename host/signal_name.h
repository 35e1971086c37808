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

// Whether a name is a pattern (host/name_pattern.h), which may name several signals.
bool IsPattern(std::string_view name);

struct NamedSignal {
    std::string name;  // as shown
    ISignal* signal = nullptr;
    frame::ComPtr<ISignal> slice;  // what `signal` is then
};

// The signals of a container that a name or a pattern stands for, in their order: top-level ones,
// their members by full name, and slices, a(7 downto 4), which share the waves of the elements. A
// name has one signal at most: one that is written exactly so comes before others in another case,
// and what is declared by that name before an element. A pattern takes whole signals; it takes
// members where the signal itself does not match: "rec.*", "a(*)". Brackets are read as an element
// or a slice first, and as a set of characters where there is no such one.
std::vector<NamedSignal> SelectSignals(ISignalContainer& signals, const std::string& pattern);

// The full names of the signals of a container and of the fields of records, no elements of arrays,
// up to a number of them.
std::vector<std::string> DeclaredNames(ISignalContainer& signals, std::size_t most);

}  // namespace corv::host
