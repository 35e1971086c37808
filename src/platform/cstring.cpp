#include "corv/platform/cstring.h"

#include <algorithm>
#include <cinttypes>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "platform/ascii.h"
#include "platform/guard.h"
#include "platform/string_table.h"

namespace {

// "%I64" is a length modifier of one platform only; it is replaced by the one that printf uses
// here.
std::string TranslateFormat(std::string_view format) {
    constexpr std::string_view kModifier = "I64";
    constexpr std::string_view kHere(PRId64, sizeof PRId64 - 2);
    std::string out;
    out.reserve(format.size());
    for (std::size_t i = 0; i < format.size(); ++i) {
        out += format[i];
        if (format[i] != '%') {
            continue;
        }
        // flags, width and precision come between "%" and the modifier
        const std::size_t end =
            std::min(format.find_first_not_of("-+ #0123456789.*", i + 1), format.size());
        out += format.substr(i + 1, end - i - 1);
        i = end - 1;
        if (format.substr(end).starts_with(kModifier)) {
            out += kHere;
            i += kModifier.size();
        } else if (end < format.size()) {
            out += format[++i];
        }
    }
    return out;
}

// Formats twice: first to get the length, then into the text. Returns false if the format cannot be
// used.
bool FormatInto(std::string& out, const char* format, std::va_list args) {
    std::va_list again;
    va_copy(again, args);
    const int length = std::vsnprintf(nullptr, 0, format, again);
    va_end(again);
    if (length < 0) {
        return false;
    }
    out.resize(static_cast<std::size_t>(length));
    std::vsnprintf(out.data(), out.size() + 1, format, args);
    return true;
}

using corv::platform::IsSpace;

// Converts a position or count of the interface to one of the text, limited to 0 and the text's
// length.
std::size_t Cut(int position, std::size_t length) noexcept {
    return position < 0 ? 0 : std::min(static_cast<std::size_t>(position), length);
}

// npos and positions beyond the range of int become -1.
int AsInt(std::size_t position) noexcept {
    return position > static_cast<std::size_t>(INT_MAX) ? -1 : static_cast<int>(position);
}

}  // namespace

int CString::GetLength() const noexcept {
    return static_cast<int>(std::min(text_.size(), static_cast<std::size_t>(INT_MAX)));
}

void CString::SetAt(int index, char c) noexcept {
    if (index >= 0 && static_cast<std::size_t>(index) < text_.size()) {
        text_[static_cast<std::size_t>(index)] = c;
    }
}

int CString::Find(const char* text, int start) const noexcept {
    return start < 0 ? -1 : AsInt(text_.find(text ? text : "", static_cast<std::size_t>(start)));
}

int CString::Find(char c, int start) const noexcept {
    return start < 0 ? -1 : AsInt(text_.find(c, static_cast<std::size_t>(start)));
}

CString CString::Left(int count) const {
    return Mid(0, count);
}

CString CString::Right(int count) const {
    return CString(View().substr(text_.size() - Cut(count, text_.size())));
}

CString CString::Mid(int first) const {
    return CString(View().substr(Cut(first, text_.size())));
}

CString CString::Mid(int first, int count) const {
    return CString(View().substr(Cut(first, text_.size()), Cut(count, text_.size())));
}

void CString::TrimLeft() noexcept {
    text_.erase(text_.begin(), std::find_if_not(text_.begin(), text_.end(), IsSpace));
}

void CString::TrimRight() noexcept {
    text_.erase(std::find_if_not(text_.rbegin(), text_.rend(), IsSpace).base(), text_.end());
}

void CString::MakeLower() noexcept {
    std::transform(text_.begin(), text_.end(), text_.begin(), corv::platform::Lower);
}

void CString::MakeUpper() noexcept {
    std::transform(text_.begin(), text_.end(), text_.begin(), corv::platform::Upper);
}

int CString::Compare(const char* text) const noexcept {
    return text_.compare(text ? text : "");
}

int CString::CompareNoCase(const char* text) const noexcept {
    const std::string_view other(text ? text : "");
    const auto [a, b] = std::mismatch(
        text_.begin(), text_.end(), other.begin(), other.end(),
        [](char x, char y) { return corv::platform::Lower(x) == corv::platform::Lower(y); });
    const int left = a == text_.end() ? -1 : static_cast<unsigned char>(corv::platform::Lower(*a));
    const int right = b == other.end() ? -1 : static_cast<unsigned char>(corv::platform::Lower(*b));
    return left - right;
}

// The text is lengthened with zeros, so the default of ReleaseBuffer finds its old end.
char* CString::GetBuffer(int min_length) {
    text_.resize(std::max(text_.size(), Cut(min_length, INT_MAX)));
    return text_.data();
}

void CString::ReleaseBuffer(int new_length) noexcept {
    const std::size_t end =
        new_length < 0 ? text_.find('\0') : static_cast<std::size_t>(new_length);
    text_.erase(std::min(end, text_.size()));
}

void CString::Format(const char* format, ...) noexcept {
    std::string out;  // apart, since the arguments may refer to this object's own text
    std::va_list args;
    va_start(args, format);
    const bool formatted = corv::platform::Guarded(
        false, [&] { return format && FormatInto(out, TranslateFormat(format).c_str(), args); });
    va_end(args);
    if (!formatted) {
        out.clear();
    }
    text_ = std::move(out);
}

bool CString::LoadString(unsigned id) noexcept {
    text_.clear();
    const char* entry = corv::platform::FindString(id);
    return entry && corv::platform::Done([&] { text_ = entry; });
}
