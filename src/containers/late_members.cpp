// Members that a container makes when it is asked for one.

#include <cstring>
#include <memory>
#include <new>
#include <utility>

#include "containers/handle_manager.h"
#include "containers/signal_container.h"
#include "containers/signal_info.h"
#include "corv/stremo/events_stream_read.h"
#include "platform/guard.h"
#include "signals/signal.h"
#include "stremo/kept_properties.h"

using corv::frame::ComPtr;
using stremo::IEventsStreamRead;

namespace corv::containers {
namespace {

bool AreEqual(const char* a, const char* b) noexcept {
    return std::strcmp(a != nullptr ? a : "", b != nullptr ? b : "") == 0;
}

// Whether a recording says of a signal what it said of another one, but for name and handle.
bool IsAlike(IEventsStreamRead& reader, int handle, const SignalInfo& info, ISignal& other) {
    bool alike = info.member_count == 0 && info.type != nullptr && info.mode == other.GetMode() &&
                 info.max_time == other.GetMaxTime() && AreEqual(info.type, other.GetTypeInfo());
    for (const char* const key : recording::kSignalProperties) {
        alike = alike && AreEqual(reader.GetSignalProperty(handle, key), other.GetProperty(key));
    }
    return alike;
}

}  // namespace

// Counts the next member among the late ones, when it is like the first.
bool SignalContainer::AddLate(IEventsStreamRead& reader, ISignal& parent, int place) {
    signals::ReaderLoad* const load = tree::Running().reader_load;
    const bool may_begin = place == 1 && signals_.size() == 1;
    if (load == nullptr || !load->IsOf(reader) || place == 0 || GetCount() != place ||
        !(late_ || may_begin)) {
        return false;
    }
    CSignal* const first = CSignal::FromOwn(late_ ? *late_->first : *signals_[0]);
    const int first_handle = late_ ? late_->handle : first->GetHandle();
    const int handle = reader.GetSubSignalHandle(parent.GetHandle(), place);
    if (handle == -1 || std::int64_t{handle} - place != first_handle) {
        return false;
    }
    const SignalInfo info(reader, handle);
    const auto index = IndexName::Read(info.name.View());
    if (!index || !IsAlike(reader, handle, info, *first) || !(late_ || BeginLate(*first, *index)) ||
        *index != late_->IndexAt(place)) {
        return false;
    }
    const tree::Level level(load->Depth());
    if (!load->Enter(load->Depth() - 1, handle) || !late_->manager->ListLate(*this, handle)) {
        return false;
    }
    ++late_->count;
    return true;
}

// The only member becomes the first of the late ones. False when it can't: nothing has changed.
bool SignalContainer::BeginLate(CSignal& first, std::int64_t next_index) {
    HandleManager* const manager = manager_ ? HandleManager::FromOwn(*manager_) : nullptr;
    const char* const name = first.GetName();
    const auto index = IndexName::Read(name != nullptr ? name : "");
    const std::int64_t step = index ? next_index - *index : 0;
    if (signals_.size() != 1 || manager == nullptr || (step != 1 && step != -1) ||
        !first.HasLateWave()) {
        return false;
    }
    auto late = std::make_unique<LateMembers>();
    late->manager = manager;
    late->handle = first.GetHandle();
    late->index = *index;
    late->step = static_cast<int>(step);
    late->count = 1;
    if (!manager->MakeEntryLate(first, *this)) {
        return false;
    }
    late->first = ComPtr<ISignal>(signals_[0]);
    signals_.clear();
    names_ = nullptr;
    late_ = std::move(late);
    return true;
}

bool SignalContainer::MakeMembers() noexcept {
    return platform::Done([&] {
        std::vector<ComPtr<ISignal>> made = MakeLate();
        signals_.reserve(made.size());
        const std::unique_ptr<LateMembers> late = std::move(late_);
        for (ComPtr<ISignal>& member : made) {
            signals_.push_back(member.Detach());
            NoteJoined(*signals_.back());
            if (late->manager != nullptr) {
                late->manager->EndLate(*this, *signals_.back());
            }
        }
    });
}

std::vector<ComPtr<ISignal>> SignalContainer::MakeLate() const {
    const auto& first = static_cast<CSignal&>(*late_->first);
    std::vector<ComPtr<ISignal>> made;
    made.reserve(static_cast<std::size_t>(late_->count));
    made.push_back(ComPtr<ISignal>::Share(late_->first.get()));
    for (int i = 1; i < late_->count; ++i) {
        ComPtr<ISignal> member(std::make_unique<CSignal>(nullptr).release()->NewReference());
        if (!static_cast<CSignal&>(*member).BecomeLike(first, IndexName(late_->IndexAt(i)).Text(),
                                                       late_->handle + i)) {
            throw std::bad_alloc();
        }
        made.push_back(std::move(member));
    }
    return made;
}

void SignalContainer::LeaveLate(const HandleManager* manager) noexcept {
    if (late_ && late_->manager != nullptr && (manager == nullptr || late_->manager == manager)) {
        late_->manager->DropLate(*this, late_->handle, late_->count);
        late_->manager = nullptr;
    }
}

void SignalContainer::ForgetLate() noexcept {
    late_->manager = nullptr;
}

}  // namespace corv::containers
