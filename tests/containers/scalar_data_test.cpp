#include "corv/containers/scalar_data.h"

#include "corv/containers/scalar_data_container.h"
#include "corv/containers/signal_data.h"
#include "corv/frame/com_ptr.h"
#include "corv/typeinfo/vhdl_type.h"
#include "tests/support/test.h"

namespace corv::test {
namespace {

using ContainerPtr = frame::ComPtr<IScalarDataContainer>;
using DataPtr = frame::ComPtr<ISignalData>;

ContainerPtr NewContainer() {
    ContainerPtr container;
    EXPECT_EQ(CreateScalarDataContainer(container.Out()), S_OK);
    return container;
}

// Signal data with the handles of a text, "5 3 4".
DataPtr NewData(int id, const std::string& handles) {
    DataPtr data;
    EXPECT_EQ(CreateSignalData(data.Out()), S_OK);
    data->SetId(id);
    for (const std::string& handle : Split(handles, ' ')) {
        data->AddHandle(static_cast<int>(Int(handle)));
    }
    return data;
}

// The entries with their ids: "5:1,2 7:1".
std::string Show(IScalarDataContainer& container) {
    std::string text;
    for (std::uint32_t i = 0; IScalarData* const scalar = container.GetItemAt(i); ++i) {
        EXPECT_EQ(container.FindItem(scalar->GetScalarHandle()), scalar);
        text += (i > 0 ? " " : "") + std::to_string(scalar->GetScalarHandle());
        for (int k = 0; k < scalar->GetSignalIdCount(); ++k) {
            text += (k == 0 ? ":" : ",") +
                    std::to_string(scalar->GetSignalIdAt(static_cast<std::uint32_t>(k)));
        }
    }
    return text;
}

TEST(ScalarData, KeepsIdsAndValue) {
    const ContainerPtr container = NewContainer();
    EXPECT_EQ(container->AddReference(4, 2), S_OK);
    IScalarData& scalar = *container->FindItem(4);
    for (const int id : {7, 0, INT_MAX, 7}) {
        EXPECT_EQ(scalar.AddSignalId(id), S_OK);
    }
    EXPECT_EQ(scalar.AddSignalId(-1), E_INVALIDARG);
    EXPECT_EQ(Show(*container), "4:0,2,7,2147483647");
    EXPECT_EQ(scalar.RemoveSignalId(7), S_OK);
    EXPECT_EQ(scalar.RemoveSignalId(7), E_FAIL);
    EXPECT_EQ(scalar.RemoveSignalId(-1), E_FAIL);
    EXPECT_EQ(Show(*container), "4:0,2,2147483647");
    EXPECT_EQ(scalar.GetSignalIdAt(3), -1);

    unsigned char bytes[] = "0123456789AB";
    EXPECT_EQ(scalar.GetValueSize(), 0U);
    EXPECT_EQ(scalar.GetValue(nullptr, 0), S_OK);
    EXPECT_EQ(scalar.SetValue(bytes, 10), S_OK);
    EXPECT_EQ(scalar.SetValue(bytes + 1, 11), E_INVALIDARG);
    EXPECT_EQ(scalar.SetValue(nullptr, 1), E_INVALIDARG);
    unsigned char read[] = "------------";
    EXPECT_EQ(scalar.GetValue(read, 9), E_INVALIDARG);
    EXPECT_EQ(scalar.GetValue(nullptr, 10), E_INVALIDARG);
    EXPECT_STREQ(reinterpret_cast<char*>(read), "------------");
    EXPECT_EQ(scalar.GetValue(read, 12), S_OK);
    EXPECT_STREQ(reinterpret_cast<char*>(read), "0123456789--");
    EXPECT_EQ(scalar.SetValue(scalar.GetValueBuffer() + 2, 3), S_OK);
    EXPECT_EQ(std::memcmp(scalar.GetValueBuffer(), "2343456789", 10), 0);
    EXPECT_EQ(scalar.GetValueSize(), 3U);
    EXPECT_EQ(scalar.ResetValue(16), S_OK);
    EXPECT_EQ(scalar.GetValueSize(), 10U);
    EXPECT_EQ(std::memcmp(scalar.GetValueBuffer(), "\0\0\0\0\0\0\0\0\0\0", 10), 0);
    EXPECT_EQ(scalar.SetScalarHandle(-1), E_INVALIDARG);
    EXPECT_EQ(scalar.GetScalarHandle(), 4);
    EXPECT_EQ(scalar.AddRef(), 2U);
    container->RemoveAll();
    EXPECT_EQ(scalar.Release(), 0U);
}

TEST(ScalarDataContainer, RefersToTheSignalsOfEachScalar) {
    const ContainerPtr container = NewContainer();
    const DataPtr first = NewData(9, "5 3 4");
    const DataPtr second = NewData(2, "4 8");
    const DataPtr none = NewData(1, "");
    const DataPtr unnamed = NewData(-1, "6");
    EXPECT_EQ(container->AddSignalData(first.get()), S_OK);
    EXPECT_EQ(container->AddSignalData(second.get()), S_OK);
    EXPECT_EQ(container->AddSignalData(second.get()), S_OK);
    EXPECT_EQ(container->AddSignalData(none.get()), S_OK);
    EXPECT_EQ(container->AddSignalData(unnamed.get()), E_INVALIDARG);
    EXPECT_EQ(container->AddSignalData(nullptr), E_INVALIDARG);
    EXPECT_EQ(Show(*container), "3:9 4:2,9 5:9 8:2");
    EXPECT_EQ(container->RemoveReference(5, 2), S_OK);  // an id that is not there
    EXPECT_EQ(Show(*container), "3:9 4:2,9 5:9 8:2");
    EXPECT_EQ(container->RemoveSignalData(first.get()), S_OK);
    EXPECT_EQ(Show(*container), "4:2 8:2");
    EXPECT_EQ(container->RemoveSignalData(first.get()), E_INVALIDARG);
    EXPECT_EQ(container->RemoveSignalData(nullptr), E_INVALIDARG);
    EXPECT_EQ(container->RemoveSignalData(none.get()), S_OK);
    EXPECT_EQ(container->GetCount(), 2);
    EXPECT_EQ(container->GetItemAt(2), nullptr);
    for (const auto& [handle, id] : {std::pair(-1, 1), std::pair(1, -1), std::pair(1, 1)}) {
        EXPECT_EQ(container->RemoveReference(handle, id), E_INVALIDARG);
        EXPECT_EQ(container->AddReference(handle, id), handle + id == 2 ? S_OK : E_INVALIDARG);
    }
    EXPECT_EQ(container->FindItem(-1), nullptr);
    EXPECT_EQ(container->FindItem(7), nullptr);
}

// Handles that come and go in rising, falling and random order.
TEST(ScalarDataContainer, KeepsOrderAsAMapDoes) {
    std::mt19937 random(31);
    for (const int round : {0, 1, 2, 3, 4, 5}) {
        const ContainerPtr container = NewContainer();
        std::map<int, std::set<int>> plain;
        for (int i = 0; i < 6000; ++i) {
            const auto pick = static_cast<int>(random() % 3000);
            const int handle = round < 2 ? pick : round < 4 ? i % 3000 : INT_MAX - i % 3000;
            const int id = static_cast<int>(random() % 3);
            if (round % 2 == 0 ? i < 4000 : random() % 3 != 0) {
                EXPECT_EQ(container->AddReference(handle, id), S_OK);
                plain[handle].insert(id);
            } else {
                const auto entry = plain.find(handle);
                const HRESULT expected = entry != plain.end() ? S_OK : E_INVALIDARG;
                ASSERT_EQ(container->RemoveReference(handle, id), expected);
                if (entry != plain.end() && (entry->second.erase(id), entry->second.empty())) {
                    plain.erase(entry);
                }
            }
            ASSERT_EQ(container->GetCount(), static_cast<int>(plain.size()));
            ASSERT_EQ(container->FindItem(handle) != nullptr, plain.count(handle) != 0);
            if (i % 1500 != 1499) {
                continue;
            }
            std::string expected;
            for (const auto& [key, ids] : plain) {
                expected += (expected.empty() ? "" : " ") + std::to_string(key);
                for (const int known : ids) {
                    expected += (known == *ids.begin() ? ":" : ",") + std::to_string(known);
                }
            }
            ASSERT_EQ(Show(*container), expected) << "round " << round << ", change " << i;
        }
    }
}

// type | handles of the signal | those with an entry | result | value sizes of the entries, in
// order
TEST(ScalarDataContainer, AppliesTheSizesOfTypes) {
    const std::map<std::string, HRESULT> results{
        {"ok", S_OK}, {"arg", E_INVALIDARG}, {"unexpected", E_UNEXPECTED}};
    for (const auto& row : Table(R"(
        real | 5 | 5 | ok | 8
        real | 5 | 6 | arg | 10
        std_logic_vector(7 downto 0) | 1 2 3 4 5 6 7 8 | 1 2 3 4 5 6 7 8 | ok | 1 1 1 1 1 1 1 1
        std_logic_vector(7 downto 0) | 1 2 3 4 5 6 7 | 1 2 3 4 5 6 7 | unexpected | 10 10 10 10 10 10 10
        array (1 to 3) of integer | 3 2 1 | 1 3 | arg | 10 4
        array (1 to 3) of integer | 3 2 1 | 1 2 3 | ok | 4 4 4
        array (1 to 2, 1 to 2) of real | 1 2 3 4 5 | 1 2 3 4 5 | ok | 8 8 8 8 10
        array (0 to 1) of bit_vector(1 to 2) | 4 3 2 1 | 1 2 3 4 | ok | 1 1 1 1
        array (0 to 1) of bit_vector(1 to 2) | 4 3 2 | 2 3 4 | unexpected | 10 1 1
        record a : bit; b : real; end record | 1 2 | 1 2 | ok | 1 8
        record a : bit; b : real; end record | 2 1 | 1 2 | ok | 8 1
        record a : bit; b : real; end record | 1 | 1 | arg | 1
        record a : integer; b : bit_vector(1 to 3); c : bit; end record | 1 2 | 1 2 | ok | 4 1
        array (0 to 2) of record a : bit; b : real; end record | 1 2 3 4 | 1 2 3 4 | arg | 1 8 1 8
        array (0 to 1, 0 to 1) of bit_vector(0 to 0) | 1 2 3 4 5 6 7 8 | 1 2 3 4 5 6 7 8 | ok | 1 1 1 1 1 1 1 1
        array (0 to 1, 0 to 1) of bit_vector(0 to 0) | 1 2 3 4 | 1 2 3 4 | unexpected | 1 1 1 1)")) {
        const ContainerPtr container = NewContainer();
        for (const std::string& handle : Split(row[2], ' ')) {
            container->AddReference(static_cast<int>(Int(handle)), 0);
        }
        for (std::uint32_t i = 0; IScalarData* const scalar = container->GetItemAt(i); ++i) {
            scalar->SetValue("0123456789", 10);
        }
        const DataPtr data = NewData(0, row[1]);
        CString type;
        ASSERT_TRUE(TypeFromVhdl(row[0].c_str(), type)) << row[0];
        ASSERT_EQ(data->SetTypeInfo(type), S_OK);
        EXPECT_EQ(container->ApplyTypeSizes(data.get()), results.at(row[3])) << row[0];
        std::string sizes;
        for (std::uint32_t i = 0; IScalarData* const scalar = container->GetItemAt(i); ++i) {
            sizes += (i > 0 ? " " : "") + std::to_string(scalar->GetValueSize());
            EXPECT_EQ(scalar->GetValueBuffer()[1], scalar->GetValueSize() == 10 ? '1' : 0);
        }
        EXPECT_EQ(sizes, row[4]) << row[0];
    }
}

TEST(ScalarDataContainer, AppliesNoSizesWithoutTypeOrEnd) {
    const ContainerPtr container = NewContainer();
    const DataPtr data = NewData(0, "1");
    EXPECT_EQ(container->ApplyTypeSizes(nullptr), E_INVALIDARG);
    EXPECT_EQ(container->ApplyTypeSizes(data.get()), E_UNEXPECTED);
    // elements without a scalar, as many as can be; the end is reached all the same
    const std::string empty = "r#1#r0";
    const std::string big = "rict0 2147483647 ";
    for (const std::string& type : {"a#1#a2 " + big + big + "r#1#r0 ",
                                    "a#1#a2 " + big + big + "a#1#a2 " + big + big + "r#1#r0 "}) {
        ASSERT_EQ(data->SetTypeInfo(type.c_str()), S_OK) << type;
        EXPECT_EQ(container->ApplyTypeSizes(data.get()), S_OK);
        const DataPtr none = NewData(0, "");
        ASSERT_EQ(none->SetTypeInfo(type.c_str()), S_OK);
        EXPECT_EQ(container->ApplyTypeSizes(none.get()), E_UNEXPECTED);
    }
}

TEST(ScalarDataContainer, FailsWithoutMemory) {
    ContainerPtr container;
    HRESULT expected = E_OUTOFMEMORY;  // no memory for the object; then none for its part
    FailEveryAllocation([&] { return CreateScalarDataContainer(container.Out()); },
                        [&](HRESULT result) {
                            EXPECT_EQ(result, expected);
                            EXPECT_FALSE(container);
                            expected = E_UNEXPECTED;
                        });
    std::string before;
    const auto prepare = [&] {
        container = NewContainer();
        for (int i = 0; i < 16; ++i) {
            container->AddReference(100 - 2 * i, 0);
        }
        before = Show(*container);
        container->AddReference(41, 1);
        container->RemoveReference(100, 0);
        before = before.substr(0, before.rfind(' '));
    };
    for (const int handle : {101, 45, 72}) {
        FailEveryAllocation(
            prepare, [&] { return container->AddReference(handle, 5); },
            [&](HRESULT result) {
                EXPECT_EQ(result, E_OUTOFMEMORY);
                container->RemoveReference(41, 1);
                EXPECT_EQ(Show(*container), before);
            });
    }
}

}  // namespace
}  // namespace corv::test
