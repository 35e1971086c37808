#include "stimulus/recorded_signals.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <utility>

#include "platform/ascii.h"
#include "platform/guard.h"
#include "stimulus/recorded_name.h"
#include "stremo/signal_cursor.h"
#include "typeinfo/wording.h"

namespace corv::stimulus {
namespace {

// Calls an action with the index and name of each top-level signal. The library's own readers
// return names as views, without copying each.
template <class Action>
void ForEachSignal(stremo::IEventsStreamRead& reader, Action action) {
    auto* const own = recording::OwnReader(&reader);
    for (int i = 0; i < reader.GetSignalCount(); ++i) {
        if (own != nullptr) {
            action(i, own->SignalName(i));
            continue;
        }
        CString name;
        bool composite = false;
        int members = 0;
        int mode = 0;
        std::int64_t latest = 0;
        reader.GetSignalInfo(reader.GetSignalHandle(i), composite, members, name, mode, latest);
        action(i, name.View());
    }
}

// Returns the member that the rest of a path selects, through any number of levels. An exact match
// ends the search; other matches are kept in case none is exact.
ISignal* FindMember(ISignal& signal, std::string_view path) noexcept {
    if (path.empty()) {
        return &signal;
    }
    ISignalContainer* const members = signal.GetSubSignals();
    ISignal* found = nullptr;
    ISignal* member = nullptr;
    for (std::uint32_t i = 0; members != nullptr && SUCCEEDED(members->GetAt(i, &member)); ++i) {
        const char* const name = member->GetName();
        const auto match = MatchRecordedName(path, name != nullptr ? name : "", true);
        if (match && (found == nullptr || match->exact)) {
            ISignal* const selected = FindMember(*member, match->rest);
            found = selected != nullptr ? selected : found;
            if (found != nullptr && match->exact) {
                break;
            }
        }
    }
    return found;
}

// A signal with whose name a path begins. Names can contain separators, so several signals of
// different lengths may qualify; the ranks are in order of preference.
struct Candidate {
    enum Rank { ExactName, ExactMember, Name, Member } rank;
    int index;
    std::string_view rest;
};

std::vector<Candidate> FindCandidates(stremo::IEventsStreamRead& reader, std::string_view path) {
    std::vector<Candidate> candidates;
    ForEachSignal(reader, [&](int index, std::string_view name) {
        if (const auto match = MatchRecordedName(path, name, false)) {
            const int rank = (match->exact ? 0 : 2) + (match->rest.empty() ? 0 : 1);
            candidates.push_back({static_cast<Candidate::Rank>(rank), index, match->rest});
        }
    });
    std::stable_sort(candidates.begin(), candidates.end(),
                     [](const Candidate& a, const Candidate& b) { return a.rank < b.rank; });
    return candidates;
}

ISignal* Load(stremo::IEventsStreamRead& reader, int index,
              frame::ComPtr<ISignalContainer>& container) noexcept {
    ISignal* signal = nullptr;
    const bool loaded = SUCCEEDED(CreateSignalContainer(container.Out(), nullptr)) &&
                        SUCCEEDED(container->CreateFromReader(&reader, nullptr, index, &signal));
    return loaded ? signal : nullptr;
}

// A selection from a scalar selects the scalar itself.
ISignal* FindScalar(ISignal& signal, std::string_view rest) noexcept {
    const bool selects = rest.starts_with('(') || rest.starts_with('.');
    return selects && signal.GetSubSignals() == nullptr ? &signal : nullptr;
}

ISignal* Find(stremo::IEventsStreamRead& reader, std::string_view path,
              frame::ComPtr<ISignalContainer>& container) {
    const std::vector<Candidate> candidates = FindCandidates(reader, path);
    for (auto* const find : {FindMember, FindScalar}) {
        for (const Candidate& candidate : candidates) {
            ISignal* const signal = Load(reader, candidate.index, container);
            ISignal* const found = signal != nullptr ? find(*signal, candidate.rest) : nullptr;
            if (found != nullptr) {
                return found;
            }
        }
    }
    return nullptr;
}

}  // namespace

ISignal* FindRecordedSignal(stremo::IEventsStreamRead& reader, const char* name,
                            frame::ComPtr<ISignalContainer>& container) noexcept {
    return platform::Guarded<ISignal*>(nullptr, [&]() -> ISignal* {
        const std::string_view path(name != nullptr ? name : "");
        ISignal* const found = Find(reader, path, container);
        // Simulators write absolute paths with a leading separator, recordings do not have it.
        const bool leading = path.starts_with('.') || path.starts_with('/');
        return found != nullptr || !leading ? found : Find(reader, path.substr(1), container);
    });
}

ISignal* LoadRecordedScalar(stremo::IEventsStreamRead& reader, int handle,
                            frame::ComPtr<ISignalContainer>& container) noexcept {
    const char* const type = reader.GetTypeString(handle);
    frame::ComPtr<ISignal> signal;
    if (type == nullptr || FAILED(CreateSignalContainer(container.Out(), nullptr)) ||
        FAILED(container->NewSignal(type, signal.Out())) || signal->GetSubSignals() != nullptr) {
        return nullptr;
    }
    signal->SetHandle(handle);
    return SUCCEEDED(container->Add(signal.get())) ? signal.get() : nullptr;
}

SuggestedSignals SuggestSignals(stremo::IEventsStreamRead& reader, std::string_view name) {
    constexpr std::size_t kMost = 3;
    std::vector<std::pair<std::string, std::string>> signals;  // the last level, the shown name
    ForEachSignal(reader, [&](int, std::string_view full) {
        std::string last(LastLevel(full));
        std::transform(last.begin(), last.end(), last.begin(), platform::Lower);
        signals.emplace_back(std::move(last), ShownRecordedName(full));
    });
    typeinfo::NearestWord nearest(LastLevel(name));
    for (const auto& [last, shown] : signals) {
        nearest.Offer(last);
    }
    SuggestedSignals suggested;
    for (const auto& [last, shown] : signals) {
        if (last == nearest.Found() && !last.empty() && suggested.names.size() < kMost) {
            suggested.names.push_back(shown);
        }
    }
    suggested.like = !suggested.names.empty();
    if (!suggested.like && !signals.empty()) {
        suggested.names.push_back(signals.front().second);
    }
    return suggested;
}

}  // namespace corv::stimulus
