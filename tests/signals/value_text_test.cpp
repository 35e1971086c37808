// Value texts: what each operation writes and where, random trees against a naive model, and the
// limits of the buffers.

#include "signals/value_text.h"
#include "tests/signals/foreign_wave.h"
#include "tests/signals/signal_support.h"
#include "tests/support/test.h"
#include "tests/typeinfo/random_type.h"
#include "tests/waves/naive_wave.h"

namespace corv::test {
namespace {

using frame::ComPtr;
using Text = std::optional<std::string>;

Text Copy(const char* text) {
    return text != nullptr ? Text(text) : std::nullopt;
}

KnownType Enumeration(std::vector<std::string> literals) {
    KnownType type;
    type.kind = KTypeInfo::KindEnum;
    type.literals = std::move(literals);
    return type;
}
KnownType Bit() {
    return Enumeration({"0", "1"});
}
KnownType ArrayOf(KnownType element, std::vector<TArrayRange> ranges) {
    KnownType type;
    type.kind = KTypeInfo::KindArray;
    type.ranges = std::move(ranges);
    type.parts = {std::move(element)};
    return type;
}
KnownType RecordOf(std::vector<KnownType> fields) {
    KnownType type;
    type.kind = KTypeInfo::KindRecord;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        type.field_names.push_back("f" + std::to_string(i));
    }
    type.parts = std::move(fields);
    return type;
}

void AddEvent(ISignal& leaf, std::int64_t time, std::uint64_t value) {
    leaf.GetWave()->AddEvent(time, 0, &value, leaf.GetWaveValueSize());
}
template <class Visit>
void ForEachLeaf(ISignal& signal, Visit&& visit) {
    if (signal.GetWave() != nullptr) {
        return visit(signal);
    }
    for (int i = 0; i < signal.GetSubSignals()->GetCount(); ++i) {
        ForEachLeaf(MemberAt(signal, static_cast<std::size_t>(i)), visit);
    }
}

// ---- random trees ----

// A tree of signals with random events, and what is known of its waves.
class Tree {
public:
    Tree(const KnownType& type, Random& random) : top_(MakeSignal(Describe(type))) {
        top_->SetValueTextFlag(quoted_ = random.OneIn(2));
        const std::size_t foreign = random.OneIn(2) ? 8 : 0;  // none, or one wave in so many
        const std::size_t other_size = random.OneIn(4) ? 4 : 1000;
        const std::size_t invalid = random.OneIn(4) ? 30 : 1000;
        const bool same_times = random.OneIn(2);
        ForEachLeaf(*top_, [&](ISignal& leaf) {
            const std::uint32_t size =
                random.OneIn(other_size) ? 12 - leaf.GetWaveValueSize() : leaf.GetWaveValueSize();
            if (foreign != 0 && random.OneIn(foreign)) {
                leaf.SetWave(MakeForeignWave(size).get());
            } else if (size != leaf.GetWaveValueSize()) {
                ComPtr<ISignalWave> wave;
                CreateSignalWave(size, wave.Out());
                leaf.SetWave(wave.get());
            }
            NaiveWave& model = waves_.emplace(&leaf, size).first->second;
            for (std::int64_t time = 0; time < 20; time += same_times ? 5 : 1) {
                if (same_times || random.OneIn(4)) {
                    Add(leaf, model, time, ValueOf(leaf, random.OneIn(invalid), random),
                        random.OneIn(6));
                }
            }
        });
    }

    ISignal& Top() const { return *top_; }

    Text TextAt(ISignal& signal, std::int64_t time, std::uint32_t mode) const {
        const KTypeInfo type(signal.GetTypeInfo());
        if (type.IsScalar()) {
            const auto found = WaveOf(signal).Find(time, mode);
            return found ? EventText(type, WaveOf(signal).Events()[*found], true) : std::nullopt;
        }
        bool exact = mode != FindAt;
        if (type.IsSimple()) {
            const Text text = ArrayText(signal, type, [&](const NaiveWave& wave) {
                const auto found = wave.Find(time, mode == FindAt ? FindAtOrBefore : mode);
                exact = exact || (found && wave.Events()[*found].time == time);
                return found;
            });
            return exact ? text : std::nullopt;
        }
        return MembersText(signal, mode == FindAt,
                           [&](ISignal& member) { return TextAt(member, time, mode); });
    }

