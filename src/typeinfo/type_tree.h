#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "corv/typeinfo/type_info.h"
#include "typeinfo/type_text.h"

namespace corv::typeinfo {

// A part of the text of a tree.
struct Slice {
    std::uint32_t begin = 0;
    std::uint32_t length = 0;
};

// One type. Its literals, ranges, element or fields are in the lists of the tree; `first` and
// `children` are indices into these.
struct TypeNode {
    Slice text;
    Slice name;
    Slice label;                 // the field's name, in the node of a field
    std::int64_t elements = 0;   // of an array, saturated at the end of 64 bits
    std::uint32_t count = 0;     // literals, dimensions or fields
    std::uint32_t first = 0;     // literal: in the text (characters) or in `words`; range
    std::uint32_t children = 0;  // the element's node, or the first of the fields' nodes
    KTypeInfo::EKind kind = KTypeInfo::KindNone;
    bool words = false;
};

// A type-description string that has been read. The first node is the whole type. The lists are
// allocated in the sizes that the text really needs, never in those that it claims.
struct TypeTree {
    std::string_view text;
    std::vector<TypeNode> nodes;
    std::vector<Slice> words;
    std::vector<IndexRange> index_ranges;  // of arrays and integers
    std::vector<RealRange> real_ranges;
    std::unique_ptr<KTypeInfo[]> faces;  // what hosts see of all nodes but the first

    std::string_view Text(Slice slice) const noexcept {
        return {text.data() + slice.begin, slice.length};
    }
};

// Returns whether the text is one type.
bool IsTypeText(std::string_view text);
// Returns the tree of a text, which must outlive it; null if the text is not one type. It has no
// faces.
std::unique_ptr<TypeTree> ReadTree(std::string_view text);

// One type of a tree, with the questions that can be asked about it.
class TypeView {
public:
    explicit TypeView(const TypeTree& tree) noexcept : TypeView(tree, tree.nodes[0]) {}
    TypeView(const TypeTree& tree, const TypeNode& node) noexcept : tree_(tree), node_(node) {}

    KTypeInfo::EKind Kind() const noexcept { return node_.kind; }
    bool IsScalar() const noexcept {
        return node_.kind >= KTypeInfo::KindEnum && node_.kind <= KTypeInfo::KindFloat;
    }
    bool IsSimple() const noexcept {
        return IsScalar() || (node_.kind == KTypeInfo::KindArray && Element().IsScalar());
    }
    std::string_view Name() const noexcept { return tree_.Text(node_.name); }
    // The part after the name.
    std::string_view Body() const noexcept;
    // The number of literals, dimensions or fields.
    std::uint32_t Count() const noexcept { return node_.count; }

    // The bytes of a scalar; 0 for other types.
    std::uint32_t ScalarSize() const noexcept;
    // Elements of an array, saturated at the end of 64 bits.
    std::int64_t ElementCount() const noexcept { return node_.elements; }
    // The bytes of a value of a simple type, at most 2147483647; 0 for other types.
    std::uint32_t SimpleSize() const noexcept;

    // The range of an integer type, or of an array's dimension.
    const IndexRange& RangeAt(std::uint32_t dimension) const noexcept {
        return tree_.index_ranges[node_.first + dimension];
    }
    const RealRange& FloatRange() const noexcept { return tree_.real_ranges[node_.first]; }

    // A literal as in the list, and the character of a one-character literal: one of a character
    // list, or the one after an apostrophe.
    std::string_view Literal(std::uint32_t position) const noexcept {
        return node_.words ? tree_.Text(tree_.words[node_.first + position])
                           : tree_.Text({node_.first + position, 1});
    }
    std::optional<char> Character(std::uint32_t position) const noexcept;
    bool HasWords() const noexcept { return node_.words; }
    // The literals of a character list.
    std::string_view Characters() const noexcept { return tree_.Text({node_.first, node_.count}); }

    TypeView Element() const noexcept { return {tree_, tree_.nodes[node_.children]}; }
    TypeView Field(std::uint32_t field) const noexcept {
        return {tree_, tree_.nodes[node_.children + field]};
    }
    std::string_view FieldName(std::uint32_t field) const noexcept {
        return tree_.Text(tree_.nodes[node_.children + field].label);
    }

private:
    const TypeTree& tree_;
    const TypeNode& node_;
};

inline std::uint32_t TypeView::ScalarSize() const noexcept {
    switch (node_.kind) {
        case KTypeInfo::KindEnum:
            return node_.count <= 256 ? 1 : node_.count <= 65536 ? 2 : 4;
        case KTypeInfo::KindInteger:
            return 4;
        case KTypeInfo::KindFloat:
            return 8;
        default:
            return 0;
    }
}

}  // namespace corv::typeinfo
