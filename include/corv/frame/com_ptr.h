#pragma once

#include <utility>

namespace corv::frame {

// A counted reference to an interface, or none.
template <class Interface>
class ComPtr {
public:
    ComPtr() noexcept = default;
    // Takes over a reference that the caller has.
    explicit ComPtr(Interface* counted) noexcept : pointer_(counted) {}
    // Counts one of its own.
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

    // For a factory's out; what is held is released first.
    Interface** Out() noexcept {
        ComPtr().Swap(*this);
        return &pointer_;
    }
    // Gives the reference away.
    Interface* Detach() noexcept { return std::exchange(pointer_, nullptr); }
    void Swap(ComPtr& other) noexcept { std::swap(pointer_, other.pointer_); }

private:
    Interface* pointer_ = nullptr;
};

}  // namespace corv::frame
