#pragma once

#include <cstdint>
#include <memory>
#include <vector>

namespace corv::tree {

struct Listing;

// A manager that lists signals by handle, as the listings of a signal see it.
class Lister {
public:
    // Removes one entry, without reporting it to the signal.
    virtual void Drop(const Listing& listing) noexcept = 0;

protected:
    ~Lister() = default;
};

// One entry of a signal in a handle manager.
struct Listing {
    Lister* manager;
    int handle;            // under which the signal is listed there
    std::uint64_t number;  // its place among the entries of that handle
};

// The places where a signal is listed: mostly one, which takes no memory of its own. A signal has
// this object as a field; the destructor takes the signal out of all managers, whatever handle it
// has by then. A manager that is destroyed takes its entries out of here.
class Listings {
public:
    Listings() noexcept = default;
    Listings(const Listings&) = delete;
    Listings& operator=(const Listings&) = delete;
    ~Listings();

    // Returns null if there is none. The result is valid until the next change.
    const Listing* Find(const Lister& manager, int handle) const noexcept;
    // Throws std::bad_alloc, with nothing changed, if memory runs out.
    void Add(const Listing& listing);
    void Remove(const Listing& listing) noexcept;
    // Takes the signal out of a manager.
    void Leave(Lister& manager) noexcept;
    // Forgets a manager without informing it.
    void Forget(const Lister& manager) noexcept;
    bool IsEmpty() const noexcept { return first_.manager == nullptr; }

private:
    // Calls an action with each entry until that returns true; returns that entry, else null.
    template <class Action>
    const Listing* FindIf(const Action& action) const noexcept;
    // Fills the first place, when it is free, with the last entry.
    void CloseGap() noexcept;

    Listing first_{};  // without a manager: the signal is listed nowhere
    std::unique_ptr<std::vector<Listing>> others_;
};

}  // namespace corv::tree
