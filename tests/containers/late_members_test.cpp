// Elements of arrays that are made when they are asked for.

#include "containers/signal_container.h"
#include "tests/containers/container_support.h"
#include "tests/containers/fake_reader.h"
#include "tests/containers/fake_writer.h"
#include "tests/containers/memory_stream.h"
#include "tests/support/test.h"

namespace corv::test {
namespace {

using SignalPtr = frame::ComPtr<ISignal>;

constexpr const char* kBit = "e#3#bitc2 01";
constexpr const char* kBits = "a#22#bit_vector(3 downto 0)1 ricd3 0 e#3#bitc2 01";

// "v" with elements of handles 10 to 13, "w" with 20 to 22.
FakeReader TwoBuses() {
    FakeReader reader;
    reader.one_mode = 4;
    reader.top = {1, 2};
    reader.signals[1] = {"v", kBits, 70, {10, 11, 12, 13}};
    reader.signals[2] = {"w", kBits, 90, {20, 21, 22}};
    for (int i = 0; i < 4; ++i) {
        reader.signals[10 + i] = {"(" + std::to_string(3 - i) + ")", kBit, 60, {}};
        reader.signals[20 + i] = {"(" + std::to_string(i - 1) + ")", kBit, 50, {}};
    }
    return reader;
}

ContainerPtr Loaded(FakeReader reader) {
    ContainerPtr container = NewContainer();
    EXPECT_EQ(container->LoadFromReader(&reader), S_OK);
    return container;
}

bool IsLate(ISignalContainer& container, const char* signal) {
    return containers::SignalContainer::FromOwn(*Find(container, signal)->GetSubSignals())
        ->IsLate();
}

std::string Saved(ISignalContainer& container) {
    MemoryStream stream;
    EXPECT_EQ(container.Save(&stream), S_OK);
    return stream.bytes;
}

TEST(LateMembers, WaitUntilTheyAreAskedFor) {
    const ContainerPtr container = Loaded(TwoBuses());
    EXPECT_EQ(Find(*container, "v")->GetSubSignals()->GetCount(), 4);
    EXPECT_EQ(ManagerOf(*container)->GetFirstHandle(), 10);
    EXPECT_EQ(ManagerOf(*container)->GetNextHandle(), 11);
    EXPECT_TRUE(IsLate(*container, "v"));
    ISignal* const member = ManagerOf(*container)->GetFirstSignal(21);
    EXPECT_STREQ(member->GetName(), "(0)");
    EXPECT_STREQ(member->GetProperty("handle"), "21");
    EXPECT_EQ(member->GetParent(), Find(*container, "w"));
    EXPECT_EQ(member->GetMode(), 4);
    EXPECT_EQ(member->GetMaxTime(), 50);
    EXPECT_STREQ(member->GetTypeInfo(), kBit);
    EXPECT_EQ(member->GetWaveValueSize(), 4U);
    EXPECT_STREQ(member->GetProperty("VBus"), "");
    EXPECT_EQ(ManagerOf(*container)->GetNextSignal(), nullptr);
    EXPECT_TRUE(IsLate(*container, "v"));
    EXPECT_FALSE(IsLate(*container, "w"));
    EXPECT_EQ(TextOf(*container), "v((3)=10 (2)=11 (1)=12 (0)=13) w((-1)=20 (0)=21 (1)=22)");
}

TEST(LateMembers, AreAlike) {
    using Change = std::function<void(FakeReader&)>;
    const std::vector<Change> changes{
        [](FakeReader& reader) { reader.signals[13].name = "(00)"; },
        [](FakeReader& reader) { reader.signals[12].name = ".x"; },
        [](FakeReader& reader) { reader.signals[11].max_time = 61; },
        [](FakeReader& reader) { reader.signals[13].type = "e#3#bitc3 01Z"; },
        [](FakeReader& reader) {
            reader.properties[{12, "Stimulator"}] = "clock";
        },
        [](FakeReader& reader) {
            reader.properties[{10, "VBus"}] = "b";
        },
        [](FakeReader& reader) { reader.signals[13].members = {30}; },
        [](FakeReader& reader) {
            reader.signals[1].members = {10, 11, 13, 12};
        },
        [](FakeReader& reader) {
            reader.signals[1].members = {10, 11, 11, 12};
        },
        [](FakeReader& reader) {
            reader.signals[2].members = {13, 14, 12};
        },
    };
    for (std::size_t i = 0; i < changes.size(); ++i) {
        FakeReader reader = TwoBuses();
        reader.signals[14] = reader.signals[30] = {"(-1)", kBit, 60, {}};
        changes[i](reader);
        const ContainerPtr container = Loaded(reader);
        EXPECT_FALSE(IsLate(*container, "v")) << i;
        const std::string members = TextOf(*Find(*container, "v")->GetSubSignals());
        std::string expected;
        for (const int handle : reader.signals[1].members) {
            const FakeReader::Signal& member = reader.signals[handle];
            expected += (expected.empty() ? "" : " ") + member.name +
                        (member.members.empty() ? "=" + std::to_string(handle) : "((-1)=30)");
        }
        EXPECT_EQ(members, expected) << i;
    }
}

// What a host does to a container, on one whose members are made and one whose aren't.
class Hosts {
public:
    Hosts() {
        made_.manager = ManagerOf(*made_.container);
        late_.manager = ManagerOf(*late_.container);
        TextOf(*made_.container);
    }

