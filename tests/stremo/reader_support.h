#pragma once

#include "corv/signals/hierarchy_separator.h"
#include "corv/stremo/streams.h"
#include "tests/support/recorded.h"
#include "tests/support/test.h"

// What the tests of all formats read with.
namespace corv::test {

// A signal as a test sees it.
struct SeenSignal {
    // Of several changes at one time the last counts, and only when it is one.
    void Add(std::int64_t time, const std::string& value) {
        if (changes.empty() || changes.back().second != value) {
            changes.emplace_back(time, value);
        }
    }
    bool operator==(const SeenSignal&) const = default;

    std::string name;
    std::string type;
    std::vector<std::pair<std::int64_t, std::string>> changes{};
    int handle = -1;
    std::int64_t latest = -1;
};
inline void PrintTo(const SeenSignal& signal, std::ostream* out) {
    *out << signal.name << " " << signal.type;
    for (const auto& [time, value] : signal.changes) {
        *out << " | " << time << " " << value;
    }
}

// A name with dots between its scopes.
inline std::string Dotted(std::string name) {
    std::replace(name.begin(), name.end(), HierarchySeparator(), '.');
    return name;
}

// "a: 0 1, 5 0; v: 0 0101", signals without changes left out.
inline std::string ChangeText(const std::vector<SeenSignal>& signals) {
    std::string text;
    for (const SeenSignal& signal : signals) {
        std::string list;
        for (const auto& [time, value] : signal.changes) {
            list += (list.empty() ? "" : ", ") + std::to_string(time) + " " + value;
        }
        text += list.empty() ? "" : (text.empty() ? "" : "; ") + signal.name + ": " + list;
    }
    return text;
}

// All signals and events of a reader, whose types must be ones.
inline Recorded AllOf(stremo::IEventsStreamRead& reader) {
    Recorded recorded(reader);
    EXPECT_TRUE(recorded.is_sound) << LastStreamError();
    for (const RecordedSignal& signal : recorded.signals) {
        EXPECT_NE(signal.kind->GetKind(), KTypeInfo::KindNone) << signal.info.type;
    }
    return recorded;
}

}  // namespace corv::test
