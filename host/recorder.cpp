#include "host/recorder.h"

#include <algorithm>
#include <memory>
#include <queue>
#include <stdexcept>
#include <utility>

#include "corv/containers/signal_container.h"
#include "corv/stremo/events_stream_write.h"
#include "corv/stremo/stream_error.h"
#include "corv/typeinfo/type_info.h"

namespace corv::host {
namespace {

void Check(bool done) {
    if (!done) {
        throw std::runtime_error(LastStreamError());
    }
}

// Gives a signal and all below it a handle and the time of the last event that is written.
void Prepare(ISignal& signal, std::int64_t end, int& next_handle) {
    signal.SetHandle(next_handle++);
    std::int64_t latest = 0;
    if (ISignalContainer* const members = signal.GetSubSignals()) {
        ISignal* member = nullptr;
        for (std::uint32_t i = 0; SUCCEEDED(members->GetAt(i, &member)); ++i) {
            Prepare(*member, end, next_handle);
            latest = std::max(latest, member->GetMaxTime());
        }
    } else if (ISignalWave* const wave = signal.GetWave()) {
        IWaveEvent* event = nullptr;
        latest = SUCCEEDED(wave->FindEvent(end, FindAtOrBefore, &event)) ? event->GetTime() : 0;
    }
    signal.SetProperty("MaxTime", std::to_string(latest).c_str());
}

void WriteTypes(IEventsStreamWrite& writer, ISignal& signal) {
    Check(writer.WriteTypeInfo(signal.GetHandle(), signal.GetTypeInfo()));
    if (ISignalContainer* const members = signal.GetSubSignals()) {
        ISignal* member = nullptr;
        for (std::uint32_t i = 0; SUCCEEDED(members->GetAt(i, &member)); ++i) {
            WriteTypes(writer, *member);
        }
    }
}

// The next event of a leaf.
struct Next {
    std::int64_t time;
    std::size_t leaf;
    bool operator>(const Next& other) const {
        return time != other.time ? time > other.time : leaf > other.leaf;
    }
};

// The events of all leaves, merged in order of time.
void WriteEvents(IEventsStreamWrite& writer, const std::vector<ISignal*>& leaves,
                 std::int64_t end) {
    struct Leaf {
        frame::ComPtr<IWaveEventEnumerator> events;
        unsigned size;
    };
    std::vector<Leaf> sources(leaves.size());
    std::priority_queue<Next, std::vector<Next>, std::greater<>> queue;
    for (std::size_t i = 0; i < leaves.size(); ++i) {
        const KTypeInfo type{CString(leaves[i]->GetTypeInfo())};
        sources[i].size = static_cast<unsigned>(type.GetScalarSize());
        if (SUCCEEDED(leaves[i]->EnumEvents(sources[i].events.Out())) &&
            sources[i].events->HasEvents() != 0) {
            queue.push({sources[i].events->CurrentTime(), i});
        }
    }
    while (!queue.empty() && queue.top().time <= end) {
        const Next next = queue.top();
        queue.pop();
        IWaveEvent* event = nullptr;
        sources[next.leaf].events->Next(1, &event, nullptr);
        Check(writer.WriteEvent(leaves[next.leaf]->GetHandle(), &next.time, event->GetValueData(),
                                sources[next.leaf].size));
        if (const std::int64_t time = sources[next.leaf].events->CurrentTime(); time != -1) {
            queue.push({time, next.leaf});
        }
    }
}

}  // namespace

void WriteRecording(const std::string& file_name,
                    const std::vector<std::pair<std::string, ISignal*>>& signals,
                    std::int64_t end) {
    const std::unique_ptr<IEventsStreamWrite> writer(stremo::CreateStreamWrite(file_name.c_str()));
    Check(writer != nullptr);
    frame::ComPtr<ISignalContainer> container;
    if (FAILED(CreateSignalContainer(container.Out(), nullptr))) {
        throw std::runtime_error("out of memory");
    }
    int next_handle = 0;
    std::vector<ISignal*> leaves;
    for (const auto& [name, signal] : signals) {
        signal->SetName(name.c_str());
        Prepare(*signal, end, next_handle);
        container->Add(signal);  // a composite one has no place in the handle manager
        for (ISignal* const leaf : LeavesOf(*signal)) {
            leaves.push_back(leaf);
        }
    }
    Check(SUCCEEDED(container->WriteToWriter(writer.get())));
    for (const auto& [name, signal] : signals) {
        WriteTypes(*writer, *signal);
    }
    WriteEvents(*writer, leaves, end);
    Check(writer->Close());
}

}  // namespace corv::host
