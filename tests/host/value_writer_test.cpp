#include "host/value_writer.h"

#include "corv/frame/com_ptr.h"
#include "corv/typeinfo/vhdl_type.h"
#include "host/signal_trace.h"
#include "tests/support/test.h"

namespace corv::host {
namespace {

std::string Hex(std::string_view characters, BusKind kind) {
    return BusDigits(characters, Radix::Hex, kind);
}

frame::ComPtr<ISignal> SignalOf(const std::string& vhdl) {
    CString type;
    frame::ComPtr<ISignal> signal;
    EXPECT_TRUE(TypeFromVhdl(vhdl.c_str(), type)) << vhdl;
    EXPECT_EQ(CreateSignal(type, nullptr, signal.Out()), S_OK) << vhdl;
    return signal;
}

LeafValue Value(ISignal& leaf, const std::string& text) {
    LeafValue value;
    value.known = text != "none";
    EXPECT_TRUE(!value.known || SUCCEEDED(leaf.TextToValue(text.c_str(), value.bytes.data(), 8)))
        << text;
    return value;
}

// Types, the texts of their leaves and what is shown of them.
TEST(ValueWriter, WritesEveryTypeAsPeopleReadIt) {
    const auto rows = test::Table(R"(
        time|103375000000|103375ns ;; time|0|0fs ;; time|-5000000|-5ns ;; time|60e15|1min
        time|1234567|1234567fs ;; delay_length|2000|2ps ;; real|103375000000|1.03375e+11
        array (0 to 1) of time|1000 25e6|(1ps,25ns)
        std_logic_vector(7 downto 0)|0 1 0 1 1 0 1 0|5A
        std_logic_vector(7 downto 0)|0 1 0 none 1 0 1 0|010?1010
        string(1 to 3)|'a' ' ' 'b'|a b ;; string(1 to 2)|'a' nul|('a',NUL)
        record a : std_logic_vector(7 downto 0); b : time; c : std_logic; d : integer; end record|1 1 1 1 0 0 0 0 1000 Z -3|(F0,1ps,Z,-3)
        record a : integer; b : integer; end record|none 4|(,4)
        array (0 to 1) of bit_vector(0 to 7)|1 1 1 1 0 0 0 0 0 0 0 0 1 1 1 1|(F0,0F)
        (idle, run)|run|run ;; boolean|false|false ;; array (0 to 1) of boolean|true false|(true,false))");
    const BusFormat format = Hex;
    for (const auto& row : rows) {
        const auto signal = SignalOf(row[0]);
        std::vector<LeafValue> values;
        std::string text = row[1];
        for (ISignal* const leaf : LeavesOf(*signal)) {
            const std::size_t end = text[0] == '\'' ? 3 : std::min(text.find(' '), text.size());
            values.push_back(Value(*leaf, text.substr(0, end)));
            text.erase(0, end + 1);
        }
        EXPECT_EQ(ValueWriter(*signal, format).Text(values), row[2]) << row[0];
    }
}

TEST(ValueWriter, HasWordsForRealsThatAreNoNumbers) {
    using Limits = std::numeric_limits<double>;
    const auto signal = SignalOf("real");
    const BusFormat format = Hex;
    const std::pair<double, std::string> rows[] = {
        {Limits::quiet_NaN(), "NaN"}, {Limits::infinity(), "inf"}, {-Limits::infinity(), "-inf"}};
    for (const auto& [number, text] : rows) {
        LeafValue value{{}, true};
        std::memcpy(value.bytes.data(), &number, sizeof number);
        EXPECT_EQ(ValueWriter(*signal, format).Text({&value, 1}), text);
    }
}

TEST(PhysicalText, ReadsBackWhatItWrites) {
    test::Random random(7);
    const PhysicalUnits ohms = ReadUnits("ohm = 1, kohm = 1000, Mohm = 1000000");
    ASSERT_EQ(ohms.size(), 3U);
    for (const PhysicalUnits& units : {UnitsOfType("TIME"), ohms}) {
        for (int i = 0; i < 2000; ++i) {
            auto number = static_cast<std::int64_t>(random.Bits() >> (11 + random.Below(53)));
            number *= random.OneIn(3) ? -1 : random.OneIn(2) ? units[1].size : 1;
            number = static_cast<std::int64_t>(static_cast<double>(number));
            const auto text = PhysicalText(static_cast<double>(number), units);
            ASSERT_TRUE(text);
            EXPECT_EQ(ReadPhysical(*text, units), number) << *text;
        }
    }
    EXPECT_EQ(PhysicalText(2000, ohms), "2kohm");
    EXPECT_EQ(ReadPhysical("1.5 KOHM", ohms), 1500);
    for (const char* text : {"", "5", "ns", "1.5fs", "1e3ns", "5 nsx", "9223372036854775807ps"}) {
        EXPECT_FALSE(ReadPhysical(text, UnitsOfType("time"))) << text;
    }
    for (const double number : {0.5, 1e19, std::nan("")}) {
        EXPECT_FALSE(PhysicalText(number, ohms));
    }
    for (const char* text : {"", "ohm", "ohm = 0", "ohm = 2", "ohm = 1, k"}) {
        EXPECT_TRUE(ReadUnits(text).empty()) << text;
    }
}

// The events of all leaves against the values that each leaf has by itself.
TEST(ReadTrace, JoinsTheEventsOfTheLeaves) {
    test::Random random(9);
    for (int round = 0; round < 300; ++round) {
        const auto signal = SignalOf("record a : integer; b : integer; c : integer; end record");
        const std::vector<ISignal*> leaves = LeavesOf(*signal);
        std::vector<std::vector<int>> values(40, std::vector<int>(3, -1));
        std::vector<bool> events(40);
        for (std::size_t leaf = 0; leaf < 3; ++leaf) {
            for (std::size_t time = 0; time < 40; ++time) {
                values[time][leaf] = time > 0 ? values[time - 1][leaf] : -1;
                if (random.OneIn(6)) {
                    values[time][leaf] = static_cast<int>(random.Below(9));
                    events[time] = true;
                    leaves[leaf]->GetWave()->AddEvent(static_cast<std::int64_t>(time), 0,
                                                      &values[time][leaf], 4);
                }
            }
        }
        const auto text_of = [&](std::size_t time) {
            std::string text = "(";
            for (std::size_t leaf = 0; leaf < 3; ++leaf) {
                const int value = values[time][leaf];
                text += (leaf > 0 ? "," : "") + (value < 0 ? "" : std::to_string(value));
            }
            return text + ")";
        };
        const std::size_t start = random.Below(30);
        const std::size_t end = start + random.Below(40 - start);
        const Trace trace = ReadTrace(
            *signal, {static_cast<std::int64_t>(start), static_cast<std::int64_t>(end)}, Hex);
        const auto first = std::find(events.begin(), events.end(), true) - events.begin();
        const auto begun = static_cast<std::size_t>(first) < start;
        EXPECT_EQ(trace.before, begun ? std::optional(text_of(start - 1)) : std::nullopt);
        std::size_t next = 0;
        for (std::size_t time = start; time <= end; ++time) {
            if (events[time]) {
                ASSERT_LT(next, trace.changes.size());
                EXPECT_EQ(trace.changes[next].time, static_cast<std::int64_t>(time));
                EXPECT_EQ(trace.changes[next++].value, text_of(time));
            }
        }
        EXPECT_EQ(next, trace.changes.size());
    }
}

}  // namespace
}  // namespace corv::host
