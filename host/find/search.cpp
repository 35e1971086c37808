#include "host/find/search.h"

#include <algorithm>
#include <utility>

#include "host/change_walk.h"

namespace corv::find {
namespace {

using Kind = Node::Kind;

constexpr std::size_t kMostNames = 1'000'000;

// The selection at a name's end, "(3)" or "[7:4]"; empty without one.
std::string SelectionOf(const std::string& name) {
    const std::size_t at = name.find_first_of("([");
    const bool is_selection = !name.empty() && (name.back() == ')' || name.back() == ']');
    return is_selection && at != std::string::npos ? name.substr(at) : "";
}

// The signals whose last levels are the name.
std::vector<std::string> EndingIn(ISignalContainer& signals, const std::string& name) {
    const std::string ending = "." + host::PlainName(name);
    std::vector<std::string> found;
    for (std::string& declared : host::DeclaredNames(signals, kMostNames)) {
        if (host::PlainName(declared).ends_with(ending)) {
            found.push_back(std::move(declared));
        }
    }
    return found;
}

}  // namespace

// A part of the condition that is read from the recording.
class Search::Atom {
public:
    explicit Atom(std::vector<std::size_t> signals) : signals_(std::move(signals)) {}
    virtual ~Atom() = default;

    virtual void Begin(const host::ChangeWalk& walk) = 0;
    // One of the signals has an event.
    virtual void Take(const host::ChangeWalk& walk) = 0;

    const std::vector<std::size_t>& signals() const { return signals_; }
    LevelPtr AsLevel() const { return ListedLevel(at_first_, times_); }
    MomentsPtr AsMoments() const { return ListedMoments(times_); }
    bool IsKnownAtFirst() const { return known_at_first_; }

protected:
    bool at_first_ = false;
    bool known_at_first_ = false;
    TimeList times_;

private:
    std::vector<std::size_t> signals_;
};

// Something that holds or not by the values of signals.
class Search::StateAtom : public Atom {
public:
    using Atom::Atom;
    void Begin(const host::ChangeWalk& walk) override { holds_ = at_first_ = Holds(walk); }
    void Take(const host::ChangeWalk& walk) override {
        if (Holds(walk) != holds_) {
            holds_ = !holds_;
            times_.Add(walk.time());
        }
    }

private:
    virtual bool Holds(const host::ChangeWalk& walk) = 0;

    bool holds_ = false;
};

// Two values by a relation, of which one may be a literal.
class Search::CompareAtom final : public StateAtom {
public:
    struct Side {
        const SignalValue* signal = nullptr;
        std::size_t number = 0;
        Value value;  // the literal, or what was read last
    };

    CompareAtom(Side left, Relation relation, Side right, std::vector<std::size_t> signals)
        : StateAtom(std::move(signals)),
          left_(std::move(left)),
          relation_(relation),
          right_(std::move(right)) {}

private:
    bool Holds(const host::ChangeWalk& walk) override {
        for (Side* const side : {&left_, &right_}) {
            if (side->signal != nullptr) {
                side->value = side->signal->Read(walk.Values(side->number));
            }
        }
        return find::Holds(left_.value, relation_, right_.value);
    }

    Side left_;
    Relation relation_;
    Side right_;
};

// Whether a signal has a value with a property: a bit that is 1, bits of which one is unknown.
class Search::PropertyAtom final : public StateAtom {
public:
    using Property = bool (*)(const Value&);

    PropertyAtom(const SignalValue& signal, std::size_t number, Property property)
        : StateAtom({number}), signal_(signal), number_(number), property_(property) {}

private:
    bool Holds(const host::ChangeWalk& walk) override {
        return property_(signal_.Read(walk.Values(number_)));
    }

    const SignalValue& signal_;
    std::size_t number_;
    Property property_;
};

// An edge of a bit as VHDL's rising_edge sees it: from 0 to 1, L and H like them; from X to 1 is
// none.
class Search::EdgeAtom final : public Atom {
public:
    EdgeAtom(const SignalValue& signal, std::size_t number, bool rising)
        : Atom({number}), signal_(signal), number_(number), rising_(rising) {}

