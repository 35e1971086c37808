#include "corv/signals/property_map.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <limits>
#include <new>
#include <string_view>
#include <utility>

#include "platform/ascii.h"
#include "util/fields.h"

namespace {

using corv::platform::IsBeforeNoCase;

std::string_view ViewOf(const char* text) noexcept {
    return text != nullptr ? std::string_view(text) : std::string_view();
}

// Room for the entries that a table gets first; with its head an odd number fills a block of the
// heap.
constexpr std::uint32_t kFewEntries = 3;

void* NewBlock(std::size_t bytes) noexcept {
    return ::operator new(bytes, std::nothrow);
}
void DeleteBlock(void* block) noexcept {
    ::operator delete(block);
}

}  // namespace

// A key and its value in a block of their own, both with a terminating zero. Maps share entries; an
// entry never changes or moves, so that its texts are valid as long as one map has it.
struct CPropertyMap::Entry {
    // One for whoever asked; null without memory.
    static Entry* Make(std::string_view key, std::string_view value) noexcept {
        void* const block = key.size() > std::numeric_limits<std::uint32_t>::max()
                                ? nullptr
                                : NewBlock(sizeof(Entry) + key.size() + value.size() + 2);
        if (block == nullptr) {
            return nullptr;
        }
        Entry* const entry = ::new (block) Entry;
        entry->key_length = static_cast<std::uint32_t>(key.size());
        char* const text = reinterpret_cast<char*>(entry + 1);
        text[key.copy(text, key.size())] = '\0';
        char* const value_text = text + key.size() + 1;
        value_text[value.copy(value_text, value.size())] = '\0';
        return entry;
    }

    const char* Key() const noexcept { return reinterpret_cast<const char*>(this + 1); }
    std::string_view KeyView() const noexcept { return {Key(), key_length}; }
    const char* Value() const noexcept { return Key() + key_length + 1; }

    void Share() noexcept { ++owners; }
    void Release() noexcept {
        if (--owners == 0) {
            DeleteBlock(this);
        }
    }

    std::uint32_t owners = 1;
    std::uint32_t key_length = 0;
};

// The entries in the order of their keys; they follow in the same block. Copies of a map share it
// until one of them changes.
struct alignas(void*) CPropertyMap::Table {
    static Table* WithRoom(std::uint32_t capacity) noexcept {
        void* const block = NewBlock(sizeof(Table) + capacity * sizeof(void*));
        if (block == nullptr) {
            return nullptr;
        }
        Table* const table = ::new (block) Table;
        table->capacity = capacity;
        return table;
    }

    Entry** Entries() noexcept { return reinterpret_cast<Entry**>(this + 1); }

    void Insert(std::uint32_t place, Entry* entry) noexcept {
        Entry** const at = Entries() + place;
        std::copy_backward(at, Entries() + count, Entries() + count + 1);
        *at = entry;
        ++count;
    }
    void Remove(std::uint32_t place) noexcept {
        Entry** const at = Entries() + place;
        (*at)->Release();
        std::copy(at + 1, Entries() + count, at);
        --count;
    }
    void Release() noexcept {
        if (--owners == 0) {
            std::for_each(Entries(), Entries() + count, [](Entry* entry) { entry->Release(); });
            DeleteBlock(this);
        }
    }

    std::uint32_t owners = 1;
    std::uint32_t count = 0;
    std::uint32_t capacity = 0;
};

CPropertyMap::CPropertyMap(const CPropertyMap& other) noexcept : table_(other.table_) {
    if (table_ != nullptr) {
        ++table_->owners;
    }
}
CPropertyMap::CPropertyMap(CPropertyMap&& other) noexcept
    : table_(std::exchange(other.table_, nullptr)) {}
CPropertyMap& CPropertyMap::operator=(CPropertyMap other) noexcept {
    std::swap(table_, other.table_);
    next_ = after_last_ = 0;
    return *this;
}
CPropertyMap::~CPropertyMap() {
    if (table_ != nullptr) {
        table_->Release();
    }
}

std::uint32_t CPropertyMap::Count() const noexcept {
    return table_ != nullptr ? table_->count : 0;
}
int CPropertyMap::GetCount() const noexcept {
    return static_cast<int>(Count());
}
const CPropertyMap::Entry& CPropertyMap::At(std::uint32_t place) const noexcept {
    return *table_->Entries()[place];
}

