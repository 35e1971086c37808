#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "corv/platform/export.h"

// The named texts of a signal: sorted by key, keys compared without regard to the case of ASCII
// letters. A key keeps the case with which it was first stored. Null keys and values count as empty
// texts.
//
// When memory runs out, the setting operations return false and leave the map as it was. Copies
// share their entries until one of them changes, so that copying takes no memory and can't fail; a
// map and its copies are used on one thread.
class CORV_API CPropertyMap {
public:
    CPropertyMap() noexcept = default;
    CPropertyMap(const CPropertyMap& other) noexcept;
    CPropertyMap(CPropertyMap&& other) noexcept;
    CPropertyMap& operator=(CPropertyMap other) noexcept;
    ~CPropertyMap();

    // Inserts an entry or replaces its value.
    bool Set(const char* key, const char* value) noexcept;
    // The value, null when there is no such key. The pointer stays valid until that key is set or
    // erased in this map or the map ends, whatever happens to other keys.
    const char* Get(const char* key) const noexcept;
    // Removes the key if it is there. False, with the map as it was, when the entries are shared
    // with a copy and memory runs out.
    bool Erase(const char* key) noexcept;

    // Whether there is such a key, and its value as a decimal number: blanks and a sign in front,
    // then as many digits as there are; 0 when there are none, the nearest number when it is out of
    // range.
    bool GetInteger(const char* key, int& value) const noexcept;
    bool GetInteger64(const char* key, std::int64_t& value) const noexcept;
    // Sets the key to the number in decimal.
    bool SetInteger(const char* key, int value) noexcept;

    int GetCount() const noexcept;

    // The entries in the order of their keys; false at the end. Only one enumeration at a time: its
    // place is kept in the map and lost when an entry comes or goes.
    bool GetFirst(const char*& key, const char*& value) const noexcept;
    bool GetNext(const char*& key, const char*& value) const noexcept;

private:
    struct Entry;
    struct Table;

    std::uint32_t Count() const noexcept;
    const Entry& At(std::uint32_t place) const noexcept;
    // Where the key stands or would stand; whether it stands there.
    std::uint32_t PlaceOf(std::string_view key) const noexcept;
    bool IsAt(std::uint32_t place, std::string_view key) const noexcept;
    std::uint32_t PlaceToSet(std::string_view key) const noexcept;
    // Makes the table this map's alone, with room for an entry more. False without memory.
    bool OwnTable() noexcept;

    Table* table_ = nullptr;  // null: no entries
    mutable std::uint32_t next_ = 0;
    std::uint32_t after_last_ = 0;  // the place after the entry that was set last
};
