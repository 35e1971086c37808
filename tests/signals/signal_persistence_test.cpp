// Signals in byte streams and recordings.

#include "corv/containers/signal_container.h"
#include "tests/containers/fake_reader.h"
#include "tests/containers/fake_writer.h"
#include "tests/containers/memory_stream.h"
#include "tests/signals/signal_support.h"
#include "tests/support/test.h"

namespace corv::test {
namespace {

using namespace std::string_literals;

// A number, and a text behind its length, as streams have them.
std::string Number(std::size_t number) {
    return {static_cast<char>(number & 0xFF), static_cast<char>(number >> 8)};
}
std::string Text(const std::string& text) {
    return Number(text.size()) + text;
}

std::string Saved(ISignal& signal) {
    MemoryStream stream;
    EXPECT_EQ(signal.Save(&stream), S_OK);
    return stream.bytes;
}

ContainerPtr NewOwner() {
    ContainerPtr owner;
    EXPECT_EQ(CreateSignalContainer(owner.Out(), nullptr), S_OK);
    return owner;
}

// "key=value ..." in the order in which they are saved.
std::string PropertiesOf(ISignal& signal) {
    const std::string bytes = Saved(signal);
    std::string text;
    std::size_t at = 0;
    const auto number = [&] {
        at += 2;
        return static_cast<unsigned char>(bytes[at - 2]) +
               256 * std::size_t{static_cast<unsigned char>(bytes[at - 1])};
    };
    for (std::size_t left = 2 * number(); left > 0; --left) {
        const std::size_t length = number();
        text += bytes.substr(at, length) + (left % 2 == 0 ? "=" : left > 1 ? " " : "");
        at += length;
    }
    return text;
}

constexpr const char* kBitRecord =
    "\2\0\4\0Name\1\0a\x09\0Type Info\x0C\0"
    "e#3#bitc2 01\0\0";
const std::string kRecord(kBitRecord, 38);

// A signal as a container makes it, without the properties that it has from its making.
SignalPtr Bare() {
    SignalPtr signal;
    CreateSignal(nullptr, nullptr, signal.Out());
    return signal;
}

// The worked bytes of docs/formats/signal-tree.md: rows of an offset, bytes and what they are.
std::string BytesOfThePage() {
    std::ifstream page(TestFolder() + "/../docs/formats/signal-tree.md");
    std::string bytes;
    for (std::string line; std::getline(page, line);) {
        constexpr std::size_t kBytesAt = 10;  // after "| 0000 | `"
        const std::size_t end = line.find("` |", kBytesAt);
        if (line.size() < kBytesAt || line.compare(6, 4, " | `") != 0 || end == line.npos) {
            continue;
        }
        std::istringstream numbers(line.substr(kBytesAt, end - kBytesAt));
        for (unsigned byte = 0; numbers >> std::hex >> byte;) {
            bytes += static_cast<char>(byte);
        }
    }
    return bytes;
}

TEST(SignalPersistence, WritesAndReadsTheBytesOfThePage) {
    const SignalPtr signal = MakeSignal("r#4#pair2 a " + std::string(kBit) + " e r#0#0 ");
    signal->SetName("p");
    const ContainerPtr container = NewOwner();
    container->Add(signal.get());
    MemoryStream stream;
    ASSERT_EQ(container->Save(&stream), S_OK);
    const std::string bytes = BytesOfThePage();
    EXPECT_EQ(stream.bytes, bytes);
    MemoryStream of_page(bytes);
    const ContainerPtr loaded = NewOwner();
    EXPECT_EQ(loaded->Load(&of_page, nullptr), S_OK);
    ISignal* member = nullptr;
    EXPECT_EQ(loaded->FindSignal("p.a", &member), S_OK);
    // a record without fields has members, none, and no wave, loaded as well as made
    ASSERT_EQ(loaded->FindSignal("p.e", &member), S_OK);
    EXPECT_TRUE(member->GetWave() == nullptr && member->OwnsWave());
    ASSERT_NE(member->GetSubSignals(), nullptr);
    EXPECT_EQ(member->GetSubSignals()->GetCount(), 0);
}

// An entry's other parts are written after one that fails, no further entry.
// Names and handles have their places among the others, spelt as they were first.
TEST(SignalPersistence, SavesPropertiesInOrder) {
    SignalPtr signal = Bare();
    signal->SetName("a");
    signal->SetHandle(-7);
    EXPECT_EQ(PropertiesOf(*signal), "Handle=-7 Name=a");
    for (const char* const key : {"z", "Mode", "Color", "handlE", "nAme", "Handles"}) {
        signal->SetProperty(key, "1");
    }
    EXPECT_EQ(PropertiesOf(*signal), "Color=1 Handle=1 Handles=1 Mode=1 Name=1 z=1");
    signal = Bare();
    signal->SetProperty("naME", "b");
    signal->SetProperty("hanDLE", "3");
    signal->SetName("c");
    EXPECT_EQ(PropertiesOf(*signal), "hanDLE=3 naME=c");
    EXPECT_STREQ(signal->GetName(), "c");
    signal->SetHandle(8);
    EXPECT_EQ(PropertiesOf(*signal), "hanDLE=8 naME=c");
    signal->SetHandle(-1);
    EXPECT_EQ(PropertiesOf(*signal), "naME=c");
}

TEST(SignalPersistence, SavesToAFailingStream) {
    const SignalPtr signal = Bare();
    signal->SetProperty("A", "1");
    signal->SetProperty("B", "2");
    const int calls[] = {1, 5, 5, 5, 5, 9, 9, 9, 9, 10};
    for (int failing = 1; failing <= 10; ++failing) {
        MemoryStream stream;
        stream.failing_call = failing;
        EXPECT_EQ(signal->Save(&stream), failing < 10 ? E_FAIL : E_UNEXPECTED) << failing;
        EXPECT_EQ(stream.calls, calls[failing - 1]) << failing;
    }
}

struct Loaded {
    ContainerPtr owner = NewOwner();
    SignalPtr signal;
    HRESULT result = S_OK;
};

Loaded Load(MemoryStream& stream, ISignal* parent = nullptr) {
    Loaded loaded;
    EXPECT_EQ(loaded.owner->NewStdSignal(1, loaded.signal.Out()), S_OK);
    loaded.signal->AddRef();  // the owner releases one when it has the signal
    loaded.result = loaded.signal->Load(&stream, loaded.owner.get(), parent);
    if (FAILED(loaded.result)) {
        loaded.signal->Release();
    }
    return loaded;
}

TEST(SignalPersistence, LoadsTypesAndHandles) {
    struct Row {
        std::string type;  // and what becomes of it
        std::uint32_t value_size;
        int logic_class;
    };
    const Row rows[] = {{kStdLogic, 4, 1},
                        {kReal, 8, 0},
                        {kInteger, 4, 0},
                        {"nonsense", 4, 1},
                        {"e#10#std_ulogicc1 U", 4, 1},
                        {kTwoBits, 0, 6}};
    const SignalPtr parent = MakeSignal(kTwoBits);
    for (const Row& row : rows) {
        MemoryStream stream(Number(2) + Text("Handle") + Text("7") + Text("Type Info") +
                            Text(row.type) + Number(0));
        const Loaded loaded = Load(stream, parent.get());
        EXPECT_EQ(loaded.result, S_OK);
        EXPECT_EQ(loaded.signal->GetParent(), parent.get());
        EXPECT_TRUE(loaded.signal->OwnsWave());
        EXPECT_EQ(loaded.owner->GetCount(), 1);
        EXPECT_EQ(References(*loaded.signal), 2U) << "the owner's and the test's";
        EXPECT_EQ(loaded.signal->GetStdLogicClass(), row.logic_class) << row.type;
        if (row.value_size != 0) {
            EXPECT_EQ(loaded.signal->GetWaveValueSize(), row.value_size) << row.type;
        }
        EXPECT_EQ(loaded.signal->GetSubSignals(), nullptr) << "members come from the stream alone";
        EXPECT_EQ(loaded.signal->GetHandle(), -1);
        EXPECT_STREQ(loaded.signal->GetProperty("Handle"), "7");
    }
}

// Streams that end at each byte: the whole entries stay.
TEST(SignalPersistence, KeepsTheEntriesBeforeTheEnd) {
    for (std::size_t length = 0; length <= kRecord.size(); ++length) {
        MemoryStream stream(kRecord.substr(0, length));
        const Loaded loaded = Load(stream);
        const bool has_name = length >= 11;
        const bool has_all = length >= kRecord.size() - 2;
        EXPECT_EQ(loaded.result, has_all ? S_OK : E_FAIL) << length;
        EXPECT_EQ(PropertiesOf(*loaded.signal), "Display Mode=0 "s + (has_name ? "Name=a " : "") +
                                                    "Type Info=" + (has_all ? kBit : kStdLogic))
            << length;
        EXPECT_EQ(loaded.owner->GetCount(), has_all ? 1 : 0) << length;
    }
}

// What loading refuses, anywhere in a tree, is not saved either: not a byte of it.
TEST(SignalPersistence, RefusesTextsThatAreTooLong) {
    struct Row {
        std::size_t key, value;
        bool is_good;
    };
    for (const Row& row : {Row{127, 10'239, true}, Row{128, 0, false}, Row{65'535, 0, false},
                           Row{1, 10'240, false}, Row{0, 65'535, false}, Row{0, 0, true}}) {
        const std::string key(row.key, 'k');
        const std::string value(row.value, 'v');
        const HRESULT expected = row.is_good ? S_OK : E_FAIL;
        MemoryStream stream(Number(1) + Text(key) + Text(value) + Number(0));
        const Loaded loaded = Load(stream);
        EXPECT_EQ(loaded.result, expected) << row.key << " " << row.value;
        EXPECT_TRUE(!row.is_good || loaded.signal->GetProperty(key.c_str()) == value);

        const SignalPtr signal = MakeSignal("r#1#r1 a " + std::string(kTwoBits));
        MemberAt(MemberAt(*signal, 0), 1).SetProperty(key.c_str(), value.c_str());
        const ContainerPtr container = NewOwner();
        container->Add(signal.get());
        MemoryStream whole;
        MemoryStream alone;
        EXPECT_EQ(container->Save(&whole), expected);
        EXPECT_EQ(signal->Save(&alone), expected);
        EXPECT_TRUE(whole.bytes.empty() == !row.is_good && alone.bytes.empty() == !row.is_good);
    }
}

// ---- random trees ----

std::string RandomType(std::mt19937& random, int depth) {
    const char* const scalars[] = {kBit, kStdLogic, kInteger, kReal};
    const auto kind = depth > 0 ? random() % 4 : 0;
    if (kind < 2) {
        return scalars[random() % std::size(scalars)];
    }
    if (kind == 2) {
        return "a#1#a1 rict0 " + std::to_string(random() % 4) + " " + RandomType(random, depth - 1);
    }
    const auto fields = 1 + random() % 3;
    std::string type = "r#1#r" + std::to_string(fields);
    for (unsigned i = 0; i < fields; ++i) {
        type += " f" + std::to_string(i) + " " + RandomType(random, depth - 1);
    }
    return type;
}

void SetRandomProperties(std::mt19937& random, ISignal& signal) {
    for (auto i = random() % 4; i > 0; --i) {
        const std::string key(random() % 127, static_cast<char>('a' + random() % 26));
        const std::string value(random() % 300, static_cast<char>(1 + random() % 255));
        signal.SetProperty(key.c_str(), value.c_str());
    }
    for (int i = 0; signal.GetSubSignals() && i < signal.GetSubSignals()->GetCount(); ++i) {
        SetRandomProperties(random, MemberAt(signal, static_cast<std::size_t>(i)));
    }
}

TEST(SignalPersistence, RandomTreesComeBackByteByByte) {
    std::mt19937 random(20'261);
    std::size_t bytes = 0;
    for (int round = 0; round < 200; ++round) {
        const ContainerPtr container = NewOwner();
        for (auto i = 1 + random() % 4; i > 0; --i) {
            const SignalPtr signal = MakeSignal(RandomType(random, 4));
            SetRandomProperties(random, *signal);
            container->Add(signal.get());
        }
        MemoryStream first;
        ASSERT_EQ(container->Save(&first), S_OK);
        const ContainerPtr loaded = NewOwner();
        ASSERT_EQ(loaded->Load(&first, nullptr), S_OK);
        EXPECT_EQ(first.position, first.bytes.size());
        MemoryStream second;
        ASSERT_EQ(loaded->Save(&second), S_OK);
        ASSERT_EQ(second.bytes, first.bytes) << round;
        bytes += first.bytes.size();
    }
    EXPECT_GT(bytes, 100'000U);
}

// ---- recordings ----

TEST(SignalPersistence, WritesItselfToAWriter) {
    const SignalPtr record = MakeSignal("r#1#r2 x "s + kBit + " v " + kTwoBits);
    record->SetName("r");
    record->SetMode(2);
    record->SetProperty("MaxTime", "90");
    record->SetProperty("VBus", "b");
    ISignal& leaf = MemberAt(*record, 0);
    leaf.SetHandle(5);
    leaf.SetProperty("MaxTime", "70");
    leaf.SetProperty("VBus", "w");
    leaf.SetStimulator("s");
    FakeWriter writer;
    EXPECT_EQ(record->WriteToWriter(&writer, 3), S_OK);
    EXPECT_EQ(writer.text,
              "rx2@3 VBus(-1)=b .x=5@0 Stimulator(5)=s VBus(5)=w .vx2@1 (1)=-1@0 (0)=-1@1 ");
    EXPECT_EQ(writer.details, "-1,2,90 -1,2,70 -1,2,0 -1,2,0 -1,2,0 ");
    for (int allowed = 0; allowed < 8; ++allowed) {
        FakeWriter refusing;
        refusing.allowed = allowed;
        EXPECT_EQ(record->WriteToWriter(&refusing, -1), E_FAIL) << allowed;
        EXPECT_EQ(refusing.allowed, -1) << "nothing is written after a refusal";
    }
    EXPECT_EQ(record->WriteToWriter(nullptr, 0), E_FAIL);
}

TEST(SignalPersistence, LoadsItselfFromAReader) {
    FakeReader reader;
    reader.top = {1, 3};
    reader.signals[1] = {"v", kTwoBits, 90, {2}};
    reader.signals[2] = {"(1)", kBit, 70, {}};
    reader.signals[3] = {"a", kReal, 0, {}};
    reader.properties = {{{1, "VBus"}, "b"}, {{2, "Stimulator"}, "s"}};
    const ContainerPtr owner = NewOwner();
    ASSERT_EQ(owner->LoadFromReader(&reader), S_OK);
    ISignal* vector = nullptr;
    ISignal* scalar = nullptr;
    ASSERT_EQ(owner->GetAt(0, &vector), S_OK);
    ASSERT_EQ(owner->GetAt(1, &scalar), S_OK);
    EXPECT_STREQ(vector->GetProperty("VBus"), "b");
    EXPECT_STREQ(vector->GetProperty("Stimulator"), "") << "what the reader has not is empty";
    EXPECT_EQ(vector->GetHandle(), -1);
    EXPECT_EQ(vector->GetProperty("Handle"), nullptr);
    EXPECT_EQ(vector->GetWave(), nullptr);
    EXPECT_EQ(vector->GetSubSignals()->GetCount(), 1) << "not what its type tells";
    EXPECT_EQ(MemberAt(*vector, 0).GetParent(), vector);
    EXPECT_STREQ(MemberAt(*vector, 0).GetStimulator(), "s");
    EXPECT_STREQ(scalar->GetStimulator(), "") << "loaded after one that has it";
    scalar->SetColor(3);
    EXPECT_EQ(MemberAt(*vector, 0).GetProperty("Color"), nullptr);
    EXPECT_EQ(scalar->GetHandle(), 3);
    EXPECT_EQ(scalar->GetWaveValueSize(), 8U);
    reader.signals[2].type = nullptr;  // a member that can't be loaded
    EXPECT_EQ(NewOwner()->LoadFromReader(&reader), E_FAIL);
}

// Without memory a signal is loaded and in its owner's list, or neither.
TEST(SignalPersistence, LoadsWholeOrNotWithoutMemory) {
    MemoryStream stream(kRecord);
    Loaded loaded;
    FailEveryAllocation(
        [&] {
            stream.position = 0;
            loaded = {};
            ASSERT_EQ(loaded.owner->NewStdSignal(1, loaded.signal.Out()), S_OK);
            loaded.signal->AddRef();
        },
        [&] { return loaded.signal->Load(&stream, loaded.owner.get(), nullptr); },
        [&](HRESULT result) {
            EXPECT_EQ(loaded.owner->GetCount(), SUCCEEDED(result) ? 1 : 0);
            if (FAILED(result)) {
                loaded.signal->Release();
            }
        });
    loaded.owner->RemoveAll();
}

// ---- trees that don't end ----

TEST(SignalPersistence, TreesThatContainThemselvesEnd) {
    const SignalPtr signal = MakeSignal(kTwoBits);
    for (int i = 0; i < 2; ++i) {
        signal->GetSubSignals()->Add(signal.get());
    }
    signal->SetHotKey('x');
    signal->SetValueTextFlag(true);
    EXPECT_EQ(MemberAt(*signal, 0).GetHotKey(), 'x');
    FakeWriter writer;
    writer.allowed = 1'000'000;
    EXPECT_EQ(signal->WriteToWriter(&writer, 0), E_FAIL);
    signal->GetSubSignals()->RemoveAll();
}

}  // namespace
}  // namespace corv::test
