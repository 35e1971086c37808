#include "containers/name_index.h"

#include "platform/ascii.h"
#include "tests/containers/container_support.h"
#include "tests/support/test.h"

namespace corv::test {
namespace {

using SignalPtr = frame::ComPtr<ISignal>;

SignalPtr NewSignal(const std::string& name) {
    SignalPtr signal;
    EXPECT_EQ(CreateSignal(nullptr, nullptr, signal.Out()), S_OK);
    signal->SetName(name.c_str());
    return signal;
}

// A container and the same list beside it. Names are few, so that many signals share one, in
// either case.
class Lists {
public:
    Lists(unsigned seed, std::size_t size) : random_(seed), names_(size / 8 + 5) {
        for (std::size_t i = 0; i < size; ++i) {
            Append();
        }
    }

    void Change() {
        ISignal* const any = model_[Place()];
        switch (random_() % 8) {
            case 0:
                any->SetName(Name().c_str());
                break;
            case 1:
                any->SetProperty("NAME", Name().c_str());
                break;
            case 2:
                any->SetProperty("Color", "1");
                break;
            case 3:
                model_.insert(std::find(model_.begin(), model_.end(), any), NewIn(any));
                break;
            case 4:
                container_->Remove(any);
                model_.erase(std::find(model_.begin(), model_.end(), any));
                break;
            case 5: {
                const SignalPtr other = NewSignal("other");
                *std::find(model_.begin(), model_.end(), any) = other.get();
                container_->Replace(any, other.get());
                break;
            }
            default:
                Append();
        }
    }

    void ShrinkTo(std::size_t size) {
        for (; model_.size() > size; model_.pop_back()) {
            container_->Remove(model_.back());
        }
    }

    void AddForeign() {
        const FakePtr foreign = NewLeaf("foreign");
        container_->Add(foreign.get());
        model_.push_back(foreign.get());
        Check();
        foreign->SetName("x0");
        Check();
    }

    void Check() {
        const std::string name = Name();
        ISignal* expected = nullptr;
        for (std::size_t i = 0; expected == nullptr && i < model_.size(); ++i) {
            const char* const its_name = model_[i]->GetName();
            expected =
                its_name != nullptr && platform::EqualNoCase(its_name, name) ? model_[i] : nullptr;
        }
        ISignal* found = nullptr;
        ArmFailingAlloc(1, true);
        const HRESULT result = container_->FindSignal(name.c_str(), &found);
        EXPECT_FALSE(DisarmFailingAlloc()) << "finding takes memory";
        ASSERT_EQ(result, expected != nullptr ? S_OK : E_FAIL) << name;
        ASSERT_EQ(found, expected) << name;
    }

private:
    std::size_t Place() { return random_() % model_.size(); }
    std::string Name() {
        return (random_() % 2 == 0 ? "x" : "X") + std::to_string(random_() % names_);
    }
    void Append() {
        const SignalPtr signal = NewSignal(Name());
        container_->Add(signal.get());
        model_.push_back(signal.get());
    }
    ISignal* NewIn(ISignal* before) {
        const SignalPtr signal = NewSignal(Name());
        EXPECT_EQ(container_->Insert(signal.get(), before), S_OK);
        return signal.get();
    }

    std::mt19937 random_;
    std::size_t names_;
    ContainerPtr container_ = NewContainer();
    std::vector<ISignal*> model_;
};

// Lists around the sizes from which there is an index and from which it is always kept filled.
TEST(NameIndex, RandomChangesAgainstAModel) {
    struct Run {
        std::size_t size;
        int steps;
        int checks;
    };
    unsigned seed = 0;
    for (const Run& run : {Run{60, 300, 1}, {60, 100, 5}, {200, 200, 5}, {4'090, 30, 3}}) {
        Lists lists(++seed, run.size);
        for (int i = 0; i < run.steps && !HasFatalFailure(); ++i) {
            lists.ShrinkTo(i % 100 == 50 ? 50 : 10'000);
            lists.Change();
            for (int k = 0; k < run.checks; ++k) {
                lists.Check();
            }
        }
        lists.AddForeign();
    }
}

// What takes the place of a signal without a name has an empty one.
TEST(NameIndex, FollowsAReplacement) {
    const ContainerPtr container = NewContainer();
    SignalPtr nameless;
    ASSERT_EQ(CreateSignal(nullptr, nullptr, nameless.Out()), S_OK);
    container->Add(nameless.get());
    for (int i = 0; i < 200; ++i) {
        container->Add(NewSignal("x" + std::to_string(i)).get());
    }
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(Find(*container, ""), nullptr);
    }
    const SignalPtr other = NewSignal("other");
    ASSERT_EQ(container->Replace(nameless.get(), other.get()), S_OK);
    EXPECT_EQ(Find(*container, ""), other.get());
}

}  // namespace
}  // namespace corv::test
