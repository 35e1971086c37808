#include "typeinfo/type_text.h"

#include <charconv>
#include <optional>

#include "typeinfo/number_text.h"
#include "util/time_text.h"

namespace corv::typeinfo {
namespace {

// The letter of each kind, at the index of the kind's number.
constexpr std::string_view kKindLetters = " eifar";

// Reads by recursive descent. The nesting is limited and every count is checked against the rest of
// the text before anything is allocated, so hostile texts cost no more than their own length.
class TypeReader {
public:
    TypeReader(std::string_view text, TypeSink& sink) noexcept : rest_(text), sink_(sink) {}

    bool ReadWhole() { return ReadType(1) && rest_.empty(); }

private:
    bool ReadType(int level);
    bool ReadBody(TypeHead& head, int level);
    bool ReadName(std::string_view& name) noexcept;
    bool ReadEnumeration(TypeHead& head);
    bool ReadWords(std::uint32_t count);
    bool ReadArray(TypeHead& head, int level);
    bool ReadRecord(TypeHead& head, int level);
    template <class Bound>
    bool ReadRange(char bound_letter);

    bool ReadNumber(std::uint32_t& number) noexcept;
    bool ReadCount(std::uint32_t& count) noexcept { return ReadNumber(count) && Skip(' '); }
    bool Skip(char c) noexcept;
    // Takes one of two letters and returns which: 0 or 1, nullopt if neither comes next.
    std::optional<int> ReadEither(char first, char second) noexcept;
    // Takes everything before the next blank or the end of the text.
    std::string_view TakeWord() noexcept { return Take(std::min(rest_.find(' '), rest_.size())); }
    std::string_view Take(std::size_t length) noexcept {
        const std::string_view taken = rest_.substr(0, length);
        rest_.remove_prefix(taken.size());
        return taken;
    }