std::uint32_t CPropertyMap::PlaceOf(std::string_view key) const noexcept {
    if (table_ == nullptr) {
        return 0;
    }
    Entry** const entries = table_->Entries();
    Entry** const place = std::partition_point(
        entries, entries + table_->count,
        [&](const Entry* entry) { return IsBeforeNoCase(entry->KeyView(), key); });
    return static_cast<std::uint32_t>(place - entries);
}

bool CPropertyMap::IsAt(std::uint32_t place, std::string_view key) const noexcept {
    if (place >= Count()) {
        return false;
    }
    const std::string_view there = At(place).KeyView();
    return there == key || corv::platform::EqualNoCase(there, key);
}

// Loaded entries come in the order of their keys: the place after the one that was set last is
// tried first.
std::uint32_t CPropertyMap::PlaceToSet(std::string_view key) const noexcept {
    if (IsAt(after_last_, key)) {
        return after_last_;
    }
    const std::uint32_t count = Count();
    const bool is_last = count > 0 && IsBeforeNoCase(At(count - 1).KeyView(), key);
    return is_last ? count : PlaceOf(key);
}

bool CPropertyMap::OwnTable() noexcept {
    const std::uint32_t count = Count();
    const bool is_own = table_ != nullptr && table_->owners == 1;
    if (is_own && count < table_->capacity) {
        return true;
    }
    const std::uint32_t wanted = is_own ? 2 * count + 1 : std::max(kFewEntries, (count + 1) | 1);
    Table* const own = Table::WithRoom(wanted);
    if (own == nullptr) {
        return false;
    }
    if (table_ != nullptr) {
        std::copy_n(table_->Entries(), count, own->Entries());
        std::for_each_n(own->Entries(), count, [](Entry* entry) { entry->Share(); });
        own->count = count;
        table_->Release();
    }
    table_ = own;
    return true;
}

// The old value goes last: the new one may be read from it.
bool CPropertyMap::Set(const char* key, const char* value) noexcept {
    const std::string_view wanted = ViewOf(key);
    const std::uint32_t place = PlaceToSet(wanted);
    const bool is_there = IsAt(place, wanted);
    Entry* const entry = Entry::Make(is_there ? At(place).KeyView() : wanted, ViewOf(value));
    if (entry == nullptr || !OwnTable()) {
        if (entry != nullptr) {
            entry->Release();
        }
        return false;
    }
    if (is_there) {
        std::exchange(table_->Entries()[place], entry)->Release();
    } else {
        table_->Insert(place, entry);
    }
    after_last_ = place + 1;
    return true;
}

const char* CPropertyMap::Get(const char* key) const noexcept {
    const std::string_view wanted = ViewOf(key);
    const std::uint32_t place = PlaceOf(wanted);
    return IsAt(place, wanted) ? At(place).Value() : nullptr;
}

bool CPropertyMap::Erase(const char* key) noexcept {
    const std::string_view wanted = ViewOf(key);
    const std::uint32_t place = PlaceOf(wanted);
    if (!IsAt(place, wanted)) {
        return true;
    }
    if (!OwnTable()) {
        return false;
    }
    table_->Remove(place);
    return true;
}

bool CPropertyMap::GetInteger(const char* key, int& value) const noexcept {
    const char* const text = Get(key);
    if (text == nullptr) {
        return false;
    }
    value = corv::util::LeadingInt(text);
    return true;
}

bool CPropertyMap::GetInteger64(const char* key, std::int64_t& value) const noexcept {
    const char* const text = Get(key);
    if (text == nullptr) {
        return false;
    }
    value = corv::util::LeadingInteger(text);
    return true;
}

bool CPropertyMap::SetInteger(const char* key, int value) noexcept {
    char text[std::numeric_limits<int>::digits10 + 3];
    *std::to_chars(text, text + sizeof text - 1, value).ptr = '\0';
    return Set(key, text);
}

bool CPropertyMap::GetFirst(const char*& key, const char*& value) const noexcept {
    next_ = 0;
    return GetNext(key, value);
}

bool CPropertyMap::GetNext(const char*& key, const char*& value) const noexcept {
    if (next_ >= Count()) {
        return false;
    }
    const Entry& entry = At(next_++);
    key = entry.Key();
    value = entry.Value();
    return true;
}
