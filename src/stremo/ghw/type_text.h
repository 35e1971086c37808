#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "stremo/ghw/time.h"
#include "stremo/ghw/types.h"
#include "stremo/signal_table.h"

namespace corv::ghw {

// The limit for texts of names and types, since a few bytes of a hostile file can expand to very
// long ones.
class TextBudget {
public:
    explicit TextBudget(std::size_t file_size) noexcept
        : left_((std::size_t{1} << 27) + 64 * file_size) {}
    // Returns false if the budget is used up; from then on everything is refused.
    bool Take(std::size_t characters) noexcept {
        const bool fits = characters <= left_;
        left_ = fits ? left_ - characters : 0;
        return fits;
    }
    bool spent() const noexcept { return left_ == 0; }

private:
    std::size_t left_;
};

// The type-description strings of types, each made once and kept by a table of signals.
//
// Integers and physical types of 64 bits become floating-point types; time is in femtoseconds
// whatever the unit of the file. Names of literals and fields must not have blanks there. The
// blanks of extended identifiers become no-break spaces in literals, which are shown to users, and
// underscores in fields.
class TypeTexts {
public:
    // All types must be known.
    TypeTexts(const Types& types, const TimeScale& time_scale, recording::SignalTable& signals,
              TextBudget& budget)
        : types_(types),
          time_scale_(time_scale),
          signals_(signals),
          budget_(budget),
          texts_(types.size()),
          units_(types.size()) {}

    // Returns an empty text for a type that cannot be described: one that is too long, or an array
    // whose bounds exceed 32 bits.
    std::string_view Of(std::uint32_t type);
    // Returns the units of a physical type in terms of the primary one: "ohm = 1, kohm = 1000".
    const char* UnitsOf(std::uint32_t type);

    // Returns the factor for the values of a type.
    std::int64_t ScaleOf(const Type& type) const noexcept {
        return type.kind == Kind::kWidePhysical && type.root == types_.time()
                   ? time_scale_.femtoseconds()
                   : 1;
    }

private:
    bool Append(std::string& out, const Type& type);
    bool AppendEnumeration(std::string& out, const Type& type);
    void AppendInteger(std::string& out, const Type& type);
    void AppendReal(std::string& out, const Type& type);
    bool AppendArray(std::string& out, const Type& type);
    bool AppendRecord(std::string& out, const Type& type);
    bool AppendPart(std::string& out, std::uint32_t type);

    const Types& types_;
    const TimeScale& time_scale_;
    recording::SignalTable& signals_;
    TextBudget& budget_;
    std::vector<std::optional<std::string_view>> texts_;
    std::vector<const char*> units_;
};

}  // namespace corv::ghw
