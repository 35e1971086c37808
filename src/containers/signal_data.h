#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "containers/handle_list.h"
#include "corv/containers/signal_data.h"
#include "corv/frame/com_ptr.h"
#include "corv/platform/cstring.h"
#include "corv/signals/property_map.h"
#include "frame/plain_object.h"
#include "signals/loads.h"
#include "signals/type_cache.h"

namespace corv::containers {

class SignalData final : public frame::PlainObject<SignalData, ISignalData> {
public:
    HRESULT SetName(const char* name) noexcept override;
    HRESULT SetTypeInfo(const char* type) noexcept override;
    void SetId(int id) noexcept override { id_ = id; }
    void SetMode(int mode) noexcept override { mode_ = mode; }
    void SetMaxTime(std::int64_t time) noexcept override { max_time_ = time; }
    HRESULT SetProperty(const char* key, const char* value) noexcept override;
    HRESULT AddHandle(int handle) noexcept override;
    HRESULT LoadFromReader(stremo::IEventsStreamRead* reader, int handle) noexcept override;
    HRESULT Reserved1(std::uint32_t) noexcept override { return E_NOTIMPL; }
    ISignalData* FindByName(const char* name) noexcept override;
    const KTypeInfo* GetTypeInfo() noexcept override { return type_.get(); }
    ISignalData* GetChildAt(std::uint32_t index) noexcept override;
    int GetHandleAt(std::uint32_t index) noexcept override { return handles_.At(index); }
    void ClearHandles() noexcept override;
    const char* GetName() noexcept override { return name_; }
    const char* GetShortName() noexcept override { return GetName() + short_name_; }
    bool GetPath(char* target, std::uint32_t size) noexcept override;
    const char* GetTypeInfoString() noexcept override;
    int GetId() noexcept override { return id_; }
    int GetMode() noexcept override { return mode_; }
    std::int64_t GetMaxTime() noexcept override { return max_time_; }
    int GetChildCount() noexcept override { return static_cast<int>(children_.size()); }
    int GetHandleCount() noexcept override { return static_cast<int>(handles_.Count()); }
    int Reserved2() noexcept override { return 0; }
    const char* GetProperty(const char* key) noexcept override;

private:
    SignalData* FindNamed(const char* name) noexcept;
    SignalData* FindBySelection(std::string_view path) noexcept;
    void Reset() noexcept;
    // Read the object as a node of the tree below the root.
    HRESULT LoadNode(signals::ReaderLoad& load, stremo::IEventsStreamRead& reader, int handle,
                     SignalData& root);
    HRESULT LoadFields(stremo::IEventsStreamRead& reader, int handle, int& child_count);
    HRESULT LoadChild(signals::ReaderLoad& load, stremo::IEventsStreamRead& reader, int handle,
                      SignalData& root);

    CString name_;
    std::size_t short_name_ = 0;  // where it begins in the name
    int id_ = -1;
    int mode_ = 0;
    std::int64_t max_time_ = -1;
    CPropertyMap properties_;
    signals::TypePtr type_;
    std::vector<frame::ComPtr<SignalData>> children_;
    HandleList handles_;
};

}  // namespace corv::containers
