#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <utility>

#include "corv/containers/handle_manager.h"
#include "corv/frame/interface_ids.h"
#include "frame/com_object.h"

namespace corv::containers {

// All registrations stand in one map, by handle and within a handle by the number that each gets
// when it is made. The few signals that a handle usually has are looked through one by one; a
// handle with more of them is crowded: its signals are found through a second map.
//
// The cursors are places in the order of the map, not in its nodes, and so mean something after any
// change.
class HandleManager final
    : public frame::ComObject<HandleManager, IHandleManager, IID_IHandleManager> {
public:
    HandleManager() noexcept = default;

    int CORV_CALL GetFirstHandle() noexcept override;
    int CORV_CALL GetNextHandle() noexcept override;
    ISignal* CORV_CALL GetFirstSignal(int handle) noexcept override;
    ISignal* CORV_CALL GetNextSignal() noexcept override;
    HRESULT CORV_CALL AddSignal(ISignal* signal) noexcept override;
    HRESULT CORV_CALL RemoveSignal(ISignal* signal) noexcept override;
    HRESULT CORV_CALL RemoveHandle(int handle) noexcept override;
    void CORV_CALL RemoveAll() noexcept override;

private:
    // Ordered by handle, then by number; numbers rise from 1 and never come again.
    using Place = std::pair<int, std::uint64_t>;
    using Entries = std::map<Place, ISignal*>;
    using SignalKey = std::pair<int, ISignal*>;
    struct SignalOrder {
        bool operator()(const SignalKey& a, const SignalKey& b) const noexcept {
            return a.first != b.first ? a.first < b.first
                                      : std::less<ISignal*>()(a.second, b.second);
        }
    };
    using Crowded = std::map<SignalKey, Entries::iterator, SignalOrder>;

    static constexpr std::uint64_t kPastLast = std::numeric_limits<std::uint64_t>::max();
    static constexpr std::int64_t kNoHandle = std::int64_t{std::numeric_limits<int>::max()} + 1;

    // A handle's registrations, and where one of its signals was found (the end: nowhere).
    struct Group {
        Entries::iterator end;
        Entries::iterator found;
        std::size_t size = 0;  // not counted when crowded
        bool is_crowded = false;
    };
    Group FindGroup(int handle, ISignal* signal) noexcept;
    bool IsCrowded(int handle) const noexcept;
    void Append(int handle, ISignal* signal, const Group& group);
    // Gives a handle with too many signals its second map, or leaves all as it was and throws.
    void Crowd(int handle);
    void ForgetCrowd(int handle) noexcept;

    Entries entries_;
    std::int64_t next_handle_ = kNoHandle;  // the smallest that GetNextHandle may give
    Place next_signal_{0, kPastLast};       // of the handle's, the first that is to come
    Crowded crowded_;                       // all signals of the crowded handles
    std::uint64_t last_number_ = 0;
};

}  // namespace corv::containers
