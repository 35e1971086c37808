#pragma once

#include <cstdint>
#include <memory>
#include <type_traits>
#include <utility>

#include "corv/platform/result.h"
#include "platform/guard.h"

namespace corv::frame {

// What all objects with plain interfaces have in common: the reference count, which starts at 1 for
// the creator's reference. A class names itself and its interface:
//
//     class CSignalData final : public PlainObject<CSignalData, ISignalData> { ... };
//
// The count is not atomic: an object must be used by one thread at a time.
template <class Object, class Interface>
class PlainObject : public Interface {
public:
    PlainObject(const PlainObject&) = delete;
    PlainObject& operator=(const PlainObject&) = delete;

    std::uint32_t AddRef() noexcept final { return ++reference_count_; }

    std::uint32_t Release() noexcept final {
        static_assert(std::is_final_v<Object>, "not every interface has a virtual destructor");
        if (--reference_count_ > 0) {
            return reference_count_;
        }
        delete static_cast<Object*>(this);
        return 0;
    }

protected:
    PlainObject() noexcept = default;
    ~PlainObject() = default;  // NOLINT(modernize-use-override): not every interface has one

private:
    std::uint32_t reference_count_ = 1;
};

// The steps of every factory of plain objects: sets the out to null, makes an object of the class,
// lets `set_up` (a callable that takes the object and returns whether it succeeded) prepare its
// parts, and delivers it. Returns E_OUTOFMEMORY if there is no memory for the object, and
// `failure`, with the object destroyed, if the set-up fails or runs out of memory.
template <class Object, class Interface, class SetUp, class... Args>
HRESULT CreatePlainObject(Interface** out, HRESULT failure, SetUp&& set_up,
                          Args&&... args) noexcept {
    *out = nullptr;
    Object* const object = platform::Guarded<Object*>(
        nullptr, [&] { return std::make_unique<Object>(std::forward<Args>(args)...).release(); });
    if (object == nullptr) {
        return E_OUTOFMEMORY;
    }
    if (!platform::Guarded(false, [&] { return std::forward<SetUp>(set_up)(*object); })) {
        object->Release();
        return failure;
    }
    *out = object;
    return S_OK;
}

// The same for objects without parts to set up.
template <class Object, class Interface>
HRESULT CreatePlainObject(Interface** out) noexcept {
    return CreatePlainObject<Object>(out, E_FAIL, [](Object&) { return true; });
}

}  // namespace corv::frame
