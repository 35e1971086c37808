#pragma once

#include <cstdint>

#include "corv/platform/export.h"
#include "corv/platform/result.h"

class KTypeInfo;
namespace stremo {
class IEventsStreamRead;
}

namespace corv {

// A description of one signal of a recording, without its events: name, type, mode, last time,
// properties, its sub-signals as further such objects and the simulator handles of its scalars.
//
// Texts and sub-signals belong to the object, are not counted and live until what they come from is
// changed. The object is given an id by its host, which must stay as long as it is in a container.
class ISignalData {
public:
    // The reference count after the change; the object ends with its last reference.
    virtual std::uint32_t AddRef() = 0;
    virtual std::uint32_t Release() = 0;

    // Sets the full hierarchical name. E_INVALIDARG for null; E_OUTOFMEMORY.
    virtual HRESULT SetName(const char* name) = 0;
    // Sets the type by its type-description string. E_INVALIDARG for null and for what is none;
    // E_OUTOFMEMORY. The old type is kept then.
    virtual HRESULT SetTypeInfo(const char* type) = 0;
    virtual void SetId(int id) = 0;
    virtual void SetMode(int mode) = 0;
    // In picoseconds.
    virtual void SetMaxTime(std::int64_t time) = 0;
    // Inserts or replaces a property; case does not matter in keys. E_FAIL for null;
    // E_OUTOFMEMORY.
    virtual HRESULT SetProperty(const char* key, const char* value) = 0;
    // Appends the handle of a scalar unless it is there already. E_INVALIDARG for a negative one;
    // E_OUTOFMEMORY.
    virtual HRESULT AddHandle(int handle) = 0;

    // Describes the signal of that handle of a recording, with all its sub-signals; what was there
    // before is gone. The object gets the handles of all scalars below it, in the order of the
    // type's scalars, and the id -1. E_INVALIDARG, with nothing changed, for a null reader;
    // E_OUTOFMEMORY; E_FAIL for a handle of -1, without a valid type, when a sub-signal can't be
    // read, when the recording nests them more than 256 levels deep, one within itself, or has more
    // than 67,108,864 below the signal. A negative number of them is none. What was read until then
    // stays.
    virtual HRESULT LoadFromReader(stremo::IEventsStreamRead* reader, int handle) = 0;

    // E_NOTIMPL.
    virtual HRESULT Reserved1(std::uint32_t reserved) = 0;

    // The first of this object and those below it, depth first, whose name equals the text without
    // regard to case; if there is none, the one below it that the text selects from its name:
    // "top\s(3).a" is the sub-signal ".a" of the sub-signal "(3)" of "top\s". Null when there is
    // none and for null.
    virtual ISignalData* FindByName(const char* name) = 0;

    // Null without a type.
    virtual const KTypeInfo* GetTypeInfo() = 0;
    // The sub-signal, null past the end.
    virtual ISignalData* GetChildAt(std::uint32_t index) = 0;
    // The handle, -1 past the end.
    virtual int GetHandleAt(std::uint32_t index) = 0;
    // Forgets the handles of this object and of all below it.
    virtual void ClearHandles() = 0;

    virtual const char* GetName() = 0;
    // The part behind the last hierarchy separator (hierarchy_separator.h); the whole name when
    // there is none, or none behind an extended identifier at its start.
    virtual const char* GetShortName() = 0;
    // Copies the part in front of the short name, with the separator at its end, and a terminating
    // zero. False, with the target as it was, for null and for a size in bytes that is too small.
    virtual bool GetPath(char* target, std::uint32_t size) = 0;
    // The type-description string, null without a type.
    virtual const char* GetTypeInfoString() = 0;
    // -1 unless set.
    virtual int GetId() = 0;
    // 0 unless set.
    virtual int GetMode() = 0;
    // In picoseconds, -1 unless set.
    virtual std::int64_t GetMaxTime() = 0;
    virtual int GetChildCount() = 0;
    virtual int GetHandleCount() = 0;

    // 0.
    virtual int Reserved2() = 0;

    // The value, null when the key is not there.
    virtual const char* GetProperty(const char* key) = 0;

    virtual ~ISignalData() = default;
};

// Makes an object without name and type that the caller releases. E_OUTOFMEMORY, with null in the
// out.
CORV_API HRESULT CreateSignalData(ISignalData** data) noexcept;

}  // namespace corv
