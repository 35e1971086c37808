#include "corv/containers/handle_manager.h"

#include "tests/support/fake_signal.h"
#include "tests/support/test.h"

namespace corv::test {
namespace {

using ManagerPtr = frame::ComPtr<IHandleManager>;
using Lists = std::map<int, std::vector<ISignal*>>;

ManagerPtr NewManager() {
    ManagerPtr manager;
    EXPECT_EQ(CreateHandleManager(manager.Out()), S_OK);
    return manager;
}

std::vector<ISignal*> SignalsOf(IHandleManager& manager, int handle) {
    std::vector<ISignal*> signals;
    for (ISignal* s = manager.GetFirstSignal(handle); s != nullptr; s = manager.GetNextSignal()) {
        signals.push_back(s);
    }
    return signals;
}

Lists Contents(IHandleManager& manager) {
    Lists lists;
    int last = std::numeric_limits<int>::min();
    for (int h = manager.GetFirstHandle(); h != -1; h = manager.GetNextHandle()) {
        EXPECT_TRUE(lists.empty() || h > last);
        last = h;
        lists[h] = SignalsOf(manager, h);
    }
    return lists;
}

TEST(HandleManager, RefusesAndSkips) {
    const ManagerPtr manager = NewManager();
    const FakePtr none = NewLeaf("a", -1);
    const FakePtr composite = NewComposite("b");
    composite->SetHandle(3);
    for (ISignal* const refused :
         {static_cast<ISignal*>(none.get()), static_cast<ISignal*>(composite.get()),
          static_cast<ISignal*>(nullptr)}) {
        EXPECT_EQ(manager->AddSignal(refused), E_INVALIDARG);
        EXPECT_EQ(manager->RemoveSignal(refused), E_FAIL);
    }
    const FakePtr signal = NewLeaf("c", 3);
    EXPECT_EQ(manager->AddSignal(signal.get()), S_OK);
    signal->SetHandle(-1);
    EXPECT_EQ(manager->GetFirstSignal(3), nullptr);
    EXPECT_EQ(manager->GetFirstHandle(), 3) << "it is still there";
    signal->SetHandle(4);
    EXPECT_EQ(manager->RemoveSignal(signal.get()), E_FAIL) << "it is looked for under 4";
    EXPECT_EQ(manager->GetFirstSignal(3), signal.get());
    EXPECT_EQ(signal->AddRef(), 2U) << "no reference was taken";
    signal->Release();
}

// The index in its plainest form. A signal's handle may have changed since it was added.
HRESULT NaiveAdd(Lists& lists, ISignal* signal) {
    std::vector<ISignal*>& list = lists[signal->GetHandle()];
    if (std::find(list.begin(), list.end(), signal) == list.end()) {
        list.push_back(signal);
    }
    return S_OK;
}
HRESULT NaiveRemove(Lists& lists, ISignal* signal) {
    const auto list = lists.find(signal->GetHandle());
    const bool there = list != lists.end() && std::erase(list->second, signal) > 0;
    if (there && list->second.empty()) {
        lists.erase(list);
    }
    return there ? S_OK : E_FAIL;
}

constexpr int kLeast = std::numeric_limits<int>::min();
constexpr int kMost = std::numeric_limits<int>::max();
constexpr int kHandles[] = {0, kLeast, -1000, -2, 1, 2, 3, 5, 8, 13, 21, kMost};

// Few handles make crowded ones. The cursors are asked in between, in whatever state they are.
TEST(HandleManager, RandomOperationsAgainstAModel) {
    std::vector<FakePtr> signals;
    for (int i = 0; i < 80; ++i) {
        signals.push_back(NewLeaf("s"));
    }
    for (unsigned seed = 0; seed < 60; ++seed) {
        std::mt19937 random(seed);
        const std::size_t handles = seed % 2 == 0 ? 1 : std::size(kHandles);
        const ManagerPtr manager = NewManager();
        Lists lists;
        for (int step = 0; step < 600; ++step) {
            FakeSignal* const signal = signals[random() % signals.size()].get();
            const auto what = random() % 100;
            if (what < 20 || signal->GetHandle() == -1) {
                signal->SetHandle(kHandles[random() % handles]);
            }
            if (what < 60) {
                ASSERT_EQ(manager->AddSignal(signal), NaiveAdd(lists, signal));
            } else if (what < 96) {
                ASSERT_EQ(manager->RemoveSignal(signal), NaiveRemove(lists, signal)) << seed;
            } else if (what < 99) {
                const int handle = signal->GetHandle();
                ASSERT_EQ(manager->RemoveHandle(handle), lists.erase(handle) > 0 ? S_OK : E_FAIL);
            } else if (step % 5 == 0) {
                manager->RemoveAll();
                lists.clear();
            }
            manager->GetNextHandle();
            manager->GetNextSignal();
            if (step % 10 == 0) {
                ASSERT_EQ(Contents(*manager), lists) << "seed " << seed << " step " << step;
                manager->GetFirstHandle();
                manager->GetFirstSignal(signal->GetHandle());
            }
        }
    }
}

TEST(HandleManager, EnumerationGoesOnAfterARemoval) {
    const ManagerPtr manager = NewManager();
    std::vector<FakePtr> signals;
    for (int i = 0; i < 40; ++i) {
        signals.push_back(NewLeaf("s", 7));
        manager->AddSignal(signals.back().get());
    }
    EXPECT_EQ(manager->GetFirstSignal(7), signals[0].get());
    for (int i = 0; i < 5; ++i) {
        manager->RemoveSignal(signals[static_cast<std::size_t>(i)].get());
    }
    EXPECT_EQ(manager->GetNextSignal(), signals[5].get());
    manager->RemoveHandle(7);
    EXPECT_EQ(manager->GetNextSignal(), nullptr);
}

TEST(HandleManager, OutOfMemoryChangesNothing) {
    for (const std::size_t count : {0U, 1U, 15U, 16U, 17U, 30U}) {
        const ManagerPtr manager = NewManager();
        std::vector<FakePtr> signals;
        for (std::size_t i = 0; i <= count; ++i) {
            signals.push_back(NewLeaf("s", 7));
        }
        const FakePtr other = NewLeaf("o", 8);
        ISignal* const added = signals.back().get();
        const auto prepare = [&] {
            manager->RemoveAll();
            manager->AddSignal(other.get());
            for (std::size_t i = 0; i < count; ++i) {
                manager->AddSignal(signals[i].get());
            }
        };
        FailEveryAllocation(
            prepare, [&] { return manager->AddSignal(added); },
            [&](HRESULT result) {
                EXPECT_EQ(result, E_OUTOFMEMORY);
                EXPECT_EQ(SignalsOf(*manager, 7).size(), count);
                EXPECT_EQ(manager->RemoveSignal(added), E_FAIL);
                for (const FakePtr& signal : signals) {
                    EXPECT_EQ(manager->AddSignal(signal.get()), S_OK) << "it can still be used";
                }
                EXPECT_EQ(SignalsOf(*manager, 7).size(), count + 1);
            });
    }
    ManagerPtr made;
    FailsUnchanged([&] { made = {}; }, [&] { return CreateHandleManager(made.Out()); },
                   E_OUTOFMEMORY, [&] { return !made; });
}

}  // namespace
}  // namespace corv::test
