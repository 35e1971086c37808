#include "tree/listings.h"

#include <algorithm>

namespace corv::tree {

Listings::~Listings() {
    for (const Listing& listing : entries_) {
        listing.manager->Drop(listing);
    }
}

const Listing* Listings::Find(const Lister& manager, int handle) const noexcept {
    const auto found = std::find_if(entries_.begin(), entries_.end(), [&](const Listing& listing) {
        return listing.manager == &manager && listing.handle == handle;
    });
    return found != entries_.end() ? &*found : nullptr;
}

void Listings::Remove(const Listing& listing) noexcept {
    entries_.erase(entries_.begin() + (&listing - entries_.data()));
}

void Listings::Leave(Lister& manager) noexcept {
    for (const Listing& listing : entries_) {
        if (listing.manager == &manager) {
            manager.Drop(listing);
        }
    }
    Forget(manager);
}

void Listings::Forget(const Lister& manager) noexcept {
    std::erase_if(entries_, [&](const Listing& listing) { return listing.manager == &manager; });
}

}  // namespace corv::tree
