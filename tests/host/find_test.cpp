// Conditions over recordings, against a model that looks at each picosecond.

#include <unistd.h>

#include "host/find/measure.h"
#include "host/find/search.h"
#include "tests/support/test.h"

namespace corv::test {
namespace {

constexpr int kEnd = 60;  // ps

// What a signal is at each time; index 0 is the time before the first value.
using Values = std::vector<std::string>;

struct Design {
    Values a, b, v, w;
};

Values MakeValues(Random& random, int width, const std::string& letters) {
    Values values(1);
    std::string value;
    for (int time = 0; time <= kEnd; ++time) {
        if (time == 0 || random.Below(4) == 0) {
            value.clear();
            for (int i = 0; i < width; ++i) {
                value += letters[random.Below(letters.size())];
            }
        }
        values.push_back(value);
    }
    return values;
}

std::string Vcd(const Design& design) {
    std::string text =
        "$timescale 1ps $end\n$scope module t $end\n$var wire 1 ! a $end\n$var wire 1 \" b $end\n"
        "$var wire 4 # v $end\n$var wire 4 $ w $end\n$upscope $end\n$enddefinitions $end\n";
    for (std::size_t i = 1; i < design.a.size(); ++i) {
        std::string changes;
        const auto add = [&](const Values& values, const std::string& code) {
            if (values[i] != values[i - 1]) {
                changes += (values[i].size() > 1 ? "b" + values[i] + " " : values[i]) + code + "\n";
            }
        };
        add(design.a, "!");
        add(design.b, "\"");
        add(design.v, "#");
        add(design.w, "$");
        text += changes.empty() ? "" : "#" + std::to_string(i - 1) + "\n" + changes;
    }
    return text + "#" + std::to_string(kEnd) + "\n";
}

// A condition with its truth at each index.
struct Condition {
    std::string text;
    bool moments = false;
    std::vector<bool> at;
};

class Model {
public:
    Model(const Design& design, Random& random) : design_(design), random_(random) {}

    Condition Level(int depth) {
        switch (depth == 0 ? Pick(4) : Pick(10)) {
            case 0:
                return Bit();
            case 1:
                return Compared();
            case 2:
                return Stable();
            case 3:
                return Unknown();
            case 4: {
                Condition part = Level(depth - 1);
                return Each("not (" + part.text + ")", [&](std::size_t i) { return !part.at[i]; });
            }
            case 5: {
                Condition part = Level(depth - 1);
                return Each("before(" + part.text + ")",
                            [&](std::size_t i) { return part.at[i > 0 ? i - 1 : 0]; });
            }
            case 6:
                return Held(depth);
            default:
                return Joined(depth);
        }
    }

    Condition Moments(int depth) {
        Condition condition;
        switch (depth == 0 ? Pick(2) : Pick(6)) {
            case 0: {
                const bool rising = Pick(2) == 0;
                const char from = rising ? '0' : '1';
                condition = Each(rising ? "rising(a)" : "falling(a)", [&](std::size_t i) {
                    return i > 0 && design_.a[i - 1] == std::string(1, from) &&
                           design_.a[i] == (rising ? "1" : "0");
                });
                break;
            }
            case 1:
                condition = Each("changes(v)", [&](std::size_t i) {
                    return i > 0 && design_.v[i] != design_.v[i - 1];
                });
                break;
            case 2: {
                Condition part = Level(depth - 1);
                condition = Each("rising(not not (" + part.text + "))", [&](std::size_t i) {
                    return i > 0 && part.at[i] && !part.at[i - 1];
                });
                break;
            }
            case 3: {
                Condition left = Moments(depth - 1);
                Condition right = Level(depth - 1);
                condition = Each("(" + left.text + ") and (" + right.text + ")",
                                 [&](std::size_t i) { return left.at[i] && right.at[i]; });
                break;
            }
            case 4: {
                Condition left = Moments(depth - 1);
                Condition right = Moments(depth - 1);
                const bool both = Pick(2) == 0;
                condition =
                    Each("(" + left.text + (both ? ") and (" : ") or (") + right.text + ")",
                         [&](std::size_t i) {
                             return both ? left.at[i] && right.at[i] : left.at[i] || right.at[i];
                         });
                break;
            }
            default:
                condition = Within(depth);
        }
        condition.moments = true;
        return condition;
    }

private:
    int Pick(int count) { return static_cast<int>(random_.Below(static_cast<std::size_t>(count))); }

    Condition Each(std::string text, const std::function<bool(std::size_t)>& holds) {
        Condition condition{std::move(text), false, {}};
        for (std::size_t i = 0; i < design_.a.size(); ++i) {
            condition.at.push_back(holds(i));
        }
        return condition;
    }

    Condition Bit() {
        return Each("b", [&](std::size_t i) { return design_.b[i] == "1"; });
    }

