#include "corv/containers/signal_data.h"

#include "corv/containers/signal_data_container.h"
#include "corv/frame/com_ptr.h"
#include "corv/typeinfo/type_info.h"
#include "tests/containers/fake_reader.h"
#include "tests/support/test.h"

namespace corv::test {
namespace {

using DataPtr = frame::ComPtr<ISignalData>;

constexpr const char* kBit = "e#3#bitc2 01";

DataPtr NewData(int id = -1, const char* name = nullptr) {
    DataPtr data;
    EXPECT_EQ(CreateSignalData(data.Out()), S_OK);
    data->SetId(id);
    data->SetName(name);
    return data;
}

// name | short name | path
TEST(SignalData, CutsNamesAtTheLastSeparator) {
    for (const auto& row : Table(R"(
        a\b\c | c | a\b\ ;; abc | abc | _ ;; a\ | _ | a\ ;; _ | _ | _
        \a\b | \a\b | _ ;; \a b\top\leaf | leaf | \a b\top\ ;; \a\\b\c | \a\\b\c | _
        \a b | \a b | _ ;; \a\.x | \a\.x | _)")) {
        const DataPtr data = NewData(0, row[0].c_str());
        EXPECT_STREQ(data->GetName(), row[0].c_str());
        EXPECT_STREQ(data->GetShortName(), row[1].c_str()) << row[0];
        for (std::size_t size = 0; size <= row[2].size() + 2; ++size) {
            std::vector<char> path(size + 1, '?');
            const bool fits = size > row[2].size();
            EXPECT_EQ(data->GetPath(path.data(), static_cast<std::uint32_t>(size)), fits);
            EXPECT_EQ(std::string(path.data(), fits ? row[2].size() + 1 : 1),
                      fits ? row[2] + '\0' : "?");
        }
        EXPECT_FALSE(data->GetPath(nullptr, 100));
        EXPECT_EQ(data->SetName(data->GetShortName()), S_OK);
        EXPECT_STREQ(data->GetName(), row[1].c_str());
    }
}

TEST(SignalData, KeepsWhatItIsTold) {
    const DataPtr data = NewData();
    EXPECT_EQ(data->GetTypeInfo(), nullptr);
    EXPECT_EQ(data->GetTypeInfoString(), nullptr);
    EXPECT_EQ(data->SetTypeInfo(kBit), S_OK);
    for (const char* const bad : {static_cast<const char*>(nullptr), "", "e#3#bitc2 0", "x"}) {
        EXPECT_EQ(data->SetTypeInfo(bad), E_INVALIDARG);
    }
    EXPECT_EQ(data->SetName(nullptr), E_INVALIDARG);
    EXPECT_STREQ(data->GetTypeInfoString(), kBit);
    EXPECT_EQ(data->GetTypeInfo()->GetKind(), KTypeInfo::KindEnum);
    EXPECT_EQ(data->SetProperty("VBus", "1"), S_OK);
    EXPECT_EQ(data->SetProperty("vbus", "2"), S_OK);
    EXPECT_EQ(data->SetProperty(nullptr, "2"), E_FAIL);
    EXPECT_EQ(data->SetProperty("VBus", nullptr), E_FAIL);
    EXPECT_STREQ(data->GetProperty("VBUS"), "2");
    EXPECT_EQ(data->GetProperty("other"), nullptr);
    EXPECT_EQ(data->GetProperty(nullptr), nullptr);
    EXPECT_EQ(data->GetId(), -1);
    EXPECT_EQ(data->GetMode(), 0);
    EXPECT_EQ(data->GetMaxTime(), -1);
    data->SetMode(INT_MIN);
    data->SetMaxTime(INT64_MIN);
    EXPECT_EQ(data->GetMode(), INT_MIN);
    EXPECT_EQ(data->GetMaxTime(), INT64_MIN);
    EXPECT_EQ(data->Reserved1(5), E_NOTIMPL);
    EXPECT_EQ(data->Reserved2(), 0);
}

// Handles are listed once, in the order in which they come, however many and in whatever order.
TEST(SignalData, ListsHandlesOnce) {
    std::mt19937 random(21);
    for (const int range : {3, 40, 200, 5000, INT_MAX}) {
        const DataPtr data = NewData();
        std::vector<int> plain;
        for (int i = 0; i < 700; ++i) {
            const auto pick = static_cast<int>(random() % static_cast<unsigned>(range));
            const int handle = i % 100 < 50 ? pick : i % 100 < 75 ? i : INT_MAX - 3 * i;
            EXPECT_EQ(data->AddHandle(handle), S_OK);
            if (std::find(plain.begin(), plain.end(), handle) == plain.end()) {
                plain.push_back(handle);
            }
            ASSERT_EQ(data->GetHandleCount(), static_cast<int>(plain.size()));
            ASSERT_EQ(data->GetHandleAt(static_cast<std::uint32_t>(plain.size() - 1)),
                      plain.back());
        }
        for (std::uint32_t i = 0; i < plain.size(); ++i) {
            ASSERT_EQ(data->GetHandleAt(i), plain[i]);
        }
        EXPECT_EQ(data->AddHandle(-1), E_INVALIDARG);
        EXPECT_EQ(data->AddHandle(INT_MIN), E_INVALIDARG);
        EXPECT_EQ(data->GetHandleAt(static_cast<std::uint32_t>(plain.size())), -1);
        EXPECT_EQ(data->GetHandleAt(UINT_MAX), -1);
        data->ClearHandles();
        EXPECT_EQ(data->GetHandleCount(), 0);
        EXPECT_EQ(data->AddHandle(plain[0]), S_OK);
        EXPECT_EQ(data->GetHandleAt(0), plain[0]);
    }
}

// Two fields, of which the second has two of its own.
FakeReader MakeReader() {
    FakeReader reader;
    const char* const record = "r#3#rec2 1#a e#3#bitc2 01 1#b e#3#bitc2 01";
    const char* const type = KTypeInfo::CheckTypeInfo(record) ? record : kBit;
    reader.signals[1] = {"top\\s", type, 90, {7, 2}};
    reader.signals[7] = {".a", kBit, 50, {}};
    reader.signals[2] = {".b", kBit, 80, {3, 9}};
    reader.signals[3] = {".b.x", kBit, 80, {}};
    reader.signals[9] = {".b.y", kBit, -1, {}};
    reader.properties[{1, "Stimulator"}] = "CLK:FRM:Drive";
    reader.properties[{3, "VBus"}] = "";
    reader.properties[{3, "Other"}] = "x";
    return reader;
}

// Name, mode, time and properties of an object and of those below it, then its handles.
std::string Show(ISignalData& data) {
    std::string text = data.GetName();
    text += "@" + std::to_string(data.GetMode()) + "@" + std::to_string(data.GetMaxTime());
    for (const char* const key : {"stimulator", "vbus", "other"}) {
        const char* const value = data.GetProperty(key);
        text += value != nullptr ? std::string(1, key[0]) + "=" + value : "";
    }
    text += data.GetTypeInfo() == nullptr ? "!" : "";
    for (int i = 0; i < data.GetChildCount(); ++i) {
        text += i == 0 ? " (" : " ";
        text += Show(*data.GetChildAt(static_cast<std::uint32_t>(i)));
        text += i + 1 == data.GetChildCount() ? ")" : "";
    }
    for (int i = 0; i < data.GetHandleCount(); ++i) {
        text +=
            (i == 0 ? " #" : ",") + std::to_string(data.GetHandleAt(static_cast<std::uint32_t>(i)));
    }
    return text;
}

constexpr const char* kWhole =
    "top\\s@1@90s=CLK:FRM:Drive (.a@7@50 .b@2@80 (.b.x@3@80v= .b.y@9@-1)) #7,3,9";

TEST(SignalData, LoadsATree) {
    FakeReader reader = MakeReader();
    const DataPtr data = NewData(5, "old");
    data->AddHandle(77);
    data->SetProperty("Other", "old");
    EXPECT_EQ(data->LoadFromReader(nullptr, 1), E_INVALIDARG);
    EXPECT_EQ(Show(*data), "old@0@-1o=old! #77");
    EXPECT_EQ(data->LoadFromReader(&reader, 1), S_OK);
    EXPECT_EQ(Show(*data), kWhole);
    EXPECT_EQ(data->GetId(), -1);
    EXPECT_EQ(data->GetChildAt(2), nullptr);
    EXPECT_STREQ(data->GetShortName(), "s");
    EXPECT_EQ(data->FindByName("TOP\\S"), data.get());
    EXPECT_EQ(data->FindByName(".B.Y"), data->GetChildAt(1)->GetChildAt(1));
    EXPECT_EQ(data->FindByName("top\\S.A"), data->GetChildAt(0)) << "selected";
    EXPECT_EQ(data->FindByName("top\\s.b.B.x"), data->GetChildAt(1)->GetChildAt(0));
    for (const char* const none : {"s", "top\\s.", "top\\s.c", "top\\s.a.b", "top"}) {
        EXPECT_EQ(data->FindByName(none), nullptr) << none;
    }
    EXPECT_EQ(data->FindByName(nullptr), nullptr);
    // a part of the tree is the root of what it loads itself, and may be kept beyond the tree
    const DataPtr part = DataPtr::Share(data->GetChildAt(1));
    EXPECT_EQ(part->LoadFromReader(&reader, 2), S_OK);
    EXPECT_EQ(data->LoadFromReader(&reader, 7), S_OK);
    EXPECT_EQ(Show(*data), ".a@7@50 #7");
    EXPECT_EQ(Show(*part), ".b@2@80 (.b.x@3@80v= .b.y@9@-1) #3,9");
    part->GetChildAt(0)->AddHandle(4);
    part->ClearHandles();
    EXPECT_EQ(Show(*part), ".b@2@80 (.b.x@3@80v= .b.y@9@-1)");
}

// What a recording that lies leaves behind: all that was read before the lie.
TEST(SignalData, EndsWhereARecordingLies) {
    const auto load = [](FakeReader& reader, int handle) {
        const DataPtr data = NewData();
        EXPECT_EQ(data->LoadFromReader(&reader, handle), E_FAIL);
        return Show(*data);
    };
    FakeReader reader = MakeReader();
    EXPECT_EQ(load(reader, -1), "@0@-1!");
    EXPECT_EQ(load(reader, 55), "@55@0!");
    reader.more_members = 3'000'000;
    EXPECT_EQ(load(reader, 2), ".b@2@80 (.b.x@3@80v= .b.y@9@-1 @0@-1!) #3,9");
    reader.more_members = -5;
    const DataPtr none = NewData();
    EXPECT_EQ(none->LoadFromReader(&reader, 1), S_OK) << "a composite without members";
    EXPECT_EQ(Show(*none), "top\\s@1@90s=CLK:FRM:Drive");
    reader = MakeReader();
    reader.signals[3].type = nullptr;
    EXPECT_EQ(load(reader, 1), "top\\s@1@90s=CLK:FRM:Drive (.a@7@50 .b@2@80 (.b.x@3@80!)) #7");
    reader.signals[3].type = "no type";
    EXPECT_EQ(load(reader, 3), ".b.x@3@80!");
    // signals within themselves, and too many within each other
    reader = MakeReader();
    reader.signals[9].members = {1, 1};
    const DataPtr data = NewData();
    EXPECT_EQ(data->LoadFromReader(&reader, 1), E_FAIL);
    for (int i = 1; i <= 300; ++i) {
        reader.signals[i] = reader.signals[9];
        reader.signals[i].members = {i + 1};
    }
    EXPECT_EQ(data->LoadFromReader(&reader, 1), E_FAIL);
    int depth = 0;
    for (ISignalData* node = data.get(); node->GetChildCount() > 0; ++depth) {
        node = node->GetChildAt(static_cast<std::uint32_t>(node->GetChildCount() - 1));
    }
    EXPECT_EQ(depth, 256);
    EXPECT_EQ(data->FindByName("none"), nullptr);
}

TEST(SignalData, FailsWithoutMemory) {
    FakeReader reader = MakeReader();
    reader.signals[1].name = std::string(50, 'n');
    reader.properties[{1, "Stimulator"}] = std::string(50, 's');
    DataPtr data;
    const auto prepare = [&] { data = NewData(); };
    FailEveryAllocation(
        prepare, [&] { return data->LoadFromReader(&reader, 1); },
        [&](HRESULT result) {
            EXPECT_TRUE(result == E_OUTOFMEMORY || result == E_FAIL);
            Show(*data);
            EXPECT_EQ(data->LoadFromReader(&reader, 1), S_OK);
            EXPECT_EQ(data->GetHandleCount(), 3);
        });
    // a long list of handles stays as it was
    const auto fill = [&] {
        prepare();
        for (int i = 0; i < 64; ++i) {
            data->AddHandle(1000 - i);
        }
    };
    FailsUnchanged(
        fill, [&] { return data->AddHandle(5); }, E_OUTOFMEMORY,
        [&] { return data->AddHandle(937) + data->GetHandleCount(); });
}

TEST(SignalDataContainer, OrdersByIdAsAPlainListDoes) {
    std::mt19937 random(22);
    for (const unsigned range : {4U, 1000U}) {
        frame::ComPtr<ISignalDataContainer> container;
        ASSERT_EQ(CreateSignalDataContainer(container.Out()), S_OK);
        std::vector<DataPtr> plain;
        for (int i = 0; i < 400; ++i) {
            const int id = static_cast<int>(random() % range) + (i % 9 == 0 ? INT_MAX - 1000 : 0);
            const auto place = std::find_if(plain.begin(), plain.end(),
                                            [&](const auto& data) { return data->GetId() >= id; });
            if (random() % 3 != 0) {
                DataPtr data = NewData(id, std::to_string(random() % 20).c_str());
                EXPECT_EQ(container->Add(data.get()), S_OK);
                EXPECT_EQ(data->AddRef(), 3U);
                data->Release();
                plain.insert(place, std::move(data));
            } else if (place != plain.end()) {
                EXPECT_EQ(container->Remove(place->get()), S_OK);
                EXPECT_EQ(container->Remove(place->get()), E_FAIL);
                EXPECT_EQ((*place)->AddRef(), 2U);
                (*place)->Release();
                plain.erase(place);
            }
            ASSERT_EQ(container->GetCount(), static_cast<int>(plain.size()));
            const auto found = std::find_if(plain.begin(), plain.end(),
                                            [&](const auto& data) { return data->GetId() == id; });
            EXPECT_EQ(container->FindById(id), found == plain.end() ? nullptr : found->get());
            const std::string name = std::to_string(random() % 20);
            const auto named = std::find_if(plain.begin(), plain.end(), [&](const auto& data) {
                return data->GetName() == name;
            });
            EXPECT_EQ(container->FindByName(name.c_str()),
                      named == plain.end() ? nullptr : named->get());
        }
        for (std::uint32_t i = 0; i < plain.size(); ++i) {
            ASSERT_EQ(container->GetAt(i), plain[i].get());
        }
        EXPECT_EQ(container->GetAt(static_cast<std::uint32_t>(plain.size())), nullptr);
        container = {};
        for (const DataPtr& data : plain) {
            EXPECT_EQ(data->AddRef(), 2U);
            data->Release();
        }
    }
}

TEST(SignalDataContainer, RefusesWhatHasNoPlace) {
    frame::ComPtr<ISignalDataContainer> container;
    ASSERT_EQ(CreateSignalDataContainer(container.Out()), S_OK);
    const DataPtr data = NewData();
    EXPECT_EQ(container->Add(nullptr), E_INVALIDARG);
    EXPECT_EQ(container->Add(data.get()), E_INVALIDARG);
    EXPECT_EQ(container->Remove(nullptr), E_INVALIDARG);
    EXPECT_EQ(container->Remove(data.get()), E_FAIL);
    EXPECT_EQ(container->FindById(-1), nullptr);
    EXPECT_EQ(container->FindByName(nullptr), nullptr);
    data->SetId(0);
    EXPECT_EQ(container->Add(data.get()), S_OK);
    data->SetId(7);
    EXPECT_EQ(container->Remove(data.get()), S_OK);
    EXPECT_EQ(container->GetCount(), 0);

    HRESULT expected = E_OUTOFMEMORY;  // no memory for the object; then none for its part
    FailEveryAllocation([&] { return CreateSignalDataContainer(container.Out()); },
                        [&](HRESULT result) {
                            EXPECT_EQ(result, expected);
                            EXPECT_FALSE(container);
                            expected = E_FAIL;
                        });
    for (int i = 0; i < 100; ++i) {
        FailEveryAllocation([&] { return container->Add(data.get()); },
                            [&](HRESULT result) {
                                EXPECT_EQ(result, E_OUTOFMEMORY);
                                EXPECT_EQ(container->GetCount(), i);
                            });
    }
}

}  // namespace
}  // namespace corv::test
