#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files.h"
#include "stremo/signal_table.h"
#include "stremo/vcd/codes.h"
#include "stremo/vcd/name.h"
#include "stremo/vcd/notes.h"
#include "stremo/vcd/time.h"

namespace corv::vcd {

enum class Kind : unsigned char { kBits, kInteger, kReal, kString, kEvent };

// What receives the changes of a code. Further declarations of the code with the same kind and
// width are other names of the variable; one with another shape makes another variable with the
// same code.
struct Variable {
    Kind kind;
    std::uint32_t width;                    // in elements; for a text, its longest value
    std::uint32_t leaf = recording::kNone;  // the first one, kNone until there are signals
    std::uint32_t next = recording::kNone;  // the next variable of the same code
    bool is_open = false;                   // a text whose length is not declared
    bool is_signed = false;                 // bits of an integer that has unknown values
};

// Returns the number of the variable's leaves.
constexpr std::uint32_t LeafCount(const Variable& variable) noexcept {
    return variable.kind == Kind::kBits || variable.kind == Kind::kString ? variable.width : 1;
}

// A variable under one of its names.
struct Name {
    std::string_view name;  // with its scopes
    std::uint32_t variable;
    Range range;    // of a vector
    bool is_array;  // with members; vectors of bits and texts
};

// Everything before the changes of a file.
struct Declarations {
    std::vector<Name> names;
    std::vector<Variable> variables;
    Codes codes;
    TimeScale time_scale = TimeScale::Nanosecond();
    bool is_open = false;     // the changes decide more (survey.h)
    bool ended = false;       // with $enddefinitions
    std::size_t changes = 0;  // where the changes begin
};

// The length of the longest text that is shown.
inline constexpr std::uint32_t kMostText = 256;

// Reads the declarations up to `end`, part by part. Names are kept in `texts`. Throws
// std::bad_alloc.
Declarations ReadDeclarations(const platform::FileContent& content, const Byte* end, Notes& notes,
                              recording::SignalTable& texts);

// Makes the signals of all names and numbers the variables' leaves. The handle of a scalar is the
// number of its leaf. All signals have the same latest time.
void MakeSignals(Declarations& declarations, std::int64_t latest, recording::SignalTable& signals);

}  // namespace corv::vcd
