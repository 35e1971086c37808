#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "corv/platform/export.h"

// The named texts of a signal: sorted by key, keys compared without regard to the case of ASCII
// letters. A key keeps the case with which it was first stored. Null keys and values count as empty
// texts.
//
// If out of memory, the setting operations return false and leave the map unchanged. Copies share
// their entries until one of them changes, so copying takes no memory and cannot fail; a map and
// its copies must be used on one thread.
class CORV_API CPropertyMap {
public:
    CPropertyMap() noexcept = default;
    CPropertyMap(const CPropertyMap& other) noexcept;
    CPropertyMap(CPropertyMap&& other) noexcept;
    CPropertyMap& operator=(CPropertyMap other) noexcept;
    ~CPropertyMap();

    // Inserts an entry or replaces its value. Returns false if out of memory.
    bool Set(const char* key, const char* value) noexcept;
    // Returns the value, null if there is no such key. The pointer stays valid until that key is
    // set or erased in this map or the map ends, whatever happens to other keys.
    const char* Get(const char* key) const noexcept;
    // Removes the key if it is there. Returns false, with the map unchanged, if the entries are
    // shared with a copy and there is no memory for its own.
    bool Erase(const char* key) noexcept;

    // Return whether there is such a key, and store its value as a decimal number: leading blanks
    // and a sign, then as many digits as there are. A value without digits is 0; one out of range
    // becomes the nearest number.
    bool GetInteger(const char* key, int& value) const noexcept;
    bool GetInteger64(const char* key, std::int64_t& value) const noexcept;
    // Sets the key to the number in decimal. Returns false if out of memory.
    bool SetInteger(const char* key, int value) noexcept;

    int GetCount() const noexcept;

    // Return the entries in the order of their keys, and false at the end. A map supports one
    // enumeration at a time: its position is kept in the map and is lost when an entry is added or
    // removed.
    bool GetFirst(const char*& key, const char*& value) const noexcept;
    bool GetNext(const char*& key, const char*& value) const noexcept;

private:
    struct Entry;
    struct Table;

    std::uint32_t Count() const noexcept;
    const Entry& At(std::uint32_t place) const noexcept;
    // PlaceOf returns where the key is or would be inserted; IsAt returns whether it is there.
    std::uint32_t PlaceOf(std::string_view key) const noexcept;
    bool IsAt(std::uint32_t place, std::string_view key) const noexcept;
    std::uint32_t PlaceToSet(std::string_view key) const noexcept;
    // Makes the table this map's own, with room for one more entry. Returns false if out of memory.
    bool OwnTable() noexcept;

    Table* table_ = nullptr;  // null: no entries
    mutable std::uint32_t next_ = 0;
    std::uint32_t after_last_ = 0;  // the place after the entry that was set last
};
