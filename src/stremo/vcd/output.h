#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "corv/stremo/vcd_writer.h"

// The variables of a VCD file that is written.
namespace corv::vcd {

// How the values of a variable are written.
enum class Form : unsigned char { kBits, kInteger, kReal, kText, kLiteral, kEvent };

struct OutputVariable {
    Form form;
    bool is_vector;       // with elements, however few
    std::uint32_t first;  // of its elements
    std::uint32_t count;  // of them
    std::uint32_t type;   // in the list of types
    std::string code;
};

// What the writer needs of a type, once for all signals that have it.
struct OutputType {
    Form form;
    std::string letters;                // of kBits: the letter of each position
    std::vector<std::string> literals;  // of kLiteral: as they are written
};

// An element of a variable that takes the events of a handle.
struct Use {
    std::uint32_t variable;
    std::uint32_t element;
    std::uint32_t next;  // the next one of the same handle
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

    // Asks the signals for their latest time again.
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
    std::vector<int> top_level_;  // the handles of those that are written
    std::vector<std::string> scopes_;
    std::unordered_map<std::string, std::uint32_t> type_numbers_;
    std::unordered_map<std::string, std::uint32_t> known_;  // variables by form and handles
};

// The scopes and the name that a hierarchical name consists of. In a part that begins with a
// backslash the separator stands for itself (corv::EscapedNameLength).
std::vector<std::string> SplitName(std::string_view name, char separator);

// A text as a value is written: blanks, control characters and those beyond the 7-bit alphabet as
// octal numbers behind a backslash.
std::string EscapedText(std::string_view text);

}  // namespace corv::vcd
