#include "stremo/vcd/output.h"

#include <algorithm>
#include <charconv>
#include <optional>

#include "corv/typeinfo/type_info.h"
#include "corv/util/extended_id.h"
#include "platform/ascii.h"
#include "util/hierarchy_separator.h"

namespace corv::vcd {
namespace {

constexpr std::string_view kLogicLetters = "UX01ZWLH-";
constexpr int kMostLevels = 256;
constexpr std::uint32_t kNoType = 0xFFFFFFFF;

// Returns a code: numbers of base 94 whose digits are the printable characters, shortest first.
std::string CodeOf(std::size_t number) {
    std::string code;
    do {
        code += static_cast<char>('!' + number % 94);
        number /= 94;
    } while (number-- != 0);
    return code;
}

// Returns the literals of an enumeration as letters, empty if it is not a type of bits.
std::string BitLetters(const KTypeInfo& type) {
    std::string letters;
    const int count = type.GetNbOfValues();
    if (count == 2 && platform::EqualNoCase(type.GetValue(0).View(), "false") &&
        platform::EqualNoCase(type.GetValue(1).View(), "true")) {
        return "01";
    }
    for (int i = 0; i < count && count <= 9; ++i) {
        const CString literal = type.GetValue(i);
        if (literal.GetLength() != 1 || kLogicLetters.find(literal[0]) == std::string_view::npos) {
            return {};
        }
        letters += literal[0];
    }
    return letters;
}

OutputType ReadEnumeration(const KTypeInfo& type) {
    OutputType result{Form::kBits, BitLetters(type), {}};
    if (!result.letters.empty()) {
        return result;
    }
    const std::string name(type.GetTypeIdentifier().View());
    if (name == "character" && type.GetNbOfValues() == 256) {
        result.form = Form::kText;
        return result;
    }
    if (name == "event" && type.GetNbOfValues() == 1) {
        result.form = Form::kEvent;
        return result;
    }
    result.form = Form::kLiteral;
    for (int i = 0; i < type.GetNbOfValues(); ++i) {
        std::string literal(type.GetValue(i, true).View());
        if (literal.starts_with('\\')) {  // blanks of extended identifiers
            std::replace(literal.begin(), literal.end(), '\xA0', ' ');
        }
        result.literals.push_back(EscapedText(literal));
    }
    return result;
}

std::optional<OutputType> ReadType(const std::string& text) {
    const KTypeInfo type{CString(std::string_view(text))};
    switch (type.GetKind()) {
        case KTypeInfo::KindEnum:
            return ReadEnumeration(type);
        case KTypeInfo::KindInteger:
            return OutputType{Form::kInteger, {}, {}};
        case KTypeInfo::KindFloat:
            return OutputType{Form::kReal, {}, {}};
        default:
            return std::nullopt;
    }
}

const char* Declared(Form form, bool is_vector) noexcept {
    switch (form) {
        case Form::kInteger:
            return "integer 32";
        case Form::kReal:
            return "real 64";
        case Form::kText:
            return is_vector ? "string 0" : "string 1";
        case Form::kLiteral:
            return "string 0";
        case Form::kEvent:
            return "event 1";
        case Form::kBits:
            break;
    }
    return "wire 1";
}

// "(7)" as 7.
std::optional<int> IndexOf(std::string_view member) noexcept {
    int index = 0;
    if (member.size() < 3 || member.front() != '(' || member.back() != ')') {
        return std::nullopt;
    }
    const char* const end = member.data() + member.size() - 1;
    const auto [at, error] = std::from_chars(member.data() + 1, end, index);
    return error == std::errc() && at == end ? std::optional(index) : std::nullopt;
}

// "(1,2)" as [1][2].
std::string InBrackets(std::string_view member) {
    std::string result(member);
    result.front() = '[';
    result.back() = ']';
    for (std::size_t at; (at = result.find(',')) != std::string::npos;) {
        result.replace(at, 1, "][");
    }
    return result;
}

}  // namespace

std::string EscapedText(std::string_view text) {
    std::string escaped;
    for (const char c : text) {
        const auto code = static_cast<unsigned char>(c);
        if (c == '\\') {
            escaped += "\\\\";
        } else if (code > ' ' && code < 0x7F) {
            escaped += c;
        } else {
            escaped += '\\';
            for (const int shift : {6, 3, 0}) {
                escaped += static_cast<char>('0' + (code >> shift & 7));
            }
        }
    }
    return escaped;
}

std::vector<std::string> SplitName(std::string_view name, char separator) {
    std::vector<std::string> parts;
    for (;;) {
        const std::size_t end = name.find(separator, EscapedNameLength(name, separator));
        std::string& part = parts.emplace_back(name.substr(0, end));
        if (end >= name.size()) {
            return parts;
        }
        if (part.starts_with('\\') && part.ends_with(' ')) {
            part.pop_back();  // the blank that ends an escaped scope
        }
        name.remove_prefix(end + 1);
    }
}

OutputTree::OutputTree(stremo::IEventsStreamRead& reader, const VcdOptions& options)
    : reader_(reader), options_(options) {
    declarations = "$version\n  corv\n$end\n$timescale 1ps $end\n";
    const int count = reader.GetSignalCount();
    for (int i = 0; i < count; ++i) {
        const Member signal = Ask(reader.GetSignalHandle(i));
        if (options.takes && !options.takes(signal.name.c_str(), signal.handle)) {
            continue;
        }
        top_level_.push_back(signal.handle);
        std::vector<std::string> scopes = SplitName(signal.name, util::HierarchySeparator());
        const std::string name = std::move(scopes.back());
        scopes.pop_back();
        EnterScopes(scopes);
        AddSignal(signal, name, 0);
    }
    EnterScopes({});
    declarations += "$enddefinitions $end\n";
}

OutputTree::Member OutputTree::Ask(int handle) {
    Member signal{handle, false, 0, {}, {}};
    CString name;
    int mode = 0;
    std::int64_t time = 0;
    reader_.GetSignalInfo(handle, signal.composite, signal.member_count, name, mode, time);
    signal.name = name.View();
    const char* const type = reader_.GetTypeString(handle);
    signal.type = type != nullptr ? type : "";
    latest = std::max(latest, time);
    return signal;
}

void OutputTree::AskLatest() {
    for (const int handle : top_level_) {
        Ask(handle);
    }
}

std::vector<OutputTree::Member> OutputTree::Members(const Member& signal) {
    std::vector<Member> members;
    for (int i = 0; i < signal.member_count; ++i) {
        members.push_back(Ask(reader_.GetSubSignalHandle(signal.handle, i)));
    }
    return members;
}

// ---- signals ----

void OutputTree::AddSignal(const Member& signal, const std::string& name, int level) {
    if (signal.composite) {
        if (level < kMostLevels && !AddArray(signal, name)) {
            AddRecord(signal, name, level);
        }
        return;
    }
    if (const std::uint32_t type = TypeOf(signal.type); type != kNoType) {
        AddVariable(type, {signal.handle}, false, name, {});
    }
}

// Adds a vector of bits or a string; returns false for other arrays.
bool OutputTree::AddArray(const Member& signal, const std::string& name) {
    const std::vector<Member> members = Members(signal);
    if (members.empty() || members[0].composite) {
        return false;
    }
    const std::uint32_t type = TypeOf(members[0].type);
    if (type == kNoType || (types[type].form != Form::kBits && types[type].form != Form::kText)) {
        return false;
    }
    std::vector<int> handles;
    for (const Member& member : members) {
        if (member.composite || member.type != members[0].type || !IndexOf(member.name)) {
            return false;
        }
        handles.push_back(member.handle);
    }
    AddVariable(type, handles, true, name, VectorRange(members));
    return true;
}

// " [7:0]"
std::string OutputTree::VectorRange(const std::vector<Member>& members) const {
    const int left = *IndexOf(members.front().name);
    const int right = *IndexOf(members.back().name);
    const std::int64_t distance = std::int64_t{left} - right;
    const bool fits = static_cast<std::size_t>(std::max(distance, -distance)) + 1 == members.size();
    return fits ? " [" + std::to_string(left) + ":" + std::to_string(right) + "]"
                : " [" + std::to_string(members.size() - 1) + ":0]";
}

// Adds a scope with the fields, or the elements one by one.
void OutputTree::AddRecord(const Member& signal, const std::string& name, int level) {
    const std::vector<Member> members = Members(signal);
    const bool is_array = std::all_of(members.begin(), members.end(), [](const Member& m) {
        return m.name.size() > 2 && m.name[0] == '(';
    });
    if (is_array) {
        for (const Member& member : members) {
            AddSignal(member, name + InBrackets(member.name), level + 1);
        }
        return;
    }
    Enter("vhdl_record", name);
    for (const Member& member : members) {
        AddSignal(member, member.name.substr(member.name.starts_with('.') ? 1 : 0), level + 1);
    }
    declarations += "$upscope $end\n";
}

std::uint32_t OutputTree::TypeOf(const std::string& text) {
    const auto [place, is_new] = type_numbers_.emplace(text, kNoType);
    if (is_new) {
        if (std::optional<OutputType> type = ReadType(text)) {
            place->second = static_cast<std::uint32_t>(types.size());
            types.push_back(std::move(*type));
        }
    }
    return place->second;
}

void OutputTree::AddVariable(std::uint32_t type, const std::vector<int>& handles, bool is_vector,
                             std::string_view name, std::string_view range) {
    std::string key = std::to_string(type) + (is_vector ? "v" : "s");
    for (const int handle : handles) {
        key += ',' + std::to_string(handle);
    }
    const Form form = types[type].form;
    const auto number = static_cast<std::uint32_t>(variables.size());
    const auto [known, is_new] = known_.emplace(std::move(key), number);
    if (is_new) {
        const auto count = static_cast<std::uint32_t>(handles.size());
        variables.push_back({form, is_vector, element_count, count, type, CodeOf(number)});
        element_count += count;
        for (std::uint32_t i = 0; i < count; ++i) {
            const auto use = static_cast<std::uint32_t>(uses.size());
            std::uint32_t& first = first_uses.emplace(handles[i], kNoUse).first->second;
            uses.push_back({number, i, first});
            first = use;
        }
    }
    const bool is_bus = is_vector && form == Form::kBits;
    declarations += "$var ";
    declarations += is_bus ? "wire " + std::to_string(handles.size()) : Declared(form, is_vector);
    declarations += ' ' + variables[known->second].code + ' ' + Written(name);
    declarations += range;
    declarations += " $end\n";
}

// ---- scopes ----

void OutputTree::EnterScopes(const std::vector<std::string>& scopes) {
    std::size_t common = 0;
    while (common < scopes.size() && common < scopes_.size() && scopes[common] == scopes_[common]) {
        ++common;
    }
    for (std::size_t i = scopes_.size(); i > common; --i) {
        declarations += "$upscope $end\n";
    }
    for (std::size_t i = common; i < scopes.size(); ++i) {
        Enter("module", scopes[i]);
    }
    scopes_ = scopes;
}

void OutputTree::Enter(std::string_view kind, std::string_view name) {
    declarations += "$scope ";
    declarations += kind;
    declarations += ' ' + Written(name) + " $end\n";
}

std::string OutputTree::Written(std::string_view name) const {
    std::string written(name.empty() ? "_" : name);
    for (char& c : written) {
        const auto code = static_cast<unsigned char>(c);
        c = code > ' ' || (code == ' ' && options_.raw_names) ? c : '_';
    }
    return written;
}

}  // namespace corv::vcd
