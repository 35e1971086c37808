#pragma once

#include <compare>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include "corv/platform/export.h"

// An owned, zero-terminated 8-bit text: the text type of the exported signatures.
//
// Lengths and positions count bytes. A null `const char*` is an empty text everywhere. Positions
// and counts outside the text are limited to it; reading outside returns 0, writing outside does
// nothing. Letters are the 26 ASCII ones, whatever the locale. If out of memory, the operations
// that make a text longer throw std::bad_alloc, as std::string does; Format and LoadString do not.
class CORV_API CString {
public:
    CString() noexcept = default;
    CString(const char* text) : text_(text ? text : "") {}  // NOLINT(google-explicit-constructor)
    CString(char c, int n) : text_(n > 0 ? static_cast<std::size_t>(n) : 0, c) {}
    explicit CString(std::string_view text) : text_(text) {}
    explicit CString(std::string&& text) noexcept : text_(std::move(text)) {}

    CString& operator=(const char* text) {
        text_ = text ? text : "";
        return *this;
    }
    CString& operator=(char c) {
        if (text_.size() == 1) {
            text_[0] = c;  // the usual case in a loop over one-character values
        } else {
            text_.assign(1, c);
        }
        return *this;
    }

    // The text, zero-terminated; the pointer is valid until this object changes.
    operator const char*() const noexcept { return text_.c_str(); }  // NOLINT
    std::string_view View() const noexcept { return text_; }

    // The number of bytes before the terminating zero, at most 2147483647.
    int GetLength() const noexcept;
    bool IsEmpty() const noexcept { return text_.empty(); }
    void Empty() noexcept { text_.clear(); }

    // The byte at a position, 0 outside the text.
    char GetAt(int index) const noexcept {
        return index >= 0 && static_cast<std::size_t>(index) < text_.size()
                   ? text_[static_cast<std::size_t>(index)]
                   : '\0';
    }
    char operator[](int index) const noexcept { return GetAt(index); }
    // Replaces the byte at a position; does nothing outside the text.
    void SetAt(int index, char c) noexcept;

    // Returns the position of the first occurrence at or after `start`, -1 if there is none or
    // `start` is outside.
    int Find(const char* text, int start = 0) const noexcept;
    int Find(char c, int start = 0) const noexcept;

    // Return copies: the first `count` bytes, the last `count` bytes, everything from `first` on,
    // and `count` bytes from `first` on.
    CString Left(int count) const;
    CString Right(int count) const;
    CString Mid(int first) const;
    CString Mid(int first, int count) const;

    // Remove white space (space, \t \n \v \f \r) from one end, in place.
    void TrimLeft() noexcept;
    void TrimRight() noexcept;
    void MakeLower() noexcept;
    void MakeUpper() noexcept;

    // Return a number below 0, 0, or a number above 0; bytes are compared as unsigned.
    // CompareNoCase treats A to Z as a to z.
    int Compare(const char* text) const noexcept;
    int CompareNoCase(const char* text) const noexcept;

    // Replaces the text by a printf-style formatted one; the arguments may use the text itself.
    // `%I64i`, `%I64d`, `%I64u`, `%I64x` and `%I64X` take 64-bit integers on every platform. If out
    // of memory, or if the format cannot be used, the text becomes empty.
    void Format(const char* format, ...) noexcept;

    // Replaces the text by an entry of the library's string table. Returns false, with the text
    // empty, if there is no such entry or no memory.
    bool LoadString(unsigned id) noexcept;

    // GetBuffer returns a buffer with room for at least `min_length` characters and a terminating
    // zero, which contains the text. It may be written to until ReleaseBuffer sets the new length;
    // -1 means up to the first zero.
    char* GetBuffer(int min_length);
    void ReleaseBuffer(int new_length = -1) noexcept;

    CString& operator+=(const CString& text) {
        text_ += text.text_;
        return *this;
    }
    CString& operator+=(const char* text) {
        text_ += text ? text : "";
        return *this;
    }
    CString& operator+=(char c) {
        text_ += c;
        return *this;
    }
    CString& operator+=(std::string_view text) {
        text_ += text;
        return *this;
    }

    friend CString operator+(CString a, const CString& b) { return std::move(a += b); }
    friend CString operator+(CString a, const char* b) { return std::move(a += b); }
    friend CString operator+(CString a, char b) { return std::move(a += b); }
    friend CString operator+(const char* a, const CString& b) { return std::move(CString(a) += b); }
    friend CString operator+(char a, const CString& b) { return std::move(CString(a, 1) += b); }

    friend bool operator==(const CString& a, const CString& b) noexcept {
        return a.text_ == b.text_;
    }
    friend bool operator==(const CString& a, const char* b) noexcept {
        return a.text_ == (b ? b : "");
    }
    friend std::strong_ordering operator<=>(const CString& a, const CString& b) noexcept {
        return a.Compare(b) <=> 0;
    }
    friend std::strong_ordering operator<=>(const CString& a, const char* b) noexcept {
        return a.Compare(b) <=> 0;
    }

private:
    std::string text_;
};
