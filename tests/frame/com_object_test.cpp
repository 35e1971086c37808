#include "frame/com_object.h"

#include "corv/frame/interface_ids.h"
#include "tests/support/test.h"

namespace corv::test {
namespace {

struct ICounter : IUnknown {
    virtual int CORV_CALL Value() = 0;

protected:
    ~ICounter() = default;
};

// Counts its living objects; can't be made from a negative number.
class Counter final : public frame::ComObject<Counter, ICounter, IID_IHandleManager> {
public:
    explicit Counter(int value) : value_(value) {
        if (value < 0) {
            throw std::length_error("negative");
        }
        ++living;
    }
    ~Counter() { --living; }
    int CORV_CALL Value() noexcept override { return value_; }

    static inline int living = 0;

private:
    int value_;
};

TEST(ComObject, LivesByItsReferences) {
    ICounter* counter = nullptr;
    ASSERT_EQ(frame::CreateComObject<Counter>(&counter, 7), S_OK);
    EXPECT_EQ(counter->Value(), 7);
    EXPECT_EQ(counter->AddRef(), 2U);
    EXPECT_EQ(counter->Release(), 1U);
    EXPECT_EQ(Counter::living, 1);
    EXPECT_EQ(counter->Release(), 0U);
    EXPECT_EQ(Counter::living, 0);
}

TEST(ComObject, WithoutMemoryTheFactoryWritesNothing) {
    ICounter* counter = nullptr;
    const int failures =
        FailEveryAllocation([&] { return frame::CreateComObject<Counter>(&counter, 1); },
                            [&](HRESULT result) {
                                EXPECT_EQ(result, E_OUTOFMEMORY);
                                EXPECT_EQ(counter, nullptr);
                            });
    EXPECT_EQ(failures, 1);
    ICounter* const made = counter;
    EXPECT_EQ(frame::CreateComObject<Counter>(&counter, -1), E_OUTOFMEMORY);
    EXPECT_EQ(counter, made);
    EXPECT_EQ(made->Release(), 0U);
    EXPECT_EQ(Counter::living, 0);
}

}  // namespace
}  // namespace corv::test
