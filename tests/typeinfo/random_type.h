#pragma once

#include "corv/typeinfo/type_builders.h"
#include "corv/typeinfo/type_info.h"
#include "tests/support/test.h"

namespace corv::test {

// What is known of a type, whatever its texts say.
struct KnownType {
    KTypeInfo::EKind kind = KTypeInfo::KindNone;
    std::string name;
    std::vector<std::string> literals;  // as given to the builder
    std::vector<TArrayRange> ranges;    // of an array; of an integer its only one
    std::vector<std::string> field_names;
    std::vector<KnownType> parts;  // the element, or the types of the fields

    bool IsScalar() const { return kind != KTypeInfo::KindArray && kind != KTypeInfo::KindRecord; }
    bool HasWords() const {
        return std::any_of(literals.begin(), literals.end(),
                           [](const std::string& literal) { return literal.size() != 1; });
    }
    std::int64_t Elements() const {
        std::int64_t count = 1;
        for (const TArrayRange& range : ranges) {
            count *= std::abs(std::int64_t{range.left} - range.right) + 1;
        }
        return count;
    }
};

// A builder's string, by asking for its size first.
inline std::string Built(const std::function<HRESULT(char*, std::uint32_t*)>& build) {
    std::uint32_t size = 0;
    if (build(nullptr, &size) != S_OK) {
        return "no size";
    }
    std::string text(size, '?');
    return build(text.data(), &size) == S_OK ? text.substr(0, text.find('\0')) : "not written";
}

// The type-description string, with the builders where there is one.
inline std::string Describe(const KnownType& type) {
    switch (type.kind) {
        case KTypeInfo::KindEnum: {
            const std::vector<TEnumValue> literals = [&] {
                std::vector<TEnumValue> values(1);
                for (const std::string& literal : type.literals) {
                    values.emplace_back(literal.c_str());
                }
                return values;
            }();
            return Built([&](char* buffer, std::uint32_t* size) {
                return CreateEnumTypeInfo(type.name.c_str(), literals.data() + 1,
                                          static_cast<std::uint32_t>(type.literals.size()), buffer,
                                          size);
            });
        }
        case KTypeInfo::KindInteger: {
            const auto [left, right] = type.ranges.at(0);
            return "i#" + std::to_string(type.name.size()) + '#' + type.name + "ric" +
                   (left < right ? 't' : 'd') + std::to_string(left) + ' ' + std::to_string(right);
        }
        case KTypeInfo::KindFloat:
            return Built([](char* buffer, std::uint32_t* size) {
                return CreateStdTypeInfo(4, buffer, size);
            });
        case KTypeInfo::KindArray:
            return Built([&](char* buffer, std::uint32_t* size) {
                return CreateArrayTypeInfo(type.name.c_str(), type.ranges.data(),
                                           static_cast<std::uint32_t>(type.ranges.size()),
                                           Describe(type.parts.at(0)).c_str(), buffer, size);
            });
        case KTypeInfo::KindRecord: {
            std::vector<TRecordField> fields(1);
            for (std::size_t i = 0; i < type.parts.size(); ++i) {
                fields.emplace_back(type.field_names[i].c_str(), Describe(type.parts[i]).c_str());
            }
            return Built([&](char* buffer, std::uint32_t* size) {
                return CreateRecordTypeInfo(type.name.c_str(), fields.data() + 1,
                                            static_cast<std::uint32_t>(type.parts.size()), buffer,
                                            size);
            });
        }
        case KTypeInfo::KindNone:
            break;
    }
    return "";
}

inline std::string VhdlRange(const TArrayRange& range) {
    return std::to_string(range.left) + (range.left < range.right ? " to " : " downto ") +
           std::to_string(range.right);
}

// The same type as VHDL text. Only a record's name is in it, and "integer" as that of integers.
inline std::string VhdlOf(const KnownType& type) {
    std::string out;
    switch (type.kind) {
        case KTypeInfo::KindEnum:
            for (const std::string& literal : type.literals) {
                out += out.empty() ? "(" : ", ";
                out += !type.HasWords()     ? "'" + literal + "'"
                       : literal[0] == '\'' ? literal + "'"
                                            : literal;
            }
            return out + ")";
        case KTypeInfo::KindInteger:
            return "integer range " + VhdlRange(type.ranges[0]);
        case KTypeInfo::KindFloat:
            return "real";
        case KTypeInfo::KindArray:
            for (const TArrayRange& range : type.ranges) {
                out += (out.empty() ? "array (" : ", ") + VhdlRange(range);
            }
            return out + ") of " + VhdlOf(type.parts[0]);
        case KTypeInfo::KindRecord:
            out = "record ";
            for (std::size_t i = 0; i < type.parts.size(); ++i) {
                out += type.field_names[i] + " : " + VhdlOf(type.parts[i]) + "; ";
            }
            return out + "end record" + (type.name.empty() ? "" : " " + type.name);
        case KTypeInfo::KindNone:
            break;
    }
    return out;
}

inline TArrayRange RandomRange(Random& random, std::size_t span) {
    const auto from = static_cast<std::int32_t>(random.Below(40)) - 20;
    const auto to = from + static_cast<std::int32_t>(random.Below(span));
    return random.OneIn(2) ? TArrayRange{from, to} : TArrayRange{to, from};
}

inline std::vector<std::string> RandomLiterals(Random& random) {
    std::vector<std::string> literals;
    if (random.OneIn(2)) {
        std::string characters = "UX01ZWLH-az ()',\"\\#\xe9";
        for (std::size_t count = 1 + random.Below(characters.size()); count > 0; --count) {
            const std::size_t at = random.Below(characters.size());
            literals.emplace_back(1, characters[at]);
            characters.erase(at, 1);
        }
        return literals;
    }
    literals = {"idle", "run", "'A", "'a", "' ",      "''",
                "'\"",  "',",  "')", "q",  "\\x,y\\", "\\X,y\\"};
    std::shuffle(literals.begin() + 1, literals.end(), std::mt19937_64(random.Bits()));
    literals.resize(1 + random.Below(literals.size()));
    if (random.OneIn(8)) {
        for (int i = 0; i < 300; ++i) {
            literals.push_back("s" + std::to_string(i));
        }
    }
    return literals;
}

// Names of scalars are left out when the type is to be written in VHDL.
inline KnownType RandomType(Random& random, int depth, bool named) {
    static constexpr const char* kNames[] = {"", "t", "point", "a_1", "\\x\\"};
    KnownType type;
    const auto kind = depth > 0 ? 1 + random.Below(5) : 1 + random.Below(3);
    type.kind = static_cast<KTypeInfo::EKind>(kind);
    type.name = named ? std::string(random.Pick(kNames)) + (random.OneIn(4) ? " (1, #2)" : "") : "";
    switch (type.kind) {
        case KTypeInfo::KindEnum:
            type.literals = RandomLiterals(random);
            break;
        case KTypeInfo::KindInteger:
            type.name = named ? type.name : "integer";
            type.ranges = {random.OneIn(3)
                               ? TArrayRange{std::numeric_limits<std::int32_t>::min(), 70000}
                               : RandomRange(random, 1000)};
            break;
        case KTypeInfo::KindArray:
            for (std::size_t i = 1 + random.Below(3); i > 0; --i) {
                type.ranges.push_back(RandomRange(random, 6));
            }
            type.parts = {RandomType(random, depth - 1, named)};
            break;
        case KTypeInfo::KindRecord:
            type.name = named ? type.name : random.Pick(kNames);
            for (std::size_t i = random.Below(4) + (named ? 0 : 1); i > 0; --i) {
                type.field_names.push_back("f" + std::to_string(i));
                type.parts.push_back(RandomType(random, depth - 1, named));
            }
            break;
        default:
            break;
    }
    return type;
}

}  // namespace corv::test
