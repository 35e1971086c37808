#include "host/signal_trace.h"

#include <utility>

#include "corv/frame/com_ptr.h"
#include "corv/typeinfo/type_info.h"

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

std::string TextOf(const char* text) {
    return text != nullptr ? text : "";
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
    if (signal.GetSubSignals() == nullptr) {
        Trace trace = ReadScalarTrace(
            signal, window, [&](IWaveEvent& event) { return TextOf(signal.GetEventText(&event)); });
        // the number 1 is no level
        trace.bus = KTypeInfo(CString(signal.GetTypeInfo())).GetKind() != KTypeInfo::KindEnum;
        return trace;
    }
    const bool characters = IsCharacters(KTypeInfo(CString(signal.GetTypeInfo())));
    return ReadBusTrace(signal, window, [&](IBusEvent& event) {
        const std::string text = TextOf(signal.GetValueTextAt(event.GetTime(), FindAtOrBefore));
        return characters ? format(text) : text;
    });
}

}  // namespace corv::host
