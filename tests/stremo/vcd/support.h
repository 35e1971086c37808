#pragma once

#include "stremo/vcd/recording.h"
#include "tests/stremo/reader_support.h"
#include "tests/support/test.h"

namespace corv::test {

// Null when the text can't be opened.
inline std::unique_ptr<recording::SignalReader> OpenVcdText(const std::string& text) {
    return ReaderOf(recording::OpenVcd("text.vcd", std::make_unique<HeldContent>(text)));
}

inline std::string SampleName(const std::string& name) {
    return corv::test::TestFolder() + "/data/vcd/" + name;
}

// The top-level signals of a reader, those of elements with one value for each time.
struct SeenSignals {
    explicit SeenSignals(stremo::IEventsStreamRead& reader) {
        const Recorded recorded = AllOf(reader);
        events = recorded.events;
        for (std::size_t i = 0; i < recorded.signals.size(); i = recorded.signals[i].end) {
            const RecordedSignal& top = recorded.signals[i];
            const RecordedSignal& element = recorded.signals[top.end - 1];
            SeenSignal& seen = signals.emplace_back();
            seen.name = top.info.name;
            seen.type = top.kind->GetTypeIdentifier().View();
            if (seen.type == "event") {
                for (const auto& [time, value] : top.events) {
                    seen.changes.emplace_back(time, top.Text(value, 0));
                }
                continue;
            }
            recorded.ForEachMoment(i, [&](std::int64_t time, const auto& values) {
                std::string whole;
                for (const auto& value : values) {
                    whole += value ? Shown(element, *value) : "_";
                }
                seen.Add(time, whole);
            });
        }
    }

    std::vector<SeenSignal> signals;
    int events = 0;

private:
    static std::string Shown(const RecordedSignal& element, std::uint64_t value) {
        if (element.IsCharacter()) {
            return std::string(1, static_cast<char>(value));
        }
        const std::string text = element.Text(value, 0);
        return text.empty() ? "NaN" : text;
    }
};

// "a std_logic; v std_logic_vector(3 downto 0)", names with dots between their scopes.
inline std::string Listing(const std::vector<SeenSignal>& signals) {
    std::string text;
    for (const SeenSignal& signal : signals) {
        text += (text.empty() ? "" : "; ") + Dotted(signal.name) + " " + signal.type;
    }
    return text;
}

}  // namespace corv::test