    void Begin(const host::ChangeWalk& walk) override { level_ = LevelOf(walk); }
    void Take(const host::ChangeWalk& walk) override {
        const char level = LevelOf(walk);
        if (level_ == (rising_ ? '0' : '1') && level == (rising_ ? '1' : '0')) {
            times_.Add(walk.time());
        }
        level_ = level;
    }

private:
    char LevelOf(const host::ChangeWalk& walk) const {
        const Value value = signal_.Read(walk.Values(number_));
        const bool low = value.text == "0" || value.text == "L" || value.text == "false";
        return SignalValue::IsTrue(value) ? '1' : low ? '0' : '?';
    }

    const SignalValue& signal_;
    std::size_t number_;
    bool rising_;
    char level_ = '?';
};

// The times at which a signal of any type gets another value.
class Search::ChangeAtom final : public Atom {
public:
    explicit ChangeAtom(std::size_t number) : Atom({number}), number_(number) {}

    void Begin(const host::ChangeWalk& walk) override {
        Keep(walk);
        known_at_first_ = std::any_of(last_.begin(), last_.end(),
                                      [](const host::LeafValue& value) { return value.known; });
    }
    void Take(const host::ChangeWalk& walk) override {
        const auto values = walk.Values(number_);
        const bool same = std::equal(values.begin(), values.end(), last_.begin(), last_.end(),
                                     [](const host::LeafValue& a, const host::LeafValue& b) {
                                         return a.known == b.known && a.bytes == b.bytes;
                                     });
        if (!same) {
            times_.Add(walk.time());
            Keep(walk);
        }
    }

private:
    void Keep(const host::ChangeWalk& walk) {
        const auto values = walk.Values(number_);
        last_.assign(values.begin(), values.end());
    }

