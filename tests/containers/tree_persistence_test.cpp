// Saving and loading as far as the containers do it.

#include "corv/stremo/streams.h"
#include "signals/loads.h"
#include "tests/containers/container_support.h"
#include "tests/containers/fake_reader.h"
#include "tests/containers/fake_writer.h"
#include "tests/containers/memory_stream.h"
#include "tests/support/test.h"

namespace corv::test {
namespace {

constexpr const char* kBit = "e#3#bitc2 01";
constexpr const char* kBits = "a#22#bit_vector(1 downto 0)1 ricd1 0 e#3#bitc2 01";

std::string Bytes(std::initializer_list<int> bytes) {
    return {bytes.begin(), bytes.end()};
}

std::string Saved(ISignalContainer& container) {
    MemoryStream stream;
    EXPECT_EQ(container.Save(&stream), S_OK);
    return stream.bytes;
}

void AddNew(ISignalContainer& container, const char* type, const char* name,
            const char* max_time = "0") {
    frame::ComPtr<ISignal> signal;
    ASSERT_EQ(container.NewSignal(type, signal.Out()), S_OK);
    signal->SetName(name);
    signal->SetProperty("MaxTime", max_time);
    container.Add(signal.get());
}

TEST(TreePersistence, SavesCountsAndSignals) {
    const ContainerPtr container = NewContainer();
    EXPECT_EQ(Saved(*container), Bytes({0, 0}));
    AddSignals(*container, "a s(.x .y(.z))");
    EXPECT_EQ(Saved(*container), Bytes({2, 0, 0, 0, 0, 0, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 1, 0,  //
                                        0, 0, 0, 0}));
    for (int failing = 1; failing <= 9; ++failing) {
        MemoryStream stream;
        stream.failing_call = failing;
        const bool fails = failing <= 8;
        EXPECT_EQ(container->Save(&stream), fails ? E_UNEXPECTED : S_OK) << failing;
        EXPECT_EQ(stream.calls, fails ? failing : 8) << "it ends at once";
    }
    EXPECT_EQ(container->Save(nullptr), E_FAIL);
}

TEST(TreePersistence, SavesNoMoreThanTheCountHolds) {
    const ContainerPtr container = NewContainer();
    const FakePtr signal = NewFake("s");
    for (int i = 0; i < 65'535; ++i) {
        container->Add(signal.get());
    }
    EXPECT_EQ(Saved(*container).substr(0, 2), "\xFF\xFF");
    container->Add(signal.get());
    MemoryStream stream;
    EXPECT_EQ(container->Save(&stream), E_FAIL);
    EXPECT_EQ(stream.bytes, "");
}

TEST(TreePersistence, SavesAndLoadsSoDeep) {
    for (const int depth : {1, 2, 255, 256, 257, 100'000}) {
        std::string bytes;
        for (int i = 1; i < depth; ++i) {
            bytes += Bytes({1, 0, 0, 0});
        }
        bytes += Bytes({0, 0});
        MemoryStream stream(Bytes({2, 0, 0, 0, 0, 0, 0, 0}) + bytes);
        const ContainerPtr container = NewContainer();
        EXPECT_EQ(container->Load(&stream, nullptr), depth <= 256 ? S_OK : E_FAIL) << depth;
        EXPECT_EQ(container->GetCount(), 2) << "what was loaded stays";
        int levels = 0;
        ISignal* signal = nullptr;
        for (ISignalContainer* at = container.get(); at != nullptr; ++levels) {
            ASSERT_EQ(at->GetAt(at == container.get() ? 1 : 0, &signal), S_OK);
            at = signal->GetSubSignals();
        }
        EXPECT_EQ(levels, depth <= 256 ? depth : 1);
        container->Remove(signal);
    }
    const FakePtr endless = NewComposite("s");
    endless->GetSubSignals()->Add(endless.get());
    MemoryStream stream;
    EXPECT_EQ(endless->GetSubSignals()->Save(&stream), E_FAIL);
    endless->GetSubSignals()->RemoveAll();
}

TEST(TreePersistence, LoadsWhatItSaves) {
    const ContainerPtr container = NewContainer();
    AddNew(*container, kBit, "a", "70");
    AddNew(*container, kBits, "v", "90");
    AddNew(*container, kBit, "b", "80");
    MemoryStream stream(Saved(*container));
    const ContainerPtr loaded = NewContainer();
    ASSERT_EQ(loaded->Load(&stream, nullptr), S_OK);
    EXPECT_EQ(TextOf(*loaded), "a v((1) (0)) b");
    EXPECT_EQ(loaded->GetMaxTime(), 90);
    EXPECT_EQ(Saved(*loaded), stream.bytes);
    EXPECT_EQ(ManagerOf(*Find(*loaded, "v")->GetSubSignals()).get(), ManagerOf(*loaded).get());

    MemoryStream none(Bytes({0, 0}));
    EXPECT_EQ(loaded->Load(&none, nullptr), E_FAIL);
    EXPECT_EQ(loaded->Load(&none, nullptr), E_UNEXPECTED) << "the stream's own result";
    EXPECT_EQ(loaded->GetMaxTime(), 90);
    EXPECT_EQ(loaded->Load(nullptr, nullptr), E_FAIL);
    const FakePtr parent = NewComposite("p");
    MemoryStream again(Saved(*loaded));
    EXPECT_EQ(parent->GetSubSignals()->Load(&again, parent.get()), S_OK);
    EXPECT_EQ(Find(*parent->GetSubSignals(), "v")->GetParent(), parent.get());
}

// Streams that end at each byte, and that fail at one call.
TEST(TreePersistence, KeepsWhatCameBeforeTheEnd) {
    const ContainerPtr container = NewContainer();
    std::vector<std::size_t> ends;  // of the properties of each signal
    for (const char* const name : {"a", "b", "c", "d"}) {
        AddNew(*container, kBit, name);
        ends.push_back(Saved(*container).size() - 2);
    }
    const std::string bytes = Saved(*container);
    for (std::size_t length = 0; length <= bytes.size(); ++length) {
        MemoryStream stream(bytes.substr(0, length));
        const ContainerPtr loaded = NewContainer();
        EXPECT_EQ(loaded->Load(&stream, nullptr), length < 2 ? E_UNEXPECTED : S_OK) << length;
        const auto whole = std::upper_bound(ends.begin(), ends.end(), length) - ends.begin();
        const std::string all = " a b c d";
        EXPECT_EQ(" " + TextOf(*loaded),
                  whole > 0 ? all.substr(0, static_cast<std::size_t>(2 * whole)) : " ");
    }
    AddNew(*container, kBits, "v");
    MemoryStream counted(Saved(*container));
    NewContainer()->Load(&counted, nullptr);
    for (int call = 1; call <= counted.calls; ++call) {
        MemoryStream stream(counted.bytes);
        stream.failing_call = call;
        const ContainerPtr loaded = NewContainer();
        EXPECT_EQ(loaded->Load(&stream, nullptr), call == 1 ? E_UNEXPECTED : S_OK);
        Saved(*loaded);
    }
}

TEST(TreePersistence, CountsThatNoBytesFollow) {
    MemoryStream stream(Bytes({0xFF, 0xFF, 0, 0, 0xFF, 0xFF, 0, 0, 0xFF, 0xFF, 1, 0}));
    const ContainerPtr container = NewContainer();
    EXPECT_EQ(container->Load(&stream, nullptr), S_OK);
    EXPECT_LT(stream.calls, 20);
    // a record that can't be read although there are bytes is left, the next one is tried
    MemoryStream refused(Bytes({2, 0, 1, 0, 128, 0, 1, 0, 1, 0, 'K', 1, 0, 'V', 0, 0}));
    const ContainerPtr second = NewContainer();
    EXPECT_EQ(second->Load(&refused, nullptr), S_OK);
    ASSERT_EQ(second->GetCount(), 1);
    EXPECT_EQ(refused.position, refused.bytes.size());
}

// ---- recordings ----

// A recording of a table: "1 a bit 70 ;; 2 v bits 90 3 4" are handle, name, type ("-": none),
// latest time and members.
FakeReader ReaderOf(const std::string& top, const std::string& table) {
    FakeReader reader;
    for (const std::string& word : Split(top, ' ')) {
        reader.top.push_back(std::stoi(word));
    }
    for (const auto& row : Table(table)) {
        const std::vector<std::string> words = Split(row[0], ' ');
        FakeReader::Signal& signal = reader.signals[std::stoi(words[0])];
        signal.name = words[1];
        signal.type = words[2] == "bit" ? kBit : words[2] == "bits" ? kBits : nullptr;
        signal.max_time = Int(words[3]);
        for (std::size_t i = 4; i < words.size(); ++i) {
            signal.members.push_back(std::stoi(words[i]));
        }
    }
    return reader;
}

// Top-level handles, signals, the result and the tree that is loaded.
constexpr const char* kRecordings = R"(
1 2 | 1 a bit 7,2 b bit 9           | ok | a=1 b=2
1   | 1 a bit 7 2,2 .x bit 3        | ok | a(.x=2)
5 5 | 5 a bit 7                     | ok | a=5 a=5
-7  | -7 a bit 7                    | ok | a=-7
1 2 | 1 a bit 7,2 b - 9             | a signal has no type | a=1
1 2 | 1 a bit 7,2 b bit 9 3         | a signal has no type | a=1
1 2 | 1 a bit 7,2 b bit 9 3,3 c - 0 | a signal has no type | a=1
1 2 | 1 a bit 7,2 b bit 9 -1        | a signal is missing | a=1
1 2 | 1 a bit 7,2 b bit 9 2         | a signal is a member of itself | a=1
1   | 1 a bits 7 2 3,2 (1) bit 3 2 2 3 3,3 (0) bit 3 3 3 2 2 | a signal is a member of itself | _
)";

TEST(TreePersistence, LoadsFromAReader) {
    for (const auto& row : Table(kRecordings)) {
        std::string table = row[1];
        std::replace(table.begin(), table.end(), ',', '\n');
        FakeReader reader = ReaderOf(row[0], table);
        const ContainerPtr container = NewContainer();
        EXPECT_EQ(container->LoadFromReader(&reader), row[2] == "ok" ? S_OK : E_FAIL) << row[1];
        EXPECT_EQ(row[2] == "ok" || row[2] == LastStreamError(), true) << LastStreamError();
        EXPECT_EQ(TextOf(*container), row[3]) << row[1];
        EXPECT_EQ(tree::Running().reader_load, nullptr);
    }
}

TEST(TreePersistence, WhatAReaderSaysReachesTheSignals) {
    FakeReader reader = ReaderOf("1 1 2", "1 a bit -5 ;; 2 v bits 90 3 1 ;; 3 (1) bit 95");
    const ContainerPtr container = NewContainer();
    AddNew(*container, kBit, "first");
    ASSERT_EQ(container->LoadFromReader(&reader), S_OK);
    EXPECT_EQ(TextOf(*container), "first a=1 a=1 v((1)=3 a=1)");
    EXPECT_EQ(TextOf(*ManagerOf(*container)), "1:a,a,a 3:(1)");
    EXPECT_EQ(container->GetMaxTime(), 90) << "of the top-level signals";
    EXPECT_EQ(Find(*container, "v(1)")->GetMode(), 3);
    EXPECT_EQ(Find(*container, "v(1)")->GetMaxTime(), 95);
    EXPECT_STREQ(Find(*container, "v")->GetTypeInfo(), kBits);
    ISignal* signal = Find(*container, "v");
    EXPECT_EQ(container->CreateFromReader(&reader, nullptr, 9, &signal), E_FAIL);
    EXPECT_EQ(signal, nullptr);
    EXPECT_EQ(container->CreateFromReader(nullptr, nullptr, 0, &signal), E_FAIL);
    EXPECT_EQ(container->CreateFromReader(&reader, nullptr, 2, &signal), S_OK);
    EXPECT_STREQ(signal->GetName(), "v");
    EXPECT_EQ(container->LoadFromReader(nullptr), E_FAIL);
    FakeReader empty;
    EXPECT_EQ(container->LoadFromReader(&empty), S_OK);
    empty.more_signals = -3;
    EXPECT_EQ(container->LoadFromReader(&empty), S_OK);
}

// Each has its own handle and wave, and a second recording takes nothing from the first.
TEST(TreePersistence, NamesThatAreAlikeLoadSideBySide) {
    FakeReader reader = ReaderOf(
        "0 1 2 3 4", "0 clk bit 0 ;; 1 CLK bit 0 ;; 2 a bit 0 ;; 3 a(3) bit 0 ;; 4 a.x bit 0");
    FakeReader second = ReaderOf("9", "9 clk bit 0");
    const ContainerPtr container = NewContainer();
    ASSERT_EQ(container->LoadFromReader(&reader), S_OK);
    ISignalWave* const wave = Find(*container, "clk")->GetWave();
    ASSERT_EQ(container->LoadFromReader(&second), S_OK);
    EXPECT_EQ(TextOf(*container), "clk=0 CLK=1 a=2 a(3)=3 a.x=4 clk=9");
    EXPECT_EQ(TextOf(*ManagerOf(*container)), "0:clk 1:CLK 2:a 3:a(3) 4:a.x 9:clk");
    std::set<ISignalWave*> waves;
    for (std::uint32_t i = 0; i < 6; ++i) {
        ISignal* signal = nullptr;
        container->GetAt(i, &signal);
        waves.insert(signal->GetWave());
        EXPECT_TRUE(signal->OwnsWave());
    }
    EXPECT_EQ(waves.size(), 6U);
    EXPECT_EQ(Find(*container, "clk")->GetWave(), wave);
}

TEST(TreePersistence, DoesNotBelieveAReadersCounts) {
    for (const int more : {1, std::numeric_limits<int>::max() - 2}) {
        FakeReader reader = ReaderOf("1 2", "1 a bit 7 ;; 2 v bits 9 3 ;; 3 (1) bit 0");
        const ContainerPtr container = NewContainer();
        reader.more_signals = more;
        EXPECT_EQ(container->LoadFromReader(&reader), E_FAIL);
        EXPECT_EQ(TextOf(*container), "a=1 v((1)=3)");
        container->RemoveAll();
        reader.more_members = more;
        EXPECT_EQ(container->LoadFromReader(&reader), E_FAIL);
        EXPECT_EQ(TextOf(*container), "a=1");
    }
    FakeReader reader;
    signals::ReaderLoad load(reader);
    for (int i = 0; i < 1'100'000; ++i) {
        ASSERT_TRUE(load.Enter(0, 7));
    }
}

TEST(TreePersistence, OutOfMemoryWhileLoading) {
    FakeReader reader =
        ReaderOf("2 1", "1 a bit 7 ;; 2 v bits 9 3 4 ;; 3 (1) bit 0 ;; 4 (0) bit 0");
    const ContainerPtr saved = NewContainer();
    ASSERT_EQ(saved->LoadFromReader(&reader), S_OK);
    MemoryStream stream(Saved(*saved));
    ContainerPtr container;
    const auto prepare = [&] {
        container = NewContainer();
        stream.position = 0;
    };
    const auto check = [&](HRESULT) {
        EXPECT_LE(container->GetCount(), 2);
        for (int i = 0; i < container->GetCount(); ++i) {
            ISignal* signal = nullptr;
            container->GetAt(static_cast<std::uint32_t>(i), &signal);
            const std::string name = signal->GetName() != nullptr ? signal->GetName() : "";
            EXPECT_TRUE(name == "a" || name == "v") << name;
        }
        Saved(*container);
        TextOf(*ManagerOf(*container));
    };
    FailEveryAllocation(
        prepare, [&] { return container->LoadFromReader(&reader); }, check);
    FailEveryAllocation(
        prepare, [&] { return container->Load(&stream, nullptr); }, check);
}

TEST(TreePersistence, WritesToAWriter) {
    const ContainerPtr container = NewContainer();
    AddNew(*container, kBits, "v");
    AddNew(*container, kBit, "a");
    AddNew(*container, kBit, "b");
    EXPECT_EQ(container->WriteToWriter(nullptr), E_FAIL);
    FakeWriter writer;
    writer.is_ready = false;
    EXPECT_EQ(container->WriteToWriter(&writer), S_OK);
    EXPECT_EQ(writer.text, "");
    writer.is_ready = true;
    EXPECT_EQ(container->WriteToWriter(&writer), S_OK);
    EXPECT_EQ(writer.text, "vx2@-1 (1)=-1@0 (0)=-1@1 a=-1@-1 b=-1@-1 ");
    FakeWriter refusing;
    refusing.allowed = 3;
    EXPECT_EQ(container->WriteToWriter(&refusing), E_FAIL);
    EXPECT_EQ(refusing.text, "vx2@-1 (1)=-1@0 (0)=-1@1 a=-1@-1 ");
}

}  // namespace
}  // namespace corv::test
