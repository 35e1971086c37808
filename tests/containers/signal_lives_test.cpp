// What handle managers list while signals come, change and go.

#include "tests/containers/container_support.h"

#include "tests/support/test.h"

namespace corv::test {
namespace {

using SignalPtr = frame::ComPtr<ISignal>;
using Signals = std::set<ISignal*>;

constexpr const char* kTypes[] = {
    "e#3#bitc2 01",
    "i#1#nrict0 9",
    "a#1#v1 ricd2 0 e#3#bitc2 01",
    "r#1#p2 a e#3#bitc2 01 b a#1#w1 ricd1 0 e#3#bitc2 01",
};

void Collect(ISignal& signal, Signals& all) {
    all.insert(&signal);
    ISignal* member = nullptr;
    ISignalContainer* const members = signal.GetSubSignals();
    for (std::uint32_t i = 0; members != nullptr && SUCCEEDED(members->GetAt(i, &member)); ++i) {
        Collect(*member, all);
    }
}

Signals ListedIn(IHandleManager& manager) {
    Signals listed;
    for (int h = manager.GetFirstHandle(); h != -1; h = manager.GetNextHandle()) {
        for (ISignal* s = manager.GetFirstSignal(h); s != nullptr; s = manager.GetNextSignal()) {
            listed.insert(s);
        }
    }
    return listed;
}

bool HaveCommon(const Signals& a, const Signals& b) {
    return std::any_of(a.begin(), a.end(), [&](ISignal* signal) { return b.count(signal) != 0; });
}

// Two containers, three managers and some signals that the test holds, all in any state.
class Lives {
public:
    explicit Lives(unsigned seed) : random_(seed) {
        for (ManagerPtr& manager : managers_) {
            CreateHandleManager(manager.Out());
        }
        for (ContainerPtr& container : containers_) {
            container = NewContainer(managers_[Any(3)].get());
        }
    }

    void Step() {
        ISignalContainer& container = *containers_[Any(2)];
        switch (Any(14)) {
            case 0:
            case 1:
                return MakeSignal(container);
            case 2:
                return AnySignal().SetHandle(AnyHandle());
            case 3:
                return AnySignal().SetProperty("Handle", std::to_string(AnyHandle()).c_str());
            case 4:
            case 5:
                static_cast<void>(AnySignal().SetTypeInfo(kTypes[Any(4)]));
                return;
            case 6:
                container.Add(&AnySignal());
                return;
            case 7:
                return Assign(container);
            case 8:
                return Remove(container);
            case 9:
                static_cast<void>(container.Replace(&AnySignal(), &AnySignal()));
                return;
            case 10:
                held_[Any(6)] = {};
                return;
            case 11:
                container.SetHandleManager(Any(4) == 0 ? nullptr : AnyManager());
                return;
            case 12:
                return Any(4) == 0 ? container.RemoveAll() : void();
            default:
                return Renew();
        }
    }

    // Whether every signal that a manager lists exists.
    bool AreListed() {
        const Signals living = Living();
        return std::all_of(std::begin(managers_), std::end(managers_), [&](ManagerPtr& manager) {
            const Signals listed = ListedIn(*manager);
            return std::includes(living.begin(), living.end(), listed.begin(), listed.end());
        });
    }

private:
    std::size_t Any(unsigned count) { return random_() % count; }
    int AnyHandle() { return static_cast<int>(Any(6)) - 1; }
    IHandleManager* AnyManager() { return managers_[Any(3)].get(); }
    Signals Living() {
        Signals living;
        for (const SignalPtr& signal : held_) {
            if (signal) {
                Collect(*signal, living);
            }
        }
        ISignal* signal = nullptr;
        for (const ContainerPtr& container : containers_) {
            for (std::uint32_t i = 0; SUCCEEDED(container->GetAt(i, &signal)); ++i) {
                Collect(*signal, living);
            }
        }
        return living;
    }
    ISignal& AnySignal() {
        const Signals living = Living();
        if (living.empty()) {
            MakeSignal(*containers_[0]);
            return AnySignal();
        }
        return **std::next(living.begin(),
                           static_cast<std::ptrdiff_t>(Any(static_cast<unsigned>(living.size()))));
    }
    void MakeSignal(ISignalContainer& container) {
        SignalPtr& made = held_[Any(6)];
        made = {};
        ASSERT_EQ(CreateSignal(kTypes[Any(4)], nullptr, made.Out()), S_OK);
        made->SetName("s");
        made->SetHandle(made->GetWave() != nullptr ? AnyHandle() : -1);
        container.Add(made.get());
    }
    void Assign(ISignalContainer& container) {
        const int handles[] = {AnyHandle(), AnyHandle(), AnyHandle()};
        const char* const paths[] = {"s", "s(1)", "s.b", "s.b(0)"};
        container.AssignHandles(paths[Any(4)], handles, 3);
    }
    // What leaves, though it lives on, is not listed by the container's manager any more.
    void Remove(ISignalContainer& container) {
        ISignal* signal = nullptr;
        if (FAILED(container.GetAt(0, &signal))) {
            return;
        }
        const SignalPtr kept = SignalPtr::Share(signal);
        EXPECT_EQ(container.Remove(signal), S_OK);
        const ManagerPtr manager = ManagerOf(container);
        Signals left;
        Collect(*signal, left);
        EXPECT_FALSE(manager && HaveCommon(left, ListedIn(*manager)));
    }
    void Renew() {
        if (Any(2) == 0) {
            containers_[Any(2)] = NewContainer(AnyManager());
        } else {
            CreateHandleManager((managers_[Any(3)] = {}).Out());
        }
    }

    std::mt19937 random_;
    ManagerPtr managers_[3];
    ContainerPtr containers_[2];
    SignalPtr held_[6];
};

TEST(SignalLives, NoManagerListsWhatIsGone) {
    for (unsigned seed = 0; seed < 60; ++seed) {
        Lives lives(seed);
        for (int step = 0; step < 150; ++step) {
            lives.Step();
            ASSERT_TRUE(lives.AreListed()) << "seed " << seed << " step " << step;
        }
    }
}

// Members may have a manager of their own, which handles given from above leave in place.
TEST(SignalLives, MembersWithAManagerOfTheirOwn) {
    ManagerPtr theirs;
    CreateHandleManager(theirs.Out());
    const ContainerPtr container = NewContainer();
    SignalPtr signal;
    ASSERT_EQ(container->NewSignal(kTypes[2], signal.Out()), S_OK);
    signal->SetName("s");
    container->Add(signal.get());
    ISignalContainer& members = *signal->GetSubSignals();
    members.SetHandleManager(theirs.get());
    const int handles[] = {5, 6};
    members.AssignHandles("(0)", handles, 1);
    container->AssignHandles("s(1)", handles + 1, 1);
    EXPECT_EQ(ManagerOf(members).get(), theirs.get());
    EXPECT_EQ(TextOf(*theirs), "5:(0)");
    EXPECT_EQ(TextOf(*ManagerOf(*container)), "6:(1)");
    signal->SetTypeInfo(kTypes[3]);
    container->AssignHandles("s.b(0)", handles, 1);
    EXPECT_EQ(TextOf(*theirs), "");
    EXPECT_EQ(TextOf(*ManagerOf(*container)), "5:(0)");
}

}  // namespace
}  // namespace corv::test
