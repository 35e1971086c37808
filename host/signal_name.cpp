#include "host/signal_name.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

#include "corv/signals/hierarchy_separator.h"
#include "corv/typeinfo/type_builders.h"
#include "corv/typeinfo/type_info.h"
#include "corv/util/extended_id.h"

namespace corv::host {
namespace {

constexpr std::size_t kLongestName = 4096;

char Lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// Of the escaped name that begins a level.
std::size_t ExtendedLength(std::string_view rest, bool level_start) {
    return level_start ? EscapedNameLength(rest, HierarchySeparator()) : 0;
}

bool IsSeparator(char c) {
    return c == '.' || c == '/' || c == HierarchySeparator();
}

std::string Normal(std::string_view name, bool lower) {
    std::string out;
    while (!name.empty() && IsSeparator(name[0]) && ExtendedLength(name, true) == 0) {
        name.remove_prefix(1);
    }
    bool level_start = true;
    while (!name.empty()) {
        if (const std::size_t length = ExtendedLength(name, level_start)) {
            out += name.substr(0, length);
            name.remove_prefix(length);
            level_start = false;
            continue;
        }
        const char c = name[0];
        name.remove_prefix(1);
        level_start = IsSeparator(c);
        out += level_start ? '.' : c == '[' ? '(' : c == ']' ? ')' : lower ? Lower(c) : c;
    }
    return out;
}

std::string FullName(ISignal& signal) {
    std::array<char, kLongestName> name{};
    return SUCCEEDED(signal.GetFullName(name.data(), name.size())) ? name.data() : "";
}

// Calls an action with each signal, members below their composite, until it gives false.
template <class Action>
bool Walk(ISignalContainer& signals, Action& action) {
    ISignal* signal = nullptr;
    for (std::uint32_t i = 0; SUCCEEDED(signals.GetAt(i, &signal)); ++i) {
        if (!action(*signal)) {
            return false;
        }
        if (ISignalContainer* const members = signal->GetSubSignals()) {
            if (!Walk(*members, action)) {
                return false;
            }
        }
    }
    return true;
}

// "a(7 downto 4)" as its parts.
struct SliceName {
    std::string base;
    int left = 0;
    int right = 0;
};

std::optional<int> Number(std::string_view text) {
    while (text.starts_with(' ')) {
        text.remove_prefix(1);
    }
    while (text.ends_with(' ')) {
        text.remove_suffix(1);
    }
    int number = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
    return read.ec == std::errc() && read.ptr == text.data() + text.size() && !text.empty()
               ? std::optional(number)
               : std::nullopt;
}

std::optional<SliceName> ReadSlice(std::string_view plain) {
    const std::size_t open = plain.rfind('(');
    if (!plain.ends_with(')') || open == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view inside = plain.substr(open + 1, plain.size() - open - 2);
    for (const std::string_view between : {":", " downto ", " to "}) {
        const std::size_t at = inside.find(between);
        if (at == std::string_view::npos) {
            continue;
        }
        const auto left = Number(inside.substr(0, at));
        const auto right = Number(inside.substr(at + between.size()));
        return left && right
                   ? std::optional(SliceName{std::string(plain.substr(0, open)), *left, *right})
                   : std::nullopt;
    }
    return std::nullopt;
}

// A signal of some elements of an array, which has their waves.
frame::ComPtr<ISignal> MakeSlice(ISignal& array, const SliceName& slice) {
    const KTypeInfo type{CString(array.GetTypeInfo())};
    const TArrayRange range{slice.left, slice.right};
    CString base = type.GetTypeIdentifier();
    base = base.Left(std::max(base.Find('('), 0));
    std::array<char, 2048> text{};
    std::uint32_t size = text.size();
    frame::ComPtr<ISignal> made;
    if (type.GetNbOfDimensions() != 1 ||
        FAILED(CreateArrayTypeInfo(base, &range, 1, type.GetArrayElementTypeInfo(), text.data(),
                                   &size)) ||
        FAILED(CreateSignal(text.data(), nullptr, made.Out()))) {
        return {};
    }
    ISignal* element = nullptr;
    for (std::uint32_t i = 0; SUCCEEDED(made->GetSubSignals()->GetAt(i, &element)); ++i) {
        ISignal* original = nullptr;
        if (FAILED(array.GetSubSignals()->FindSignal(element->GetName(), &original)) ||
            FAILED(element->SetWave(original->GetWave()))) {
            return {};
        }
        element->SetHandle(original->GetHandle());
    }
    return made;
}

ISignal* FindPlain(ISignalContainer& signals, std::string_view plain) {
    ISignal* found = nullptr;
    auto look = [&](ISignal& signal) {
        if (PlainName(FullName(signal)) == plain) {
            found = &signal;
        }
        return found == nullptr;
    };
    Walk(signals, look);
    return found;
}

}  // namespace

std::string PlainName(std::string_view name) {
    return Normal(name, true);
}
std::string ShownName(std::string_view name) {
    return Normal(name, false);
}

bool FitsGlob(std::string_view name, std::string_view pattern) {
    if (pattern.empty()) {
        return name.empty();
    }
    if (pattern[0] != '*') {
        return !name.empty() && name[0] == pattern[0] &&
               FitsGlob(name.substr(1), pattern.substr(1));
    }
    const bool across = pattern.starts_with("**");
    const std::string_view rest = pattern.substr(across ? 2 : 1);
    for (std::size_t taken = 0;; ++taken) {
        if (FitsGlob(name.substr(taken), rest)) {
            return true;
        }
        if (taken == name.size() || (!across && (name[taken] == '.' || name[taken] == '('))) {
            return false;
        }
    }
}

std::vector<NamedSignal> SelectSignals(ISignalContainer& signals, const std::string& pattern) {
    const std::string plain = PlainName(pattern);
    std::vector<NamedSignal> selected;
    if (plain.find('*') != std::string::npos) {
        auto take = [&](ISignal& signal) {
            const std::string name = FullName(signal);
            if (FitsGlob(PlainName(name), plain)) {
                selected.push_back({ShownName(name), &signal, {}});
            }
            return true;
        };
        Walk(signals, take);
        return selected;
    }
    if (ISignal* const found = FindPlain(signals, plain)) {
        selected.push_back({ShownName(FullName(*found)), found, {}});
        return selected;
    }
    const auto slice = ReadSlice(plain);
    ISignal* const array = slice ? FindPlain(signals, slice->base) : nullptr;
    if (array != nullptr && array->GetSubSignals() != nullptr) {
        if (auto made = MakeSlice(*array, *slice)) {
            ISignal* const signal = made.get();
            selected.push_back({ShownName(pattern), signal, std::move(made)});
        }
    }
    return selected;
}

std::vector<std::string> AllNames(ISignalContainer& signals, std::size_t most) {
    std::vector<std::string> names;
    auto take = [&](ISignal& signal) {
        names.push_back(ShownName(FullName(signal)));
        return names.size() < most;
    };
    Walk(signals, take);
    return names;
}

}  // namespace corv::host
