#pragma once

#include <utility>

namespace corv::frame {

// An owned reference to an interface, or none. It is released with this object.
template <class Interface>
class ComPtr {
public:
    ComPtr() noexcept = default;
    // Takes over a reference that the caller owns.
    explicit ComPtr(Interface* counted) noexcept : pointer_(counted) {}
    // Adds a reference of its own to a borrowed pointer.
    static ComPtr Share(Interface* borrowed) noexcept {
        if (borrowed != nullptr) {
            borrowed->AddRef();
        }
        return ComPtr(borrowed);
    }
    ComPtr(ComPtr&& other) noexcept : pointer_(other.Detach()) {}
    ComPtr& operator=(ComPtr&& other) noexcept {
        ComPtr(std::move(other)).Swap(*this);
        return *this;
    }
    ~ComPtr() {
        if (pointer_ != nullptr) {
            pointer_->Release();
        }
    }

    explicit operator bool() const noexcept { return pointer_ != nullptr; }
    Interface* get() const noexcept { return pointer_; }
    Interface* operator->() const noexcept { return pointer_; }
    Interface& operator*() const noexcept { return *pointer_; }

    // Releases what is held and returns the address for a factory to write to.
    Interface** Out() noexcept {
        ComPtr().Swap(*this);
        return &pointer_;
    }
    // Hands the reference over to the caller.
    Interface* Detach() noexcept { return std::exchange(pointer_, nullptr); }
    void Swap(ComPtr& other) noexcept { std::swap(pointer_, other.pointer_); }

private:
    Interface* pointer_ = nullptr;
};

}  // namespace corv::frame
