#include "host/signal_trace.h"

#include <cmath>
#include <string_view>
#include <utility>

#include "corv/frame/com_ptr.h"
#include "corv/typeinfo/type_info.h"
#include "host/fit_text.h"

namespace corv::host {
namespace {

void AddLeaves(ISignal& signal, std::vector<ISignal*>& leaves) {
    ISignalContainer* const members = signal.GetSubSignals();
    if (members == nullptr) {
        leaves.push_back(&signal);
        return;
    }
    ISignal* member = nullptr;
    for (std::uint32_t i = 0; SUCCEEDED(members->GetAt(i, &member)); ++i) {
        AddLeaves(*member, leaves);
    }
}

void Add(Trace& trace, TimeWindow window, std::int64_t time, std::string text) {
    if (time < window.start) {
        trace.before = std::move(text);
    } else {
        trace.changes.push_back({time, std::move(text)});
    }
}

// Whether the values are arrays of single characters.
bool IsCharacters(const KTypeInfo& type) {
    const KTypeInfo& element = type.GetArrayElementKTypeInfo();
    if (type.GetKind() != KTypeInfo::KindArray || element.GetKind() != KTypeInfo::KindEnum) {
        return false;
    }
    for (int i = 0; i < element.GetNbOfValues(); ++i) {
        if (element.GetValue(i, false).GetLength() != 1) {
            return false;
        }
    }
    return true;
}

// Whether the values are levels of logic.
bool IsLevel(const KTypeInfo& type) {
    constexpr std::string_view kLevels = "UX01ZWLH-";
    bool level = type.GetKind() == KTypeInfo::KindEnum;
    for (int i = 0; level && i < type.GetNbOfValues(); ++i) {
        const CString literal = type.GetValue(i, true);
        level = literal.GetLength() == 3 && literal.GetAt(0) == '\'' &&
                kLevels.find(literal.GetAt(1)) != std::string_view::npos;
    }
    return level;
}

std::string TextOf(const char* text) {
    return FromVhdl(text != nullptr ? text : "");
}

// Numbers that no literal of VHDL stands for have words of their own.
std::string TextOf(ISignal& signal, IWaveEvent& event) {
    std::string text = TextOf(signal.GetEventText(&event));
    double number = 0;
    if (text.empty() && event.GetValueSize() == sizeof number &&
        event.GetValue(&number, sizeof number) == sizeof number && !std::isfinite(number)) {
        return std::isnan(number) ? "NaN" : number < 0 ? "-inf" : "inf";
    }
    return text;
}

}  // namespace

std::vector<ISignal*> LeavesOf(ISignal& signal) {
    std::vector<ISignal*> leaves;
    AddLeaves(signal, leaves);
    return leaves;
}

Trace ReadScalarTrace(ISignal& signal, TimeWindow window,
                      const std::function<std::string(IWaveEvent&)>& text_of) {
    Trace trace;
    frame::ComPtr<IWaveEventEnumerator> events;
    if (FAILED(signal.EnumEvents(events.Out()))) {
        return trace;
    }
    if (FAILED(events->Seek(window.start, FindBefore))) {
        events->Reset();
    }
    IWaveEvent* event = nullptr;
    while (events->Next(1, &event, nullptr) == S_OK && event->GetTime() <= window.end) {
        Add(trace, window, event->GetTime(), text_of(*event));
    }
    return trace;
}

Trace ReadBusTrace(ISignal& signal, TimeWindow window,
                   const std::function<std::string(IBusEvent&)>& text_of) {
    Trace trace;
    trace.bus = true;
    frame::ComPtr<IBusEventIterator> events;
    if (FAILED(signal.GetBusEventIterator(events.Out()))) {
        return trace;
    }
    IBusEvent& event = *events->GetEvent();
    while (events->Next() == S_OK && event.GetTime() <= window.end) {
        Add(trace, window, event.GetTime(), text_of(event));
    }
    return trace;
}

Trace ReadTrace(ISignal& signal, TimeWindow window, const BusFormat& format) {
    const KTypeInfo type{CString(signal.GetTypeInfo())};
    if (signal.GetSubSignals() == nullptr) {
        Trace trace = ReadScalarTrace(signal, window,
                                      [&](IWaveEvent& event) { return TextOf(signal, event); });
        trace.plain = !IsLevel(type);
        return trace;
    }
    const bool characters = IsCharacters(type);
    Trace trace = ReadBusTrace(signal, window, [&](IBusEvent& event) {
        const std::string text = TextOf(signal.GetValueTextAt(event.GetTime(), FindAtOrBefore));
        return characters ? format(text) : text;
    });
    trace.plain = !characters || !IsLevel(type.GetArrayElementKTypeInfo());
    return trace;
}

}  // namespace corv::host
