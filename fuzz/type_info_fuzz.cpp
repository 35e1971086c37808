// Any text as a type. Its first line is read as a type-description string, the rest as the text of
// a value; the whole as VHDL. What was read must write and read back as itself.

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "corv/corv.h"

namespace {

void Require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

CString Text(const std::string& text) {
    return CString(std::string_view(text));
}

// The texts of elements and fields are types themselves. Wide types are asked in part.
void Walk(const KTypeInfo& type, int& budget) {
    if (--budget < 0) {
        return;
    }
    Require(type.GetKind() != KTypeInfo::KindNone);
    Require(KTypeInfo::CheckTypeInfo(type.GetTypeInfoString()));
    Require(type.IsSimple() == (type.GetSimpleSize() > 0));
    for (int i = -1; i <= std::min(type.GetNbOfFields(), 50); ++i) {
        const KTypeInfo& field = type.GetFieldKTypeInfo(i);
        Require(field.GetTypeInfoString() == type.GetFieldTypeInfo(i));
        if (i >= 0 && i < type.GetNbOfFields()) {
            Require(!type.GetFieldName(i).IsEmpty());
            Walk(field, budget);
        }
    }
    for (int i = -1; i <= std::min(type.GetNbOfDimensions(), 50); ++i) {
        int left = 0;
        int right = 0;
        KTypeInfo::EDirection direction{};
        type.GetArrayDimensionRanges(i, left, right, direction);
    }
    if (type.GetKind() == KTypeInfo::KindArray) {
        Require(type.GetNbOfElements() > 0);
        Walk(type.GetArrayElementKTypeInfo(), budget);
    }
    Require(type.GetValue(type.GetNbOfValues()).IsEmpty());
}

// A value that was read is written; what is written is read again and written alike. Literals that
// stand twice have one position only when they are read.
void ReadAndWrite(const KTypeInfo& type, const CString& text) {
    constexpr int kLargest = 1 << 16;
    const int size = type.GetSimpleSize();
    if (size == 0 || size > kLargest) {
        return;
    }
    std::vector<unsigned char> bytes(static_cast<std::size_t>(size), 0xA5);
    std::vector<unsigned char> again = bytes;
    if (!type.GetBytes(text, bytes.data(), size, 2, 0)) {
        Require(bytes == again);
        type.GetValueString(bytes.data(), 16, 2, -1);
        return;
    }
    for (const int radix : {2, 10, 16}) {
        for (const unsigned option : {0U, 2U}) {
            const CString written = type.GetValueString(bytes.data(), radix, option, -1);
            Require(!written.IsEmpty());
            Require(type.GetBytes(written, again.data(), size, 2, 0));
            Require(type.GetValueString(again.data(), radix, option, -1) == written);
        }
    }
}

void ReadVhdl(const std::string& text) {
    CString type;
    CString written;
    CString again;
    corv::Problem problem{0, 0, ""};
    if (!corv::TypeFromVhdl(text.c_str(), type, &problem)) {
        Require(!problem.sentence.empty());
        Require(problem.position + problem.length <= std::strlen(text.c_str()));
        return;
    }
    Require(KTypeInfo::CheckTypeInfo(type));
    Require(corv::TypeToVhdl(type, written));
    Require(corv::TypeFromVhdl(written, again));
    Require(again == type);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const std::size_t line = std::min(text.find('\n'), text.size());
    const CString description = Text(text.substr(0, line));
    const KTypeInfo type(description);
    const bool valid = KTypeInfo::CheckTypeInfo(description);
    Require(valid == (type.GetKind() != KTypeInfo::KindNone));
    if (valid) {
        int budget = 300;
        Walk(type, budget);
        ReadAndWrite(type, Text(text.substr(std::min(line + 1, text.size()))));
        CString vhdl;
        CString again;
        if (corv::TypeToVhdl(description, vhdl)) {
            Require(corv::TypeFromVhdl(vhdl, again));
            Require(corv::TypeToVhdl(again, vhdl));
        }
    }
    ReadVhdl(text);
    return 0;
}