    std::string_view rest_;
    TypeSink& sink_;
};

bool TypeReader::Skip(char c) noexcept {
    const bool stands = rest_.starts_with(c);
    rest_.remove_prefix(stands ? 1 : 0);
    return stands;
}

std::optional<int> TypeReader::ReadEither(char first, char second) noexcept {
    if (Skip(first)) {
        return 0;
    }
    return Skip(second) ? std::optional(1) : std::nullopt;
}

bool TypeReader::ReadNumber(std::uint32_t& number) noexcept {
    const auto read = std::from_chars(rest_.data(), rest_.data() + rest_.size(), number);
    rest_.remove_prefix(static_cast<std::size_t>(read.ptr - rest_.data()));
    return read.ec == std::errc();
}

bool TypeReader::ReadName(std::string_view& name) noexcept {
    if (!Skip('#')) {
        name = TakeWord();
        return Skip(' ');
    }
    std::uint32_t length = 0;
    if (!ReadNumber(length) || !Skip('#') || length > rest_.size()) {
        return false;
    }
    name = Take(length);
    return true;
}

bool TypeReader::ReadType(int level) {
    TypeHead head;
    head.begin = rest_.data();
    const std::size_t kind = rest_.empty() ? 0 : kKindLetters.find(rest_[0]);
    if (level > kMaxNesting || kind == 0 || kind == std::string_view::npos) {
        return false;
    }
    Take(1);
    head.kind = static_cast<KTypeInfo::EKind>(kind);
    if (!ReadName(head.name) || !ReadBody(head, level)) {
        return false;
    }
    sink_.OnEnd(rest_.data());
    return true;
}

bool TypeReader::ReadBody(TypeHead& head, int level) {
    switch (head.kind) {
        case KTypeInfo::KindEnum:
            return ReadEnumeration(head);
        case KTypeInfo::KindInteger:
            sink_.OnType(head);
            return ReadRange<std::int32_t>('i');
        case KTypeInfo::KindFloat:
            sink_.OnType(head);
            return ReadRange<double>('r');
        case KTypeInfo::KindArray:
            return ReadArray(head, level);
        case KTypeInfo::KindRecord:
            return ReadRecord(head, level);
        case KTypeInfo::KindNone:
            break;
    }
    return false;
}

bool TypeReader::ReadEnumeration(TypeHead& head) {
    const std::optional<int> form = ReadEither('c', 's');
    if (!form || !ReadCount(head.count)) {
        return false;
    }
    head.words = *form == 1;
    if (!head.words) {
        if (head.count > rest_.size()) {
            return false;
        }
        head.characters = Take(head.count);
    }
    sink_.OnType(head);
    return !head.words || ReadWords(head.count);
}

bool TypeReader::ReadWords(std::uint32_t count) {
    for (; count > 0; --count) {
        const std::string_view literal = rest_.starts_with('\'') ? Take(2) : TakeWord();
        if (literal.empty() || !Skip(' ')) {
            return false;
        }
        sink_.OnWord(literal);
    }
    return true;
}

bool TypeReader::ReadArray(TypeHead& head, int level) {
    if (!ReadCount(head.count)) {
        return false;
    }
    sink_.OnType(head);
    for (std::uint32_t i = 0; i < head.count; ++i) {
        if ((i > 0 && !Skip(' ')) || !ReadRange<std::int32_t>('i')) {
            return false;
        }
    }
    return Skip(' ') && ReadType(level + 1);
}

bool TypeReader::ReadRecord(TypeHead& head, int level) {
    if (!ReadCount(head.count)) {
        return false;
    }
    sink_.OnType(head);
    for (std::uint32_t i = 0; i < head.count; ++i) {
        if (i > 0 && !Skip(' ')) {
            return false;
        }
        const std::string_view name = TakeWord();
        if (name.empty() || !Skip(' ')) {
            return false;
        }
        sink_.OnField(name);
        if (!ReadType(level + 1)) {
            return false;
        }
    }
    return true;
}

bool ReadBound(std::string_view text, std::int32_t& bound) noexcept {
    const auto read = std::from_chars(text.data(), text.data() + text.size(), bound);
    return read.ec == std::errc() && read.ptr == text.data() + text.size();
}

// Bounds have no plus sign and no underscores, both of which ReadReal accepts.
bool ReadBound(std::string_view text, double& bound) {
    if (text.starts_with('+') || text.find('_') != std::string_view::npos) {
        return false;
    }
    const std::optional<double> number = ReadReal(text);
    bound = number.value_or(0);
    return number.has_value();
}

template <class Bound>
bool TypeReader::ReadRange(char bound_letter) {
    Range<Bound> range;
    if (!Skip('r') || !Skip(bound_letter)) {
        return false;
    }
    const std::optional<int> unconstrained = ReadEither('c', 'u');
    const std::optional<int> direction = ReadEither('t', 'd');
    if (!unconstrained || !direction || !ReadBound(TakeWord(), range.left) || !Skip(' ') ||
        !ReadBound(TakeWord(), range.right)) {
        return false;
    }
    range.constrained = *unconstrained == 0;
    range.direction = *direction == 0 ? KTypeInfo::To : KTypeInfo::Downto;
    sink_.OnRange(range);
    return true;
}

// ---- writing ----

void AppendCount(std::string& out, std::size_t count) {
    util::AppendNumber(out, static_cast<std::uint64_t>(count));
}

void AppendHead(std::string& out, KTypeInfo::EKind kind, std::string_view name) {
    out += kKindLetters[kind];
    out += '#';
    AppendCount(out, name.size());
    out += '#';
    out += name;
}

void AppendBound(std::string& out, std::int32_t bound) {
    util::AppendNumber(out, std::int64_t{bound});
}
void AppendBound(std::string& out, double bound) {
    AppendSixDigits(out, bound);
}

template <class Bound>
void AppendRange(std::string& out, char bound_letter, const Range<Bound>& range) {
    out += 'r';
    out += bound_letter;
    out += range.constrained ? 'c' : 'u';
    out += range.direction == KTypeInfo::To ? 't' : 'd';
    AppendBound(out, range.left);
    out += ' ';
    AppendBound(out, range.right);
}

}  // namespace

bool ReadTypeText(std::string_view text, TypeSink& sink) {
    constexpr auto kNone = std::string_view::npos;
    return text.size() <= kMaxTextLength && text.find('\n') == kNone && text.find('\r') == kNone &&
           text.find('\0') == kNone && TypeReader(text, sink).ReadWhole();
}

void AppendCharacterEnum(std::string& out, std::string_view name, std::string_view characters) {
    AppendHead(out, KTypeInfo::KindEnum, name);
    out += 'c';
    AppendCount(out, characters.size());
    out += ' ';
    out += characters;
}

void AppendWordEnum(std::string& out, std::string_view name,
                    std::span<const std::string_view> literals) {
    AppendHead(out, KTypeInfo::KindEnum, name);
    out += 's';
    AppendCount(out, literals.size());
    out += ' ';
    for (const std::string_view literal : literals) {
        out += literal;
        out += ' ';
    }
}

void AppendInteger(std::string& out, std::string_view name, const IndexRange& range) {
    AppendHead(out, KTypeInfo::KindInteger, name);
    AppendRange(out, 'i', range);
}

void AppendFloat(std::string& out, std::string_view name, const RealRange& range) {
    AppendHead(out, KTypeInfo::KindFloat, name);
    AppendRange(out, 'r', range);
}

void AppendArrayHead(std::string& out, std::string_view name, std::span<const IndexRange> ranges) {
    AppendHead(out, KTypeInfo::KindArray, name);
    AppendCount(out, ranges.size());
    out += ' ';
    for (std::size_t i = 0; i < ranges.size(); ++i) {
        out += i > 0 ? " " : "";
        AppendRange(out, 'i', ranges[i]);
    }
    out += ' ';
}

void AppendRecordHead(std::string& out, std::string_view name, std::size_t fields) {
    AppendHead(out, KTypeInfo::KindRecord, name);
    AppendCount(out, fields);
    out += ' ';
}

std::string ConstrainedName(std::string_view name, std::span<const IndexRange> ranges) {
    std::string out(name);
    out += '(';
    for (std::size_t i = 0; i < ranges.size(); ++i) {
        out += i > 0 ? "," : "";
        AppendBound(out, ranges[i].left);
        out += ranges[i].direction == KTypeInfo::To ? " to " : " downto ";
        AppendBound(out, ranges[i].right);
    }
    out += ')';
    return out;
}

}  // namespace corv::typeinfo
