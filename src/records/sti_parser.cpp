// Stimulator-info records. A parsed record is one buffer in which separators have become zeros; the
// fields point into it, or to a static text where the record has none.

#include "corv/records/sti_parser.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

#include "platform/ascii.h"
#include "platform/guard.h"
#include "platform/string_table.h"
#include "util/fields.h"

using corv::platform::EqualNoCase;

namespace {

enum Field : std::size_t { kDialogId, kStimType, kStrength, kData, kInfo, kActive, kStates };

constexpr std::size_t kRequired = 3;  // fields that a record must have
constexpr char kSeparator = ':';

constexpr int kDefault = 512;
constexpr int kOverride = 1;

struct StrengthRow {
    int number;
    unsigned name;  // in the string table
};
constexpr std::array<StrengthRow, 4> kStrengths{{{kDefault, 2}, {kOverride, 5}, {8, 6}, {16, 7}}};

struct DialogRow {
    const char* code;
    unsigned name;  // in the string table
};
constexpr std::array<DialogRow, 6> kDialogs{
    {{"VAL", 8}, {"FRM", 9}, {"CLK", 10}, {"KEY", 11}, {"PRD", 13}, {"CST", 12}}};

constexpr std::array<const char*, 2> kStimTypes{"FRM", "KEY"};  // by number

// The texts of the string table for the rows, in their order.
struct Names {
    Names() noexcept {
        std::transform(kStrengths.begin(), kStrengths.end(), strengths.begin(),
                       [](const StrengthRow& row) { return corv::platform::FindString(row.name); });
        std::transform(kDialogs.begin(), kDialogs.end(), dialogs.begin(),
                       [](const DialogRow& row) { return corv::platform::FindString(row.name); });
    }

    std::array<const char*, kStrengths.size()> strengths{};
    std::array<const char*, kDialogs.size()> dialogs{};
};

const Names& LoadedNames() noexcept {
    static const Names names;
    return names;
}

const char* OrEmpty(const char* text) noexcept {
    return text != nullptr ? text : "";
}

bool IsAbsent(const char* field) noexcept {
    return field == nullptr;
}

// Returns an empty buffer if out of memory.
std::vector<char> NewBuffer(std::size_t size) noexcept {
    return corv::platform::Guarded(std::vector<char>(), [&] { return std::vector<char>(size); });
}

}  // namespace

CStiParser::CStiParser(const CStiParser& other) noexcept {
    *this = other;
}

CStiParser& CStiParser::operator=(const CStiParser& other) noexcept {
    if (this != &other) {
        int type = 0;
        int strength = 0;
        bool active = false;
        other.GetStimType(&type);
        other.GetStrength(&strength);
        other.GetActive(&active);
        Init(other.GetDialogID(), type, strength, other.GetDialogData(), other.GetInfoString(),
             active, other.GetStimStates());
    }
    return *this;
}

CStiParser::~CStiParser() = default;

bool CStiParser::Init(const char* record) noexcept {
    const std::size_t length = std::strlen(OrEmpty(record));
    if (length == 0) {
        return false;
    }
    std::vector<char> buffer = NewBuffer(length + 1);
    if (!buffer.empty()) {
        std::memcpy(buffer.data(), record, length);  // the record may be a field of the old buffer
    }
    fields_ = {};
    buffer_ = std::move(buffer);
    return !buffer_.empty() && ReadFields(length);
}

bool CStiParser::ReadFields(std::size_t length) noexcept {
    corv::util::FieldReader reader({buffer_.data(), length}, kSeparator);
    std::array<std::string_view, kFieldCount> found;
    std::size_t count = 0;
    for (auto field = reader.Next(); field && count < kFieldCount; field = reader.Next()) {
        found[count++] = *field;
    }
    for (std::size_t i = 0; i < count; ++i) {
        char* const begin = buffer_.data() + (found[i].data() - buffer_.data());
        char* const end = begin + found[i].size();
        *end = '\0';
        fields_[i] = i < kRequired ? std::find_if_not(begin, end, corv::platform::IsSpace) : begin;
    }
    if (count < kRequired) {
        return false;
    }
    const int strength = StrengthValue(fields_[kStrength]);
    if (strength == -1 || strength == kDefault) {
        fields_[kStrength] = StrengthName(kOverride);
    }
    for (std::size_t i = count; i < kFieldCount; ++i) {
        fields_[i] = i == kActive ? "0" : "";
    }
    return true;
}

