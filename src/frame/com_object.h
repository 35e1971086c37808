#pragma once

#include <cstdint>
#include <memory>
#include <type_traits>
#include <utility>

#include "corv/platform/unknown.h"
#include "platform/guard.h"

namespace corv::frame {

struct NoFields {};

// What all COM objects have in common: the reference count, which starts at 0, and QueryInterface.
// A class names itself, its interface and the interface's identifier, and adds its own operations:
//
//     class CSignal final : public ComObject<CSignal, ISignal, IID_ISignal> { ... };
//
// The count is the first field, or follows the fields of `Before` if a class has some before it. It
// is not atomic: an object must be used by one thread at a time.
template <class Object, class Interface, const GUID& kInterfaceId, class Before = NoFields>
class ComObject : public Interface, protected Before {
public:
    ComObject(const ComObject&) = delete;
    ComObject& operator=(const ComObject&) = delete;

    HRESULT CORV_CALL QueryInterface(const GUID& id, void** target) noexcept final {
        if (id != kInterfaceId && id != IID_IUnknown) {
            return E_NOINTERFACE;
        }
        *target = static_cast<Interface*>(this);
        AddRef();
        return S_OK;
    }

    std::uint32_t CORV_CALL AddRef() noexcept final { return ++reference_count_; }

    std::uint32_t CORV_CALL Release() noexcept final {
        static_assert(std::is_final_v<Object>, "the destructor is not virtual");
        if (--reference_count_ > 0) {
            return reference_count_;
        }
        delete static_cast<Object*>(this);
        return 0;
    }

    // Adds a reference and returns the interface pointer, like QueryInterface with the object's own
    // identifier.
    Interface* NewReference() noexcept {
        AddRef();
        return this;
    }

protected:
    ComObject() noexcept = default;
    explicit ComObject(const Before& before) noexcept : Before(before) {}
    ~ComObject() = default;

private:
    std::uint32_t reference_count_ = 0;
};

// The steps of every factory of COM objects: makes an object of the class and delivers it with one
// reference. Returns E_OUTOFMEMORY with `*out` unchanged if out of memory.
template <class Object, class Interface, class... Args>
HRESULT CreateComObject(Interface** out, Args&&... args) noexcept {
    Object* const object = platform::Guarded<Object*>(
        nullptr, [&] { return std::make_unique<Object>(std::forward<Args>(args)...).release(); });
    if (object == nullptr) {
        return E_OUTOFMEMORY;
    }
    *out = object->NewReference();
    return S_OK;
}

}  // namespace corv::frame