    Condition Compared() {
        static constexpr const char* kRelations[] = {"=", "/=", "<", ">="};
        const int relation = Pick(4);
        const int number = Pick(16);
        const bool signals = Pick(2) == 0;
        const std::string right = signals ? "t.w" : std::to_string(number);
        return Each("v " + std::string(kRelations[relation]) + " " + right, [&](std::size_t i) {
            const std::string& left_bits = design_.v[i];
            std::string right_bits = design_.w[i];
            if (!signals) {
                right_bits.clear();
                for (int bit = 3; bit >= 0; --bit) {
                    right_bits += (number >> bit & 1) != 0 ? '1' : '0';
                }
            }
            const bool known = left_bits.find('x') + right_bits.find('x') + 2 == 0;
            if (left_bits.empty() || right_bits.empty() || (relation > 1 && !known)) {
                return false;
            }
            return relation == 0   ? left_bits == right_bits
                   : relation == 1 ? left_bits != right_bits
                   : relation == 2 ? left_bits < right_bits
                                   : left_bits >= right_bits;
        });
    }

    Condition Unknown() {
        return Each("unknown(t/v)",
                    [&](std::size_t i) { return design_.v[i].find('x') != std::string::npos; });
    }

    Condition Stable() {
        const int time = 1 + Pick(9);
        int last = -1;
        return Each("w stable for " + std::to_string(time) + "ps", [&](std::size_t i) {
            last = i > 0 && design_.w[i] != design_.w[i - 1] ? static_cast<int>(i) : last;
            return last >= 0 && static_cast<int>(i) - last >= time;
        });
    }

    Condition Held(int depth) {
        const Condition part = Level(depth - 1);
        const int time = 1 + Pick(5);
        int since = part.at[0] ? 1 : -1;
        return Each("(" + part.text + ") for " + std::to_string(time), [&](std::size_t i) {
            since = !part.at[i] ? -1 : since < 0 ? static_cast<int>(i) : since;
            return i > 0 && since >= 0 && static_cast<int>(i) - since >= time;
        });
    }

    Condition Joined(int depth) {
        static constexpr const char* kWords[] = {"and", "or", "xor"};
        const int word = Pick(3);
        const Condition left = Level(depth - 1);
        const Condition right = Level(depth - 1);
        return Each("(" + left.text + ") " + kWords[word] + " (" + right.text + ")",
                    [&](std::size_t i) {
                        return word == 0   ? left.at[i] && right.at[i]
                               : word == 1 ? left.at[i] || right.at[i]
                                           : left.at[i] != right.at[i];
                    });
    }

    Condition Within(int depth) {
        static constexpr const char* kSides[] = {"of", "after", "before"};
        const int side = Pick(3);
        const int time = Pick(6);
        const bool negated = Pick(2) == 0;
        const Condition left = Moments(depth - 1);
        const Condition right = Moments(depth - 1);
        const std::string text = "(" + left.text + ") " + (negated ? "not " : "") + "within " +
                                 std::to_string(time) + "ps " + kSides[side] + " (" + right.text +
                                 ")";
        return Each(text, [&](std::size_t i) {
            bool near = false;
            for (std::size_t other = 0; other < right.at.size(); ++other) {
                const int distance = static_cast<int>(other) - static_cast<int>(i);
                const bool on_side = side == 0 || (side == 1 ? distance <= 0 : distance >= 0);
                near |= right.at[other] && on_side && std::abs(distance) <= time;
            }
            return left.at[i] && near != negated;
        });
    }

    const Design& design_;
    Random& random_;
};

// The indices at which a search finds its condition.
std::vector<bool> FoundBy(find::Search& search, std::size_t count) {
    std::vector<bool> at(count);
    if (!search.IsLevel()) {
        const auto moments = search.TakeMoments();
        for (auto time = moments->Next(); time >= 0; time = moments->Next()) {
            at[static_cast<std::size_t>(time) + 1] = true;
        }
        return at;
    }
    const auto level = search.TakeLevel();
    bool holds = level->AtFirst();
    std::int64_t next = level->Next();
    for (std::size_t i = 0; i < count; ++i) {
        if (next >= 0 && static_cast<std::size_t>(next) + 1 == i) {
            holds = !holds;
            next = level->Next();
        }
        at[i] = holds;
    }
    return at;
}

TEST(Find, AgreesWithAModelAtEachTime) {
    Random random(4711);
    const std::string file = (std::filesystem::temp_directory_path() /
                              ("corv_find_" + std::to_string(getpid()) + ".vcd"))
                                 .string();
    for (int design_number = 0; design_number < 40; ++design_number) {
        const Design design{MakeValues(random, 1, "01x"), MakeValues(random, 1, "01"),
                            MakeValues(random, 4, "0001x1"), MakeValues(random, 4, "01")};
        std::ofstream(file) << Vcd(design);
        const host::Recording recording(file);
        for (int i = 0; i < 50; ++i) {
            Model model(design, random);
            const Condition condition = i % 2 == 0 ? model.Level(3) : model.Moments(3);
            SCOPED_TRACE(condition.text);
            find::Search search(recording, condition.text,
                                [](const std::string& name) { return "no " + name; });
            ASSERT_EQ(search.IsLevel(), !condition.moments);
            search.Read({0, kEnd});
            ASSERT_EQ(FoundBy(search, condition.at.size()), condition.at);
        }
    }
    std::filesystem::remove(file);
}

}  // namespace
}  // namespace corv::test
