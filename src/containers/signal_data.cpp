#include "containers/signal_data.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <string_view>
#include <utility>

#include "corv/signals/hierarchy_separator.h"
#include "corv/stremo/events_stream_read.h"
#include "corv/typeinfo/type_info.h"
#include "corv/util/extended_id.h"
#include "platform/ascii.h"
#include "platform/guard.h"
#include "stremo/kept_properties.h"

using stremo::IEventsStreamRead;

namespace corv::containers {
namespace {

// Where the part behind the last separator begins. One within an extended identifier at the name's
// start separates nothing.
std::size_t ShortNameOf(const CString& name) noexcept {
    const char* const text = name;
    const auto identifier = static_cast<std::size_t>(SkipExtendedID(text) - text);
    const std::size_t separator = name.View().rfind(HierarchySeparator());
    return separator == std::string_view::npos || separator < identifier ? 0 : separator + 1;
}

}  // namespace

HRESULT SignalData::SetName(const char* name) noexcept {
    if (name == nullptr) {
        return E_INVALIDARG;
    }
    return platform::Guarded(E_OUTOFMEMORY, [&] {
        CString copy(name);  // which may be a part of the old name
        short_name_ = ShortNameOf(copy);
        name_ = std::move(copy);
        return S_OK;
    });
}

HRESULT SignalData::SetTypeInfo(const char* type) noexcept {
    signals::TypePtr found;
    const HRESULT result = type != nullptr ? signals::FindType(type, found) : E_INVALIDARG;
    if (SUCCEEDED(result)) {
        type_ = std::move(found);
    }
    return result;
}

HRESULT SignalData::SetProperty(const char* key, const char* value) noexcept {
    if (key == nullptr || value == nullptr) {
        return E_FAIL;
    }
    return properties_.Set(key, value) ? S_OK : E_OUTOFMEMORY;
}

const char* SignalData::GetProperty(const char* key) noexcept {
    return key != nullptr ? properties_.Get(key) : nullptr;
}

HRESULT SignalData::AddHandle(int handle) noexcept {
    if (handle < 0) {
        return E_INVALIDARG;
    }
    return platform::Done([&] { handles_.Add(handle); }) ? S_OK : E_OUTOFMEMORY;
}

void SignalData::ClearHandles() noexcept {
    handles_.Clear();
    for (const auto& child : children_) {
        child->ClearHandles();
    }
}

ISignalData* SignalData::FindByName(const char* name) noexcept {
    if (name == nullptr) {
        return nullptr;
    }
    SignalData* const found = FindNamed(name);
    return found != nullptr ? found : FindBySelection(name);
}

SignalData* SignalData::FindNamed(const char* name) noexcept {
    if (platform::EqualNoCase(name_.View(), name)) {
        return this;
    }
    for (const auto& child : children_) {
        if (SignalData* const found = child->FindNamed(name)) {
            return found;
        }
    }
    return nullptr;
}

// The sub-signals of most recordings are called by what selects them alone, "(3)" or ".a".
SignalData* SignalData::FindBySelection(std::string_view path) noexcept {
    const std::string_view name = name_.View();
    if (!platform::EqualNoCase(path.substr(0, name.size()), name)) {
        return nullptr;
    }
    const std::string_view rest = path.substr(name.size());
    if (rest.empty()) {
        return this;
    }
    for (const auto& child : children_) {
        SignalData* const found = child->name_.IsEmpty() ? nullptr : child->FindBySelection(rest);
        if (found != nullptr) {
            return found;
        }
    }
    return nullptr;
}

ISignalData* SignalData::GetChildAt(std::uint32_t index) noexcept {
    return index < children_.size() ? children_[index].get() : nullptr;
}

bool SignalData::GetPath(char* target, std::uint32_t size) noexcept {
    if (target == nullptr || short_name_ >= size) {
        return false;
    }
    std::memcpy(target, GetName(), short_name_);
    target[short_name_] = '\0';
    return true;
}

const char* SignalData::GetTypeInfoString() noexcept {
    return type_ ? static_cast<const char*>(type_->GetTypeInfoString()) : nullptr;
}

void SignalData::Reset() noexcept {
    name_.Empty();
    short_name_ = 0;
    id_ = -1;
    mode_ = 0;
    max_time_ = -1;
    properties_ = {};
    type_ = nullptr;
    children_.clear();
    handles_.Clear();
}

HRESULT SignalData::LoadFromReader(IEventsStreamRead* reader, int handle) noexcept {
    if (reader == nullptr) {
        return E_INVALIDARG;
    }
    signals::ReaderLoad load(*reader);
    return platform::Guarded(E_OUTOFMEMORY, [&] { return LoadNode(load, *reader, handle, *this); });
}

HRESULT SignalData::LoadNode(signals::ReaderLoad& load, IEventsStreamRead& reader, int handle,
                             SignalData& root) {
    Reset();
    const tree::Level level(load.Depth());
    if (handle == -1 || !load.Enter(load.Depth() - 1, handle)) {
        return E_FAIL;
    }
    int child_count = 0;
    if (const HRESULT result = LoadFields(reader, handle, child_count); FAILED(result)) {
        return result;
    }
    if (child_count == 0) {
        const HRESULT added = root.AddHandle(handle);
        return added == E_OUTOFMEMORY ? added : S_OK;
    }
    for (int i = 0; i < child_count; ++i) {
        const HRESULT result = LoadChild(load, reader, reader.GetSubSignalHandle(handle, i), root);
        if (FAILED(result)) {
            return result;
        }
    }
    return S_OK;
}

HRESULT SignalData::LoadFields(IEventsStreamRead& reader, int handle, int& child_count) {
    bool has_children = false;
    CString name;
    reader.GetSignalInfo(handle, has_children, child_count, name, mode_, max_time_);
    child_count = has_children ? child_count : 0;
    if (const HRESULT named = SetName(name); FAILED(named)) {
        return named;
    }
    if (FAILED(SetTypeInfo(reader.GetTypeString(handle)))) {
        return E_FAIL;
    }
    for (const char* const key : recording::kSignalProperties) {
        const char* const value = reader.GetSignalProperty(handle, key);
        if (value != nullptr && FAILED(SetProperty(key, value))) {
            return E_OUTOFMEMORY;
        }
    }
    return S_OK;
}

HRESULT SignalData::LoadChild(signals::ReaderLoad& load, IEventsStreamRead& reader, int handle,
                              SignalData& root) {
    frame::ComPtr<SignalData> child(std::make_unique<SignalData>().release());
    children_.push_back(std::move(child));
    return SUCCEEDED(children_.back()->LoadNode(load, reader, handle, root)) ? S_OK : E_FAIL;
}

}  // namespace corv::containers

HRESULT corv::CreateSignalData(ISignalData** data) noexcept {
    return frame::CreatePlainObject<containers::SignalData>(data);
}
