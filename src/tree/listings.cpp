#include "tree/listings.h"

#include <algorithm>

namespace corv::tree {

template <class Action>
const Listing* Listings::FindIf(const Action& action) const noexcept {
    if (IsEmpty() || action(first_)) {
        return IsEmpty() ? nullptr : &first_;
    }
    if (others_ == nullptr) {
        return nullptr;
    }
    const auto found = std::find_if(others_->begin(), others_->end(), action);
    return found != others_->end() ? &*found : nullptr;
}

Listings::~Listings() {
    FindIf([](const Listing& listing) {
        listing.manager->Drop(listing);
        return false;
    });
}

const Listing* Listings::Find(const Lister& manager, int handle) const noexcept {
    return FindIf([&](const Listing& listing) {
        return listing.manager == &manager && listing.handle == handle;
    });
}

void Listings::Add(const Listing& listing) {
    if (IsEmpty()) {
        first_ = listing;
        return;
    }
    if (others_ == nullptr) {
        others_ = std::make_unique<std::vector<Listing>>();
    }
    others_->push_back(listing);
}

void Listings::Remove(const Listing& listing) noexcept {
    if (&listing == &first_) {
        first_ = {};
        CloseGap();
    } else {
        others_->erase(others_->begin() + (&listing - others_->data()));
    }
}

void Listings::CloseGap() noexcept {
    if (IsEmpty() && others_ != nullptr && !others_->empty()) {
        first_ = others_->back();
        others_->pop_back();
    }
}

void Listings::Leave(Lister& manager) noexcept {
    FindIf([&](const Listing& listing) {
        if (listing.manager == &manager) {
            manager.Drop(listing);
        }
        return false;
    });
    Forget(manager);
}

void Listings::Forget(const Lister& manager) noexcept {
    const auto is_there = [&](const Listing& listing) { return listing.manager == &manager; };
    if (others_ != nullptr) {
        std::erase_if(*others_, is_there);
    }
    if (is_there(first_)) {
        first_ = {};
        CloseGap();
    }
}

}  // namespace corv::tree