bool CStiParser::Init(const char* dialog_id, int stim_type, int strength, const char* dialog_data,
                      const char* info_string, bool active, const char* stim_states) noexcept {
    const char* const strength_name = StrengthName(strength);
    if (stim_type < 0 || stim_type >= static_cast<int>(kStimTypes.size()) || !strength_name) {
        return false;
    }
    const std::array<const char*, kFieldCount> texts{
        OrEmpty(dialog_id),   kStimTypes[static_cast<unsigned>(stim_type)],
        strength_name,        OrEmpty(dialog_data),
        OrEmpty(info_string), active ? "1" : "0",
        OrEmpty(stim_states)};
    std::array<std::size_t, kFieldCount> sizes{};
    std::size_t total = 0;
    for (std::size_t i = 0; i < kFieldCount; ++i) {
        sizes[i] = std::strlen(texts[i]) + 1;
        total += sizes[i];
    }
    std::vector<char> buffer = NewBuffer(total);
    if (buffer.empty()) {
        return false;
    }
    char* place = buffer.data();
    for (std::size_t i = 0; i < kFieldCount; ++i) {
        std::memcpy(place, texts[i], sizes[i]);
        fields_[i] = place;
        place += sizes[i];
    }
    buffer_ = std::move(buffer);
    return true;
}

const char* CStiParser::GetStimType(int* number) const noexcept {
    if (number != nullptr) {
        const auto type = std::find_if(
            kStimTypes.begin(), kStimTypes.end(),
            [this](const char* code) { return EqualNoCase(code, OrEmpty(fields_[kStimType])); });
        *number = type == kStimTypes.end() ? -1 : static_cast<int>(type - kStimTypes.begin());
    }
    return fields_[kStimType];
}

const char* CStiParser::GetStrength(int* number) const noexcept {
    if (number != nullptr) {
        *number = StrengthValue(fields_[kStrength]);
    }
    return fields_[kStrength];
}

const char* CStiParser::GetActive(bool* active) const noexcept {
    if (active != nullptr) {
        *active = corv::util::LeadingInt(OrEmpty(fields_[kActive])) != 0;
    }
    return fields_[kActive];
}

bool CStiParser::MergeStimInfo(CString& record) const noexcept {
    if (std::any_of(fields_.begin(), fields_.begin() + kActive, IsAbsent)) {
        return false;
    }
    const bool written = corv::platform::Done([&] {
        std::string text;
        for (std::size_t i = 0; i < kStates; ++i) {
            text += fields_[i];
            text += kSeparator;
        }
        record = CString(text += fields_[kStates]);
    });
    if (!written) {
        record.Empty();
    }
    return written;
}

void CStiParser::InitResources() noexcept {
    LoadedNames();
}

const char* CStiParser::StrengthName(int number) noexcept {
    const auto row =
        std::find_if(kStrengths.begin(), kStrengths.end(),
                     [number](const StrengthRow& strength) { return strength.number == number; });
    return row == kStrengths.end()
               ? nullptr
               : LoadedNames().strengths[static_cast<std::size_t>(row - kStrengths.begin())];
}

int CStiParser::StrengthValue(const char* name) noexcept {
    const auto& names = LoadedNames().strengths;
    const auto found = std::find_if(names.begin(), names.end(), [name](const char* known) {
        return EqualNoCase(known, OrEmpty(name));
    });
    return found == names.end()
               ? -1
               : kStrengths[static_cast<std::size_t>(found - names.begin())].number;
}

const char* CStiParser::DialogName(const char* code) noexcept {
    const auto row = std::find_if(
        kDialogs.begin(), kDialogs.end(),
        [code](const DialogRow& dialog) { return EqualNoCase(dialog.code, OrEmpty(code)); });
    return row == kDialogs.end()
               ? nullptr
               : LoadedNames().dialogs[static_cast<std::size_t>(row - kDialogs.begin())];
}

bool operator==(const CStiParser& a, const CStiParser& b) noexcept {
    const auto equal = [](const char* x, const char* y) {
        return EqualNoCase(OrEmpty(x), OrEmpty(y));
    };
    return equal(a.GetDialogID(), b.GetDialogID()) && equal(a.GetStimType(), b.GetStimType()) &&
           equal(a.GetStrength(), b.GetStrength()) && equal(a.GetDialogData(), b.GetDialogData()) &&
           equal(a.GetInfoString(), b.GetInfoString()) && equal(a.GetActive(), b.GetActive()) &&
           equal(a.GetStimStates(), b.GetStimStates());
}
