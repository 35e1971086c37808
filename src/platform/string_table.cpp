#include "platform/string_table.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace corv::platform {
namespace {

struct StringEntry {
    unsigned id;
    const char* text;
};

// Names of stimulator strengths and dialogs, ordered by identifier. Hosts load them by these
// numbers (CString::LoadString), so they never change.
constexpr std::array<StringEntry, 10> kStrings{{
    {2, "Default"},
    {5, "Override"},
    {6, "Deposit"},
    {7, "Drive"},
    {8, "Value"},
    {9, "Formula"},
    {10, "Clock"},
    {11, "Hotkey"},
    {12, "Custom"},
    {13, "Predefined"},
}};

}  // namespace

const char* FindString(unsigned id) noexcept {
    const auto row = std::find_if(kStrings.begin(), kStrings.end(),
                                  [id](const StringEntry& entry) { return entry.id == id; });
    return row == kStrings.end() ? nullptr : row->text;
}

}  // namespace corv::platform
