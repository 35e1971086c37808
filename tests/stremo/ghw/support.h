#pragma once

#include <initializer_list>

#include "corv/signals/hierarchy_separator.h"
#include "corv/stremo/streams.h"
#include "corv/typeinfo/type_info.h"
#include "stremo/ghw/recording.h"
#include "tests/stremo/reader_support.h"
#include "tests/support/test.h"

namespace corv::test {

// ---- reading ----

// Null when the bytes can't be opened.
inline std::unique_ptr<recording::SignalReader> OpenGhwBytes(const std::string& bytes,
                                                             int time_unit = -1) {
    auto content = std::make_unique<HeldContent>(bytes);
    return ReaderOf(recording::OpenGhwIn("bytes.ghw", std::move(content), time_unit));
}

inline std::string GhwSample(const std::string& name) {
    return FileText(TestFolder() + "/data/ghw/" + name);
}

// All scalars of a reader, composites' members in their order, with the type-description strings.
struct SeenLeaves {
    explicit SeenLeaves(stremo::IEventsStreamRead& reader) {
        for (const RecordedSignal& signal : AllOf(reader).signals) {
            const SignalInfo& info = signal.info;
            if (info.composite) {
                composites.push_back(Dotted(signal.path) + " " + info.type);
                continue;
            }
            EXPECT_TRUE(signal.kind->IsScalar()) << info.type;
            leaves.push_back({Dotted(signal.path), info.type, {}, signal.handle, info.latest});
            for (const auto& [time, value] : signal.events) {
                leaves.back().changes.emplace_back(time, signal.Text(value, 2));
            }
        }
    }

    std::vector<SeenSignal> leaves;
    std::vector<std::string> composites;  // "path type"
};

// ---- writing ----

// Makes GHW files of any content. Sections are bytes to which the functions append; numbers that
// make no sense are written as they are.
class GhwFile {
public:
    using Number = std::uint64_t;

    explicit GhwFile(bool big_endian = false, int minor = 1)
        : big_endian_(big_endian), minor_(minor) {}

    std::string types, well_known, hierarchy, values;

    static std::string Unsigned(Number value) {
        std::string bytes;
        for (; value >= 0x80; value >>= 7) {
            bytes += static_cast<char>(value | 0x80);
        }
        return bytes + static_cast<char>(value);
    }
    static std::string Signed(std::int64_t value) {
        std::string bytes;
        for (; value < -64 || value > 63; value >>= 7) {
            bytes += static_cast<char>(value | 0x80);
        }
        return bytes + static_cast<char>(value & 0x7F);
    }
    std::string Fixed(Number value, unsigned width) const {
        std::string bytes;
        for (unsigned i = 0; i < width; ++i) {
            bytes += static_cast<char>(value >> 8 * (big_endian_ ? width - 1 - i : i));
        }
        return bytes;
    }
    std::string Real(double value) const { return Fixed(std::bit_cast<Number>(value), 8); }

    // The number of a string; empty has 0.
    std::string Name(const std::string& name) {
        const auto found = std::find(names_.begin(), names_.end(), name);
        const Number place = static_cast<Number>(found - names_.begin());
        if (found == names_.end()) {
            names_.push_back(name);
        }
        return Unsigned(name.empty() ? 0 : place + 1);
    }

    // ---- types, which give their number

    Number Type(int kind, const std::string& name, const std::string& rest = "") {
        types += static_cast<char>(kind) + Name(name) + rest;
        return ++type_count_;
    }
    Number Enumeration(const std::string& name, const std::vector<std::string>& literals) {
        std::string rest = Unsigned(literals.size());
        for (const std::string& literal : literals) {
            rest += Name(literal);
        }
        return Type(23, name, rest);
    }
    Number Logic() {
        return Enumeration("std_ulogic",
                           {"'U'", "'X'", "'0'", "'1'", "'Z'", "'W'", "'L'", "'H'", "'-'"});
    }
    Number Physical(int kind, const std::string& name,
                    const std::vector<std::pair<std::string, std::int64_t>>& units) {
        std::string rest = minor_ > 0 ? Unsigned(units.size()) : "";
        for (const auto& [unit, value] : units) {
            rest += minor_ > 0 ? Name(unit) + Signed(value) : "";
        }
        return Type(kind, name, rest);
    }
    Number Array(const std::string& name, Number element, const std::vector<Number>& indices) {
        std::string rest = Unsigned(element) + Unsigned(indices.size());
        for (const Number index : indices) {
            rest += Unsigned(index);
        }
        return Type(31, name, rest);
    }
    Number Record(const std::string& name,
                  const std::vector<std::pair<std::string, Number>>& fields) {
        std::string rest = Unsigned(fields.size());
        for (const auto& [field, type] : fields) {
            rest += Name(field) + Unsigned(type);
        }
        return Type(32, name, rest);
    }
    // Kinds 34, 35, 37, 38, 39.
    Number Subtype(int kind, const std::string& name, Number base, const std::string& bounds = "") {
        return Type(kind, name, Unsigned(base) + bounds);
    }
    // The range of a type of integers; left to right, or down.
    static std::string Range(std::int64_t left, std::int64_t right, int kind = 25) {
        return static_cast<char>(kind | (left > right ? 0x80 : 0)) + Signed(left) + Signed(right);
    }
    static std::string Positions(int left, int right, int kind = 23) {
        return {static_cast<char>(kind), static_cast<char>(left), static_cast<char>(right)};
    }

