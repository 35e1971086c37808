#include "corv/signals/property_map.h"

#include "tests/support/test.h"

namespace corv::test {
namespace {

struct NoCase {
    bool operator()(const std::string& a, const std::string& b) const {
        return std::lexicographical_compare(
            a.begin(), a.end(), b.begin(), b.end(),
            [](unsigned char x, unsigned char y) { return std::tolower(x) < std::tolower(y); });
    }
};
// Properties in order, with the pointers to their values: these stay as they are through every
// change of other keys, in copies too, until their own key is set or erased.
using Held = std::map<std::string, std::pair<const char*, std::string>, NoCase>;

void ExpectSame(const CPropertyMap& map, const Held& held) {
    const char* key = nullptr;
    const char* value = nullptr;
    bool more = map.GetFirst(key, value);
    for (const auto& [name, text] : held) {
        ASSERT_TRUE(more && map.Get(name.c_str()) == text.first && value == text.first);
        ASSERT_EQ(key, name);
        ASSERT_EQ(value, text.second);
        more = map.GetNext(key, value);
    }
    ASSERT_FALSE(more);
    ASSERT_EQ(map.GetCount(), static_cast<int>(held.size()));
}

// Keys that differ in case alone, and where "_" sorts between the cases.
TEST(PropertyMap, RandomOperations) {
    static constexpr const char* kKeys[] = {"Name", "NAME", "name",  "Na",   "Na_me", "NaZme",  "",
                                            "\xC4", "z",    "Z\xE4", "Type", "TypE ", "MaxTime"};
    Random random(11);
    std::array<CPropertyMap, 3> maps;
    std::array<Held, 3> held;
    for (int i = 0; i < 5000; ++i) {
        const std::size_t at = random.Below(maps.size());
        const std::string key = random.Pick(kKeys);
        if (random.OneIn(20)) {
            const std::size_t from = random.Below(maps.size());
            maps[at] = CPropertyMap(maps[from]);
            held[at] = held[from];
        } else if (random.OneIn(3)) {
            maps[at].Erase(key.c_str());
            held[at].erase(key);
        } else {
            const std::string value(random.Below(30), static_cast<char>('a' + random.Below(26)));
            ASSERT_TRUE(maps[at].Set(key.c_str(), value.c_str()));
            held[at][key] = {maps[at].Get(key.c_str()), value};  // keeps the key's first case
        }
        for (std::size_t map = 0; map < maps.size(); ++map) {
            ASSERT_NO_FATAL_FAILURE(ExpectSame(maps[map], held[map])) << i;
        }
    }
}

TEST(PropertyMap, Integers) {
    struct Row {
        const char* text;
        int value;
        std::int64_t wide;
    };
    CPropertyMap map;
    for (const Row& row :
         {Row{"12", 12, 12}, Row{" -7ps", -7, -7}, Row{"+3", 3, 3}, Row{"abc", 0, 0}, Row{"", 0, 0},
          Row{"9000000000", 2147483647, 9000000000},
          Row{"-99999999999999999999", -2147483647 - 1, INT64_MIN}}) {
        map.Set("n", row.text);
        int value = 5;
        std::int64_t wide = 5;
        EXPECT_TRUE(map.GetInteger("N", value));
        EXPECT_TRUE(map.GetInteger64("N", wide));
        EXPECT_EQ(value, row.value) << row.text;
        EXPECT_EQ(wide, row.wide) << row.text;
    }
    EXPECT_TRUE(map.SetInteger("n", -2147483647 - 1));
    EXPECT_STREQ(map.Get("n"), "-2147483648");
    int untouched = 5;
    EXPECT_FALSE(map.GetInteger("m", untouched));
    EXPECT_EQ(untouched, 5);
}

TEST(PropertyMap, WithoutMemoryItStaysAsItWas) {
    const std::string old_value(100, 'o');
    const std::string new_value(200, 'n');
    CPropertyMap map;
    FailEveryAllocation(
        [&] {
            map = CPropertyMap();
            map.Set("key", old_value.c_str());
        },
        [&] { return map.Set("KEY", new_value.c_str()) && map.Set("other", new_value.c_str()); },
        [&](bool set) {
            EXPECT_FALSE(set);
            EXPECT_TRUE(map.Get("key") == old_value || map.Get("key") == new_value);
            EXPECT_EQ(map.Get("other"), nullptr);
        });
    CPropertyMap copy;
    FailEveryAllocation([&] { copy = map; }, [&] { return copy.Erase("key"); },
                        [&](bool erased) {
                            EXPECT_FALSE(erased);
                            EXPECT_STREQ(copy.Get("key"), map.Get("key"));
                        });
    EXPECT_TRUE(map.Set(nullptr, nullptr));
    EXPECT_STREQ(map.Get(""), "");
}

}  // namespace
}  // namespace corv::test
