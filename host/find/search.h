#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <variant>
#include <vector>

#include "host/find/signal_value.h"
#include "host/find/streams.h"
#include "host/find/syntax.h"
#include "host/recording.h"
#include "host/signal_name.h"
#include "host/trace.h"

namespace corv::find {

// A condition over the signals of a recording. Reading goes once through the recording and keeps,
// of each comparison and edge in the condition, the times at which it changes.
class Search {
public:
    // Makes a sentence about a name that no signal has.
    using Unknown = std::function<std::string(const std::string& name)>;

    // The recording must outlive the object. Throws Refusal for a condition that can't be used.
    Search(const host::Recording& recording, std::string condition, Unknown unknown);
    Search(const Search&) = delete;
    Search& operator=(const Search&) = delete;
    ~Search();

    // Whether the condition holds for stretches of time, and not at moments.
    bool IsLevel() const { return !IsMoments(*root_); }

    // Reads the recording. Throws std::runtime_error when it can't be read on.
    void Read(host::TimeWindow window);

    // The condition over the window that was read; once each, and the one that it is.
    LevelPtr TakeLevel();
    MomentsPtr TakeMoments();

private:
    class Atom;
    class StateAtom;
    class CompareAtom;
    class PropertyAtom;
    class EdgeAtom;
    class ChangeAtom;

    bool IsMoments(const Node& node) const;
    void Prepare(const Node& node);
    void PrepareParts(const Node& node);
    void PrepareComparison(const Node& node);
    void RequireLevels(const Node& node, const std::string& remedy) const;
    std::size_t AddSignal(const Word& word);
    std::optional<std::size_t> FindSignal(const Word& word);
    Value LiteralFor(std::size_t signal, const Operand& operand) const;

    LevelPtr MakeLevel(const Node& node) const;
    MomentsPtr MakeMoments(const Node& node) const;
    MomentsPtr MomentsOf(const Node& node) const;

    const host::Recording& recording_;
    std::string text_;
    Unknown unknown_;
    std::unique_ptr<Node> root_;
    std::vector<host::NamedSignal> signals_;
    std::vector<std::unique_ptr<SignalValue>> values_;
    std::unordered_map<std::string, std::size_t> known_;  // the signals by the words for them
    std::unordered_map<const Node*, std::unique_ptr<Atom>> atoms_;
    host::TimeWindow window_;
};

}  // namespace corv::find
