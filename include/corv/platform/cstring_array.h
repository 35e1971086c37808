#pragma once

#include <limits>
#include <new>
#include <vector>

#include "corv/platform/cstring.h"

// An indexed list of owned texts. Indices run from 0. Reading outside the list returns an empty
// text; sizes below 0 count as 0. If out of memory, the operations that make the list longer throw
// std::bad_alloc and leave it unchanged.
class CStringArray {
public:
    int GetSize() const noexcept { return static_cast<int>(texts_.size()); }
    // Shortens the list, or extends it with empty texts.
    void SetSize(int size) { texts_.resize(size > 0 ? static_cast<std::size_t>(size) : 0); }
    void RemoveAll() noexcept { texts_.clear(); }

    // Returns the entry, valid until the list changes. Outside the list it returns an empty text
    // that belongs to no entry, so anything written to it is lost.
    const CString& GetAt(int index) const noexcept {
        return Holds(index) ? Entry(index) : outside_;
    }
    const CString& operator[](int index) const noexcept { return GetAt(index); }
    CString& operator[](int index) noexcept {
        if (Holds(index)) {
            return Entry(index);
        }
        scratch_.Empty();
        return scratch_;
    }

    // Replaces an entry of the list; an index outside does nothing.
    void SetAt(int index, const char* text) {
        if (Holds(index)) {
            Entry(index) = text;
        }
    }
    // The same, but extends the list up to the index if necessary; an index below 0 does nothing.
    void SetAtGrow(int index, const char* text) {
        if (index < 0) {
            return;
        }
        if (index == std::numeric_limits<int>::max()) {
            throw std::bad_alloc();  // its length would not fit into an int
        }
        CString copy(text);
        if (!Holds(index)) {
            SetSize(index + 1);
        }
        Entry(index) = std::move(copy);
    }
    // Appends a text and returns its index.
    int Add(const char* text) {
        texts_.emplace_back(text);
        return GetSize() - 1;
    }

private:
    bool Holds(int index) const noexcept {
        return index >= 0 && static_cast<std::size_t>(index) < texts_.size();
    }
    const CString& Entry(int index) const { return texts_[static_cast<std::size_t>(index)]; }
    CString& Entry(int index) { return texts_[static_cast<std::size_t>(index)]; }

    std::vector<CString> texts_;
    CString outside_;
    CString scratch_;
};
