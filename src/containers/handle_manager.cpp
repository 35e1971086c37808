#include "containers/handle_manager.h"

#include <bit>

#include "containers/signal_container.h"
#include "corv/signals/signal.h"
#include "platform/guard.h"
#include "signals/signal.h"

namespace corv::containers {
namespace {

// Own signals make their waves when they are asked for, which registering them is no reason for.
bool HasWave(ISignal& signal) noexcept {
    const CSignal* const own = CSignal::FromOwn(signal);
    return own != nullptr ? own->HasWave() : signal.GetWave() != nullptr;
}

}  // namespace

int CORV_CALL HandleManager::GetFirstHandle() noexcept {
    next_handle_ = std::numeric_limits<int>::min();
    return GetNextHandle();
}

int CORV_CALL HandleManager::GetNextHandle() noexcept {
    if (next_handle_ == kNoHandle) {
        return -1;
    }
    const int from = static_cast<int>(next_handle_);
    for (auto page = pages_.lower_bound(from >> kPageBits); page != pages_.end(); ++page) {
        const bool is_first = page->first == from >> kPageBits;
        const std::uint32_t left = page->second.used & (is_first ? ~(BitOf(from) - 1) : ~0U);
        if (left != 0) {
            const int handle = page->first * kPageSize + std::countr_zero(left);
            next_handle_ = std::int64_t{handle} + 1;
            return handle;
        }
    }
    next_handle_ = kNoHandle;
    return -1;
}

ISignal* CORV_CALL HandleManager::GetFirstSignal(int handle) noexcept {
    next_signal_ = {handle, 0};
    return GetNextSignal();
}

ISignal* CORV_CALL HandleManager::GetNextSignal() noexcept {
    while (ISignal* const signal = FindFrom(next_signal_)) {
        ++next_signal_.second;
        if (signal->GetHandle() != -1) {
            return signal;
        }
    }
    next_signal_.second = kPastLast;
    return nullptr;
}

HRESULT CORV_CALL HandleManager::AddSignal(ISignal* signal) noexcept {
    const int handle = signal != nullptr ? signal->GetHandle() : -1;
    if (handle == -1 || !HasWave(*signal)) {
        return E_INVALIDARG;
    }
    if (FindListing(*signal, handle) != nullptr) {
        return S_OK;
    }
    if (!MakeSignals(handle)) {
        return E_OUTOFMEMORY;
    }
    return platform::Done([&] { List(*signal, handle); }) ? S_OK : E_OUTOFMEMORY;
}

HRESULT CORV_CALL HandleManager::RemoveSignal(ISignal* signal) noexcept {
    const int handle = signal != nullptr ? signal->GetHandle() : -1;
    const tree::Listing* const listing = handle != -1 ? FindListing(*signal, handle) : nullptr;
    if (listing == nullptr) {
        return E_FAIL;
    }
    Drop(*listing);
    Unlist(*signal, handle);
    return S_OK;
}

HRESULT CORV_CALL HandleManager::RemoveHandle(int handle) noexcept {
    Page* const page = FindPage(handle);
    if (page != nullptr && page->IsLate(handle)) {
        Free(*page, handle);
        return S_OK;
    }
    HRESULT result = E_FAIL;
    Place first{handle, 0};
    while (ISignal* const signal = FindFrom(first)) {
        Drop(*FindListing(*signal, handle));
        Unlist(*signal, handle);
        result = S_OK;
    }
    return result;
}

// Signals of other makes leave first: what is known of them is enough for that.
void CORV_CALL HandleManager::RemoveAll() noexcept {
    strangers_.clear();
    for (auto& [number, page] : pages_) {
        for (int i = 0; i < kPageSize; ++i) {
            if (page.IsLate(i)) {
                page.EntryOf(i).late->ForgetLate();
            } else if (page.At(i) != nullptr) {
                static_cast<CSignal*>(page.At(i))->Listed().Forget(*this);
            }
        }
    }
    for (const auto& [place, signal] : crowded_) {
        static_cast<CSignal*>(signal)->Listed().Forget(*this);
    }
    pages_.clear();
    crowded_.clear();
    last_page_.second = nullptr;
}

void HandleManager::Forget(ISignal& signal) noexcept {
    if (tree::Listings* const listings = FindListings(signal)) {
        listings->Leave(*this);
    }
    strangers_.erase(&signal);
}

void HandleManager::Drop(const tree::Listing& listing) noexcept {
    const int handle = listing.handle;
    Page& page = *FindPage(handle);
    if (page.At(handle) == nullptr) {
        crowded_.erase({handle, listing.number});
        const auto left = crowded_.lower_bound({handle, 0});
        if (left != crowded_.end() && left->first.first == handle) {
            return;
        }
    }
    Free(page, handle);
}

void HandleManager::Free(Page& page, int handle) noexcept {
    page.At(handle) = nullptr;
    page.used &= ~BitOf(handle);
    page.late &= ~BitOf(handle);
    EndPage(handle);
}

HandleManager::Page& HandleManager::PageFor(int handle) {
    Page* const page = FindPage(handle);
    return page != nullptr ? *page : pages_.try_emplace(pages_.end(), handle >> kPageBits)->second;
}

HandleManager::Page* HandleManager::FindPage(int handle) noexcept {
    const int number = handle >> kPageBits;
    if (last_page_.second == nullptr || last_page_.first != number) {
        const auto found = pages_.find(number);
        if (found == pages_.end()) {
            return nullptr;
        }
        last_page_ = {number, &found->second};
    }
    return last_page_.second;
}

ISignal* HandleManager::FindFrom(Place& place) noexcept {
    Page* const page = FindPage(place.first);
    if (page == nullptr || (page->used & BitOf(place.first)) == 0 || !MakeSignals(place.first)) {
        return nullptr;
    }
    if (ISignal* const only = page->At(place.first)) {
        const std::uint64_t number = FindListing(*only, place.first)->number;
        const bool is_to_come = number >= place.second;
        place.second = is_to_come ? number : place.second;
        return is_to_come ? only : nullptr;
    }
    const auto next = crowded_.lower_bound(place);
    if (next == crowded_.end() || next->first.first != place.first) {
        return nullptr;
    }
    place = next->first;
    return next->second;
}

// Nothing is asked of a signal of another make.
tree::Listings* HandleManager::FindListings(ISignal& signal) noexcept {
    const auto stranger = strangers_.empty() ? strangers_.end() : strangers_.find(&signal);
    if (stranger != strangers_.end()) {
        return &stranger->second;
    }
    CSignal* const own = CSignal::FromOwn(signal);
    return own != nullptr ? &own->Listed() : nullptr;
}

const tree::Listing* HandleManager::FindListing(ISignal& signal, int handle) noexcept {
    const tree::Listings* const listings = FindListings(signal);
    return listings != nullptr ? listings->Find(*this, handle) : nullptr;
}

void HandleManager::List(ISignal& signal, int handle) {
    tree::Listings* const known = FindListings(signal);
    tree::Listings& listings = known != nullptr ? *known : strangers_[&signal];
    const tree::Listing listing{this, handle, last_number_ + 1};
    try {
        listings.Add(listing);
        Enter(signal, listing);
    } catch (...) {
        Unlist(signal, handle);
        EndPage(handle);
        throw;
    }
    last_number_ = listing.number;
}

void HandleManager::Enter(ISignal& signal, const tree::Listing& listing) {
    const int handle = listing.handle;
    Page& page = PageFor(handle);
    if ((page.used & BitOf(handle)) == 0) {
        page.At(handle) = &signal;
        page.used |= BitOf(handle);
        return;
    }
    if (ISignal* const only = page.At(handle)) {
        crowded_.emplace(Place{handle, FindListing(*only, handle)->number}, only);
        page.At(handle) = nullptr;
    }
    crowded_.emplace(Place{handle, listing.number}, &signal);
}

bool HandleManager::ListLate(SignalContainer& container, int handle) noexcept {
    const Page* const there = FindPage(handle);
    if ((there != nullptr && (there->used & BitOf(handle)) != 0) ||
        !platform::Done([&] { PageFor(handle); })) {
        return false;
    }
    Page& page = *FindPage(handle);
    page.EntryOf(handle).late = &container;
    page.used |= BitOf(handle);
    page.late |= BitOf(handle);
    return true;
}

bool HandleManager::MakeEntryLate(CSignal& signal, SignalContainer& container) noexcept {
    const int handle = signal.GetHandle();
    Page* const page = FindPage(handle);
    if (page == nullptr || page->IsLate(handle) || page->At(handle) != &signal) {
        return false;
    }
    Unlist(signal, handle);
    page->EntryOf(handle).late = &container;
    page->late |= BitOf(handle);
    return true;
}

void HandleManager::EndLate(const SignalContainer& container, ISignal& member) noexcept {
    const int handle = member.GetHandle();
    if (IsLateIn(container, handle)) {
        Page& page = *FindPage(handle);
        page.late &= ~BitOf(handle);
        page.At(handle) = &member;
        // the first entry of a signal takes no memory
        static_cast<CSignal&>(member).Listed().Add({this, handle, ++last_number_});
    }
}

void HandleManager::DropLate(const SignalContainer& container, int handle, int count) noexcept {
    for (int i = 0; i < count; ++i) {
        if (IsLateIn(container, handle + i)) {
            Free(*FindPage(handle + i), handle + i);
        }
    }
}

bool HandleManager::IsLateIn(const SignalContainer& container, int handle) noexcept {
    Page* const page = FindPage(handle);
    return page != nullptr && page->IsLate(handle) && page->EntryOf(handle).late == &container;
}

bool HandleManager::MakeSignals(int handle) noexcept {
    Page* const page = FindPage(handle);
    return page == nullptr || !page->IsLate(handle) || page->EntryOf(handle).late->MakeAll();
}

void HandleManager::Unlist(ISignal& signal, int handle) noexcept {
    tree::Listings& listings = *FindListings(signal);
    if (const tree::Listing* const listing = listings.Find(*this, handle)) {
        listings.Remove(*listing);
    }
    if (listings.IsEmpty()) {
        strangers_.erase(&signal);
    }
}

void HandleManager::EndPage(int handle) noexcept {
    const Page* const page = FindPage(handle);
    if (page != nullptr && page->used == 0) {
        last_page_.second = nullptr;
        pages_.erase(handle >> kPageBits);
    }
}

}  // namespace corv::containers

HRESULT CreateHandleManager(IHandleManager** manager) noexcept {
    return corv::frame::CreateComObject<corv::containers::HandleManager>(manager);
}
