#include "containers/signal_container.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

#include "containers/handle_manager.h"
#include "containers/signal_enumerator.h"
#include "corv/signals/signal.h"
#include "platform/guard.h"
#include "tree/leaf_walk.h"

using corv::frame::ComPtr;

namespace corv::containers {
namespace {

// Gives a signal another one's name; false when memory runs out.
bool CopyName(ISignal& from, ISignal& to) noexcept {
    const char* const name = from.GetName();
    to.SetName(name);
    const char* const copy = to.GetName();
    return name == nullptr || (copy != nullptr && std::strcmp(name, copy) == 0);
}

}  // namespace

HRESULT CORV_CALL SignalContainer::Insert(ISignal* signal, ISignal* before) noexcept {
    const auto place = std::find(signals_.begin(), signals_.end(), before);
    if (signal == nullptr || place == signals_.end()) {
        return E_INVALIDARG;
    }
    const HRESULT result = Put(static_cast<std::size_t>(place - signals_.begin()), *signal);
    return result == E_OUTOFMEMORY ? result : S_OK;
}

HRESULT CORV_CALL SignalContainer::Add(ISignal* signal) noexcept {
    if (signal == nullptr) {
        return E_INVALIDARG;
    }
    return MakeAll() ? Put(signals_.size(), *signal) : E_OUTOFMEMORY;
}

HRESULT CORV_CALL SignalContainer::Remove(ISignal* signal) noexcept {
    const auto place = std::find(signals_.begin(), signals_.end(), signal);
    if (place == signals_.end()) {
        return E_FAIL;
    }
    TakeOut(static_cast<std::size_t>(place - signals_.begin()));
    Unregister(*signal);
    signal->Release();
    return S_OK;
}

HRESULT CORV_CALL SignalContainer::Replace(ISignal* old_signal, ISignal* new_signal) noexcept {
    const auto place = std::find(signals_.begin(), signals_.end(), old_signal);
    if (place == signals_.end() || new_signal == nullptr || new_signal->GetParent() != nullptr) {
        return E_INVALIDARG;
    }
    if (new_signal != old_signal && !CopyName(*old_signal, *new_signal)) {
        return E_OUTOFMEMORY;
    }
    if (manager_ && manager_->AddSignal(new_signal) == E_OUTOFMEMORY) {
        return E_OUTOFMEMORY;
    }
    if (new_signal != old_signal) {
        new_signal->AddRef();
        *place = new_signal;
        NoteJoined(*new_signal);
        NoteChange();
        Unregister(*old_signal);
        old_signal->Release();
    }
    return S_OK;
}

HRESULT CORV_CALL SignalContainer::NewStdSignal(std::uint32_t index, ISignal** signal) noexcept {
    return CreateStdSignal(index, nullptr, signal);
}

HRESULT CORV_CALL SignalContainer::NewSignal(const char* type, ISignal** signal) noexcept {
    return CreateSignal(type, nullptr, signal);
}

void CORV_CALL SignalContainer::RemoveAll() noexcept {
    // the signals may hold the last other reference to this container
    const auto alive = ComPtr<ISignalContainer>::Share(this);
    Clear();
}

HRESULT CORV_CALL SignalContainer::EnumSignals(ISignalEnumerator** enumerator) noexcept {
    return MakeAll() ? frame::CreateComObject<SignalEnumerator>(enumerator, *this) : E_OUTOFMEMORY;
}

HRESULT CORV_CALL SignalContainer::GetAt(std::uint32_t index, ISignal** signal) noexcept {
    if (late_ && index < static_cast<std::uint32_t>(late_->count) && !MakeMembers()) {
        return E_OUTOFMEMORY;
    }
    if (index >= signals_.size()) {
        return E_INVALIDARG;
    }
    *signal = signals_[index];
    return S_OK;
}

HRESULT SignalContainer::Put(std::size_t place, ISignal& signal) noexcept {
    const bool is_last = place == signals_.size();
    if (!platform::Done([&] {
            signals_.insert(signals_.begin() + static_cast<std::ptrdiff_t>(place), &signal);
        })) {
        return E_OUTOFMEMORY;
    }
    signal.AddRef();
    NoteJoined(signal);
    if (!is_last) {
        NoteChange();
    }
    if (ISignalContainer* const members = signal.GetSubSignals()) {
        members->SetHandleManager(manager_.get());
    }
    const HRESULT result = manager_ ? manager_->AddSignal(&signal) : S_OK;
    if (result == E_OUTOFMEMORY) {
        TakeOut(place);
        signal.Release();
    }
    return result;
}

void SignalContainer::TakeOut(std::size_t place) noexcept {
    signals_.erase(signals_.begin() + static_cast<std::ptrdiff_t>(place));
    NoteChange();
}

void SignalContainer::Clear() noexcept {
    LeaveLate(nullptr);
    late_ = nullptr;
    names_ = nullptr;
    const SignalList released = std::exchange(signals_, {});
    for (ISignal* const signal : released) {
        Unregister(*signal);
        signal->Release();
    }
    if (HoldsManagerAlone()) {
        manager_->RemoveAll();
    }
}

bool SignalContainer::HoldsManagerAlone() noexcept {
    if (!manager_) {
        return false;
    }
    const bool is_alone = manager_->AddRef() == 2;
    manager_->Release();
    return is_alone;
}

// All signals below leave, also composite ones: they may have been leaves when they came. Signals
// too deep for the walk are unregistered by their own container when that ends.
void SignalContainer::Unregister(ISignal& signal) noexcept {
    if (!manager_) {
        return;
    }
    HandleManager* const own = HandleManager::FromOwn(*manager_);
    const auto forget = [&](ISignal& left) {
        if (own != nullptr) {
            own->Forget(left);
        } else if (left.GetHandle() != -1) {
            manager_->RemoveSignal(&left);
        }
        return true;
    };
    const auto enter = [&](ISignal& composite) {
        forget(composite);
        SignalContainer* const members = FromOwn(*composite.GetSubSignals());
        const bool is_late = members != nullptr && members->IsLate();
        if (is_late && own != nullptr) {
            members->LeaveLate(own);
        }
        return !is_late || own == nullptr;
    };
    tree::LeafWalk().Visit(signal, enter, forget);
}

void SignalContainer::NoteJoined(ISignal& signal) noexcept {
    if (!names_ && signals_.size() < NameIndex::kFewestNames) {
        return;
    }
    if (names_) {
        names_->Watch(signal);
    } else {
        names_.reset(new (std::nothrow) NameIndex);
        for (std::size_t i = 0; names_ && i < signals_.size(); ++i) {
            names_->Watch(*signals_[i]);
        }
    }
    if (names_) {
        names_->Follow(signals_);
    }
}

void SignalContainer::NoteChange() noexcept {
    if (names_) {
        names_->Reset();
    }
}

}  // namespace corv::containers

HRESULT CreateSignalContainer(ISignalContainer** container, IHandleManager* manager) noexcept {
    auto used = ComPtr<IHandleManager>::Share(manager);
    if (!used) {
        CreateHandleManager(used.Out());
    }
    return corv::frame::CreateComObject<corv::containers::SignalContainer>(container,
                                                                           std::move(used));
}
