#pragma once

#include <array>
#include <string_view>

namespace corv::host {

// The colours of a picture by meaning.
enum class Ink { Text, Muted, Strong, Unknown, HighZ, Weak, DontCare, Bus, Activity };

struct InkRow {
    std::string_view name;
    int terminal;            // one of the 256 colours, -1 for the terminal's own
    std::string_view light;  // on a light background
    std::string_view dark;   // on a dark background
};

// In the order of Ink. No meaning depends on colour alone, for print and colour blindness: each
// class also has a shape of its own.
inline constexpr std::array<InkRow, 9> kInks{{
    {"text", -1, "#1f2328", "#e6edf3"},
    {"muted", 244, "#6a737d", "#8b949e"},
    {"strong", 70, "#2e8b12", "#56c126"},
    {"unknown", 203, "#f44747", "#f44747"},
    {"highz", 178, "#c9a400", "#c9e124"},
    {"weak", 244, "#808080", "#808080"},
    {"dontcare", 63, "#4040ff", "#4040ff"},
    {"bus", 37, "#0b7285", "#4db6c9"},
    {"activity", 247, "#57606a", "#b1bac4"},
}};
static_assert(kInks.size() == static_cast<std::size_t>(Ink::Activity) + 1);

constexpr const InkRow& RowOf(Ink ink) {
    return kInks[static_cast<std::size_t>(ink)];
}

}  // namespace corv::host
