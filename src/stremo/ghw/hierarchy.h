#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "stremo/ghw/type_text.h"
#include "stremo/ghw/types.h"
#include "stremo/signal_table.h"

namespace corv::ghw {

// How the values of a net are stored in the file and what they become.
struct Net {
    std::uint32_t number;    // in the file, from 1; also the handle of its signals
    Kind kind;               // of a scalar
    std::uint16_t literals;  // of an enumeration
    std::int64_t scale;      // of types of 64 bits
};

// The nets of a file, which its scalars are connected to. Scalars with the same number are one net.
class Nets {
public:
    // Adds a net. Returns false if the net of that number has values of another kind.
    bool Add(const Net& net);
    // Sorts the nets by number. The position in this order is the rank by which lists of values
    // refer to them.
    void Finish();

    std::size_t size() const noexcept { return nets_.size(); }
    const Net& operator[](std::size_t rank) const noexcept { return nets_[rank]; }
    // Returns, after Finish, whether the numbers have no gaps: then each rank is known even if
    // signals are missing.
    bool dense() const noexcept { return nets_.empty() || nets_.back().number == nets_.size(); }

private:
    std::vector<Net> nets_;
    std::vector<std::uint32_t> near_;  // by number: 1 + the place in nets_, 0 for none
    std::unordered_map<std::uint32_t, std::uint32_t> far_;
};

// Reads the hierarchy into a table of signals: one for each declared signal and port, named by the
// scopes around it and its own name with the hierarchy separator between them, with its elements
// and fields below it.
class Hierarchy {
public:
    Hierarchy(const Strings& strings, const Types& types, TypeTexts& texts, TextBudget& budget,
              recording::SignalTable& signals, Notes& notes)
        : strings_(strings),
          types_(types),
          texts_(texts),
          budget_(budget),
          signals_(signals),
          notes_(notes) {}

    // Reads the section after its tag. A failure is recorded in the input; what was read stays. The
    // table is not finished.
    void Read(Input& in);

    Nets TakeNets() noexcept { return std::move(nets_); }
    // Returns whether values can be assigned to nets.
    bool nets_known() const noexcept { return nets_known_; }

private:
    void ReadElement(unsigned kind, Input& in);
    void OpenScope(std::string_view name);
    void ReadGenerate(Input& in);
    void CloseScope(std::size_t offset);

    void ReadSignal(Input& in);
    bool ReadNumbers(Input& in, std::uint32_t type);
    void ReadNumber(Input& in, const Type& type);
    const char* WhyNot(std::string_view name, std::uint32_t type);
    void AddSignal(std::string_view name, std::uint32_t type, bool joins);
    void AddElements(recording::Signal& signal, const Type& type);
    void AddFields(recording::Signal& signal, const Type& type);
    void Advance(const Type& type, std::vector<std::int64_t>& indices) const noexcept;
    std::string_view ElementName(const Type& type, const std::vector<std::int64_t>& indices);
    std::string_view KeepMemberName();

    const Strings& strings_;
    const Types& types_;
    TypeTexts& texts_;
    TextBudget& budget_;
    recording::SignalTable& signals_;
    Notes& notes_;

    Nets nets_;
    bool nets_known_ = true;
    std::string path_;                       // of the present scope, ending with a separator
    std::vector<std::size_t> path_lengths_;  // of the scopes around it
    std::vector<std::int32_t> handles_;      // of the leaves of a signal
    std::size_t next_handle_ = 0;
    std::size_t most_signals_ = 0;
    std::string member_name_;
};

}  // namespace corv::ghw
