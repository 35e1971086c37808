#include "stremo/vcd/declarations.h"

#include <algorithm>
#include <iterator>

#include "util/hierarchy_separator.h"

namespace corv::vcd {
namespace {

using recording::kNone;

constexpr std::uint64_t kMostWidth = 65'536;
constexpr std::size_t kLongestName = 4096;
constexpr int kMostShapes = 8;  // of one code

// Elements are signals, which take some hundred bytes each, while a short declaration can ask for
// 65,536 of them. A file may have some millions, and more if its declarations are long.
constexpr std::uint64_t kFreeElements = 2'000'000;
constexpr std::uint64_t kElementsForByte = 8;

struct KindWord {
    std::string_view word;
    Kind kind;
};
constexpr KindWord kKindWords[] = {
    {"integer", Kind::kInteger}, {"int", Kind::kInteger},    {"shortint", Kind::kInteger},
    {"longint", Kind::kInteger}, {"byte", Kind::kInteger},   {"real", Kind::kReal},
    {"realtime", Kind::kReal},   {"shortreal", Kind::kReal}, {"real_parameter", Kind::kReal},
    {"string", Kind::kString},   {"event", Kind::kEvent},
};

Kind KindOf(std::string_view word) noexcept {
    const auto* const found = std::find_if(std::begin(kKindWords), std::end(kKindWords),
                                           [&](const KindWord& k) { return k.word == word; });
    return found != std::end(kKindWords) ? found->kind : Kind::kBits;
}

// The names of the scopes around the next variable.
class Scopes {
public:
    void Enter(std::string_view name) {
        lengths_.push_back(path_.size());
        if (too_deep_ > 0 || path_.size() + name.size() >= kLongestName) {
            ++too_deep_;
            return;
        }
        if (!path_.empty() && !name.empty()) {
            path_ += util::HierarchySeparator();
        }
        path_ += name;
    }
    bool Leave() {
        if (lengths_.empty()) {
            return false;
        }
        path_.resize(lengths_.back());
        lengths_.pop_back();
        too_deep_ -= too_deep_ > 0 ? 1 : 0;
        return true;
    }
    // Returns the full name of a variable, empty if it would be too long.
    std::string Name(std::string_view name) const {
        if (too_deep_ > 0 || path_.size() + name.size() >= kLongestName) {
            return {};
        }
        return path_.empty() ? std::string(name)
                             : path_ + util::HierarchySeparator() + std::string(name);
    }

private:
    std::string path_;
    std::vector<std::size_t> lengths_;  // of the path before each scope
    std::size_t too_deep_ = 0;          // the innermost scopes, which are not in the path
};

class Reader {
public:
    Reader(const platform::FileContent& content, const Byte* end, Notes& notes,
           recording::SignalTable& texts) noexcept
        : content_(content),
          begin_(content.bytes().data()),
          at_(begin_),
          last_end_(end),
          notes_(notes),
          texts_(texts) {}

    Declarations Read();

private:
    // The shape that a declaration gives.
    struct Shape {
        Kind kind;
        std::uint64_t width;
        std::optional<Range> range;
    };

    void ReadPart();
    bool ReadNext();
    void ReadCommand(std::string_view word);
    CommandText ReadText();
    void ReadTimeScale();
    void ReadVariable();
    bool ReadSize(std::string_view word, Shape& shape) const noexcept;
    void FitRange(Shape& shape, const std::optional<Range>& range, std::string_view name);
    bool FitsBudget(const Shape& shape, std::string_view name);
    std::uint32_t FindVariable(const Code& code, const Shape& shape);
    void AddName(const Code& code, const Shape& shape, std::string_view name);
    void Note(Problem problem, std::string_view detail = {}) {
        notes_.Add(problem, static_cast<std::size_t>(word_ - begin_), detail);
    }

