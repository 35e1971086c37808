#include "corv/signals/property_map.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <string_view>
#include <utility>

#include "platform/ascii.h"
#include "platform/guard.h"
#include "util/fields.h"

namespace {

// As the C library compares without regard to case: byte by byte, letters as lower-case ones.
bool IsBefore(std::string_view a, std::string_view b) noexcept {
    const auto lower = [](char c) { return static_cast<unsigned char>(corv::platform::Lower(c)); };
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                        [&](char x, char y) { return lower(x) < lower(y); });
}

std::string_view ViewOf(const char* text) noexcept {
    return text != nullptr ? std::string_view(text) : std::string_view();
}

}  // namespace

std::size_t CPropertyMap::PlaceOf(std::string_view key) const noexcept {
    const auto place =
        std::partition_point(entries_.begin(), entries_.end(),
                             [&](const Entry& entry) { return IsBefore(entry.key.View(), key); });
    return static_cast<std::size_t>(place - entries_.begin());
}

bool CPropertyMap::IsAt(std::size_t place, std::string_view key) const noexcept {
    if (place >= entries_.size()) {
        return false;
    }
    const std::string_view there = entries_[place].key.View();
    return there == key || corv::platform::EqualNoCase(there, key);
}

// Loaded and copied entries come in the order of their keys: the place behind the one that was set
// last is tried first.
std::size_t CPropertyMap::PlaceToSet(std::string_view key) const noexcept {
    if (IsAt(after_last_, key)) {
        return after_last_;
    }
    const bool is_last = !entries_.empty() && IsBefore(entries_.back().key.View(), key);
    return is_last ? entries_.size() : PlaceOf(key);
}

bool CPropertyMap::Set(const char* key, const char* value) noexcept {
    return corv::platform::Done([&] {
        const std::string_view wanted = ViewOf(key);
        const std::size_t place = PlaceToSet(wanted);
        if (IsAt(place, wanted)) {
            entries_[place].value = value;
        } else {
            if (entries_.empty()) {
                entries_.reserve(kUsualCount);
            }
            entries_.insert(entries_.begin() + static_cast<std::ptrdiff_t>(place),
                            Entry{CString(key), CString(value)});
        }
        after_last_ = place + 1;
    });
}

bool CPropertyMap::CopyFrom(const CPropertyMap& other) noexcept {
    return corv::platform::Done([&] {
        std::vector<Entry> entries;
        entries.reserve(std::max(other.entries_.size(), kUsualCount));
        entries.assign(other.entries_.begin(), other.entries_.end());
        entries_ = std::move(entries);
        after_last_ = 0;
    });
}

const char* CPropertyMap::Get(const char* key) const noexcept {
    const std::size_t place = PlaceOf(ViewOf(key));
    return IsAt(place, ViewOf(key)) ? static_cast<const char*>(entries_[place].value) : nullptr;
}

void CPropertyMap::Erase(const char* key) noexcept {
    const std::size_t place = PlaceOf(ViewOf(key));
    if (IsAt(place, ViewOf(key))) {
        entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(place));
    }
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
    if (next_ >= entries_.size()) {
        return false;
    }
    key = entries_[next_].key;
    value = entries_[next_].value;
    ++next_;
    return true;
}
