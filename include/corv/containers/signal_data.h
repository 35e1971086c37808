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
// Texts and sub-signals belong to the object, carry no reference and live until the part that they
// come from changes. The host sets the object's id, which must not change while the object is in a
// container.
class ISignalData {
public:
    // Return the reference count after the change. The object ends with its last reference.
    virtual std::uint32_t AddRef() = 0;
    virtual std::uint32_t Release() = 0;

    // Sets the full hierarchical name. Returns E_INVALIDARG for null, or E_OUTOFMEMORY.
    virtual HRESULT SetName(const char* name) = 0;
    // Sets the type by its type-description string. Returns E_INVALIDARG for null and for a text
    // that is not a type, or E_OUTOFMEMORY. After a failure the old type is kept.
    virtual HRESULT SetTypeInfo(const char* type) = 0;
    virtual void SetId(int id) = 0;
    virtual void SetMode(int mode) = 0;
    // Sets the latest time, in picoseconds.
    virtual void SetMaxTime(std::int64_t time) = 0;
    // Inserts or replaces a property; case does not matter in keys. Returns E_FAIL for null, or
    // E_OUTOFMEMORY.
    virtual HRESULT SetProperty(const char* key, const char* value) = 0;
    // Appends the handle of a scalar unless it is already there. Returns E_INVALIDARG for a
    // negative handle, or E_OUTOFMEMORY.
    virtual HRESULT AddHandle(int handle) = 0;

    // Replaces the contents of this object by the signal of that handle of a recording, with all
    // its sub-signals. The object receives the handles of all scalars below it, in the order of the
    // type's scalars, and the id -1. Returns E_INVALIDARG, with nothing changed, for a null reader;
    // E_OUTOFMEMORY; and E_FAIL for a handle of -1, for a signal without a valid type, if a
    // sub-signal cannot be read, and if the recording nests sub-signals more than 256 levels deep
    // or within themselves, or has more than 67,108,864 of them below the signal. A negative number
    // of sub-signals counts as none. What was read before a failure stays.
    virtual HRESULT LoadFromReader(stremo::IEventsStreamRead* reader, int handle) = 0;

    // Reserved. Returns E_NOTIMPL.
    virtual HRESULT Reserved1(std::uint32_t reserved) = 0;

    // Returns the first object, among this one and those below it, depth first, whose name equals
    // the text without regard to case. If there is none, it returns the object below that the text
    // selects by extending its name: "top\s(3).a" is the sub-signal ".a" of the sub-signal "(3)" of
    // "top\s". Returns null if there is no such object, and for null.
    virtual ISignalData* FindByName(const char* name) = 0;

    // Returns the type, null if there is none.
    virtual const KTypeInfo* GetTypeInfo() = 0;
    // Returns the sub-signal at an index, null past the end.
    virtual ISignalData* GetChildAt(std::uint32_t index) = 0;
    // Returns the handle at an index, -1 past the end.
    virtual int GetHandleAt(std::uint32_t index) = 0;
    // Forgets the handles of this object and of all below it.
    virtual void ClearHandles() = 0;

    virtual const char* GetName() = 0;
    // Returns the part after the last hierarchy separator (hierarchy_separator.h), or the whole
    // name if it has no separator, or none after an extended identifier at its start.
    virtual const char* GetShortName() = 0;
    // Copies the part before the short name, including the separator at its end, and a terminating
    // zero. Returns false, with the target unchanged, for null and for a size in bytes that is too
    // small.
    virtual bool GetPath(char* target, std::uint32_t size) = 0;
    // Returns the type-description string, null without a type.
    virtual const char* GetTypeInfoString() = 0;
    // Returns the id, -1 unless set.
    virtual int GetId() = 0;
    // Returns the mode, 0 unless set.
    virtual int GetMode() = 0;
    // Returns the latest time in picoseconds, -1 unless set.
    virtual std::int64_t GetMaxTime() = 0;
    virtual int GetChildCount() = 0;
    virtual int GetHandleCount() = 0;

    // Reserved. Returns 0.
    virtual int Reserved2() = 0;

    // Returns the value of a property, null if there is no such key.
    virtual const char* GetProperty(const char* key) = 0;

    virtual ~ISignalData() = default;
};

// Makes an object without name and type, which the caller releases. Returns S_OK, or E_OUTOFMEMORY
// with `*data` null.
CORV_API HRESULT CreateSignalData(ISignalData** data) noexcept;

}  // namespace corv