    const platform::FileContent& content_;
    const Byte* const begin_;
    const Byte* at_;
    const Byte* const last_end_;  // of all bytes
    const Byte* end_ = nullptr;   // of the bytes in memory
    bool in_text_ = false;        // a text continues after them
    const Byte* word_ = nullptr;  // the beginning of the present command
    Notes& notes_;
    recording::SignalTable& texts_;
    Declarations result_;
    Scopes scopes_;
    std::uint64_t elements_ = 0;
    bool has_time_scale_ = false;
    bool over_ = false;  // the changes begin, or nothing is left
    bool cut_ = false;   // the file ends within a command
};

Declarations Reader::Read() {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    const auto size = static_cast<std::size_t>(last_end_ - begin_);
    content_.Bring({begin_, std::min(size, kByteOrderMark.size())});
    at_ += Text(begin_, last_end_).starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0;
    while (!over_ && at_ < last_end_) {
        ReadPart();
    }
    if (!has_time_scale_) {
        notes_.Add(Problem::kNoTimeScale, 0);
    }
    if (cut_ || (!result_.ended && at_ == last_end_)) {
        notes_.Add(Problem::kCutHeader, size);
    } else if (!result_.ended) {
        Note(Problem::kNoHeaderEnd);
    }
    result_.changes = static_cast<std::size_t>(at_ - begin_);
    return std::move(result_);
}

// Reads the declarations that begin in the next part. Some bytes after the part are brought too, in
// which the last one ends; a declaration longer than these is cut.
void Reader::ReadPart() {
    constexpr std::size_t kPart = std::size_t{1} << 22;
    constexpr std::size_t kRest = std::size_t{1} << 20;
    const Byte* const from = at_;
    const auto left = static_cast<std::size_t>(last_end_ - from);
    end_ = from + std::min(left, kPart + kRest);
    content_.Bring({from, end_});
    const Byte* const stop = from + std::min(left, kPart);
    while (!over_ && at_ < stop) {
        over_ = !ReadNext();
    }
    content_.Forget({from, at_});
}

// Returns false if the changes begin.
bool Reader::ReadNext() {
    if (in_text_) {
        ReadText();
        return true;
    }
    word_ = SkipBlanks(at_, end_);
    at_ = word_;
    const std::string_view word = NextWord(at_, end_);
    const Command* const command = FindCommand(word);
    if (word.empty() && end_ != last_end_) {
        return true;
    }
    if (word.empty() || result_.ended || IsTimeWord(word) ||
        (command != nullptr && command->begins_changes)) {
        at_ = word_;
        return false;
    }
    if (command != nullptr) {
        ReadCommand(word);
    } else if (word != "$end") {
        Note(Problem::kNonsense, word);
    }
    return true;
}

void Reader::ReadCommand(std::string_view word) {
    if (word == "$var") {
        ReadVariable();
    } else if (word == "$timescale") {
        ReadTimeScale();
    } else if (word == "$scope") {
        const CommandText text = ReadText();
        const std::size_t type = std::min(text.text.find_first_of(" \t\r\n"), text.text.size());
        const Byte* name = reinterpret_cast<const Byte*>(text.text.data()) + type;
        const Byte* const name_end = name + (text.text.size() - type);
        name = SkipBlanks(name, name_end);
        if (text.whole) {
            scopes_.Enter(ScopeName(Text(name, name_end)));
        }
    } else if (word == "$upscope") {
        if (!scopes_.Leave()) {
            Note(Problem::kNoScope);
        }
        ReadText();
    } else if (word == "$comment") {
        if (const CommandText text = ReadText(); !text.text.empty()) {
            notes_.Say(static_cast<std::size_t>(word_ - begin_),
                       "the simulator remarks: " + std::string(text.text));
        }
    } else {
        ReadText();
        result_.ended = word == "$enddefinitions";
    }
}

CommandText Reader::ReadText() {
    const CommandText text = ReadToEnd(at_, end_);
    if (!text.ended && text.whole) {
        Note(Problem::kMissingEnd);
    }
    in_text_ = !text.whole && end_ != last_end_;
    cut_ = cut_ || (!text.whole && !in_text_);
    return text;
}

void Reader::ReadTimeScale() {
    const CommandText text = ReadText();
    if (!text.whole) {
        return;
    }
    has_time_scale_ = true;
    if (const std::optional<TimeScale> scale = TimeScale::Read(text.text)) {
        result_.time_scale = *scale;
        if (scale->Rounds()) {
            Note(Problem::kRounded, text.text);
        }
    } else {
        Note(Problem::kBadTimeScale, text.text);
    }
}

// Reads a number of elements, or their range.
bool Reader::ReadSize(std::string_view word, Shape& shape) const noexcept {
    if (const std::optional<Range> range = ReadRange(word)) {
        shape.range = range;
        shape.width = range->Length();
        return true;
    }
    const std::optional<std::uint64_t> width = ReadDecimal(word);
    shape.width = width.value_or(0);
    // more digits than fit into a number are too wide, whatever the number is
    return width.has_value() ||
           (!word.empty() && word.find_first_not_of("0123456789") == std::string_view::npos &&
            (shape.width = kMostWidth + 1) != 0);
}

void Reader::ReadVariable() {
    const Byte* const from = at_;
    Shape shape{KindOf(NextWord(at_, end_)), 0, {}};
    const bool has_size = ReadSize(NextWord(at_, end_), shape);
    const std::string_view code_word = NextWord(at_, end_);
    const Code code = ReadCode(reinterpret_cast<const Byte*>(code_word.data()), end_);
    if (!has_size || code_word.empty() || FindCommand(code_word) != nullptr ||
        code_word == "$end") {
        at_ = from;
        if (const CommandText text = ReadText(); text.whole) {
            Note(Problem::kBadVariable, text.text);
        }
        return;
    }
    const CommandText text = ReadText();
    if (!text.whole) {
        if (in_text_) {
            Note(Problem::kBadVariable, text.text);
        }
        return;
    }
    const bool any_range = shape.kind == Kind::kString || shape.width == 0;
    const VariableName name = ReadVariableName(text.text, any_range ? 0 : shape.width);
    const std::string whole = scopes_.Name(name.name.empty() ? code_word : name.name);
    FitRange(shape, name.range, whole);
    if (whole.empty()) {
        Note(Problem::kLongName, name.name);
    } else if (FitsBudget(shape, whole)) {
        AddName(code, shape, whole);
    }
}

// Completes the shape of a variable whose name has this range.
void Reader::FitRange(Shape& shape, const std::optional<Range>& range, std::string_view name) {
    shape.range = range ? range : shape.range;
    if (shape.kind == Kind::kInteger && shape.width > 32) {
        Note(Problem::kWideInteger, name);
    }
    if (shape.kind == Kind::kInteger && (shape.width == 0 || shape.width > 32)) {
        shape.kind = Kind::kBits;
    }
    if (shape.kind == Kind::kString) {
        shape.width = shape.range ? std::min<std::uint64_t>(shape.range->Length(), kMostText) : 0;
        result_.is_open = result_.is_open || !shape.range;
    } else if (shape.kind != Kind::kBits && shape.kind != Kind::kInteger) {
        shape.width = 1;
    } else if (shape.kind == Kind::kBits && !shape.range && shape.width > 1) {
        shape.range = Range{static_cast<std::int32_t>(shape.width - 1), 0};
    }
}

bool Reader::FitsBudget(const Shape& shape, std::string_view name) {
    const std::uint64_t most =
        kFreeElements + kElementsForByte * static_cast<std::uint64_t>(at_ - begin_);
    const std::uint64_t elements = shape.kind == Kind::kString ? kMostText : shape.width;
    if (shape.width > kMostWidth || elements_ + elements > most) {
        Note(Problem::kTooWide, name);
        return false;
    }
    elements_ += elements;
    return true;
}

// Returns the variable of a code with that shape, which is made if necessary; kNone if the code has
// too many shapes.
std::uint32_t Reader::FindVariable(const Code& code, const Shape& shape) {
    const bool is_open = shape.kind == Kind::kString && !shape.range;
    std::uint32_t last = kNone;
    int shapes = 0;
    for (std::uint32_t i = result_.codes.Find(code); i != kNone; i = result_.variables[i].next) {
        Variable& variable = result_.variables[i];
        if (variable.kind == shape.kind &&
            (variable.width == shape.width || shape.kind == Kind::kString)) {
            variable.width = std::max(variable.width, static_cast<std::uint32_t>(shape.width));
            variable.is_open = variable.is_open || is_open;
            return i;
        }
        last = i;
        ++shapes;
    }
    const auto number = static_cast<std::uint32_t>(result_.variables.size());
    if (last == kNone) {
        Code kept = code;
        if (code.length > sizeof code.bytes) {
            kept.at = reinterpret_cast<const Byte*>(texts_.Keep(code.text()).data());
        }
        result_.codes.Set(kept, number);
    } else {
        Note(Problem::kOtherShape, code.text());
        if (shapes == kMostShapes) {
            return kNone;
        }
        result_.variables[last].next = number;
    }
    result_.variables.push_back(
        {shape.kind, static_cast<std::uint32_t>(shape.width), kNone, kNone, is_open});
    return number;
}

void Reader::AddName(const Code& code, const Shape& shape, std::string_view name) {
    const std::uint32_t variable = FindVariable(code, shape);
    if (variable == kNone) {
        return;
    }
    const bool is_text = shape.kind == Kind::kString;
    const bool is_vector = shape.kind == Kind::kBits && (shape.range || shape.width != 1);
    result_.is_open = result_.is_open || shape.kind == Kind::kInteger;
    Range range = shape.range.value_or(Range{static_cast<std::int32_t>(shape.width) - 1, 0});
    if (is_text) {
        range = shape.range.value_or(Range{1, 0});  // its end is found by the survey
    }
    result_.names.push_back({texts_.Keep(name), variable, range, is_text || is_vector});
}

}  // namespace

Declarations ReadDeclarations(const platform::FileContent& content, const Byte* end, Notes& notes,
                              recording::SignalTable& texts) {
    return Reader(content, end, notes, texts).Read();
}

}  // namespace corv::vcd
