#include <algorithm>
#include <string>
#include <vector>

#include "stremo/vcd/declarations.h"
#include "typeinfo/named_types.h"

namespace corv::vcd {
namespace {

using recording::kNone;
using recording::Signal;
using recording::SignalTable;

// An event variable carries no value, only the time.
constexpr const char* kEventType = "e#5#events1 trigger ";

class Maker {
public:
    Maker(Declarations& declarations, std::int64_t latest, SignalTable& signals)
        : variables_(declarations.variables), latest_(latest), signals_(signals) {}

    void Add(const Name& name);

private:
    const char* ScalarType(Kind kind);
    const char* ArrayType(const Name& name, std::uint32_t count, const char* element);
    void AddScalar(std::string_view name, const char* type, std::uint32_t leaf, bool joins);
    void AddArray(const Name& name, std::uint32_t count);
    std::string_view MemberName(std::int64_t index);

    std::vector<Variable>& variables_;
    const std::int64_t latest_;
    SignalTable& signals_;
    std::uint32_t leaves_ = 0;
    std::vector<std::string_view> member_names_;  // of small indices
};

const char* Maker::ScalarType(Kind kind) {
    switch (kind) {
        case Kind::kInteger:
            return signals_.KeepShared(typeinfo::kStandardTypes[3]);
        case Kind::kReal:
            return signals_.KeepShared(typeinfo::kStandardTypes[4]);
        case Kind::kString:
            return signals_.KeepShared(typeinfo::kStandardTypes[5]);
        case Kind::kEvent:
            return kEventType;
        case Kind::kBits:
            break;
    }
    return signals_.KeepShared(typeinfo::kStandardTypes[1]);
}

// Returns the type of an array. One without elements has a null range, 0 downto 1.
const char* Maker::ArrayType(const Name& name, std::uint32_t count, const char* element) {
    const Variable& variable = variables_[name.variable];
    const bool is_text = variable.kind == Kind::kString;
    const bool ascends =
        name.range.left < name.range.right || (is_text && name.range.left == name.range.right);
    const bool to = count == 0 ? !ascends : ascends;
    const std::string left = std::to_string(name.range.left);
    const std::string right = std::to_string(name.range.right);
    const char* const type_name = is_text              ? "string("
                                  : variable.is_signed ? "signed("
                                                       : "std_logic_vector(";
    const std::string full = type_name + left + (to ? " to " : " downto ") + right + ")";
    const std::string type = "a#" + std::to_string(full.size()) + "#" + full + "1 ric" +
                             (to ? "t" : "d") + left + " " + right + " " + element;
    return signals_.KeepShared(type);
}

std::string_view Maker::MemberName(std::int64_t index) {
    constexpr std::int64_t kSmall = 1024;
    if (index < 0 || index >= kSmall) {
        return signals_.KeepShared("(" + std::to_string(index) + ")");
    }
    while (static_cast<std::int64_t>(member_names_.size()) <= index) {
        member_names_.push_back(signals_.Keep("(" + std::to_string(member_names_.size()) + ")"));
    }
    return member_names_[static_cast<std::size_t>(index)];
}

void Maker::AddScalar(std::string_view name, const char* type, std::uint32_t leaf, bool joins) {
    Signal signal;
    signal.name = name;
    signal.type = type;
    signal.latest = latest_;
    signal.handle = static_cast<std::int32_t>(leaf);
    signal.joins = joins;
    signals_.Add(signal);
}

void Maker::AddArray(const Name& name, std::uint32_t count) {
    const Variable& variable = variables_[name.variable];
    const char* const element = ScalarType(variable.kind);
    Signal signal;
    signal.name = name.name;
    signal.type = ArrayType(name, count, element);
    signal.latest = latest_;
    signal.composite = true;
    signal.member_count = count;
    signals_.Add(signal);
    const std::int64_t step = name.range.left < name.range.right ? 1 : -1;
    for (std::uint32_t i = 0; i < count; ++i) {
        AddScalar(MemberName(name.range.left + step * static_cast<std::int64_t>(i)), element,
                  variable.leaf + i, i > 0);
    }
}

void Maker::Add(const Name& name) {
    Variable& variable = variables_[name.variable];
    Name whole = name;
    std::uint32_t count = variable.width;
    if (variable.kind == Kind::kString) {
        variable.width = count = std::max(count, 1U);
        if (name.range.Length() != count) {
            whole.range = {1, static_cast<std::int32_t>(count)};
        }
    }
    if (variable.leaf == kNone && LeafCount(variable) > 0) {
        variable.leaf = leaves_;
        leaves_ += LeafCount(variable);
    }
    if (name.is_array || variable.is_signed) {
        AddArray(whole, count);
    } else {
        AddScalar(name.name, ScalarType(variable.kind), variable.leaf, false);
    }
}

}  // namespace

void MakeSignals(Declarations& declarations, std::int64_t latest, SignalTable& signals) {
    Maker maker(declarations, latest, signals);
    for (const Name& name : declarations.names) {
        maker.Add(name);
    }
    signals.Finish();
}

}  // namespace corv::vcd
