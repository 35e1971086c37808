// Reading type-description strings, asking the types, and the text of values, each beside the
// plainest hand-written form of the job.

#include <benchmark/benchmark.h>

#include <array>
#include <charconv>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "corv/corv.h"

namespace {

// A record of about so many bytes: bits, vectors, integers and small records in turn.
std::string RecordText(std::size_t bytes, std::size_t& fields) {
    constexpr std::array<std::string_view, 4> kTypes{
        "e#3#bitc2 01",
        "a#28#std_logic_vector(7 downto 0)1 ricd7 0 e#9#std_logicc9 UX01ZWLH-",
        "i#7#integerrict-2147483648 2147483647",
        "r#5#point2 state e#5#states3 idle run done  level f#4#realrrct0 1.5",
    };
    std::string list;
    for (fields = 0; list.size() < bytes; ++fields) {
        list += fields == 0 ? "field" : " field";
        list += std::to_string(fields) + ' ';
        list += kTypes[fields % kTypes.size()];
    }
    return "r#3#big" + std::to_string(fields) + ' ' + list;
}

// ---- reading ----

// What any reader has to store of a type, with its own texts.
struct PlainType {
    char kind = 0;
    std::string name;
    std::vector<std::string> words;  // literals or names of fields
    std::string characters;
    std::vector<std::array<double, 2>> ranges;
    std::vector<std::unique_ptr<PlainType>> parts;
};

// Reads what is known to be well-formed.
struct PlainReader {
    const char* at;
    const char* end;

    int Number() {
        int number = 0;
        at = std::from_chars(at, end, number).ptr;
        return number;
    }
    std::string Word() {
        const char* begin = at;
        while (at != end && *at != ' ') {
            ++at;
        }
        return {begin, at++};
    }
    std::string Counted(int length) {
        at += length;
        return {at - length, at};
    }
    std::array<double, 2> Bounds() {
        std::array<double, 2> bounds{};
        at = std::from_chars(at + 4, end, bounds[0]).ptr + 1;
        at = std::from_chars(at, end, bounds[1]).ptr;
        return bounds;
    }
    std::unique_ptr<PlainType> Type() {
        auto type = std::make_unique<PlainType>();
        type->kind = *at++;
        ++at;
        const int length = Number();
        ++at;
        type->name = Counted(length);
        if (type->kind == 'i' || type->kind == 'f') {
            type->ranges.push_back(Bounds());
            return type;
        }
        const bool words = type->kind == 'e' && *at == 's';
        at += type->kind == 'e' ? 1 : 0;
        int count = Number();
        ++at;
        if (type->kind == 'e' && !words) {
            type->characters = Counted(count);
        } else if (words) {
            while (count-- > 0) {
                type->words.push_back(Word());
            }
        } else if (type->kind == 'a') {
            while (count-- > 0) {
                type->ranges.push_back(Bounds());
                ++at;
            }
            type->parts.push_back(Type());
        } else {
            while (count-- > 0) {
                type->words.push_back(Word());
                type->parts.push_back(Type());
                at += count > 0 ? 1 : 0;
            }
        }
        return type;
    }
};

void SetBytes(benchmark::State& state, std::size_t bytes) {
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes) * state.iterations());
}

void ReadBaseline(benchmark::State& state) {
    std::size_t fields = 0;
    const std::string text = RecordText(static_cast<std::size_t>(state.range(0)) << 20, fields);
    for (auto _ : state) {
        PlainReader reader{text.data(), text.data() + text.size()};
        benchmark::DoNotOptimize(reader.Type()->parts.size());
    }
    SetBytes(state, text.size());
}

void ReadCorv(benchmark::State& state) {
    std::size_t fields = 0;
    const CString text(RecordText(static_cast<std::size_t>(state.range(0)) << 20, fields));
    for (auto _ : state) {
        const KTypeInfo type(text);
        if (type.GetNbOfFields() != static_cast<int>(fields)) {
            state.SkipWithError("not read");
        }
    }
    SetBytes(state, text.View().size());
}

void CheckCorv(benchmark::State& state) {
    std::size_t fields = 0;
    const CString text(RecordText(static_cast<std::size_t>(state.range(0)) << 20, fields));
    for (auto _ : state) {
        if (!KTypeInfo::CheckTypeInfo(text)) {
            state.SkipWithError("refused");
        }
    }
    SetBytes(state, text.View().size());
}

// The deepest nesting that a text may have, around a long enumeration.
void CheckNestedCorv(benchmark::State& state) {
    std::string text;
    for (int level = 1; level < 64; ++level) {
        text += "a#6#(0..1)1 rict0 1 ";
    }
    const auto literals = static_cast<std::size_t>(state.range(0)) << 20;
    text += "e#1#xc" + std::to_string(literals) + ' ' + std::string(literals, 'q');
    const CString type(std::move(text));
    for (auto _ : state) {
        if (!KTypeInfo::CheckTypeInfo(type)) {
            state.SkipWithError("refused");
        }
    }
    SetBytes(state, type.View().size());
}

// ---- asking ----

