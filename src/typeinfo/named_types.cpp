#include "typeinfo/named_types.h"

#include <algorithm>

#include "platform/ascii.h"
#include "typeinfo/wording.h"

namespace corv::typeinfo {
namespace {

constexpr std::size_t kCharacterTypeLength = 874;

// The string of the type character: names for the control characters, apostrophe and character for
// all others. It is built at compile time, since 256 literals with their blanks are easier to get
// right as a loop.
struct CharacterTypeText {
    std::array<char, kCharacterTypeLength> text{};
    std::size_t length = 0;

    constexpr void Add(std::string_view word) {
        for (const char c : word) {
            text[length++] = c;
        }
    }
};

constexpr CharacterTypeText kCharacterType = [] {
    constexpr std::string_view kControls =
        "NUL SOH STX ETX EOT ENQ ACK BEL BS HT LF VT FF CR SO SI DLE DC1 DC2 DC3 DC4 NAK SYN ETB "
        "CAN EM SUB ESC FSP GSP RSP USP ";
    CharacterTypeText out;
    out.Add("e#9#characters256 ");
    out.Add(kControls);
    for (int code = 32; code < 256; ++code) {
        const char character[] = {'\'', static_cast<char>(code), ' '};
        const char number[] = {'C', '1', static_cast<char>('0' + code / 10 % 10),
                               static_cast<char>('0' + code % 10), ' '};
        if (code == 127) {
            out.Add("DEL ");
        } else if (code > 127 && code < 160) {
            out.Add({number, sizeof number});
        } else {
            out.Add({character, sizeof character});
        }
    }
    return out;
}();
static_assert(kCharacterType.length == kCharacterTypeLength);

constexpr std::string_view kCharacterText(kCharacterType.text.data(), kCharacterTypeLength);

}  // namespace

// Their indices and their spelling are part of the interface (CreateStdTypeInfo). Elements of the
// vectors have their names in the uncounted form, "eBIT c2 01", as hosts have them in saved
// designs.
constexpr std::array<std::string_view, 9> kStandardTypes{
    "e#3#bitc2 01",
    "e#9#std_logicc9 UX01ZWLH-",
    "e#10#std_ulogicc9 UX01ZWLH-",
    "i#7#integerrict-2147483648 2147483647",
    "f#4#realrrct-1.79769e+308 1.79769e+308",
    kCharacterText,
    "a#10#bit_vector1 riut0 2147483647 eBIT c2 01",
    "a#16#std_logic_vector1 riut0 2147483647 estd_logic c9 UX01ZWLH-",
    "a#17#std_ulogic_vector1 riut0 2147483647 estd_ulogic c9 UX01ZWLH-",
};

namespace {

// Of equally near names the first is suggested, so the most common ones come first.
constexpr std::array<NamedScalar, 12> kScalars{{
    {"std_logic", kStandardTypes[1]},
    {"std_ulogic", kStandardTypes[2]},
    {"bit", kStandardTypes[0]},
    {"integer", kStandardTypes[3]},
    {"natural", "i#7#naturalrict0 2147483647"},
    {"positive", "i#8#positiverict1 2147483647"},
    {"boolean", "e#7#booleans2 false true "},
    {"real", kStandardTypes[4]},
    {"time", "f#4#timerrct-9.22337e+18 9.22337e+18"},
    {"delay_length", "f#12#delay_lengthrrct0 9.22337e+18"},
    {"character", kStandardTypes[5]},
    {"severity_level", "e#14#severity_levels4 note warning error failure "},
}};

constexpr std::array<NamedArray, 23> kArrays{{
    {"std_logic_vector", "std_logic", 0, kStandardTypes[7]},
    {"std_ulogic_vector", "std_ulogic", 0, kStandardTypes[8]},
    {"bit_vector", "bit", 0, kStandardTypes[6]},
    {"unsigned", "std_logic", 0, {}},
    {"signed", "std_logic", 0, {}},
    {"string", "character", 1, {}},
    {"ufixed", "std_logic", kLowestIndex, {}},
    {"sfixed", "std_logic", kLowestIndex, {}},
    {"float", "std_logic", kLowestIndex, {}},
    {"u_unsigned", "std_ulogic", 0, {}},
    {"u_signed", "std_ulogic", 0, {}},
    {"u_ufixed", "std_ulogic", kLowestIndex, {}},
    {"u_sfixed", "std_ulogic", kLowestIndex, {}},
    {"u_float", "std_ulogic", kLowestIndex, {}},
    {"unresolved_unsigned", "std_ulogic", 0, {}},
    {"unresolved_signed", "std_ulogic", 0, {}},
    {"unresolved_ufixed", "std_ulogic", kLowestIndex, {}},
    {"unresolved_sfixed", "std_ulogic", kLowestIndex, {}},
    {"unresolved_float", "std_ulogic", kLowestIndex, {}},
    {"boolean_vector", "boolean", 0, {}},
    {"integer_vector", "integer", 0, {}},
    {"real_vector", "real", 0, {}},
    {"time_vector", "time", 0, {}},
}};

constexpr std::array<NamedSubtype, 13> kSubtypes{{
    {"x01", "std_logic"},
    {"x01z", "std_logic"},
    {"ux01", "std_logic"},
    {"ux01z", "std_logic"},
    {"float32", "float", 8, -23},
    {"float64", "float", 11, -52},
    {"float128", "float", 15, -112},
    {"u_float32", "u_float", 8, -23},
    {"u_float64", "u_float", 11, -52},
    {"u_float128", "u_float", 15, -112},
    {"unresolved_float32", "unresolved_float", 8, -23},
    {"unresolved_float64", "unresolved_float", 11, -52},
    {"unresolved_float128", "unresolved_float", 15, -112},
}};

// Words of other languages and habits, for suggestions: what VHDL calls by another name.
struct Alias {
    std::string_view word;
    std::string_view name;
};
constexpr std::array<Alias, 11> kAliases{{
    {"logic", "std_logic"},
    {"sl", "std_logic"},
    {"slv", "std_logic_vector"},
    {"vector", "std_logic_vector"},
    {"sulv", "std_ulogic_vector"},
    {"bv", "bit_vector"},
    {"uint", "natural"},
    {"double", "real"},
    {"byte", "std_logic_vector(7 downto 0)"},
    {"struct", "record"},
    {"text", "string"},
}};

template <class Rows>
auto FindRow(const Rows& rows, std::string_view name) noexcept {
    const auto row = std::find_if(rows.begin(), rows.end(), [name](const auto& r) {
        return platform::EqualNoCase(r.name, name);
    });
    return row == rows.end() ? nullptr : &*row;
}

}  // namespace

std::string_view NamedScalar::Body() const noexcept {
    return text.substr(text.find('#', 2) + 1 + name.size());
}

const NamedScalar* FindNamedScalar(std::string_view name) noexcept {
    return FindRow(kScalars, name);
}

const NamedArray* FindNamedArray(std::string_view name) noexcept {
    return FindRow(kArrays, name);
}

const NamedSubtype* FindNamedSubtype(std::string_view name) noexcept {
    return FindRow(kSubtypes, name);
}

std::string_view NearestTypeName(std::string_view word) noexcept {
    for (const Alias& alias : kAliases) {
        if (platform::EqualNoCase(alias.word, word)) {
            return alias.name;
        }
    }
    NearestWord nearest(word);
    for (const NamedScalar& row : kScalars) {
        nearest.Offer(row.name);
    }
    for (const NamedArray& row : kArrays) {
        nearest.Offer(row.name);
    }
    for (const NamedSubtype& row : kSubtypes) {
        nearest.Offer(row.name);
    }
    nearest.Offer("array");
    nearest.Offer("record");
    return nearest.Found();
}

}  // namespace corv::typeinfo