    Text FirstText(ISignal& signal) const {
        const KTypeInfo type(signal.GetTypeInfo());
        const auto first = [](const NaiveWave& wave) {
            return wave.Events().empty() ? std::nullopt : std::optional<std::size_t>(0);
        };
        if (type.IsScalar()) {
            const auto found = first(WaveOf(signal));
            return found ? EventText(type, WaveOf(signal).Events()[0], false) : std::nullopt;
        }
        return type.IsSimple()
                   ? ArrayText(signal, type, first)
                   : MembersText(signal, false, [&](ISignal& member) { return FirstText(member); });
    }

private:
    static std::uint64_t ValueOf(ISignal& leaf, bool invalid, Random& random) {
        const KTypeInfo type(leaf.GetTypeInfo());
        if (type.GetKind() == KTypeInfo::KindEnum && !invalid) {
            return random.Below(static_cast<std::size_t>(type.GetNbOfValues()));
        }
        const double number = static_cast<double>(random.Below(1000)) / 8;
        std::uint64_t bits = 0;
        std::memcpy(&bits, &number, sizeof bits);
        return type.GetKind() == KTypeInfo::KindFloat && !invalid ? bits : random.Bits();
    }
    static void Add(ISignal& leaf, NaiveWave& model, std::int64_t time, std::uint64_t value,
                    bool marked) {
        ISignalWave& wave = *leaf.GetWave();
        const std::uint32_t size = wave.GetValueSize();
        marked ? wave.AddMarkedEvent(time, 0, &value, size) : wave.AddEvent(time, 0, &value, size);
        model.Add(time, 0, &value, size, marked);
    }
    const NaiveWave& WaveOf(ISignal& leaf) const { return waves_.at(&leaf); }

    Text ValueText(const KTypeInfo& type, const void* bytes, int radix) const {
        const CString text = type.GetValueString(static_cast<const unsigned char*>(bytes), radix,
                                                 quoted_ ? 2 : 0, -1);
        return text.IsEmpty() ? std::nullopt : Text(text);
    }
    Text EventText(const KTypeInfo& type, const NaiveWave::Event& event, bool hides_marked) const {
        return hides_marked && event.flags == 1 ? std::nullopt : ValueText(type, &event.value, 10);
    }
    template <class Find>
    Text ArrayText(ISignal& array, const KTypeInfo& type, Find&& find) const {
        std::string bytes;
        bool good = true;
        ForEachLeaf(array, [&](ISignal& leaf) {
            const auto found = find(WaveOf(leaf));
            good = good && found;
            if (good) {
                const std::uint64_t value = WaveOf(leaf).Events()[*found].value;
                bytes.append(
                    reinterpret_cast<const char*>(&value),
                    static_cast<std::size_t>(KTypeInfo(leaf.GetTypeInfo()).GetScalarSize()));
            }
        });
        return good ? ValueText(type, bytes.data(), 2) : std::nullopt;
    }
    template <class TextOf>
    Text MembersText(ISignal& signal, bool needs_one, TextOf&& text_of) const {
        const int count = signal.GetSubSignals()->GetCount();
        std::string out;
        bool any = false;
        for (int i = 0; i < count; ++i) {
            const Text text = text_of(MemberAt(signal, static_cast<std::size_t>(i)));
            any = any || text;
            out += (i == 0 ? "(" : ",") + text.value_or("");
        }
        return count > 0 && (any || !needs_one) ? Text(out + ')') : std::nullopt;
    }

