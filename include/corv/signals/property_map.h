#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "corv/platform/cstring.h"
#include "corv/platform/export.h"

// The named texts of a signal: sorted by key, keys compared without regard to the case of ASCII
// letters. A key keeps the case with which it was first stored. Null keys and values count as empty
// texts.
//
// When memory runs out, the setting operations give false and leave the map as it was.
class CORV_API CPropertyMap {
public:
    // Inserts an entry or replaces its value.
    bool Set(const char* key, const char* value) noexcept;
    // Takes over all entries of another map, in place of its own.
    bool CopyFrom(const CPropertyMap& other) noexcept;
    // The value, null when there is no such key; valid until that key is set or erased.
    const char* Get(const char* key) const noexcept;
    void Erase(const char* key) noexcept;

    // Whether there is such a key, and its value as a decimal number: blanks and a sign in front,
    // then as many digits as there are; 0 when there are none, the nearest number when it is out of
    // range.
    bool GetInteger(const char* key, int& value) const noexcept;
    bool GetInteger64(const char* key, std::int64_t& value) const noexcept;
    // Sets the key to the number in decimal.
    bool SetInteger(const char* key, int value) noexcept;

    int GetCount() const noexcept { return static_cast<int>(entries_.size()); }

    // The entries in the order of their keys; false at the end. Only one enumeration at a time: its
    // place is kept in the map and lost when an entry comes or goes.
    bool GetFirst(const char*& key, const char*& value) const noexcept;
    bool GetNext(const char*& key, const char*& value) const noexcept;

private:
    struct Entry {
        CString key;
        CString value;
    };
    static constexpr std::size_t kUsualCount = 4;

    // Where the key stands or would stand; whether it stands there.
    std::size_t PlaceOf(std::string_view key) const noexcept;
    bool IsAt(std::size_t place, std::string_view key) const noexcept;
    std::size_t PlaceToSet(std::string_view key) const noexcept;

    std::vector<Entry> entries_;
    mutable std::size_t next_ = 0;
    std::size_t after_last_ = 0;  // behind the entry that was set last
};
