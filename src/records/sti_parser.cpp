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

// Where the string table has the names, in the order of the strengths and dialogs.
constexpr std::array<unsigned, CStiParser::kStrengths.size()> kStrengthNames{2, 5, 6, 7};
constexpr std::array<unsigned, CStiParser::kDialogs.size()> kDialogNames{8, 9, 10, 11, 13, 12};

struct Names {
    Names() noexcept {
        std::transform(kStrengthNames.begin(), kStrengthNames.end(), strengths.begin(),
                       corv::platform::FindString);
        std::transform(kDialogNames.begin(), kDialogNames.end(), dialogs.begin(),
                       corv::platform::FindString);
    }

    std::array<const char*, kStrengthNames.size()> strengths{};
    std::array<const char*, kDialogNames.size()> dialogs{};
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

// Returns the place of a text in a table, without regard to case; -1 if it is not there.
template <std::size_t kSize>
int PlaceOf(const std::array<const char*, kSize>& texts, const char* text) noexcept {
    const auto found = std::find_if(texts.begin(), texts.end(), [text](const char* known) {
        return EqualNoCase(known, OrEmpty(text));
    });
    return found == texts.end() ? -1 : static_cast<int>(found - texts.begin());
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
        // The fields of the other object point into its buffer, so they are put together anew here.
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
        // The end is a separator or the zero after the record. The first three fields lose leading
        // blanks, as they are compared with words; the data and the info string keep theirs.
        *end = '\0';
        fields_[i] = i < kRequired ? std::find_if_not(begin, end, corv::platform::IsSpace) : begin;
    }
    if (count < kRequired) {
        return false;
    }
    const int strength = StrengthValue(fields_[kStrength]);
    if (strength == -1 || strength == Default) {
        fields_[kStrength] = StrengthName(Override);
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
        *number = PlaceOf(kStimTypes, fields_[kStimType]);
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
    const auto found = std::find(kStrengths.begin(), kStrengths.end(), number);
    return found == kStrengths.end()
               ? nullptr
               : LoadedNames().strengths[static_cast<std::size_t>(found - kStrengths.begin())];
}

int CStiParser::StrengthValue(const char* name) noexcept {
    const int place = PlaceOf(LoadedNames().strengths, name);
    return place == -1 ? -1 : kStrengths[static_cast<std::size_t>(place)];
}

int CStiParser::DialogNumber(const char* code) noexcept {
    return PlaceOf(kDialogs, code);
}

const char* CStiParser::DialogName(const char* code) noexcept {
    const int dialog = DialogNumber(code);
    return dialog == -1 ? nullptr : LoadedNames().dialogs[static_cast<std::size_t>(dialog)];
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