    ComPtr<ISignal> top_;
    std::map<ISignal*, NaiveWave> waves_;
    bool quoted_ = false;
};

std::int64_t Leaves(const KnownType& type) {
    std::int64_t leaves = type.IsScalar() ? 1 : 0;
    for (const KnownType& part : type.parts) {
        leaves += Leaves(part) * (type.kind == KTypeInfo::KindArray ? type.Elements() : 1);
    }
    return leaves;
}

TEST(SignalValueText, RandomTreesAsTheModelHasThem) {
    std::array<int, 2> compared{};
    for (std::uint32_t seed = 0; seed < 250; ++seed) {
        SCOPED_TRACE(seed);
        Random random(seed);
        const KnownType type = RandomType(random, 3, false);
        if (Leaves(type) > 300) {
            continue;
        }
        const Tree tree(type, random);
        ASSERT_EQ(Copy(tree.Top().GetValueText()), tree.FirstText(tree.Top()));
        for (std::uint32_t mode = 0; mode < 6; ++mode) {
            for (std::int64_t time = -1; time < 22; time += 1 + (mode > 0)) {
                const Text expected = tree.TextAt(tree.Top(), time, mode);
                ASSERT_EQ(Copy(tree.Top().GetValueTextAt(time, mode)), expected)
                    << time << ' ' << mode << ' ' << Describe(type);
                ++compared[expected ? 1 : 0];
            }
        }
    }
    EXPECT_GT(compared[0], 1000);
    EXPECT_GT(compared[1], 3000);
}

// ---- single texts ----

TEST(SignalValueText, OfAScalar) {
    const auto bit = MakeSignal(Describe(Bit()));
    EXPECT_EQ(bit->GetValueText(), nullptr);
    const std::uint32_t one = 1;
    AddEvent(*bit, 10, 0);
    bit->GetWave()->AddMarkedEvent(20, 0, &one, sizeof one);
    EXPECT_EQ(bit->GetValueTextAt(20, FindAt), nullptr);
    EXPECT_EQ(bit->GetValueTextAt(10, 7), nullptr);
    IWaveEvent* marked = nullptr;
    ASSERT_EQ(bit->GetWave()->FindEvent(20, FindAt, &marked), S_OK);
    EXPECT_EQ(Copy(bit->GetEventText(marked)), "1");
    bit->SetValueTextFlag(true);
    EXPECT_EQ(Copy(bit->GetEventText(marked)), "'1'");
    const auto untyped = MakeSignal("");
    EXPECT_EQ(untyped->GetValueText(), nullptr);
    EXPECT_EQ(untyped->GetValueTextAt(10, FindAt), nullptr);
    EXPECT_EQ(untyped->GetEventText(marked), nullptr);
    EXPECT_EQ(MakeSignal(Describe(RecordOf({Bit()})))->GetEventText(marked), nullptr);
}

TEST(SignalValueText, WhereTextsStand) {
    const auto bit = MakeSignal(Describe(Bit()));
    AddEvent(*bit, 10, 1);
    AddEvent(*bit, 20, 0);
    const char* const start = signals::SharedValueTexts().text.data();
    const char* const first = bit->GetValueTextAt(10, FindAt);
    EXPECT_EQ(first, start);
    IWaveEvent* event = nullptr;
    ASSERT_EQ(bit->GetWave()->FindEvent(20, FindAt, &event), S_OK);
    EXPECT_EQ(bit->GetEventText(event), start + 1);  // behind the text at a time
    EXPECT_EQ(bit->GetValueTextAt(20, FindAt), start);
    EXPECT_STREQ(first, "0");
    EXPECT_EQ(bit->GetValueText(), start);
    EXPECT_EQ(bit->GetEventText(event), start);  // over the current text
    EXPECT_STREQ(start, "0");
}

TEST(SignalValueText, OfAnArrayWhoseMembersWereChanged) {
    const auto array = MakeSignal(Describe(ArrayOf(Bit(), {{0, 3}})));
    ForEachLeaf(*array, [](ISignal& leaf) { AddEvent(leaf, 5, 1); });
    const auto more = MakeSignal(Describe(Bit()));
    AddEvent(*more, 5, 0);
    array->GetSubSignals()->Add(more.get());
    EXPECT_EQ(Copy(array->GetValueTextAt(5, FindAt)), "1111");
    EXPECT_EQ(Copy(array->GetValueText()), "1111");
    array->GetSubSignals()->Remove(&MemberAt(*array, 0));
    EXPECT_EQ(Copy(array->GetValueTextAt(5, FindAt)), "1110");
    array->GetSubSignals()->Remove(&MemberAt(*array, 0));
    EXPECT_EQ(array->GetValueTextAt(5, FindAt), nullptr);
    EXPECT_EQ(array->GetValueText(), nullptr);
}

TEST(SignalValueText, BackToAValue) {
    struct Row {
        KnownType type;
        const char* text;
        std::uint32_t size;
        HRESULT result;
        std::uint64_t value;
    };
    KnownType integer;
    integer.kind = KTypeInfo::KindInteger;
    integer.ranges = {{-5, 300}};
    constexpr std::uint64_t kUntouched = 0x5555555555555555;
    const Row rows[] = {
        {Bit(), "1", 1, S_OK, 0x5555555555555501},
        {Bit(), "1", 8, S_OK, 0x5555555555555501},
        {Bit(), "1", 0, E_INVALIDARG, kUntouched},
        {Bit(), "2", 1, E_FAIL, kUntouched},
        {Bit(), "2", 0, E_FAIL, kUntouched},
        {Bit(), "", 1, E_FAIL, kUntouched},
        {Bit(), nullptr, 1, E_FAIL, kUntouched},
        {integer, "16#12C#", 4, S_OK, 0x555555550000012C},
        {integer, "301", 4, E_FAIL, kUntouched},
        {integer, "-5", 3, E_INVALIDARG, kUntouched},
        {ArrayOf(Bit(), {{0, 1}}), "01", 8, E_FAIL, kUntouched},
    };
    for (const Row& row : rows) {
        std::uint64_t value = kUntouched;
        EXPECT_EQ(MakeSignal(Describe(row.type))->TextToValue(row.text, &value, row.size),
                  row.result);
        EXPECT_EQ(value, row.value) << (row.text != nullptr ? row.text : "null");
    }
    EXPECT_EQ(MakeSignal("")->TextToValue("1", nullptr, 0), E_FAIL);
}

// ---- limits ----

TEST(SignalValueText, LeavesFillTheValueBuffer) {
    for (const int rows : {10, 11}) {
        const auto array = MakeSignal(Describe(ArrayOf(Bit(), {{1, 256}, {1, rows}})));
        ForEachLeaf(*array, [](ISignal& leaf) { AddEvent(leaf, 5, 1); });
        const Text expected = rows == 10 ? Text(std::string(2560, '1')) : std::nullopt;
        EXPECT_EQ(Copy(array->GetValueTextAt(5, FindAt)), expected);
        EXPECT_EQ(Copy(array->GetValueText()), expected);
        MemberAt(*array, 0).SetWave(MakeForeignWave(4).get());
        AddEvent(MemberAt(*array, 0), 5, 1);
        EXPECT_EQ(Copy(array->GetValueTextAt(5, FindAt)), expected);
    }
}

// A record of words, within others, whose whole text has a given length.
KnownType TextOfLength(std::size_t length, int depth) {
    std::vector<KnownType> fields;
    std::size_t left = length - 2;
    if (depth > 0) {
        fields.push_back(TextOfLength(length / 3, depth - 1));
        left -= length / 3 + 1;
    }
    for (; left > 150; left -= 101) {
        fields.push_back(Enumeration({std::string(100, 'w')}));
    }
    fields.push_back(Enumeration({std::string(left, 'x')}));
    return RecordOf(std::move(fields));
}

TEST(SignalValueText, TextsFillTheTextBuffer) {
    const auto bit = MakeSignal(Describe(Bit()));
    AddEvent(*bit, 5, 1);
    for (const std::size_t length : {10'238U, 10'239U, 10'240U, 10'241U, 10'300U, 20'000U}) {
        const auto top = MakeSignal(Describe(TextOfLength(length, 3)));
        ForEachLeaf(*top, [](ISignal& leaf) { AddEvent(leaf, 5, 0); });
        for (const char* const text : {top->GetValueTextAt(5, FindAt), top->GetValueText()}) {
            EXPECT_EQ(text != nullptr, length < 10'240) << length;
            EXPECT_TRUE(text == nullptr || std::strlen(text) == length);
        }
        EXPECT_EQ(Copy(bit->GetValueTextAt(5, FindAt)), "1");
    }
    for (const std::size_t length : {10'239U, 10'241U}) {  // a scalar, and an array of two
        const auto word = MakeSignal(Describe(Enumeration({std::string(length, 'w')})));
        const auto array = MakeSignal(
            Describe(ArrayOf(Enumeration({std::string((length - 3) / 2, 'w')}), {{0, 1}})));
        for (ISignal* const signal : {word.get(), array.get()}) {
            ForEachLeaf(*signal, [](ISignal& leaf) { AddEvent(leaf, 5, 0); });
            EXPECT_EQ(signal->GetValueText() != nullptr, length < 10'240);
            EXPECT_EQ(signal->GetValueTextAt(5, FindAt) != nullptr, length < 10'240);
        }
    }
}

TEST(SignalValueText, MembersWithoutAnEnd) {
    const auto loop = MakeSignal(Describe(RecordOf({})));
    const auto array = MakeSignal(Describe(ArrayOf(Bit(), {{0, 1}})));
    for (ISignal* const signal : {loop.get(), array.get()}) {
        signal->GetSubSignals()->RemoveAll();
        signal->GetSubSignals()->Add(signal);
        EXPECT_EQ(signal->GetValueText(), nullptr);
        EXPECT_EQ(signal->GetValueTextAt(0, FindAtOrBefore), nullptr);
        signal->GetSubSignals()->Remove(signal);
    }
}

TEST(SignalValueText, AsksForNoMemory) {
    const auto top = MakeSignal(Describe(RecordOf({ArrayOf(Bit(), {{63, 0}}), Bit()})));
    MemberAt(MemberAt(*top, 0), 2).SetWave(MakeForeignWave(4).get());
    ForEachLeaf(*top, [](ISignal& leaf) { AddEvent(leaf, 5, 1); });
    top->SetValueTextFlag(true);
    const std::string expected = "(\"" + std::string(64, '1') + "\",'1')";
    EXPECT_EQ(Copy(top->GetValueTextAt(5, FindAt)), expected);
    ArmFailingAlloc(1, true);
    const char* const at = top->GetValueTextAt(5, FindAt);
    const char* const first = top->GetValueText();
    EXPECT_FALSE(DisarmFailingAlloc());
    EXPECT_EQ(Copy(at), expected);
    EXPECT_EQ(at, first);
}

}  // namespace
}  // namespace corv::test
