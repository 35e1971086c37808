#include "corv/typeinfo/type_info.h"

#include <limits>

#include "platform/guard.h"
#include "typeinfo/type_tree.h"
#include "typeinfo/value_text.h"

using corv::platform::Guarded;
using corv::typeinfo::TypeView;

namespace {

// A value of the largest size may in truth be larger still; none is read or written.
bool HasStorableSize(const KTypeInfo& type) noexcept {
    return type.GetSimpleSize() < std::numeric_limits<int>::max();
}

// Whether an index of the interface is one of `count`.
bool IsIndex(int index, std::uint32_t count) noexcept {
    return index >= 0 && static_cast<std::uint32_t>(index) < count;
}

CString CopyOf(std::string_view text) noexcept {
    return Guarded(CString(), [&] { return CString(text); });
}

}  // namespace

KTypeInfo::KTypeInfo() noexcept = default;

KTypeInfo::KTypeInfo(const CString& text) noexcept {
    corv::platform::Done([&] {
        text_ = std::make_unique<CString>(text);
        Read();
    });
}

KTypeInfo::~KTypeInfo() = default;

// Elements and fields are KTypeInfo objects of their own, made once here, all in one array: hosts
// ask for them in inner loops and may keep references to them.
void KTypeInfo::Read() {
    auto tree = corv::typeinfo::ReadTree(text_->View());
    if (!tree) {
        return;
    }
    const std::size_t faces = tree->nodes.size() - 1;
    tree->faces.reset(new KTypeInfo[faces]);
    for (std::size_t i = 0; i < faces; ++i) {
        tree->faces[i].tree_ = tree.get();
        tree->faces[i].node_ = &tree->nodes[i + 1];
    }
    tree_ = tree.get();
    node_ = tree->nodes.data();
    owned_ = std::move(tree);
}

const KTypeInfo& KTypeInfo::Invalid() noexcept {
    static const KTypeInfo invalid;
    return invalid;
}

bool KTypeInfo::CheckTypeInfo(const CString& text) noexcept {
    return Guarded(false, [&] { return corv::typeinfo::IsTypeText(text.View()); });
}

// The string of an element or field is made at the first question, since most are never asked for
// theirs.
const CString& KTypeInfo::GetTypeInfoString() const noexcept {
    static const CString empty;
    if (!text_ && node_) {
        corv::platform::Done([&] { text_ = std::make_unique<CString>(tree_->Text(node_->text)); });
    }
    return text_ ? *text_ : empty;
}

KTypeInfo::EKind KTypeInfo::GetKind() const noexcept {
    return node_ ? node_->kind : KindNone;
}

CString KTypeInfo::GetTypeIdentifier() const noexcept {
    return node_ ? CopyOf(tree_->Text(node_->name)) : CString();
}

bool KTypeInfo::IsScalar() const noexcept {
    return node_ && TypeView(*tree_, *node_).IsScalar();
}

bool KTypeInfo::IsSimple() const noexcept {
    return node_ && TypeView(*tree_, *node_).IsSimple();
}

int KTypeInfo::GetScalarSize() const noexcept {
    return node_ ? static_cast<int>(TypeView(*tree_, *node_).ScalarSize()) : 0;
}

int KTypeInfo::GetSimpleSize() const noexcept {
    return node_ ? static_cast<int>(TypeView(*tree_, *node_).SimpleSize()) : 0;
}

std::int64_t KTypeInfo::GetNbOfElements() const noexcept {
    return node_ ? TypeView(*tree_, *node_).ElementCount() : 0;
}

int KTypeInfo::GetNbOfDimensions() const noexcept {
    return GetKind() == KindArray ? static_cast<int>(node_->count) : 0;
}

void KTypeInfo::GetArrayDimensionRanges(int dimension, int& left, int& right,
                                        EDirection& direction) const noexcept {
    corv::typeinfo::IndexRange range;
    if (GetKind() == KindArray && IsIndex(dimension, node_->count)) {
        range = TypeView(*tree_, *node_).RangeAt(static_cast<std::uint32_t>(dimension));
    }
    left = range.left;
    right = range.right;
    direction = range.direction;
}

CString KTypeInfo::GetArrayElementTypeInfo() const noexcept {
    const KTypeInfo& element = GetArrayElementKTypeInfo();
    return element.node_ ? CopyOf(tree_->Text(element.node_->text)) : CString();
}

const KTypeInfo& KTypeInfo::GetArrayElementKTypeInfo() const noexcept {
    return GetKind() == KindArray ? tree_->faces[node_->children - 1] : Invalid();
}

int KTypeInfo::GetNbOfFields() const noexcept {
    return GetKind() == KindRecord ? static_cast<int>(node_->count) : 0;
}

CString KTypeInfo::GetFieldName(int field) const noexcept {
    const KTypeInfo& type = GetFieldKTypeInfo(field);
    return type.node_ ? CopyOf(tree_->Text(type.node_->label)) : CString();
}

CString KTypeInfo::GetFieldTypeInfo(int field) const noexcept {
    const KTypeInfo& type = GetFieldKTypeInfo(field);
    return type.node_ ? CopyOf(tree_->Text(type.node_->text)) : CString();
}

const KTypeInfo& KTypeInfo::GetFieldKTypeInfo(int field) const noexcept {
    return GetKind() == KindRecord && IsIndex(field, node_->count)
               ? tree_->faces[node_->children + static_cast<std::uint32_t>(field) - 1]
               : Invalid();
}

int KTypeInfo::GetNbOfValues() const noexcept {
    return GetKind() == KindEnum ? static_cast<int>(node_->count) : 0;
}

CString KTypeInfo::GetValue(int position, bool as_vhdl) const noexcept {
    if (GetKind() != KindEnum || !IsIndex(position, node_->count)) {
        return {};
    }
    const TypeView type(*tree_, *node_);
    const auto index = static_cast<std::uint32_t>(position);
    if (!as_vhdl) {
        return CopyOf(type.Literal(index));
    }
    return Guarded(CString(), [&] {
        std::string text;
        corv::typeinfo::AppendScalar(text, type, index, {.quoted = true});
        return CString(std::move(text));
    });
}

bool KTypeInfo::GetBytes(const CString& text, unsigned char* target, int size, int,
                         unsigned int) const noexcept {
    return node_ && target && size >= GetSimpleSize() && HasStorableSize(*this) &&
           corv::typeinfo::ReadValue(TypeView(*tree_, *node_), text.View(), target);
}

CString KTypeInfo::GetValueString(const unsigned char* bytes, int radix, unsigned int option,
                                  int) const noexcept {
    constexpr unsigned int kQuoted = 2;
    return Guarded(CString(), [&] {
        std::string text;
        if (node_ && bytes && HasStorableSize(*this)) {
            corv::typeinfo::AppendValue(text, TypeView(*tree_, *node_), bytes,
                                        {radix, (option & kQuoted) != 0});
        }
        return CString(std::move(text));
    });
}
