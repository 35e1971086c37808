#include "containers/handle_manager.h"

#include "corv/signals/signal.h"
#include "platform/guard.h"

namespace corv::containers {
namespace {

// A handle with more signals becomes crowded.
constexpr std::size_t kMostLookedThrough = 16;

}  // namespace

int CORV_CALL HandleManager::GetFirstHandle() noexcept {
    next_handle_ = std::numeric_limits<int>::min();
    return GetNextHandle();
}

int CORV_CALL HandleManager::GetNextHandle() noexcept {
    const auto next = next_handle_ == kNoHandle
                          ? entries_.end()
                          : entries_.lower_bound({static_cast<int>(next_handle_), 0});
    if (next == entries_.end()) {
        next_handle_ = kNoHandle;
        return -1;
    }
    const int handle = next->first.first;
    next_handle_ = std::int64_t{handle} + 1;
    return handle;
}

ISignal* CORV_CALL HandleManager::GetFirstSignal(int handle) noexcept {
    next_signal_ = {handle, 0};
    return GetNextSignal();
}

ISignal* CORV_CALL HandleManager::GetNextSignal() noexcept {
    for (;;) {
        const auto next = entries_.lower_bound(next_signal_);
        if (next == entries_.end() || next->first.first != next_signal_.first) {
            next_signal_.second = kPastLast;
            return nullptr;
        }
        next_signal_.second = next->first.second + 1;
        if (next->second->GetHandle() != -1) {
            return next->second;
        }
    }
}

HRESULT CORV_CALL HandleManager::AddSignal(ISignal* signal) noexcept {
    const int handle = signal != nullptr ? signal->GetHandle() : -1;
    if (handle == -1 || signal->GetWave() == nullptr) {
        return E_INVALIDARG;
    }
    const Group group = FindGroup(handle, signal);
    if (group.found != entries_.end()) {
        return S_OK;
    }
    return platform::Done([&] { Append(handle, signal, group); }) ? S_OK : E_OUTOFMEMORY;
}

HRESULT CORV_CALL HandleManager::RemoveSignal(ISignal* signal) noexcept {
    const int handle = signal != nullptr ? signal->GetHandle() : -1;
    const Group group = FindGroup(handle, signal);
    if (group.found == entries_.end()) {
        return E_FAIL;
    }
    if (group.is_crowded) {
        crowded_.erase({handle, signal});
    }
    entries_.erase(group.found);
    return S_OK;
}

HRESULT CORV_CALL HandleManager::RemoveHandle(int handle) noexcept {
    const auto first = entries_.lower_bound({handle, 0});
    const auto last = entries_.upper_bound({handle, kPastLast});
    if (first == last) {
        return E_FAIL;
    }
    ForgetCrowd(handle);
    entries_.erase(first, last);
    return S_OK;
}

void CORV_CALL HandleManager::RemoveAll() noexcept {
    crowded_.clear();
    entries_.clear();
}

bool HandleManager::IsCrowded(int handle) const noexcept {
    if (crowded_.empty()) {
        return false;
    }
    const auto first = crowded_.lower_bound({handle, nullptr});
    return first != crowded_.end() && first->first.first == handle;
}

HandleManager::Group HandleManager::FindGroup(int handle, ISignal* signal) noexcept {
    Group group{entries_.end(), entries_.end()};
    group.is_crowded = IsCrowded(handle);
    if (group.is_crowded) {
        const auto found = crowded_.find({handle, signal});
        group.found = found != crowded_.end() ? found->second : entries_.end();
        group.end = entries_.upper_bound({handle, kPastLast});
        return group;
    }
    group.end = entries_.lower_bound({handle, 0});
    for (; group.end != entries_.end() && group.end->first.first == handle; ++group.end) {
        group.found = group.end->second == signal ? group.end : group.found;
        ++group.size;
    }
    return group;
}

void HandleManager::Append(int handle, ISignal* signal, const Group& group) {
    const auto added = entries_.emplace_hint(group.end, Place{handle, last_number_ + 1}, signal);
    ++last_number_;
    try {
        if (group.is_crowded) {
            crowded_.emplace(SignalKey{handle, signal}, added);
        } else if (group.size >= kMostLookedThrough) {
            Crowd(handle);
        }
    } catch (...) {
        entries_.erase(added);
        throw;
    }
}

void HandleManager::Crowd(int handle) {
    try {
        const auto end = entries_.upper_bound({handle, kPastLast});
        for (auto at = entries_.lower_bound({handle, 0}); at != end; ++at) {
            crowded_.emplace(SignalKey{handle, at->second}, at);
        }
    } catch (...) {
        ForgetCrowd(handle);
        throw;
    }
}

void HandleManager::ForgetCrowd(int handle) noexcept {
    auto at = crowded_.lower_bound({handle, nullptr});
    while (at != crowded_.end() && at->first.first == handle) {
        at = crowded_.erase(at);
    }
}

}  // namespace corv::containers

HRESULT CreateHandleManager(IHandleManager** manager) noexcept {
    return corv::frame::CreateComObject<corv::containers::HandleManager>(manager);
}
