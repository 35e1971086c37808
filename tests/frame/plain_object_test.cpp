#include "frame/plain_object.h"

#include "tests/support/test.h"

namespace corv::test {
namespace {

// Objects of interfaces with and without a virtual destructor end whole.
struct IWithDestructor {
    virtual std::uint32_t AddRef() = 0;
    virtual std::uint32_t Release() = 0;
    virtual int Value() = 0;
    virtual ~IWithDestructor() = default;
};
struct IWithoutDestructor {
    virtual std::uint32_t AddRef() = 0;
    virtual std::uint32_t Release() = 0;
    virtual int Value() = 0;

protected:
    ~IWithoutDestructor() = default;
};

template <class Interface>
class Plain final : public frame::PlainObject<Plain<Interface>, Interface> {
public:
    explicit Plain(int value = 3) : value_(value) { ++living; }
    ~Plain() {
        --living;
    }  // NOLINT(modernize-use-override): one of the interfaces has no virtual one
    int Value() noexcept override { return value_ + (part_ ? *part_ : 0); }
    bool SetUp(int part) {
        part_ = std::make_unique<int>(part);
        return part >= 0;
    }

    static inline int living = 0;

private:
    int value_;
    std::unique_ptr<int> part_;
};

template <class Interface>
class PlainObjectTest : public testing::Test {};
using PlainInterfaces = testing::Types<IWithDestructor, IWithoutDestructor>;
TYPED_TEST_SUITE(PlainObjectTest, PlainInterfaces);

TYPED_TEST(PlainObjectTest, LivesByItsReferences) {
    TypeParam* object = nullptr;
    ASSERT_EQ(frame::CreatePlainObject<Plain<TypeParam>>(&object), S_OK);
    EXPECT_EQ(object->Value(), 3);
    EXPECT_EQ(object->AddRef(), 2U);
    EXPECT_EQ(object->Release(), 1U);
    EXPECT_EQ(Plain<TypeParam>::living, 1);
    EXPECT_EQ(object->Release(), 0U);
    EXPECT_EQ(Plain<TypeParam>::living, 0);
}

TYPED_TEST(PlainObjectTest, FactoryFailuresDeliverNull) {
    using Object = Plain<TypeParam>;
    Object other;
    TypeParam* object = nullptr;
    const auto create = [&](int part) {
        object = &other;
        return frame::CreatePlainObject<Object>(
            &object, E_UNEXPECTED, [&](Object& made) { return made.SetUp(part); }, 40);
    };
    EXPECT_EQ(create(-1), E_UNEXPECTED);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(Object::living, 1);

    HRESULT expected = E_OUTOFMEMORY;  // no memory for the object; then none for its part
    const int failures = FailEveryAllocation([&] { return create(2); },
                                             [&](HRESULT result) {
                                                 EXPECT_EQ(result, expected);
                                                 EXPECT_EQ(object, nullptr);
                                                 EXPECT_EQ(Object::living, 1);
                                                 expected = E_UNEXPECTED;
                                             });
    EXPECT_EQ(failures, 2);
    ASSERT_NE(object, nullptr);
    EXPECT_EQ(object->Value(), 42);
    EXPECT_EQ(object->Release(), 0U);
}

}  // namespace
}  // namespace corv::test