    void Step(std::mt19937& random) {
        const auto kind = static_cast<int>(random() % 17);
        const int handle = 9 + static_cast<int>(random() % 15);
        EXPECT_EQ(Do(made_, kind, handle), Do(late_, kind, handle)) << kind << " " << handle;
    }
    void Compare() { EXPECT_EQ(State(made_), State(late_)); }

private:
    struct Host {
        ContainerPtr container = Loaded(TwoBuses());
        ManagerPtr manager;
        std::vector<SignalPtr> kept;
    };

    static std::string State(Host& host) {
        return TextOf(*host.manager) + " " + TextOf(*host.container) + Saved(*host.container);
    }
    static std::string NameOf(ISignal* signal) {
        return signal != nullptr ? signal->GetName() : "none";
    }

    static std::string Do(Host& host, int kind, int handle) {
        ISignal* bus = nullptr;
        if (FAILED(host.container->FindSignal(handle % 2 == 0 ? "v" : "w", &bus))) {
            return "gone";
        }
        ISignalContainer* const members = bus->GetSubSignals();
        const int handles[] = {handle, handle + 1, 30};
        ISignal* found = nullptr;
        FakeWriter writer;
        writer.allowed = 99;
        SignalPtr made;
        frame::ComPtr<ISignalEnumerator> signals;
        switch (kind) {
            case 0:
                return NameOf(host.manager->GetFirstSignal(handle));
            case 1:
            case 2:
                return std::to_string(host.manager->RemoveHandle(handle));
            case 3:
                CreateSignal(kBit, nullptr, made.Out());
                made->SetName("new");
                made->SetHandle(handle);
                return std::to_string(host.container->Add(made.get()));
            case 4:
                host.kept.push_back(SignalPtr::Share(bus));
                return std::to_string(host.container->Remove(bus)) + TextOf(*host.manager);
            case 5:
                return std::to_string(host.container->AssignHandles("v", handles, 3));
            case 6:
                members->FindSignal("(1)", &found);
                return NameOf(found);
            case 7:
                host.manager->RemoveAll();
                return "";
            case 8:
                CreateHandleManager(host.manager.Out());
                host.container->SetHandleManager(host.manager.get());
                return "";
            case 9:
                bus->SetHotKey(65);
                return "";
            case 10:
                return std::to_string(members->GetCount());
            case 11:
                bus->EnumSubSignals(signals.Out());
                signals->Next(1, &found, nullptr);
                return NameOf(found);
            case 12:
                host.container->WriteToWriter(&writer);
                return writer.text + writer.details;
            case 13:
                CreateSignal(kBit, nullptr, made.Out());
                made->SetName("more");
                return std::to_string(members->Add(made.get()));
            case 14:
                host.kept.push_back(SignalPtr::Share(bus));
                return std::to_string(host.container->Add(bus));
            case 15:
                members->RemoveAll();
                return TextOf(*host.manager);
            default:
                return std::to_string(bus->SetTypeInfo(kBits));
        }
    }

