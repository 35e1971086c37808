// Finds signals by the names that users type: in either letter case, with either kind of brackets,
// with wildcards, and with slices of vectors.

#include "host/signal_name.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "corv/typeinfo/type_builders.h"
#include "corv/typeinfo/type_info.h"
#include "host/name_pattern.h"
#include "host/name_symbols.h"
#include "host/signal_trace.h"

namespace corv::host {
namespace {

constexpr std::size_t kUsualName = 512;         // most names are shorter
constexpr std::size_t kLongestName = 1U << 24;  // nothing reads longer ones

std::string Normal(std::string_view name, bool lower) {
    std::string out;
    ForEachSymbol(WithoutLeadingSeparators(name), true,
                  [&](char c, bool extended) { out += lower && !extended ? LowerCase(c) : c; });
    return out;
}

std::string FullName(ISignal& signal) {
    std::array<char, kUsualName> name;
    if (SUCCEEDED(signal.GetFullName(name.data(), name.size()))) {
        return name.data();
    }
    // GetFullName does not say how long a name is, so larger and larger buffers are tried.
    for (std::size_t size = kUsualName * 8; size <= kLongestName; size *= 8) {
        std::string longer(size, '\0');
        if (SUCCEEDED(signal.GetFullName(longer.data(), static_cast<std::uint32_t>(size)))) {
            longer.resize(std::strlen(longer.c_str()));
            return longer;
        }
    }
    return {};
}

// "a(7 downto 4)" or "a[7:4]" as its parts.
struct SliceName {
    std::string base;
    std::string text;  // what follows it, "(7 downto 4)"
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

std::optional<SliceName> ReadSlice(std::string_view name) {
    const std::string shown = ShownName(name);
    const std::size_t open = shown.rfind('(');
    const std::size_t begin = name.find_last_of("([");
    if (!shown.ends_with(')') || open == std::string::npos || begin == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string inside = PlainName(shown.substr(open + 1, shown.size() - open - 2));
    for (const std::string_view between : {":", " downto ", " to "}) {
        const std::size_t at = inside.find(between);
        if (at == std::string::npos) {
            continue;
        }
        const auto left = Number(std::string_view(inside).substr(0, at));
        const auto right = Number(std::string_view(inside).substr(at + between.size()));
        return left && right ? std::optional(SliceName{std::string(name.substr(0, begin)),
                                                       shown.substr(open), *left, *right})
                             : std::nullopt;
    }
    return std::nullopt;
}

// Makes the scalars of one signal share the waves of another one of the same type.
bool ShareWaves(ISignal& signal, ISignal& original) {
    const std::vector<ISignal*> leaves = LeavesOf(signal);
    const std::vector<ISignal*> originals = LeavesOf(original);
    bool shared = leaves.size() == originals.size();
    for (std::size_t i = 0; shared && i < leaves.size(); ++i) {
        shared = SUCCEEDED(leaves[i]->SetWave(originals[i]->GetWave()));
        // events are loaded by handle, for slices as for other signals
        leaves[i]->SetHandle(originals[i]->GetHandle());
    }
    return shared;
}

// Makes a signal of some elements of an array, which shares their waves.
frame::ComPtr<ISignal> MakeSlice(ISignal& array, const SliceName& slice) {
    // The type of the slice is the array's with another range. Its elements get the names of those
    // in the array, by which the originals are found.
    const KTypeInfo type{CString(array.GetTypeInfo())};
    const std::int64_t count = std::abs(std::int64_t{slice.left} - slice.right) + 1;
    if (array.GetSubSignals() == nullptr || type.GetNbOfDimensions() != 1 ||
        count > static_cast<std::int64_t>(type.GetNbOfElements())) {
        return {};
    }
    const TArrayRange range{slice.left, slice.right};
    CString base = type.GetTypeIdentifier();
    base = base.Left(std::max(base.Find('('), 0));
    const auto build = [&](char* buffer, std::uint32_t* size) {
        return CreateArrayTypeInfo(base, &range, 1, type.GetArrayElementTypeInfo(), buffer, size);
    };
    std::uint32_t size = 0;
    build(nullptr, &size);
    std::string text(size, '\0');
    frame::ComPtr<ISignal> made;
    if (size == 0 || FAILED(build(text.data(), &size)) ||
        FAILED(CreateSignal(text.c_str(), nullptr, made.Out()))) {
        return {};
    }
    ISignal* element = nullptr;
    for (std::uint32_t i = 0; SUCCEEDED(made->GetSubSignals()->GetAt(i, &element)); ++i) {
        ISignal* original = nullptr;
        if (FAILED(array.GetSubSignals()->FindSignal(element->GetName(), &original)) ||
            !ShareWaves(*element, *original)) {
            return {};
        }
    }
    return made;
}

// Searches for a name: exact matches first, and signals of a container before their members.
class NameSearch {
public:
    explicit NameSearch(std::string_view name) : shown_(ShownName(name)), plain_(PlainName(name)) {}

    ISignal* In(ISignalContainer& signals) {
        Look(signals, true);
        return *std::find_if(found_.begin(), found_.end() - 1,
                             [](const ISignal* signal) { return signal != nullptr; });
    }

private:
    void Look(ISignalContainer& signals, bool declared) {
        ISignal* signal = nullptr;
        for (std::uint32_t i = 0; SUCCEEDED(signals.GetAt(i, &signal)); ++i) {
            const std::string shown = ShownName(FullName(*signal));
            const std::string plain = PlainName(shown);
            if (plain == plain_) {
                ISignal*& place = found_[(shown == shown_ ? 0 : 2) + (declared ? 0 : 1)];
                place = place != nullptr ? place : signal;
            } else if (signal->GetSubSignals() != nullptr && plain_.starts_with(plain)) {
                Look(*signal->GetSubSignals(), false);
            }
        }
    }

    std::string shown_;
    std::string plain_;
    std::array<ISignal*, 4> found_{};
};

// Takes the signals that match a pattern and, below one that does not, the members that do.
class PatternSearch {
public:
    explicit PatternSearch(const NamePattern& pattern) : pattern_(pattern) {}

    std::vector<NamedSignal> In(ISignalContainer& signals) {
        ISignal* signal = nullptr;
        for (std::uint32_t i = 0; SUCCEEDED(signals.GetAt(i, &signal)); ++i) {
            const std::string name = FullName(*signal);
            NamePattern::State state = pattern_.Start();
            pattern_.Advance(state, name, false);
            Take(*signal, name, state);
        }
        return std::move(selected_);
    }

private:
    void Take(ISignal& signal, const std::string& name, const NamePattern::State& state) {
        if (pattern_.Accepts(state)) {
            selected_.push_back({ShownName(name), &signal, {}});
        } else if (signal.GetSubSignals() != nullptr && !state.empty()) {
            TakeMembers(*signal.GetSubSignals(), name, state);
        }
    }

    void TakeMembers(ISignalContainer& members, const std::string& parent,
                     const NamePattern::State& before) {
        ISignal* member = nullptr;
        for (std::uint32_t i = 0; SUCCEEDED(members.GetAt(i, &member)); ++i) {
            const std::string name = FullName(*member);
            const std::string_view own =
                std::string_view(name).substr(std::min(parent.size(), name.size()));
            NamePattern::State state = before;
            // the first character, a separator or a parenthesis, is the same for all members
            pattern_.Advance(state, own.substr(0, 1), true);
            if (state.empty()) {
                return;  // no other member can match either
            }
            state = before;
            pattern_.Advance(state, own, true);
            Take(*member, name, state);
        }
    }

    const NamePattern& pattern_;
    std::vector<NamedSignal> selected_;
};

std::vector<NamedSignal> FindMatching(ISignalContainer& signals, std::string_view name,
                                      NamePattern::Brackets brackets) {
    const NamePattern pattern(name, brackets);
    if (pattern.HasWildcards()) {
        return PatternSearch(pattern).In(signals);
    }
    std::vector<NamedSignal> selected;
    if (ISignal* const found = NameSearch(name).In(signals)) {
        selected.push_back({ShownName(FullName(*found)), found, {}});
    }
    return selected;
}

// Adds names of signals, each followed by those of its fields.
void AddNames(ISignalContainer& signals, std::size_t most, std::vector<std::string>& names) {
    ISignal* signal = nullptr;
    for (std::uint32_t i = 0; SUCCEEDED(signals.GetAt(i, &signal)) && names.size() < most; ++i) {
        const std::string name = FullName(*signal);
        if (name.ends_with(')') && signal->GetParent() != nullptr) {
            return;  // elements
        }
        names.push_back(ShownName(name));
        if (signal->GetSubSignals() != nullptr) {
            AddNames(*signal->GetSubSignals(), most, names);
        }
    }
}

// The same slice of each array.
std::vector<NamedSignal> SlicesOf(const std::vector<NamedSignal>& arrays, const SliceName& slice) {
    std::vector<NamedSignal> slices;
    for (const NamedSignal& array : arrays) {
        if (auto made = MakeSlice(*array.signal, slice)) {
            ISignal* const signal = made.get();
            slices.push_back({array.name + slice.text, signal, std::move(made)});
        }
    }
    return slices;
}

}  // namespace

std::string PlainName(std::string_view name) {
    return Normal(name, true);
}
std::string ShownName(std::string_view name) {
    return Normal(name, false);
}

bool IsPattern(std::string_view name) {
    return NamePattern(name).HasWildcards();
}

std::vector<NamedSignal> SelectSignals(ISignalContainer& signals, const std::string& pattern) {
    if (ISignal* const found = NameSearch(pattern).In(signals)) {
        std::vector<NamedSignal> selected;
        selected.push_back({ShownName(FullName(*found)), found, {}});
        return selected;
    }
    if (const auto slice = ReadSlice(pattern)) {
        auto slices =
            SlicesOf(FindMatching(signals, slice->base, NamePattern::Brackets::Elements), *slice);
        if (!slices.empty()) {
            return slices;
        }
    }
    // a[3] is an element if there is one, else a set of characters
    for (const auto brackets : {NamePattern::Brackets::Elements, NamePattern::Brackets::Sets}) {
        const NamePattern compiled(pattern, brackets);
        auto selected = compiled.HasWildcards() ? PatternSearch(compiled).In(signals)
                                                : std::vector<NamedSignal>();
        if (!selected.empty()) {
            return selected;
        }
    }
    return {};
}

std::vector<std::string> DeclaredNames(ISignalContainer& signals, std::size_t most) {
    std::vector<std::string> names;
    AddNames(signals, most, names);
    return names;
}

}  // namespace corv::host
