#pragma once

#include <cstdint>
#include <memory>
#include <vector>

namespace corv::tree {

struct Listing;

// What lists signals by handle, as their listings see it.
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
    int handle;            // under which it stands there
    std::uint64_t number;  // its place among the entries of that handle
};

// Where a signal is listed: mostly once, for which no memory is taken. A signal has this as a
// field, whose end takes it out of all managers whatever handle the signal has by then; a manager
// that ends takes its entries out of here.
class Listings {
public:
    Listings() noexcept = default;
    Listings(const Listings&) = delete;
    Listings& operator=(const Listings&) = delete;
    ~Listings();

    // Null when there is none. A place that is found is valid until the next change.
    const Listing* Find(const Lister& manager, int handle) const noexcept;
    // Throws, with nothing changed, without memory.
    void Add(const Listing& listing);
    void Remove(const Listing& listing) noexcept;
    // Takes the signal out of a manager.
    void Leave(Lister& manager) noexcept;
    // Forgets a manager, which is told nothing.
    void Forget(const Lister& manager) noexcept;
    bool IsEmpty() const noexcept { return first_.manager == nullptr; }

private:
    // Calls an action with each entry until that gives true; gives the entry then, else null.
    template <class Action>
    const Listing* FindIf(const Action& action) const noexcept;
    // Fills the first place, when it is free, with the last entry.
    void CloseGap() noexcept;

    Listing first_{};  // without a manager: the signal is listed nowhere
    std::unique_ptr<std::vector<Listing>> others_;
};

}  // namespace corv::tree
