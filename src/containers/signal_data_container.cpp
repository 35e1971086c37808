#include "corv/containers/signal_data_container.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "corv/frame/com_ptr.h"
#include "frame/plain_object.h"
#include "platform/guard.h"

namespace corv {
namespace {

using DataPtr = frame::ComPtr<ISignalData>;

constexpr std::size_t kFirstEntries = 8;

class SignalDataContainer final
    : public frame::PlainObject<SignalDataContainer, ISignalDataContainer> {
public:
    bool SetUp() {
        entries_.reserve(kFirstEntries);
        return true;
    }

    HRESULT Add(ISignalData* data) noexcept override;
    HRESULT Remove(ISignalData* data) noexcept override;
    ISignalData* GetAt(std::uint32_t index) noexcept override {
        return index < entries_.size() ? entries_[index].data.get() : nullptr;
    }
    ISignalData* FindByName(const char* name) noexcept override;
    ISignalData* FindById(int id) noexcept override;
    int GetCount() noexcept override { return static_cast<int>(entries_.size()); }

private:
    struct Entry {
        int id;  // the object's, which stays as it is in here
        DataPtr data;
    };
    using Entries = std::vector<Entry>;

    // The first entry whose id is not less.
    Entries::iterator PlaceOf(int id) noexcept {
        return std::partition_point(entries_.begin(), entries_.end(),
                                    [id](const Entry& entry) { return entry.id < id; });
    }

    Entries entries_;
};

HRESULT SignalDataContainer::Add(ISignalData* data) noexcept {
    const int id = data != nullptr ? data->GetId() : -1;
    if (id < 0) {
        return E_INVALIDARG;
    }
    return platform::Guarded(E_OUTOFMEMORY, [&] {
        const bool is_last = entries_.empty() || entries_.back().id < id;
        entries_.insert(is_last ? entries_.end() : PlaceOf(id), Entry{id, DataPtr::Share(data)});
        return S_OK;
    });
}

HRESULT SignalDataContainer::Remove(ISignalData* data) noexcept {
    if (data == nullptr) {
        return E_INVALIDARG;
    }
    const auto is_it = [data](const Entry& entry) { return entry.data.get() == data; };
    auto entry = std::find_if(PlaceOf(data->GetId()), entries_.end(), is_it);
    if (entry == entries_.end()) {
        entry = std::find_if(entries_.begin(), entries_.end(), is_it);  // the id was changed
    }
    if (entry == entries_.end()) {
        return E_FAIL;
    }
    const DataPtr removed = std::move(entry->data);  // ends when the list is in order again
    entries_.erase(entry);
    return S_OK;
}

ISignalData* SignalDataContainer::FindByName(const char* name) noexcept {
    for (const Entry& entry : entries_) {
        if (ISignalData* const found = entry.data->FindByName(name)) {
            return found;
        }
    }
    return nullptr;
}

ISignalData* SignalDataContainer::FindById(int id) noexcept {
    const auto entry = PlaceOf(id);
    return id >= 0 && entry != entries_.end() && entry->id == id ? entry->data.get() : nullptr;
}

}  // namespace

HRESULT CreateSignalDataContainer(ISignalDataContainer** container) noexcept {
    return frame::CreatePlainObject<SignalDataContainer>(
        container, E_FAIL, [](SignalDataContainer& made) { return made.SetUp(); });
}

}  // namespace corv
