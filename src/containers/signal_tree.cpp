// Handles and the ways down the tree of signals.

#include <atomic>
#include <cstring>
#include <span>
#include <string_view>

#include "containers/signal_container.h"
#include "corv/signals/signal.h"
#include "corv/util/extended_id.h"
#include "tree/leaf_walk.h"

using corv::frame::ComPtr;

namespace corv::containers {
namespace {

// The first component of a path and, unless it is the whole path, the rest, which begins with "("
// or ".". Such a character in front, and an extended identifier, belong to the component.
struct SplitPath {
    explicit SplitPath(const char* path) noexcept {
        const char* from = SkipExtendedID(path);
        if (from == path && *path != '\0') {
            from = *path == '.' ? SkipExtendedID(path + 1) : path + 1;
        }
        const char* const end = from + std::strcspn(from, "(.");
        component = {path, static_cast<std::size_t>(end - path)};
        rest = *end != '\0' ? end : nullptr;
    }

    std::string_view component;
    const char* rest;
};

// Gives a leaf a handle, and the wave of the first signal registered under it.
void AssignHandle(ISignal& leaf, int handle, IHandleManager* manager) noexcept {
    if (manager == nullptr) {
        leaf.SetHandle(handle);
        return;
    }
    manager->RemoveSignal(&leaf);
    leaf.SetHandle(handle);
    ISignal* const first = manager->GetFirstSignal(handle);
    leaf.SetWave(first != nullptr ? first->GetWave() : nullptr);
    manager->AddSignal(&leaf);
}

// A handle manager on its way down the tree, at one container. Each container is passed once, since
// the same one may be met on many ways.
class PassOn {
public:
    explicit PassOn(std::uint64_t& passed_on) noexcept : level_(tree::Running().pass_on_depth) {
        static std::atomic<std::uint64_t> last_number = 0;  // a container may change its thread
        tree::RunningOperations& running = tree::Running();
        if (running.pass_on_depth == 1) {
            running.pass_on_number = last_number.fetch_add(1, std::memory_order_relaxed) + 1;
        }
        goes_on_ = level_.IsAllowed() && passed_on != running.pass_on_number;
        passed_on = running.pass_on_number;
    }
    bool GoesOn() const noexcept { return goes_on_; }

private:
    tree::Level level_;
    bool goes_on_;
};

}  // namespace

HRESULT CORV_CALL SignalContainer::AssignHandles(const char* path, const int* handles,
                                                 int count) noexcept {
    if (count < 1 || handles == nullptr) {
        return E_INVALIDARG;
    }
    ISignal* found = nullptr;
    if (const HRESULT result = FindSignal(path, &found); FAILED(result)) {
        return result;
    }
    std::span<const int> left(handles, static_cast<std::size_t>(count));
    tree::LeafWalk().Visit(
        *found, [](ISignal&) { return true; },
        [&](ISignal& leaf) {
            AssignHandle(leaf, left.front(), manager_.get());
            left = left.subspan(1);
            return !left.empty();
        });
    return S_OK;
}

HRESULT CORV_CALL SignalContainer::FindSignal(const char* path, ISignal** signal) noexcept {
    const tree::Level level(tree::Running().find_depth);
    if (path == nullptr || !level.IsAllowed()) {
        return E_FAIL;
    }
    if (!MakeAll()) {
        return E_OUTOFMEMORY;
    }
    const SplitPath parts(path);
    ISignal* const found = FindNamed(parts.component);
    if (found == nullptr) {
        return E_FAIL;
    }
    ISignalContainer* const members = parts.rest != nullptr ? found->GetSubSignals() : nullptr;
    if (members != nullptr) {
        return members->FindSignal(parts.rest, signal);
    }
    *signal = found;
    return S_OK;
}

HRESULT CORV_CALL SignalContainer::GetHandleManager(IHandleManager** manager) noexcept {
    if (!manager_) {
        return E_FAIL;
    }
    *manager = ComPtr<IHandleManager>::Share(manager_.get()).Detach();
    return S_OK;
}

HRESULT CORV_CALL SignalContainer::SetHandleManager(IHandleManager* manager) noexcept {
    manager_ = ComPtr<IHandleManager>::Share(manager);
    const PassOn pass_on(passed_on_);
    for (std::size_t i = 0; pass_on.GoesOn() && i < signals_.size(); ++i) {
        if (ISignalContainer* const members = signals_[i]->GetSubSignals()) {
            members->SetHandleManager(manager);
        }
    }
    return S_OK;
}

ISignal* SignalContainer::FindNamed(std::string_view name) const noexcept {
    return names_ ? names_->Find(signals_, name) : FindByLooking(signals_, name);
}

}  // namespace corv::containers