    Host made_;
    Host late_;
};

TEST(LateMembers, AreTheSameToTheHost) {
    std::mt19937 random(1);
    for (int round = 0; round < 400; ++round) {
        Hosts hosts;
        for (int step = round % 7; step >= 0; --step) {
            hosts.Step(random);
        }
        hosts.Compare();
    }
}

// Without memory nothing has happened, and all can be had later.
TEST(LateMembers, OutOfMemory) {
    ContainerPtr container;
    SignalPtr other;
    MemoryStream stream;
    stream.bytes.reserve(4096);
    ISignalContainer* members = nullptr;
    bool is_iterator = false;
    const std::string all = TextOf(*Loaded(TwoBuses()));
    const std::string listed = TextOf(*ManagerOf(*Loaded(TwoBuses())));
    const auto prepare = [&] {
        stream.bytes.clear();
        container = Loaded(TwoBuses());
        members = Find(*container, "v")->GetSubSignals();
        CreateSignal(kBit, nullptr, other.Out());
        other->SetHandle(12);
    };
    const auto check = [&](HRESULT result) {
        EXPECT_TRUE(result == E_OUTOFMEMORY || (result == E_FAIL && is_iterator));
        EXPECT_EQ(TextOf(*ManagerOf(*container)), listed);
        EXPECT_EQ(TextOf(*container), all);
    };
    ISignal* signal = nullptr;
    const std::vector<std::function<HRESULT()>> actions{
        [&] { return members->GetAt(3, &signal); },
        [&] { return members->FindSignal("(1)", &signal); },
        [&] { return container->FindSignal("v(1)", &signal); },
        [&] {
            frame::ComPtr<ISignalEnumerator> signals;
            return Find(*container, "v")->EnumSubSignals(signals.Out());
        },
        [&] {
            frame::ComPtr<IBusEventIterator> events;
            return Find(*container, "v")->GetBusEventIterator(events.Out());
        },
        [&] {
            signal = ManagerOf(*container)->GetFirstSignal(11);
            return signal != nullptr ? S_OK : E_OUTOFMEMORY;
        },
        [&] { return container->Add(other.get()); },
        [&] { return members->Add(other.get()); },
    };
    for (const auto& action : actions) {
        is_iterator = &action == &actions[4];
        FailEveryAllocation(prepare, action, check);
    }
    FailEveryAllocation(
        prepare, [&] { return container->Save(&stream); },
        [&](HRESULT result) {
            EXPECT_TRUE(FAILED(result));
            EXPECT_EQ(TextOf(*container), all);
            EXPECT_EQ(stream.bytes, "");
        });
}

TEST(LateMembers, EndWithWhatListsThem) {
    FakeReader reader = TwoBuses();
    ContainerPtr container = Loaded(reader);
    const ManagerPtr manager = ManagerOf(*container);
    const SignalPtr bus = SignalPtr::Share(Find(*container, "v"));
    EXPECT_EQ(container->Remove(bus.get()), S_OK);
    EXPECT_EQ(manager->GetFirstHandle(), 20);
    EXPECT_EQ(TextOf(*bus->GetSubSignals()), "(3)=10 (2)=11 (1)=12 (0)=13");
    EXPECT_EQ(TextOf(*manager), "20:(-1) 21:(0) 22:(1)");
    ASSERT_EQ(container->LoadFromReader(&reader), S_OK);
    container = {};
    EXPECT_EQ(manager->GetFirstHandle(), -1);
    container = NewContainer(manager.get());
    ASSERT_EQ(container->LoadFromReader(&reader), S_OK);
    ManagerPtr other;
    ASSERT_EQ(CreateHandleManager(other.Out()), S_OK);
    container->SetHandleManager(other.get());
    EXPECT_EQ(TextOf(*manager), "10:(3) 11:(2) 12:(1) 13:(0) 20:(-1) 21:(0) 22:(1)");
}

}  // namespace
}  // namespace corv::test
