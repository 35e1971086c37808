// The interfaces as a host sees them that knows nothing of C++: identifiers as bytes, operations as
// numbered slots of a table.

#include "corv/frame/interface_ids.h"
#include "corv/waves/signal_wave.h"
#include "tests/support/test.h"

namespace corv::test {
namespace {

struct Identifier {
    const GUID& id;
    const char* text;
};
constexpr Identifier kIdentifiers[] = {
    {IID_IUnknown, "{00000000-0000-0000-C000-000000000046}"},
    {IID_ISignal, "{DA43AC40-0985-11D1-A5BA-00C0DF12533A}"},
    {IID_ISignalWave, "{3089B360-FDD0-11D0-A229-00C0DF12533A}"},
    {IID_IWaveEventEnumerator, "{07E56E20-FF99-11D0-A229-00C0DF12533A}"},
    {IID_ISignalContainer, "{4233D800-0990-11D1-A5BA-00C0DF12533A}"},
    {IID_ISignalEnumerator, "{F0907A10-0990-11D1-A5BA-00C0DF12533A}"},
    {IID_IHandleManager, "{11B54E90-0CDE-11D1-A5BC-00C0DF12533A}"},
    {IID_IBusEventIterator, "{485F9040-0CBC-11D1-A5BC-00C0DF12533A}"},
};

// Each text written from the bytes of its identifier, the first three groups little-endian.
TEST(Interface, IdentifiersAsBytes) {
    constexpr int kOrder[] = {3, 2, 1, 0, -1, 5, 4, -1, 7, 6, -1, 8, 9, -1, 10, 11, 12, 13, 14, 15};
    for (const auto& [id, text] : kIdentifiers) {
        unsigned char bytes[16];
        std::memcpy(bytes, &id, sizeof bytes);
        std::string written = "{";
        for (const int byte : kOrder) {
            char digits[3] = "-";
            if (byte >= 0) {
                std::snprintf(digits, sizeof digits, "%02X", bytes[byte]);
            }
            written += digits;
        }
        EXPECT_EQ(written + "}", text);
    }
}

std::vector<IUnknown*> OneOfEachKind() {
    std::vector<IUnknown*> objects;
    for (const std::uint32_t size : {4U, 8U}) {
        ISignalWave* wave = nullptr;
        EXPECT_EQ(CreateSignalWave(size, &wave), S_OK);
        IWaveEventEnumerator* events = nullptr;
        EXPECT_EQ(wave->CreateEnumerator(&events), S_OK);
        objects.insert(objects.end(), {events, wave});
    }
    return objects;
}

TEST(Interface, EachObjectAnswersTwoIdentifiers) {
    for (IUnknown* const object : OneOfEachKind()) {
        std::uint32_t references = 1;
        for (const auto& [id, text] : kIdentifiers) {
            void* target = &references;
            if (object->QueryInterface(id, &target) == S_OK) {
                EXPECT_EQ(target, object) << text;
                ++references;
            } else {
                EXPECT_EQ(object->QueryInterface(id, &target), E_NOINTERFACE) << text;
                EXPECT_EQ(target, &references) << text;
                EXPECT_FALSE(id == IID_IUnknown);
            }
        }
        EXPECT_EQ(references, 3U);
        while (references > 0) {
            EXPECT_EQ(object->Release(), --references);
        }
    }
}

// Calls the operation in a slot of the object's table.
template <class Result, class... Args>
Result Call(void* object, std::size_t slot, Args... args) {
    using Operation = Result(CORV_CALL*)(void*, Args...);
    const void* table = nullptr;
    Operation operation = nullptr;
    std::memcpy(&table, object, sizeof table);
    std::memcpy(&operation, static_cast<const char*>(table) + slot * sizeof operation,
                sizeof operation);
    return operation(object, args...);
}

TEST(Interface, SlotsByNumber) {
    using I64 = std::int64_t;
    using U32 = std::uint32_t;
    ISignalWave* made = nullptr;
    ASSERT_EQ(CreateSignalWave(4, &made), S_OK);
    void* const wave = made;
    const char value[] = "abcd";
    const auto* const bytes = static_cast<const void*>(value);

    void* same = nullptr;
    EXPECT_EQ((Call<HRESULT>(wave, 0, &IID_ISignalWave, &same)), S_OK);
    EXPECT_EQ(same, wave);
    EXPECT_EQ(Call<U32>(wave, 1), 3U);
    EXPECT_EQ(Call<U32>(wave, 2), 2U);
    EXPECT_EQ(Call<HRESULT>(wave, 3, I64{10}, U32{5}, bytes, U32{4}), S_OK);
    EXPECT_EQ(Call<HRESULT>(wave, 4, I64{20}, U32{5}, bytes, U32{2}), S_OK);
    EXPECT_EQ(Call<HRESULT>(wave, 5, I64{30}, bytes, U32{4}), E_NOTIMPL);
    EXPECT_EQ(Call<HRESULT>(wave, 6, I64{7}, bytes, U32{4}), S_OK);
    EXPECT_EQ(Call<HRESULT>(wave, 8), S_OK);
    EXPECT_EQ(Call<HRESULT>(wave, 6, I64{5}, bytes, U32{4}), S_OK);
    EXPECT_EQ(Call<HRESULT>(wave, 7), S_OK);
    EXPECT_EQ(Call<U32>(wave, 14), 3U);
    EXPECT_EQ(Call<U32>(wave, 15), 4U);
    EXPECT_EQ(Call<I64>(wave, 16), 5);
    EXPECT_EQ(Call<I64>(wave, 17), 20);
    char buffer[5] = "";
    EXPECT_EQ(Call<HRESULT>(wave, 18, U32{1}, static_cast<void*>(buffer), U32{4}), S_OK);
    EXPECT_STREQ(buffer, value);

    void* event = nullptr;
    EXPECT_EQ(Call<HRESULT>(wave, 11, I64{20}, U32{FindAt}, &event), S_OK);
    EXPECT_EQ(Call<I64>(event, 0), 20);
    EXPECT_EQ(Call<U32>(event, 1), 4U);
    EXPECT_TRUE(Call<bool>(event, 2, static_cast<const void*>("wxyz"), 4));
    EXPECT_EQ(Call<U32>(event, 3, static_cast<void*>(buffer), U32{4}), 4U);
    EXPECT_STREQ(buffer, "wxyz");
    EXPECT_EQ(std::memcmp(Call<void*>(event, 4), "wxyz", 4), 0);
    EXPECT_EQ(Call<std::uint8_t>(event, 5), 1);
    EXPECT_EQ(Call<std::uint8_t>(event, 6, std::uint8_t{3}), 3);

    void* events = nullptr;
    EXPECT_EQ(Call<HRESULT>(wave, 10, &events), S_OK);
    void* three[3] = {};
    U32 delivered = 0;
    EXPECT_EQ(Call<HRESULT>(events, 3, &event), S_OK);
    EXPECT_EQ(Call<HRESULT>(events, 4, U32{3}, &three[0], &delivered), S_OK);
    EXPECT_EQ(delivered, 3U);
    EXPECT_EQ(three[0], event);
    EXPECT_EQ(Call<I64>(events, 9), -1);
    EXPECT_EQ(Call<HRESULT>(events, 5), S_OK);
    EXPECT_EQ(Call<int>(events, 6), 0);
    EXPECT_EQ(Call<int>(events, 7), 1);
    EXPECT_EQ(Call<int>(events, 8), 1);
    EXPECT_EQ(Call<HRESULT>(events, 10, I64{20}, U32{FindBefore}), S_OK);
    EXPECT_EQ(Call<I64>(events, 9), 10);
    EXPECT_EQ(Call<U32>(events, 2), 0U);

    EXPECT_EQ(Call<HRESULT>(wave, 12, I64{10}), S_OK);
    EXPECT_EQ(Call<HRESULT>(wave, 13, I64{-1}, I64{5}), S_OK);
    EXPECT_EQ(Call<I64>(wave, 16), 20);
    EXPECT_EQ(Call<HRESULT>(wave, 9), S_OK);
    EXPECT_EQ(Call<U32>(wave, 14), 0U);
    EXPECT_EQ(Call<U32>(wave, 2), 1U);
    EXPECT_EQ(Call<U32>(wave, 2), 0U);
}

}  // namespace
}  // namespace corv::test