void AskBaseline(benchmark::State& state) {
    std::size_t fields = 0;
    const std::string text = RecordText(1 << 20, fields);
    PlainReader reader{text.data(), text.data() + text.size()};
    const auto type = reader.Type();
    for (auto _ : state) {
        std::size_t sum = 0;
        for (const auto& field : type->parts) {
            sum += static_cast<std::size_t>(field->kind) + field->parts.size();
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(fields) * state.iterations());
}

void AskCorv(benchmark::State& state) {
    std::size_t fields = 0;
    const KTypeInfo type(CString(RecordText(1 << 20, fields)));
    for (auto _ : state) {
        int sum = 0;
        for (int i = 0; i < type.GetNbOfFields(); ++i) {
            const KTypeInfo& field = type.GetFieldKTypeInfo(i);
            sum += field.GetKind() + field.GetArrayElementKTypeInfo().GetKind();
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(fields) * state.iterations());
}

// ---- value texts of a 64-bit std_logic_vector ----

constexpr std::size_t kBits = 64;
constexpr std::size_t kValues = 1024;
constexpr std::string_view kLetters = "UX01ZWLH-";
constexpr const char* kVector =
    "a#29#std_logic_vector(63 downto 0)1 ricd63 0 e#9#std_logicc9 UX01ZWLH-";

std::vector<unsigned char> PackedValues() {
    std::vector<unsigned char> bytes(kValues * kBits);
    std::uint32_t seed = 1;
    for (unsigned char& byte : bytes) {
        seed = seed * 1664525 + 1013904223;
        byte = static_cast<unsigned char>((seed >> 16) % kLetters.size());
    }
    return bytes;
}

void WriteValueBaseline(benchmark::State& state) {
    const std::vector<unsigned char> bytes = PackedValues();
    char buffer[kBits + 1] = {};
    for (auto _ : state) {
        for (std::size_t value = 0; value < kValues; ++value) {
            for (std::size_t bit = 0; bit < kBits; ++bit) {
                buffer[bit] = kLetters[bytes[value * kBits + bit]];
            }
            benchmark::DoNotOptimize(buffer);
            const std::string text(buffer, kBits);
            benchmark::DoNotOptimize(text.data());
        }
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(kValues) * state.iterations());
}

void WriteValueCorv(benchmark::State& state) {
    const std::vector<unsigned char> bytes = PackedValues();
    const KTypeInfo type{CString(kVector)};
    for (auto _ : state) {
        for (std::size_t value = 0; value < kValues; ++value) {
            const CString text = type.GetValueString(&bytes[value * kBits], 2, 0, -1);
            benchmark::DoNotOptimize(static_cast<const char*>(text));
        }
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(kValues) * state.iterations());
}

std::vector<CString> ValueTexts() {
    std::vector<CString> texts;
    const std::vector<unsigned char> bytes = PackedValues();
    const KTypeInfo type{CString(kVector)};
    for (std::size_t value = 0; value < kValues; ++value) {
        texts.push_back(type.GetValueString(&bytes[value * kBits], 2, 0, -1));
    }
    return texts;
}

void ReadValueBaseline(benchmark::State& state) {
    const std::vector<CString> texts = ValueTexts();
    std::array<signed char, 256> positions;
    positions.fill(-1);
    for (std::size_t i = 0; i < kLetters.size(); ++i) {
        positions[static_cast<unsigned char>(kLetters[i])] = static_cast<signed char>(i);
    }
    unsigned char bytes[kBits] = {};
    for (auto _ : state) {
        for (const CString& text : texts) {
            bool good = true;
            for (std::size_t bit = 0; bit < kBits; ++bit) {
                const signed char position =
                    positions[static_cast<unsigned char>(text.View()[bit])];
                good = good && position >= 0;
                bytes[bit] = static_cast<unsigned char>(position);
            }
            benchmark::DoNotOptimize(bytes);
            benchmark::DoNotOptimize(good);
        }
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(kValues) * state.iterations());
}

void ReadValueCorv(benchmark::State& state) {
    const std::vector<CString> texts = ValueTexts();
    const KTypeInfo type{CString(kVector)};
    unsigned char bytes[kBits] = {};
    for (auto _ : state) {
        for (const CString& text : texts) {
            if (!type.GetBytes(text, bytes, kBits, 2, 0)) {
                state.SkipWithError("not read");
            }
            benchmark::DoNotOptimize(bytes);
        }
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(kValues) * state.iterations());
}

void Sizes(benchmark::internal::Benchmark* bench) {
    bench->ArgName("MiB")->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);
}

BENCHMARK(ReadBaseline)->Name("type/read/plain")->Apply(Sizes);
BENCHMARK(ReadCorv)->Name("type/read/corv")->Apply(Sizes);
BENCHMARK(CheckCorv)->Name("type/check/corv")->Apply(Sizes);
BENCHMARK(CheckNestedCorv)->Name("type/check_nested/corv")->Apply(Sizes);
BENCHMARK(AskBaseline)->Name("type/ask/plain");
BENCHMARK(AskCorv)->Name("type/ask/corv");
BENCHMARK(WriteValueBaseline)->Name("value/write/plain");
BENCHMARK(WriteValueCorv)->Name("value/write/corv");
BENCHMARK(ReadValueBaseline)->Name("value/read/plain");
BENCHMARK(ReadValueCorv)->Name("value/read/corv");

}  // namespace
