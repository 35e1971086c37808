#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <utility>

#include "corv/containers/handle_manager.h"
#include "corv/frame/interface_ids.h"
#include "frame/com_object.h"
#include "tree/listings.h"

class CSignal;

namespace corv::containers {

class SignalContainer;

// The only signal of a handle stands in a page of neighbouring handles. A handle that gets a second
// one is crowded, until it has none: its signals stand in one map with those of the other crowded
// handles, by handle and within a handle by the number that each gets when it is listed.
//
// A container that has members still to make stands in place of each of them.
//
// Each signal knows where it is listed, so that none outlives itself here; for signals that others
// have made, which don't, the manager keeps that.
//
// The cursors are a handle and a number, and so mean something after any change.
class HandleManager final
    : public frame::ComObject<HandleManager, IHandleManager, IID_IHandleManager>,
      public tree::Lister {
public:
    HandleManager() noexcept = default;
    ~HandleManager() { RemoveAll(); }

    int CORV_CALL GetFirstHandle() noexcept override;
    int CORV_CALL GetNextHandle() noexcept override;
    ISignal* CORV_CALL GetFirstSignal(int handle) noexcept override;
    ISignal* CORV_CALL GetNextSignal() noexcept override;
    HRESULT CORV_CALL AddSignal(ISignal* signal) noexcept override;
    HRESULT CORV_CALL RemoveSignal(ISignal* signal) noexcept override;
    HRESULT CORV_CALL RemoveHandle(int handle) noexcept override;
    void CORV_CALL RemoveAll() noexcept override;

    // Removes a signal from the lists of all handles.
    void Forget(ISignal& signal) noexcept;
    // Lists a member that a container is still to make, under a handle that nothing has yet: it is
    // made when the handle's signals are asked for or another signal gets the handle. False, with
    // nothing changed, when the handle is in use and without memory.
    bool ListLate(SignalContainer& container, int handle) noexcept;
    // The same in place of a signal that is listed alone under its handle.
    bool MakeEntryLate(CSignal& signal, SignalContainer& container) noexcept;
    // A member has been made.
    void EndLate(const SignalContainer& container, ISignal& member) noexcept;
    // The members will not be made, or no longer be listed.
    void DropLate(const SignalContainer& container, int handle, int count) noexcept;

    void Drop(const tree::Listing& listing) noexcept override;

private:
    static constexpr int kPageBits = 5;
    static constexpr int kPageSize = 1 << kPageBits;
    // Neighbouring handles of which one at least is in use.
    union Entry {
        ISignal* signal;  // null for a handle that is crowded or unused
        SignalContainer* late;
    };
    struct Page {
        Entry& EntryOf(int handle) noexcept {
            return entries[static_cast<std::size_t>(handle) % kPageSize];
        }
        // Of a handle whose signal is made.
        ISignal*& At(int handle) noexcept { return EntryOf(handle).signal; }
        bool IsLate(int handle) const noexcept { return (late & BitOf(handle)) != 0; }

        std::array<Entry, kPageSize> entries{};
        std::uint32_t used = 0;  // a bit for each handle
        std::uint32_t late = 0;  // the same: the signal is one that a container is still to make
    };
    // Ordered by handle, then by number; numbers rise from 1 and never come again.
    using Place = std::pair<int, std::uint64_t>;

    static constexpr std::uint64_t kPastLast = std::numeric_limits<std::uint64_t>::max();
    static constexpr std::int64_t kNoHandle = std::int64_t{std::numeric_limits<int>::max()} + 1;

    static std::uint32_t BitOf(int handle) noexcept {
        return std::uint32_t{1} << (static_cast<std::uint32_t>(handle) % kPageSize);
    }
    // Makes the signals of a handle that are still to be made. False without memory.
    bool MakeSignals(int handle) noexcept;
    bool IsLateIn(const SignalContainer& container, int handle) noexcept;
    void Free(Page& page, int handle) noexcept;

    // Null when none of its handles is in use.
    Page* FindPage(int handle) noexcept;
    Page& PageFor(int handle);
    // The entry of the place or the next of that handle, to which the place is moved; null: none.
    ISignal* FindFrom(Place& place) noexcept;
    // Null when the signal has none.
    tree::Listings* FindListings(ISignal& signal) noexcept;
    const tree::Listing* FindListing(ISignal& signal, int handle) noexcept;
    // Throws, with nothing changed, without memory.
    void List(ISignal& signal, int handle);
    void Enter(ISignal& signal, const tree::Listing& listing);
    void Unlist(ISignal& signal, int handle) noexcept;
    void EndPage(int handle) noexcept;

    std::map<int, Page> pages_;             // by their handles but for the last bits
    std::int64_t next_handle_ = kNoHandle;  // the smallest that GetNextHandle may give
    Place next_signal_{0, kPastLast};       // of the handle's, the first that is to come
    std::map<Place, ISignal*> crowded_;
    std::map<ISignal*, tree::Listings> strangers_;  // signals of other makes that are listed
    std::uint64_t last_number_ = 0;
    std::pair<int, Page*> last_page_{0, nullptr};  // of all that are in use
};

}  // namespace corv::containers
