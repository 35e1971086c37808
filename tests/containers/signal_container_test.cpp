#include "corv/containers/signal_container.h"

#include <thread>

#include "tests/containers/container_support.h"
#include "tests/support/test.h"

namespace corv::test {
namespace {

// Every test leaves no signal behind.
class SignalContainer : public testing::Test {
protected:
    void TearDown() override { EXPECT_EQ(FakeSignal::Living(), 0); }
};

TEST_F(SignalContainer, ListOperations) {
    const ContainerPtr container = NewContainer();
    const FakePtr a = NewLeaf("a", 1);
    const FakePtr b = NewLeaf("b");
    const FakePtr c = NewLeaf("c", 1);
    EXPECT_EQ(container->Insert(a.get(), nullptr), E_INVALIDARG);
    EXPECT_EQ(container->Insert(a.get(), b.get()), E_INVALIDARG);
    EXPECT_EQ(container->Add(nullptr), E_INVALIDARG);
    EXPECT_EQ(container->Add(c.get()), S_OK);
    EXPECT_EQ(container->Add(b.get()), E_INVALIDARG) << "no handle";
    EXPECT_EQ(container->Insert(nullptr, c.get()), E_INVALIDARG);
    EXPECT_EQ(container->Insert(a.get(), b.get()), S_OK);
    EXPECT_EQ(TextOf(*container), "c=1 a=1 b");
    EXPECT_EQ(TextOf(*ManagerOf(*container)), "1:c,a");
    EXPECT_EQ(ReferencesTo(*a), 2U);

    const FakePtr d = NewLeaf("d", 2);
    EXPECT_EQ(container->Replace(d.get(), a.get()), E_INVALIDARG);
    EXPECT_EQ(container->Replace(a.get(), nullptr), E_INVALIDARG);
    d->SetParent(a.get());
    EXPECT_EQ(container->Replace(a.get(), d.get()), E_INVALIDARG);
    d->SetParent(nullptr);
    EXPECT_EQ(container->Replace(a.get(), d.get()), S_OK);
    EXPECT_EQ(container->Replace(c.get(), c.get()), S_OK);
    EXPECT_EQ(TextOf(*container), "c=1 a=2 b");
    EXPECT_EQ(TextOf(*ManagerOf(*container)), "1:c 2:a");
    EXPECT_EQ(ReferencesTo(*a), 1U);
    EXPECT_EQ(ReferencesTo(*d), 2U);

    EXPECT_EQ(container->Remove(a.get()), E_FAIL);
    EXPECT_EQ(container->Remove(nullptr), E_FAIL);
    EXPECT_EQ(container->Remove(c.get()), S_OK);
    ISignal* at = nullptr;
    EXPECT_EQ(container->GetAt(2, &at), E_INVALIDARG);
    EXPECT_EQ(container->GetAt(0, &at), S_OK);
    EXPECT_EQ(at, d.get());
    EXPECT_EQ(TextOf(*ManagerOf(*container)), "2:a");
}

TEST_F(SignalContainer, RemoveAllEmptiesAManagerOfItsOwn) {
    const ContainerPtr container = NewContainer();
    const FakePtr outside = NewLeaf("outside", 1);
    ManagerOf(*container)->AddSignal(outside.get());
    {
        const ManagerPtr held = ManagerOf(*container);
        container->RemoveAll();
        EXPECT_EQ(TextOf(*held), "1:outside");
    }
    container->RemoveAll();
    EXPECT_EQ(TextOf(*ManagerOf(*container)), "");
}

// The name of the signal that each path finds; "-" for none.
constexpr const char* kPaths = R"(
s              | s
S(3)           | (3)
s(3).A         | .a
s(3).a.rest(4) | .a
s(1,2)         | (1,2)
s(1)           | -
s(3).c         | -
s.a            | -
leaf           | leaf
LEAF.x(1)      | leaf
lea            | -
leafs          | -
\a.b(\         | \a.b(\
\A.B(\.\c.d\   | .\c.d\
\a.b(\.\c.d\.q | .\c.d\
\a.b(\.\c      | -
\a.b(\.e       | .e
\a.b           | -
.x             | .x
.x.y           | .x
(z)            | (z)
(z)(q)         | (z)
.              | -
(              | -
_              | -
)";

TEST_F(SignalContainer, FindsByPath) {
    const ContainerPtr container = NewContainer();
    const FakePtr unnamed = NewLeaf(nullptr);
    container->Add(unnamed.get());
    AddSignals(*container, "s((3)(.a .b) (1,2)) S leaf .x (z)");
    const FakePtr extended = NewFake("\\a.b(\\");
    for (const char* const name : {".\\c.d\\", ".e"}) {
        ISignalContainer* members = extended->GetSubSignals();
        members = members != nullptr ? members : &extended->MakeComposite();
        members->Add(NewLeaf(name).get());
    }
    container->Add(extended.get());
    for (const auto& row : Table(kPaths)) {
        ISignal* const found = Find(*container, row[0]);
        EXPECT_EQ(found != nullptr ? found->GetName() : "-", row[1]) << row[0];
    }
    ISignal* none = nullptr;
    EXPECT_EQ(container->FindSignal(nullptr, &none), E_FAIL);
    Find(*container, "leaf")->SetName("s");
    Find(*container, "s")->SetName("other");
    EXPECT_EQ(Find(*container, "s")->GetSubSignals(), nullptr) << "the names are those of now";
    Find(*container, "s")->SetName("");
    EXPECT_STREQ(Find(*container, "")->GetName(), "");
}

// Handles for a path, and the leaves that have got one.
constexpr const char* kAssignments = R"(
s    | 1 2 3 4 | s((0)=1 (1)(.x=2 .y=3)) b c
s    | 1 2     | s((0)=1 (1)(.x=2 .y)) b c
s(1) | 1 2     | s((0) (1)(.x=1 .y=2)) b c
s(1).y(2) | 7  | s((0) (1)(.x .y=7)) b c
b    | 5 6     | s((0) (1)(.x .y)) b=5 c
)";

TEST_F(SignalContainer, AssignsHandlesToLeaves) {
    for (const auto& row : Table(kAssignments)) {
        const ContainerPtr container = NewContainer();
        AddSignals(*container, "s((0) (1)(.x .y)) b c");
        std::vector<int> handles;
        for (const std::string& word : Split(row[1], ' ')) {
            handles.push_back(std::stoi(word));
        }
        const auto count = static_cast<int>(handles.size());
        EXPECT_EQ(container->AssignHandles("nobody", handles.data(), count), E_FAIL);
        EXPECT_EQ(container->AssignHandles("s", handles.data(), 0), E_INVALIDARG);
        EXPECT_EQ(container->AssignHandles("s", nullptr, 1), E_INVALIDARG);
        EXPECT_EQ(container->AssignHandles(nullptr, handles.data(), 1), E_FAIL);
        EXPECT_EQ(container->AssignHandles(row[0].c_str(), handles.data(), count), S_OK);
        EXPECT_EQ(TextOf(*container), row[2]);
    }
}

TEST_F(SignalContainer, LeavesOfOneHandleShareAWave) {
    const ContainerPtr container = NewContainer();
    AddSignals(*container, "a s(.x .y) b");
    const int same[] = {5, 5};
    const int other[] = {6};
    container->AssignHandles("a", same, 1);
    container->AssignHandles("s", same, 2);
    ISignalWave* const wave = Find(*container, "a")->GetWave();
    EXPECT_EQ(Find(*container, "s.x")->GetWave(), wave);
    EXPECT_EQ(Find(*container, "s.y")->GetWave(), wave);
    container->AssignHandles("s.x", other, 1);
    EXPECT_NE(Find(*container, "s.x")->GetWave(), wave);
    EXPECT_EQ(TextOf(*ManagerOf(*container)), "5:a,.y 6:.x");

    container->SetHandleManager(nullptr);
    container->AssignHandles("s.y", other, 1);
    EXPECT_EQ(Find(*container, "s.y")->GetHandle(), 6);
    EXPECT_EQ(Find(*container, "s.y")->GetWave(), wave) << "left alone without a manager";
    container->RemoveAll();
}

TEST_F(SignalContainer, OneManagerServesTheTree) {
    ManagerPtr first;
    ManagerPtr second;
    CreateHandleManager(first.Out());
    CreateHandleManager(second.Out());
    const ContainerPtr container = NewContainer(first.get());
    AddSignals(*container, "a s((0) (1)(.x)) b");
    ISignalContainer& deepest = *Find(*container, "s(1)")->GetSubSignals();
    EXPECT_EQ(ManagerOf(deepest).get(), first.get());
    EXPECT_EQ(container->SetHandleManager(second.get()), S_OK);
    EXPECT_EQ(ManagerOf(deepest).get(), second.get());
    EXPECT_EQ(ReferencesTo(*first), 1U);
    EXPECT_EQ(container->SetHandleManager(nullptr), S_OK);
    EXPECT_EQ(ManagerOf(deepest).get(), nullptr);
    IHandleManager* untouched = first.get();
    EXPECT_EQ(container->GetHandleManager(&untouched), E_FAIL);
    EXPECT_EQ(untouched, first.get());
    EXPECT_EQ(ReferencesTo(*second), 1U);
}

TEST_F(SignalContainer, Enumerates) {
    const ContainerPtr container = NewContainer();
    AddSignals(*container, "a b c d e");
    frame::ComPtr<ISignalEnumerator> signals;
    ASSERT_EQ(container->EnumSignals(signals.Out()), S_OK);
    EXPECT_EQ(ReferencesTo(*container), 1U) << "it takes no reference";
    ISignal* three[3] = {};
    std::uint32_t delivered = 9;
    EXPECT_EQ(signals->Next(0, three, &delivered), S_FALSE);
    EXPECT_EQ(delivered, 0U);
    EXPECT_EQ(signals->Next(3, three, nullptr), S_OK);
    EXPECT_EQ(three[2], Find(*container, "c"));
    EXPECT_EQ(signals->Next(3, three, &delivered), S_OK);
    EXPECT_EQ(delivered, 2U);
    EXPECT_EQ(three[1], Find(*container, "e"));
    EXPECT_EQ(signals->Next(3, three, &delivered), S_FALSE);
    container->Remove(Find(*container, "b"));
    container->Remove(Find(*container, "e"));
    EXPECT_EQ(signals->Next(3, three, &delivered), S_FALSE) << "behind the end of the list";
    signals->Reset();
    EXPECT_EQ(signals->Next(3, three, &delivered), S_OK);
    EXPECT_EQ(three[1], Find(*container, "c"));
}

// A manager of somebody else's, which notes what it is asked to remove.
class ForeignManager final
    : public frame::ComObject<ForeignManager, IHandleManager, IID_IHandleManager> {
public:
    int CORV_CALL GetFirstHandle() override { return -1; }
    int CORV_CALL GetNextHandle() override { return -1; }
    ISignal* CORV_CALL GetFirstSignal(int) override { return nullptr; }
    ISignal* CORV_CALL GetNextSignal() override { return nullptr; }
    HRESULT CORV_CALL AddSignal(ISignal*) override { return S_OK; }
    HRESULT CORV_CALL RemoveSignal(ISignal* signal) override {
        removed += signal->GetName();
        return S_OK;
    }
    HRESULT CORV_CALL RemoveHandle(int) override { return S_OK; }
    void CORV_CALL RemoveAll() override {}

    std::string removed;
};

TEST_F(SignalContainer, TellsAManagerWhatLeaves) {
    auto manager = frame::ComPtr<ForeignManager>::Share(new ForeignManager);
    const ContainerPtr container = NewContainer(manager.get());
    for (const FakePtr& signal : {NewLeaf("a", 0), NewLeaf("b", -1), NewLeaf("c", 7)}) {
        container->Add(signal.get());
        container->Remove(signal.get());
    }
    EXPECT_EQ(manager->removed, "ac");
}

// Each operation ends on trees that contain themselves, on several ways.
TEST_F(SignalContainer, TreesThatContainThemselves) {
    const ContainerPtr top = NewContainer();
    const ManagerPtr manager = ManagerOf(*top);
    const FakePtr a = NewComposite("(a)");
    const FakePtr b = NewComposite("(b)");
    for (ISignalContainer* const members : {a->GetSubSignals(), b->GetSubSignals()}) {
        members->Add(a.get());
        members->Add(b.get());
        members->Add(NewLeaf("(leaf)").get());
    }
    top->Add(a.get());
    EXPECT_EQ(ManagerOf(*b->GetSubSignals()).get(), manager.get());
    EXPECT_EQ(Find(*top, "(a)(b)(b)(a)(leaf)")->GetSubSignals(), nullptr);
    std::string long_path;
    for (int i = 0; i < 100'000; ++i) {
        long_path += "(a)";
    }
    EXPECT_EQ(Find(*top, long_path), nullptr);
    const int handles[] = {1, 2, 3};
    EXPECT_EQ(top->AssignHandles(long_path.c_str(), handles, 3), E_FAIL);
    EXPECT_EQ(top->AssignHandles("(a)", handles, 3), S_OK);
    EXPECT_EQ(top->SetHandleManager(nullptr), S_OK);
    EXPECT_EQ(ManagerOf(*b->GetSubSignals()).get(), nullptr);
    top->SetHandleManager(manager.get());
    EXPECT_EQ(top->Remove(a.get()), S_OK);
    EXPECT_EQ(TextOf(*manager), "");
    for (const FakePtr* const signal : {&a, &b}) {
        (*signal)->GetSubSignals()->RemoveAll();
    }
}

// Trees that have nothing in common may be used on several threads at once.
TEST_F(SignalContainer, ThreadsDoNotMeet) {
    ContainerPtr containers[2];
    std::vector<std::thread> threads;
    for (ContainerPtr& container : containers) {
        container = NewContainer();
        AddSignals(*container, "s((0) (1))");
        threads.emplace_back([&container] {
            ISignal* found = nullptr;
            const ManagerPtr manager = ManagerOf(*container);
            for (int i = 0; i < 200'000; ++i) {
                container->FindSignal("s(1)", &found);
                container->SetHandleManager(manager.get());
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (const ContainerPtr& container : containers) {
        ISignalContainer& members = *Find(*container, "s")->GetSubSignals();
        EXPECT_NE(Find(*container, "s(1)"), nullptr);
        container->SetHandleManager(nullptr);
        EXPECT_EQ(ManagerOf(members).get(), nullptr);
    }
}

// The container's only other holder is a signal in it.
TEST_F(SignalContainer, RemoveAllMayEndTheContainer) {
    ISignalContainer* members = nullptr;
    {
        const FakePtr signal = NewComposite("s");
        members = signal->GetSubSignals();
        members->Add(signal.get());
    }
    EXPECT_EQ(FakeSignal::Living(), 1);
    members->RemoveAll();
}

TEST_F(SignalContainer, OutOfMemoryChangesNothing) {
    ManagerPtr manager;
    CreateHandleManager(manager.Out());
    ContainerPtr container;
    FakePtr a;
    const FakePtr b = NewLeaf("b", 2);
    const auto prepare = [&] {
        container = NewContainer(manager.get());
        a = NewLeaf("a", 1);
        container->Add(a.get());
    };
    const auto show = [&] {
        return TextOf(*container) + " " + TextOf(*manager) + std::to_string(ReferencesTo(*b));
    };
    FailsUnchanged(
        prepare, [&] { return container->Add(b.get()); }, E_OUTOFMEMORY, show);
    FailsUnchanged(
        prepare, [&] { return container->Insert(b.get(), a.get()); }, E_OUTOFMEMORY, show);
    FailsUnchanged(
        prepare, [&] { return container->Replace(a.get(), b.get()); }, E_OUTOFMEMORY, show);
    frame::ComPtr<ISignalEnumerator> signals;
    FailsUnchanged(
        prepare, [&] { return container->EnumSignals(signals.Out()); }, E_OUTOFMEMORY, show);
    // a signal that stands in the list already
    const auto prepare_again = [&] {
        prepare();
        b->SetName("b");
        container->Add(b.get());
        a->SetHandle(3);
    };
    FailEveryAllocation(
        prepare_again, [&] { return container->Add(a.get()); },
        [&](HRESULT) { EXPECT_EQ(TextOf(*container), "a=3 b=2"); });
    signals = {};
    container = {};
    EXPECT_EQ(TextOf(*manager), "");
}

TEST_F(SignalContainer, IsMadeWithoutAManagerWhenMemoryRunsOut) {
    for (long nth = 1; nth <= 2; ++nth) {
        ContainerPtr container;
        ArmFailingAlloc(nth, false);
        const HRESULT result = CreateSignalContainer(container.Out(), nullptr);
        EXPECT_TRUE(DisarmFailingAlloc());
        EXPECT_EQ(result, nth == 1 ? S_OK : E_OUTOFMEMORY);
        EXPECT_EQ(container && !ManagerOf(*container), nth == 1);
    }
}

}  // namespace
}  // namespace corv::test
