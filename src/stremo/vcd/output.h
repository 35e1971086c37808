#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "corv/stremo/vcd_writer.h"

// The variables of a VCD file being written.
namespace corv::vcd {

// How the values of a variable are written.
enum class Form : unsigned char { kBits, kInteger, kReal, kText, kLiteral, kEvent };

struct OutputVariable {
    Form form;
    bool is_vector;       // has elements, even if only one
    std::uint32_t first;  // of its elements
    std::uint32_t count;  // of them
    std::uint32_t type;   // in the list of types
    std::string code;
};

// What the writer needs to know about a type, made once for all its signals.
struct OutputType {
    Form form;
    std::string letters;                // for kBits: the letter of each position
    std::vector<std::string> literals;  // for kLiteral: as they are written
};

// An element of a variable that receives the events of a handle.
struct Use {
    std::uint32_t variable;
    std::uint32_t element;
    std::uint32_t next;  // the next one with the same handle
};
inline constexpr std::uint32_t kNoUse = 0xFFFFFFFF;

// The variables of the signals of a reader, and the text that declares them.
class OutputTree {
public:
    // Throws std::bad_alloc and what the options' functions throw.
    OutputTree(stremo::IEventsStreamRead& reader, const VcdOptions& options);

    std::string declarations;
    std::vector<OutputVariable> variables;
    std::vector<OutputType> types;
    std::vector<Use> uses;
    std::unordered_map<int, std::uint32_t> first_uses;  // by handle
    std::uint32_t element_count = 0;
    std::int64_t latest = 0;  // the latest time of the signals

    // Asks the signals for their latest time again: some readers know it only after all events were
    // read.
    void AskLatest();

private:
    struct Member {
        int handle;
        bool composite;
        int member_count;
        std::string name;
        std::string type;
    };
    Member Ask(int handle);
    void AddSignal(const Member& signal, const std::string& name, int level);
    bool AddArray(const Member& signal, const std::string& name);
    void AddRecord(const Member& signal, const std::string& name, int level);
    void AddVariable(std::uint32_t type, const std::vector<int>& handles, bool is_vector,
                     std::string_view name, std::string_view range);
    std::uint32_t TypeOf(const std::string& text);
    std::string VectorRange(const std::vector<Member>& members) const;
    std::vector<Member> Members(const Member& signal);

    void EnterScopes(const std::vector<std::string>& scopes);
    void Enter(std::string_view kind, std::string_view name);
    std::string Written(std::string_view name) const;

    stremo::IEventsStreamRead& reader_;
    const VcdOptions& options_;
    std::vector<int> top_level_;  // the handles of the written ones
    std::vector<std::string> scopes_;
    std::unordered_map<std::string, std::uint32_t> type_numbers_;
    std::unordered_map<std::string, std::uint32_t> known_;  // variables by form and handles
};

// Splits a hierarchical name into its scopes and the name. In a part that begins with a backslash
// the separator is an ordinary character (corv::EscapedNameLength).
std::vector<std::string> SplitName(std::string_view name, char separator);

// Returns a text as it is written as a value: blanks, control characters and those beyond 7 bits
// become octal numbers after a backslash.
std::string EscapedText(std::string_view text);

}  // namespace corv::vcd
