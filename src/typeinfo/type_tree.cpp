#include "typeinfo/type_tree.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>

#include "util/saturate.h"

namespace corv::typeinfo {
namespace {

// Counts what a tree will contain, so that its lists are allocated exactly once.
class TreeCounter final : public TypeSink {
public:
    void OnType(const TypeHead&) override { ++nodes; }
    void OnWord(std::string_view) override { ++words; }
    void OnRange(const IndexRange&) override { ++index_ranges; }
    void OnRange(const RealRange&) override { ++real_ranges; }
    void OnField(std::string_view) override {}
    void OnEnd(const char*) override {}

    std::size_t nodes = 0;
    std::size_t words = 0;
    std::size_t index_ranges = 0;
    std::size_t real_ranges = 0;
};

// Fills a tree from a text that TreeCounter has accepted, so its counts can be trusted.
class TreeBuilder final : public TypeSink {
public:
    explicit TreeBuilder(TypeTree& tree) : tree_(tree) { tree_.nodes.resize(1); }

    void OnType(const TypeHead& head) override;
    void OnWord(std::string_view literal) override { tree_.words.push_back(SliceOf(literal)); }
    void OnRange(const IndexRange& range) override;
    void OnRange(const RealRange& range) override { tree_.real_ranges.push_back(range); }
    void OnField(std::string_view name) override {
        tree_.nodes[Innermost().next_child].label = SliceOf(name);
    }
    void OnEnd(const char* end) override {
        Slice& text = tree_.nodes[Innermost().node].text;
        text.length = Place(end) - text.begin;
        --level_;
    }

private:
    // A type that has begun, and the node for its next element or field.
    struct Open {
        std::uint32_t node;
        std::uint32_t next_child;
    };

    Open& Innermost() noexcept { return open_[level_ - 1]; }
    std::uint32_t Place(const char* at) const noexcept {
        return static_cast<std::uint32_t>(at - tree_.text.data());
    }
    Slice SliceOf(std::string_view part) const noexcept {
        return {Place(part.data()), static_cast<std::uint32_t>(part.size())};
    }
    std::uint32_t FirstOf(const TypeHead& head) const noexcept;
    // Makes nodes for an array's element or a record's fields and returns the first. All fields of
    // a record are next to each other, so that asking for one is an index computation.
    std::uint32_t AddChildren(const TypeHead& head);

    TypeTree& tree_;
    std::array<Open, kMaxNesting> open_{};
    std::size_t level_ = 0;
};

void TreeBuilder::OnType(const TypeHead& head) {
    const std::uint32_t at = level_ == 0 ? 0 : Innermost().next_child++;
    const std::uint32_t children = AddChildren(head);
    TypeNode& node = tree_.nodes[at];
    node.text.begin = Place(head.begin);
    node.name = SliceOf(head.name);
    node.count = head.count;
    node.first = FirstOf(head);
    node.children = children;
    node.elements = head.kind == KTypeInfo::KindArray ? 1 : 0;
    node.kind = head.kind;
    node.words = head.words;
    open_[level_++] = {at, children};
}

void TreeBuilder::OnRange(const IndexRange& range) {
    tree_.index_ranges.push_back(range);
    const std::int64_t span = std::int64_t{range.right} - range.left;
    std::int64_t& elements = tree_.nodes[Innermost().node].elements;
    elements = util::SaturatingMultiply(elements, (span < 0 ? -span : span) + 1);
}

std::uint32_t TreeBuilder::FirstOf(const TypeHead& head) const noexcept {
    switch (head.kind) {
        case KTypeInfo::KindEnum:
            return head.words ? static_cast<std::uint32_t>(tree_.words.size())
                              : Place(head.characters.data());
        case KTypeInfo::KindFloat:
            return static_cast<std::uint32_t>(tree_.real_ranges.size());
        default:
            return static_cast<std::uint32_t>(tree_.index_ranges.size());
    }
}

std::uint32_t TreeBuilder::AddChildren(const TypeHead& head) {
    const std::size_t first = tree_.nodes.size();
    const std::size_t children = head.kind == KTypeInfo::KindArray    ? 1
                                 : head.kind == KTypeInfo::KindRecord ? head.count
                                                                      : 0;
    tree_.nodes.resize(first + children);
    return static_cast<std::uint32_t>(first);
}

}  // namespace

bool IsTypeText(std::string_view text) {
    TreeCounter counter;
    return ReadTypeText(text, counter);
}

std::unique_ptr<TypeTree> ReadTree(std::string_view text) {
    TreeCounter counter;
    if (!ReadTypeText(text, counter)) {
        return nullptr;
    }
    auto tree = std::make_unique<TypeTree>();
    tree->text = text;
    tree->nodes.reserve(counter.nodes);
    tree->words.reserve(counter.words);
    tree->index_ranges.reserve(counter.index_ranges);
    tree->real_ranges.reserve(counter.real_ranges);
    TreeBuilder builder(*tree);
    ReadTypeText(text, builder);
    return tree;
}

std::string_view TypeView::Body() const noexcept {
    // a counted name ends exactly after its characters, an uncounted one with a blank
    const bool counted = tree_.text[node_.name.begin - 1] == '#';
    const std::uint32_t begin = node_.name.begin + node_.name.length + (counted ? 0 : 1);
    return tree_.Text({begin, node_.text.begin + node_.text.length - begin});
}

std::uint32_t TypeView::SimpleSize() const noexcept {
    if (!IsSimple()) {
        return 0;
    }
    constexpr std::int64_t kMost = std::numeric_limits<std::int32_t>::max();
    const std::int64_t size =
        IsScalar() ? ScalarSize()
                   : util::SaturatingMultiply(ElementCount(), std::int64_t{Element().ScalarSize()});
    return static_cast<std::uint32_t>(std::min(size, kMost));
}

std::optional<char> TypeView::Character(std::uint32_t position) const noexcept {
    const std::string_view literal = Literal(position);
    if (!node_.words) {
        return literal[0];
    }
    return literal[0] == '\'' ? std::optional(literal[1]) : std::nullopt;
}

}  // namespace corv::typeinfo