    std::size_t number_;
    std::vector<host::LeafValue> last_;
};

Search::Search(const host::Recording& recording, std::string condition, Unknown unknown)
    : recording_(recording), text_(std::move(condition)), unknown_(std::move(unknown)) {
    root_ = ReadCondition(text_);
    Prepare(*root_);
}

Search::~Search() = default;

// ---- the signals ----

std::optional<std::size_t> Search::FindSignal(const Word& word) {
    const std::string name(word.text);
    if (const auto known = known_.find(name); known != known_.end()) {
        return known->second;
    }
    auto found = host::SelectSignals(recording_.Signals(), name);
    if (found.empty()) {
        const std::string selection = SelectionOf(name);
        const auto ending =
            EndingIn(recording_.Signals(), name.substr(0, name.size() - selection.size()));
        if (ending.size() > 1) {
            throw Refusal(word.position, name.size(),
                          "`" + name + "` may be " + ending[0] + " or " + ending[1] +
                              (ending.size() > 2 ? ", among others" : "") +
                              "; write more of its name");
        }
        found = ending.empty() ? std::move(found)
                               : host::SelectSignals(recording_.Signals(), ending[0] + selection);
    }
    if (found.size() != 1) {
        return std::nullopt;
    }
    recording_.TakeUnits(*found[0].signal);
    values_.push_back(std::make_unique<SignalValue>(*found[0].signal, found[0].name));
    signals_.push_back(std::move(found[0]));
    known_.emplace(name, signals_.size() - 1);
    return signals_.size() - 1;
}

std::size_t Search::AddSignal(const Word& word) {
    if (const auto signal = FindSignal(word)) {
        return *signal;
    }
    throw Refusal(word.position, word.text.size(), unknown_(std::string(word.text)));
}

// ---- what the parts are ----

bool Search::IsMoments(const Node& node) const {
    switch (node.kind) {
        case Kind::Rising:
        case Kind::Falling:
        case Kind::Changes:
        case Kind::Within:
            return true;
        case Kind::And:
        case Kind::Or:
            return IsMoments(*node.parts[0]) || IsMoments(*node.parts[1]);
        default:
            return false;
    }
}

void Search::RequireLevels(const Node& node, const std::string& remedy) const {
    for (const auto& part : node.parts) {
        if (IsMoments(*part)) {
            throw Refusal(part->position, part->length,
                          "this happens at moments, where something that holds for a time is "
                          "needed; " +
                              remedy);
        }
    }
}

void Search::PrepareParts(const Node& node) {
    for (const auto& part : node.parts) {
        Prepare(*part);
    }
    switch (node.kind) {
        case Kind::Not:
            return RequireLevels(node, "`rising` may become `falling`");
        case Kind::Xor:
            return RequireLevels(node, "`xor` joins conditions such as `a = 1`");
        case Kind::Before:
        case Kind::HeldFor:
            return RequireLevels(node, "write a condition such as `a = 1`");
        case Kind::Rising:
        case Kind::Falling:
            return RequireLevels(node, "an edge is one of a signal or a condition");
        case Kind::Or:
            if (IsMoments(*node.parts[0]) != IsMoments(*node.parts[1])) {
                RequireLevels(node, "write `rising(...)` on the other side, too");
            }
            return;
        default:
            return;
    }
}

void Search::Prepare(const Node& node) {
    switch (node.kind) {
        case Kind::Level: {
            const std::size_t signal = AddSignal(node.left.word);
            if (!values_[signal]->IsCondition()) {
                throw Refusal(node.position, node.length,
                              values_[signal]->name() +
                                  " is not a single bit; compare it, as in `" +
                                  std::string(node.left.word.text) + " = ...`, or write `changes(" +
                                  std::string(node.left.word.text) + ")`");
            }
            atoms_[&node] =
                std::make_unique<PropertyAtom>(*values_[signal], signal, &SignalValue::IsTrue);
            return;
        }
        case Kind::Compare:
            return PrepareComparison(node);
        case Kind::Unknown: {
            const std::size_t signal = AddSignal(node.left.word);
            if (!values_[signal]->IsBits()) {
                throw Refusal(node.left.word.position, node.left.word.text.size(),
                              values_[signal]->name() + " has no bits that could be unknown");
            }
            atoms_[&node] =
                std::make_unique<PropertyAtom>(*values_[signal], signal, &SignalValue::IsUnknown);
            return;
        }
        case Kind::Changes:
        case Kind::StableFor:
            atoms_[&node] = std::make_unique<ChangeAtom>(AddSignal(node.left.word));
            return;
        case Kind::Rising:
        case Kind::Falling:
            PrepareParts(node);
            if (node.parts[0]->kind == Kind::Level) {
                const std::size_t signal = AddSignal(node.parts[0]->left.word);
                atoms_[&node] =
                    std::make_unique<EdgeAtom>(*values_[signal], signal, node.kind == Kind::Rising);
            }
            return;
        default:
            return PrepareParts(node);
    }
}

Value Search::LiteralFor(std::size_t signal, const Operand& operand) const {
    std::string problem;
    Value value = values_[signal]->Literal(operand.word.text, problem);
    if (value.kind == Value::Kind::None) {
        throw Refusal(operand.word.position, operand.word.text.size(), problem);
    }
    return value;
}

// A name is a literal where the other side is an enumeration that has it.
void Search::PrepareComparison(const Node& node) {
    const Operand* const operands[] = {&node.left, &node.right};
    std::optional<std::size_t> signals[2];
    for (std::size_t i = 0; i < 2; ++i) {
        if (operands[i]->word.kind == Word::Kind::Name) {
            signals[i] = FindSignal(operands[i]->word);
        }
    }
    for (std::size_t i = 0; i < 2; ++i) {
        const std::optional<std::size_t>& other = signals[1 - i];
        const bool is_name = operands[i]->word.kind == Word::Kind::Name;
        if (other && is_name && values_[*other]->HasLiteral(operands[i]->word.text)) {
            signals[i].reset();
        } else if (!signals[i] && is_name && !other) {
            AddSignal(operands[i]->word);  // refuses it
        }
    }
    if (!signals[0] && !signals[1]) {
        throw Refusal(node.position, node.length, "one side of a comparison must be a signal");
    }
    CompareAtom::Side sides[2];
    std::vector<std::size_t> used;
    for (std::size_t i = 0; i < 2; ++i) {
        if (signals[i]) {
            const SignalValue& signal = *values_[*signals[i]];
            if (!signal.IsComparable()) {
                throw Refusal(operands[i]->word.position, operands[i]->word.text.size(),
                              signal.name() + " is a record or an array; compare one of its parts");
            }
            sides[i] = {&signal, *signals[i], {}};
            used.push_back(*signals[i]);
        } else {
            sides[i].value = LiteralFor(*signals[1 - i], *operands[i]);
        }
    }
    atoms_[&node] = std::make_unique<CompareAtom>(std::move(sides[0]), node.relation,
                                                  std::move(sides[1]), std::move(used));
}

// ---- reading ----

void Search::Read(host::TimeWindow window) {
    window_ = window;
    std::vector<ISignal*> signals;
    for (const host::NamedSignal& named : signals_) {
        signals.push_back(named.signal);
    }
    std::vector<std::vector<Atom*>> users(signals.size());
    host::ChangeWalk walk(recording_, signals, window);
    for (const auto& [node, atom] : atoms_) {
        atom->Begin(walk);
        for (const std::size_t signal : atom->signals()) {
            users[signal].push_back(atom.get());
        }
    }
    while (walk.Next()) {
        for (const std::size_t signal : walk.Changed()) {
            for (Atom* const atom : users[signal]) {
                atom->Take(walk);
            }
        }
    }
}

LevelPtr Search::TakeLevel() {
    return Until(MakeLevel(*root_), window_.end);
}
MomentsPtr Search::TakeMoments() {
    return Until(MakeMoments(*root_), window_.end);
}

LevelPtr Search::MakeLevel(const Node& node) const {
    const auto part = [&](std::size_t i) { return MakeLevel(*node.parts[i]); };
    LevelPtr level;
    switch (node.kind) {
        case Kind::Not:
            return Not(part(0));
        case Kind::And:
            return Join(part(0), part(1), [](bool a, bool b) { return a && b; });
        case Kind::Or:
            return Join(part(0), part(1), [](bool a, bool b) { return a || b; });
        case Kind::Xor:
            return Join(part(0), part(1), [](bool a, bool b) { return a != b; });
        case Kind::Before:
            return Before(part(0));
        case Kind::HeldFor:
            return HeldFor(part(0), node.time, window_.start);
        case Kind::StableFor: {
            const Atom& atom = *atoms_.at(&node);
            return QuietFor(atom.AsMoments(), node.time, window_.start, atom.IsKnownAtFirst());
        }
        default:
            level = atoms_.at(&node)->AsLevel();
            return node.left.before || node.right.before ? Before(std::move(level))
                                                         : std::move(level);
    }
}

// A level happens when it begins to hold.
MomentsPtr Search::MomentsOf(const Node& node) const {
    return IsMoments(node) ? MakeMoments(node) : Edges(MakeLevel(node), true);
}

MomentsPtr Search::MakeMoments(const Node& node) const {
    const auto part = [&](std::size_t i) -> const Node& { return *node.parts[i]; };
    switch (node.kind) {
        case Kind::Rising:
        case Kind::Falling: {
            const auto atom = atoms_.find(&node);
            return atom != atoms_.end() ? atom->second->AsMoments()
                                        : Edges(MakeLevel(part(0)), node.kind == Kind::Rising);
        }
        case Kind::Changes:
            return atoms_.at(&node)->AsMoments();
        case Kind::Within:
            return Within(MomentsOf(part(0)), MomentsOf(part(1)), node.time, node.side,
                          node.negated);
        case Kind::Or:
            return Either(MakeMoments(part(0)), MakeMoments(part(1)));
        default: {  // and
            if (IsMoments(part(0)) && IsMoments(part(1))) {
                return Both(MakeMoments(part(0)), MakeMoments(part(1)));
            }
            const std::size_t moments = IsMoments(part(0)) ? 0 : 1;
            return During(MakeMoments(part(moments)), MakeLevel(part(1 - moments)));
        }
    }
}

}  // namespace corv::find