    // ---- hierarchy

    void Scope(int kind, const std::string& name) {
        hierarchy += static_cast<char>(kind) + Name(name);
    }
    void EndScope() { hierarchy += '\x0F'; }
    void Signal(const std::string& name, Number type, const std::vector<Number>& numbers,
                int kind = 16) {
        hierarchy += static_cast<char>(kind) + Name(name) + Unsigned(type);
        for (const Number number : numbers) {
            hierarchy += Unsigned(number);
            most_ = std::max(most_, number);
        }
    }
    void SetMost(Number most) { most_ = most; }

    // ---- values

    void Snapshot(std::int64_t time, const std::string& list) {
        values += std::string("SNP\0\0\0\0\0", 8) + Fixed(static_cast<Number>(time), 8) + list +
                  std::string("ESN\0", 4);
    }
    void Cycles(std::int64_t time, const std::string& lists) {
        values += std::string("CYC\0", 4) + Fixed(static_cast<Number>(time), 8) + lists;
    }
    // A value of one byte in a list, of the signal so many places behind the one before.
    static std::string Bit(Number distance, int position) {
        return Unsigned(distance) + static_cast<char>(position);
    }
    // The end of a list, and the time until the next.
    static std::string Step(std::int64_t step) { return '\0' + Signed(step); }
    static std::string End() {
        return std::string(
            "\0\x7F"
            "ECY",
            6);
    }

    // The whole file.
    std::string Bytes() const {
        const std::string zeros(4, '\0');
        const std::string last = std::string(1, big_endian_ ? '\2' : '\1') + std::string("\4\1", 3);
        std::string file = "GHDLwave\n\x10";
        file += '\0' + std::string(1, static_cast<char>(minor_)) + last;
        file += std::string("STR\0\0\0\0\0", 8) + Strings();
        file += std::string("TYP\0\0\0\0\0", 8) + Fixed(type_count_, 4) + types + '\0';
        file += std::string("WKT\0\0\0\0\0", 8) + well_known + '\0';
        file += std::string("HIE\0\0\0\0\0", 8) + Fixed(0, 4) + Fixed(0, 4) + Fixed(most_, 4) +
                hierarchy + '\0' + std::string("EOH\0", 4) + values;
        return file + std::string("DIR\0", 4) + last + zeros + std::string("TAI\0", 4) + last +
               zeros;
    }

private:
    std::string Strings() const {
        std::string text;
        std::string before;
        std::size_t total = 0;
        for (const std::string& name : names_) {
            const auto same = std::mismatch(name.begin(), name.end(), before.begin(), before.end());
            Number shared = static_cast<Number>(same.first - name.begin());
            const std::string own = name.substr(static_cast<std::size_t>(shared));
            while (shared >= 32 && !text.empty()) {
                text += static_cast<char>(0x80 | (shared & 0x1F));
                shared >>= 5;
            }
            text += text.empty() && total == 0 ? "" : std::string(1, static_cast<char>(shared));
            text += own;
            total += name.size();
            before = name;
        }
        return Fixed(names_.size(), 4) + Fixed(total, 4) + text +
               (names_.empty() ? "" : std::string(1, '\0')) + std::string("EOS\0", 4);
    }

    bool big_endian_;
    int minor_;
    std::vector<std::string> names_;
    Number type_count_ = 0;
    Number most_ = 0;
};

// ---- files and what is read from them as texts ----

inline std::string Changes(const std::string& bytes, int time_unit = -1) {
    const auto reader = OpenGhwBytes(bytes, time_unit);
    return reader != nullptr ? ChangeText(SeenLeaves(*reader).leaves) : LastStreamError();
}
inline std::string Notes(const std::string& bytes) {
    const auto reader = OpenGhwBytes(bytes);
    if (reader == nullptr) {
        return LastStreamError();
    }
    SeenLeaves seen(*reader);
    return NoteText(*reader);
}

// "path type" of all signals, composites first.
inline std::string Listing(const std::string& bytes) {
    const auto reader = OpenGhwBytes(bytes);
    if (reader == nullptr) {
        return LastStreamError();
    }
    const SeenLeaves seen(*reader);
    std::string text;
    for (const std::string& composite : seen.composites) {
        text += composite + "\n";
    }
    for (const SeenSignal& leaf : seen.leaves) {
        text += leaf.name + " " + leaf.type + "\n";
    }
    return text;
}

// Two bits, an integer, a real and an integer of 64 bits, as numbers 1, 2, 4, 5 and 9.
inline GhwFile SomeSignals(bool big_endian = false, int minor = 1) {
    GhwFile file(big_endian, minor);
    const GhwFile::Number bit = file.Type(22, "bit", "\2" + file.Name("'0'") + file.Name("'1'"));
    const GhwFile::Number integer = file.Type(25, "integer");
    const GhwFile::Number real = file.Type(27, "real");
    const GhwFile::Number wide = file.Type(26, "wide");
    file.Signal("a", bit, {1});
    file.Signal("b", bit, {2});
    file.Signal("i", integer, {4});
    file.Signal("r", real, {5});
    file.Signal("w", wide, {9});
    file.Signal("a2", bit, {1}, 17);
    return file;
}
inline std::string Start(const GhwFile& file) {
    return std::string("\0\1", 2) + GhwFile::Signed(-5) + file.Real(0.25) + GhwFile::Signed(7);
}

}  // namespace corv::test
