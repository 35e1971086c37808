#pragma once

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "corv/signals/hierarchy_separator.h"
#include "corv/typeinfo/type_info.h"
#include "stremo/byte_code.h"
#include "stremo/vcd/recording.h"
#include "tests/stremo/reader_support.h"
#include "tests/support/paths.h"

namespace corv::test {

// Null when the text can't be opened.
inline std::unique_ptr<recording::SignalReader> OpenVcdText(const std::string& text) {
    return ReaderOf(recording::OpenVcd("text.vcd", std::make_unique<HeldContent>(text)));
}

inline std::string ReadFileText(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    EXPECT_TRUE(file.is_open()) << name;
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}
inline std::string SampleName(const std::string& name) {
    return corv::test::TestFolder() + "/data/vcd/" + name;
}

// A top-level signal as a test sees it: one value for each time, that of all elements together.
struct SeenSignal {
    std::string name;
    std::string type;  // its name
    std::vector<std::pair<std::int64_t, std::string>> changes;
    bool operator==(const SeenSignal&) const = default;
};
inline void PrintTo(const SeenSignal& signal, std::ostream* out) {
    *out << signal.name << " " << signal.type;
    for (const auto& [time, value] : signal.changes) {
        *out << " | " << time << " " << value;
    }
}

// Looks at all signals of a reader. Values of one time become the last one.
class SeenSignals {
public:
    explicit SeenSignals(stremo::IEventsStreamRead& reader) : reader_(reader) {
        for (int i = 0; i < reader.GetSignalCount(); ++i) {
            Add(reader.GetSignalHandle(i));
        }
        const std::int64_t start = 0;
        EXPECT_TRUE(reader.Seek(&start));
        for (int handle; (handle = reader.Next()) != -1;) {
            unsigned char bytes[16] = {};
            EXPECT_TRUE(reader.ReadValue(bytes));
            Take(handle, *reader.GetCurrentTime(), recording::LoadNumber<std::uint64_t>(bytes));
        }
    }

    std::vector<SeenSignal> signals;
    int events = 0;

private:
    struct Element {
        std::size_t signal;
        std::size_t element;
    };

    void Add(int handle) {
        const std::size_t signal = signals.size();
        const int members = Ask(handle, signals.emplace_back());
        values_.emplace_back(static_cast<std::size_t>(std::max(members, 1)), "_");
        for (int i = 0; i < members; ++i) {
            elements_[reader_.GetSubSignalHandle(handle, i)].push_back(
                {signal, static_cast<std::size_t>(i)});
        }
        if (members < 0) {
            elements_[handle].push_back({signal, 0});
        }
        types_.push_back(std::make_unique<KTypeInfo>(CString(
            reader_.GetTypeString(members > 0 ? reader_.GetSubSignalHandle(handle, 0) : handle))));
    }

    // The number of members, -1 for a scalar.
    int Ask(int handle, SeenSignal& signal) {
        const SignalInfo info(reader_, handle);
        signal.name = info.name;
        const KTypeInfo type{CString(info.type)};
        EXPECT_NE(type.GetKind(), KTypeInfo::KindNone) << info.type;
        signal.type = type.GetTypeIdentifier().View();
        return info.composite ? info.members : -1;
    }

    std::string Shown(const KTypeInfo& type, std::uint64_t value) {
        if (type.GetTypeIdentifier() == CString("character")) {
            return std::string(1, static_cast<char>(value));
        }
        unsigned char bytes[16] = {};
        recording::StoreNumber(bytes, value);
        const std::string text(type.GetValueString(bytes, 10, 0, -1).View());
        return text.empty() ? "NaN" : text;
    }

    void Take(int handle, std::int64_t time, std::uint64_t value) {
        ++events;
        for (const Element& place : elements_[handle]) {
            auto& changes = signals[place.signal].changes;
            std::vector<std::string>& values = values_[place.signal];
            values[place.element] = Shown(*types_[place.signal], value);
            std::string whole;
            for (const std::string& element : values) {
                whole += element;
            }
            const bool trigger = signals[place.signal].type == "event";
            if (!trigger && !changes.empty() && changes.back().first == time) {
                changes.pop_back();
            }
            if (trigger || changes.empty() || changes.back().second != whole) {
                changes.emplace_back(time, whole);
            }
        }
    }

    stremo::IEventsStreamRead& reader_;
    std::map<int, std::vector<Element>> elements_;
    std::vector<std::vector<std::string>> values_;
    std::vector<std::unique_ptr<KTypeInfo>> types_;
};

// "a std_logic; v std_logic_vector(3 downto 0)", names with dots between their scopes.
inline std::string Listing(const std::vector<SeenSignal>& signals) {
    std::string text;
    for (const SeenSignal& signal : signals) {
        std::string name = signal.name;
        for (char& c : name) {
            c = c == HierarchySeparator() ? '.' : c;
        }
        text += (text.empty() ? "" : "; ") + name + " " + signal.type;
    }
    return text;
}

// "a: 0 1, 5 0; v: 0 0101", signals without changes left out.
inline std::string ChangeText(const std::vector<SeenSignal>& signals) {
    std::string text;
    for (const SeenSignal& signal : signals) {
        std::string list;
        for (const auto& [time, value] : signal.changes) {
            list += (list.empty() ? "" : ", ") + std::to_string(time) + " " + value;
        }
        if (!list.empty()) {
            text += (text.empty() ? "" : "; ") + signal.name + ": " + list;
        }
    }
    return text;
}

}  // namespace corv::test
