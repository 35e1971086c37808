#include "stremo/ghw/hierarchy.h"

#include <algorithm>
#include <bit>
#include <limits>

#include "util/hierarchy_separator.h"

namespace corv::ghw {
namespace {

using recording::kNone;
using recording::Signal;

constexpr std::size_t kMostMemberName = 255;

// The kinds of elements in the file's numbering.
enum Element : unsigned {
    kBlock = 3,
    kIfGenerate = 4,
    kForGenerate = 5,
    kInstance = 6,
    kPackage = 7,
    kProcess = 13,
    kGeneric = 14,
    kEndOfScope = 15,
    kSignal = 16,  // and the ports: in, out, inout, buffer, linkage
    kLinkage = 21,
};

// Returns an index as text: the literal for an enumeration, otherwise the number.
std::string IndexText(const Types& types, std::uint32_t type, std::int64_t value) {
    const Type& index = types[type];
    if (index.kind == Kind::kEnumeration && value >= 0 && value < index.count) {
        const std::string_view literal = types.Literal(index, static_cast<std::uint32_t>(value));
        if (!literal.empty() && literal.size() < kMostMemberName) {
            return std::string(literal);
        }
    }
    return std::to_string(value);
}

}  // namespace

// ---- nets ----

bool Nets::Add(const Net& net) {
    const bool is_near = net.number < std::max<std::size_t>(65'536, 8 * nets_.size());
    if (is_near && net.number >= near_.size()) {
        near_.resize(net.number + std::size_t{1});
    }
    std::uint32_t& place = net.number < near_.size() ? near_[net.number] : far_[net.number];
    // a number that was far when it was added may be near by now
    if (place == 0 && is_near && !far_.empty()) {
        const auto found = far_.find(net.number);
        place = found != far_.end() ? found->second : 0;
    }
    if (place == 0) {
        nets_.push_back(net);
        place = static_cast<std::uint32_t>(nets_.size());
    }
    return nets_[place - 1].kind == net.kind;
}

void Nets::Finish() {
    near_ = {};
    far_ = {};
    std::sort(nets_.begin(), nets_.end(),
              [](const Net& a, const Net& b) { return a.number < b.number; });
}

// ---- scopes ----

void Hierarchy::Read(Input& in) {
    const std::size_t begin = in.offset();
    in.Number32();  // scopes
    in.Number32();  // declared signals
    const std::uint32_t most = in.Number32();
    // A leaf takes at least a byte of the file, and there are few levels above it. Parts without
    // leaves take no bytes at all, so only such a limit keeps a small file from making signals
    // without end.
    most_signals_ = 65'536 + 16 * in.file().size();
    while (in.ok()) {
        const unsigned kind = in.Byte();
        if (kind == 0) {
            break;
        }
        ReadElement(kind, in);
    }
    if (in.ok() && !path_lengths_.empty()) {
        notes_.Add(in.offset() - 1, "a scope has no end");
    }
    nets_known_ = nets_known_ && in.ok();
    nets_.Finish();
    if (nets_.size() > 0 && nets_[nets_.size() - 1].number > most) {
        notes_.Add(begin, "the signals have higher numbers than there are said to be");
        nets_known_ = nets_known_ && nets_.dense();
    }
}

void Hierarchy::ReadElement(unsigned kind, Input& in) {
    const std::size_t offset = in.offset() - 1;
    switch (kind) {
        case kBlock:
        case kIfGenerate:
        case kInstance:
        case kPackage:
        case kGeneric:
            OpenScope(strings_.ReadName(in, notes_));
            break;
        case kForGenerate:
            ReadGenerate(in);
            break;
        case kProcess:
            strings_.ReadName(in, notes_);
            break;
        case kEndOfScope:
            CloseScope(offset);
            break;
        default:
            if (kind >= kSignal && kind <= kLinkage) {
                ReadSignal(in);
            } else {
                in.Fail("an element of the hierarchy is of an unknown kind");
            }
    }
}

void Hierarchy::OpenScope(std::string_view name) {
    path_lengths_.push_back(path_.size());
    // a path that is too long for a name stays so until the scope ends
    if (path_.size() <= kMostCharacters && !name.empty() && budget_.Take(name.size())) {
        path_ += name;
        path_ += util::HierarchySeparator();
    }
}

void Hierarchy::ReadGenerate(Input& in) {
    std::string name(strings_.ReadName(in, notes_));
    const std::uint32_t type = types_.ReadNumber(in);
    if (!types_[type].IsScalar() || type == kNoType) {
        in.Fail("the index of a generate statement is not a scalar");
    }
    const std::int64_t value = Types::ReadValue(in, types_[type].kind);
    OpenScope(name + "(" + IndexText(types_, type, value) + ")");
}

void Hierarchy::CloseScope(std::size_t offset) {
    if (path_lengths_.empty()) {
        notes_.Add(offset, "a scope ends where none is open");
        return;
    }
    path_.resize(path_lengths_.back());
    path_lengths_.pop_back();
}

// ---- signals ----

void Hierarchy::ReadSignal(Input& in) {
    const std::size_t offset = in.offset() - 1;
    const std::string_view own_name = strings_.ReadName(in, notes_);
    const std::uint32_t type = types_.ReadNumber(in);
    if (in.ok() && (types_[type].kind == Kind::kNone || !types_[type].bounded)) {
        in.Fail("the type of a signal has no size");
    }
    if (types_[type].leaves > in.left()) {
        in.Fail("the file ends before the parts of a signal");
    }
    handles_.clear();
    if (!in.ok() || !ReadNumbers(in, type)) {
        return;
    }
    if (const char* const why = WhyNot(own_name, type)) {
        notes_.Add(offset, why);
        return;
    }
    next_handle_ = 0;
    AddSignal(signals_.Keep(path_ + std::string(own_name.empty() ? "?" : own_name)), type, false);
}

// Reads the numbers of all leaves of a signal. Parts without leaves, of which there may be very
// many, cost nothing.
bool Hierarchy::ReadNumbers(Input& in, std::uint32_t place) {
    const Type& type = types_[place];
    if (type.IsScalar()) {
        ReadNumber(in, type);
    } else if (type.kind == Kind::kRecord) {
        for (std::uint32_t i = 0; i < type.count && type.leaves > 0 && in.ok(); ++i) {
            ReadNumbers(in, types_.FieldOf(type, i).type);
        }
    } else if (type.leaves > 0) {
        const std::uint64_t elements = type.leaves / types_[type.element].leaves;
        for (std::uint64_t i = 0; i < elements && in.ok(); ++i) {
            ReadNumbers(in, type.element);
        }
    }
    return in.ok();
}

// Reads the number of a leaf. A meaningless number makes it a leaf with a handle of its own and
// without values.
void Hierarchy::ReadNumber(Input& in, const Type& type) {
    const std::size_t offset = in.offset();
    const std::uint64_t number = in.Unsigned();
    handles_.push_back(-1);
    if (number == 0 || number > std::numeric_limits<std::int32_t>::max()) {
        notes_.Add(offset, "the number of a signal is none");
        nets_known_ = false;
        return;
    }
    const Net net{static_cast<std::uint32_t>(number), type.kind,
                  static_cast<std::uint16_t>(std::min(type.count, 256U)), texts_.ScaleOf(type)};
    if (nets_.Add(net)) {
        handles_.back() = static_cast<std::int32_t>(number);
    } else {
        notes_.Add(offset, "a signal has the number of one of another type; it has no values");
    }
}

// Returns why a signal cannot be shown, null if it can.
const char* Hierarchy::WhyNot(std::string_view name, std::uint32_t place) {
    const Type& type = types_[place];
    if (path_.size() + name.size() > kMostCharacters) {
        return "the name of a signal is too long; it is left out";
    }
    if (type.members > kMostMembers) {
        return "a signal has too many members; it is left out";
    }
    if (signals_.size() + type.members >= most_signals_) {
        return "there are too many signals; the others are left out";
    }
    if (!budget_.Take(path_.size() + name.size() + 1)) {
        return "there are too many names; the other signals are left out";
    }
    return texts_.Of(place).empty() ? "the type of a signal cannot be described; it is left out"
                                    : nullptr;
}

void Hierarchy::AddSignal(std::string_view name, std::uint32_t place, bool joins) {
    const Type& type = types_[place];
    Signal signal;
    signal.name = name;
    signal.type = texts_.Of(place).data();
    signal.composite = !type.IsScalar();
    if (type.IsScalar()) {
        signal.handle = handles_[next_handle_++];
        signal.joins = joins;
        const std::uint32_t number = signals_.Add(signal);
        if (type.kind == Kind::kPhysical || type.kind == Kind::kWidePhysical) {
            signals_.AddProperty(number, "Units", texts_.UnitsOf(place));
        }
    } else if (type.kind == Kind::kArray) {
        AddElements(signal, type);
    } else {
        AddFields(signal, type);
    }
}

void Hierarchy::AddElements(Signal& signal, const Type& type) {
    // each element has as many signals below it, plus itself
    signal.member_count =
        static_cast<std::uint32_t>(type.members / (types_[type.element].members + 1));
    signals_.Add(signal);
    const bool joins = types_[type.element].kind == Kind::kEnumeration;
    std::vector<std::int64_t> indices;
    for (std::uint32_t i = 0; i < type.count; ++i) {
        indices.push_back(types_.DimensionOf(type, i).bounds.left);
    }
    for (std::uint32_t i = 0; i < signal.member_count; ++i) {
        AddSignal(ElementName(type, indices), type.element, joins && i > 0);
        Advance(type, indices);
    }
}

// Moves to the next element; the last index runs fastest.
void Hierarchy::Advance(const Type& type, std::vector<std::int64_t>& indices) const noexcept {
    for (std::uint32_t i = type.count; i-- > 0;) {
        const Bounds& bounds = types_.DimensionOf(type, i).bounds;
        if (indices[i] != bounds.right) {
            indices[i] += bounds.downto ? -1 : 1;
            return;
        }
        indices[i] = bounds.left;
    }
}

std::string_view Hierarchy::ElementName(const Type& type,
                                        const std::vector<std::int64_t>& indices) {
    member_name_ = "(";
    for (std::uint32_t i = 0; i < type.count; ++i) {
        member_name_ += i > 0 ? "," : "";
        member_name_ += IndexText(types_, types_.DimensionOf(type, i).index, indices[i]);
    }
    member_name_ += ')';
    return KeepMemberName();
}

std::string_view Hierarchy::KeepMemberName() {
    if (member_name_.size() > kMostMemberName || !budget_.Take(member_name_.size())) {
        member_name_ = "?";
    }
    const char* const kept = signals_.KeepShared(member_name_);
    return {kept, member_name_.size()};
}

void Hierarchy::AddFields(Signal& signal, const Type& type) {
    signal.member_count = type.count;
    signals_.Add(signal);
    for (std::uint32_t i = 0; i < type.count; ++i) {
        const Field& field = types_.FieldOf(type, i);
        member_name_ = ".";
        member_name_ += field.name.empty() ? "?" : field.name;
        AddSignal(KeepMemberName(), field.type, false);
    }
}

}  // namespace corv::ghw
